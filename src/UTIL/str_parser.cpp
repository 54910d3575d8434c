#include "UTIL/str_parser.h"

STR_PARSER::TOKEN STR_PARSER::peek() const {
    constexpr std::string_view BLANKS = " \t\n\r\f\v";
    const size_t start = text_.find_first_not_of(BLANKS, pos_);
    if (start == text_.npos) {
        ahead_ = text_.size();
        return {};
    }
    if (delimiters_.find(text_[start]) != delimiters_.npos) {
        ahead_ = start + 1;
        return {DELIMITER, std::string(1, text_[start])};
    }
    size_t end = start;
    while (end < text_.size() && BLANKS.find(text_[end]) == BLANKS.npos &&
           delimiters_.find(text_[end]) == delimiters_.npos)
        end++;
    ahead_ = end;
    return {WORD, std::string(text_.substr(start, end - start))};
}
