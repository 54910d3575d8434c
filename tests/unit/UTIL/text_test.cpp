#include "UTIL/filename.h"
#include "UTIL/pprint.h"
#include "UTIL/str_parser.h"
#include "UTIL/strformat.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace {

std::string tokens(std::string_view text, std::string_view delimiters) {
    STR_PARSER parser(text, delimiters);
    std::string all;
    for (STR_PARSER::TOKEN t = parser.next(); t.kind != STR_PARSER::END; t = parser.next())
        all += (t.kind == STR_PARSER::WORD ? "w:" : "d:") + t.text + " ";
    return all;
}

TEST(StrParser, words_end_at_blanks_and_delimiters) {
    EXPECT_EQ(tokens("lib.a<m.o>(.text, .data)", "()<>,"),
              "w:lib.a d:< w:m.o d:> d:( w:.text d:, w:.data d:) ");
    EXPECT_EQ(tokens("  a=b ", "="), "w:a d:= w:b ");
    EXPECT_EQ(tokens(" \t ", "="), "");
    EXPECT_EQ(tokens("==", "="), "d:= d:= ");
}

TEST(StrParser, peek_takes_nothing) {
    STR_PARSER parser("a b", "");
    EXPECT_EQ(parser.peek().text, "a");
    EXPECT_EQ(parser.next().text, "a");
    EXPECT_EQ(parser.next().text, "b");
    EXPECT_EQ(parser.next().kind, STR_PARSER::END);
    EXPECT_EQ(parser.next().kind, STR_PARSER::END);
}

TEST(FileName, split_and_build_are_inverse) {
    const struct {
        const char *path, *dir, *name;
    } cases[] = {
        {"a.o", "", "a.o"}, {"d/a.o", "d", "a.o"}, {"/a.o", "/", "a.o"}, {"/x/y/", "/x/y", ""}};
    for (const auto& c : cases) {
        std::string dir, name;
        fn_split(c.path, dir, name);
        EXPECT_EQ(dir, c.dir);
        EXPECT_EQ(name, c.name);
        EXPECT_EQ(fn_build(dir, name), c.path);
        EXPECT_EQ(fn_basename(std::string_view(c.path)), c.name);
    }
}

TEST(FileName, an_extension_starts_at_the_last_period_of_the_name) {
    EXPECT_EQ(fn_extension("d.x/a.tar.gz"), ".gz");
    EXPECT_EQ(fn_extension("d.x/a"), "");
    EXPECT_EQ(fn_extension(".profile"), "");
}

TEST(FileName, a_temporary_file_is_there_and_new) {
    const std::string a = fn_tmpnam();
    const std::string b = fn_tmpnam();
    EXPECT_NE(a, b);
    EXPECT_EQ(access(a.c_str(), W_OK), 0);
    unlink(a.c_str());
    unlink(b.c_str());
}

TEST(StrFormat, a_text_longer_than_the_buffer_is_whole) {
    const std::string longer(1000, 'x');
    EXPECT_EQ(strformat("<%s>", longer.c_str()), "<" + longer + ">");
    EXPECT_EQ(strformat("%d%%", 5), "5%");
}

TEST(PPrint, prefixes_stack_up) {
    testing::internal::CaptureStdout();
    PPRINT p(1);
    p.printf("a %d\n", 1);
    p.push("| ");
    p.printf("b\n");
    p.set("> ");
    p.printf("c\n");
    for (int i = 0; i < 9; i++) p.pop();
    p.printf("d\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "   a 1\n   | b\n   > c\nd\n");
}

} // namespace
