// An object that finds no room: the report with its table of ranges, and the virtual range that
// takes the object so that the link goes on to report everything else.
#include <algorithm>

#include "DIAG/elnk_msgs.h"
#include "DIAG/source_position.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/memory_range.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "UTIL/strformat.h"

namespace {

bool stands_in_root(const LOCATOR* locator) {
    const MEMORY_RANGE* range = locator->range();
    return locator->is_placed() && range != nullptr && range->parent() == nullptr;
}

} // namespace

/// The largest gap between what is in the range, as an attempt of this locator would see it.
uint64_t LOCATOR::largest_hole(MEMORY_RANGE* range) {
    bool overlay_test = overlay_test_is_on();
    uint64_t cursor = range->origin();
    uint64_t largest = 0;
    for (LOCATOR* item : range->contents()) {
        if (overlay_test && may_overlay(item)) continue;
        if (item->address_ > cursor) largest = std::max(largest, item->address_ - cursor);
        cursor = std::max(cursor, item->end_);
    }
    return cursor < range->end() ? std::max(largest, range->end() - cursor) : largest;
}

/// What stands behind the size in the report: the object in the way of a specific address, or the
/// ranges that were tried.
std::string LOCATOR::failure_text(const std::vector<MEMORY_RANGE*>& list) {
    if (has_flag(LF_SPECIFIC)) {
        for (MEMORY_RANGE* range : list) {
            LOCATOR* other = range->locator_for_address(specific_address());
            if (other == nullptr) continue;
            return strformat(", overlaps with \"%s\", size 0x%lx (page %d)\n",
                             other->object_->name(),
                             static_cast<unsigned long>(other->object_->size()), range->page());
        }
    }
    std::string text = ".  Available memory ranges:\n";
    for (MEMORY_RANGE* range : list) {
        if (range->is_hidden()) continue;
        auto number = [](uint64_t n) { return static_cast<unsigned long>(n); };
        text = strformat("%s\n%-10s%ssize: 0x%-8lx%sunused: 0x%-8lx%smax hole: 0x%-8lx",
                         text.c_str(), range->name(), "   ", number(range->length()), "   ",
                         number(range->unused()), "   ", number(largest_hole(range)));
    }
    return text;
}

void LOCATOR::report_failure(const std::vector<MEMORY_RANGE*>& list) {
    if (std::all_of(list.begin(), list.end(), [](auto* range) { return range->is_hidden(); })) {
        const char* with_attrs = has_flag(LF_ATTRS) ? " with matching attributes" : "";
        DIAG_REPORT_AT(position(), elnk_place_no_range, with_attrs, object_->name());
        return;
    }
    const COLLECTION* parent = object_->parent();
    bool aligned = has_flag(LF_ALIGN | LF_BLOCK | LF_PALIGN | LF_POWER2) ||
                   (parent != nullptr && parent->alignment() > 1);
    const char* with = "";
    if (aligned)
        with = Target->abi()->default_block_size() != 0 ? "with alignment/blocking "
                                                        : "with alignment ";
    std::string page;
    if (Target->abi()->supports_memory_pages()) page = strformat("page %d", effective_page());
    DIAG_REPORT_AT(position(), elnk_place_failed, diag_kind(), with, object_->name(),
                   object_->size(), page, failure_text(list));
}

void LOCATOR::fail_placement(const std::vector<MEMORY_RANGE*>& list, bool report) {
    if (report && !is_virtual()) report_failure(list);
    if (!stands_in_root(this)) {
        if (is_split())
            set_split_failed_placement();
        else
            set_unsplit_failed_and_reset();
    }
    if (is_virtual()) return;
    set_flag(LF_VIRTUAL);
    reset_placement();
    place_object();
}

/// Members that have a place keep it; the others are marked.
void LOCATOR::set_split_failed_placement() {
    set_flag(LF_SPLIT_FAILED);
    if (more_ != nullptr) more_->unplaced.clear();
    for (LOCATOR* sub : sub_items()) {
        if (stands_in_root(sub)) continue;
        if (sub->is_split())
            sub->set_split_failed_placement();
        else
            sub->set_unsplit_failed_and_reset();
    }
}

void LOCATOR::set_unsplit_failed_and_reset() {
    if (is_run_or_both()) {
        drop_trampolines();
        detach_call_sites();
    }
    leave_range_of_its_own();
    clear_flag(LF_PLACED | LF_COMPLETE | LF_PRE_PLACED);
    set_flag(LF_SPLIT_FAILED);
    range_ = nullptr;
    attempts_ = 0;
    set_extent(0, 0);
    for (LOCATOR* sub : sub_items()) sub->set_unsplit_failed_and_reset();
}

void LOCATOR::set_failed_placement() {
    if (is_split())
        set_split_failed_placement();
    else
        set_unsplit_failed_and_reset();
}

/// What isn't placed may be attempted anew, in ranges of its own.
void LOCATOR::reset_placement() {
    attempts_ = 0;
    clear_flag(LF_ONE_ATTEMPT);
    object_->update_upon_placement();
    for (LOCATOR* sub : sub_items())
        if (!stands_in_root(sub)) sub->reset_placement();
}
