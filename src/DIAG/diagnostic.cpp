// Printing, counting and overriding of messages.
#include "DIAG/diagnostic.h"

#include "DIAG/misc_msgs.h"
#include "UTIL/strformat.h"

#include <cstdlib>
#include <new>
#include <unordered_map>

bool DIAGNOSTIC::wrap_enabled_m = true;
bool DIAGNOSTIC::warnings_m = true;
unsigned DIAGNOSTIC::max_errors_m = 100;
int DIAGNOSTIC::wrap_indent_m = 3;
int DIAGNOSTIC::diag_cols_m = 79;
bool DIAGNOSTIC::display_code_m = false;
bool DIAGNOSTIC::display_ipos_m = false;
bool DIAGNOSTIC::wrap_headers_m = false;
bool DIAGNOSTIC::verbose_m = false;
bool DIAGNOSTIC::advice_m = false;
bool DIAGNOSTIC::debug_m = false;
bool DIAGNOSTIC::remarks_m = false;
bool DIAGNOSTIC::debug_mode_m = false;
int DIAGNOSTIC::indent_m = 0;
FILE* DIAGNOSTIC::fp_m = nullptr;
unsigned DIAGNOSTIC::error_count_m = 0;
std::vector<bool> DIAGNOSTIC::debug_mode_stack_m;
std::vector<int> DIAGNOSTIC::indent_stack_m;

namespace {

constexpr int SP_COLUMNS = 79;
constexpr int SP_WRAP_INDENT = 10;

/// Wraps onto a stream, going on in the middle of a line.
class STREAM_WRAPPER final : public WORD_WRAPPER {
  public:
    STREAM_WRAPPER(FILE* to, int columns, int indent, int wrap_indent)
        : WORD_WRAPPER(columns, indent, wrap_indent), to_(to) {}

  private:
    void put(std::string_view piece) override { std::fwrite(piece.data(), 1, piece.size(), to_); }
    FILE* to_;
};

class STRING_WRAPPER final : public WORD_WRAPPER {
  public:
    explicit STRING_WRAPPER(std::string& to)
        : WORD_WRAPPER(SP_COLUMNS, 0, SP_WRAP_INDENT), to_(to) {}

  private:
    void put(std::string_view piece) override { to_ += piece; }
    std::string& to_;
};

/// The buffer that print() formats into; it keeps its size between calls.
std::string& format_buffer() {
    static std::string buffer;
    return buffer;
}

bool is_override_target(dc_SEVERITY severity) {
    return severity != dc_NO_ERROR && severity != dc_ADVICE && severity != dc_DEBUG;
}

void override_row(DIAG_INFO* row, dc_SEVERITY severity) {
    if (row == nullptr || !is_override_target(severity) || row->severity == dc_ADVICE ||
        row->severity == dc_FATAL || row->is_fixed || row->is_internal)
        return;
    row->severity = severity;
}

} // namespace

const char* severity_name(dc_SEVERITY severity) {
    static constexpr const char* NAMES[] = {"(suppressed)", "(no error)", "advice", "debug",
                                            "remark",       "warning",    "error",  "fatal error"};
    return severity >= dc_SUPPRESSED && severity <= dc_FATAL ? NAMES[severity] : "(unknown)";
}

DIAGNOSTIC::DIAGNOSTIC(DIAG_INFO* info, const char* file, unsigned line)
    : info_(info), columns_left_(diag_cols_m), file_(file), line_(line) {}

DIAGNOSTIC::DIAGNOSTIC(const DIAGNOSTIC& other)
    : info_(other.info_),
      columns_left_(diag_cols_m),
      file_(other.file_),
      line_(other.line_),
      hint_(other.hint_) {
    set_src(other.src());
}

DIAGNOSTIC::~DIAGNOSTIC() = default;

void DIAGNOSTIC::set_src(const DIAG_SRCINFO* position) {
    src_ = position != nullptr ? std::make_unique<DIAG_SRCINFO_DATA>(*position) : nullptr;
}

bool DIAGNOSTIC::is_equal(const DIAGNOSTIC* other) const {
    if (other == nullptr || code() != other->code()) return false;
    if (src_ == nullptr || other->src_ == nullptr) return src_ == other->src_;
    return src_->is_equal(other->src_.get());
}

void DIAGNOSTIC::free_mem() {
    format_buffer() = std::string();
    sp_buffer_ = std::string();
}

void DIAGNOSTIC::dump() const {
    std::printf("%d (%s): %s\n", info_->code, sev_str(), info_->std_msg);
}

FILE* DIAGNOSTIC::fp() const {
    if (fp_m != nullptr) return fp_m;
    return info_->severity >= dc_WARNING ? stderr : stdout;
}

bool DIAGNOSTIC::is_discretionary() const {
    return !info_->is_fixed && !info_->is_internal && info_->severity != dc_ADVICE &&
           info_->severity != dc_FATAL;
}

// True if nothing of this message is to be seen.
bool DIAGNOSTIC::filtered() const {
    switch (info_->severity) {
    case dc_SUPPRESSED:
        return true;
    case dc_ADVICE:
        return !advice_m;
    case dc_DEBUG:
        return !debug_m;
    case dc_REMARK:
        return !remarks_m;
    case dc_WARNING:
        return !warnings_m;
    default:
        return false;
    }
}

std::string DIAGNOSTIC::position_text() const {
    std::string text;
    if (src_ == nullptr || *src_->file() == '\0') return text;
    text = strformat("\"%s\"", src_->file());
    if (src_->line() != 0) text += strformat(", line %u", src_->line());
    if (src_->approx()) text += " (approximate)";
    return text;
}

int DIAGNOSTIC::print_header() {
    header_printed_ = true;
    if (filtered()) return 0;
    flush();
    wrap_ = wrap_headers_m;
    const bool internal = info_->is_internal;
    int printed = print("%*s", indent_m, "");
    if (display_ipos_m || internal) printed += print("%s:%u:", file_, line_);
    if (const std::string position = position_text(); !position.empty())
        printed += print("%s: ", position.c_str());
    if (display_code_m || internal)
        printed += print("%s%s #%d%s: ", internal ? "internal " : "", sev_str(), info_->code,
                         is_discretionary() ? "-D" : "");
    else
        printed += print("%s: ", sev_str());
    wrap_ = true;
    return printed;
}

int DIAGNOSTIC::print(const char* format, ...) {
    if (filtered()) return 0;
    std::string& buffer = format_buffer();
    buffer.clear();
    va_list args;
    va_start(args, format);
    vstrappend(buffer, format, args);
    va_end(args);
    return put_wrapped(buffer);
}

int DIAGNOSTIC::print_text(std::string_view text) {
    return filtered() ? 0 : put_wrapped(text);
}

int DIAGNOSTIC::put_wrapped(std::string_view text) {
    if (!wrap_enabled_m || !wrap_) {
        std::fwrite(text.data(), 1, text.size(), fp());
        columns_left_ -= static_cast<int>(text.size());
        return static_cast<int>(text.size());
    }
    if (diag_cols_m <= indent_m + wrap_indent_m) std::abort();
    int printed = columns_left_ <= 0 ? start_new_line() : 0;
    STREAM_WRAPPER wrapper(fp(), diag_cols_m, indent_m, wrap_indent_m);
    wrapper.set_left(columns_left_);
    printed += wrapper.print_formatted(text);
    columns_left_ = wrapper.columns_left();
    return printed;
}

int DIAGNOSTIC::start_new_line() {
    STREAM_WRAPPER wrapper(fp(), diag_cols_m, indent_m, wrap_indent_m);
    const int printed = wrapper.start_new_line();
    columns_left_ = wrapper.columns_left();
    return printed;
}

int DIAGNOSTIC::flush() {
    if (columns_left_ == diag_cols_m) return 0;
    columns_left_ = diag_cols_m;
    std::fputc('\n', fp());
    if (verbose_m) show_annotated_source();
    if (debug_mode_m) return 1;
    if (info_->severity == dc_ERROR || info_->severity == dc_FATAL) error_count_m++;
    if (info_->severity == dc_FATAL) {
        if (info_->is_internal) std::abort();
        std::exit(1);
    }
    if (error_count_m > max_errors_m) DIAG_REPORT(max_errors, max_errors_m);
    return 1;
}

void DIAGNOSTIC::show_annotated_source() const {
    if (src_ == nullptr || *src_->file() == '\0' || src_->line() == 0 || src_->approx()) return;
    FILE* file = std::fopen(src_->file(), "r");
    if (file == nullptr) return;
    std::string text;
    unsigned line = 1;
    int c;
    while ((c = std::fgetc(file)) != EOF && line <= src_->line()) {
        if (c == '\n')
            line++;
        else if (line == src_->line())
            text += static_cast<char>(c);
    }
    std::fclose(file);
    std::fprintf(fp(), "%s\n", text.c_str());
    if (src_->column() != 0)
        std::fprintf(fp(), "%-*s^\n", static_cast<int>(src_->column()) - 1, "");
}

int DIAGNOSTIC::sp_print(const char* format, ...) {
    va_list args;
    va_start(args, format);
    try {
        const std::string text = vstrformat(format, args);
        va_end(args);
        STRING_WRAPPER wrapper(sp_buffer_);
        return wrapper.print_formatted(text);
    } catch (const std::bad_alloc&) {
        std::fputs("OUT OF MEMORY - APPLICATION ABORTED\n", stderr);
        std::exit(1);
    }
}

DIAG_INFO* DIAGNOSTIC::get_info(int code) {
    static const std::unordered_map<int, DIAG_INFO*> map = [] {
        std::unordered_map<int, DIAG_INFO*> rows;
        for (DIAG_INFO* row = DIAG_INFO_ENTRY; row->code != 0; row++) rows.emplace(row->code, row);
        return rows;
    }();
    const auto found = map.find(code);
    return found != map.end() ? found->second : nullptr;
}

void DIAGNOSTIC::override_severity(int code, dc_SEVERITY severity) {
    override_row(get_info(code), severity);
}

void DIAGNOSTIC::override_severity(const char* list, dc_SEVERITY severity) {
    constexpr int CODE_LIMIT = 1000000; // above every code, and far from overflow
    int code = 0;
    for (;; list++) {
        if (*list >= '0' && *list <= '9') {
            code = code < CODE_LIMIT ? code * 10 + (*list - '0') : CODE_LIMIT;
        } else if (*list == ',' || *list == '\0') {
            override_severity(code, severity);
            code = 0;
            if (*list == '\0') break;
        }
    }
}

void DIAGNOSTIC::override_severity(dc_SEVERITY from, dc_SEVERITY to) {
    for (DIAG_INFO* row = DIAG_INFO_ENTRY; row->code != 0; row++)
        if (row->severity == from) override_row(row, to);
}

void DIAGNOSTIC::push_debug_mode(bool on) {
    debug_mode_stack_m.push_back(debug_mode_m);
    debug_mode_m = on;
}

void DIAGNOSTIC::pop_debug_mode() {
    debug_mode_m = !debug_mode_stack_m.empty() && debug_mode_stack_m.back();
    if (!debug_mode_stack_m.empty()) debug_mode_stack_m.pop_back();
}

void DIAGNOSTIC::push_indent(int columns) {
    indent_stack_m.push_back(indent_m);
    indent_m = columns;
}

void DIAGNOSTIC::pop_indent() {
    indent_m = indent_stack_m.empty() ? 0 : indent_stack_m.back();
    if (!indent_stack_m.empty()) indent_stack_m.pop_back();
}
