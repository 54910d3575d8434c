// The tokens of the preprocessor, and how a line is split into them. A token is a view of the text
// that it was read from, so that making one costs no memory beyond itself.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

class DIAGNOSTIC;

enum PP_KIND : uint16_t {
    PP_PARAM = 1,     // a parameter in the body of a macro
    PP_STRINGIZE = 3, // #
    PP_PASTE = 4,     // ##
    PP_NAME = 5,
    PP_NUMBER = 7,
    PP_STRING = 9,
    PP_OTHER = 10, // a character that means nothing here
    PP_CHAR = 15,  // a character constant
    PP_LPAREN = 40,
    PP_RPAREN = 41,
    PP_COMMA = 44,
    PP_COLON = 58,
    PP_QUESTION = 63,
    PP_TILDE = 126,
    PP_PLUS = 128,
    PP_MINUS = 131,
    PP_STAR = 134,
    PP_SLASH = 136,
    PP_PERCENT = 138,
    PP_AND = 140,
    PP_LAND = 142,
    PP_OR = 143,
    PP_LOR = 145,
    PP_XOR = 146,
    PP_GT = 148,
    PP_GE = 149,
    PP_SHR = 150,
    PP_LT = 152,
    PP_LE = 153,
    PP_SHL = 154,
    PP_EQ = 157,
    PP_NOT = 158,
    PP_NE = 159,
};

struct PP_TOKEN {
    const char* text = nullptr;
    uint32_t length = 0;
    uint32_t gap = 0; // blanks in front of it
    uint32_t line = 0;
    uint32_t column = 0; // from 1
    uint16_t kind = PP_OTHER;
    uint16_t param = 0;     // index of a PP_PARAM
    bool no_expand = false; // the name of a macro that was met inside of its own expansion

    std::string_view str() const { return {text, length}; }
};

using PP_TOKENS = std::span<const PP_TOKEN>;

/// Where messages of the preprocessor's pieces go.
class PP_ERRORS {
  public:
    virtual ~PP_ERRORS() = default;
    virtual void cpp_error(DIAGNOSTIC&& diag) = 0;
    /// The same for a message after which reading makes no sense.
    virtual void cpp_fatal(DIAGNOSTIC&& diag) = 0;
};

/// A line of a file, comments and continuations resolved, without its newline.
struct PP_LINE {
    /// From this offset on the text stands in the file at this place.
    struct PIECE {
        uint32_t offset;
        uint32_t line;
        uint32_t column;
    };
    std::string_view text;
    std::vector<PIECE> pieces; // ascending; the first has offset 0
};

constexpr bool pp_is_digit(char c) {
    return c >= '0' && c <= '9';
}
constexpr bool pp_is_letter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '$';
}
constexpr bool pp_is_word(char c) {
    return pp_is_letter(c) || pp_is_digit(c);
}
constexpr bool pp_is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v';
}
/// A character that no source text holds outside of quotes.
constexpr bool pp_is_illegal(char c) {
    return static_cast<unsigned char>(c) < ' ' ? !pp_is_blank(c)
                                               : static_cast<unsigned char>(c) >= 0x7F;
}

/// Appends the tokens of the line from `offset` on.
void pp_tokenize(const PP_LINE& line, size_t offset, std::vector<PP_TOKEN>& tokens,
                 PP_ERRORS& errors);
/// The same for a text that stands in no file.
void pp_tokenize(std::string_view text, std::vector<PP_TOKEN>& tokens, PP_ERRORS& errors);
