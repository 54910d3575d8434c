// The words of a command file. The lexer holds one line of the file and splits it into tokens, with
// one token of lookahead. What belongs to a name depends on where the parser stands, so the parser
// sets a mode: inside MEMORY and VERSION a colon is always punctuation, and inside an expression
// "*", "/" and their like are operators and not part of names.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "DIAG/source_position.h"
#include "ELFLNK/parse_lcf/lcf_source.h"

class DIAGNOSTIC;

/// Token codes. A one-character token has the character as its code.
enum LCF_TOKEN_CODE : int {
    TOK_ERR = 256, // an error, or not yet analysed
    TOK_EOF,
    TOK_NAME,
    TOK_INT,
    TOK_OPTION,
    TOK_LAND,
    TOK_LOR,
    TOK_EQ,
    TOK_NE,
    TOK_GE,
    TOK_LE,
    TOK_SHL,
    TOK_SHR,
    TOK_ADD_ASSIGN,
    TOK_SUB_ASSIGN,
    TOK_MUL_ASSIGN,
    TOK_DIV_ASSIGN,
    TOK_END
};

struct LCF_TOKEN {
    int code = TOK_ERR;
    const char* file = "";
    unsigned line = 0;
    unsigned column = 0;
    size_t begin = 0;   // offset in the line in hand
    std::string text;   // as written, for names and options without quotes
    uint64_t value = 0; // of an integer
    unsigned radix = 0;
    unsigned digits = 0;

    SOURCE_POSITION position() const;
    /// The printable form of a code.
    static std::string name(int code);
};

class LCF_LEXER {
  public:
    /// What the parser is inside of; the bits add up.
    enum MODE : unsigned { MODE_MEMORY = 1, MODE_EXPR = 2, MODE_VERSION = 4 };

    LCF_LEXER(std::unique_ptr<LCF_SOURCE> source, const char* file);
    virtual ~LCF_LEXER() = default;

    /// Advances to the next token; returns its code.
    int lex();
    /// The code of the token behind the current one.
    int lex_peek();
    const LCF_TOKEN& token() const { return ring_[current_]; }
    /// The token behind the current one; meaningful after lex_peek().
    const LCF_TOKEN& next_token() const { return ring_[current_ ^ 1]; }
    int code() const { return token().code; }

    /// The current token is "-": makes it one option word, up to the next white space outside
    /// quotes. The text doesn't include the first dash.
    void lex_option();
    /// Takes the next word of the line, as lex_option does; false at the line's end.
    bool next_word(std::string& word);

    void set_mode(unsigned bits) { mode_ |= bits; }
    void clear_mode(unsigned bits) { mode_ &= ~bits; }
    void clear_modes() { mode_ = 0; }

    /// The next line comes from there. The name is kept.
    void set_location(const char* file, unsigned line);
    const char* file() const { return file_; }
    unsigned line() const { return line_; }

    LCF_SOURCE& source() { return *source_; }

  protected:
    /// Takes the lexer's own errors and warnings.
    virtual void lexical_error(DIAGNOSTIC& diag, const SOURCE_POSITION& pos) = 0;

  private:
    bool lex_getline();
    bool lex_space();
    bool skip_comment();
    void lex_analyze(LCF_TOKEN& tok);
    void lex_name(LCF_TOKEN& tok);
    void lex_int(LCF_TOKEN& tok);
    void lex_punctuation(LCF_TOKEN& tok);
    void bad_char(LCF_TOKEN& tok);
    std::string copy_text(size_t begin, size_t end) const;
    size_t word_end(size_t begin) const;
    char at(size_t i) const { return i < buffer_.size() ? buffer_[i] : '\0'; }
    bool globs_in_names() const { return (mode_ & (MODE_MEMORY | MODE_EXPR)) == 0; }
    bool colon_in_names() const { return (mode_ & (MODE_MEMORY | MODE_VERSION)) == 0; }
    bool continues_name(size_t i) const;
    bool starts_name(size_t i) const;

    std::unique_ptr<LCF_SOURCE> source_;
    std::string_view buffer_; // the current line
    size_t pos_ = 0;          // read position in it
    const char* file_;
    unsigned line_ = 0;
    unsigned mode_ = 0;
    std::array<LCF_TOKEN, 2> ring_;
    unsigned current_ = 0;
    bool peeked_ = false;
};
