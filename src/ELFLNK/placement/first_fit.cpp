// First fit within one range: the holes between what is already placed are tried in address order
// (from the top for HIGH), and the first in which the whole attempt succeeds takes the object.
//
// An attempt works on a trial copy of the range, cut to the hole; it commits to the range only on
// success, so a failed one leaves nothing behind. Holes that are certainly too small are not tried
// at all: the range's index of holes finds the next one that may do. Where items may be overlaid
// or the order of attempts itself counts, the contents are walked one by one.
#include <algorithm>

#include "DIAG/elnk_msgs.h"
#include "DIAG/source_position.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/memory_range.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/placement/order/worklist.h"
#include "ELFLNK/placement/placement.h"
#include "ELFLNK/target/target.h"
#include "OPTIONGEN/option_obj.h"

namespace {

/// Tries the hole [begin, end) of the walk; inverted holes never count, empty ones only for an
/// object of size 0.
bool hole_counts(uint64_t begin, uint64_t end, bool zero_size) {
    return begin < end || (begin == end && zero_size);
}

/// Is a hole of the length worth the moving of the reserved trampoline that bounds it?
bool consolidation_needed(uint64_t gap, const LOCATOR* bound) {
    constexpr uint64_t LARGE_GAP = 1024;
    return gap > LARGE_GAP && bound->has_flag(LF_TRAMP_RES);
}

/// The reserved trampoline that ends a large hole between `from` and `to`, if there is one. Such
/// holes were passed over as too small, so there are few.
bool passes_large_gap(const MEMORY_RANGE* range, uint64_t from, uint64_t to, bool down) {
    if (range->reserved_trampolines() == 0) return false;
    constexpr uint64_t LARGE_HOLE = 1025;
    HOLE hole;
    while (from < to && (down ? range->last_hole(from, to, LARGE_HOLE, &hole)
                              : range->first_hole(from, to, LARGE_HOLE, 1, &hole))) {
        auto bound = range->contents().lower_bound(down ? hole.start : hole.end);
        const bool is_bounded =
            down ? bound != range->contents().begin() : bound != range->contents().end();
        if (is_bounded && consolidation_needed(hole.length(), down ? *--bound : *bound))
            return true;
        (down ? to : from) = down ? hole.start : hole.end;
    }
    return false;
}

bool overlays_members(const LINKER_OBJECT* object) {
    const LOCATOR* run = object ? object->run_locator() : nullptr;
    return run != nullptr && run->is_overlay();
}

} // namespace

bool LOCATOR::overlay_test_is_on() {
    return Target->may_overlay(this, nullptr) ||
           (!is_load() && overlays_members(object_->parent()));
}

bool LOCATOR::may_overlay(LOCATOR* other) {
    if (Target->may_overlay(this, other)) return true;
    if (is_load()) return false;
    if (other->address_ == other->end_) return true;
    return other->object_->has_common_parent(object_) && overlays_members(object_->parent());
}

bool LOCATOR::insert_into_range(MEMORY_RANGE* range, bool* needed) {
    if (needed != nullptr) *needed = false;
    bool in_root = is_placed() && range_ != nullptr && range_->parent() == nullptr;
    if (in_root && !range_->is_temp_layout())
        DIAG_REPORT(elnk_already_placed, diag_kind(), object_->name());
    object_->update_before_placement(static_cast<PLACEMENT_PHASE>(placement_state().phase));

    MEMORY_RANGE trial(range);
    uint64_t low = std::max(range->origin(), min_address_);
    uint64_t high = std::min(range->end(), max_address());
    if (low > high) return false;
    uint64_t start = is_highest() ? high : low;
    uint64_t final = is_highest() ? low : high;

    if (object_->size() == 0 && !object_->has_assign_to_dot_expression()) {
        trial.set_subrange_endpoints(low, high);
        return attempt_placement(&trial);
    }
    bool only_tail = !is_highest() && has_flag(LF_LAST | LF_BEHIND_LAST);
    if (only_tail) {
        if (!range->contents().empty())
            start = std::max(start, (*range->contents().rbegin())->end_address());
        if (start > final) return false;
        trial.set_subrange_endpoints(start, final);
        return attempt_placement(&trial);
    }
    bool every_attempt_counts = has_flag(LF_ONE_ATTEMPT | LF_POWER2) || object_->size() == 0;
    if (every_attempt_counts || overlay_test_is_on())
        return walk_holes(range, &trial, start, final, needed);
    return search_holes(range, &trial, start, final, needed);
}

bool LOCATOR::insert_with_retry(LOCATOR* sub, MEMORY_RANGE* range) {
    if (global_opts->isopt(OPT_disable_early_consolidation)) return sub->insert_into_range(range);
    bool needed = false;
    if (sub->insert_into_range(range, &needed)) return true;
    if (!needed) return false;
    consolidate_trampolines(range, false);
    return sub->insert_into_range(range);
}

/// The plain walk over the contents, with the skipping of items that may be overlaid.
bool LOCATOR::walk_holes(MEMORY_RANGE* range, MEMORY_RANGE* trial, uint64_t start, uint64_t final,
                         bool* needed) {
    bool overlay_test = overlay_test_is_on();
    bool zero_size = object_->size() == 0;
    bool down = is_highest();
    auto try_hole = [&](uint64_t begin, uint64_t end, bool empty_counts) {
        if (!hole_counts(begin, end, empty_counts)) return false;
        trial->set_subrange_endpoints(begin, end);
        return attempt_placement(trial);
    };
    enum OUTCOME { NEXT, PLACED, CONSOLIDATE };
    auto pass = [&](LOCATOR* item) {
        if (overlay_test && may_overlay(item)) return NEXT;
        const uint64_t begin = down ? std::max(item->end_, min_address_) : start;
        const uint64_t end = down ? start : std::min(item->address_, max_address());
        if (try_hole(begin, end, zero_size)) return PLACED;
        if (needed != nullptr && begin < end && consolidation_needed(end - begin, item))
            return CONSOLIDATE;
        start = down ? std::min(start, item->address_) : std::max(start, item->end_);
        return NEXT;
    };
    const auto& contents = range->contents();
    OUTCOME outcome = NEXT;
    if (down)
        for (auto it = contents.rbegin(); outcome == NEXT && it != contents.rend(); ++it)
            outcome = pass(*it);
    else
        for (auto it = contents.begin(); outcome == NEXT && it != contents.end(); ++it)
            outcome = pass(*it);
    if (outcome == CONSOLIDATE) *needed = true;
    if (outcome != NEXT) return outcome == PLACED;
    return down ? try_hole(final, start, true) : try_hole(start, final, true);
}

/// The least length of a hole in which an attempt can succeed.
uint64_t LOCATOR::smallest_hole() {
    if (is_split()) return 1;
    if (!object_->is_collection()) return object_->size();
    bool laid_out = static_cast<COLLECTION*>(object_)->layout_locator() != nullptr;
    return std::max<uint64_t>(1, laid_out ? object_->size() : object_->est_size_min());
}

/// What the start of an attempt in a hole is a multiple of.
uint64_t LOCATOR::alignment_in_hole() const {
    return has_flag(LF_ALIGN) && align_ >= 2 && !is_split() ? align_ : 1;
}

/// The same search by the index of holes: one step per hole in which an attempt may succeed.
bool LOCATOR::search_holes(MEMORY_RANGE* range, MEMORY_RANGE* trial, uint64_t start, uint64_t final,
                           bool* needed) {
    auto try_hole = [&](const HOLE& hole) {
        trial->set_subrange_endpoints(hole.start, hole.end);
        return attempt_placement(trial);
    };
    /// Holes of [from, to) that the search has left behind would have been failed attempts.
    auto must_consolidate = [&](uint64_t from, uint64_t to) {
        if (needed == nullptr || !passes_large_gap(range, from, to, is_highest())) return false;
        *needed = true;
        return true;
    };
    HOLE hole;
    if (has_flag(LF_SPECIFIC)) {
        // Only the hole around the address is tried, and only its part from there on counts.
        start = std::max(start, specific_address());
        return range->first_hole(start, final, 1, 1, &hole) && hole.start == specific_address() &&
               try_hole(hole);
    }
    uint64_t length = smallest_hole();
    if (is_highest()) {
        while (range->last_hole(final, start, length, &hole)) {
            if (must_consolidate(hole.end, start)) return false;
            if (try_hole(hole)) return true;
            if (must_consolidate(hole.start, hole.end)) return false;
            start = hole.start;
        }
        if (!must_consolidate(final, start)) note_attempt_in_vain(range);
        return false;
    }
    const uint64_t low = start;
    while (range->first_hole(start, final, length, alignment_in_hole(), &hole)) {
        if (must_consolidate(start, hole.start)) return false;
        if (try_hole(hole)) return true;
        if (must_consolidate(hole.start, hole.end)) return false;
        start = hole.end;
    }
    if (must_consolidate(start, final)) return false;
    // Members of size 0 of what is split need no room behind what is there.
    const LOCATOR_SET& contents = range->contents();
    const uint64_t behind = contents.empty() ? low : (*contents.rbegin())->end_;
    if (is_split() && behind == final && try_hole({final, final})) return true;
    note_attempt_in_vain(range);
    return false;
}

/// No hole was worth an attempt. The plain walk would have made one, and a collection has its
/// members sorted by the first.
void LOCATOR::note_attempt_in_vain(const MEMORY_RANGE* range) {
    if (attempts_ != 0 || !object_->is_collection()) return;
    if (!range->is_temp_layout()) ++attempts_;
    prepare_collection();
}

/// Settles the start of the object within the trial, which shrinks to the part from there on.
bool LOCATOR::settle_start(MEMORY_RANGE* trial) {
    uint64_t start = trial->origin();
    if (has_flag(LF_SPECIFIC)) {
        start = specific_address();
        set_flag(LF_SPECIFIC_TRIED);
        if (align(start) != start)
            DIAG_REPORT_AT(position(), elnk_place_specific_override_align, start, align_,
                           object_->name());
    } else {
        start = align(start);
        if (has_flag(LF_BLOCK) && blocking() >= 2) start = block(start, object_->size());
        if (start < trial->origin()) return false;
    }
    if (start > trial->end()) return false;
    trial->set_subrange_endpoints(start, trial->end());
    return true;
}

/// Sub-items exist and stand in their order.
void LOCATOR::prepare_collection() {
    if (sub_items().empty()) extract_subitems();
    if (attempts_ <= 1) sort_subitems();
}

bool LOCATOR::attempt_placement(MEMORY_RANGE* trial) {
    if (has_flag(LF_SPECIFIC) && !trial->holds(specific_address())) return false;
    if (has_flag(LF_POWER2)) pre_place_p2align();
    if (!trial->is_temp_layout()) ++attempts_;
    if (attempts_ > 1 && has_flag(LF_ONE_ATTEMPT)) return false;
    trial->clear_contents();
    if (!is_split()) clear_pending_items(); // a split one keeps those of the holes before

    COLLECTION* collection = object_->is_collection() ? static_cast<COLLECTION*>(object_) : nullptr;
    if (collection != nullptr) prepare_collection();
    if (is_split() && object_->size() == 0) clear_flag(LF_SPLIT); // there is nothing to spread
    if (is_split())
        return has_flag(LF_BLOCK) ? place_blocked_split_collection(trial)
                                  : place_split_collection(trial);
    if (!settle_start(trial)) return false;
    if (collection == nullptr) {
        if (!fit_into_subrange(trial)) return false;
        commit(trial->parent());
        if (!reserve_trampolines()) {
            uncommit();
            return false;
        }
        prune_trampolines();
        return true;
    }
    return collection->layout_locator() != nullptr ? place_duplicate(trial)
                                                   : place_collection(trial);
}

/// Holes shorter than this are filled with reserved trampolines from the low end.
static uint64_t trampoline_spacing() {
    constexpr uint64_t DEFAULT_SPACING = 16384;
    return global_opts->isopt(OPT_trampoline_min_spacing)
               ? global_opts->getnumarg(OPT_trampoline_min_spacing)
               : DEFAULT_SPACING;
}

bool LOCATOR::fit_into_subrange(MEMORY_RANGE* trial) {
    uint64_t size = object_->size();
    if (size > trial->length()) return false;
    uint64_t start = trial->origin();
    // Reserved trampolines gather at the top of large holes and leave small ones whole.
    const bool low_end = has_flag(LF_TRAMP_RES) && trial->length() < trampoline_spacing();
    if (is_highest() && !low_end) start = std::max(start, align_down(trial->end() - size, size));
    set_extent(start, start + size);
    return true;
}

// ---- commit and undo --------------------------------------------------------------------------

void LOCATOR::update_range(MEMORY_RANGE* range) {
    range_ = range;
    for (LOCATOR* sub : sub_items())
        if (!stands_aside(sub) || !sub->has_range_of_its_own()) sub->update_range(range);
    for (LOCATOR* item : pending_items())
        if (item->is_placed()) item->update_range(range);
}

void LOCATOR::commit(MEMORY_RANGE* range) {
    bool in_root = is_placed() && range_ != nullptr && range_->parent() == nullptr;
    if (is_virtual() && in_root && !range_->is_temp_layout()) return;
    range->add_item(this, false);
    update_range(range);
    set_flag(LF_PLACED | LF_COMPLETE);
    if (range->parent() != nullptr) return;
    add_pending_items_to_object();
    commit_final();
}

/// The placement stands: collections learn of it, members first.
void LOCATOR::commit_final() {
    if (more_ == nullptr) return; // placed without ever having had sub-items: no collection
    sort_by_address(more_->sub_items);
    for (LOCATOR* sub : sub_items()) sub->commit_final();
    object_->update_upon_placement();
}

/// Is this alone in a virtual range?
bool LOCATOR::has_range_of_its_own() const {
    return is_virtual() && range_ != nullptr && range_->parent() == nullptr &&
           range_->is_hidden() && !range_->is_temp_layout();
}

/// What stands aside may be put elsewhere by the next attempt; the range is nobody's room then.
void LOCATOR::leave_range_of_its_own() {
    if (!has_range_of_its_own() || !range_->contents().contains(this)) return;
    range_->remove_item(this, false);
    range_->set_subrange_endpoints(range_->origin(), range_->origin());
}

/// The flags and the range of what lies below, without a word to the range.
void LOCATOR::forget_placement() {
    leave_range_of_its_own();
    range_ = nullptr;
    clear_flag(LF_PLACED | LF_COMPLETE);
    if (more_ != nullptr) more_->unplaced.clear();
    for (LOCATOR* sub : sub_items()) sub->forget_placement();
    if (is_run_or_both()) {
        clear_pending_items();
        detach_call_sites();
        if (object_->padding() != nullptr) object_->detach_padding();
    }
}

void LOCATOR::uncommit() {
    if (is_placed()) {
        if (range_ != nullptr) range_->remove_item(this, false);
    } else {
        for (LOCATOR* sub : sub_items())
            if (sub->is_placed()) sub->uncommit();
    }
    forget_placement();
}
