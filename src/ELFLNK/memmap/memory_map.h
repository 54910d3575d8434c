// The link's model of target memory: all ranges, in the order in which every search goes.
#pragma once

#include <list>

#include "ELFLNK/memmap/memory_range.h"
#include "ELFLNK/memmap/range_index.h"

class MEMORY_MAP : public std::list<MEMORY_RANGE*> {
  public:
    /// Checks the range against the map, enters it in every case, and sorts.
    void add(MEMORY_RANGE* range);
    /// Forgets all ranges.
    void clear() {
        std::list<MEMORY_RANGE*>::clear();
        index_ = {};
    }
    /// First range of that name on the page, or on any page.
    MEMORY_RANGE* lookup_by_name(const char* name, int page) const;
    MEMORY_RANGE* lookup_by_name(const char* name) const;
    bool is_name_ambiguous(const char* name) const;
    /// First range of the page that holds the address.
    MEMORY_RANGE* lookup_by_addr(uint64_t address, int page) const;
    /// The first range that holds the address also holds all of the extent.
    bool fits_in_a_range(uint64_t address, uint64_t size, int page) const;
    /// First range of the page that shares an address with the extent.
    MEMORY_RANGE* intersects(uint64_t address, uint64_t size, int page) const;
    void dump() const;

  private:
    void check(const MEMORY_RANGE* range) const;

    RANGE_INDEX index_;
};

extern MEMORY_MAP* memory_map;
