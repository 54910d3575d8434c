// Finds the ranges of a map by address and by name.
//
// Ranges may overlap, which is reported but doesn't keep them out, so the neighbours of an address
// don't tell everything. The index holds the ranges in map order in blocks of a few hundred, each
// with its highest end: a search passes over the blocks that end too low. The bounds are those at
// the time of entry; a range may shrink afterwards, never grow.
#pragma once

#include <cstdint>
#include <list>
#include <string_view>
#include <unordered_map>
#include <vector>

class MEMORY_RANGE;

class RANGE_INDEX {
  public:
    using PLACE = std::list<MEMORY_RANGE*>::iterator;

    /// Enters the range into the list and here, behind its equals in map order.
    void insert(std::list<MEMORY_RANGE*>& list, MEMORY_RANGE* range);

    /// First range, in map order, that may share an address of [first, last] on the page and that
    /// `accept` takes; null if there is none.
    template <class ACCEPT>
    MEMORY_RANGE* find(int page, uint64_t first, uint64_t last, const ACCEPT& accept) const;

    /// All ranges of that name, in map order.
    const std::vector<MEMORY_RANGE*>& named(std::string_view name) const;

  private:
    struct ENTRY {
        PLACE place;
        int page;
        uint64_t origin;
        uint64_t end;
        MEMORY_RANGE* range() const { return *place; }
    };
    struct BLOCK {
        std::vector<ENTRY> entries;
        uint64_t highest_end = 0;
        void update();
    };

    void split(std::size_t block);

    std::vector<BLOCK> blocks_; // none is empty
    std::unordered_map<std::string_view, std::vector<MEMORY_RANGE*>> names_;
};

template <class ACCEPT>
MEMORY_RANGE* RANGE_INDEX::find(int page, uint64_t first, uint64_t last,
                                const ACCEPT& accept) const {
    for (const BLOCK& block : blocks_) {
        if (block.highest_end < first) continue;
        for (const ENTRY& entry : block.entries)
            if (entry.page == page && entry.origin <= last && entry.end >= first &&
                accept(entry.range()))
                return entry.range();
    }
    return nullptr;
}
