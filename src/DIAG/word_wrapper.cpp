// Word wrap. Invariant: left_ is what is free on the line, counted from columns_ at the start of
// the first line and from columns_ less both indents on the others; a word that is longer than a
// line makes it negative, which counts as full.
#include "DIAG/diagnostic.h"

#include <algorithm>

namespace {

bool is_blank(char c) {
    return c == ' ' || c == '\t';
}

/// Where the first word of the text ends, blanks before it included.
size_t first_word_end(std::string_view text) {
    size_t at = 0;
    while (at < text.size() && is_blank(text[at])) at++;
    while (at < text.size() && !is_blank(text[at]) && text[at] != '\n') at++;
    return at;
}

/// The longest piece of at most `room` characters that ends before white space or at the end; 0 if
/// there is none.
size_t piece_that_fits(std::string_view text, size_t room) {
    if (text.size() <= room) return text.size();
    size_t at = room;
    while (at > 0 && !is_blank(text[at])) at--;
    return at;
}

} // namespace

int WORD_WRAPPER::emit(std::string_view piece) {
    put(piece);
    left_ -= static_cast<int>(piece.size());
    return static_cast<int>(piece.size());
}

int WORD_WRAPPER::start_new_line() {
    put("\n");
    const std::string blanks(static_cast<size_t>(indent_ + wrap_indent_), ' ');
    put(blanks);
    left_ = columns_ - indent_ - wrap_indent_;
    return static_cast<int>(blanks.size()) + 1;
}

int WORD_WRAPPER::print_formatted(std::string_view text) {
    const auto fresh = static_cast<size_t>(columns_ - indent_ - wrap_indent_);
    int printed = 0;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        const size_t room = left_ > 0 ? static_cast<size_t>(left_) : 0;
        size_t take = piece_that_fits(line, room);
        if (take == 0 && !line.empty()) {
            const size_t word = first_word_end(line);
            const bool at_fresh_line = left_ == static_cast<int>(fresh) || left_ == columns_;
            if (!at_fresh_line && (word <= fresh || room == 0)) {
                printed += start_new_line();
                while (!text.empty() && is_blank(text[0])) text.remove_prefix(1);
                continue;
            }
            take = word; // longer than any line: unbroken
        }
        printed += emit(line.substr(0, take));
        text.remove_prefix(take);
        if (text.empty()) break;
        if (take == line.size()) text.remove_prefix(1); // the line end in the text
        while (!text.empty() && is_blank(text[0])) text.remove_prefix(1);
        if (!text.empty() || take == line.size()) printed += start_new_line();
    }
    return printed;
}
