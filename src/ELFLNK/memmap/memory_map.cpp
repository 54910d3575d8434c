// The map: checks of a new range against the ranges of its page, and the searches over all.
#include "ELFLNK/memmap/memory_map.h"

#include <cstdio>
#include <cstring>
#include <iterator>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/memmap/memory_map_table.h"

namespace {

bool same_name(const MEMORY_RANGE* range, const char* name) {
    return std::strcmp(range->name(), name) == 0;
}

} // namespace

void MEMORY_MAP::check(const MEMORY_RANGE* range) const {
    const SOURCE_POSITION* pos = &range->source_position();
    if (!range->has_origin()) DIAG_REPORT_AT(pos, elnk_memrng_origin_missing, range->name());
    if (range->length() == 0) DIAG_REPORT_AT(pos, elnk_memrng_length_missing, range->name());
    for (const MEMORY_RANGE* other : *this)
        if (other->page() == range->page() && !other->is_hidden() &&
            same_name(other, range->name()))
            DIAG_REPORT_AT(pos, elnk_memrng_duplicate_name, range->name());
    for (const MEMORY_RANGE* other : *this)
        if (other->page() == range->page() && !other->is_hidden() &&
            (other->holds(range->origin()) || range->holds(other->origin())))
            DIAG_REPORT_AT(pos, elnk_memrng_overlap, range->name(), other->name());
}

void MEMORY_MAP::add(MEMORY_RANGE* range) {
    if (!range->is_hidden()) check(range);
    // Behind its equals, as a stable sort would leave it; most newcomers belong to the end.
    auto at = end();
    while (at != begin() && MEMORY_RANGE::less_order(range, *std::prev(at))) --at;
    insert(at, range);
}

MEMORY_RANGE* MEMORY_MAP::lookup_by_name(const char* name, int page) const {
    for (MEMORY_RANGE* range : *this)
        if (range->page() == page && same_name(range, name)) return range;
    return nullptr;
}

MEMORY_RANGE* MEMORY_MAP::lookup_by_name(const char* name) const {
    for (MEMORY_RANGE* range : *this)
        if (same_name(range, name)) return range;
    return nullptr;
}

bool MEMORY_MAP::is_name_ambiguous(const char* name) const {
    unsigned count = 0;
    for (const MEMORY_RANGE* range : *this) count += same_name(range, name);
    return count >= 2;
}

MEMORY_RANGE* MEMORY_MAP::lookup_by_addr(uint64_t address, int page) const {
    for (MEMORY_RANGE* range : *this)
        if (range->page() == page && range->holds(address)) return range;
    return nullptr;
}

bool MEMORY_MAP::fits_in_a_range(uint64_t address, uint64_t size, int page) const {
    const MEMORY_RANGE* range = lookup_by_addr(address, page);
    return range != nullptr && size <= range->length() - (address - range->origin());
}

MEMORY_RANGE* MEMORY_MAP::intersects(uint64_t address, uint64_t size, int page) const {
    const uint64_t end = size > ~address ? ~uint64_t{0} : address + size;
    for (MEMORY_RANGE* range : *this)
        if (range->page() == page && end > range->origin() && range->end() > address) return range;
    return nullptr;
}

void MEMORY_MAP::dump() const {
    MEMORY_MAP_TABLE table;
    table.add_headings();
    for (MEMORY_RANGE* range : *this) table.add_range(range);
    table.print(stdout);
}
