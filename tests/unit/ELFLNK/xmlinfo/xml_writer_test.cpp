#include "ELFLNK/xmlinfo/xml_writer.h"

#include <gtest/gtest.h>

#include <string>

#include "DIAG/diagnostic.h"
#include "ELFLNK/xmlinfo/xml_info.h"

namespace {

TEST(XmlWriter, ids_are_a_prefix_and_numbers) {
    EXPECT_STREQ(xml_build_str("fl", 1, 31U), "fl-1f");
    EXPECT_STREQ(xml_build_str("x", 3, 0, ~uint64_t{0}, 16), "x-0-ffffffffffffffff-10");
    EXPECT_STREQ(xml_build_str("x", 1, 1, 2), "x-1");
    EXPECT_STREQ(xml_build_str("x", 5, 1, 2), "x-1-2"); // not more than there are
}

TEST(XmlWriter, elements_have_the_forms_of_the_document) {
    char* text = nullptr;
    size_t size = 0;
    FILE* file = open_memstream(&text, &size);
    assign_xml_tags();
    xml_gen().start(file);
    write_xml_tag_begin_display_color(XML_memory_area, "no", "green");
    write_xml_tag_begin_id_display_color(XML_overlay, "lg-1", "yes", "red");
    write_xml_tag_begin_id(XML_symbol, "sm-2");
    write_xml_string(XML_symbol_name, "a&b");
    write_xml_int(XML_value, 0xABC);
    write_xml_tag_idref(XML_object_component_ref, "oc-3");
    write_xml_tag_idref_flag(XML_verdef_ref, "vd-4", "hidden", true);
    write_xml_tag_idref_flag(XML_verdef_ref, "vd-4", "hidden", false);
    write_xml_tag_end(XML_symbol);
    write_xml_tag_end(XML_overlay);
    const auto errors = DIAGNOSTIC::error_count_m;
    write_xml_tag_end(XML_memory_area);
    EXPECT_EQ(DIAGNOSTIC::error_count_m, errors);
    write_xml_tag_end(XML_memory_area);
    EXPECT_EQ(DIAGNOSTIC::error_count_m, errors + 1); // a fault of the program, which is told
    xml_gen().flush();
    fclose(file);
    EXPECT_EQ(std::string(text, size), "<memory_area display=\"no\" color=\"green\">\n"
                                       "   <overlay id=\"lg-1\" display=\"yes\" color=\"red\">\n"
                                       "      <symbol id=\"sm-2\">\n"
                                       "         <name>a&amp;b</name>\n"
                                       "         <value>0xabc</value>\n"
                                       "         <object_component_ref idref=\"oc-3\"/>\n"
                                       "         <verdef_ref idref=\"vd-4\" hidden=\"true\"/>\n"
                                       "         <verdef_ref idref=\"vd-4\" hidden=\"false\"/>\n"
                                       "      </symbol>\n"
                                       "   </overlay>\n"
                                       "</memory_area>\n");
    free(text);
}

} // namespace
