#include "CPP/cpp.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <map>

#include "DIAG/diagnostic.h"
#include "DIAG/message.h"
#include "UTIL/savestr.h"

namespace {

// Notes messages, and gives out include files by name.
class CLIENT : public CPP_CLIENT_INTERFACE {
  public:
    const char* find_h_file(const char* name, const char* from, bool angle) override {
        asked.push_back(std::string(angle ? "<" : "\"") + name + " from " + from);
        const auto found = paths.find(name);
        return found != paths.end() ? found->second.c_str() : nullptr;
    }
    void set_srcloc(const char* file, unsigned line) override {
        places.push_back(std::string(file) + ":" + std::to_string(line));
    }
    void process_diagnostic(DIAGNOSTIC& diag) override {
        const auto& message = static_cast<const DIAG::MESSAGE_BASE&>(diag);
        const DIAG_SRCINFO* at = diag.src();
        messages += (std::string(at->file()) == "t.cmd" ? "" : std::string(at->file()) + ":") +
                    std::to_string(at->line()) + ": " + severity_name(diag.severity()) + ": " +
                    message.text() + "\n";
    }

    std::map<std::string, std::string> paths;
    std::string messages;
    std::vector<std::string> asked;
    std::vector<std::string> places;
};

// All of the output, as a reader sees it that counts lines: each line behind its number.
struct RUN {
    explicit RUN(std::string_view text, CLIENT* given = nullptr,
                 const std::vector<std::pair<const char*, const char*>>& predefined = {}) {
        CLIENT own;
        CLIENT& client = given != nullptr ? *given : own;
        CPP cpp("t.cmd", text, &client);
        for (const auto& [name, value] : predefined) cpp.predefine(name, value);
        for (std::string_view line = cpp.fgets(); !line.empty(); line = cpp.fgets()) {
            if (line.back() == '\n') line.remove_suffix(1);
            if (!line.empty()) output += std::string(line) + "\n";
        }
        messages = client.messages;
    }
    std::string output;
    std::string messages;
};

struct CASE {
    const char* text;
    const char* output;
    const char* messages;
};

void check(const std::vector<CASE>& cases) {
    for (const CASE& c : cases) {
        SCOPED_TRACE(c.text);
        const RUN run(c.text);
        EXPECT_EQ(run.output, c.output);
        EXPECT_EQ(run.messages, c.messages);
    }
}

std::string repeated(const std::string& text, size_t times) {
    std::string all;
    for (size_t i = 0; i < times; ++i) all += text;
    return all;
}

// A file in the folder of temporary files, gone with the object.
class TEMP_FILE {
  public:
    explicit TEMP_FILE(const std::string& text) {
        char name[] = "/tmp/qv_cpp_XXXXXX";
        const int fd = mkstemp(name);
        path = name;
        FILE* file = fdopen(fd, "w");
        fwrite(text.data(), 1, text.size(), file);
        fclose(file);
    }
    ~TEMP_FILE() { remove(path.c_str()); }
    std::string path;
};

// The value of a condition, by what it lets through.
bool is_true(const std::string& condition) {
    const RUN run("#if " + condition + "\nyes\n#else\nno\n#endif\n");
    EXPECT_EQ(run.messages, "") << condition;
    return run.output == "yes\n";
}

} // namespace

TEST(cpp, lines_without_work_come_out_as_they_are) {
    check({
        {"", "", ""},
        {"a b\tc\n", "a b\tc\n", ""},
        {"no newline", "no newline\n", ""},
        {"dir/file.o 10h \"x /* y\"; a ? b\n", "dir/file.o 10h \"x /* y\"; a ? b\n", ""},
    });
}

TEST(cpp, comments_continuations_and_trigraphs) {
    check({
        {"a/* c */b\n", "a b\n", ""},
        {"a /* c\n d */ b\n", "a   b\n", ""},
        {"a // c /* d\nb\n", "a\nb\n", ""},
        {"a // c \\\n still\nb\n", "a\nb\n", ""},
        {"x = \"/* no */ // no\"; // yes\n", "x = \"/* no */ // no\";\n", ""},
        {"\"a\\\"/*b*/\" /*c*/ d\n", "\"a\\\"/*b*/\"   d\n", ""},
        {"one \\\ntwo\nthree\n", "one two\nthree\n", ""},
        {"one \\\r\ntwo\r\n", "one two\n", ""},
        {"?\?(?\?) ?\?< ?\?> ?\?! ?\?' ?\?- ?? ??x\n", "[] { } | ^ ~ ?? ??x\n", ""},
        {"?\?=define A 1\nA\n", "1\n", ""},
        {"a ?\?/\nb\n", "a b\n", ""},
        {"x /* open\nand on\n", "x\n", "2: warning: unclosed comment starting on line 1\n"},
        {"y\n  /* z\n", "y\n", "2: warning: unclosed comment starting on line 2\n"},
    });
}

TEST(cpp, quotes_end_at_the_line) {
    check({
        {"a \"b\nc\n", "a \"b\nc\n", "1: error: unclosed string or character constant\n"},
        {"it's\n", "it's\n", "1: error: unclosed string or character constant\n"},
        {"#define S \"x\\\"y\"\nS\n", "\"x\\\"y\"\n", ""},
        {"a\x01 \x80\n", "a\x01 \x80\n",
         "1: warning: illegal source character: 0x01\n"
         "1: warning: illegal source character: 0x80\n"},
        {"\"\x80\" /*\x81*/\n", "\"\x80\"\n", ""},
    });
}

TEST(cpp, object_macros) {
    check({
        {"#define A 1\nA B A_ xA A.A \"A\" A\n", "1 B A_ xA 1.1 \"A\" 1\n", ""},
        {"#define K 1024\n8K 12K K\n", "8K 12K 1024\n", ""},
        {"#define E\nx E y E\n", "x y\n", ""},
        {"#define A B\n#define B A x\nA B\n", "A x B x\n", ""},
        {"#define SELF SELF + 1\nSELF\n", "SELF + 1\n", ""},
        {"#define A a  /* c */ b\nA\n", "a    b\n", ""},
        {"#define L one \\\n two\nL\n", "one  two\n", ""},
        {"#define A 1\n#define A 1\n#define A  /**/ 1\nA\n", "1\n", ""},
        {"#define A 1 + 2\n#define A 1+2\nA\n", "1+2\n", "2: warning: redefinition of macro 'A'\n"},
        {"#define A 1\n#undef A\n#undef A\nA\n#define A 2\nA\n", "A\n2\n", ""},
        {"#define\n#define 3 4\n", "",
         "1: error: missing macro name for #define\n2: error: missing macro name for #define\n"},
        {"#undef\n#undef 7\n", "",
         "1: error: missing name on #undef directive\n"
         "2: error: missing name on #undef directive\n"},
        {"#define defined 1\n#undef defined\n", "",
         "1: warning: #define of standard macro 'defined'\n"
         "2: warning: #undef of standard macro 'defined'\n"},
    });
}

TEST(cpp, function_macros) {
    check({
        {"#define f(x) x\nf f;f (3) f( a b )\nf\n(2)\n", "f f;3 a b\nf\n(2)\n", ""},
        {"#define MAX(a, b) ((a) > (b) ? (a) : (b))\nMAX(MAX(1, 2), 3)\n",
         "((((1) > (2) ? (1) : (2))) > (3) ? (((1) > (2) ? (1) : (2))) : (3))\n", ""},
        {"#define none() x\nnone() none\n", "x none\n", ""},
        {"#define f(x, y) [x|y]\nf((1,2),3) f(,) f(a,)\n", "[(1,2)|3] [|] [a|]\n", ""},
        {"#define f(x, y) x-y\nf(1) f(1,2,3)\n", "1- 1-2\n",
         "2: warning: argument count mismatch for macro 'f'\n"
         "2: warning: argument count mismatch for macro 'f'\n"},
        {"#define none() x\nnone(1)\n", "x\n",
         "2: warning: argument count mismatch for macro 'none'\n"},
        {"#define f(x) <x>\nf(a\n b\n) c\nd\n", "<a b> c\nd\n", ""},
        {"#define f(x) <x>\nf(a\n#define b c\nb) b\n", "<a b> b\n",
         "3: warning: preprocessor directive ignored in macro expansion\n"},
        {"#define f(x) <x>\nf(a\nb", "", "3: error: unclosed invocation of macro 'f'\n"},
        {"#define f (x)\nf\n", "(x)\n", ""},
        {"#define g f\n#define f(x) x*x\ng(2) g (g(3))\n", "2*2 3*3*3*3\n", ""},
        {"#define f(x) x f\nf(1)(2)\n", "1 f(2)\n", ""},
        {"#define A A B\n#define f(x) x\nf(A) f(f(A))\n", "A B A B\n", ""},
        {"#define f(x, x) x\n", "", "1: error: duplicate macro parameter 'x'\n"},
        {"#define f(x\n#define g(1)\n#define h(x,)\n#define i(x y)\n", "",
         "1: error: bad parameter list for macro 'f'\n2: error: bad parameter list for macro 'g'\n"
         "3: error: bad parameter list for macro 'h'\n"
         "4: error: bad parameter list for macro 'i'\n"},
    });
}

TEST(cpp, the_operators_of_macro_bodies) {
    check({
        {"#define S(x) #x\nS( a  + \"b\\n\" ) S() S(a\n b)\n",
         "\"a + \\\"b\\\\n\\\"\" \"\" \"a b\"\n", ""},
        {"#define N 12\n#define S(x) #x\n#define XS(x) S(x)\nS(N) XS(N)\n", "\"N\" \"12\"\n", ""},
        {"#define C(a, b) a ## b\nC(x, 1) C(x,) C(,y) C(,)z C(<, <)\n", "x1 x y z <<\n", ""},
        {"#define x1 hit\n#define C(a, b) a##b\n#define N 1\nC(x, 1) C(x, N)\n", "hit xN\n", ""},
        {"#define C(a, b, c) a##b##c.\nC(1,2,3) C(1,,3) C(,,3) C(p q, r, s t)\n",
         "123. 13. 3. p qrs t.\n", ""},
        {"#define J a ## b\nJ\n", "ab\n", ""},
        {"#define f(x) a x.b\n#define E\nf() f(E) E E.\n", "a .b a .b .\n", ""},
        {"#define f(x) # y\n", "", "1: error: argument to # must be a macro parameter\n"},
        {"#define f(x) x #\n", "", "1: error: argument to # must be a macro parameter\n"},
        {"#define f(x) ## x\n#define g(x) x ##\n#define h(x) x ## ## x\n", "",
         "1: error: missing operand of ##\n2: error: missing operand of ##\n"
         "3: error: missing operand of ##\n"},
        {"a # b ## c\n", "a # b ## c\n",
         "1: warning: use of # illegal except in macro definition\n"
         "1: warning: use of ## illegal except in macro definition\n"},
    });
}

TEST(cpp, conditionals) {
    check({
        {"#if 1\na\n#else\nb\n#endif\nc\n", "a\nc\n", ""},
        {"#if 0\na\n#elif 0\nb\n#elif 1\nc\n#elif 1\nd\n#else\ne\n#endif\n", "c\n", ""},
        {"#if 0\n#if 1\na\n#else\nb\n#endif\n#else\nc\n#endif\n", "c\n", ""},
        {"#define A\n#ifdef A\na\n#endif\n#ifndef A\nb\n#else\nc\n#endif\n", "a\nc\n", ""},
        {"#if 0\nit's \"open /* and\n#bad\n#else\nx\n#endif\n", "x\n", ""},
        {"#if 1 // yes\na\n# /* b */ endif /* c */ d\n#\n", "a\n", ""},
        {"#if 1\n#elif nonsense (\n#else\n#endif\nx\n", "x\n", ""},
        {"#ifdef\na\n#else\nb\n#endif\n#ifndef 3\nc\n#endif\n", "b\n",
         "1: error: missing name on #ifdef or #ifndef directive\n"
         "6: error: missing name on #ifdef or #ifndef directive\n"},
        {"#else\n#elif 1\n#endif\nx\n", "x\n",
         "1: error: #else, #elif, or #endif has no matching #if\n"
         "2: error: #else, #elif, or #endif has no matching #if\n"
         "3: error: #else, #elif, or #endif has no matching #if\n"},
        {"#if 0\na\n#else\nb\n#else\nc\n#endif\nd\n", "b\nd\n",
         "5: error: #else, #elif, or #endif has no matching #if\n"},
        {"#if 1\na\n#else\nb\n#else\nc\n#elif 1\n#endif\nd\n", "a\nd\n",
         "5: error: #else, #elif, or #endif has no matching #if\n"
         "7: error: #else, #elif, or #endif has no matching #if\n"},
        {"\n#if 1\na\n", "a\n", "3: warning: unclosed #if directive from line 2\n"},
        {"#if 0\na\n#else\n\n#if 0\n", "", "5: warning: unclosed #if directive from line 5\n"},
    });
}

TEST(cpp, the_values_of_conditions) {
    for (const char* yes : {"1",
                            "-1",
                            "0x10 == 16",
                            "010 == 8",
                            "1+2*3 == 7",
                            "(1+2)*3 == 9",
                            "10-4-3 == 3",
                            "7/2 == 3",
                            "-7/2 == -3",
                            "7%4 == 3",
                            "1<<4 == 16",
                            "-16>>2 == -4",
                            "~0 == -1",
                            "!0",
                            "+5 == 5",
                            "(6&3) == 2",
                            "(6|1) == 7",
                            "(6^3) == 5",
                            "3 & 2 == 2",
                            "1 < 2",
                            "2 <= 2",
                            "3 > 2",
                            "3 >= 3",
                            "1 != 2",
                            "1 && 2",
                            "0 || 3",
                            "1 ? 2 : 0",
                            "0 ? 0 : 1",
                            "(1 ? 0 : 1 ? 5 : 6) == 0",
                            "(0, 1)",
                            "1u == 1",
                            "1UL == 1lu",
                            "0xFFFFFFFFFFFFFFFF > 0",
                            "-1 > 0u",
                            "(-1 < 0u) == 0",
                            "1 << 64 == 1",
                            "(-1 >> 63) == -1",
                            "-1u >> 63 == 1",
                            "'a' == 97",
                            "'\\n' == 10",
                            "'\\x41' == 65",
                            "'\\101' == 65",
                            "'ab' == 24930",
                            "'\\'' == 39",
                            "'\\\\' == 92",
                            "'\\?' == 63",
                            "9223372036854775807 > 0",
                            "-9223372036854775807 - 1 < 0",
                            "(-9223372036854775807 - 1) / -1 < 0",
                            "(-9223372036854775807 - 1) % -1 == 0",
                            "18446744073709551615 > 1",
                            "2147483648 > -1",
                            "!defined X",
                            "!defined(X)",
                            "defined __FILE__"})
        EXPECT_TRUE(is_true(yes)) << yes;
    for (const char* no : {"0", "!1", "0x0", "1 == 2", "-1 < 0u", "0 && 1", "0 || 0", "1, 0"})
        EXPECT_FALSE(is_true(no)) << no;
}

TEST(cpp, faults_of_conditions) {
    for (const char* bad :
         {"",      "1 +",     "(1",    "1)",      "1 2",      "8K",        "1.5",
          "\"a\"", "? 1 : 2", "1 ? 2", "defined", "defined(", "defined(X", "defined 3",
          "= 1",   "''",      "09",    "1uu",     "1lll",     "0x",        "f(1)"}) {
        const RUN run("#if " + std::string(bad) + "\na\n#else\nb\n#endif\n");
        EXPECT_EQ(run.messages, "1: error: syntax error in #if expression\n") << bad;
        EXPECT_EQ(run.output, "b\n") << bad;
    }
    check({
        {"#if B + A + B\n#endif\n", "",
         "1: warning: undefined preprocessor symbol 'A'\n"
         "1: warning: undefined preprocessor symbol 'B'\n"},
        {"#if 0 && A\n#elif 1 || B\n#endif\n", "", ""},
        {"#if A && B\n#endif\n", "", "1: warning: undefined preprocessor symbol 'A'\n"},
        {"#if 1 ? 0 : A\n#endif\n", "", ""},
        {"#if 1 / 0\n#elif 5 % 0 == 0\nx\n#endif\n", "x\n",
         "1: warning: division by zero in constant expression\n"
         "2: warning: division by zero in constant expression\n"},
        {"#if 0 && 1 / 0\n#endif\n", "", ""},
        {"#define A B\n#define B 3\n#if A == 3 && defined A && defined(B)\nx\n#endif\n", "x\n", ""},
        {"#define D defined A\n#if D\n#else\nx\n#endif\n", "x\n", ""},
    });
    const RUN deep("#if " + repeated("(", 2000) + "1" + repeated(")", 2000) + "\n#endif\n");
    EXPECT_EQ(deep.messages, "1: error: syntax error in #if expression\n");
}

TEST(cpp, other_directives) {
    check({
        {"#error  stop here // now\n", "", "1: error: #error 'stop here'\n"},
        {"#warn   careful\n", "", "1: warning: #warn 'careful'\n"},
        {"#define A 1\n#pragma once A\nx\n", "#pragma once 1\nx\n", ""},
        {"#warning x\n#Define y\n# 33 \"f\"\n", "",
         "1: error: invalid directive warning - ignored\n"
         "2: error: invalid directive Define - ignored\n"
         "3: error: invalid directive 33 - ignored\n"},
        {"#line 40\n__LINE__ __FILE__\n", "40 \"t.cmd\"\n", ""},
        {"#define L 7 \"a\\\\b\"\n#line L\n__LINE__\n__FILE__\n", "7\n\"a\\\\b\"\n", ""},
        {"#line\n#line x\n#line 3 4\n", "",
         "1: error: syntax error on #line directive\n2: error: syntax error on #line directive\n"
         "3: error: syntax error on #line directive\n"},
        {"\n\n#line 3 \"other\"\n#error x\n", "", "other:3: error: #error 'x'\n"},
    });
}

TEST(cpp, standard_macros) {
    check({
        {"__LINE__\n\n__LINE__ \\\n __LINE__\n__LINE__\n", "1\n3  3\n5\n", ""},
        {"__FILE__\n", "\"t.cmd\"\n", ""},
        {"#undef __DATE__\n#define __TIME__ now\n__TIME__\n", "now\n",
         "1: warning: #undef of standard macro '__DATE__'\n"
         "2: warning: #define of standard macro '__TIME__'\n"},
    });
    const std::string both = RUN("__DATE__ __TIME__\n").output;
    unsigned day = 0;
    unsigned year = 0;
    unsigned hours = 0;
    unsigned minutes = 0;
    unsigned seconds = 0;
    char month[4] = "";
    ASSERT_EQ(sscanf(both.c_str(), "\"%3[A-Za-z] %2u %4u\" \"%2u:%2u:%2u\"", month, &day, &year,
                     &hours, &minutes, &seconds),
              6)
        << both;
    EXPECT_EQ(both.size(), std::string("\"Jan  1 2000\" \"00:00:00\"\n").size());
    EXPECT_TRUE(day >= 1 && day <= 31 && year >= 2024);
}

TEST(cpp, definitions_from_outside) {
    EXPECT_EQ(RUN("A B\n", nullptr, {{"A", "1 + 2"}, {"B", ""}}).output, "1 + 2\n");
    EXPECT_EQ(RUN("__LINE__\n", nullptr, {{"__LINE__", "7"}}).output, "1\n");
    EXPECT_EQ(RUN("", nullptr, {{"__LINE__", "7"}}).messages,
              "0: warning: #define of standard macro '__LINE__'\n");
    const std::string long_value = repeated("a ", CPP::MAX_PREDEFINE_TOKENS + 1);
    EXPECT_EQ(RUN("x\n", nullptr, {{"A", long_value.c_str()}}).messages,
              "0: fatal error: too many tokens in this predefined symbol value\n");
    CLIENT client;
    CPP cpp("t.cmd", "A\nA\nA\n", &client);
    cpp.predefine("A", "1");
    EXPECT_EQ(cpp.fgets(), "1\n");
    cpp.undefine("A");
    EXPECT_EQ(cpp.fgets(), "A\n");
    cpp.predefine("A", "2");
    EXPECT_EQ(cpp.fgets(), "2\n");
    EXPECT_EQ(cpp.fgets(), "");
}

TEST(cpp, include_files) {
    const TEMP_FILE inner("inner __LINE__\n#define FROM_INNER 1\n#error e\nlast");
    const TEMP_FILE outer("#include \"inner\"\nouter __LINE__\n");
    CLIENT client;
    client.paths = {{"inner", inner.path}, {"outer.cmd", outer.path}};
    const RUN run("#define NAME <outer.cmd>\n#include NAME\n#include \"inner\" \nmain FROM_INNER\n",
                  &client);
    EXPECT_EQ(run.output, "inner 1\nlast\nouter 2\ninner 1\nlast\nmain 1\n");
    EXPECT_EQ(client.messages,
              inner.path + ":3: error: #error 'e'\n" + inner.path + ":3: error: #error 'e'\n");
    EXPECT_EQ(client.asked,
              (std::vector<std::string>{"<outer.cmd from t.cmd", "\"inner from " + outer.path,
                                        "\"inner from t.cmd"}));
    EXPECT_EQ(client.places, (std::vector<std::string>{inner.path + ":1", outer.path + ":2",
                                                       inner.path + ":1", "t.cmd:4"}));
}

TEST(cpp, files_that_cannot_be_included) {
    const TEMP_FILE elf("\x7f"
                        "ELF\x01");
    const TEMP_FILE archive("!<arch>\nxx");
    const TEMP_FILE coff(std::string("\xC2\x00yy", 4));
    const TEMP_FILE swapped(std::string("\x00\xC0yy", 4));
    CLIENT client;
    client.paths = {{"e", elf.path}, {"a", archive.path}, {"c", coff.path}, {"s", swapped.path}};
    const RUN run("#include <e>\n#include \"a\"\n#include <c>\n#include <s>\n#include <none>\n"
                  "#include \"none\"\n#include none\n#include <open\n#include\nx\n",
                  &client);
    EXPECT_EQ(run.output, "x\n");
    EXPECT_EQ(run.messages, "1: error: You may not use #include for ELF file 'e'\n"
                            "2: error: You may not use #include for archive file 'a'\n"
                            "3: error: You may not use #include for COFF file 'c'\n"
                            "4: error: You may not use #include for COFF file 's'\n"
                            "5: error: can't open file: <none>\n"
                            "6: error: can't open file: \"none\"\n"
                            "7: error: bad include file specification\n"
                            "8: error: bad include file specification\n"
                            "9: error: bad include file specification\n");
}

TEST(cpp, a_file_that_includes_itself_ends) {
    CLIENT client;
    const TEMP_FILE self("#include \"self\"\nx\n");
    client.paths = {{"self", self.path}};
    EXPECT_NE(RUN("#include \"self\"\n", &client).messages.find("can't open file"),
              std::string::npos);
}

// A reader that counts lines, and takes what the preprocessor says of places, is always right.
TEST(cpp, every_token_has_its_place) {
    class READER : public CLIENT {
      public:
        void set_srcloc(const char* name, unsigned next) override {
            file = name;
            line = next - 1;
        }
        std::string file = "t.cmd";
        unsigned line = 0;
    };
    const TEMP_FILE inner("\n\n\n\n  in1\n#define I i2 i3\n   I");
    const std::string text = "one\n"
                             "\n"
                             "  two /* c */ three\n"
                             "\n\n\n\n"
                             "four \\\n"
                             "   five /* d\n"
                             "  e */ six\n"
                             "#define M(x) seven x eight\n"
                             "\tM(arg\n"
                             "     arg2) nine\n"
                             "#include \"inner\"\n"
                             "ten ?\?( M(M(z))\n"
                             "#line 100 \"other\"\n"
                             "eleven\n";
    READER reader;
    reader.paths = {{"inner", inner.path}};
    CPP cpp("t.cmd", text, &reader);
    std::string seen;
    for (std::string_view line = cpp.fgets(); !line.empty(); line = cpp.fgets()) {
        ++reader.line;
        for (size_t at = 0; at < line.size(); ++at) {
            if (!pp_is_word(line[at]) || (at > 0 && pp_is_word(line[at - 1]))) continue;
            size_t end = at;
            while (end < line.size() && pp_is_word(line[end])) ++end;
            unsigned row = reader.line;
            unsigned column = static_cast<unsigned>(at) + 1;
            if (cpp.is_rewritten()) cpp.find_place(at, row, column);
            const std::string file = reader.file == inner.path ? "inner" : reader.file;
            seen += std::string(line.substr(at, end - at)) + " " + file + ":" +
                    std::to_string(row) + ":" + std::to_string(column) + "\n";
        }
    }
    EXPECT_EQ(seen, "one t.cmd:1:1\n"
                    "two t.cmd:3:3\nthree t.cmd:3:15\n"
                    "four t.cmd:8:1\nfive t.cmd:9:4\nsix t.cmd:10:8\n"
                    "seven t.cmd:12:2\narg t.cmd:12:4\narg2 t.cmd:13:6\neight t.cmd:12:2\n"
                    "nine t.cmd:13:12\n"
                    "in1 inner:5:3\ni2 inner:7:4\ni3 inner:7:4\n"
                    "ten t.cmd:15:1\nseven t.cmd:15:9\nseven t.cmd:15:11\nz t.cmd:15:13\n"
                    "eight t.cmd:15:11\neight t.cmd:15:9\n"
                    "eleven other:100:1\n");
}

TEST(cpp, few_lines_that_fall_out_come_as_blank_ones) {
    CLIENT client;
    CPP cpp("t.cmd", "a\n\n/* */\nb\n\n\n\nc\n", &client);
    std::vector<std::string> lines;
    for (std::string_view line = cpp.fgets(); !line.empty(); line = cpp.fgets())
        lines.emplace_back(line);
    EXPECT_EQ(lines, (std::vector<std::string>{"a\n", "\n", "\n", "b\n", "c\n"}));
    EXPECT_EQ(client.places, std::vector<std::string>{"t.cmd:8"});
}

TEST(cpp, limits_end_the_input) {
    const auto message = [](const std::string& text) { return RUN(text + "\nrest\n").messages; };
    const auto output = [](const std::string& text) { return RUN(text + "\nrest\n").output; };
    const std::string fits(PP_SOURCE::MAX_LINE, 'x');
    EXPECT_EQ(message(fits), "");
    EXPECT_EQ(message(fits + "x"), "1: fatal error: source line too long\n");
    EXPECT_EQ(output(fits + "x"), "");
    EXPECT_EQ(message(repeated(std::string(1000, 'x') + "\\\n", 20)),
              "17: fatal error: source line too long\n");
    EXPECT_EQ(message("/*" + repeated(std::string(1000, 'x') + "\n", 16) + "*/"), "");
    EXPECT_EQ(message("\n/*" + repeated(std::string(1000, 'x') + "\n", 17) + "*/"),
              "18: fatal error: buffer length exceeded while skipping multi-line comment\n");
    EXPECT_EQ(message(repeated("+", CPP::MAX_TOKENS)), "");
    EXPECT_EQ(message(repeated("+", CPP::MAX_TOKENS + 1)),
              "1: fatal error: too many tokens in this macro expansion\n");

    std::string chain = "#define m0 end\n";
    for (size_t i = 1; i <= CPP::MAX_FRAMES; ++i)
        chain += "#define m" + std::to_string(i) + " m" + std::to_string(i - 1) + "\n";
    EXPECT_EQ(output(chain + "m" + std::to_string(CPP::MAX_FRAMES - 2)), "end\nrest\n");
    EXPECT_EQ(message(chain + "m" + std::to_string(CPP::MAX_FRAMES)),
              std::to_string(CPP::MAX_FRAMES + 2) + ": fatal error: macro nesting too deep\n");

    std::string params = "p0";
    for (size_t i = 1; i < CPP::MAX_PARAMS; ++i) params += ",p" + std::to_string(i);
    EXPECT_EQ(message("#define f(" + params + ") p999"), "");
    EXPECT_EQ(message("#define f(" + params + ",q) q"),
              "1: error: too many arguments for macro 'f' (max=31)\n");
    EXPECT_EQ(message("#define f(x) x\nf(" + repeated(",", CPP::MAX_ARGS) + ") after"),
              "2: error: badly formed argument list for macro 'f'\n");
}

// Texts that double with each line, in tokens, in empty work, and in length.
TEST(cpp, hostile_expansions_are_bounded) {
    std::string doubling = "#define a0 x\n#define e0\n#define f(x) x x\n#define t(x) x##x\n";
    for (int i = 1; i <= 40; ++i) {
        const std::string last = std::to_string(i - 1);
        doubling += "#define a" + std::to_string(i) + " a" + last + " a" + last + "\n";
        doubling += "#define e" + std::to_string(i) + " e" + last + " e" + last + "\n";
    }
    const std::string at = "85: fatal error: ";
    EXPECT_EQ(RUN(doubling + "a40\nrest\n").messages,
              at + "too many tokens in this macro expansion\n");
    EXPECT_EQ(RUN(doubling + "e40\nrest\n").messages,
              at + "too many tokens in this macro expansion\n");
    EXPECT_EQ(RUN(doubling + repeated("f(", 40) + "x" + repeated(")", 40) + "\nrest\n").messages,
              at + "too many tokens in this macro expansion\n");
    std::string words = "#define w0 " + std::string(10000, 'w') + "\n";
    for (int i = 1; i <= 10; ++i)
        words += "#define w" + std::to_string(i) + " w" + std::to_string(i - 1) + " w" +
                 std::to_string(i - 1) + "\n";
    EXPECT_EQ(RUN(words + "w10\nrest\n").messages, "12: fatal error: source line too long\n");
}
