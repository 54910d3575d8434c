// The help shows every option once, or those that a text picks.
#include "OPTIONGEN/option_obj.h"
#include "OPTIONGEN/option_table.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace {

std::string help_for(const char* text) {
    testing::internal::CaptureStdout();
    option_obj::display_option_help(text);
    return testing::internal::GetCapturedStdout();
}

unsigned lines_with(const std::string& text, const std::string& start) {
    unsigned count = 0;
    for (size_t at = text.find("\n" + start); at != text.npos; at = text.find("\n" + start, at + 1))
        count++;
    return count;
}

TEST(option_help, all_options_but_the_hidden_stand_once) {
    const std::string help = help_for(nullptr);
    for (unsigned n = 0; n < OPTION_COUNT; n++) {
        const option_id id = option_id(n);
        const OPTION_DEF& def = option_def(id);
        const bool hidden = (def.flags & OPTION_INTERNAL) != 0 || option_class_hidden(def.cls);
        unsigned lines = 0;
        for (const char* behind : {" ", "=", "[", ","})
            lines += lines_with(help, "  " + std::string(option_spelling(id, 0)) + behind);
        if (std::string_view(option_spelling(id, 0)).ends_with(':')) continue;
        EXPECT_EQ(lines, hidden ? 0u : 1u) << option_spelling(id, 0);
    }
}

TEST(option_help, a_text_picks_by_name_or_by_what_the_help_says) {
    const std::string by_name = help_for("stack");
    EXPECT_NE(by_name.find("--stack_size=size, -stack, --stack"), std::string::npos);
    EXPECT_EQ(by_name.find("--heap_size"), std::string::npos);
    const std::string by_help = help_for("watchdog");
    EXPECT_NE(by_help.find("--cinit_hold_wdt[=on,off]"), std::string::npos);
    EXPECT_EQ(help_for("xyzzy"), ">> Help: No options match the string 'xyzzy'\n");
}

TEST(option_help, options_beside_the_table_show_where_the_table_has_none) {
    static constexpr extension_option one[] = {{"qv_flux", "size", nullptr, "Flux of the stack"}};
    option_obj::extensions = one;
    EXPECT_EQ(help_for("flux"), "  --qv_flux=size       Flux of the stack\n");
    EXPECT_EQ(help_for("stack").find("flux"), std::string::npos);
    option_obj::extensions = {};
}

TEST(option_help, a_long_form_has_its_text_on_the_next_line) {
    EXPECT_EQ(help_for("--no_entry_point"),
              "  --no_entry_point     The program has no entry point\n");
    EXPECT_EQ(help_for("--undefine"),
              "  --undefine=name      Undefine a macro for the command files that follow\n");
    EXPECT_EQ(help_for("--map_file"),
              "  --map_file=file, -m  Write a map of the memory, sections and symbols to <file>\n");
    EXPECT_EQ(help_for("--undef_sym"),
              "  --undef_sym=sym, -u  Start with <sym> undefined, so that a library's member is "
              "linked\n");
    EXPECT_EQ(
        help_for("--output_file"),
        "  --output_file=file, -o \n                       Name of the output file (a.out)\n");
}

/// Tags open and close as they must, and no text holds a bare '<', '>' or '&'.
bool is_well_formed(const std::string& xml, unsigned& elements) {
    std::vector<std::string> open;
    size_t at = xml.find('>') + 1; // behind the declaration
    while (at < xml.size()) {
        const size_t tag = xml.find('<', at);
        const std::string text = xml.substr(at, tag - at);
        for (size_t n = 0; (n = text.find('&', n)) != text.npos; n++)
            if (text.compare(n, 4, "&lt;") != 0 && text.compare(n, 4, "&gt;") != 0 &&
                text.compare(n, 5, "&amp;") != 0 && text.compare(n, 6, "&quot;") != 0)
                return false;
        if (text.find('>') != text.npos) return false;
        if (tag == xml.npos) break;
        const size_t end = xml.find('>', tag);
        if (end == xml.npos) return false;
        std::string name = xml.substr(tag + 1, end - tag - 1);
        at = end + 1;
        if (name[0] != '/') {
            elements++;
            open.push_back(name.substr(0, name.find(' ')));
        } else if (open.empty() || open.back() != name.substr(1)) {
            return false;
        } else {
            open.pop_back();
        }
    }
    return open.empty();
}

TEST(option_help, the_description_in_xml_is_well_formed_and_has_every_option) {
    char* text = nullptr;
    size_t size = 0;
    FILE* to = open_memstream(&text, &size);
    option_obj::print_xml(to);
    fclose(to);
    const std::string xml(text, size);
    free(text);
    EXPECT_EQ(xml.substr(0, 32), "<?xml version=\"1.0\" ?>\n<TOOLSET>");
    unsigned elements = 0;
    EXPECT_TRUE(is_well_formed(xml, elements));
    EXPECT_GT(elements, 4 * OPTION_COUNT);
    EXPECT_EQ(lines_with(xml, "    <OPTION NAME="), unsigned(OPTION_COUNT));
    EXPECT_NE(xml.find("<OPTION NAME=\"--yydebug\" CLASS=\"For developers of the linker\" "
                       "HIDDEN=\"yes\" EFFECT=\"no\">\n        <SPELLING>--yydebug</SPELLING>\n"),
              xml.npos);
}

} // namespace
