#include "UTIL/xmlgen.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

struct TAGS {
    TAGS() {
        outer.assign("outer", "the whole", nullptr);
        inner.assign("inner", "a part", &outer);
        nameless.assign("", "not used", nullptr);
    }
    XMLTAG outer, inner, nameless;
} const tags;

std::string misuse;

/// What a writer at that depth has written.
std::string written(const std::function<void(XMLGEN&)>& write, int depth = 0) {
    char* text = nullptr;
    size_t size = 0;
    FILE* file = open_memstream(&text, &size);
    XMLGEN generator(file, depth);
    generator.set_error_handler([](const char* message) { misuse += message; });
    misuse.clear();
    write(generator);
    EXPECT_TRUE(generator.flush());
    fclose(file);
    std::string result(text, size);
    free(text);
    return result;
}

constexpr unsigned WHOLE = XMLGEN::OPEN | XMLGEN::CLOSE;

TEST(Xmlesc, replaces_what_markup_is_made_of_and_what_no_document_can_hold) {
    EXPECT_EQ(xmlesc(R"(<a href="x">&'</a>)"), "&lt;a href=&quot;x&quot;&gt;&amp;&apos;&lt;/a&gt;");
    EXPECT_EQ(xmlesc("plain \xe4\xff\x80\t\r\n"), "plain \xe4\xff\x80\t\r\n");
    EXPECT_EQ(xmlesc(std::string_view("\0\x01\x1f\x7f", 4)), "???\x7f");
    EXPECT_EQ(xmlesc(""), "");
}

TEST(Base64, pads_the_last_group_and_breaks_lines) {
    const struct {
        const char* bytes;
        const char* text;
    } cases[] = {{"", ""},
                 {"f", "\n  Zg=="},
                 {"fo", "\n  Zm8="},
                 {"foo", "\n  Zm9v"},
                 {"foobar", "\n  Zm9vYmFy"},
                 {"\xff\xef\xbe", "\n  /+++"}};
    for (const auto& c : cases) {
        std::string text;
        append_base64(text, c.bytes);
        EXPECT_EQ(text, c.text);
    }
    std::string text;
    append_base64(text, std::string(55, '\0'));
    EXPECT_EQ(text, "\n  " + std::string(72, 'A') + "\n  AA==");
}

TEST(Xmlgen, indents_and_keeps_what_is_open) {
    const XML_ATTR attrs[] = {{"id", "a-1"}, {"note", "\"<\""}};
    EXPECT_EQ(written(
                  [&](XMLGEN& g) {
                      g.tag_gen(XMLGEN::OPEN, tags.outer, attrs);
                      g.tag_gen(WHOLE, tags.inner, {}, XML_VALUE::string("a<b"));
                      g.tag_gen(WHOLE, tags.inner, {}, XML_VALUE::hex(~uint64_t{0}));
                      g.tag_gen(WHOLE, tags.inner, {}, XML_VALUE::hex(0));
                      g.tag_gen(WHOLE, tags.inner, {}, XML_VALUE::decimal(-7));
                      g.tag_gen(WHOLE, tags.inner, {}, XML_VALUE::count(~uint64_t{0}));
                      g.tag_gen(WHOLE, tags.inner, {}, XML_VALUE::base64("foo"));
                      g.tag_gen(XMLGEN::EMPTY, tags.nameless, std::span(attrs, 1));
                      g.tag_gen(XMLGEN::OPEN, tags.inner, {}, XML_VALUE::string("text"));
                      g.tag_gen(XMLGEN::CLOSE, tags.inner, {}, XML_VALUE::string(" more"));
                      g.tag_gen(XMLGEN::CLOSE, tags.outer);
                  },
                  1),
              "   <outer id=\"a-1\" note=\"&quot;&lt;&quot;\">\n"
              "      <inner>a&lt;b</inner>\n"
              "      <inner>0xffffffffffffffff</inner>\n"
              "      <inner>0x0</inner>\n"
              "      <inner>-7</inner>\n"
              "      <inner>18446744073709551615</inner>\n"
              "      <inner>\n\n  Zm9v      </inner>\n"
              "      <reserved id=\"a-1\"/>\n"
              "      <inner>text more</inner>\n"
              "   </outer>\n");
    EXPECT_EQ(misuse, "");
}

TEST(Xmlgen, says_what_is_misused_and_goes_on) {
    EXPECT_EQ(written([](XMLGEN& g) { g.tag_gen(XMLGEN::CLOSE, tags.outer); }), "");
    EXPECT_EQ(misuse, "closing scope <outer> when there is no scope open");
    written([](XMLGEN& g) {
        g.tag_gen(XMLGEN::OPEN, tags.outer);
        g.tag_gen(XMLGEN::CLOSE, tags.inner);
    });
    EXPECT_EQ(misuse, "closing scope <inner> when the current scope is <outer>");
    EXPECT_EQ(written([](XMLGEN& g) {
                  g.tag_gen(XMLGEN::EMPTY, tags.outer, {}, XML_VALUE::string("lost"));
              }),
              "<outer/>");
    EXPECT_EQ(misuse, "printing content after empty <outer> tag");
    XMLGEN silent; // without file and handler
    silent.tag_gen(XMLGEN::CLOSE, tags.outer);
    EXPECT_TRUE(silent.flush());
}

TEST(Xmlgen, a_file_that_takes_no_text_is_told) {
    FILE* full = fopen("/dev/full", "w");
    ASSERT_NE(full, nullptr);
    setvbuf(full, nullptr, _IONBF, 0);
    XMLGEN generator(full);
    generator.text("text");
    EXPECT_FALSE(generator.flush());
    generator.text("more");
    EXPECT_FALSE(generator.flush());
    fclose(full);
}

TEST(Xmltag, is_documented_in_order_of_names) {
    char* text = nullptr;
    size_t size = 0;
    FILE* file = open_memstream(&text, &size);
    const XMLTAG table[] = {tags.nameless, tags.outer, tags.inner};
    XMLTAG::dump_docs(file, DOC_TEXT, table);
    XMLTAG::dump_docs(file, DOC_MARKDOWN, table);
    fclose(file);
    EXPECT_EQ(std::string(text, size), "inner  outer  a part\n"
                                       "outer         the whole\n"
                                       "| element | in | what it is |\n"
                                       "|---|---|---|\n"
                                       "| inner | outer | a part |\n"
                                       "| outer |       | the whole |\n");
    free(text);
}

} // namespace
