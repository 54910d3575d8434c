// The flow of lines: which are untouched, which are written anew, and where each comes from.
#include "CPP/cpp.h"

#include <algorithm>
#include <cstring>
#include <ctime>

#include "CPP/cpp_directive.h"
#include "DIAG/cpp_msgs.h"
#include "UTIL/savestr.h"

namespace {

// What a line may grow to.
constexpr size_t MAX_OUTPUT = 64 * PP_SOURCE::MAX_LINE;
// Up to so many lines that fall out become blank ones, so that a reader's count stays right.
constexpr unsigned MAX_BLANK_LINES = 2;

enum : uint8_t { PLAIN, WORD, DIGIT, QUOTE, SLASH, QUESTION, WORK };

// What a character may mean for a line that holds no directive.
constexpr std::array<uint8_t, 256> character_classes = [] {
    std::array<uint8_t, 256> classes{};
    for (unsigned i = 0; i < classes.size(); ++i) {
        const char c = static_cast<char>(i);
        classes[i] = pp_is_letter(c)                      ? WORD
                     : pp_is_digit(c)                     ? DIGIT
                     : c == '"'                           ? QUOTE
                     : c == '/'                           ? SLASH
                     : c == '?'                           ? QUESTION
                     : c == '\'' || c == '\\' || c == '#' ? WORK
                     : c != '\n' && pp_is_illegal(c)      ? WORK
                                                          : PLAIN;
    }
    return classes;
}();

uint8_t character_class(char c) {
    return character_classes[static_cast<unsigned char>(c)];
}

bool is_blank_line(std::string_view line) {
    return std::all_of(line.begin(), line.end(),
                       [](char c) { return c == '\n' || pp_is_blank(c); });
}

} // namespace

// Used if nobody else cares.
class CPP::DEFAULT_CLIENT : public CPP_CLIENT_INTERFACE {
  public:
    const char* find_h_file(const char* name, const char*, bool) override { return savestr(name); }
    void set_srcloc(const char*, unsigned) override {}
    void process_diagnostic(DIAGNOSTIC& diag) override { diag.report(); }
};

CPP::CPP(const char* name, std::string_view text, CPP_CLIENT_INTERFACE* client)
    : client_(client), source_(*this), memory_(first_memory_.data(), first_memory_.size()) {
    static DEFAULT_CLIENT default_client;
    if (client_ == nullptr) client_ = &default_client;
    reported_file_ = savestr(name);
    source_.push(reported_file_, text);
    pp_predef();
}

void CPP::cpp_error(DIAGNOSTIC&& diag) {
    const DIAG_SRCINFO_DATA position(source_.file(), source_.line());
    diag.set_src(&position);
    client_->process_diagnostic(diag);
}

void CPP::cpp_fatal(DIAGNOSTIC&& diag) {
    if (ended_) return;
    ended_ = true;
    source_.end();
    conditionals_.clear();
    cpp_error(std::move(diag));
}

std::string_view CPP::fgets() {
    while (pending_.empty()) {
        places_.clear();
        const std::string_view line = source_.peek();
        if (line.empty()) {
            if (!pp_eof()) return {};
            continue;
        }
        if (is_blank_line(line)) {
            source_.take();
            continue;
        }
        if (is_untouched(line)) {
            source_.take();
            pending_ = line;
        } else {
            memory_.release();
            PP_LINE logical;
            source_.read(logical, &memory_);
            std::string_view name;
            size_t rest = 0;
            const DIRECTIVE code = pp_isdir(logical, name, rest);
            if (code != DIR_NONE) {
                pp_directive(code, logical, name, rest);
            } else {
                write_line(logical, false);
            }
        }
        if (!pending_.empty()) pp_report_srcloc();
    }
    is_rewritten_ = blank_lines_ == 0 && !places_.empty();
    if (blank_lines_ > 0) {
        --blank_lines_;
        return "\n";
    }
    return std::exchange(pending_, {});
}

// The end of a file; true if there is more behind it.
bool CPP::pp_eof() {
    if (source_.pop()) return true;
    if (!conditionals_.empty()) {
        cpp_error(DIAG::cpp_open_if(__FILE__, __LINE__, conditionals_.back().line));
        conditionals_.clear();
    }
    return false;
}

// Does the line come out as it stands? It does without directives, macros, comments, trigraphs,
// continuations and characters that need a word.
bool CPP::is_untouched(std::string_view line) {
    if (line.size() > MAX_TOKENS) return false; // may hold too many tokens
    size_t i = 0;
    while (i < line.size()) {
        const size_t begin = i++;
        const char next = i < line.size() ? line[i] : '\0';
        switch (character_class(line[begin])) {
        case PLAIN:
            break;
        case WORD:
            while (i < line.size() && character_class(line[i]) <= DIGIT &&
                   character_class(line[i]) != PLAIN)
                ++i;
            if (macros_.find(line.substr(begin, i - begin)) != nullptr) return false;
            break;
        case DIGIT:
            while (i < line.size() && pp_is_word(line[i])) ++i;
            break;
        case QUOTE: {
            const size_t end = line.find('"', i);
            if (end == line.npos) return false;
            const std::string_view inside = line.substr(i, end - i);
            if (inside.find_first_of("\\?") != inside.npos) return false;
            i = end + 1;
            break;
        }
        case SLASH:
            if (next == '/' || next == '*') return false;
            break;
        case QUESTION:
            if (next == '?') return false;
            break;
        default:
            return false;
        }
    }
    return true;
}

void CPP::write_line(const PP_LINE& line, bool in_pragma) {
    const unsigned first_line = source_.line();
    in_directive_ = in_pragma;
    expand_ = true;
    out_.clear();
    places_.assign(1, {0, first_line, 1});
    start_tokens(line, 0);
    PP_TOKEN token;
    while (pp_token(token)) {
        if (!in_pragma && (token.kind == PP_STRINGIZE || token.kind == PP_PASTE))
            cpp_error(DIAG::cpp_not_in_macro(__FILE__, __LINE__, token.str()));
        pp_write(token);
        if (out_.size() > MAX_OUTPUT) cpp_fatal(DIAG::cpp_line_too_long(__FILE__, __LINE__));
        if (ended_) return;
    }
    if (out_.empty()) return;
    out_ += '\n';
    pending_ = out_;
}

// Writes a token behind as many blanks as stood in front of it, and notes its place if that isn't
// what follows from the text before.
void CPP::pp_write(const PP_TOKEN& token) {
    out_.append(token.gap, ' ');
    const PP_LINE::PIECE& last = places_.back();
    const uint32_t at = static_cast<uint32_t>(out_.size());
    if (token.line != last.line || token.column != last.column + (at - last.offset))
        places_.push_back({at, token.line, token.column});
    out_ += token.str();
}

void CPP::find_place(size_t offset, unsigned& line, unsigned& column) const {
    auto behind =
        std::upper_bound(places_.begin(), places_.end(), offset,
                         [](size_t at, const PP_LINE::PIECE& piece) { return at < piece.offset; });
    if (behind == places_.begin()) return;
    const PP_LINE::PIECE& place = *std::prev(behind);
    line = place.line;
    column = place.column + static_cast<unsigned>(offset - place.offset);
}

// A reader counts lines. A few that fell out become blank ones; for more, or in another file, it is
// told where the next line comes from.
void CPP::pp_report_srcloc() {
    const unsigned line = places_.empty() ? source_.line() : places_.front().line;
    const bool same_file = source_.file() == reported_file_;
    if (same_file && line >= expected_line_ && line - expected_line_ <= MAX_BLANK_LINES) {
        blank_lines_ = line - expected_line_;
    } else {
        client_->set_srcloc(source_.file(), line);
        reported_file_ = source_.file();
        blank_lines_ = 0;
    }
    expected_line_ = line + 1;
}

// Date and time are those of the start; __FILE__ and __LINE__ are made at each use.
void CPP::pp_predef() {
    const time_t now = time(nullptr);
    tm local{};
    localtime_r(&now, &local);
    char text[64];
    strftime(text, sizeof text, "\"%b %e %Y\"", &local);
    pp_create_def("__DATE__", text, PP_BUILTIN::NONE, true);
    strftime(text, sizeof text, "\"%H:%M:%S\"", &local);
    pp_create_def("__TIME__", text, PP_BUILTIN::NONE, true);
    pp_create_def("__FILE__", "", PP_BUILTIN::FILE_NAME, true);
    pp_create_def("__LINE__", "", PP_BUILTIN::LINE_NUMBER, true);
}

void CPP::pp_create_def(std::string_view name, std::string_view value, PP_BUILTIN builtin,
                        bool standard) {
    std::vector<PP_TOKEN> body;
    pp_tokenize(value, body, *this);
    if (body.size() > MAX_PREDEFINE_TOKENS) {
        cpp_fatal(DIAG::cpp_too_many_tokens_in_predefine(__FILE__, __LINE__));
        return;
    }
    MACDEF macro;
    macro.name = name;
    macro.body = body;
    macro.builtin = builtin;
    macro.standard = standard;
    pp_redefine(macro);
}

void CPP::pp_remove_def(std::string_view name) {
    MACDEF* macro = macros_.find(name);
    if (name == "defined" || (macro != nullptr && macro->standard))
        cpp_error(DIAG::cpp_std_undef(__FILE__, __LINE__, name));
    else if (macro != nullptr)
        macros_.remove(macro);
}

void CPP::predefine(const char* name, const char* value) {
    const std::string_view text = name;
    if (text.empty()) return;
    const MACDEF* macro = macros_.find(text);
    if (text == "defined" || (macro != nullptr && macro->standard)) {
        cpp_error(DIAG::cpp_std_redef(__FILE__, __LINE__, text));
        return;
    }
    pp_create_def(text, value, PP_BUILTIN::NONE, false);
}

void CPP::undefine(const char* name) {
    pp_remove_def(name);
}
