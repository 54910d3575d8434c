// Text tables. Cells are (offset, length) pairs into text_, row after row with stride_ cells each,
// so that adding a column seldom moves anything. A cell that is set again leaves its old text
// behind until clear().
#include "UTIL/text_table.h"

#include "UTIL/narrow.h"
#include "UTIL/strformat.h"

#include <algorithm>
#include <cstdarg>
#include <cstddef>

namespace {

constexpr size_t PRINT_BLOCK = 64 * 1024;

} // namespace

// A line of text that ends in no blanks. Blanks wait until something follows them: one long cell
// would otherwise cost every row its width.
class TEXT_TABLE::LINE {
  public:
    explicit LINE(std::string& to) : to_(to), start_(to.size()) {}

    void add_blanks(size_t count) { waiting_ += count; }
    void add(std::string_view text) {
        if (text.empty()) return;
        to_.append(waiting_, ' ');
        waiting_ = 0;
        const auto begin = static_cast<ptrdiff_t>(to_.size());
        to_ += text;
        std::replace_if(
            to_.begin() + begin, to_.end(),
            [](char c) { return c == '\t' || c == '\n' || c == '\r'; }, ' ');
    }
    void end() {
        while (to_.size() > start_ && to_.back() == ' ') to_.pop_back();
        to_ += '\n';
    }

  private:
    std::string& to_;
    size_t start_;
    size_t waiting_ = 0;
};

void TEXT_TABLE::set_min_size(int rows, int cols) {
    if (cols > stride_) {
        const int stride = std::max(cols, stride_ * 2);
        std::vector<CELL> moved(static_cast<size_t>(rows_) * static_cast<size_t>(stride));
        for (int row = 0; row < rows_; row++)
            std::copy_n(row_cells(row), stride_, moved.begin() + long{row} * stride);
        cells_ = std::move(moved);
        stride_ = stride;
    }
    if (cols > cols_) {
        cols_ = cols;
        columns_.resize(static_cast<size_t>(cols));
    }
    if (rows > rows_) {
        rows_ = rows;
        rules_.resize(static_cast<size_t>(rows));
    }
    cells_.resize(static_cast<size_t>(rows_) * static_cast<size_t>(stride_));
}

int TEXT_TABLE::append_rows(int count) {
    const int first = rows_;
    set_min_size(rows_ + count, cols_);
    return first;
}

int TEXT_TABLE::append_cols(int count) {
    const int first = cols_;
    set_min_size(rows_, cols_ + count);
    return first;
}

void TEXT_TABLE::set_col_width(int col, int width) {
    set_min_size(rows_, col + 1);
    columns_[static_cast<size_t>(col)].width = width;
}

void TEXT_TABLE::set_col_align(int col, TEXT_ALIGN align) {
    set_min_size(rows_, col + 1);
    columns_[static_cast<size_t>(col)].align = align;
}

void TEXT_TABLE::set_row_as_border(int row) {
    set_min_size(row + 1, cols_);
    rules_[static_cast<size_t>(row)] = true;
}

void TEXT_TABLE::set_string(int row, int col, std::string_view text) {
    set_min_size(row + 1, col + 1);
    CELL& cell =
        cells_[static_cast<size_t>(row) * static_cast<size_t>(stride_) + static_cast<size_t>(col)];
    cell = {narrow<uint32_t>(text_.size()), narrow<uint32_t>(text.size())};
    text_ += text;
}

void TEXT_TABLE::set_text(int row, int col, const char* format, ...) {
    set_min_size(row + 1, col + 1);
    CELL& cell =
        cells_[static_cast<size_t>(row) * static_cast<size_t>(stride_) + static_cast<size_t>(col)];
    cell.offset = narrow<uint32_t>(text_.size());
    va_list args;
    va_start(args, format);
    cell.length = narrow<uint32_t>(vstrappend(text_, format, args));
    va_end(args);
}

std::string_view TEXT_TABLE::text(int row, int col) const {
    if (row < 0 || row >= rows_ || col < 0 || col >= cols_) return {};
    const CELL& cell = row_cells(row)[col];
    return std::string_view(text_).substr(cell.offset, cell.length);
}

void TEXT_TABLE::clear() {
    rows_ = cols_ = stride_ = 0;
    text_.clear();
    cells_.clear();
    columns_.clear();
    rules_.clear();
}

std::vector<int> TEXT_TABLE::widths() const {
    std::vector<int> result(static_cast<size_t>(cols_));
    for (int col = 0; col < cols_; col++) {
        const COLUMN& column = columns_[static_cast<size_t>(col)];
        int& width = result[static_cast<size_t>(col)];
        width = column.width;
        if (width != 0 || column.align == TA_FREE || column.align == TA_SPILL) continue;
        for (int row = 0; row < rows_; row++)
            if (!rules_[static_cast<size_t>(row)])
                width = std::max(width, static_cast<int>(row_cells(row)[col].length));
    }
    return result;
}

void TEXT_TABLE::append_cell(LINE& line, std::string_view cell, int width, TEXT_ALIGN align) {
    const bool fixed = align != TA_FREE && align != TA_SPILL;
    const auto room = static_cast<size_t>(width);
    std::string cut;
    if (fixed && cell.size() > room) {
        cut = std::string(cell.substr(0, room > 3 ? room - 3 : 0)) +
              std::string(std::min<size_t>(room, 3), '.');
        cell = cut;
    }
    const size_t blanks = fixed ? room - cell.size() : 0;
    const size_t before = align == TA_RIGHT ? blanks : align == TA_CENTER ? blanks / 2 : 0;
    line.add_blanks(before);
    line.add(cell);
    line.add_blanks(blanks - before);
}

void TEXT_TABLE::print_rule(std::string& to, const std::vector<int>& widths) const {
    to.append(static_cast<size_t>(indent_), ' ');
    for (int width : widths) {
        to += '+';
        to.append(static_cast<size_t>(width) + 2, '-');
    }
    to += "+\n";
}

void TEXT_TABLE::print_row(std::string& to, int row, const std::vector<int>& widths) const {
    if (rules_[static_cast<size_t>(row)]) {
        print_rule(to, widths);
        return;
    }
    LINE line(to);
    line.add_blanks(static_cast<size_t>(indent_));
    if (border_) line.add("| ");
    for (int col = 0; col < cols_; col++) {
        const TEXT_ALIGN align = columns_[static_cast<size_t>(col)].align;
        const std::string_view cell = text(row, col);
        if (col != 0) border_ ? line.add(" | ") : line.add_blanks(static_cast<size_t>(padding_));
        append_cell(line, cell, widths[static_cast<size_t>(col)], align);
        if (align == TA_SPILL && !cell.empty()) break;
    }
    if (border_) line.add(" |");
    line.end();
}

void TEXT_TABLE::print(std::string& to) const {
    const std::vector<int> all = widths();
    if (border_ && rows_ != 0) print_rule(to, all);
    for (int row = 0; row < rows_; row++) print_row(to, row, all);
    if (border_ && rows_ != 0) print_rule(to, all);
}

void TEXT_TABLE::print(FILE* to) const {
    const std::vector<int> all = widths();
    std::string block;
    if (border_ && rows_ != 0) print_rule(block, all);
    for (int row = 0; row < rows_; row++) {
        print_row(block, row, all);
        if (block.size() >= PRINT_BLOCK) {
            std::fwrite(block.data(), 1, block.size(), to);
            block.clear();
        }
    }
    if (border_ && rows_ != 0) print_rule(block, all);
    std::fwrite(block.data(), 1, block.size(), to);
}
