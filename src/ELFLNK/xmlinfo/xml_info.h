// The XML link information: the whole result of the link as one document for other tools.
//
// Its vocabulary is the table xml_tags.def. Objects, groups, files and symbols have ids, by which
// elements refer to each other; a reference is only written to what has an element. Like the map
// it only reads the link's objects. docs/link-info.xsd describes the document.
#pragma once

#include <cstddef>
#include <cstdint>

class LINKER_OBJECT;

/// The rows of the table of elements.
enum XML_TAG_ID : unsigned {
#define XML_TAG(id, parent, name, description) XML_##id,
#include "ELFLNK/xmlinfo/xml_tags.def"
#undef XML_TAG
    XML_TAG_COUNT
};

/// Writes the document that --xml_link_info names.
void generate_xml_info();

void write_xml_tag_begin(XML_TAG_ID id);
void write_xml_tag_end(XML_TAG_ID id);
void write_xml_string(XML_TAG_ID id, const char* text);
/// In hexadecimal.
void write_xml_int(XML_TAG_ID id, uint64_t value);
/// Attribute "id".
void write_xml_tag_begin_id(XML_TAG_ID id, const char* text);
/// Attributes "display" and "color", hints for a viewer.
void write_xml_tag_begin_display_color(XML_TAG_ID id, const char* display, const char* color);
void write_xml_tag_begin_id_display_color(XML_TAG_ID id, const char* ref, const char* display,
                                          const char* color);
/// An empty element with the attribute "idref".
void write_xml_tag_idref(XML_TAG_ID id, const char* text);
/// The same with a second attribute, "true" or "false".
void write_xml_tag_idref_flag(XML_TAG_ID id, const char* ref, const char* name, bool flag);

/// The prefix and `count` numbers as "prefix-1f-2", in one static text that the next call
/// overwrites.
const char* xml_build_id(const char* prefix, size_t count, const uint64_t* numbers);
template <class... NUMBER>
const char* xml_build_str(const char* prefix, size_t count, NUMBER... number) {
    const uint64_t numbers[] = {static_cast<uint64_t>(number)...};
    return xml_build_id(prefix, count < sizeof...(number) ? count : sizeof...(number), numbers);
}
