// String pools: each text once, old offsets of a pool that was read.
#include <gtest/gtest.h>

#include <cstring>

#include "OBJEDIT04/ofe/of_string_table.h"

using OFE::OF_STRING_TABLE_MANAGER;

namespace {

OFE::OF_BYTES bytes(const char* text, size_t size) {
    return {reinterpret_cast<const uint8_t*>(text), size};
}

} // namespace

TEST(string_table, an_equal_text_gets_its_old_offset) {
    OF_STRING_TABLE_MANAGER pool;
    EXPECT_EQ(pool.add_string("alpha"), 0u);
    EXPECT_EQ(pool.add_string("beta"), 6u);
    EXPECT_EQ(pool.add_string("alpha"), 0u);
    EXPECT_STREQ(pool.get_string(6), "beta");
    EXPECT_STREQ(pool.get_string(8), "ta");
    EXPECT_EQ(pool.get_string(11), nullptr);
    unsigned offset = 99;
    EXPECT_TRUE(pool.find_string("beta", offset));
    EXPECT_EQ(offset, 6u);
    EXPECT_FALSE(pool.find_string("gamma", offset));
}

TEST(string_table, a_pool_that_was_read_is_indexed_by_the_first_addition) {
    OF_STRING_TABLE_MANAGER pool;
    pool.set_pool(bytes("\0main\0exit\0", 11));
    unsigned offset;
    EXPECT_FALSE(pool.find_string("exit", offset));
    EXPECT_EQ(pool.add_string("exit"), 6u);
    EXPECT_TRUE(pool.find_string("main", offset));
    EXPECT_EQ(offset, 1u);
    EXPECT_EQ(pool.add_string("new"), 11u);
}

TEST(string_table, a_text_without_its_end_is_not_given_out) {
    OF_STRING_TABLE_MANAGER pool;
    pool.set_pool(bytes("ab\0cd", 5));
    EXPECT_STREQ(pool.get_string(0), "ab");
    EXPECT_EQ(pool.get_string(3), nullptr);
    EXPECT_EQ(pool.add_string("ef"), 6u); // after the open end is closed
    EXPECT_STREQ(pool.get_string(3), "cd");
}

TEST(string_table, many_texts_keep_their_offsets) {
    OF_STRING_TABLE_MANAGER pool;
    std::vector<unsigned> offsets;
    for (int i = 0; i < 5000; ++i)
        offsets.push_back(pool.add_string(std::to_string(i * 7).c_str()));
    for (int i = 0; i < 5000; ++i) {
        EXPECT_EQ(pool.add_string(std::to_string(i * 7).c_str()), offsets[static_cast<size_t>(i)]);
        EXPECT_EQ(std::to_string(i * 7), pool.get_string(offsets[static_cast<size_t>(i)]));
    }
}
