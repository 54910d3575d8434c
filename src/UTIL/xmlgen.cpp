#include "UTIL/xmlgen.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "UTIL/strformat.h"

namespace {

// The text grows to about this size before the file gets it.
constexpr size_t CHUNK = size_t{1} << 20;
// Bytes of data in a line of Base64; 4 characters stand for 3 of them.
constexpr size_t BASE64_LINE = 54;

void append_number(std::string& to, uint64_t n, int base) {
    char digits[24];
    to.append(digits, std::to_chars(digits, std::end(digits), n, base).ptr);
}

const char* parent_name(const XMLTAG* tag) {
    return tag->parent() != nullptr ? tag->parent()->name() : "";
}

// What stands for a byte in XML: itself where it is null.
const char* entity(unsigned char c) {
    switch (c) {
    case '"':
        return "&quot;";
    case '&':
        return "&amp;";
    case '\'':
        return "&apos;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    default:
        return c >= 0x20 || c == '\t' || c == '\n' || c == '\r' ? nullptr : "?";
    }
}

} // namespace

// ---- tags ----------------------------------------------------------------------------------

size_t XMLTAG::max_taglen_m = 0;

void XMLTAG::assign(const char* name, const char* description, const XMLTAG* parent) {
    name_ = name;
    description_ = description;
    parent_ = parent;
    max_taglen_m = std::max(max_taglen_m, strlen(name));
}

bool XMLTAG::less(const XMLTAG* a, const XMLTAG* b) {
    int by_name = strcmp(a->name(), b->name());
    return by_name != 0 ? by_name < 0 : strcmp(parent_name(a), parent_name(b)) < 0;
}

void XMLTAG::dump_docs(FILE* to, DOC_FORMAT format, std::span<const XMLTAG> tags) {
    std::vector<const XMLTAG*> sorted;
    for (const XMLTAG& tag : tags)
        if (*tag.name_ != '\0') sorted.push_back(&tag);
    std::stable_sort(sorted.begin(), sorted.end(), less);
    if (format == DOC_MARKDOWN) fputs("| element | in | what it is |\n|---|---|---|\n", to);
    const int width = static_cast<int>(max_taglen_m);
    for (const XMLTAG* tag : sorted)
        fprintf(to, format == DOC_MARKDOWN ? "| %-*s | %-*s | %s |\n" : "%-*s  %-*s  %s\n", width,
                tag->name(), width, parent_name(tag), tag->description_);
}

// ---- text ----------------------------------------------------------------------------------

void append_xmlesc(std::string& to, std::string_view text) {
    size_t done = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        const char* instead = entity(static_cast<unsigned char>(text[i]));
        if (instead == nullptr) continue;
        to.append(text, done, i - done);
        to += instead;
        done = i + 1;
    }
    to.append(text, done, text.size() - done);
}

std::string xmlesc(std::string_view text) {
    std::string escaped;
    append_xmlesc(escaped, text);
    return escaped;
}

void append_base64(std::string& to, std::string_view bytes) {
    static constexpr char digits[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (size_t i = 0; i < bytes.size(); i += 3) {
        if (i % BASE64_LINE == 0) to += "\n  ";
        const size_t have = std::min<size_t>(3, bytes.size() - i);
        uint32_t group = 0;
        for (size_t k = 0; k < 3; ++k)
            group = group << 8 | (k < have ? static_cast<unsigned char>(bytes[i + k]) : 0U);
        for (size_t k = 0; k < 4; ++k) to += k <= have ? digits[group >> (18 - 6 * k) & 0x3F] : '=';
    }
}

// ---- the writer ----------------------------------------------------------------------------

void XMLGEN::start(FILE* file, int depth) {
    file_ = file;
    depth_ = depth;
    open_.clear();
    buffer_.clear();
    written_ = true;
}

void XMLGEN::misuse(const std::string& text) {
    if (error_ != nullptr) error_(text.c_str());
}

void XMLGEN::put_value(const XML_VALUE& value) {
    switch (value.kind) {
    case XML_VALUE::NONE:
        break;
    case XML_VALUE::HEX:
        buffer_ += "0x";
        append_number(buffer_, value.number, 16);
        break;
    case XML_VALUE::SIGNED:
        buffer_ += std::to_string(static_cast<int64_t>(value.number));
        break;
    case XML_VALUE::UNSIGNED:
        append_number(buffer_, value.number, 10);
        break;
    case XML_VALUE::STRING:
        append_xmlesc(buffer_, value.text);
        break;
    case XML_VALUE::BASE64:
        append_base64(buffer_, value.text);
        break;
    }
}

void XMLGEN::open_tag(unsigned kind, const XMLTAG& tag, std::span<const XML_ATTR> attrs,
                      bool line) {
    indent();
    buffer_ += '<';
    buffer_ += tag.name();
    for (const XML_ATTR& attr : attrs) {
        buffer_ += ' ';
        buffer_ += attr.name;
        buffer_ += "=\"";
        append_xmlesc(buffer_, attr.value);
        buffer_ += '"';
    }
    if ((kind & EMPTY) != 0) buffer_ += '/';
    buffer_ += '>';
    if (line) buffer_ += '\n';
    if ((kind & (CLOSE | EMPTY)) != 0) return;
    open_.push_back(&tag);
    ++depth_;
}

void XMLGEN::close_tag(unsigned kind, const XMLTAG& tag, bool line) {
    if ((kind & OPEN) == 0) { // opened by another call
        if (open_.empty())
            return misuse(strformat("closing scope <%s> when there is no scope open", tag.name()));
        if (open_.back() != &tag)
            misuse(strformat("closing scope <%s> when the current scope is <%s>", tag.name(),
                             open_.back()->name()));
        open_.pop_back();
        --depth_;
    }
    if (line) indent();
    buffer_ += "</";
    buffer_ += tag.name();
    buffer_ += ">\n";
}

void XMLGEN::tag_gen(unsigned kind, const XMLTAG& tag, std::span<const XML_ATTR> attrs,
                     const XML_VALUE& value) {
    const bool line = value.kind == XML_VALUE::NONE || value.kind == XML_VALUE::BASE64;
    if ((kind & (OPEN | EMPTY)) != 0) open_tag(kind, tag, attrs, line);
    if ((kind & EMPTY) != 0) {
        if (value.kind != XML_VALUE::NONE)
            misuse(strformat("printing content after empty <%s> tag", tag.name()));
        return;
    }
    put_value(value);
    if ((kind & CLOSE) != 0) close_tag(kind, tag, line);
    if (buffer_.size() >= CHUNK) flush();
}

bool XMLGEN::flush() {
    if (file_ != nullptr && !buffer_.empty())
        written_ &= fwrite(buffer_.data(), 1, buffer_.size(), file_) == buffer_.size();
    if (file_ != nullptr) buffer_.clear();
    return written_;
}
