// A grid of text cells that prints with aligned columns: map file, memory tables, object dumps.
//
// All cells live in one text buffer, so that a table of 100,000 rows costs two arrays, and print()
// writes rows through one line buffer.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

/// How a column's cells are set. FREE cells take no width and get no padding; after a SPILL cell
/// with text the row ends.
enum TEXT_ALIGN { TA_LEFT = 0, TA_CENTER = 1, TA_RIGHT = 2, TA_FREE = 3, TA_SPILL = 4 };

class TEXT_TABLE {
  public:
    TEXT_TABLE() = default;
    virtual ~TEXT_TABLE() = default;

    /// Blanks before each line.
    void set_indent(int indent) { indent_ = indent; }
    /// Blanks between two columns.
    void set_padding(int padding) { padding_ = padding; }
    /// Lines around the table and between its columns.
    void set_border(bool border) { border_ = border; }
    /// A fixed width; a longer cell is cut and ends in "...". 0 means the width of the longest
    /// cell.
    void set_col_width(int col, int width);
    void set_col_align(int col, TEXT_ALIGN align);
    /// Sets a cell; the table grows to hold it.
    [[gnu::format(printf, 4, 5)]] void set_text(int row, int col, const char* format, ...);
    /// The same with a text that is taken as it stands.
    void set_string(int row, int col, std::string_view text);
    /// A cell's text; empty outside the table. Valid until the next cell is set.
    std::string_view text(int row, int col) const;
    void set_min_size(int rows, int cols);
    /// Adds rows; returns the index of the first one.
    int append_rows(int count = 1);
    int append_cols(int count = 1);
    /// The row prints as one line of '-' with '+' at each column's start and at the end.
    void set_row_as_border(int row);
    void clear();
    int ncols() const { return cols_; }
    int nrows() const { return rows_; }
    void print(FILE* to) const;
    /// Appends what print() would write.
    void print(std::string& to) const;

  private:
    struct CELL {
        uint32_t offset = 0;
        uint32_t length = 0;
    };
    struct COLUMN {
        int width = 0;
        TEXT_ALIGN align = TA_LEFT;
    };
    class LINE;
    std::vector<int> widths() const;
    void print_row(std::string& to, int row, const std::vector<int>& widths) const;
    void print_rule(std::string& to, const std::vector<int>& widths) const;
    static void append_cell(LINE& line, std::string_view text, int width, TEXT_ALIGN align);
    std::vector<CELL>::const_iterator row_cells(int row) const {
        return cells_.begin() + long{row} * stride_;
    }

    int indent_ = 0;
    int padding_ = 0;
    bool border_ = false;
    int rows_ = 0;
    int cols_ = 0;
    int stride_ = 0; // cells per row in cells_, at least cols_
    std::string text_;
    std::vector<CELL> cells_;
    std::vector<COLUMN> columns_;
    std::vector<bool> rules_;
};
