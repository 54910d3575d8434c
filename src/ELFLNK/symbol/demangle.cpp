// Itanium names, decoded by the C++ run-time library of the host; the search for constructor
// variants is our own, since the decoded text no longer tells them apart.
#include "ELFLNK/symbol/demangle.h"

#include <cxxabi.h>

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <string_view>

namespace {

// Longer names stay as they are: they help nobody in a message.
constexpr size_t LONGEST_DECODED = 16384;

std::string decode_itanium(const char* link_name) {
    if (std::strncmp(link_name, "_Z", 2) != 0) return {};
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> text(
        abi::__cxa_demangle(link_name, nullptr, nullptr, &status), &std::free);
    return status == 0 && text ? text.get() : std::string();
}

/// By scheme.
NAME_DECODER decoders[] = {nullptr, decode_itanium};

bool has_decoder(int scheme) {
    return scheme >= 0 && size_t(scheme) < std::size(decoders) && decoders[scheme] != nullptr;
}

// Walks a mangled name far enough to see the last component of its outermost nested name.
class NESTED_NAME {
  public:
    explicit NESTED_NAME(std::string_view text) : text_(text) {}

    bool ends_in_subobject() {
        if (!take("_ZN")) return false;
        int depth = 0;     // open brackets within the outermost nested name
        bool last = false; // the component just passed is C2 or D2
        while (pos_ < text_.size()) {
            const char c = text_[pos_];
            if (c == 'E') {
                if (depth == 0) return last;
                --depth, ++pos_; // template arguments belong to the component before them
            } else if (c == 'B' && depth == 0) {
                ++pos_; // so does an ABI tag
                if (!skip_source_name()) return false;
            } else if (std::isdigit(static_cast<unsigned char>(c))) {
                if (!skip_source_name()) return false;
                last = false;
            } else if (c == 'S' || c == 'T') {
                skip_substitution();
                last = false;
            } else if (std::strchr("INXJLF", c)) {
                ++depth, ++pos_;
            } else {
                if (depth == 0) last = take("C2") || take("D2");
                if (depth != 0 || !last) ++pos_;
            }
        }
        return false;
    }

  private:
    bool take(std::string_view what) {
        if (text_.substr(pos_, what.size()) != what) return false;
        pos_ += what.size();
        return true;
    }
    bool skip_source_name() {
        size_t length = 0;
        while (pos_ < text_.size() && std::isdigit(static_cast<unsigned char>(text_[pos_]))) {
            length = length * 10 + static_cast<size_t>(text_[pos_++] - '0');
            if (length > text_.size()) return false;
        }
        pos_ += length;
        return pos_ <= text_.size();
    }
    void skip_substitution() {
        ++pos_;
        if (pos_ < text_.size() && std::islower(static_cast<unsigned char>(text_[pos_]))) {
            ++pos_; // St, Sa, Ss and their like
            return;
        }
        while (pos_ < text_.size() && std::isalnum(static_cast<unsigned char>(text_[pos_]))) ++pos_;
        if (pos_ < text_.size() && text_[pos_] == '_') ++pos_;
    }

    std::string_view text_;
    size_t pos_ = 0;
};

} // namespace

void set_name_decoder(int scheme, NAME_DECODER decoder) {
    if (scheme >= 0 && size_t(scheme) < std::size(decoders)) decoders[scheme] = decoder;
}

std::string decode_id(const char* link_name, int scheme) {
    if (!has_decoder(scheme) || std::strlen(link_name) > LONGEST_DECODED) return link_name;
    std::string decoded = decoders[scheme](link_name);
    return decoded.empty() ? link_name : decoded;
}

bool decode_is_ia64_subobject(const char* link_name) {
    return NESTED_NAME(link_name).ends_in_subobject();
}
