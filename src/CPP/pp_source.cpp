// Reading of lines.
#include "CPP/pp_source.h"

#include <cstring>
#include <string>

#include "DIAG/cpp_msgs.h"

namespace {

constexpr size_t TRIGRAPH = 3;

// The character that the trigraph at the start of the text stands for, or 0.
char trigraph(std::string_view text) {
    static constexpr std::string_view thirds = "=/'()!<>-";
    static constexpr std::string_view meanings = "#\\^[]|{}~";
    if (text.size() < TRIGRAPH || text[0] != '?' || text[1] != '?') return 0;
    const size_t which = thirds.find(text[2]);
    return which == thirds.npos ? '\0' : meanings[which];
}

std::string_view without_newline(std::string_view line) {
    if (!line.empty() && line.back() == '\n') line.remove_suffix(1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return line;
}

// Does anything in the line need work? A quote does only with a comment's first character.
bool is_plain(std::string_view line) {
    for (size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        const char next = i + 1 < line.size() ? line[i + 1] : '\0';
        if (c == '\\' && i + 1 == line.size()) return false;
        if (c == '/' && (next == '/' || next == '*')) return false;
        if (c == '?' && next == '?') return false;
    }
    return true;
}

} // namespace

void PP_SOURCE::push(const char* name, std::string_view text) {
    files_.push_back({name, name, text, 1});
    line_ = 0;
}

bool PP_SOURCE::pop() {
    if (files_.size() == 1) return false;
    files_.pop_back();
    line_ = files_.back().next_line - 1;
    return true;
}

void PP_SOURCE::end() {
    for (FILE_STATE& file : files_) file.rest = {};
}

std::string_view PP_SOURCE::peek() const {
    const std::string_view rest = files_.back().rest;
    if (rest.empty()) return {};
    const void* newline = std::memchr(rest.data(), '\n', rest.size());
    if (newline == nullptr) return rest;
    return rest.substr(0, static_cast<size_t>(static_cast<const char*>(newline) - rest.data()) + 1);
}

void PP_SOURCE::take() {
    const size_t length = peek().size();
    FILE_STATE& file = files_.back();
    file.rest.remove_prefix(length);
    line_ = file.next_line++;
}

void PP_SOURCE::skip() {
    for (;;) {
        const std::string_view line = without_newline(peek());
        take();
        if (line.empty() || line.back() != '\\' || files_.back().rest.empty()) return;
    }
}

// Builds one line out of several, or out of one with comments and trigraphs.
class PP_SOURCE::JOINER {
  public:
    JOINER(PP_SOURCE& source, PP_LINE& line) : source_(source), line_(line) {}

    void join() {
        bool more = true;
        while (more) {
            physical_ = without_newline(source_.peek());
            source_.take();
            at_ = 0;
            note_place();
            more = physical_line();
            if (!more || too_long()) break;
            if (source_.peek().empty()) {
                if (comment_line_ != 0)
                    source_.errors_.cpp_error(
                        DIAG::cpp_open_comment(__FILE__, __LINE__, comment_line_));
                break;
            }
        }
    }
    const std::string& text() const { return text_; }

  private:
    // The text that comes next stands here in the file.
    void note_place() {
        const PP_LINE::PIECE place{static_cast<uint32_t>(text_.size()), source_.line_,
                                   static_cast<uint32_t>(at_) + 1};
        if (!line_.pieces.empty() && line_.pieces.back().offset == place.offset)
            line_.pieces.back() = place;
        else
            line_.pieces.push_back(place);
    }

    // True if the next line belongs to this one.
    bool physical_line() {
        if (comment_line_ != 0 && !comment_tail()) return true;
        while (at_ < physical_.size()) {
            char c = physical_[at_];
            size_t width = 1;
            if (const char meaning = trigraph(physical_.substr(at_))) {
                c = meaning;
                width = TRIGRAPH;
            }
            if (c == '\\' && at_ + width == physical_.size()) return true;
            if (in_line_comment_) {
                at_ += width;
            } else if (c == '/' && quote_ == 0 && comment()) {
                if (comment_line_ != 0) return true;
            } else {
                character(c, width);
            }
        }
        return false;
    }

    void character(char c, size_t width) {
        if (escaped_)
            escaped_ = false;
        else if (quote_ != 0 && c == '\\')
            escaped_ = true;
        else if (c == quote_)
            quote_ = 0;
        else if (quote_ == 0 && (c == '"' || c == '\''))
            quote_ = c;
        text_ += c;
        at_ += width;
        if (width != 1) note_place();
    }

    // A comment begins here? A blank takes its place. comment_line_ stays set if it goes on behind
    // the line.
    bool comment() {
        const char next = at_ + 1 < physical_.size() ? physical_[at_ + 1] : '\0';
        if (next != '/' && next != '*') return false;
        in_line_comment_ = next == '/';
        at_ += 2;
        text_ += ' ';
        if (next == '*') {
            comment_line_ = source_.line_;
            comment_tail();
        }
        return true;
    }

    bool comment_tail() {
        const size_t end = physical_.find("*/", at_);
        comment_size_ += (end == physical_.npos ? physical_.size() : end) - at_;
        at_ = end == physical_.npos ? physical_.size() : end + 2;
        if (end == physical_.npos) return false;
        comment_line_ = 0;
        note_place();
        return true;
    }

    bool too_long() {
        if (text_.size() > MAX_LINE) {
            source_.errors_.cpp_fatal(DIAG::cpp_line_too_long(__FILE__, __LINE__));
        } else if (comment_line_ != 0 && text_.size() + comment_size_ > MAX_LINE) {
            source_.errors_.cpp_fatal(
                DIAG::cpp_buffer_overflow_skipping_comments(__FILE__, __LINE__));
        } else {
            return false;
        }
        return true;
    }

    PP_SOURCE& source_;
    PP_LINE& line_;
    std::string text_;
    std::string_view physical_;
    size_t at_ = 0;
    unsigned comment_line_ = 0; // where the comment began that the text is in
    size_t comment_size_ = 0;
    bool in_line_comment_ = false;
    bool escaped_ = false;
    char quote_ = 0;
};

bool PP_SOURCE::read(PP_LINE& line, std::pmr::memory_resource* memory) {
    const std::string_view first = peek();
    if (first.empty()) return false;
    line.pieces.clear();
    line.text = without_newline(first);
    if (line.text.size() > MAX_LINE) {
        take();
        errors_.cpp_fatal(DIAG::cpp_line_too_long(__FILE__, __LINE__));
        line.text = {};
        return true;
    }
    if (is_plain(line.text)) {
        take();
        line.pieces.push_back({0, line_, 1});
        return true;
    }
    const unsigned first_line = files_.back().next_line;
    JOINER joiner(*this, line);
    joiner.join();
    line_ = first_line;
    char* copy = static_cast<char*>(memory->allocate(joiner.text().size() + 1, 1));
    std::memcpy(copy, joiner.text().data(), joiner.text().size());
    line.text = {copy, joiner.text().size()};
    if (line.text.size() > MAX_LINE) line.text = {};
    return true;
}
