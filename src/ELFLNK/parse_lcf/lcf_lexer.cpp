// Lines to tokens. Every step of the analysis consumes at least one character, so that the lexer
// ends on any input, and it never looks behind the end of the line in hand.
#include "ELFLNK/parse_lcf/lcf_lexer.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "DIAG/elnk_msgs.h"
#include "UTIL/savestr.h"

namespace {

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}
bool is_octal(char c) {
    return c >= '0' && c <= '7';
}
bool is_hex(char c) {
    return is_digit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}
bool is_alpha(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool is_space(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
bool is_glob(char c) {
    return c != '\0' && std::strchr("*/?[\\]", c) != nullptr;
}
bool is_word(char c) {
    return is_alpha(c) || is_digit(c) || c == '$' || c == '.' || c == '_';
}
char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}
unsigned digit_value(char c) {
    return is_digit(c) ? static_cast<unsigned>(c - '0')
                       : static_cast<unsigned>(lower(c) - 'a') + 10;
}

struct PAIR {
    char text[3];
    int code;
};

// Two-character operators in the order of their codes.
constexpr PAIR pairs[] = {
    {"&&", TOK_LAND},       {"||", TOK_LOR},        {"==", TOK_EQ},         {"!=", TOK_NE},
    {">=", TOK_GE},         {"<=", TOK_LE},         {"<<", TOK_SHL},        {">>", TOK_SHR},
    {"+=", TOK_ADD_ASSIGN}, {"-=", TOK_SUB_ASSIGN}, {"*=", TOK_MUL_ASSIGN}, {"/=", TOK_DIV_ASSIGN},
};
static_assert(std::size(pairs) == TOK_END - TOK_LAND && TOK_LAND == 261 && TOK_DIV_ASSIGN == 272);

constexpr std::string_view singles = "!%(),;{}~&+-=><|";

struct SUFFIX {
    char letter;
    uint64_t factor;
};
constexpr SUFFIX decimal_suffixes[] = {{'k', 0x400}, {'m', 0x100000}, {'g', 0x40000000}};

uint64_t number(std::string_view digits, unsigned radix) {
    uint64_t value = 0;
    for (char c : digits) value = value * radix + digit_value(c);
    return value;
}

} // namespace

SOURCE_POSITION LCF_TOKEN::position() const {
    return SOURCE_POSITION(file, line, column);
}

std::string LCF_TOKEN::name(int code) {
    static constexpr const char* fixed[] = {"ERR", "EOF", "<name>", "<constant>", "<option>"};
    if (code >= TOK_ERR && code < TOK_LAND) return fixed[code - TOK_ERR];
    if (code >= TOK_LAND && code < TOK_END)
        return '"' + std::string(pairs[code - TOK_LAND].text) + '"';
    return {'"', static_cast<char>(code), '"'};
}

std::string_view LCF_TEXT_SOURCE::next_line() {
    size_t end = rest_.find('\n');
    size_t length = end == std::string_view::npos ? rest_.size() : end + 1;
    std::string_view line = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return line;
}

LCF_LEXER::LCF_LEXER(std::unique_ptr<LCF_SOURCE> source, const char* file)
    : source_(std::move(source)), file_(savestr(file)) {}

int LCF_LEXER::lex() {
    current_ ^= 1;
    if (!peeked_) lex_analyze(ring_[current_]);
    peeked_ = false;
    return code();
}

int LCF_LEXER::lex_peek() {
    if (!peeked_) lex_analyze(ring_[current_ ^ 1]);
    peeked_ = true;
    return ring_[current_ ^ 1].code;
}

void LCF_LEXER::set_location(const char* file, unsigned line) {
    file_ = savestr(file);
    line_ = line == 0 ? 0 : line - 1;
}

bool LCF_LEXER::lex_getline() {
    buffer_ = source_->next_line();
    pos_ = 0;
    if (buffer_.empty()) return false;
    ++line_;
    return true;
}

// Skips white space and comments over lines; false at the end of the text.
bool LCF_LEXER::lex_space() {
    for (;;) {
        while (pos_ < buffer_.size() && is_space(buffer_[pos_])) ++pos_;
        if (pos_ >= buffer_.size()) {
            if (!lex_getline()) return false;
        } else if (at(pos_) == '/' && at(pos_ + 1) == '*') {
            if (!skip_comment()) return false;
        } else {
            return true;
        }
    }
}

bool LCF_LEXER::skip_comment() {
    unsigned opened = line_;
    SOURCE_POSITION pos(file_, line_, static_cast<unsigned>(pos_) + 1);
    pos_ += 2;
    for (;;) {
        size_t end = buffer_.find("*/", pos_);
        if (end != std::string_view::npos) {
            pos_ = end + 2;
            return true;
        }
        if (!lex_getline()) {
            DIAG::elnk_syn_open_comment diag(__FILE__, __LINE__, opened);
            lexical_error(diag, pos);
            return false;
        }
    }
}

bool LCF_LEXER::continues_name(size_t i) const {
    char c = at(i);
    return is_word(c) || c == '"' || (globs_in_names() && is_glob(c)) ||
           (colon_in_names() && c == ':');
}

// Does a token that begins with "." , "/" or ":" turn out to be a name? The next character tells.
bool LCF_LEXER::starts_name(size_t i) const {
    char c = at(i + 1);
    return is_word(c) || (globs_in_names() && is_glob(c)) || (colon_in_names() && c == ':');
}

void LCF_LEXER::lex_analyze(LCF_TOKEN& tok) {
    bool more = lex_space();
    tok.code = TOK_ERR;
    tok.file = file_;
    tok.line = line_;
    tok.column = static_cast<unsigned>(pos_) + 1;
    tok.begin = pos_;
    source_->find_place(pos_, tok.line, tok.column);
    tok.value = 0;
    tok.radix = tok.digits = 0;
    tok.text.clear();
    if (!more) {
        tok.code = TOK_EOF;
        return;
    }
    char c = buffer_[pos_];
    if (is_digit(c)) return lex_int(tok);
    if (is_alpha(c) || c == '"' || c == '$' || c == '_') return lex_name(tok);
    bool name = false;
    if (c == '.')
        name = starts_name(pos_);
    else if (c == ':')
        name = colon_in_names() && starts_name(pos_);
    else if (c == '/')
        name = globs_in_names() && starts_name(pos_);
    else if (is_glob(c))
        name = globs_in_names();
    if (name) return lex_name(tok);
    lex_punctuation(tok);
}

void LCF_LEXER::lex_punctuation(LCF_TOKEN& tok) {
    char c = buffer_[pos_];
    if ((c == '[' || c == '\\' || c == ']' || c == '?')) return bad_char(tok);
    for (const PAIR& pair : pairs) {
        if (c != pair.text[0] || at(pos_ + 1) != pair.text[1]) continue;
        tok.code = pair.code;
        tok.text = pair.text;
        pos_ += 2;
        return;
    }
    bool single =
        c == '.' || c == ':' || c == '*' || c == '/' || singles.find(c) != std::string_view::npos;
    if (!single) return bad_char(tok);
    tok.code = static_cast<unsigned char>(c);
    tok.text = c;
    ++pos_;
}

void LCF_LEXER::bad_char(LCF_TOKEN& tok) {
    tok.text = buffer_[pos_++];
    DIAG::elnk_syn_bad_char diag(__FILE__, __LINE__, tok.text);
    lexical_error(diag, tok.position());
}

// A quoted stretch takes everything up to the line's end; ":" and "/" only join a name that goes on
// behind them.
void LCF_LEXER::lex_name(LCF_TOKEN& tok) {
    size_t begin = pos_;
    bool quoted = false;
    for (; pos_ < buffer_.size(); ++pos_) {
        char c = buffer_[pos_];
        if (c == '\n' || c == '\f') break;
        if (quoted && c == '\\' && (at(pos_ + 1) == '"' || at(pos_ + 1) == '\\')) {
            ++pos_;
        } else if (c == '"') {
            quoted = !quoted;
        } else if (!quoted && pos_ > begin && (c == ':' || c == '/')) {
            if (!continues_name(pos_) || !continues_name(pos_ + 1)) break;
        } else if (!quoted && pos_ > begin && !continues_name(pos_)) {
            break;
        }
    }
    tok.code = TOK_NAME;
    tok.text = copy_text(begin, pos_);
    if (quoted && !source_->is_preprocessed()) {
        DIAG::elnk_syn_open_quote diag(__FILE__, __LINE__);
        lexical_error(diag, tok.position());
    }
}

// The stretch of the line without quotes and without the backslash of an escape.
std::string LCF_LEXER::copy_text(size_t begin, size_t end) const {
    std::string text;
    for (size_t i = begin; i < end; ++i) {
        char c = buffer_[i];
        if (c == '\\' && i + 1 < end && (buffer_[i + 1] == '"' || buffer_[i + 1] == '\\'))
            text += buffer_[++i];
        else if (c != '"')
            text += c;
    }
    return text;
}

void LCF_LEXER::lex_int(LCF_TOKEN& tok) {
    size_t begin = pos_;
    size_t run_end = pos_;
    tok.code = TOK_INT;
    tok.radix = 10;
    if (at(pos_) == '0' && lower(at(pos_ + 1)) == 'x' && is_hex(at(pos_ + 2))) {
        tok.radix = 16;
        begin = run_end = pos_ + 2;
    } else if (at(pos_) == '0' && is_octal(at(pos_ + 1))) {
        tok.radix = 8;
    }
    while (is_hex(at(run_end))) ++run_end;
    auto octal_run = [&] {
        for (size_t i = begin; i < run_end; ++i)
            if (!is_octal(buffer_[i])) return false;
        return true;
    };
    char suffix = lower(at(run_end));
    size_t end = run_end;
    size_t consumed = 0;
    if (tok.radix != 16 && suffix == 'h') {
        tok.radix = 16;
        consumed = 1;
    } else if (tok.radix != 16 && suffix == 'q' && octal_run()) {
        tok.radix = 8;
        consumed = 1;
    } else if (tok.radix != 16) {
        end = begin;
        while (end < run_end && (tok.radix == 8 ? is_octal(buffer_[end]) : is_digit(buffer_[end])))
            ++end;
    }
    std::string_view digits = buffer_.substr(begin, end - begin);
    tok.value = number(digits, tok.radix);
    tok.digits = static_cast<unsigned>(digits.size());
    if (tok.radix == 10) {
        for (const SUFFIX& s : decimal_suffixes) {
            if (lower(at(end)) != s.letter) continue;
            tok.value *= s.factor;
            consumed = 1;
        }
    }
    pos_ = end + consumed;
    tok.text = buffer_.substr(tok.begin, pos_ - tok.begin);
}

size_t LCF_LEXER::word_end(size_t begin) const {
    bool quoted = false;
    size_t i = begin;
    for (; i < buffer_.size() && buffer_[i] != '\n' && buffer_[i] != '\f'; ++i) {
        char c = buffer_[i];
        if (c == '\\' && (at(i + 1) == '"' || at(i + 1) == '\\'))
            ++i;
        else if (c == '"')
            quoted = !quoted;
        else if (!quoted && is_space(c))
            break;
    }
    return i < buffer_.size() ? i : buffer_.size();
}

void LCF_LEXER::lex_option() {
    LCF_TOKEN& tok = ring_[current_];
    peeked_ = false;
    size_t begin = std::min(tok.begin + 1, buffer_.size()); // behind the dash
    pos_ = word_end(begin);
    tok.code = TOK_OPTION;
    tok.text = copy_text(begin, pos_);
}

bool LCF_LEXER::next_word(std::string& word) {
    while (pos_ < buffer_.size() && is_space(buffer_[pos_])) ++pos_;
    if (pos_ >= buffer_.size()) return false;
    size_t begin = pos_;
    pos_ = word_end(begin);
    word = copy_text(begin, pos_);
    return true;
}
