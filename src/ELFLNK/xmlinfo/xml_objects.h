// The parts of the document about what was placed: objects, groups, memory. A part that refers to
// another one's elements is written after it.
#pragma once

#include "ELFLNK/xmlinfo/xml_info.h"

void write_xml_object_components();
void write_xml_logical_groups();
void write_xml_placement_map();

/// A reference to the object, if it has an element.
void write_xml_component_ref(XML_TAG_ID id, const LINKER_OBJECT* object);
/// An object that found no room could have used some range of the map.
bool xml_has_available_ranges();

/// The input files that have an element.
class INPUT_FILE;
bool xml_has_input_file(const INPUT_FILE* file);
