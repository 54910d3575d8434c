// From a locator's wish to the ranges that are tried: a specific address, named ranges in their
// order, attributes or a page, or no wish at all. What finds no room is reported and goes into a
// virtual range, so that everything after it is still placed.
#include <algorithm>

#include "DIAG/elnk_msgs.h"
#include "DIAG/source_position.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/placement/placement.h"
#include "ELFLNK/symbol/similar_names.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "UTIL/strformat.h"

namespace {

/// The range that takes objects in place of the given one.
MEMORY_RANGE* alias_target(MEMORY_RANGE* range) {
    return range->alias() != nullptr ? range->alias() : range;
}

/// The parts of a split object that have no place yet.
void list_parts_without_place(LOCATOR* whole, LOCATOR_LIST& parts) {
    if (!whole->is_split()) return;
    whole->extract_subitems();
    for (LOCATOR* sub : whole->sub_items())
        if (sub->is_split())
            list_parts_without_place(sub, parts);
        else if (!sub->is_complete())
            parts.push_back(sub);
}

/// A range of all that lies at and above the address.
MEMORY_RANGE* make_range_above(const char* name, int page, uint64_t addr, uint32_t attrs) {
    return new MEMORY_RANGE(name, addr, ~addr, attrs, page);
}

/// A range for one object at an address outside of the map. It stays out of the map, in which it
/// would lie over ranges above it; it ends where the next of those begins, and knows what stands
/// outside already.
MEMORY_RANGE* make_range_outside(int page, uint64_t addr) {
    uint64_t end = LOCATOR::no_limit;
    for (const MEMORY_RANGE* other : *memory_map)
        if (other->page() == page && !other->is_hidden() && other->origin() > addr)
            end = std::min(end, other->origin());
    auto* range = new MEMORY_RANGE("DEFAULT", addr, end - addr, MEMORY_RANGE::ATTR_ALL, page);
    for (LOCATOR* other : placement_state().outside)
        if (other->effective_page() == page && other->end_address() > addr &&
            other->address() < end)
            range->add_item(other, false);
    return range;
}

/// A virtual range occupies no more than the object in it. A split object stands there as its
/// members.
void shrink_to_contents(MEMORY_RANGE* range) {
    const bool is_empty = range->contents().empty();
    uint64_t begin = is_empty ? range->origin() : (*range->contents().begin())->address();
    uint64_t end = begin;
    for (const LOCATOR* item : range->contents()) end = std::max(end, item->end_address());
    range->set_subrange_endpoints(begin, end);
}

/// Once per link: on which of several pages does a specific address lie?
void report_ambiguous_page(const LINKER_OBJECT* object) {
    PLACEMENT_STATE& state = placement_state();
    if (state.ambiguous_page_reported || !Target->abi()->supports_memory_pages()) return;
    bool page_one = std::any_of(memory_map->begin(), memory_map->end(),
                                [](const MEMORY_RANGE* range) { return range->page() == 1; });
    if (!page_one) return;
    state.ambiguous_page_reported = true;
    DIAG_REPORT_AT(&object->source_position(), elnk_ambiguous_page, object->name());
}

std::string similar_range_hint(const char* name) {
    SIMILAR_NAMES similar({name});
    for (const MEMORY_RANGE* range : *memory_map) similar.offer(range->name(), nullptr);
    const std::string_view found = similar.best(0).name;
    return found.empty() ? "" : "; there is " + std::string(found);
}

/// Once per mention in the command file: sections that the linker makes are placed like the user's
/// and repeat their wishes.
void report_unknown_range(const char* name, int page, const SOURCE_POSITION* pos) {
    std::string mention = strformat("%s\n%d\n", name, page);
    if (pos != nullptr) mention += strformat("%s\n%u:%u", pos->file(), pos->line(), pos->column());
    if (!placement_state().unknown_ranges_reported.insert(mention).second) return;
    DIAG::elnk_place_bad_range message(__FILE__, __LINE__, name, page);
    message.set_src(pos);
    if (DIAGNOSTIC::verbose_m) message.set_hint(similar_range_hint(name));
    message.report();
}

} // namespace

void LOCATOR::place_object() {
    bind_padding_to_subobjects();
    if (is_load()) pre_place_run_image();
    if (is_highest()) pre_place_highest();
    if (has_flag(LF_SPECIFIC))
        place_specific();
    else if (has_flag(LF_RANGES))
        place_by_named_range();
    else if (has_flag(LF_PAGE))
        place_by_page();
    else
        place_default();
}

void LOCATOR::place_specific() {
    MEMORY_RANGE* range = memory_map->lookup_by_addr(specific_address(), effective_page());
    if (range != nullptr && alias_target(range) != range && is_run_or_both() &&
        !has_flag(LF_ALIAS_MOVED)) {
        set_specific_address(specific_address() + (range->alias()->origin() - range->origin()));
        set_flag(LF_ALIAS_MOVED);
    }
    if (is_virtual()) {
        place_virtual(specific_address());
        return;
    }
    if (!has_flag(LF_PAGE)) report_ambiguous_page(object_);
    range = memory_map->lookup_by_addr(specific_address(), effective_page());
    const bool is_outside = range == nullptr || range->is_hidden();
    if (is_outside) {
        DIAG_REPORT_AT(position(), elnk_place_specific_out_of_range);
        range = make_range_outside(effective_page(), specific_address());
        clear_flag(LF_SPLIT | LF_HIGHEST);
        set_flag(LF_ONE_ATTEMPT);
    }
    if (!insert_into_range(range))
        fail_placement({range}, true);
    else if (is_outside)
        placement_state().outside.push_back(this);
}

void LOCATOR::place_by_named_range() {
    if (is_virtual() && has_flag(LF_SPLIT_FAILED)) {
        place_virtual(0);
        return;
    }
    std::vector<MEMORY_RANGE*> list;
    int wanted_page = effective_page();
    for (const char* name : range_names()) {
        MEMORY_RANGE* range = memory_map->lookup_by_name(name, wanted_page);
        if (range != nullptr)
            list.push_back(range);
        else
            report_unknown_range(name, wanted_page, position());
    }
    if (!place_in_range_list(list)) fail_placement(list, true);
}

void LOCATOR::place_by_page() {
    if (is_virtual() && has_flag(LF_SPLIT_FAILED)) {
        place_virtual(0);
        return;
    }
    std::vector<MEMORY_RANGE*> list;
    for (MEMORY_RANGE* range : *memory_map)
        if (match(range)) list.push_back(range);
    if (!place_in_range_list(list)) fail_placement(list, true);
}

void LOCATOR::place_default() {
    if (is_virtual()) {
        place_virtual(0);
        return;
    }
    std::vector<MEMORY_RANGE*> list;
    for (MEMORY_RANGE* range : *memory_map) {
        if (!match(range)) continue;
        if (insert_into_range(range)) return;
        list.push_back(range);
    }
    fail_placement(list, true);
}

bool LOCATOR::place_in_range_list(const std::vector<MEMORY_RANGE*>& list) {
    for (MEMORY_RANGE* range : list) {
        MEMORY_RANGE* target = alias_target(range);
        if (is_virtual()) {
            place_virtual(is_highest() ? std::min(target->end(), max_address())
                                       : std::max(target->origin(), min_address_));
            return true;
        }
        LOCATOR_LIST parts;
        if (target != range) list_parts_without_place(this, parts);
        const bool placed = insert_into_range(target);
        for (LOCATOR* part : parts)
            if (part->range() == target) part->set_flag(LF_ALIAS_MOVED);
        if (!placed) continue;
        if (target != range) set_flag(LF_ALIAS_MOVED);
        return true;
    }
    return false;
}

void LOCATOR::available_mem_range(std::vector<MEMORY_RANGE*>& list) {
    for (MEMORY_RANGE* range : *memory_map)
        if (match(range)) list.push_back(range);
}

bool LOCATOR::insert_into_virtual_range(uint64_t addr) {
    MEMORY_RANGE* range =
        make_range_above("VIRTUAL", effective_page(), addr, MEMORY_RANGE::ATTR_HIDDEN);
    memory_map->add(range);
    if (!has_flag(LF_SPLIT_FAILED)) clear_flag(LF_SPLIT);
    clear_flag(LF_HIGHEST);
    set_flag(LF_ONE_ATTEMPT);
    attempts_ = 0;
    const bool placed = insert_into_range(range);
    shrink_to_contents(range);
    return placed;
}

void LOCATOR::place_virtual(uint64_t addr) {
    if (!is_virtual() || insert_into_virtual_range(addr)) return;
    // Only the end of the address space is in the way; at its beginning there is room.
    clear_flag(LF_SPECIFIC);
    set_min_address(0);
    set_max_address(no_limit);
    reset_placement();
    if (!insert_into_virtual_range(0)) DIAG_REPORT(elnk_virtual_place_failed, object_->name());
}
