// The parts of the document about what was placed: objects, groups, memory. A part that refers to
// another one's elements is written after it.
#pragma once

#include <algorithm>
#include <vector>

#include "ELFLNK/xmlinfo/xml_info.h"

class INPUT_FILE;

/// Which of the dense ids of one kind have an element.
class XML_ID_SET {
  public:
    void clear() { bits_.clear(); }
    /// False if it is there already.
    bool add(size_t id) {
        if (id >= bits_.size()) bits_.resize(std::max(id + 1, bits_.size() * 2));
        const bool is_new = !bits_[id];
        bits_[id] = true;
        return is_new;
    }
    bool has(size_t id) const { return id < bits_.size() && bits_[id]; }

  private:
    std::vector<bool> bits_;
};

void write_xml_object_components();
void write_xml_logical_groups();
void write_xml_placement_map();

/// A reference to the object, if it has an element.
void write_xml_component_ref(XML_TAG_ID id, const LINKER_OBJECT* object);
/// An object that found no room could have used some range of the map.
bool xml_has_available_ranges();
/// The input file has an element.
bool xml_has_input_file(const INPUT_FILE* file);
