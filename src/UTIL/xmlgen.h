// The writer of XML documents, and the table of tags that it writes them with.
//
// What elements a document has is data: one XMLTAG for each, with the element it stands in. The
// writer knows the nesting by itself: it indents, and refuses to close what isn't open. It gathers
// text and hands it to the file in large pieces.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The forms in which XMLTAG::dump_docs() prints the tags.
enum DOC_FORMAT { DOC_TEXT, DOC_MARKDOWN };

/// One kind of element.
class XMLTAG {
  public:
    /// `parent`: the element that it stands in; null if that isn't fixed.
    void assign(const char* name, const char* description, const XMLTAG* parent);

    /// "reserved" for a tag without a name.
    const char* name() const { return *name_ != '\0' ? name_ : "reserved"; }
    const char* description() const { return description_; }
    const XMLTAG* parent() const { return parent_; }

    /// By name, then by the parents' names; one without a parent comes first.
    static bool less(const XMLTAG* a, const XMLTAG* b);
    /// Prints the tags that have a name, sorted.
    static void dump_docs(FILE* to, DOC_FORMAT format, std::span<const XMLTAG> tags);
    /// The length of the longest name that was assigned.
    static size_t max_taglen_m;

  private:
    const char* name_ = "";
    const char* description_ = "";
    const XMLTAG* parent_ = nullptr;
};

struct XML_ATTR {
    const char* name;
    std::string_view value;
};

/// The content of an element, with the form in which it is written.
struct XML_VALUE {
    enum KIND { NONE, HEX, SIGNED, UNSIGNED, STRING, BASE64 };

    static XML_VALUE hex(uint64_t n) { return {HEX, n, {}}; }
    static XML_VALUE decimal(int64_t n) { return {SIGNED, static_cast<uint64_t>(n), {}}; }
    static XML_VALUE count(uint64_t n) { return {UNSIGNED, n, {}}; }
    static XML_VALUE string(std::string_view text) { return {STRING, 0, text}; }
    static XML_VALUE base64(std::string_view bytes) { return {BASE64, 0, bytes}; }

    KIND kind = NONE;
    uint64_t number = 0;
    std::string_view text;
};

class XMLGEN {
  public:
    /// What of an element is written; OPEN | CLOSE is a whole element on one line.
    enum KIND : unsigned { OPEN = 1, CLOSE = 2, EMPTY = 4 };
    /// Takes the text of a misuse: a fault of the program.
    using ERROR_HANDLER = void (*)(const char* text);

    explicit XMLGEN(FILE* file = nullptr, int depth = 0) : file_(file), depth_(depth) {}

    /// Goes on with another file, at another depth, with nothing open.
    void start(FILE* file, int depth = 0);
    /// Text that is no element; not escaped.
    void text(std::string_view text) { buffer_ += text; }
    void tag_gen(unsigned kind, const XMLTAG& tag, std::span<const XML_ATTR> attrs = {},
                 const XML_VALUE& value = {});
    /// Hands all text to the file; false if the file did not take all there ever was.
    bool flush();
    void set_error_handler(ERROR_HANDLER handler) { error_ = handler; }

  private:
    void open_tag(unsigned kind, const XMLTAG& tag, std::span<const XML_ATTR> attrs, bool line);
    void close_tag(unsigned kind, const XMLTAG& tag, bool line);
    void put_value(const XML_VALUE& value);
    void misuse(const std::string& text);
    void indent() { buffer_.append(static_cast<size_t>(depth_) * 3, ' '); }

    FILE* file_;
    int depth_;
    std::vector<const XMLTAG*> open_;
    std::string buffer_;
    bool written_ = true;
    ERROR_HANDLER error_ = nullptr;
};

/// Appends the text as XML can hold it. What no XML document can hold is replaced by "?".
void append_xmlesc(std::string& to, std::string_view text);
std::string xmlesc(std::string_view text);

/// Appends the bytes as Base64 in lines, each begun with a line feed and two blanks.
void append_base64(std::string& to, std::string_view bytes);
