// Interned names. Each global name of the link is stored once and known by a small number from then
// on: the text is a view into the mapped string table it came from, the lookup a 64-bit hash with
// open addressing. What hangs on a name (its definition, its need) is an array indexed by that
// number, so nothing else ever compares texts.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

class NAME_TABLE {
  public:
    static constexpr uint32_t NO_NAME = ~0u;

    /// The id of the name, new if it has none yet. The text must live to the end of the link.
    uint32_t intern(const char* text);
    uint32_t intern(std::string_view text, const char* stable_text);
    /// The id of the name, or NO_NAME.
    uint32_t find(std::string_view text) const;
    const char* text(uint32_t id) const { return entries_[id].text; }
    std::string_view view(uint32_t id) const { return {entries_[id].text, entries_[id].length}; }
    uint32_t size() const { return static_cast<uint32_t>(entries_.size()); }

  private:
    struct ENTRY {
        const char* text;
        uint32_t length;
        uint32_t low_hash; // lower half of the hash: enough to find a slot anew
    };
    struct SLOT {
        uint32_t id;  // NO_NAME: free
        uint32_t tag; // upper half of the hash: spares most text comparisons
    };
    size_t probe(std::string_view text, uint64_t hash) const;
    void grow();

    std::vector<ENTRY> entries_;
    std::vector<SLOT> slots_;
};
