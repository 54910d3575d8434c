// The size model: a placed or laid out collection has the extent of its locator; any other the sum
// (a UNION the maximum) of its members, each with the worst pad that its alignment can cost.
//
// Sizes are kept until something below changes. Where members were only added, the sum so far
// stays and the new ones join it when the size is next asked for.
#include <algorithm>

#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/memory_range.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/target/target.h"
#include "UTIL/prefetch.h"

uint64_t COLLECTION::size() {
    update_size();
    return size_;
}

uint64_t COLLECTION::est_size_min() {
    update_size();
    return est_size_min_;
}

/// The members stand where they stand: the extent of the locator is the size.
void COLLECTION::update_upon_placement() {
    flush_size();
    update_size();
}

void COLLECTION::flush_size() {
    for (COLLECTION* c = this; c != nullptr; c = c->parent()) {
        c->size_valid_ = false;
        c->sum_valid_ = false;
        c->unsummed_.clear();
    }
}

void COLLECTION::note_added(LINKER_OBJECT* obj) {
    size_valid_ = false;
    if (sum_valid_) unsummed_.push_back(obj);
    if (parent() != nullptr) parent()->flush_size();
}

void COLLECTION::set_valid_size(uint64_t size, uint64_t est) {
    size_ = size;
    est_size_min_ = est;
    size_valid_ = true;
}

void COLLECTION::set_fixed_min_size(uint64_t size) {
    has_fixed_min_size_ = true;
    fixed_min_size_ = size;
    size_ = std::max(size_, size);
    est_size_min_ = std::max(est_size_min_, size);
}

LOCATOR* COLLECTION::layout_locator() const {
    for (LOCATOR* locator : {alt_run_locator(), run_locator(), load_locator()})
        if (locator != nullptr && locator->has_flag(LF_PLACED | LF_PRE_PLACED) &&
            !locator->is_split())
            return locator;
    return nullptr;
}

namespace {

/// The run locator stands in a range of the user's memory.
bool placed_in_memory(const LOCATOR* run) {
    return run != nullptr && run->is_placed() && run->range() != nullptr &&
           run->range()->alias() == nullptr && !run->range()->is_hidden();
}

} // namespace

void COLLECTION::update_size() {
    if (size_valid_) return;
    const LOCATOR* layout = layout_locator();
    if (layout == nullptr && placed_in_memory(run_locator())) layout = run_locator();
    if (layout != nullptr) {
        const uint64_t extent = layout->end_address() - layout->address();
        set_valid_size(extent, extent);
        return;
    }
    sum_members();
    uint64_t size = sum_.size;
    uint64_t est = sum_.est;
    Target->update_size(this, size, est);
    if (has_fixed_min_size_) {
        size = std::max(size, fixed_min_size_);
        est = std::max(est, fixed_min_size_);
    }
    set_valid_size(size, est);
}

void COLLECTION::sum_members() {
    // A copy: a dot expression that turns out to be empty leaves the tree while it is asked.
    std::vector<LINKER_OBJECT*> walk;
    if (sum_valid_) {
        walk.swap(unsummed_);
    } else {
        sum_ = {};
        walk.assign(members().begin(), members().end());
    }
    sum_valid_ = true;
    visit_ahead(walk, prefetch<LINKER_OBJECT>, [this](LINKER_OBJECT* member) {
        if (!has_attr(PA_ALLOCATED) || member->has_attr(PA_ALLOCATED)) add_to_sum(member);
    });
    sum_valid_ = true; // a member that left while it was asked had no size to add
    unsummed_.clear();
}

void COLLECTION::add_to_sum(LINKER_OBJECT* member) {
    const uint64_t est = member->est_size_min();
    uint64_t size = member->size();
    const LOCATOR* run = member->run_locator();
    if (run != nullptr && run->alignment() > 0) size += run->alignment() - 1;
    if (kind() == COLLECTION_UNION) {
        sum_.est = std::max(sum_.est, est);
        sum_.size = std::max(sum_.size, size);
    } else {
        sum_.est += est;
        sum_.size += size;
    }
}
