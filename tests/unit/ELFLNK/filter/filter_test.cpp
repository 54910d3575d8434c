// Patterns: what they match, and which covers which.
#include "ELFLNK/filter/filter.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "ELFLNK/target/target.h"
#include "OPTIONGEN/option_obj.h"

namespace {

/// The rule of a match, as it is told.
bool matches(const char* pattern, const char* text) {
    if (*pattern == '\0') return *text == '\0';
    if (*pattern == '*')
        return matches(pattern + 1, text) || (*text != '\0' && matches(pattern, text + 1));
    return *text != '\0' && (*pattern == '?' || *pattern == *text) &&
           matches(pattern + 1, text + 1);
}

/// Coverage step by step: "*" of a by "*" of b only, "?" by "?" or "*".
bool covered(const char* a, const char* b) {
    if (*b == '*') return covered(a, b + 1) || (*a != '\0' && covered(a + 1, b));
    if (*a == '\0' || *b == '\0') return *a == *b;
    if (*a == '*') return false;
    return (*b == '?' || *a == *b) && covered(a + 1, b + 1);
}

std::string random_text(std::mt19937& random, const char* letters) {
    std::string text;
    std::string set = letters;
    for (std::size_t n = 1 + random() % 6; n != 0; --n) text += set[random() % set.size()];
    return text;
}

class FILTER_TEST : public testing::Test {
  protected:
    FILTER_TEST() {
        if (global_opts == nullptr) global_opts = new option_obj(true);
        Target->finalize_options();
    }
};

} // namespace

TEST_F(FILTER_TEST, globs_match_as_the_rule_says) {
    std::mt19937 random(3);
    for (int i = 0; i < 20000; ++i) {
        std::string pattern = random_text(random, "ab*?");
        std::string text = random_text(random, "ab");
        ASSERT_EQ(match_glob(pattern.c_str(), text.c_str()), matches(pattern.c_str(), text.c_str()))
            << pattern << " on " << text;
    }
}

TEST_F(FILTER_TEST, a_pattern_of_many_stars_is_matched_without_trying_all_ways) {
    std::string text(5000, 'a');
    std::string pattern;
    for (int i = 0; i < 40; ++i) pattern += "a*";
    EXPECT_FALSE(match_glob((pattern + "b").c_str(), text.c_str()));
    EXPECT_TRUE(match_glob(pattern.c_str(), text.c_str()));
}

TEST_F(FILTER_TEST, one_pattern_covers_another_as_the_rule_says) {
    std::mt19937 random(4);
    for (int i = 0; i < 20000; ++i) {
        std::string a = random_text(random, "ab*?");
        std::string b = random_text(random, "ab*?");
        ASSERT_EQ(glob_subset_base(a.c_str(), b.c_str(), 0), covered(a.c_str(), b.c_str()))
            << a << " in " << b;
    }
}

TEST_F(FILTER_TEST, empty_and_null_never_match) {
    EXPECT_FALSE(match_glob("*", ""));
    EXPECT_FALSE(match_glob("*", nullptr));
    EXPECT_FALSE(match_glob("", "a"));
    EXPECT_FALSE(glob_subset("", "*"));
    EXPECT_FALSE(FILENAME_FILTER("*").match(nullptr));
}

TEST_F(FILTER_TEST, all_is_covered_by_all_but_one_character) {
    EXPECT_TRUE(glob_subset("*", "*?"));
    EXPECT_FALSE(glob_subset_base("*", "*?", 0));
}

TEST_F(FILTER_TEST, match_all_is_stars_with_at_most_one_question_mark) {
    for (const char* text : {"*", "**", "*?", "*?*"})
        EXPECT_TRUE(FILTER::is_match_all(text)) << text;
    for (const char* text : {"", "?", "?*", "*??", "*a"})
        EXPECT_FALSE(FILTER::is_match_all(text)) << text;
}

TEST_F(FILTER_TEST, a_literal_section_name_takes_its_subsections) {
    SECTION_FILTER text(".text");
    EXPECT_TRUE(text.match(".text"));
    EXPECT_TRUE(text.match(".text:x"));
    EXPECT_FALSE(text.match(".textual"));
    EXPECT_FALSE(text.match(".text.x"));
    EXPECT_FALSE(text.match(".tex"));
    EXPECT_FALSE(text.match(""));
    SECTION_FILTER wild(".text*");
    EXPECT_TRUE(wild.match(".text.x"));
    SECTION_FILTER exact("t?");
    EXPECT_FALSE(exact.match("ta:x"));
}

TEST_F(FILTER_TEST, the_wider_pattern_supersedes) {
    struct {
        const char* a;
        const char* b;
        int expected;
    } cases[] = {{".text*", ".text.hot", 1}, {".text.hot", ".text*", -1}, {".text", ".text", 0},
                 {".text", ".text:a", 1},    {".text", ".data", 0},       {"*", ".t*", 1},
                 {".t*x", ".t*y", 0},        {".text", ".textual", 0},    {".tex?", ".text", 1}};
    for (const auto& c : cases) {
        SECTION_FILTER a(c.a);
        SECTION_FILTER b(c.b);
        EXPECT_EQ(FILTER::supersede_compare(&a, &b), c.expected) << c.a << " and " << c.b;
    }
}

TEST_F(FILTER_TEST, a_list_supersedes_what_each_of_its_names_does) {
    SECTION_FILTER hot(".text.hot");
    SECTION_FILTER wide(FILTER::OR, new SECTION_FILTER(".text*"), new SECTION_FILTER("*"));
    SECTION_FILTER mixed(FILTER::OR, new SECTION_FILTER(".data*"), new SECTION_FILTER(".text*"));
    EXPECT_TRUE(wide.supersedes(&hot));
    EXPECT_FALSE(mixed.supersedes(&hot));
}

TEST_F(FILTER_TEST, trees_combine_with_and_or_not) {
    FILENAME_FILTER either(FILTER::OR, new FILENAME_FILTER("a*"), new FILENAME_FILTER("b*"));
    EXPECT_TRUE(either.match("ax"));
    EXPECT_TRUE(either.match("bx"));
    EXPECT_FALSE(either.match("cx"));
    FILENAME_FILTER both(FILTER::AND, new FILENAME_FILTER("a*"), new FILENAME_FILTER("*x"));
    EXPECT_TRUE(both.match("ax"));
    EXPECT_FALSE(both.match("ay"));
    FILENAME_FILTER none(FILTER::NOT, new FILENAME_FILTER("a*"), nullptr);
    EXPECT_TRUE(none.match("b"));
    EXPECT_FALSE(none.match("a"));
    EXPECT_TRUE(either.has_wildcards());
    EXPECT_FALSE(either.is_match_all());
}

TEST_F(FILTER_TEST, a_list_of_very_many_names_needs_no_deep_stack) {
    constexpr unsigned count = 300000;
    std::vector<std::string> names;
    for (unsigned i = 0; i < count; ++i) names.push_back(".text.f" + std::to_string(i));
    auto* list = new SECTION_FILTER(names[0].c_str());
    for (unsigned i = 1; i < count; ++i)
        list = new SECTION_FILTER(FILTER::OR, new SECTION_FILTER(names[i].c_str()), list);
    EXPECT_TRUE(list->match(".text.f0"));
    EXPECT_FALSE(list->match(".text"));
    EXPECT_FALSE(list->has_wildcards());
    EXPECT_FALSE(list->is_match_all());
    EXPECT_FALSE(list->supersedes(list->left()));
    const std::string key = list->key();
    EXPECT_GT(key.size(), count * 10);
    delete list;
}

TEST_F(FILTER_TEST, an_empty_pattern_ends_the_link) {
    EXPECT_EXIT(FILTER(""), testing::ExitedWithCode(1), "empty pattern string");
    EXPECT_EXIT(FILTER(FILTER::OR, nullptr, nullptr), testing::ExitedWithCode(1),
                "illegal pattern");
}
