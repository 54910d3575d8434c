// The blocks: where a new range belongs, and how they stay small.
#include "ELFLNK/memmap/range_index.h"

#include <algorithm>

#include "ELFLNK/memmap/memory_range.h"

namespace {

constexpr std::size_t BLOCK_LIMIT = 256;

} // namespace

void RANGE_INDEX::BLOCK::update() {
    highest_end = 0;
    for (const ENTRY& entry : entries) highest_end = std::max(highest_end, entry.end);
}

void RANGE_INDEX::insert(std::list<MEMORY_RANGE*>& list, MEMORY_RANGE* range) {
    auto& namesakes = names_[range->name()];
    namesakes.insert(
        std::upper_bound(namesakes.begin(), namesakes.end(), range, MEMORY_RANGE::less_order),
        range);

    auto goes_before = [](const MEMORY_RANGE* a, const ENTRY& b) {
        return MEMORY_RANGE::less_order(a, b.range());
    };
    auto block = std::partition_point(blocks_.begin(), blocks_.end(), [&](const BLOCK& b) {
        return !goes_before(range, b.entries.back());
    });
    if (block == blocks_.end()) {
        if (blocks_.empty()) blocks_.emplace_back();
        block = std::prev(blocks_.end());
    }
    std::vector<ENTRY>& entries = block->entries;
    auto at = std::upper_bound(entries.begin(), entries.end(), range, goes_before);
    const PLACE behind = at != entries.end() ? at->place
                         : entries.empty()   ? list.end()
                                             : std::next(entries.back().place);
    const PLACE place = list.insert(behind, range);
    entries.insert(at, {place, range->page(), range->origin(), range->end()});
    block->highest_end = std::max(block->highest_end, range->end());
    if (entries.size() > BLOCK_LIMIT) split(static_cast<std::size_t>(block - blocks_.begin()));
}

void RANGE_INDEX::split(std::size_t block) {
    BLOCK upper;
    std::vector<ENTRY>& lower = blocks_[block].entries;
    const auto middle = lower.begin() + static_cast<std::ptrdiff_t>(lower.size() / 2);
    upper.entries.assign(middle, lower.end());
    upper.update();
    lower.erase(middle, lower.end());
    blocks_[block].update();
    blocks_.insert(blocks_.begin() + static_cast<std::ptrdiff_t>(block) + 1, std::move(upper));
}

const std::vector<MEMORY_RANGE*>& RANGE_INDEX::named(std::string_view name) const {
    static const std::vector<MEMORY_RANGE*> none;
    auto found = names_.find(name);
    return found != names_.end() ? found->second : none;
}
