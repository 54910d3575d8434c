// The phase itself: the analysis, the three worklists, and what happens between them.
#include "ELFLNK/placement/placement.h"

#include <algorithm>
#include <cstdio>

#include "DIAG/elnk_msgs.h"
#include "DIAG/source_position.h"
#include "ELFLNK/compress/compress_db.h"
#include "ELFLNK/crc/crc_table.h"
#include "ELFLNK/exidx/exidx.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/placement/fill/fill.h"
#include "ELFLNK/placement/order/callgraph_order.h"
#include "ELFLNK/placement/order/preferred_order.h"
#include "ELFLNK/placement/order/worklist.h"
#include "ELFLNK/table/copy_table_db.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "ELFLNK/trampoline/trampoline.h"
#include "OPTIONGEN/option_obj.h"
#include "OPTIONGEN/register_option.h"
#include "UTIL/checks.h"
#include "UTIL/trace.h"

static register_option debug_map("debug:map");

PLACEMENT_STATE& placement_state() {
    static PLACEMENT_STATE state;
    return state;
}

namespace {

bool is_aliased(const MEMORY_RANGE* range) {
    return range->alias() != nullptr && range->alias() != range;
}

void analyze_tree() {
    // Analysis may not change the root's members; set_placement_attributes may.
    const MEMBER_LIST members = root_collection->members();
    for (LINKER_OBJECT* member : members) {
        if (COLLECTION* collection = as_collection(member)) collection->set_placement_attributes();
        analyze_object(member, nullptr, nullptr);
    }
}

void place_phase(int phase) {
    PLACEMENT_STATE& state = placement_state();
    state.phase = phase;
    place_worklist(state.worklist[phase]);
    if constexpr (CHECKS_ENABLED) check_placement();
}

/// The other address of an object that stands in the first range of an ALIAS pair. If the user
/// asked for the other window, the run address is there. Of an empty object nothing is loaded.
void place_alternate(LOCATOR* locator, const MEMORY_RANGE* range, const MEMORY_RANGE* alias) {
    LINKER_OBJECT* object = locator->object();
    bool moved = locator->has_flag(LF_ALIAS_MOVED);
    if (locator->is_load() || locator->is_both()) {
        if (object->size() == 0) return;
        DIAG_REPORT_AT(locator->position(), elnk_alias_no_load,
                       moved ? range->name() : alias->name(), object->name());
        return;
    }
    auto* other = new LOCATOR(LOCATOR_KIND::RUN_ALT, object);
    other->add_specific(locator->address() + (range->origin() - alias->origin()));
    if (moved) {
        locator->convert_run_loc_to_alt_run();
        other->set_kind(LOCATOR_KIND::RUN);
        other->set_flag(LF_ALIAS_MOVED);
    }
    object->add_locator(other);
    other->place_object();
}

void place_in_both_windows() {
    for (MEMORY_RANGE* range : *memory_map) {
        if (!is_aliased(range)) continue;
        const LOCATOR_LIST standing(range->alias()->contents().begin(),
                                    range->alias()->contents().end());
        for (LOCATOR* locator : standing) place_alternate(locator, range, range->alias());
    }
}

void place_phase_3() {
    PLACEMENT_STATE& state = placement_state();
    state.phase = PLACEMENT_PHASE_3;
    LOCATOR_LIST list;
    list.swap(state.worklist[2]);
    sort_worklist(list, false);
    for (LOCATOR* locator : list) locator->place_object();
    if constexpr (CHECKS_ENABLED) check_placement();
}

} // namespace

/// Must the rest of the list be sorted again, now that `placed` is out of it?
static bool must_sort_again(LOCATOR* placed, const LOCATOR_LIST& rest, const ORDER_WATCH& watch) {
    if (watch.stands_after(placed)) return false;
    if (!placed->placement_specified()) return true;
    return std::any_of(rest.begin(), rest.end(),
                       [placed](LOCATOR* other) { return placed->competes_for_range_vs(other); });
}

// While the list is worked through, its head stands at the end of the vector.
void place_worklist(LOCATOR_LIST& list) {
    bool any_alias = std::any_of(memory_map->begin(), memory_map->end(), is_aliased);
    ORDER_WATCH watch;
    bool sort = true;
    std::reverse(list.begin(), list.end());
    while (!list.empty()) {
        if (sort || any_alias) {
            std::reverse(list.begin(), list.end());
            sort_worklist(list, true, &watch);
            std::reverse(list.begin(), list.end());
        }
        LOCATOR* locator = list.back();
        list.pop_back();
        locator->place_object();
        sort = must_sort_again(locator, list, watch);
    }
    generate_trampolines();
}

void LOCATOR::remove_locator(LOCATOR* locator) {
    for (int phase : {PLACEMENT_PHASE_1, PLACEMENT_PHASE_2})
        std::erase(placement_state().worklist[phase], locator);
}

void placement() {
    trace_placement.printf("\n\nPLACEMENT PHASE:\n\n");
    build_tramp_call_graph();
    if (global_opts->isopt(OPT_minimize_trampolines)) DFS_VISITOR().callgraph_traversal();
    Target->visit_callgraph();
    assign_preferred_order();
    analyze_tree();
    // Every locator that stands on its own is in the worklist of its phase.
    place_phase(PLACEMENT_PHASE_1);
    COLLECTION::split_outsects();
    place_in_both_windows();
    global_copy_table_db->split();
    global_compress_db->process_compressed_sections();
    global_crc_table_db->split();
    // The output sections are final; objects that describe them can be sized.
    place_phase(PLACEMENT_PHASE_2);
    place_phase_3();
    // Every object has an address.
    EXIDX::settle_tables();
    fill_holes();
    if constexpr (CHECKS_ENABLED) check_calls_reach();
    Target->abi()->update_upon_placement();
    if (debug_map != 0) {
        printf("\n\nMEMORY MAP AFTER PLACEMENT:\n\n");
        memory_map->dump();
    }
}
