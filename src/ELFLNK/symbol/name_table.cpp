// Linear probing over a power of two of slots, at most two thirds full. A slot carries the upper
// half of the hash, so a text is compared only when it is almost surely the one that is sought.
#include "ELFLNK/symbol/name_table.h"

#include <cstring>

#include "UTIL/hash.h"
#include "UTIL/narrow.h"

uint32_t NAME_TABLE::intern(const char* text) {
    return intern(std::string_view(text), text);
}

uint32_t NAME_TABLE::intern(std::string_view text, const char* stable_text) {
    if ((entries_.size() + 1) * 3 > slots_.size() * 2) grow();
    const uint64_t hash = hash64(text);
    const size_t at = probe(text, hash);
    if (slots_[at].id != NO_NAME) return slots_[at].id;
    const auto id = narrow<uint32_t>(entries_.size());
    slots_[at] = {id, static_cast<uint32_t>(hash >> 32)};
    entries_.push_back({stable_text, narrow<uint32_t>(text.size()), static_cast<uint32_t>(hash)});
    return id;
}

uint32_t NAME_TABLE::find(std::string_view text) const {
    if (slots_.empty()) return NO_NAME;
    return slots_[probe(text, hash64(text))].id;
}

// The slot of the text, or the free slot where it belongs.
size_t NAME_TABLE::probe(std::string_view text, uint64_t hash) const {
    const size_t mask = slots_.size() - 1;
    const auto tag = static_cast<uint32_t>(hash >> 32);
    for (size_t at = hash & mask;; at = (at + 1) & mask) {
        const SLOT& slot = slots_[at];
        if (slot.id == NO_NAME) return at;
        if (slot.tag == tag && view(slot.id) == text) return at;
    }
}

void NAME_TABLE::grow() {
    const size_t count = slots_.empty() ? 1024 : slots_.size() * 2;
    std::vector<SLOT> old = std::move(slots_);
    slots_.assign(count, {NO_NAME, 0});
    for (const SLOT& slot : old) {
        if (slot.id == NO_NAME) continue;
        // The low half of the hash is kept with the entry: growing touches no text.
        size_t at = entries_[slot.id].low_hash & (count - 1);
        while (slots_[at].id != NO_NAME) at = (at + 1) & (count - 1);
        slots_[at] = slot;
    }
}
