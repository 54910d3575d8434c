#include "ELFLNK/reach/registrar.h"

#include <gtest/gtest.h>

static std::vector<uint64_t> list_of(const SECTION_LISTS& lists, uint64_t key) {
    std::vector<uint64_t> found;
    lists.for_each(key, [&](uint64_t item) { found.push_back(item); });
    return found;
}

TEST(section_lists, items_keep_their_order_and_are_not_repeated_in_a_row) {
    SECTION_LISTS lists;
    const uint64_t file2 = uint64_t{2} << 32;
    for (uint64_t item : {uint64_t{9}, uint64_t{9}, uint64_t{3}}) lists.add(file2 | 7, item);
    lists.add(file2 | 6, 1);
    for (uint64_t item : {uint64_t{3}, file2 | 5}) lists.add(file2 | 7, item);
    EXPECT_EQ(list_of(lists, file2 | 7), (std::vector<uint64_t>{9, 3, file2 | 5}));
    EXPECT_EQ(list_of(lists, file2 | 6), std::vector<uint64_t>{1});
}

TEST(section_lists, an_absent_key_has_none) {
    SECTION_LISTS lists;
    EXPECT_TRUE(list_of(lists, 0).empty());
    lists.add(5, 1);
    for (uint64_t absent : {uint64_t{4}, uint64_t{6}, uint64_t{1} << 32 | 5})
        EXPECT_TRUE(list_of(lists, absent).empty());
}
