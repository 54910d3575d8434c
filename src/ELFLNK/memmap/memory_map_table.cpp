// Rows of the memory map: a range, what it holds one level deeper, and the holes between.
#include "ELFLNK/memmap/memory_map_table.h"

#include <algorithm>
#include <string>
#include <vector>

#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/fill_spec.h"
#include "ELFLNK/object/linker_object.h"

namespace {

constexpr const char* HEADINGS[2][7] = {
    {"name/contents", " origin", "  end", " length", "attrs", "fill", "page"},
    {"-------------", "--------", "--------", "--------", "-----", "----", "----"}};

} // namespace

MEMORY_MAP_TABLE::MEMORY_MAP_TABLE() {
    set_indent(4);
    set_padding(1);
}

void MEMORY_MAP_TABLE::add_headings() {
    for (const auto& line : HEADINGS) {
        for (int column = 0; column < COLUMNS; ++column) set_string(row_, column, line[column]);
        ++row_;
    }
}

void MEMORY_MAP_TABLE::set_name_cell(const char* text) {
    std::string indented(static_cast<std::size_t>(std::max(depth_, 0)) * 2, ' ');
    set_string(row_, NAME, indented + text);
}

void MEMORY_MAP_TABLE::add_range(MEMORY_RANGE* range) {
    depth_ = 0;
    if (range->is_hidden()) {
        if (range->contents().empty()) return;
        depth_ = -1;
    } else {
        set_name_cell(range->debug_name());
        set_text(row_, ORIGIN, "0x%08lx  ", range->origin());
        set_text(row_, END, "0x%08lx  ", range->origin() + range->length() - 1);
        set_text(row_, LENGTH, "0x%lx  ", range->length());
        set_string(row_, ATTRS, MEMORY_RANGE::attr_name(range->attrs()));
        if (range->has_vfill())
            set_text(row_, FILL, "%s V", range->fill()->str());
        else
            set_string(row_, FILL, range->has_fill() ? range->fill()->str() : "<none>");
        set_text(row_, PAGE, "%d", range->page());
        ++row_;
    }
    if (range->contents().empty()) return;
    cursor_ = range->origin();
    for (LOCATOR* item : range->contents()) {
        add_hole(item->address());
        add_item(item);
    }
    add_hole(range->end());
    append_rows(1);
    ++row_;
}

void MEMORY_MAP_TABLE::add_hole(uint64_t next) {
    if (cursor_ >= next) return;
    ++depth_;
    set_name_cell("<empty>");
    set_text(row_, ORIGIN, "0x%08lx", cursor_);
    set_text(row_, END, "0x%08lx", next);
    set_text(row_, LENGTH, "0x%lx", next - cursor_);
    ++row_;
    --depth_;
    cursor_ = next;
}

bool MEMORY_MAP_TABLE::suppress_map_entry(const LOCATOR* locator) {
    return locator->object()->is_section_spec();
}

void MEMORY_MAP_TABLE::add_item(LOCATOR* locator) {
    if (suppress_map_entry(locator)) {
        add_subitems(locator);
        return;
    }
    ++depth_;
    const LINKER_OBJECT* obj = locator->object();
    const uint64_t start = locator->address();
    const uint64_t size = locator->end_address() - start;
    std::string name = obj->name();
    if (!locator->is_virtual()) {
        switch (locator->kind()) {
        case LOCATOR_KIND::RUN:
            name += " (R)";
            break;
        case LOCATOR_KIND::LOAD:
            name += " (L)";
            break;
        case LOCATOR_KIND::RUN_ALT:
            name += " (A)";
            break;
        case LOCATOR_KIND::BOTH:
            break;
        }
    }
    set_name_cell(name.c_str());
    set_text(row_, ORIGIN, start < cursor_ ? "0x%08lx*" : "0x%08lx", start);
    if (size != 0) set_text(row_, END, "0x%08lx", start + size - 1);
    set_text(row_, LENGTH, "0x%lx", size);
    if (obj->fill() != nullptr) set_string(row_, FILL, obj->fill()->str());
    ++row_;
    add_subitems(locator);
    --depth_;
    cursor_ = std::max(cursor_, locator->end_address());
}

void MEMORY_MAP_TABLE::add_subitems(LOCATOR* locator) {
    if (locator->sub_items().empty()) return;
    LOCATOR_LIST items(locator->sub_items().begin(), locator->sub_items().end());
    std::sort(items.begin(), items.end(), LOCATOR::less_by_address);
    cursor_ = std::max(cursor_, locator->address());
    for (LOCATOR* item : items) {
        add_hole(item->address());
        add_item(item);
    }
    add_hole(locator->end_address());
}
