#include "ELFLNK/symbol/name_table.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>

TEST(name_table, equal_texts_have_one_id_whatever_their_address) {
    NAME_TABLE names;
    const std::string a = "main", b = "main", c = "Main";
    const uint32_t id = names.intern(a.c_str());
    EXPECT_EQ(names.intern(b.c_str()), id);
    EXPECT_NE(names.intern(c.c_str()), id);
    EXPECT_EQ(names.text(id), a.c_str());
    EXPECT_EQ(names.size(), 2u);
}

TEST(name_table, a_name_that_was_never_interned_is_not_found) {
    NAME_TABLE names;
    EXPECT_EQ(names.find("x"), NAME_TABLE::NO_NAME);
    names.intern("x");
    EXPECT_EQ(names.find("xx"), NAME_TABLE::NO_NAME);
    EXPECT_EQ(names.find(""), NAME_TABLE::NO_NAME);
}

TEST(name_table, the_empty_name_is_a_name) {
    NAME_TABLE names;
    const uint32_t id = names.intern("");
    EXPECT_EQ(names.find(""), id);
}

TEST(name_table, ids_are_dense_and_survive_growth) {
    NAME_TABLE names;
    std::deque<std::string> texts;
    for (uint32_t i = 0; i < 20000; ++i) {
        texts.push_back("symbol_" + std::to_string(i * 7919 % 20011));
        ASSERT_EQ(names.intern(texts.back().c_str()), i);
    }
    for (uint32_t i = 0; i < texts.size(); ++i) {
        ASSERT_EQ(names.find(texts[i]), i);
        ASSERT_EQ(names.view(i), texts[i]);
    }
}

TEST(name_table, a_prefix_of_a_longer_text_can_be_interned) {
    NAME_TABLE names;
    const char text[] = "alpha\0beta";
    const uint32_t id = names.intern(std::string_view(text, 5), text);
    EXPECT_EQ(names.find("alpha"), id);
}
