// Pads behind members of an output section, and other objects that appear while a placement is
// still tentative. They wait as pending items of the locator and enter the tree when it is final.
#include <algorithm>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/fill_spec.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/object/space.h"
#include "ELFLNK/placement/order/worklist.h"
#include "ELFLNK/placement/placement.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "UTIL/narrow.h"

namespace {

uint64_t round_down(uint64_t addr, uint64_t n) {
    return n >= 2 ? addr - addr % n : addr;
}

bool is_split(const LOCATOR* locator) {
    return locator != nullptr && locator->is_split();
}

} // namespace

bool LOCATOR::reserve_space_for_padding(MEMORY_RANGE* trial) {
    uint64_t end = round_down(trial->end(), Target->required_alignment(object_));
    uint64_t amount = Target->abi()->pad_size(this) + (trial->end() - end);
    return fits<uint32_t>(amount) && trial->reserve(static_cast<uint32_t>(amount));
}

void LOCATOR::unreserve_space_for_padding(MEMORY_RANGE* trial) {
    trial->unreserve();
}

bool LOCATOR::add_padding_to_subitems(MEMORY_RANGE* trial) {
    if (has_flag(LF_SPLIT_FAILED) || !is_run_or_both() || !object_->is_output_section() ||
        sub_items().empty())
        return true;
    // Nothing to add: the usual case, and no reason to look at the members.
    if (Target->abi()->pad_size(this) == 0 && Target->required_alignment(object_) < 2) return true;
    if (is_split() || ::is_split(object_->load_locator())) {
        const LOCATOR_LIST items(trial->contents().begin(), trial->contents().end());
        for (size_t i = 0; i < items.size(); ++i) {
            uint64_t bound = i + 1 < items.size() ? items[i + 1]->address_ : trial->end();
            if (!add_padding_to_one_subitem(items[i], bound)) return false;
        }
    } else {
        LOCATOR* lowest;
        LOCATOR* highest;
        subitem_extremities(lowest, highest);
        if (highest != nullptr && !add_padding_to_one_subitem(highest, trial->end())) return false;
    }
    sort_worklist(edit_sub_items(), false);
    return true;
}

bool LOCATOR::add_padding_to_one_subitem(LOCATOR* item, uint64_t bound) {
    uint64_t pad = item->object_->has_attr(PA_PADDED) ? 0 : Target->abi()->pad_size(this);
    uint64_t target = item->end_ + pad;
    uint64_t alignment = Target->required_alignment(object_);
    if (alignment > 1) target = align(target, alignment);
    if (target == item->end_) return true;
    if (target > item->range_->end()) return false;
    target = std::min(target, bound);
    if (target == item->end_) return true;
    LINKER_OBJECT* object = create_padding_object(item, target - item->end_);
    LOCATOR* place = object->run_locator();
    if (!place->insert_into_range(item->range_)) return false;
    add_pending_item(place);
    item->object_->attach_padding(object);
    return true;
}

LINKER_OBJECT* LOCATOR::create_padding_object(LOCATOR* item, uint64_t size) {
    FILL_SPEC* fill = FILL_SPEC::get_required_pad_fill(as_collection(object_));
    if (fill == nullptr) fill = object_->fill();
    if (fill == nullptr) fill = FILL_SPEC::default_fill();
    auto* pad = new SPACE("<pad>", size);
    pad->override_fill(fill);
    pad->set_attr(PA_PADDED | (item->object_->attrs() & PA_EXEC));
    auto* place = new LOCATOR(kind_, pad);
    place->min_address_ = item->end_;
    pad->add_locator(place);
    LOCATOR* load = object_->load_locator();
    if (!is_both() && load != nullptr && load != this) {
        auto* pad_load = new LOCATOR(LOCATOR_KIND::LOAD, pad);
        pad_load->merge(load);
        pad->add_locator(pad_load);
        load->drop_sub_items();
    }
    return pad;
}

void LOCATOR::add_pending_items_to_object() {
    if (more_ == nullptr) return; // no sub-items either
    if (has_pending_items() && placement_state().phase == PLACEMENT_PHASE_3)
        DIAG_REPORT(elnk_pending_items_in_phase3, object_->name());
    COLLECTION* collection = as_collection(object_);
    if (collection == nullptr) return;
    for (LOCATOR* sub : sub_items()) sub->add_pending_items_to_object();
    LOCATOR* load = object_->load_locator();
    for (LOCATOR* item : pending_items()) {
        if (!item->is_placed()) continue; // dropped since it was made
        collection->add_member(item->object_, false);
        edit_sub_items().push_back(item);
        LOCATOR* item_load = item->object_->load_locator();
        if (item_load != nullptr && load != nullptr && !load->sub_items().empty())
            load->edit_sub_items().push_back(item_load);
    }
    clear_pending_items();
}

/// Takes what is pending out of its range again.
void LOCATOR::unreserve_pending_objects() {
    for (LOCATOR* item : pending_items()) item->uncommit();
    clear_pending_items();
}

void LOCATOR::bind_padding_to_subobjects() {
    if (!is_load() || !is_split() || !object_->is_collection()) return;
    if (is_virtual()) return; // what found room keeps it, and its sub-items
    LOCATOR* run = object_->run_locator();
    if (run == nullptr || !run->is_run() || !run->is_complete()) return;
    const MEMBER_LIST members = as_collection(object_)->members();
    for (LINKER_OBJECT* member : members) {
        const LINKER_OBJECT* pad = member->padding();
        if (pad != nullptr && member->is_placed() && pad->is_placed()) bind_pad(member, run);
    }
    drop_sub_items();
}

/// Member and pad become one GROUP that a split of the load image can't part.
void LOCATOR::bind_pad(LINKER_OBJECT* member, LOCATOR* run) {
    LINKER_OBJECT* pad = member->padding();
    LOCATOR* first = member->run_locator();
    LOCATOR* second = pad->run_locator();
    COLLECTION* collection = as_collection(object_);
    MEMORY_RANGE* range = first->range_;
    auto* group = new COLLECTION(member->name(), COLLECTION_GROUP);
    for (LINKER_OBJECT* part : {member, pad}) {
        std::erase(run->edit_sub_items(), part->run_locator());
        if (range != nullptr) range->remove_item(part->run_locator(), false);
        collection->remove_member(part);
        group->add_member(part);
    }
    group->set_attr(PA_NOSPLIT);
    collection->add_member(group);
    auto* bound = new LOCATOR(*first);
    bound->drop_sub_items();
    bound->set_extent(first->address_, second->end_);
    group->add_locator(bound);
    if (const LOCATOR* load = member->load_locator()) {
        auto* bound_load = new LOCATOR(*load);
        bound_load->drop_sub_items();
        group->add_locator(bound_load);
    }
    bound->extract_subitems();
    run->edit_sub_items().push_back(bound);
    if (range != nullptr) range->add_item(bound, false);
}

// ---- objects that appear after the layout -----------------------------------------------------

void LOCATOR::place_subitem(LINKER_OBJECT* object, uint64_t start, uint64_t end) {
    auto* item = new LOCATOR(kind_, object);
    item->set_extent(start, end);
    item->set_flag(LF_PLACED | LF_COMPLETE);
    item->range_ = range_;
    object->add_locator(item);
    LOCATOR_LIST& items = own_more().sub_items;
    if (!items.empty() && less_by_address(item, items.back())) sub_items_unsorted_ = true;
    items.push_back(item);
}

bool LOCATOR::place_hole(LINKER_OBJECT* object, uint64_t start, uint64_t end) {
    if (!is_placed()) return false;
    place_subitem(object, start, end);
    return true;
}

bool LOCATOR::commit_specific_fill_sect() {
    if (!has_flag(LF_SPECIFIC) || !object_->is_collection()) return false;
    MEMORY_RANGE* range = memory_map->lookup_by_addr(specific_address(), effective_page());
    if (range == nullptr) return false;
    MEMORY_RANGE trial(range);
    trial.set_subrange_endpoints(specific_address(), specific_address() + object_->size());
    return attempt_placement(&trial);
}
