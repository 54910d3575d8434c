// Objects are numbered by their ids, which are dense: which of them have an element is a bit each.
// Two walks over the tree, each object being entered once, however many lists it is in.
#include "ELFLNK/xmlinfo/xml_objects.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <string_view>
#include <vector>

#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/fill_spec.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/object/load_segment.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "OPTIONGEN/option_obj.h"

namespace {

XML_ID_SET components;
XML_ID_SET groups;
std::set<std::string_view> avail_mem_range;

const char* component_id(const LINKER_OBJECT* object) {
    return xml_build_str("oc", 1, object->id());
}

const char* group_id(const LINKER_OBJECT* object) {
    return xml_build_str("lg", 1, object->id());
}

void write_group_ref(const LINKER_OBJECT* object) {
    if (groups.has(object->id())) write_xml_tag_idref(XML_logical_group_ref, group_id(object));
}

// ---- objects -------------------------------------------------------------------------------

void write_component(LINKER_OBJECT* object) {
    const SECTION* section = as_section(object);
    write_xml_tag_begin_id(XML_object_component, component_id(object));
    write_xml_string(XML_object_component_name,
                     section != nullptr ? section->input_name() : object->name());
    if (object->has_attr(PA_HAS_DATA))
        write_xml_int(XML_load_address, object->load_address());
    else
        write_xml_string(XML_uninitialized, "true");
    write_xml_int(XML_run_address, object->run_address());
    write_xml_int(XML_size, object->size());
    const OBJ_FILE* file = section != nullptr ? section->orig_infile() : nullptr;
    if (file != nullptr && file != file_manager.internal_file() && xml_has_input_file(file))
        write_xml_tag_idref(XML_input_file_ref, xml_build_str("fl", 1, file->file_id()));
    write_xml_tag_end(XML_object_component);
    components.add(object->id());
}

// set_visited() answers what held before.
void write_components_below(COLLECTION* collection) {
    for (LINKER_OBJECT* member : collection->members()) {
        if (member->is_space() || member->set_visited(true)) continue;
        if (COLLECTION* below = as_collection(member))
            write_components_below(below);
        else
            write_component(member);
    }
}

// ---- groups --------------------------------------------------------------------------------

// `invalid`: the collection has no element.
XML_TAG_ID group_tag(const COLLECTION* collection) {
    if (collection->is_load_segment()) return XML_load_segment;
    if (collection->is_union()) return XML_overlay;
    if (collection->is_split_container()) return XML_split_section;
    if (collection->kind() == COLLECTION_GROUP || collection->kind() == COLLECTION_LOGICAL ||
        collection->is_output_section())
        return XML_logical_group;
    return XML_invalid;
}

XML_TAG_ID contents_tag(XML_TAG_ID group) {
    switch (group) {
    case XML_load_segment:
        return XML_load_segment_contents;
    case XML_overlay:
        return XML_overlay_contents;
    case XML_split_section:
        return XML_split_section_contents;
    default:
        return XML_logical_group_contents;
    }
}

// The ranges that an object without room could have gone to. Members of a GROUP that found none
// have no wishes of their own.
void note_available_ranges(const LINKER_OBJECT* object) {
    for (LOCATOR* locator : {object->run_locator(), object->load_locator()}) {
        if (locator == nullptr || !locator->placement_failed()) continue;
        std::vector<MEMORY_RANGE*> ranges;
        locator->available_mem_range(ranges);
        for (const MEMORY_RANGE* range : ranges)
            if (!range->is_hidden()) avail_mem_range.insert(range->name());
    }
}

// What a member without an element is made of stands in its place.
void write_contents(const COLLECTION* collection) {
    for (const LINKER_OBJECT* member : collection->members()) {
        if (member->is_space()) continue;
        const COLLECTION* below = as_collection(member);
        if (below == nullptr)
            write_xml_component_ref(XML_object_component_ref, member);
        else if (group_tag(below) == XML_invalid)
            write_contents(below);
        else
            write_group_ref(below);
    }
}

void write_group(COLLECTION* collection, XML_TAG_ID tag, bool in_failed) {
    const char* color = "cyan";
    const char* display = "no";
    if (collection->failed_to_allocate()) {
        color = "red";
        display = "yes";
        if (!in_failed) note_available_ranges(collection);
    } else if (strncmp(collection->name(), ".debug", 6) == 0) {
        display = "never";
    }
    write_xml_tag_begin_id_display_color(tag, group_id(collection), display, color);
    write_xml_string(XML_name, collection->name());
    if (tag != XML_split_section && collection->has_attr(PA_HAS_DATA))
        write_xml_int(XML_load_address, collection->load_address());
    if (tag == XML_load_segment || tag == XML_logical_group) {
        write_xml_int(XML_run_address, collection->run_address());
        write_xml_int(XML_size, collection->size());
    }
    if (tag == XML_load_segment)
        write_xml_int(XML_flags, static_cast<LOAD_SEGMENT*>(collection)->flags());
    write_xml_tag_begin(contents_tag(tag));
    write_contents(collection);
    write_xml_tag_end(contents_tag(tag));
    write_xml_tag_end(tag);
    groups.add(collection->id());
}

// `in_failed`: something around the members found no room.
void write_groups_below(COLLECTION* collection, bool in_failed) {
    for (LINKER_OBJECT* member : collection->members()) {
        COLLECTION* below = as_collection(member);
        if (below == nullptr || below->set_visited(true)) continue;
        write_groups_below(below, in_failed || below->failed_to_allocate());
        if (XML_TAG_ID tag = group_tag(below); tag != XML_invalid)
            write_group(below, tag, in_failed);
    }
}

// ---- memory --------------------------------------------------------------------------------

// From this length on an area is worth showing.
constexpr uint64_t SHOWN_LENGTH = 101;

void write_fill(const MEMORY_RANGE* range) {
    const FILL_SPEC* fill = range->fill();
    const bool of_the_link = fill == nullptr && global_opts->isopt(OPT_fill_value);
    if (of_the_link) fill = FILL_SPEC::default_fill();
    if (fill == nullptr) return;
    write_xml_int(XML_fill_value, fill->value());
    write_xml_int(XML_fill_width, fill->width());
    write_xml_int(XML_virtual_fill, of_the_link ? 1 : 0);
}

void write_available_space(uint64_t start, uint64_t end) {
    if (end <= start) return;
    write_xml_tag_begin(XML_available_space);
    write_xml_int(XML_start_address, start);
    write_xml_int(XML_size, end - start);
    write_xml_tag_end(XML_available_space);
}

void write_usage(const MEMORY_RANGE* range) {
    uint64_t cursor = range->origin();
    for (const LOCATOR* locator : range->contents()) {
        write_available_space(cursor, locator->address());
        cursor = std::max(cursor, locator->end_address());
        const LINKER_OBJECT* object = locator->object();
        if (!object->is_collection()) continue;
        write_xml_tag_begin(XML_allocated_space);
        write_xml_int(XML_start_address, locator->address());
        write_xml_int(XML_size, locator->end_address() - locator->address());
        write_group_ref(object);
        write_xml_tag_end(XML_allocated_space);
    }
    write_available_space(cursor, range->end());
}

void write_memory_area(const MEMORY_RANGE* range) {
    const bool available = avail_mem_range.contains(range->name());
    write_xml_tag_begin_display_color(XML_memory_area,
                                      available || range->length() >= SHOWN_LENGTH ? "yes" : "no",
                                      available ? "blue" : "green");
    const uint64_t unused = range->unused();
    write_xml_string(XML_memory_area_name, range->name());
    write_xml_int(XML_page_id, static_cast<uint64_t>(range->page()));
    write_xml_int(XML_origin, range->origin());
    write_xml_int(XML_length, range->length());
    write_xml_int(XML_used_space, range->length() - unused);
    write_xml_int(XML_unused_space, unused);
    write_xml_string(XML_attributes, MEMORY_RANGE::attr_name(range->attrs()));
    write_fill(range);
    write_xml_tag_begin(XML_usage_details);
    if (!range->contents().empty()) write_usage(range);
    write_xml_tag_end(XML_usage_details);
    write_xml_tag_end(XML_memory_area);
}

} // namespace

void write_xml_object_components() {
    components.clear();
    root_collection->clear_visited_flags();
    write_xml_tag_begin(XML_object_component_list);
    write_components_below(root_collection);
    write_xml_tag_end(XML_object_component_list);
}

void write_xml_logical_groups() {
    groups.clear();
    avail_mem_range.clear();
    root_collection->clear_visited_flags();
    write_xml_tag_begin(XML_logical_group_list);
    write_groups_below(root_collection, false);
    write_xml_tag_end(XML_logical_group_list);
}

void write_xml_placement_map() {
    write_xml_tag_begin(XML_placement_map);
    for (const MEMORY_RANGE* range : *memory_map)
        if (!range->is_hidden()) write_memory_area(range);
    write_xml_tag_end(XML_placement_map);
}

void write_xml_component_ref(XML_TAG_ID id, const LINKER_OBJECT* object) {
    if (components.has(object->id())) write_xml_tag_idref(id, component_id(object));
}

bool xml_has_available_ranges() {
    return !avail_mem_range.empty();
}
