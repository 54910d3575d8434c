// The map: checks of a new range against the ranges of its page, and the searches over all.
#include "ELFLNK/memmap/memory_map.h"

#include <cstdio>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/memmap/memory_map_table.h"

namespace {

/// The last address of an extent; the first one of an empty extent.
uint64_t last_address(uint64_t address, uint64_t size) {
    return size == 0 ? address : size - 1 > ~address ? ~uint64_t{0} : address + size - 1;
}

} // namespace

void MEMORY_MAP::check(const MEMORY_RANGE* range) const {
    const SOURCE_POSITION* pos = &range->source_position();
    if (!range->has_origin()) DIAG_REPORT_AT(pos, elnk_memrng_origin_missing, range->name());
    if (range->length() == 0) DIAG_REPORT_AT(pos, elnk_memrng_length_missing, range->name());
    for (const MEMORY_RANGE* other : index_.named(range->name()))
        if (other->page() == range->page() && !other->is_hidden())
            DIAG_REPORT_AT(pos, elnk_memrng_duplicate_name, range->name());
    auto report_overlap = [&](const MEMORY_RANGE* other) {
        if (!other->is_hidden() && (other->holds(range->origin()) || range->holds(other->origin())))
            DIAG_REPORT_AT(pos, elnk_memrng_overlap, range->name(), other->name());
        return false;
    };
    const uint64_t last = last_address(range->origin(), range->length());
    index_.find(range->page(), range->origin(), last, report_overlap);
}

void MEMORY_MAP::add(MEMORY_RANGE* range) {
    if (!range->is_hidden()) check(range);
    index_.insert(*this, range);
}

MEMORY_RANGE* MEMORY_MAP::lookup_by_name(const char* name, int page) const {
    for (MEMORY_RANGE* range : index_.named(name))
        if (range->page() == page) return range;
    return nullptr;
}

MEMORY_RANGE* MEMORY_MAP::lookup_by_name(const char* name) const {
    const auto& ranges = index_.named(name);
    return ranges.empty() ? nullptr : ranges.front();
}

bool MEMORY_MAP::is_name_ambiguous(const char* name) const {
    return index_.named(name).size() >= 2;
}

MEMORY_RANGE* MEMORY_MAP::lookup_by_addr(uint64_t address, int page) const {
    return index_.find(page, address, address,
                       [&](const MEMORY_RANGE* range) { return range->holds(address); });
}

bool MEMORY_MAP::fits_in_a_range(uint64_t address, uint64_t size, int page) const {
    const MEMORY_RANGE* range = lookup_by_addr(address, page);
    return range != nullptr && size <= range->length() - (address - range->origin());
}

MEMORY_RANGE* MEMORY_MAP::intersects(uint64_t address, uint64_t size, int page) const {
    const uint64_t end = size > ~address ? ~uint64_t{0} : address + size;
    return index_.find(page, address, end, [&](const MEMORY_RANGE* range) {
        return end > range->origin() && range->end() > address;
    });
}

void MEMORY_MAP::dump() const {
    MEMORY_MAP_TABLE table;
    table.add_headings();
    for (MEMORY_RANGE* range : *this) table.add_range(range);
    table.print(stdout);
}
