// See the header: the comparison that decides which of two objects is placed first.
#include "ELFLNK/placement/order/order_key.h"

#include <algorithm>
#include <cstring>

#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/trampoline/call_info.h"
#include "OPTIONGEN/option_obj.h"

namespace {

constexpr uint64_t NOT_KNOWN = ~uint64_t{0};

int before_if(bool a_first) {
    return a_first ? -1 : 1;
}

/// The order of input sections that the user asked for.
int compare_preferred(const ORDER_KEY& a, const ORDER_KEY& b) {
    if (a.section_name == nullptr || b.section_name == nullptr || a.preferred == b.preferred)
        return 0;
    if (a.preferred == 0 || b.preferred == 0) return before_if(b.preferred == 0);
    return before_if(a.preferred < b.preferred);
}

/// Of executable objects, the linkage table goes first. It is no input section.
int compare_plt(const ORDER_KEY& a, const ORDER_KEY& b) {
    if (a.section_name != nullptr && b.section_name != nullptr) return 0;
    if (!a.object->has_attr(PA_EXEC) || !b.object->has_attr(PA_EXEC)) return 0;
    bool first = a.object->is_plt_collection();
    return first == b.object->is_plt_collection() ? 0 : before_if(first);
}

/// strcmp of the names. The name of an input section, "section:file", is made only where the
/// section names alone don't decide: there are very many of them.
int compare_names(const ORDER_KEY& a, const ORDER_KEY& b) {
    if (a.section_name != nullptr && b.section_name != nullptr) {
        const char* first = a.section_name;
        const char* second = b.section_name;
        while (*first != '\0' && *first == *second) {
            ++first;
            ++second;
        }
        if (*first != '\0' && *second != '\0')
            return static_cast<unsigned char>(*first) - static_cast<unsigned char>(*second);
    }
    return strcmp(a.object->name(), b.object->name());
}

} // namespace

ORDER_CONTEXT::ORDER_CONTEXT()
    : ranges_(memory_map->begin(), memory_map->end()),
      alphabetical_(global_opts->isopt(OPT_alphabetical_ordering)),
      by_callgraph_(global_opts->isopt(OPT_minimize_trampolines)) {
    for (const MEMORY_RANGE* range : ranges_) unused_.push_back(range->unused());
    intern({});
}

uint32_t ORDER_CONTEXT::intern(const std::vector<uint32_t>& ranges) {
    auto found = std::find(use_sets_.begin(), use_sets_.end(), ranges);
    if (found != use_sets_.end()) return static_cast<uint32_t>(found - use_sets_.begin());
    use_sets_.push_back(ranges);
    for (std::vector<uint64_t>& row : shared_) row.push_back(NOT_KNOWN);
    shared_.emplace_back(use_sets_.size(), NOT_KNOWN);
    return static_cast<uint32_t>(use_sets_.size() - 1);
}

ORDER_KEY ORDER_CONTEXT::key_of(LOCATOR* locator) {
    ORDER_KEY key{};
    key.locator = locator;
    LINKER_OBJECT* object = locator->object();
    key.object = object;
    key.parent = object->parent();
    key.specific = locator->has_flag(LF_SPECIFIC);
    key.run_first = locator->is_run_or_both();
    key.load = locator->is_load();
    if (object->is_section()) {
        const auto* section = static_cast<const SECTION*>(object);
        key.section_name = section->original_section_name();
        key.preferred = section->preferred_priority();
    }
    key.contends =
        locator->placement_specified() && !locator->is_complete() && !locator->is_virtual();
    bool by_range = locator->has_flag(LF_RANGES | LF_ATTRS);
    if (!locator->placement_specified()) {
        key.use_count = static_cast<uint32_t>(ranges_.size());
    } else {
        std::vector<uint32_t> usable;
        for (uint32_t i = 0; i < ranges_.size(); ++i)
            if (locator->can_use_range(ranges_[i])) usable.push_back(i);
        key.use_set = intern(usable);
        if (locator->has_flag(LF_SPECIFIC))
            key.use_count = 1;
        else if (by_range)
            key.use_count = static_cast<uint32_t>(usable.size());
        if (key.contends && by_range)
            for (uint32_t i : usable) key.available += unused_[i];
    }
    // Asked for after the ranges: the pads of what is split count, and are known now.
    key.size = object->size();
    locator->set_available_space(key.available);
    return key;
}

uint64_t ORDER_CONTEXT::contention(const ORDER_KEY& a, const ORDER_KEY& b) const {
    if (!a.contends || !b.contends) return 0;
    uint64_t& shared = shared_[a.use_set][b.use_set];
    if (shared == NOT_KNOWN) {
        std::vector<uint32_t> both;
        const std::vector<uint32_t>& first = use_sets_[a.use_set];
        const std::vector<uint32_t>& second = use_sets_[b.use_set];
        std::set_intersection(first.begin(), first.end(), second.begin(), second.end(),
                              std::back_inserter(both));
        shared = 0;
        for (uint32_t i : both) shared += unused_[i];
    }
    return shared;
}

/// Members of one parent: copies follow their run addresses, then orders that the user asked for.
int ORDER_CONTEXT::compare_members(const ORDER_KEY& a, const ORDER_KEY& b) const {
    const LINKER_OBJECT* first = a.object;
    const LINKER_OBJECT* second = b.object;
    if (a.load || b.load) {
        bool first_done = a.load && first->run_placement_is_complete();
        bool second_done = b.load && second->run_placement_is_complete();
        if (first_done != second_done) return before_if(first_done);
        if (first_done && first->run_address() != second->run_address())
            return before_if(first->run_address() < second->run_address());
    }
    return compare_preferred(a, b);
}

/// With the call graph, callees before their callers.
int ORDER_CONTEXT::compare_by_callgraph(const ORDER_KEY& a, const ORDER_KEY& b) const {
    if (!by_callgraph_ || a.section_name == nullptr || b.section_name == nullptr) return 0;
    return CALL_INFO::compare_postorder(a.object, b.object);
}

/// Both have room: the one for which it is scarcer, relative to its size.
int ORDER_CONTEXT::compare_room(const ORDER_KEY& a, const ORDER_KEY& b) const {
    if (a.size == 0 || b.size == 0) {
        if (a.size != b.size) return before_if(b.size == 0);
        return 0;
    }
    uint64_t shared = contention(a, b);
    uint64_t of_a = std::min(shared, a.size);
    uint64_t of_b = std::min(shared, b.size);
    auto ratio = [](uint64_t room, uint64_t size) {
        return static_cast<double>(room) / static_cast<double>(size);
    };
    double ratio_a;
    double ratio_b;
    bool a_beside_b = a.size <= a.available - of_b;
    bool b_beside_a = b.size <= b.available - of_a;
    if (!a_beside_b && !b_beside_a) {
        ratio_a = ratio(a.available, a.size);
        ratio_b = ratio(b.available, b.size);
    } else {
        ratio_a = ratio(a.available - of_b, a.size);
        if (b.available == of_a) return ratio_a > 0 ? 1 : 0;
        ratio_b = ratio(b.available - of_a, b.size);
    }
    if (ratio_a == ratio_b) return 0;
    return before_if(ratio_a < ratio_b);
}

int ORDER_CONTEXT::compare(const ORDER_KEY& a, const ORDER_KEY& b) const {
    if (a.specific != b.specific) return before_if(a.specific);
    if (a.parent == b.parent && a.parent != nullptr)
        if (int order = compare_members(a, b)) return order;
    if (int order = compare_by_callgraph(a, b)) return order;
    if (alphabetical_)
        if (int order = compare_names(a, b)) return order;
    if (a.use_count == 1 && b.use_count > 1) return -1;
    if (b.use_count == 1 && a.use_count > 1) return 1;
    if ((a.available != 0) != (b.available != 0)) return before_if(a.available != 0);
    if (int order = compare_plt(a, b)) return order;
    if (a.available != 0 && (a.available != b.available || a.size != b.size))
        if (int order = compare_room(a, b)) return order;
    if (a.size != b.size) return before_if(a.size > b.size);
    if (a.object != b.object)
        if (int order = compare_names(a, b)) return order;
    if (a.run_first != b.run_first) return before_if(a.run_first);
    return LINKER_OBJECT::sort_by_id(a.object, b.object);
}

// ---- sorting ----------------------------------------------------------------------------------

void ORDER_CONTEXT::sort(std::vector<ORDER_KEY>& keys) const {
    std::stable_sort(keys.begin(), keys.end(),
                     [this](const ORDER_KEY& a, const ORDER_KEY& b) { return compare(a, b) < 0; });
}

int LOCATOR::locator_priority_cmp(LOCATOR* a, LOCATOR* b) {
    ORDER_CONTEXT context;
    ORDER_KEY key_a = context.key_of(a);
    ORDER_KEY key_b = context.key_of(b);
    return context.compare(key_a, key_b);
}
