// Filling: gaps of memory ranges become filler output sections, gaps of collections SPACE members.
//
// Nothing is written here; the new objects carry their fill and are written like all others.
#include "ELFLNK/placement/fill/fill.h"

#include <algorithm>
#include <vector>

#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/fill_spec.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/object/space.h"
#include "ELFLNK/placement/placement.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OPTIONGEN/register_option.h"
#include "UTIL/prefetch.h"
#include "UTIL/savestr.h"
#include "UTIL/trace.h"

static register_option disable_fill("disable:fill");

namespace {

/// A filler output section over [start, end) of the range.
void fill_range_gap(const MEMORY_RANGE* range, uint64_t start, uint64_t end, FILL_SPEC* fill) {
    static int count = 0;
    if (end <= start) return;
    auto* filler = new COLLECTION(savestrf("$fill%03d", count++), COLLECTION_OUTSECT);
    filler->set_attr(PA_HAS_DATA);
    filler->override_fill(fill);
    auto* space = new SPACE("<space>", end - start);
    space->override_fill(fill);
    space->set_attr(PA_HAS_DATA);
    filler->add_member(space, true);

    auto* locator = new LOCATOR(LOCATOR_KIND::BOTH, filler);
    locator->add_specific(start);
    locator->set_flag(LF_NO_PADDING);
    locator->add_page(range->page());
    filler->add_locator(locator);
    root_collection->add_member(filler, true);
    root_collection->add_outsect(filler);
    trace_fill.printf("\n--> Created Collection %s (fill = %s):\n", filler->name(), fill->str());
    if (locator->commit_specific_fill_sect())
        trace_fill.printf("0x%08lx-0x%08lx: filled with %s\n", start, end, fill->str());
    else
        trace_fill.printf("(placement failed)\n");
}

void fill_range(MEMORY_RANGE* range) {
    trace_fill.printf("\n--> Memory Range %s: \n", range->name());
    const bool throughout = range->has_fill();
    FILL_SPEC* fill = throughout ? range->fill() : FILL_SPEC::default_fill();
    uint64_t cursor = range->origin();
    // A copy: fillers enter the range while it is walked.
    const std::vector<LOCATOR*> items(range->leaf_contents().begin(), range->leaf_contents().end());
    for (LOCATOR* item : items) {
        if (throughout) fill_range_gap(range, cursor, item->address(), fill);
        if (item->is_load() || item->is_both()) fill_collection(item->object());
        cursor = std::max(cursor, item->end_address());
    }
    if (throughout) fill_range_gap(range, cursor, range->end(), fill);
}

/// Fills the gap in front of load_to and answers with the new member; null without a gap.
LINKER_OBJECT* fill_collection_gap(COLLECTION* collection, uint64_t load_from, uint64_t run_from,
                                   uint64_t load_to, FILL_SPEC* fill) {
    if (load_to <= load_from || collection->kind() == COLLECTION_LOGICAL) return nullptr;
    const uint64_t size = load_to - load_from;
    auto* space = new SPACE("<space>", size);
    space->override_fill(fill);
    space->set_attr(PA_HAS_DATA);
    if (LOCATOR* run = collection->run_locator()) run->place_hole(space, run_from, run_from + size);
    if (LOCATOR* load = collection->load_locator())
        load->place_hole(space, load_from, load_from + size);
    collection->add_member(space, true);
    trace_fill.printf("0x%08lx-0x%08lx: filled with %s\n", load_from, load_to, fill->str());
    return space;
}

bool has_initialized_data(SECTION* section) {
    OFE::OF_SECTION* input = section->OF_SECTION_api();
    return input != nullptr ? input->initialized() : section->has_attr(PA_HAS_DATA);
}

/// What a member itself is filled with.
void inherit_fill(LINKER_OBJECT* member, FILL_SPEC* fill) {
    SECTION* section = as_section(member);
    if (section != nullptr && has_initialized_data(section)) {
        if (section->fill() == nullptr) return;
        trace_fill.printf("%s:  cleared fill value %s for init section\n", section->name(),
                          section->fill()->str());
        section->override_fill(nullptr);
    } else if ((section != nullptr || member->is_space()) && member->fill() == nullptr) {
        member->add_fill(fill);
        trace_fill.printf("%s:  inherits fill value %s\n", member->name(), fill->str());
    }
}

/// What filling asks of a member, noted while the members are walked in their old order: by their
/// addresses they lie anywhere in memory.
struct MEMBER {
    LINKER_OBJECT* object;
    uint64_t load;
    uint64_t size; // of a section; that of others is asked for when they have been filled
    uint32_t id;
    int page;
    bool is_section;
    bool is_placed;

    explicit MEMBER(LINKER_OBJECT* obj)
        : object(obj),
          load(obj->load_address()),
          size(obj->is_section() ? obj->size() : 0),
          id(obj->id()),
          page(obj->load_page()),
          is_section(obj->is_section()),
          is_placed(obj->is_placed() && obj->has_attr(PA_ALLOCATED)) {}

    /// LINKER_OBJECT::less_than_load_address of members that are placed.
    bool operator<(const MEMBER& b) const {
        if (page != b.page) return page < b.page;
        return load != b.load ? load < b.load : id < b.id;
    }
};

/// False if some are not placed and stand in no order of addresses.
bool sort_by_load_address(std::vector<MEMBER>& members) {
    const bool all_placed = std::ranges::all_of(members, &MEMBER::is_placed);
    if (!all_placed)
        std::ranges::sort(members, LINKER_OBJECT::less_than_load_address, &MEMBER::object);
    else if (!std::is_sorted(members.begin(), members.end()))
        std::sort(members.begin(), members.end());
    return all_placed;
}

} // namespace

void fill_collection(LINKER_OBJECT* obj) {
    COLLECTION* collection = as_collection(obj);
    if (collection == nullptr || !obj->has_attr(PA_ALLOCATED) || !obj->is_placed()) return;
    const LOCATOR* locator =
        obj->load_locator() != nullptr ? obj->load_locator() : obj->run_locator();
    if (!locator->is_load() && !locator->is_both()) {
        trace_fill.printf("\nCollection has no load placement; skipping\n");
        return;
    }
    FILL_SPEC* fill = FILL_SPEC::of_gaps(collection, locator->range());
    trace_fill.printf("\n--> Collection %s (kind = %s, fill = %s%s): \n", collection->name(),
                      collection->collection_kind_name(), fill->str(),
                      fill == FILL_SPEC::default_fill() ? " [default]" : "");

    const std::vector<LINKER_OBJECT*> walk(collection->members().begin(),
                                           collection->members().end());
    std::vector<MEMBER> members;
    members.reserve(walk.size());
    visit_ahead(walk, prefetch<LINKER_OBJECT>, [&](LINKER_OBJECT* member) {
        members.emplace_back(member);
        inherit_fill(member, fill);
    });
    const bool all_placed = sort_by_load_address(members);
    std::vector<LINKER_OBJECT*> filled; // members and what fills the gaps between them, in order
    filled.reserve(members.size());
    LINKER_OBJECT* last = nullptr; // the member that reaches farthest
    uint64_t load_cursor = obj->load_address();
    const uint64_t load_end = load_cursor + collection->size();
    auto fill_gap = [&](uint64_t load_to) {
        if (load_to <= load_cursor) return;
        const uint64_t run =
            last != nullptr ? last->run_address() + last->size() : obj->run_address();
        if (auto* space = fill_collection_gap(collection, load_cursor, run, load_to, fill))
            filled.push_back(space);
    };
    for (const MEMBER& member : members) {
        fill_gap(member.load);
        filled.push_back(member.object);
        if (!member.is_section) fill_collection(member.object);
        const uint64_t size = member.is_section ? member.size : member.object->size();
        if (member.load + size <= load_cursor) continue;
        load_cursor = member.load + size;
        last = member.object;
    }
    fill_gap(load_end);
    if (all_placed && locator->is_placed())
        collection->set_member_order(filled);
    else
        collection->sort_members(LINKER_OBJECT::less_than_load_address);
}

void fill_holes() {
    if (disable_fill != 0) return;
    trace_fill.printf("\n\nFILL MEMORY RANGES:\n");
    const std::vector<MEMORY_RANGE*> ranges(memory_map->begin(), memory_map->end());
    for (MEMORY_RANGE* range : ranges)
        if (!range->is_hidden()) fill_range(range);
    for (LOCATOR* item : placement_state().outside)
        if (item->is_load() || item->is_both()) fill_collection(item->object());
}
