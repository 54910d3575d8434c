// See the header. Kinds of objects that have a place of their own in the order are taken out into
// buckets; the others are sorted by the comparison and, where constraints exist, by the graph.
// Members of an output section mostly need neither.
//
// A comparison sort alone gives the order where no constraints exist; the graph costs a step per
// pair and is built only for what a comparison can't express.
#include "ELFLNK/placement/order/worklist.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "DIAG/elnk_msgs.h"
#include "DIAG/source_position.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/object/linker_object.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/placement/order/member_order.h"
#include "ELFLNK/placement/order/priority_dag.h"
#include "ELFLNK/placement/placement.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OPTIONGEN/option_obj.h"

namespace {

/// The order in which the buckets stand at the end.
enum BUCKET { SPECIFIC, MAIN, LAST, COPY_TABLES, EXIDX, DYNAMIC, VIRTUAL, BUCKETS };

BUCKET bucket_of(const LOCATOR* locator) {
    const LINKER_OBJECT* object = locator->object();
    if (locator->has_flag(LF_SPECIFIC)) return SPECIFIC;
    if (locator->is_virtual()) return VIRTUAL;
    if (object->is_dynamic()) return DYNAMIC;
    if (object->is_copy_table()) return COPY_TABLES;
    if (object->is_exidx()) return EXIDX;
    return locator->has_flag(LF_LAST) ? LAST : MAIN;
}

using KEYS = std::vector<ORDER_KEY>;

/// Is there anything that the comparison alone doesn't respect?
bool has_constraints(const KEYS& keys) {
    const LOCATOR* carrier = nullptr;
    for (const ORDER_KEY& key : keys) {
        const LOCATOR* locator = key.locator;
        if (locator->is_run() && locator->object()->has_attr(PA_HAS_DATA)) return true;
        if (!locator->has_flag(LF_PRIORITY)) continue;
        if (carrier != nullptr && locator->priority() != carrier->priority()) return true;
        carrier = locator;
    }
    return false;
}

void add_constraints(PLACEMENT_PRIORITY_DAG& graph) {
    graph.add_run_before_load_edges();
    graph.add_user_priority_edges();
    graph.add_competing_edges();
}

void order_by_graph(KEYS& keys, const ORDER_CONTEXT& context) {
    if (!has_constraints(keys)) return;
    PLACEMENT_PRIORITY_DAG graph(context, keys);
    add_constraints(graph);
    keys = graph.order_placement_worklist(graph.find_single_root_node());
}

bool has_no_wish(const ORDER_KEY& key) {
    return !key.locator->placement_specified();
}

/// The order in which the first of the list comes out when the list is sorted anew before each, as
/// it is while an object without a wish is in it (one may be in the other buckets). The rest is
/// sorted once.
void order_by_heads(KEYS& keys, const ORDER_CONTEXT& context, bool no_wish_elsewhere) {
    PLACEMENT_PRIORITY_DAG graph(context, keys);
    add_constraints(graph);
    auto without_wish = std::ranges::count_if(keys, has_no_wish);
    std::vector<bool> taken(keys.size());
    KEYS heads;
    for (uint32_t node : graph.order_by_roots()) {
        if (!no_wish_elsewhere && without_wish == 0) break;
        if (has_no_wish(keys[node])) --without_wish;
        taken[node] = true;
        heads.push_back(keys[node]);
    }
    KEYS rest;
    for (size_t node = 0; node < keys.size(); ++node)
        if (!taken[node]) rest.push_back(keys[node]);
    order_by_graph(rest, context);
    keys = std::move(heads);
    keys.insert(keys.end(), rest.begin(), rest.end());
}

/// Without the graph: carriers of a priority by ascending number, each in front of the first
/// carrier that isn't lower. Are there any?
bool order_carriers(KEYS& keys) {
    KEYS carriers;
    for (const ORDER_KEY& key : keys)
        if (key.locator->has_flag(LF_PRIORITY)) carriers.push_back(key);
    std::stable_sort(carriers.begin(), carriers.end(), [](const ORDER_KEY& a, const ORDER_KEY& b) {
        return LOCATOR::node_priority_less(a.locator, b.locator);
    });
    for (const ORDER_KEY& carrier : carriers) {
        auto self = std::find_if(keys.begin(), keys.end(), [&](const ORDER_KEY& key) {
            return key.locator == carrier.locator;
        });
        auto target = std::find_if(keys.begin(), keys.end(), [&](const ORDER_KEY& key) {
            return key.locator->has_flag(LF_PRIORITY) && key.locator != carrier.locator &&
                   key.locator->priority() >= carrier.locator->priority();
        });
        if (target < self) std::rotate(target, self, self + 1);
        if (self < target && target != keys.end()) std::rotate(self, self + 1, target);
    }
    return !carriers.empty();
}

/// Without the graph: a run placement moves in front of the load placement of what it contains.
void order_runs_before_loads(KEYS& keys) {
    std::vector<size_t> loads;
    for (size_t i = 0; i < keys.size(); ++i) {
        const LOCATOR* locator = keys[i].locator;
        if (locator->is_load()) loads.push_back(i);
        if (!locator->is_run()) continue;
        auto found = std::find_if(loads.begin(), loads.end(), [&](size_t load) {
            return locator->object()->contains(keys[load].locator->object());
        });
        if (found == loads.end()) continue;
        auto at = keys.begin();
        auto offset = [](size_t n) { return static_cast<KEYS::difference_type>(n); };
        std::rotate(at + offset(*found), at + offset(i), at + offset(i + 1));
        for (auto moved = found; moved != loads.end(); ++moved) ++*moved;
    }
}

/// Lists are sorted again and again; each pair is told once.
void warn_of_priorities_not_honored(const LOCATOR_LIST& list) {
    auto& told = placement_state().priorities_not_honored;
    const LOCATOR* earlier = nullptr;
    for (const LOCATOR* later : list) {
        if (!later->has_flag(LF_PRIORITY)) continue;
        if (earlier != nullptr && earlier->priority() < later->priority() &&
            told.emplace(later, earlier).second)
            DIAG_REPORT_AT(later->position(), elnk_priority_not_honored, later->diag_kind(),
                           later->priority(), later->object()->name(), earlier->diag_kind(),
                           earlier->object()->name(), earlier->priority(), later->diag_kind(),
                           later->object()->name());
        earlier = later;
    }
}

bool is_debug_frame(const LOCATOR* locator) {
    constexpr std::string_view NAME = ".debug_frame";
    const SECTION* section = as_section(locator->object());
    return section != nullptr &&
           strncmp(section->original_section_name(), NAME.data(), NAME.size()) == 0;
}

bool stands_before_frame(const ORDER_KEY& a, const ORDER_KEY& b) {
    return is_debug_frame(a.locator) && is_debug_frame(b.locator) &&
           a.object->alignment() > b.object->alignment();
}

/// Objects without memory, of which only frames of debug data have an order.
bool has_no_order(const LOCATOR_LIST& list) {
    return std::ranges::all_of(list, [](const LOCATOR* locator) {
        return bucket_of(locator) == VIRTUAL && !is_debug_frame(locator);
    });
}

} // namespace

void sort_worklist(LOCATOR_LIST& list, bool use_priorities, ORDER_WATCH* watch) {
    if (use_priorities && Target->abi()->gabi_segment_mode()) return;
    if (!use_priorities && (has_no_order(list) || sort_by_size_and_name(list))) return;
    ORDER_CONTEXT context;
    KEYS bucket[BUCKETS];
    for (LOCATOR* locator : list) bucket[bucket_of(locator)].push_back(context.key_of(locator));
    for (BUCKET sorted : {MAIN, LAST, COPY_TABLES, EXIDX}) context.sort(bucket[sorted]);
    std::stable_sort(bucket[VIRTUAL].begin(), bucket[VIRTUAL].end(), stands_before_frame);

    KEYS main = std::move(bucket[SPECIFIC]);
    main.insert(main.end(), bucket[MAIN].begin(), bucket[MAIN].end());
    bool no_wish_elsewhere = false;
    if (watch != nullptr) {
        KEYS all = main;
        for (BUCKET rest : {LAST, COPY_TABLES, EXIDX, DYNAMIC, VIRTUAL}) {
            all.insert(all.end(), bucket[rest].begin(), bucket[rest].end());
            no_wish_elsewhere |= std::ranges::any_of(bucket[rest], has_no_wish);
        }
        watch->note(context, all);
        watch->note_no_order(has_no_order(list));
    }
    if (global_opts->isopt(OPT_no_placement_optimization)) {
        // Without one carrier the others stand elsewhere.
        if (order_carriers(main) && watch != nullptr) watch->forget();
        order_runs_before_loads(main);
    } else if (use_priorities && has_constraints(main)) {
        if (watch != nullptr && watch->may_stand())
            order_by_heads(main, context, no_wish_elsewhere);
        else
            order_by_graph(main, context);
    }

    list.clear();
    auto append = [&list](const KEYS& keys) {
        for (const ORDER_KEY& key : keys) list.push_back(key.locator);
    };
    append(main);
    for (BUCKET rest : {LAST, COPY_TABLES, EXIDX, DYNAMIC, VIRTUAL}) append(bucket[rest]);
    warn_of_priorities_not_honored(list);
}

void ORDER_WATCH::note(const ORDER_CONTEXT& context, const std::vector<ORDER_KEY>& keys) {
    constexpr uint32_t NOBODY = ~0U;
    const std::vector<MEMORY_RANGE*>& ranges = context.ranges();
    std::vector<uint32_t> user(ranges.size(), NOBODY); // the one set that each range is in
    may_stand_ = true;
    map_size_ = memory_map->size();
    loads_.clear();
    needs_.clear();
    for (MEMORY_RANGE* range : ranges) needs_.push_back({range, 0});
    for (const ORDER_KEY& key : keys) {
        if (key.locator->is_load()) loads_.push_back(key.locator->object());
        if (key.locator->has_flag(LF_SPECIFIC | LF_VIRTUAL)) continue;
        for (uint32_t i : context.ranges_of(key)) {
            if (user[i] != NOBODY && user[i] != key.use_set) may_stand_ = false;
            user[i] = key.use_set;
            needs_[i].size = std::max(needs_[i].size, key.size);
        }
    }
    std::erase_if(needs_, [](const NEED& need) { return need.size == 0; });
}

bool ORDER_WATCH::stands_after(const LOCATOR* placed) const {
    if (no_order_) return true;
    if (!may_stand_ || memory_map->size() != map_size_) return false;
    const LINKER_OBJECT* object = placed->object();
    if (placed->is_run() &&
        std::any_of(loads_.begin(), loads_.end(),
                    [object](const LINKER_OBJECT* load) { return object->contains(load); }))
        return false;
    return std::all_of(needs_.begin(), needs_.end(),
                       [](const NEED& need) { return need.range->unused() >= need.size; });
}
