// Elements by id, in the forms that the document has.
#include "ELFLNK/xmlinfo/xml_writer.h"

#include <charconv>

#include "DIAG/user_msg_api.h"
#include "ELFLNK/xmlinfo/xml_info.h"

namespace {

struct TAG_ROW {
    XML_TAG_ID parent;
    const char* name;
    const char* description;
};

constexpr TAG_ROW rows[] = {
#define XML_TAG(id, parent, name, description) {XML_##parent, name, description},
#include "ELFLNK/xmlinfo/xml_tags.def"
#undef XML_TAG
};
static_assert(XML_invalid == 0 && XML_link_info == 1);
static_assert(std::size(rows) == 121);

XMLTAG tags[XML_TAG_COUNT];

void apperror(const char* text) {
    USER_MSG::get_umsg_obj()->apperror("%s", text);
}

void element(unsigned kind, XML_TAG_ID id, std::span<const XML_ATTR> attrs = {},
             const XML_VALUE& value = {}) {
    xml_gen().tag_gen(kind, tags[id], attrs, value);
}

} // namespace

void assign_xml_tags() {
    for (unsigned id = 0; id < XML_TAG_COUNT; ++id) {
        const TAG_ROW& row = rows[id];
        tags[id].assign(row.name, row.description,
                        row.parent == XML_invalid ? nullptr : &tags[row.parent]);
    }
}

std::span<const XMLTAG> xml_tags() {
    return tags;
}

XMLGEN& xml_gen() {
    static XMLGEN generator = [] {
        XMLGEN made;
        made.set_error_handler(apperror);
        return made;
    }();
    return generator;
}

void write_xml_tag_begin(XML_TAG_ID id) {
    element(XMLGEN::OPEN, id);
}

void write_xml_tag_end(XML_TAG_ID id) {
    element(XMLGEN::CLOSE, id);
}

void write_xml_string(XML_TAG_ID id, const char* text) {
    element(XMLGEN::OPEN | XMLGEN::CLOSE, id, {}, XML_VALUE::string(text));
}

void write_xml_int(XML_TAG_ID id, uint64_t value) {
    element(XMLGEN::OPEN | XMLGEN::CLOSE, id, {}, XML_VALUE::hex(value));
}

void write_xml_tag_begin_id(XML_TAG_ID id, const char* text) {
    const XML_ATTR attrs[] = {{"id", text}};
    element(XMLGEN::OPEN, id, attrs);
}

void write_xml_tag_begin_display_color(XML_TAG_ID id, const char* display, const char* color) {
    const XML_ATTR attrs[] = {{"display", display}, {"color", color}};
    element(XMLGEN::OPEN, id, attrs);
}

void write_xml_tag_begin_id_display_color(XML_TAG_ID id, const char* ref, const char* display,
                                          const char* color) {
    const XML_ATTR attrs[] = {{"id", ref}, {"display", display}, {"color", color}};
    element(XMLGEN::OPEN, id, attrs);
}

void write_xml_tag_idref(XML_TAG_ID id, const char* text) {
    const XML_ATTR attrs[] = {{"idref", text}};
    element(XMLGEN::EMPTY, id, attrs);
}

void write_xml_tag_idref_flag(XML_TAG_ID id, const char* ref, const char* name, bool flag) {
    const XML_ATTR attrs[] = {{"idref", ref}, {name, flag ? "true" : "false"}};
    element(XMLGEN::EMPTY, id, attrs);
}

const char* xml_build_id(const char* prefix, size_t count, const uint64_t* numbers) {
    static std::string text;
    text = prefix;
    for (size_t i = 0; i < count; ++i) {
        char digits[24];
        text += '-';
        text.append(digits, std::to_chars(digits, std::end(digits), numbers[i], 16).ptr);
    }
    return text.c_str();
}
