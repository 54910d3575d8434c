// The table form of the memory map: ranges, what they hold, and the holes.
#pragma once

#include "ELFLNK/memmap/memory_range.h"
#include "UTIL/text_table.h"

class MEMORY_MAP_TABLE : public TEXT_TABLE {
  public:
    MEMORY_MAP_TABLE();
    void add_headings();
    void add_range(MEMORY_RANGE* range);

  private:
    enum COLUMN : int { NAME, ORIGIN, END, LENGTH, ATTRS, FILL, PAGE, COLUMNS };

    /// The text behind two blanks per level.
    void set_name_cell(const char* text);
    void add_hole(uint64_t next);
    void add_item(LOCATOR* locator);
    void add_subitems(LOCATOR* locator);
    static bool suppress_map_entry(const LOCATOR* locator);

    int row_ = 0;
    int depth_ = 0;
    uint64_t cursor_ = 0;
};
