// How the members of a collection are laid out inside the trial range that the search has cut to a
// hole: an ordered collection member by member, each at or above the end of the one before; an
// unordered one by first fit in the order of the worklist; a UNION with all members at the start.
//
// A collection is laid out once. Its second placement (the load image of what runs elsewhere, or
// the final one of what was laid out beforehand) copies the relative addresses of the first.
#include <algorithm>
#include <bit>
#include <utility>

#include "DIAG/elnk_msgs.h"
#include "DIAG/source_position.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/memory_range.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/object/load_segment.h"
#include "ELFLNK/object/space.h"
#include "ELFLNK/placement/order/worklist.h"
#include "ELFLNK/placement/placement.h"
#include "ELFLNK/trampoline/trampoline.h"
#include "UTIL/prefetch.h"

namespace {

LOCATOR* locator_of_kind(const LINKER_OBJECT* object, LOCATOR_KIND kind) {
    switch (kind) {
    case LOCATOR_KIND::RUN_ALT:
        return object->alt_run_locator();
    case LOCATOR_KIND::LOAD:
        return object->load_locator();
    case LOCATOR_KIND::RUN:
    case LOCATOR_KIND::BOTH:
        break;
    }
    return object->run_locator();
}

/// Wishes of a member of a placed collection don't count.
constexpr uint32_t WISHES = LF_PLACEMENT_MASK | LF_PRIORITY | LF_HIGHEST | LF_SPLIT;
static_assert(WISHES == 0x10409E);

bool takes_no_memory_of(const LINKER_OBJECT* member, const LINKER_OBJECT* collection) {
    return collection->has_attr(PA_ALLOCATED) && !member->has_attr(PA_ALLOCATED);
}

} // namespace

// ---- sub-items --------------------------------------------------------------------------------

void LOCATOR::extract_subitems() {
    COLLECTION* collection = as_collection(object_);
    if (collection == nullptr || !sub_items().empty()) return;
    LOCATOR_LIST& items = edit_sub_items();
    items.reserve(collection->members().size());
    visit_ahead(collection->members(), prefetch<LINKER_OBJECT>, [&](LINKER_OBJECT* member) {
        if (is_load() && is_split() && !member->has_attr(PA_HAS_DATA)) return;
        LOCATOR* sub = locator_of_kind(member, kind_);
        bool no_memory = takes_no_memory_of(member, object_);
        if (sub == nullptr && is_load() && no_memory) return; // loaded where it runs
        if (sub == nullptr) {
            sub = new LOCATOR(kind_, member);
            member->add_locator(sub);
        } else if (member->has_attr(PA_ALLOCATED) && !sub->placement_specified()) {
            sub->kind_ = kind_;
            member->add_locator(sub);
        }
        sub->clear_flag(WISHES);
        if (is_split() && member->is_collection() && !member->has_attr(PA_NOSPLIT))
            sub->set_flag(LF_SPLIT);
        sub->set_flag(flags_ & (LF_VIRTUAL | LF_BEHIND_LAST));
        if (no_memory) sub->set_flag(LF_VIRTUAL);
        sub->analyze();
        items.push_back(sub);
    });
}

void LOCATOR::sort_subitems() {
    if (is_ordered() && !(is_load() && object_->run_placement_is_complete())) return;
    sort_worklist(edit_sub_items(), false);
}

void LOCATOR::subitem_extremities(LOCATOR*& lowest, LOCATOR*& highest) const {
    lowest = highest = nullptr;
    auto look_at = [&](LOCATOR* item) {
        if (!item->is_placed()) return;
        if (lowest == nullptr || item->address_ < lowest->address_) lowest = item;
        if (highest == nullptr || item->end_ > highest->end_) highest = item;
    };
    for (LOCATOR* sub : sub_items())
        if (!stands_aside(sub)) look_at(sub);
    for (LOCATOR* item : pending_items()) look_at(item);
}

// ---- the first placement ----------------------------------------------------------------------

/// The member has a range of its own, and its size is not part of the collection's.
bool LOCATOR::stands_aside(const LOCATOR* sub) const {
    return sub->is_virtual() && (!is_virtual() || takes_no_memory_of(sub->object_, object_));
}

bool LOCATOR::lay_out_aside(LOCATOR* sub) {
    MEMORY_RANGE aside("TEMP_LAYOUT_RANGE", 0, no_limit,
                       MEMORY_RANGE::ATTR_HIDDEN | MEMORY_RANGE::ATTR_TEMP_LAYOUT);
    bool placed = sub->insert_into_range(&aside);
    sub->update_range(nullptr);
    aside.clear_contents();
    return placed;
}

bool LOCATOR::place_member(LOCATOR* sub, MEMORY_RANGE* trial, uint64_t& cursor) {
    const bool is_dot = sub->object_->is_dot_expression();
    if (is_ordered()) sub->min_address_ = cursor;
    if (is_dot) assign_to_dot(sub, cursor);
    if (stands_aside(sub)) {
        if (trial->is_temp_layout()) return lay_out_aside(sub);
        uint64_t place = cursor;
        if (is_overlay()) place = std::max(trial->origin(), min_address_);
        if (is_highest()) place = std::min(trial->end(), max_address());
        sub->place_virtual(place);
        return true;
    }
    if (!insert_with_retry(sub, trial)) return false;
    // Where a trampoline lies, the dot counts from behind it, as long as that is not too far.
    while (is_dot && is_ordered() && sub->address_ > cursor &&
           sub->address_ <= cursor + sub->object_->size()) {
        cursor = sub->address_;
        sub->uncommit();
        sub->min_address_ = cursor;
        assign_to_dot(sub, cursor);
        if (!insert_with_retry(sub, trial)) return false;
    }
    cursor = sub->end_;
    return true;
}

namespace {

bool holds_back_phase_2(const LINKER_OBJECT* object) {
    return object->is_load_segment() && static_cast<const LOAD_SEGMENT*>(object)->holds_back_p2();
}

} // namespace

/// The members that phase 2 places, once the others have their places: their sizes depend on them.
bool LOCATOR::place_held_back(LOCATOR_LIST& held_back, MEMORY_RANGE* trial) {
    if (held_back.empty()) return true;
    if (!is_ordered()) sort_worklist(held_back, false);
    generate_trampolines();
    int& phase = placement_state().phase;
    const int before = std::exchange(phase, static_cast<int>(PLACEMENT_PHASE_2));
    const bool placed = std::all_of(held_back.begin(), held_back.end(), [trial](LOCATOR* sub) {
        return sub->insert_into_range(trial);
    });
    phase = before;
    return placed;
}

bool LOCATOR::place_members(MEMORY_RANGE* trial) {
    uint64_t cursor = trial->origin();
    const bool holds_back = holds_back_phase_2(object_);
    LOCATOR_LIST held_back;
    const LOCATOR_LIST& subs = sub_items();
    for (size_t i = 0; i < subs.size(); ++i) {
        // They stand in the order of their sizes, and anywhere in memory.
        if (i + 8 < subs.size()) prefetch(subs[i + 8]);
        if (i + 4 < subs.size()) prefetch(subs[i + 4]->object_);
        if (holds_back && subs[i]->object_->has_attr(PA_P2_PLACEMENT))
            held_back.push_back(subs[i]);
        else if (!place_member(subs[i], trial, cursor))
            return false;
    }
    consolidate_trampolines(trial, true);
    if (!place_held_back(held_back, trial)) return false;
    if (!add_padding_to_subitems(trial)) return false;
    set_collection_endpoints();
    if (has_flag(LF_SPECIFIC_TRIED)) address_ = trial->origin();
    return trial->end() >= end_;
}

bool LOCATOR::place_collection(MEMORY_RANGE* trial) {
    if (object_->est_size_min() > trial->length()) return false;
    set_extent(trial->origin(), trial->origin());
    if (!place_members(trial)) {
        uncommit();
        return false;
    }
    commit(trial->parent());
    return true;
}

/// How far the aligned start of a collection lies below its first member. An image that is loaded
/// elsewhere begins as it does where it runs, whatever address it was given.
uint64_t LOCATOR::lead_in() const {
    const LOCATOR* run = is_load() ? object_->run_locator() : nullptr;
    if (run == nullptr || !run->is_placed()) return address_ % align_;
    LOCATOR* lowest;
    LOCATOR* highest;
    run->subitem_extremities(lowest, highest);
    return lowest != nullptr ? lowest->address_ - run->address_ : 0;
}

void LOCATOR::set_collection_endpoints() {
    LOCATOR* lowest;
    LOCATOR* highest;
    subitem_extremities(lowest, highest);
    if (lowest != nullptr) set_extent(lowest->address_, highest->end_);
    object_->clear_attr(PA_PADDED);
    if (highest != nullptr) object_->set_attr(highest->object_->attrs() & PA_PADDED);
    if (has_flag(LF_ALIGN | LF_BLOCK) && align_ >= 2) address_ -= lead_in();
    if (has_flag(LF_PALIGN)) {
        uint64_t padded = align(end_);
        if (padded != end_) object_->set_attr(PA_PADDED);
        end_ = padded;
    }
    if (is_fixed_min_size())
        end_ = std::max(end_, address_ + as_collection(object_)->fixed_min_size());
}

void LOCATOR::assign_to_dot(LOCATOR* dot, uint64_t addr) {
    if (!dot->object_->is_dot_expression()) DIAG_REPORT(elnk_lobj_wrong_type, dot->object_->name());
    auto* object = static_cast<DOT_EXPRESSION*>(dot->object_);
    if (object->expression() == nullptr) {
        object->set_dot_origin(0);
        object->set_size(0);
        return;
    }
    if (dot->is_load()) DIAG_REPORT(elnk_bad_dot_context);
    dot->set_extent(addr, addr);
    object->set_dot_origin(address_);
    uint64_t offset = addr - address_;
    // The dot is where it is for this evaluation, whatever becomes of the attempt.
    dot->set_flag(LF_COMPLETE);
    int64_t value = 0;
    bool known = object->evaluate(value);
    dot->clear_flag(LF_COMPLETE);
    if (known && value < static_cast<int64_t>(offset)) {
        if (!object->is_fault_reported())
            DIAG_REPORT_AT(&object->source_position(), elnk_dot_reduces_offset, offset,
                           static_cast<uint64_t>(value));
        object->set_fault_reported();
        known = false;
    }
    object->set_size(known ? static_cast<uint64_t>(value) - offset : 0);
    set_flag(LF_SPECIFIC_TRIED);
}

// ---- the second placement ---------------------------------------------------------------------

bool LOCATOR::place_duplicate(MEMORY_RANGE* trial) {
    const LOCATOR* layout = as_collection(object_)->layout_locator();
    if (layout == nullptr) DIAG_REPORT(elnk_place_no_existing_placement);
    uint64_t old_address = layout->address_; // the layout may be this locator's own
    if (!fit_into_subrange(trial)) return false;
    copy_layout(trial, layout, address_ - old_address);
    commit(trial->parent());
    return true;
}

void LOCATOR::copy_layout(MEMORY_RANGE* range, const LOCATOR* source, uint64_t delta) {
    if (sub_items().empty()) extract_subitems();
    for (LOCATOR* sub : sub_items()) {
        const LOCATOR* first = locator_of_kind(sub->object_, source->kind_);
        if (first == nullptr || !first->has_flag(LF_PLACED | LF_PRE_PLACED))
            DIAG_REPORT(elnk_place_no_existing_placement);
        uint64_t start = first->address_ + delta;
        if (stands_aside(sub)) {
            if (!sub->is_placed()) sub->place_virtual(start);
            continue;
        }
        sub->set_extent(start, start + sub->object_->size());
        sub->range_ = range;
        sub->set_flag(LF_PLACED | LF_COMPLETE);
        if (sub->object_->is_collection()) sub->copy_layout(range, first, delta);
        if (sub->end_ > end_) DIAG_REPORT(elnk_place_size_mismatch);
    }
}

// ---- layout before placement ------------------------------------------------------------------

void LOCATOR::pre_placement_layout() {
    const COLLECTION* collection = as_collection(object_);
    if (collection == nullptr || collection->layout_locator() != nullptr) return;
    MEMORY_RANGE layout("TEMP_LAYOUT_RANGE", 0, no_limit,
                        MEMORY_RANGE::ATTR_HIDDEN | MEMORY_RANGE::ATTR_TEMP_LAYOUT);
    if (!insert_into_range(&layout)) {
        fail_placement({}, false);
        return;
    }
    set_pre_placed();
    layout.clear_contents();
}

/// The layout stays, the range in which it was found doesn't.
void LOCATOR::set_pre_placed() {
    leave_range_of_its_own();
    set_flag(LF_PRE_PLACED);
    clear_flag(LF_PLACED | LF_COMPLETE);
    range_ = nullptr;
    for (LOCATOR* sub : sub_items()) sub->set_pre_placed();
}

void LOCATOR::pre_place_highest() {
    clear_flag(LF_HIGHEST | LF_SPLIT);
    pre_placement_layout();
    if (is_virtual()) return; // the layout failed, the object has its place
    set_flag(LF_HIGHEST);
    const COLLECTION* collection = as_collection(object_);
    if (collection == nullptr) return;
    std::vector<LINKER_OBJECT*> sections;
    collection->flatten(sections, &LINKER_OBJECT::is_section);
    for (const LINKER_OBJECT* section : sections) add_min_align(section->blocking());
}

/// Dot counts where the object runs: a load image that comes first (its run image may be part of
/// what a later phase places) copies a run image laid out for it.
void LOCATOR::pre_place_run_image() {
    const COLLECTION* collection = as_collection(object_);
    if (collection == nullptr || !collection->has_assign_to_dot_expression() ||
        collection->layout_locator() != nullptr)
        return;
    std::vector<LOCATOR*> enclosing; // innermost first
    for (const LINKER_OBJECT* above = object_->parent(); above != nullptr; above = above->parent())
        if (above->run_locator() != nullptr) enclosing.push_back(above->run_locator());
    for (auto at = enclosing.rbegin(); at != enclosing.rend(); ++at) (*at)->extract_subitems();
    LOCATOR* run = object_->run_locator();
    if (run == nullptr || run->is_placed()) return;
    const uint32_t wishes = run->flags_ & (LF_HIGHEST | LF_SPLIT);
    run->clear_flag(wishes);
    run->pre_placement_layout();
    run->set_flag(wishes);
}

void LOCATOR::pre_place_p2align() {
    COLLECTION* collection = as_collection(object_);
    if (collection == nullptr) return;
    clear_flag(LF_POWER2);
    pre_placement_layout();
    set_flag(LF_POWER2);
    uint64_t size = end_ - address_;
    if (size != 0 && size <= no_limit / 2 + 1) {
        size = std::bit_ceil(size);
        collection->set_fixed_min_size(size);
    }
    add_min_align(size);
    if (LOCATOR* load = object_->load_locator()) load->add_min_align(size);
    end_ = address_ + size;
    collection->flush_size();
    collection->update_size();
}
