// Messages to the user: severity, header, word wrap, counting and the error limit.
//
// Every message is a row of one table (DIAG_INFO) and an object of a class made from that row, see
// message.h. The code that finds a fault constructs the object, reports it and goes on; the row's
// severity alone decides whether the process ends. Severities can be overridden per row while
// options are parsed; a row that is fixed, internal, fatal or advice keeps its own.
#pragma once

#include "DIAG/source_position.h"

#include <cstdarg>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

enum dc_SEVERITY {
    dc_SUPPRESSED = 0,
    dc_NO_ERROR = 1,
    dc_ADVICE = 2,
    dc_DEBUG = 3,
    dc_REMARK = 4,
    dc_WARNING = 5,
    dc_ERROR = 6,
    dc_FATAL = 7
};

/// The printed name of a severity; "(unknown)" for a value out of range.
const char* severity_name(dc_SEVERITY severity);

/// A row of the message table.
struct DIAG_INFO {
    int code;             ///< the number that users see and that options take
    const char* std_msg;  ///< printf-style text
    const char* vrb_msg;  ///< what verbose mode prints behind it, or null
    dc_SEVERITY severity; ///< current severity: overrides go here
    bool is_internal;     ///< a fault of the tool, not of the input
    bool is_fixed;        ///< cannot be overridden
};

/// All rows in ascending order of their codes; a row with code 0 ends the table.
extern DIAG_INFO DIAG_INFO_ENTRY[];

/// Breaks text into lines at white space. The text goes out in pieces that fit into the columns
/// left; a word that is longer than a whole line is not broken.
class WORD_WRAPPER {
  public:
    virtual ~WORD_WRAPPER() = default;
    WORD_WRAPPER(int columns, int indent, int wrap_indent)
        : columns_(columns), indent_(indent), wrap_indent_(wrap_indent), left_(columns) {}

    /// Writes the text; returns the number of characters written, line breaks and indents included.
    int print_formatted(std::string_view text);
    /// A line break and the indent of a continuation line; returns the characters written.
    int start_new_line();
    int columns_left() const { return left_; }
    bool at_line_start() const { return left_ == columns_; }
    void set_left(int columns) { left_ = columns; }

  protected:
    virtual void put(std::string_view piece) = 0;

  private:
    int emit(std::string_view piece);
    int columns_;
    int indent_;
    int wrap_indent_;
    int left_;
};

/// The base of all messages.
class DIAGNOSTIC {
  public:
    virtual ~DIAGNOSTIC();
    /// A heap copy, for callers that keep a message for later.
    virtual DIAGNOSTIC* alloc() const = 0;
    /// Prints the message, counts it and, if it is fatal, ends the process; returns the characters
    /// printed.
    virtual int report() = 0;
    /// The text written by sp_print().
    virtual std::string& get_sp_buffer() { return sp_buffer_; }
    /// Equal codes and equal positions.
    virtual bool is_equal(const DIAGNOSTIC* other) const;
    /// Gives the format buffer back.
    virtual void free_mem();
    /// Prints code, severity and text to standard output, for debugging.
    virtual void dump() const;

    /// The row of `code`, or null.
    static DIAG_INFO* get_info(int code);
    /// Overrides one row, a list of codes ("10068-D,10010"), or all rows of severity `from`.
    static void override_severity(int code, dc_SEVERITY severity);
    static void override_severity(const char* list, dc_SEVERITY severity);
    static void override_severity(dc_SEVERITY from, dc_SEVERITY to);
    /// While debug mode is on, messages are shown but neither counted nor fatal.
    static void push_debug_mode(bool on);
    static void pop_debug_mode();
    static void push_indent(int columns);
    static void pop_indent();

    int print_header();
    [[gnu::format(printf, 2, 3)]] int print(const char* format, ...);
    int flush();
    int start_new_line();
    const char* sev_str() const { return severity_name(info_->severity); }
    FILE* fp() const;
    /// Sets this message's row to severity 0.
    void suppress() { info_->severity = dc_SUPPRESSED; }
    bool is_discretionary() const;
    /// Formats into the buffer of get_sp_buffer(), wrapped at 79 columns.
    [[gnu::format(printf, 2, 3)]] int sp_print(const char* format, ...);
    /// Copies the position; null removes it.
    void set_src(const DIAG_SRCINFO* position);
    const DIAG_SRCINFO* src() const { return src_.get(); }
    /// What verbose mode says behind the texts of the row, for cases that the row knows nothing of.
    void set_hint(std::string text) { hint_ = std::move(text); }
    const DIAG_INFO* info() const { return info_; }
    int code() const { return info_->code; }
    dc_SEVERITY severity() const { return info_->severity; }
    bool is_internal() const { return info_->is_internal; }

    static bool wrap_enabled_m;
    static bool warnings_m;
    static unsigned max_errors_m;
    static int wrap_indent_m;
    static int diag_cols_m;
    static bool display_code_m;
    static bool display_ipos_m;
    static bool wrap_headers_m;
    static bool verbose_m;
    static bool advice_m;
    static bool debug_m;
    static bool remarks_m;
    static bool debug_mode_m;
    static int indent_m;
    static FILE* fp_m; ///< replaces the default stream if set
    static unsigned error_count_m;

  protected:
    DIAGNOSTIC(DIAG_INFO* info, const char* file, unsigned line);
    DIAGNOSTIC(const DIAGNOSTIC& other);
    DIAGNOSTIC& operator=(const DIAGNOSTIC&) = delete;

    /// print() for a text that is ready.
    int print_text(std::string_view text);
    const std::string& hint() const { return hint_; }

  private:
    bool filtered() const;
    std::string position_text() const;
    int put_wrapped(std::string_view text);
    void show_annotated_source() const;

    static std::vector<bool> debug_mode_stack_m;
    static std::vector<int> indent_stack_m;

    DIAG_INFO* info_;
    int columns_left_;
    std::unique_ptr<DIAG_SRCINFO_DATA> src_;
    const char* file_;
    unsigned line_;
    bool header_printed_ = false;
    bool wrap_ = true;
    std::string hint_;
    std::string sp_buffer_;
};
