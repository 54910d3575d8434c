// Lines to tokens.
#include "CPP/pp_token.h"

#include "DIAG/cpp_msgs.h"

namespace {

struct OPERATOR {
    char first;
    char second; // 0 for an operator of one character
    uint16_t kind;
};

// Those of two characters stand in front of those that begin them.
constexpr OPERATOR operators[] = {
    {'#', '#', PP_PASTE}, {'#', 0, PP_STRINGIZE}, {'(', 0, PP_LPAREN},   {')', 0, PP_RPAREN},
    {',', 0, PP_COMMA},   {':', 0, PP_COLON},     {'?', 0, PP_QUESTION}, {'~', 0, PP_TILDE},
    {'+', 0, PP_PLUS},    {'-', 0, PP_MINUS},     {'*', 0, PP_STAR},     {'/', 0, PP_SLASH},
    {'%', 0, PP_PERCENT}, {'&', '&', PP_LAND},    {'&', 0, PP_AND},      {'|', '|', PP_LOR},
    {'|', 0, PP_OR},      {'^', 0, PP_XOR},       {'>', '=', PP_GE},     {'>', '>', PP_SHR},
    {'>', 0, PP_GT},      {'<', '=', PP_LE},      {'<', '<', PP_SHL},    {'<', 0, PP_LT},
    {'=', '=', PP_EQ},    {'!', '=', PP_NE},      {'!', 0, PP_NOT},
};

const OPERATOR* find_operator(std::string_view text) {
    for (const OPERATOR& op : operators)
        if (text[0] == op.first && (op.second == 0 || (text.size() > 1 && text[1] == op.second)))
            return &op;
    return nullptr;
}

// The length of a string or character constant at the start of the text, with its quotes.
size_t quoted_length(std::string_view text, bool& closed) {
    for (size_t i = 1; i < text.size(); ++i) {
        if (text[i] == '\\') {
            ++i;
        } else if (text[i] == text[0]) {
            closed = true;
            return i + 1;
        }
    }
    closed = false;
    return text.size();
}

class TOKENIZER {
  public:
    TOKENIZER(std::string_view text, PP_ERRORS& errors) : text_(text), errors_(errors) {}

    // The token at the offset, which is no blank.
    PP_TOKEN token(size_t at) {
        const std::string_view rest = text_.substr(at);
        PP_TOKEN t;
        t.text = rest.data();
        t.length = 1;
        const char c = rest[0];
        if (pp_is_word(c)) {
            while (t.length < rest.size() && pp_is_word(rest[t.length])) ++t.length;
            t.kind = pp_is_digit(c) ? PP_NUMBER : PP_NAME;
        } else if (c == '"' || c == '\'') {
            bool closed = false;
            t.length = static_cast<uint32_t>(quoted_length(rest, closed));
            t.kind = c == '"' ? PP_STRING : PP_CHAR;
            if (!closed) {
                t.kind = PP_OTHER;
                errors_.cpp_error(DIAG::cpp_open_quote(__FILE__, __LINE__));
            }
        } else if (const OPERATOR* op = find_operator(rest)) {
            t.length = op->second != 0 ? 2 : 1;
            t.kind = op->kind;
        } else if (pp_is_illegal(c)) {
            errors_.cpp_error(
                DIAG::cpp_bad_char(__FILE__, __LINE__, static_cast<unsigned char>(c)));
        }
        return t;
    }

  private:
    std::string_view text_;
    PP_ERRORS& errors_;
};

} // namespace

void pp_tokenize(const PP_LINE& line, size_t offset, std::vector<PP_TOKEN>& tokens,
                 PP_ERRORS& errors) {
    TOKENIZER tokenizer(line.text, errors);
    size_t piece = 0;
    size_t at = offset;
    for (;;) {
        const size_t begin = at;
        while (at < line.text.size() && pp_is_blank(line.text[at])) ++at;
        if (at >= line.text.size()) return;
        PP_TOKEN t = tokenizer.token(at);
        t.gap = static_cast<uint32_t>(at - begin);
        while (piece + 1 < line.pieces.size() && line.pieces[piece + 1].offset <= at) ++piece;
        if (!line.pieces.empty()) {
            t.line = line.pieces[piece].line;
            t.column =
                line.pieces[piece].column + static_cast<uint32_t>(at) - line.pieces[piece].offset;
        }
        tokens.push_back(t);
        at += t.length;
    }
}

void pp_tokenize(std::string_view text, std::vector<PP_TOKEN>& tokens, PP_ERRORS& errors) {
    pp_tokenize(PP_LINE{text, {}}, 0, tokens, errors);
}
