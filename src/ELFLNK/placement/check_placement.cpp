// What holds between the phases of placement, checked in builds that check themselves: objects lie
// in their ranges and in what contains them, apart from each other but for overlays, aligned and
// blocked as they must be, with the extent of their size; and nothing waits any more.
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/placement/placement.h"

namespace {

class CHECKER {
  public:
    void check_range(MEMORY_RANGE* range) {
        range_ = range;
        uint64_t end = range->origin();
        for (LOCATOR* item : range->contents()) {
            if (item->address() < range->origin() || item->end_address() > range->end())
                fail(item, "lies outside of the range");
            if (covers_memory(item)) {
                if (item->address() < end && !shares_addresses(item))
                    fail(item, "overlaps what is in front of it");
                end = std::max(end, item->end_address());
            }
            check_item(item, true);
        }
    }

  private:
    [[noreturn]] void fail(const LOCATOR* item, const char* what) const {
        std::fprintf(stderr,
                     "placement of \"%s\" %sat [0x%lx, 0x%lx) in range %s, phase %d: it %s\n",
                     item->object()->name(), item->diag_kind(), item->address(),
                     item->end_address(), range_->name(), placement_state().phase + 1, what);
        std::abort();
    }

    static bool shares_addresses(const LOCATOR* item) {
        const COLLECTION* parent = item->object()->parent();
        return parent != nullptr && parent->kind() == COLLECTION_UNION;
    }

    /// An empty object takes no room from anybody, though there may be gaps in it.
    static bool covers_memory(const LOCATOR* item) {
        if (item->sub_items().empty()) return item->address() != item->end_address();
        return std::any_of(item->sub_items().begin(), item->sub_items().end(), covers_memory);
    }

    /// A piece of what was split as part of a larger object, and is loaded at an address of its
    /// own.
    static bool has_address_of_container(const LOCATOR* item) {
        const COLLECTION* above = item->object()->parent();
        const LOCATOR* load = above != nullptr ? above->load_locator() : nullptr;
        return item->is_load() && load != nullptr && load->has_flag(LF_SPECIFIC);
    }

    /// `aligned`: nothing around the item was put where its alignment counts for nothing.
    void check_item(LOCATOR* item, bool aligned) {
        if (!item->is_placed() || !item->is_complete()) fail(item, "is placed in part");
        if (item->has_pending_items()) fail(item, "has items that wait");
        if (item->has_flag(LF_TRAMP_RES)) fail(item, "is a reserved trampoline");
        // A power of two may be known only once what contains the item has its place.
        aligned &= !item->has_flag(LF_SPECIFIC | LF_POWER2) && !has_address_of_container(item) &&
                   !(item->is_highest() && item->has_flag(LF_BLOCK | LF_TRAMP_RES));
        if (aligned && item->align(item->address()) != item->address())
            fail(item, "is not aligned");
        LINKER_OBJECT* object = item->object();
        const uint64_t size = item->end_address() - item->address();
        if (!object->is_collection()) {
            if (size != object->size()) fail(item, "has another size");
            if (aligned && !item->is_highest() && item->is_run_or_both() &&
                item->block(item->address(), size) != item->address())
                fail(item, "crosses a block");
            return;
        }
        if (item->is_run_or_both() && !item->is_split() && size != object->size())
            fail(item, "has another size than its members");
        check_members(item, aligned);
    }

    void check_members(LOCATOR* item, bool aligned) {
        LOCATOR_LIST members;
        for (LOCATOR* sub : item->sub_items())
            if (!sub->is_virtual()) members.push_back(sub);
        LOCATOR::sort_by_address(members);
        uint64_t end = item->address();
        for (LOCATOR* sub : members) {
            check_item(sub, aligned && item->is_run_or_both()); // a load image is a copy
            if (!covers_memory(sub)) continue;
            if (sub->address() < item->address() || sub->end_address() > item->end_address())
                fail(sub, "lies outside of what contains it");
            if (sub->address() < end && !shares_addresses(sub))
                fail(sub, "overlaps the member in front of it");
            end = std::max(end, sub->end_address());
        }
    }

    const MEMORY_RANGE* range_ = nullptr;
};

} // namespace

void check_placement() {
    CHECKER checker;
    for (MEMORY_RANGE* range : *memory_map)
        if (!range->is_hidden()) checker.check_range(range);
    const PLACEMENT_STATE& state = placement_state();
    if (state.worklist[state.phase].empty()) return;
    std::fprintf(stderr, "\"%s\" is left in the worklist of phase %d\n",
                 state.worklist[state.phase].front()->object()->name(), state.phase + 1);
    std::abort();
}
