#include "ELFLNK/reach/registrar.h"

#include <gtest/gtest.h>

static std::vector<uint64_t> dependents_of(const IMPLICIT_DEP_TABLE& table, uint64_t key) {
    std::vector<uint64_t> found;
    const auto [from, to] = table.dependents(key);
    for (const IMPLICIT_DEP_TABLE::DEP* d = from; d != to; ++d) found.push_back(d->dependent);
    return found;
}

TEST(implicit_dep_table, dependents_are_a_set_in_the_order_of_files_and_sections) {
    IMPLICIT_DEP_TABLE table;
    const uint64_t file2 = uint64_t{2} << 32;
    for (uint64_t dependent : {file2 | 1, uint64_t{9}, uint64_t{3}, file2 | 1, uint64_t{3}})
        table.add_dependent(7, dependent);
    table.add_dependent(6, 1);
    table.add_dependent(8, 2);
    table.finish();
    EXPECT_EQ(dependents_of(table, 7), (std::vector<uint64_t>{3, 9, file2 | 1}));
    EXPECT_EQ(dependents_of(table, 6), std::vector<uint64_t>{1});
}

TEST(implicit_dep_table, an_absent_key_has_none) {
    IMPLICIT_DEP_TABLE table;
    table.finish();
    EXPECT_TRUE(dependents_of(table, 0).empty());
    table.add_dependent(5, 1);
    table.finish();
    EXPECT_TRUE(dependents_of(table, 4).empty());
    EXPECT_TRUE(dependents_of(table, 6).empty());
}
