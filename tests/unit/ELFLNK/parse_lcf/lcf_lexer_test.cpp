#include "ELFLNK/parse_lcf/lcf_lexer.h"

#include <gtest/gtest.h>

#include "DIAG/message.h"

namespace {

class TEST_LEXER : public LCF_LEXER {
  public:
    explicit TEST_LEXER(std::string_view text)
        : LCF_LEXER(std::make_unique<LCF_TEXT_SOURCE>(text), "test.cmd") {}
    std::string errors;

  private:
    void lexical_error(DIAGNOSTIC& diag, const SOURCE_POSITION& pos) override {
        errors += std::to_string(pos.line()) + ':' + std::to_string(pos.column()) + ' ' +
                  static_cast<DIAG::MESSAGE_BASE&>(diag).text() + '\n';
    }
};

// All tokens as "code-or-kind(text)", in one line.
std::string tokens(std::string_view text, unsigned mode = 0) {
    TEST_LEXER lexer(text);
    lexer.set_mode(mode);
    std::string all;
    while (lexer.lex() != TOK_EOF) {
        int code = lexer.code();
        if (!all.empty()) all += ' ';
        if (code == TOK_NAME)
            all += "n(" + lexer.token().text + ")";
        else if (code == TOK_INT)
            all += "i(" + std::to_string(lexer.token().value) + ")";
        else if (code == TOK_ERR)
            all += "ERR";
        else
            all += lexer.token().text;
    }
    return all;
}

struct LITERAL {
    const char* text;
    uint64_t value;
    unsigned radix;
    unsigned digits;
    const char* rest; // the name behind it
};

} // namespace

TEST(lcf_lexer, integers_have_radix_digits_and_suffix) {
    const LITERAL cases[] = {
        {"10", 10, 10, 2, ""},
        {"010", 8, 8, 3, ""},
        {"0x1F", 31, 16, 2, ""},
        {"0X00ff", 255, 16, 4, ""},
        {"10h", 16, 16, 2, ""},
        {"0FFH", 255, 16, 3, ""},
        {"17q", 15, 8, 2, ""},
        {"17Q", 15, 8, 2, ""},
        {"129q", 129, 10, 3, "q"},
        {"8K", 8192, 10, 1, ""},
        {"2m", 0x200000, 10, 1, ""},
        {"1G", 0x40000000, 10, 1, ""},
        {"12ab", 12, 10, 2, "ab"},
        {"0xg", 0, 10, 1, "xg"},
        {"08", 8, 10, 2, ""},
        {"0178", 15, 8, 3, ""},
        {"0x8K", 8, 16, 1, "K"},
        {"010k", 8, 8, 3, "k"},
        {"0xFFFFFFFFFFFFFFFF", ~0ull, 16, 16, ""},
    };
    for (const LITERAL& c : cases) {
        TEST_LEXER lexer(c.text);
        ASSERT_EQ(lexer.lex(), TOK_INT) << c.text;
        EXPECT_EQ(lexer.token().value, c.value) << c.text;
        EXPECT_EQ(lexer.token().radix, c.radix) << c.text;
        EXPECT_EQ(lexer.token().digits, c.digits) << c.text;
        lexer.lex();
        if (std::string(c.text) != "0178") {
            EXPECT_EQ(lexer.token().text, c.rest) << c.text;
        }
    }
}

TEST(lcf_lexer, names_depend_on_the_mode) {
    EXPECT_EQ(tokens("a*b/c"), "n(a*b/c)");
    EXPECT_EQ(tokens("a*b/c", LCF_LEXER::MODE_EXPR), "n(a) * n(b) / n(c)");
    EXPECT_EQ(tokens("*(.text*)"), "n(*) ( n(.text*) )");
    EXPECT_EQ(tokens("FLASH: o=0", LCF_LEXER::MODE_MEMORY), "n(FLASH) : n(o) = i(0)");
    EXPECT_EQ(tokens(".text:a"), "n(.text:a)");
    EXPECT_EQ(tokens(".text:a", LCF_LEXER::MODE_MEMORY), "n(.text) : n(a)");
    EXPECT_EQ(tokens(".text: > RAM"), "n(.text) : > n(RAM)");
    EXPECT_EQ(tokens("lib/x.o /tmp/y.o"), "n(lib/x.o) n(/tmp/y.o)");
    EXPECT_EQ(tokens(". += 4;"), ". += i(4) ;");
    EXPECT_EQ(tokens("a /= 2 * b", LCF_LEXER::MODE_EXPR), "n(a) /= i(2) * n(b)");
    EXPECT_EQ(tokens("_a$1 .b"), "n(_a$1) n(.b)");
}

TEST(lcf_lexer, two_character_operators_are_one_token) {
    EXPECT_EQ(tokens("&& || == != >= <= << >> += -= *= /=", LCF_LEXER::MODE_EXPR),
              "&& || == != >= <= << >> += -= *= /=");
    EXPECT_EQ(tokens("& | = ! > < + - ~ % , ; { } ( )"), "& | = ! > < + - ~ % , ; { } ( )");
}

TEST(lcf_lexer, quotes_join_and_vanish) {
    EXPECT_EQ(tokens("\"my file.o\" x"), "n(my file.o) n(x)");
    EXPECT_EQ(tokens("a\"b c\"d"), "n(ab cd)");
    EXPECT_EQ(tokens("\"a\\\"b\""), "n(a\"b)");
    EXPECT_EQ(tokens("\"C:\\\\x\" y"), "n(C:\\x) n(y)");
    EXPECT_EQ(tokens("\"-x-\""), "n(-x-)");
}

TEST(lcf_lexer, an_open_quote_ends_at_the_line) {
    TEST_LEXER lexer("\"abc\ndef");
    EXPECT_EQ(lexer.lex(), TOK_NAME);
    EXPECT_EQ(lexer.token().text, "abc");
    EXPECT_EQ(lexer.errors, "1:1 unterminated quote\n");
    lexer.lex();
    EXPECT_EQ(lexer.token().text, "def");
    EXPECT_EQ(lexer.token().line, 2u);
}

TEST(lcf_lexer, comments_may_span_lines) {
    TEST_LEXER lexer("/* one\n two */ a /**/ b");
    lexer.lex();
    EXPECT_EQ(lexer.token().text, "a");
    EXPECT_EQ(lexer.token().line, 2u);
    EXPECT_EQ(lexer.token().column, 9u);
    lexer.lex();
    EXPECT_EQ(lexer.token().text, "b");
    EXPECT_EQ(lexer.errors, "");
}

TEST(lcf_lexer, an_open_comment_names_its_line) {
    TEST_LEXER lexer("a\n/* b\nc");
    lexer.lex();
    EXPECT_EQ(lexer.lex(), TOK_EOF);
    EXPECT_EQ(lexer.errors, "2:1 unclosed comment; opened on line 2\n");
}

TEST(lcf_lexer, illegal_characters_are_reported_and_skipped) {
    TEST_LEXER lexer("a @ b");
    lexer.lex();
    EXPECT_EQ(lexer.lex(), TOK_ERR);
    EXPECT_EQ(lexer.errors, "1:3 illegal input character:  @\n");
    EXPECT_EQ(lexer.lex(), TOK_NAME);
    for (const char* text : {"[", "]", "?", "\\"}) {
        TEST_LEXER expr(text);
        expr.set_mode(LCF_LEXER::MODE_EXPR);
        EXPECT_EQ(expr.lex(), TOK_ERR) << text;
        EXPECT_EQ(expr.errors, std::string("1:1 illegal input character:  ") + text + '\n');
    }
}

TEST(lcf_lexer, peeking_does_not_advance) {
    TEST_LEXER lexer("a = 1");
    lexer.lex();
    EXPECT_EQ(lexer.lex_peek(), '=');
    EXPECT_EQ(lexer.lex_peek(), '=');
    EXPECT_EQ(lexer.token().text, "a");
    EXPECT_EQ(lexer.lex(), '=');
    EXPECT_EQ(lexer.lex(), TOK_INT);
    EXPECT_EQ(lexer.lex(), TOK_EOF);
    EXPECT_EQ(lexer.lex(), TOK_EOF);
}

TEST(lcf_lexer, an_option_is_one_word_and_its_argument_the_next) {
    TEST_LEXER lexer("-o \"my out.elf\" --map_file=\"a b\" x\n");
    EXPECT_EQ(lexer.lex(), '-');
    lexer.lex_option();
    EXPECT_EQ(lexer.code(), TOK_OPTION);
    EXPECT_EQ(lexer.token().text, "o");
    std::string word;
    ASSERT_TRUE(lexer.next_word(word));
    EXPECT_EQ(word, "my out.elf");
    EXPECT_EQ(lexer.lex(), '-');
    lexer.lex_option();
    EXPECT_EQ(lexer.token().text, "-map_file=a b");
    ASSERT_TRUE(lexer.next_word(word));
    EXPECT_FALSE(lexer.next_word(word));
}

TEST(lcf_lexer, codes_have_printable_names) {
    EXPECT_EQ(LCF_TOKEN::name(TOK_ERR), "ERR");
    EXPECT_EQ(LCF_TOKEN::name(TOK_EOF), "EOF");
    EXPECT_EQ(LCF_TOKEN::name(TOK_NAME), "<name>");
    EXPECT_EQ(LCF_TOKEN::name(TOK_INT), "<constant>");
    EXPECT_EQ(LCF_TOKEN::name(TOK_OPTION), "<option>");
    EXPECT_EQ(LCF_TOKEN::name(TOK_DIV_ASSIGN), "\"/=\"");
    EXPECT_EQ(LCF_TOKEN::name(';'), "\";\"");
}

TEST(lcf_lexer, any_text_ends) {
    // Every pair of characters, in every mode: the lexer comes to an end without reading past the
    // line.
    for (unsigned mode = 0; mode < 4; ++mode) {
        for (int a = 0; a < 256; ++a) {
            for (int b = 0; b < 256; ++b) {
                const char text[] = {static_cast<char>(a), static_cast<char>(b)};
                TEST_LEXER lexer({text, 2});
                lexer.set_mode(mode);
                int count = 0;
                while (lexer.lex() != TOK_EOF) ASSERT_LE(++count, 2);
            }
        }
    }
}
