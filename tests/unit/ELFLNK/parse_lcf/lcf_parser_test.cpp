#include "ELFLNK/parse_lcf/lcf_parser.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <vector>

#include "DIAG/diagnostic.h"
#include "ELFLNK/expr/expression.h"
#include "ELFLNK/filter/filter.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/fill_spec.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section_spec.h"
#include "ELFLNK/object/space.h"
#include "UTIL/savestr.h"
#include "lcf_parse.h"

namespace {

using STRINGS = std::vector<std::string>;

const LINKER_OBJECT* member(const COLLECTION* collection, size_t n) {
    auto at = collection->members().begin();
    std::advance(at, static_cast<long>(n));
    return *at;
}

// The value of a constant expression as the origin of a range.
uint64_t value_of(const std::string& expression) {
    PARSE p("MEMORY { R : o = " + expression + ", l = 1 }");
    return p.range("R")->origin();
}

} // namespace

TEST(lcf_parser, top_level_mixes_options_files_and_assignments) {
    PARSE p("-o out.elf --map_file=\"a b.map\" a.o\n\"b c.o\" x = 1; memory origin\n");
    EXPECT_EQ(p.messages, "");
    EXPECT_EQ(p.files, (STRINGS{"a.o", "b c.o", "memory", "origin"}));
    EXPECT_EQ(p.options, (STRINGS{"o", "out.elf", "-map_file=a b.map"}));
    ASSERT_FALSE(root_collection->assignments().empty());
    EXPECT_EQ(root_collection->assignments().back()->get_string(), "x = 0x1");
}

TEST(lcf_parser, memory_ranges_with_all_forms_of_specifiers) {
    PARSE p("MEMORY {\n"
            " FLASH(RX) : o = 0x0, l = 8K\n"
            " RAM : origin = 0x20000000 LENGTH = (2 * 0x100) + 4, fill = 0xFFFF\n"
            " PAGE 1 : EXT org 0x100 len 0x10 vf = 7\n"
            " ATT : ORIGIN = 0x1000, LENGTH = 0x10, ATTR = (RW)\n"
            "}\n");
    EXPECT_EQ(p.messages, "");
    ASSERT_EQ(memory_map->size(), 4u);
    EXPECT_EQ(p.range("FLASH")->length(), 8192u);
    EXPECT_EQ(p.range("FLASH")->attrs(), 9u);
    EXPECT_EQ(p.range("RAM")->origin(), 0x20000000u);
    EXPECT_EQ(p.range("RAM")->length(), 0x204u);
    EXPECT_EQ(p.range("RAM")->attrs(), 15u);
    ASSERT_NE(p.range("RAM")->fill(), nullptr);
    EXPECT_EQ(p.range("RAM")->fill()->value(), 0xFFFFu);
    EXPECT_TRUE(p.range("RAM")->has_fill());
    EXPECT_EQ(p.range("EXT")->page(), 1);
    EXPECT_EQ(p.range("EXT")->length(), 16u);
    EXPECT_TRUE(p.range("EXT")->has_vfill());
    EXPECT_EQ(p.range("ATT")->attrs(), 3u);
    EXPECT_EQ(p.range("ATT")->page(), 1);
}

TEST(lcf_parser, a_stray_token_in_front_of_a_name_is_no_name) {
    PARSE p("SECTIONS { GROUP(; named) : { .a : {} } }");
    EXPECT_EQ(p.places, "1:18: expecting \"<name>\" instead of \";\"\n");
    EXPECT_STREQ(p.object()->name(), "named");
}

TEST(lcf_parser, a_mixed_case_specifier_begins_the_next_range) {
    PARSE p("MEMORY { A : o = 0, l = 4 Origin : o = 8, l = 4 }");
    EXPECT_NE(p.range("Origin"), nullptr);
    EXPECT_EQ(p.range("A")->length(), 4u);
}

TEST(lcf_parser, an_alias_block_gives_one_length_to_two_ranges) {
    PARSE p("MEMORY { ALIAS { A : o = 0 B : o = 0x1000 } LENGTH = 0x100, C : o = 0x8000, l = 4 }");
    EXPECT_EQ(p.messages, "");
    EXPECT_EQ(p.range("A")->alias(), p.range("A"));
    EXPECT_EQ(p.range("B")->alias(), p.range("A"));
    EXPECT_EQ(p.range("B")->length(), 0x100u);
    EXPECT_EQ(p.range("C")->alias(), nullptr);
    PARSE three("MEMORY { ALIAS { A : o = 0 B : o = 0x1000 D : o = 0x2000 } LENGTH = 4 }");
    EXPECT_TRUE(three.says("A memory range ALIAS pair may only contain two memory ranges."));
}

TEST(lcf_parser, constant_expressions_follow_the_precedence_levels) {
    const struct {
        const char* text;
        uint64_t value;
    } cases[] = {
        {"1 + 2 * 3", 7},  {"(1 + 2) * 3", 9}, {"10 - 4 - 3", 3},         {"1 << 2 + 1", 8},
        {"7 & 3 | 8", 11}, {"1 | 2 && 0", 0},  {"0 && 0 || 1", 1},        {"2 > 1 == 1", 1},
        {"6 & 2 == 2", 0}, {"-1 + 3", 2},      {"~0 & 0xFF", 255},        {"!5 + 1", 1},
        {"- - 3", 3},      {"20 / 3 % 4", 2},  {"1 + (2 << (1 + 1))", 9}, {"5 % 0", 0},
        {"3 != 3", 0},     {"4 >= 4 <= 1", 1}, {"((((7))))", 7},          {"0x10*2", 32},
    };
    for (const auto& c : cases) EXPECT_EQ(value_of(c.text), c.value) << c.text;
}

TEST(lcf_parser, range_operators_are_known_in_expressions) {
    PARSE p("MEMORY { RAM : o = 0x100, l = 0x20  X : o = (START(RAM) + SIZE(RAM) * 2), l = "
            "(END(RAM, 0)) }");
    EXPECT_EQ(p.messages, "");
    EXPECT_EQ(p.range("X")->origin(), 0x140u);
    EXPECT_EQ(p.range("X")->length(), 0x120u);
}

TEST(lcf_parser, placement_of_top_level_sections) {
    struct WISH {
        const char* text;
        uint32_t flags;
        STRINGS ranges;
    };
    const WISH cases[] = {
        {".text > RAM", LF_RANGES, {"RAM"}},
        {".text : > RAM", LF_RANGES, {"RAM"}},
        {".text : {} > RAM", LF_RANGES, {"RAM"}},
        {".text : load = RAM", LF_RANGES, {"RAM"}},
        {".text : > RAM | ROM", LF_RANGES, {"RAM", "ROM"}},
        {".text : > (RAM | ROM)", LF_RANGES, {"RAM", "ROM"}},
        {".text : >> A | B", LF_RANGES | LF_SPLIT, {"A", "B"}},
        {".text : > RAM (HIGH)", LF_RANGES | LF_HIGHEST, {"RAM"}},
        {".text : > RAM, HIGH", LF_RANGES | LF_HIGHEST, {"RAM"}},
        {".text : > RW", LF_ATTRS, {}},
        {".text : > 0x100", LF_SPECIFIC, {}},
        {".text : > (0x100 + 4)", LF_SPECIFIC, {}},
        {".text 0x100 : {}", LF_SPECIFIC, {}},
        {".text : > RAM PAGE 1, ALIGN(8)", LF_RANGES | LF_PAGE | LF_ALIGN, {"RAM"}},
        {".text : > RAM, PAGE = 0, BLOCK(16)", LF_RANGES | LF_PAGE | LF_BLOCK, {"RAM"}},
        {".text : PALIGN(16), > RAM", LF_RANGES | LF_ALIGN | LF_PALIGN, {"RAM"}},
        {".text : > RAM, PALIGN(POWER2)", LF_RANGES | LF_ALIGN | LF_POWER2, {"RAM"}},
        {".text : > RAM, priority(3)", LF_RANGES | LF_PRIORITY, {"RAM"}},
        {".text : unordered() > RAM", LF_RANGES | LF_UNORDERED, {"RAM"}},
    };
    for (const WISH& c : cases) {
        PARSE p("SECTIONS { " + std::string(c.text) + " }");
        EXPECT_EQ(p.messages, "") << c.text;
        ASSERT_EQ(p.object_count(), 1u) << c.text;
        ASSERT_NE(p.run(), nullptr) << c.text;
        EXPECT_EQ(p.load(), nullptr) << c.text;
        EXPECT_EQ(p.run()->kind(), LOCATOR_KIND::BOTH) << c.text;
        EXPECT_EQ(p.run()->flags(), c.flags) << c.text;
        EXPECT_EQ(STRINGS(p.run()->range_names().begin(), p.run()->range_names().end()), c.ranges)
            << c.text;
        EXPECT_TRUE(p.object()->is_user_specified());
    }
}

TEST(lcf_parser, load_and_run_make_two_locators) {
    PARSE p("SECTIONS { .data : LOAD = FLASH, RUN = RAM, ALIGN(8) }");
    EXPECT_EQ(p.messages, "");
    EXPECT_EQ(p.run()->kind(), LOCATOR_KIND::RUN);
    EXPECT_STREQ(p.run()->range_names().at(0), "RAM");
    ASSERT_NE(p.load(), nullptr);
    EXPECT_EQ(p.load()->kind(), LOCATOR_KIND::LOAD);
    EXPECT_STREQ(p.load()->range_names().at(0), "FLASH");
    EXPECT_EQ(p.run()->alignment(), 8u);
    EXPECT_EQ(p.load()->alignment(), 8u);
}

TEST(lcf_parser, groups_and_unions_nest) {
    PARSE p(
        "SECTIONS { GROUP(boot) : { .a : {} .b > X UNION { .c : {} .d : {} } run = RAM } > ROM }");
    EXPECT_EQ(p.messages, "");
    ASSERT_EQ(p.object_count(), 1u);
    EXPECT_STREQ(p.object()->name(), "boot");
    EXPECT_EQ(p.object()->kind(), COLLECTION_GROUP);
    EXPECT_EQ(p.run()->kind(), LOCATOR_KIND::BOTH);
    EXPECT_TRUE(p.run()->has_flag(LF_ORDERED));
    ASSERT_EQ(p.object()->members().size(), 3u);
    const auto* a = member(p.object(), 0);
    EXPECT_EQ(a->run_locator()->kind(), LOCATOR_KIND::RUN);
    EXPECT_EQ(a->load_locator()->kind(), LOCATOR_KIND::LOAD);
    const COLLECTION* u = as_collection(member(p.object(), 2));
    EXPECT_EQ(u->kind(), COLLECTION_UNION);
    EXPECT_EQ(std::string(u->name()).rfind("UNION_", 0), 0u);
    EXPECT_TRUE(u->run_locator()->has_flag(LF_OVERLAY));
    EXPECT_TRUE(u->run_locator()->has_flag(LF_UNION));
    EXPECT_EQ(u->members().size(), 2u);
}

TEST(lcf_parser, section_types_set_attributes) {
    const struct {
        const char* text;
        uint32_t attr;
    } cases[] = {{"(COPY)", PA_COPY},
                 {"type = DSECT", PA_DSECT},
                 {"TYPE = (NOLOAD)", PA_NOLOAD},
                 {"type=NOINIT", PA_NOINIT},
                 {"type = VECT_INIT", PA_VECT_INIT}};
    for (const auto& c : cases) {
        PARSE p(std::string("SECTIONS { .t : ") + c.text + " {} > RAM }");
        EXPECT_EQ(p.messages, "") << c.text;
        EXPECT_TRUE(p.object()->has_attr(c.attr)) << c.text;
    }
    PARSE pass("SECTIONS { .t : type = PASS {} }");
    EXPECT_TRUE(pass.says("ignoring obsolete section attribute \"PASS\""));
    EXPECT_EQ(pass.errors(), 0);
    PARSE group("SECTIONS { GROUP : type = COPY { .a {} } }");
    EXPECT_TRUE(group.says("type flags not allowed for GROUP or UNION in SECTION \""));
}

TEST(lcf_parser, section_symbols_become_assignments) {
    const struct {
        const char* text;
        const char* assignment;
        EXPR_SYM_BINDING binding;
    } cases[] = {
        {"START(s)", "s = LOAD_START", EXPR_BIND_STRONG},
        {"end(s)", "s = LOAD_END", EXPR_BIND_STRONG},
        {"SIZE(s)", "s = LOAD_SIZE", EXPR_BIND_STRONG},
        {"load_start(s)", "s = LOAD_START", EXPR_BIND_STRONG},
        {"LOAD_END(s)", "s = LOAD_END", EXPR_BIND_STRONG},
        {"LOAD_SIZE(s)", "s = LOAD_SIZE", EXPR_BIND_STRONG},
        {"RUN_START(s)", "s = RUN_START", EXPR_BIND_STRONG},
        {"RUN_END(s)", "s = RUN_END", EXPR_BIND_STRONG},
        {"RUN_SIZE(WEAK(s))", "s = RUN_SIZE", EXPR_BIND_WEAK},
    };
    for (const auto& c : cases) {
        PARSE p(std::string("SECTIONS { .t : {} > RAM, ") + c.text + " }");
        EXPECT_EQ(p.messages, "") << c.text;
        ASSERT_EQ(p.object()->assignments().size(), 1u) << c.text;
        const EXPRESSION* e = p.object()->assignments()[0];
        EXPECT_EQ(e->get_string(), c.assignment);
        EXPECT_EQ(e->left()->binding(), c.binding) << c.text;
    }
}

TEST(lcf_parser, bodies_hold_specs_assignments_and_dot) {
    PARSE p("SECTIONS { .t : { a.o(.text) *(.text*, .rodata), lib.a<x.o y.o>(.data) = 0xFF, a = 1; "
            ". += 4;\n"
            " here = .; -l rts.lib (.x) -lc.a --library=m.a *(.s) { START(s0), END(s1) } } fill = "
            "0xAAAA }");
    EXPECT_EQ(p.messages, "");
    const COLLECTION* t = p.object();
    ASSERT_EQ(t->members().size(), 9u);
    EXPECT_STREQ(member(t, 0)->name(), ".t.1");
    EXPECT_STREQ(member(t, 1)->name(), ".t.2");
    const auto* second = static_cast<const SECTION_SPEC*>(member(t, 1));
    EXPECT_TRUE(second->file_filter()->is_match_all());
    EXPECT_TRUE(second->section_filter()->match(".text.main"));
    EXPECT_TRUE(second->section_filter()->match(".rodata"));
    EXPECT_FALSE(second->section_filter()->match(".data"));
    const auto* lib = static_cast<const SECTION_SPEC*>(member(t, 2));
    EXPECT_TRUE(lib->member_filter()->match("y.o"));
    EXPECT_EQ(const_cast<SECTION_SPEC*>(lib)->fill()->value(), 0xFFu);
    EXPECT_TRUE(member(t, 3)->is_dot_expression());
    EXPECT_TRUE(member(t, 4)->is_dot_expression());
    ASSERT_EQ(member(t, 4)->assignments().size(), 1u);
    EXPECT_EQ(member(t, 4)->assignments()[0]->get_string(), "here = DOT");
    EXPECT_EQ(member(t, 8)->assignments().size(), 2u);
    EXPECT_EQ(p.spec_files, (STRINGS{"a.o", "lib.a+", "rts.lib+", "c.a+", "m.a+"}));
    ASSERT_EQ(t->assignments().size(), 1u);
    EXPECT_EQ(t->assignments()[0]->get_string(), "a = 0x1");
    EXPECT_EQ(t->fill()->value(), 0xAAAAu);
    EXPECT_EQ(t->fill()->width(), 16u);
    EXPECT_TRUE(p.run()->has_flag(LF_ORDERED));
}

TEST(lcf_parser, operators_in_assignments_do_not_join_names) {
    PARSE p("a = b*c/d; e = f>>2; WEAK(w) = PHY(a) + ALIGN(8);\n");
    EXPECT_EQ(p.messages, "");
    const auto& list = root_collection->assignments();
    ASSERT_GE(list.size(), 3u);
    EXPECT_EQ(list[list.size() - 3]->get_string(), "a = b * c / d");
    EXPECT_EQ(list[list.size() - 2]->get_string(), "e = f >> 0x2");
    EXPECT_EQ(list[list.size() - 1]->get_string(), "w = PHY(a) + ALIGN(0x8)");
    EXPECT_EQ(list[list.size() - 1]->left()->binding(), EXPR_BIND_WEAK);
    EXPECT_LT(list[list.size() - 3]->seq_id(), list[list.size() - 2]->seq_id());
}

TEST(lcf_parser, symbols_may_be_called_like_operators) {
    PARSE p("x = end + size;\n");
    EXPECT_EQ(p.messages, "");
    EXPECT_EQ(root_collection->assignments().back()->get_string(), "x = end + size");
}

TEST(lcf_parser, each_mistake_has_its_message_and_its_line) {
    const struct {
        const char* text;
        const char* message;
    } cases[] = {
        {"\n)", "expecting filename, option, MEMORY, or SECTIONS instead of \")\""},
        {"\n-bad", "invalid option:  -bad"},
        {"\n-o", "option parameter missing or invalid"},
        {"MEMORY {\n 1 }", "expecting memory range or PAGE instead of \"1\""},
        {"MEMORY { A : o = 0, l = 1\n ; }", "expecting memory range specifier instead of \";\""},
        {"MEMORY { A\n (rw) : o = 0, l = 1 }", "invalid memory attribute specifier:  \"rw\""},
        {"MEMORY { A : o =\n foo, l = 1 }",
         "Expecting expression starting with integer, unary operator, or '(' instead of \"foo\"."},
        {"SECTIONS {\n 5 }", "expecting output section, GROUP, or UNION instead of \"5\""},
        {"SECTIONS { .a : load\n RAM }", "expecting \"=\", \">\", or \">>\" instead of \"RAM\""},
        {"SECTIONS { .a : >\n { } }", "expecting address or memory range name instead of \"{\""},
        {"SECTIONS { .a : > A |\n 5 }", "expecting address or memory range name instead of \"5\""},
        {"SECTIONS { .a : > A\n (LOW) }", "expecting HIGH instead of \"LOW\""},
        {"SECTIONS { .a : type =\n FOO }",
         "expecting section type (COPY, DSECT, or NOLOAD) instead of \"FOO\""},
        {"SECTIONS { .a : {} > A,\n }", "bad section property:  \"}\""},
        {"SECTIONS { .a : > A,\n, PAGE 0 }", "bad section property:  \",\""},
        {"SECTIONS { .a : {\n 5 } }", "filename or assignment expected instead of \"5\""},
        {"SECTIONS { .a : {\n -x(.t) } }", "-l must specify a filename"},
        {"SECTIONS { .a : { x.a<\n 5>(.t) } }", "library member name expected instead of \"5\""},
        {"SECTIONS { .a : { *(\n 5) } }", "expecting section name instead of \"5\""},
        {"SECTIONS { .a : { *(.t) {\n foo } } }",
         "symbol definition keyword required (START/SIZE/END/etc.) instead of \"foo\""},
        {"SECTIONS { .a : { .\n 5; } }", "expected assignment operator instead of \"5\""},
        {"a =\n 1 2;", "operator expected instead of \"2\""},
        {"a =\n 1 + ;", "illegal term in expression:  \";\""},
        {"a = PHY(\n 1);", "identifier of \".\" required instead of \"1\""},
        {"a = START(\n 1);", "memory range name expected instead of \"1\""},
        {"a =\n (1;", "expecting \"\")\"\" instead of \";\""},
        {"SECTIONS {\n .a : { *(.t", "end of file encountered unexpectedly"},
        {"MEMORY\n{", "end of file encountered unexpectedly"},
    };
    for (const auto& c : cases) {
        PARSE p(c.text);
        EXPECT_TRUE(p.says(c.message)) << c.text << "\n" << p.messages;
        EXPECT_EQ(p.messages.find("\"t.cmd\", line 2"), 0u) << c.text << "\n" << p.messages;
    }
}

TEST(lcf_parser, one_mistake_gives_one_message_and_the_parse_goes_on) {
    PARSE p("MEMORY { A : o = 0, l = (4 5), B : o = 0x10, l = 4 }\nSECTIONS { .x : { *(.t 5) } > A "
            ".y > B }\nb.o\n");
    EXPECT_EQ(p.errors(), 2) << p.messages;
    EXPECT_NE(p.range("B"), nullptr);
    ASSERT_EQ(p.object_count(), 2u);
    EXPECT_STREQ(p.object(1)->name(), ".y");
    EXPECT_EQ(p.files, STRINGS{"b.o"});
}

TEST(lcf_parser, a_stray_token_before_a_parenthesis_is_dropped) {
    PARSE p("SECTIONS { .a : {} > (RAM ;), ALIGN(4) .b > ROM }");
    EXPECT_EQ(p.errors(), 1) << p.messages;
    ASSERT_EQ(p.object_count(), 2u);
    EXPECT_EQ(p.run()->alignment(), 4u);
}

TEST(lcf_parser, deep_nesting_is_refused_and_not_followed) {
    for (const char* open : {"(", "-", "~(", "ALIGN("}) {
        std::string text = "a = ";
        for (int i = 0; i < 100000; ++i) text += open;
        PARSE p(text + "1;");
        EXPECT_TRUE(p.says("illegal term in expression:  \"")) << open;
    }
    std::string sum = "a = 1";
    for (int i = 0; i < 100000; ++i) sum += " + 1";
    EXPECT_TRUE(PARSE(sum + ";").says("illegal expression"));
    std::string groups = "SECTIONS { ";
    for (int i = 0; i < 100000; ++i) groups += "GROUP { ";
    EXPECT_TRUE(
        PARSE(groups).says("expecting output section, GROUP, or UNION instead of \"GROUP\""));
}

TEST(lcf_parser, any_text_ends) {
    const std::string seed =
        "MEMORY { A (RX) : o = 0, l = (4+1) ALIAS { B : o=9 C : o=99 } LENGTH = 4 }\n"
        "SECTIONS { GROUP(g) : { .a : { a.o(.t) -l x <m>(.d) = 3 { START(s) } . = ALIGN(4); }\n"
        "> (A | B, PAGE 0, HIGH) type=COPY } UNION { .b 0x10 : {} .c >> C } } x = START(A) + 1;\n";
    // Every prefix, and every text that lacks one character or has another in its place.
    for (size_t i = 0; i < seed.size(); ++i) {
        PARSE prefix(seed.substr(0, i));
        PARSE without(seed.substr(0, i) + seed.substr(i + 1));
        for (char c : {'(', '}', ';', '"', ',', '.', '='}) {
            std::string changed = seed;
            changed[i] = c;
            PARSE p(changed);
        }
    }
    PARSE whole(seed);
    EXPECT_EQ(whole.errors(), 0) << whole.messages;
}
