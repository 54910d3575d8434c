#include "UTIL/text_table.h"

#include <gtest/gtest.h>

namespace {

std::string printed(const TEXT_TABLE& table) {
    std::string text;
    table.print(text);
    return text;
}

TEST(TextTable, columns_take_their_longest_cell_and_their_alignment) {
    TEXT_TABLE table;
    table.set_indent(2);
    table.set_padding(1);
    table.set_col_align(1, TA_RIGHT);
    table.set_col_align(2, TA_CENTER);
    table.set_text(0, 0, "name");
    table.set_text(0, 1, "%d", 7);
    table.set_text(0, 2, "c");
    table.set_text(0, 3, "|");
    table.set_text(1, 0, "x");
    table.set_text(1, 1, "%#x", 0x1234);
    table.set_text(1, 2, "12345");
    table.set_text(1, 3, "|");
    EXPECT_EQ(printed(table), "  name      7   c   |\n"
                              "  x    0x1234 12345 |\n");
}

TEST(TextTable, a_cell_wider_than_a_set_width_is_cut) {
    TEXT_TABLE table;
    table.set_col_width(0, 6);
    table.set_string(0, 0, "abcdefgh");
    table.set_string(0, 1, "y");
    table.set_string(1, 0, "abcdef");
    table.set_string(2, 1, "z");
    EXPECT_EQ(printed(table), "abc...y\nabcdef\n      z\n");
}

TEST(TextTable, free_and_spill_cells_take_no_width) {
    TEXT_TABLE table;
    table.set_padding(2);
    table.set_col_align(0, TA_SPILL);
    table.set_string(0, 0, "a heading that is long");
    table.set_string(0, 1, "never seen");
    table.set_string(1, 1, "m");
    table.set_string(1, 2, "1");
    table.set_string(2, 1, "mm");
    table.set_string(2, 2, "2");
    table.set_col_width(1, 4);
    EXPECT_EQ(printed(table), "a heading that is long\n  m     1\n  mm    2\n");
}

TEST(TextTable, a_border_row_has_a_plus_at_each_column) {
    TEXT_TABLE table;
    table.set_padding(3);
    table.set_string(0, 0, "ab");
    table.set_string(0, 1, "c");
    table.set_row_as_border(1);
    EXPECT_EQ(printed(table), "ab   c\n+----+---+\n");
}

TEST(TextTable, a_border_surrounds_the_table) {
    TEXT_TABLE table;
    table.set_border(true);
    table.set_string(0, 0, "ab");
    table.set_string(0, 1, "c");
    table.set_string(1, 0, "d");
    EXPECT_EQ(printed(table), "+----+---+\n| ab | c |\n| d  |   |\n+----+---+\n");
}

TEST(TextTable, one_long_cell_does_not_make_all_rows_long) {
    constexpr int ROWS = 100000;
    TEXT_TABLE table;
    table.set_string(0, 0, std::string(1000000, 'x'));
    for (int row = 1; row < ROWS; ++row) table.set_string(row, 0, "y");
    EXPECT_EQ(printed(table).size(), 1000001U + 2 * (ROWS - 1));
}

TEST(TextTable, control_characters_print_as_blanks) {
    TEXT_TABLE table;
    table.set_string(0, 0, "a\tb\nc\rd");
    EXPECT_EQ(printed(table), "a b c d\n");
}

TEST(TextTable, rows_and_columns_grow_in_any_order) {
    TEXT_TABLE table;
    table.set_min_size(2, 1);
    EXPECT_EQ(table.append_rows(2), 2);
    EXPECT_EQ(table.append_cols(), 1);
    table.set_string(3, 0, "old");
    table.set_string(1, 5, "far");
    table.set_string(3, 0, "new");
    EXPECT_EQ(table.nrows(), 4);
    EXPECT_EQ(table.ncols(), 6);
    EXPECT_EQ(table.text(1, 5), "far");
    EXPECT_EQ(table.text(3, 0), "new");
    EXPECT_EQ(table.text(9, 9), "");
    table.clear();
    EXPECT_EQ(printed(table), "");
}

} // namespace
