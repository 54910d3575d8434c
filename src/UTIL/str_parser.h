// A tokeniser of short texts: words parted by white space, and one-character delimiters.
#pragma once

#include <string>
#include <string_view>

class STR_PARSER {
  public:
    enum KIND { END, WORD, DELIMITER };
    struct TOKEN {
        KIND kind = END;
        std::string text; ///< the word, or the delimiter's one character
        bool is(char delimiter) const { return kind == DELIMITER && text[0] == delimiter; }
    };

    /// `text` and `delimiters` are not copied.
    STR_PARSER(std::string_view text, std::string_view delimiters)
        : text_(text), delimiters_(delimiters) {}

    /// The next token, which is taken.
    TOKEN next() {
        const TOKEN token = peek();
        pos_ = ahead_;
        return token;
    }

    /// The next token, which stays.
    TOKEN peek() const;

  private:
    std::string_view text_;
    std::string_view delimiters_;
    size_t pos_ = 0;
    mutable size_t ahead_ = 0;
};
