// Split placement (>>): the members of a collection are spread over the holes of a range and over
// several ranges. An item is never cut; what has found a place in one hole keeps it, and the next
// hole is tried with the rest. Afterwards the parts become output sections of their own, and the
// locator of the container is rebuilt from them.
#include <algorithm>
#include <span>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/memory_range.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/placement/order/worklist.h"
#include "UTIL/prefetch.h"

/// The sub-items that have no place yet. Each hole is offered to all of them, so what a plain
/// section needs is kept beside it: most holes are too small for most.
std::vector<LOCATOR::UNPLACED> LOCATOR::take_unplaced() {
    MORE& more = own_more();
    std::vector<UNPLACED> list = std::move(more.unplaced);
    more.unplaced.clear();
    if (!list.empty() && more.unplaced_as_of == more.sub_item_edits) return list;
    list.clear();
    list.reserve(sub_items().size());
    for (LOCATOR* sub : sub_items()) {
        if (sub->is_complete()) continue;
        const SECTION* section = as_section(sub->object_);
        const bool is_settled =
            section != nullptr && section->is_plain_input() && !sub->is_virtual();
        list.push_back(
            {sub, is_settled ? sub->object_->est_size_min() : 0, sub->alignment_in_hole()});
    }
    return list;
}

/// Offers the trial to one member; false if some of it is left over.
bool LOCATOR::place_split_member(LOCATOR* sub, MEMORY_RANGE* trial) {
    sub->clear_flag(LF_SPLIT_PLACED | LF_HIGHEST);
    if (sub->is_virtual() && !trial->is_hidden()) {
        sub->place_virtual(trial->origin());
        set_flag(LF_SPLIT_PLACED);
        return true;
    }
    const bool has_room = sub->is_split() ? sub->fits_in_range(trial)
                                          : sub->object_->est_size_min() <= trial->unused();
    if (has_room && insert_with_retry(sub, trial)) {
        set_flag(LF_SPLIT_PLACED);
        return true;
    }
    set_flag(sub->flags_ & LF_SPLIT_PLACED);
    return false;
}

/// One walk over the members that have no place yet; true if none is left over. They mostly stand
/// by size, the largest first: those that are larger than the hole are passed over in one step, for
/// there may be thousands of small holes.
bool LOCATOR::place_split_members(MEMORY_RANGE* trial) {
    // An attempt in vain may ask for reserved trampolines to be moved.
    auto is_in_vain = [trial](const UNPLACED& next) {
        HOLE hole;
        return next.least != 0 && trial->reserved_trampolines() == 0 &&
               !trial->first_hole(trial->origin(), trial->end(), next.least, next.alignment, &hole);
    };
    std::vector<UNPLACED> list = take_unplaced();
    const uint32_t as_of = more_->sub_item_edits;
    auto is_too_large = [room = trial->length()](const UNPLACED& next) {
        return next.least > room;
    };
    auto first = list.begin();
    if (trial->is_empty() && std::ranges::is_partitioned(list, is_too_large))
        first = std::ranges::partition_point(list, is_too_large);
    std::span<UNPLACED> open(first, list.end());
    auto rest = first;
    visit_ahead(
        open, [](const UNPLACED& next) { prefetch(next.item); },
        [&](const UNPLACED& next) {
            if (is_in_vain(next) ||
                (!next.item->is_complete() && !place_split_member(next.item, trial)))
                *rest++ = next;
        });
    list.erase(rest, list.end());
    const bool all = list.empty();
    more_->unplaced = std::move(list);
    more_->unplaced_as_of = as_of;
    return all;
}

bool LOCATOR::place_split_collection(MEMORY_RANGE* trial) {
    uint64_t start = align(trial->origin());
    if (start < trial->origin() || start > trial->end()) return false;
    trial->set_subrange_endpoints(start, trial->end());
    bool pads = is_run_or_both();
    if (pads && !reserve_space_for_padding(trial)) return false;
    bool all = place_split_members(trial);
    consolidate_trampolines(trial, true);
    if (pads) unreserve_space_for_padding(trial);
    if (trial->contents().empty()) return false;

    if (!add_padding_to_subitems(trial)) DIAG_REPORT(elnk_pad_placement_failed, object_->name());
    MEMORY_RANGE* range = trial->parent();
    for (LOCATOR* item : trial->contents()) item->commit(range);
    if (range->parent() == nullptr) add_pending_items_to_object();
    if (all) set_flag(LF_COMPLETE);
    return all;
}

/// The hole is cut into windows that stay within one block.
bool LOCATOR::place_blocked_split_collection(MEMORY_RANGE* trial) {
    if (blocking() == 0) return place_split_collection(trial);
    uint64_t end = trial->end();
    uint64_t start = align(trial->origin());
    uint64_t window_end = start;
    bool any_placed = false;
    while (start >= trial->origin() && start < end) {
        uint64_t boundary = window_end - window_end % blocking() + blocking();
        window_end = boundary < window_end ? end : std::min(boundary, end);
        MEMORY_RANGE window(trial->parent());
        window.set_subrange_endpoints(start, window_end);
        clear_flag(LF_SPLIT_PLACED);
        if (place_split_collection(&window)) return true;
        any_placed |= has_flag(LF_SPLIT_PLACED);
        if (has_flag(LF_SPLIT_PLACED) || start % blocking() != 0) start = window_end;
        if (window_end == end) break;
    }
    if (any_placed) set_flag(LF_SPLIT_PLACED); // what contains this must look behind it
    return false;
}

// ---- after the split --------------------------------------------------------------------------

bool LOCATOR::is_adjacent(const LOCATOR* a, const LOCATOR* b) {
    if (a == nullptr || b == nullptr) return a == b;
    if (!a->is_placed() || !b->is_placed() || a->range_ != b->range_) return false;
    if (a->address_ == b->address_) return true;
    if (a->range_ == nullptr) return false;
    auto* first = const_cast<LOCATOR*>(a);
    auto* second = const_cast<LOCATOR*>(b);
    return a->range_->follows_directly(second, first) || a->range_->follows_directly(first, second);
}

/// Takes over what the items of a new output section say of its place.
void LOCATOR::coalesce_item(LOCATOR* item) {
    if (!item->object_->is_collection()) return;
    item->extract_subitems();
    item->set_collection_endpoints();
    const LOCATOR* placed = nullptr;
    for (const LOCATOR* part : item->sub_items())
        if (part->is_placed()) placed = part;
    if (placed == nullptr) return;
    item->range_ = placed->range_;
    item->clear_flag(LF_SPLIT | LF_SPLIT_FAILED);
    item->set_flag(LF_PLACED | LF_COMPLETE | (placed->flags_ & (LF_SPLIT_FAILED | LF_ALIAS_MOVED)));
}

void LOCATOR::coalesce() {
    bool was_whole = is_placed() && !is_split();
    // Within a larger object this isn't in the range by itself.
    const bool is_subitem = was_whole && range_ != nullptr && !range_->contents().contains(this);
    if (was_whole && range_ != nullptr) range_->remove_item(this, is_subitem);
    drop_sub_items();
    set_flag(LF_ORDERED);
    extract_subitems();
    for (LOCATOR* item : sub_items()) {
        coalesce_item(item);
        if (!item->is_placed() || item->range_ == nullptr || item->range_->parent() != nullptr)
            continue;
        if (!was_whole) item->range_->remove_items(item->sub_items());
        item->range_->add_item(item, is_subitem);
    }
}

void LOCATOR::convert_run_loc_to_alt_run() {
    if (!is_run_or_both()) return;
    kind_ = LOCATOR_KIND::RUN_ALT;
    LOCATOR* load = object_->load_locator();
    object_->add_locator(nullptr);
    object_->add_locator(this);
    if (load != nullptr) object_->add_locator(load);
    for (LOCATOR* sub : sub_items()) sub->convert_run_loc_to_alt_run();
}
