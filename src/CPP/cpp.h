// The preprocessor of command files: a member of the C family, line by line in front of a parser.
//
// It knows nothing of the linker: include files, the place of the next line and messages go through
// a small client. Most lines of a command file hold nothing for it; such a line is handed out as a
// view of its file. The others are split into tokens, expanded, and written anew, and for each
// stretch of what comes out the place in the file is kept, so that a message points there.
//
// Input is not trusted: lengths, nesting and the work of expansion have limits, and the message for
// an exceeded limit ends the input.
#pragma once

#include <array>
#include <memory_resource>
#include <string>
#include <string_view>
#include <vector>

#include "CPP/cpp_client_interface.h"
#include "CPP/pp_macros.h"
#include "CPP/pp_source.h"
#include "CPP/pp_token.h"

class CPP : private PP_ERRORS {
  public:
    static constexpr size_t MAX_TOKENS = 4096; // of a line, or of a macro's expansion
    static constexpr size_t MAX_PREDEFINE_TOKENS = 1000;
    static constexpr size_t MAX_FRAMES = 1000;
    static constexpr size_t MAX_PARAMS = 1000;
    static constexpr size_t MAX_ARGS = 999;

    /// Reads a text under the name of its file. Both stay valid until the CPP is gone; so does the
    /// client. Without a client messages are reported and include files are opened by their names.
    CPP(const char* name, std::string_view text, CPP_CLIENT_INTERFACE* client = nullptr);

    /// The next line of output with its newline, valid until the next call; empty at the end.
    std::string_view fgets();
    /// Was the line that came last written anew?
    bool is_rewritten() const { return is_rewritten_; }
    /// Where its character at this offset stands in the file; column from 1.
    void find_place(size_t offset, unsigned& line, unsigned& column) const;

    /// A macro without parameters; a standard macro only draws a warning.
    void predefine(const char* name, const char* value);
    void undefine(const char* name);

  private:
    class DEFAULT_CLIENT;
    struct FRAME {
        MACDEF* macro; // null for the line itself and for arguments
        const PP_TOKEN* at;
        const PP_TOKEN* end;
        bool fence; // what stands behind belongs to others: an argument that is expanded alone
    };
    struct CONDITIONAL {
        unsigned line;
        bool taken; // a group of it was or is live
        bool else_seen;
    };
    using TOKEN_LIST = std::pmr::vector<PP_TOKEN>;
    struct ARGUMENT {
        TOKEN_LIST tokens;
        TOKEN_LIST expanded;
        bool is_expanded;
    };
    using ARGUMENTS = std::pmr::vector<ARGUMENT>;
    enum DIRECTIVE : int;
    struct DIRECTIVE_NAME;

    void cpp_error(DIAGNOSTIC&& diag) override;
    void cpp_fatal(DIAGNOSTIC&& diag) override;

    // Output.
    bool pp_eof();
    bool is_untouched(std::string_view line);
    void write_line(const PP_LINE& line, bool in_pragma);
    void pp_write(const PP_TOKEN& token);
    void pp_report_srcloc();

    // Directives.
    static DIRECTIVE pp_isdir(const PP_LINE& line, std::string_view& name, size_t& rest);
    void pp_directive(DIRECTIVE code, const PP_LINE& line, std::string_view name, size_t rest);
    void pp_if(DIRECTIVE code);
    void pp_elif_else(DIRECTIVE code);
    void pp_skip();
    bool skip_directive(DIRECTIVE code, const PP_LINE& line, size_t rest, unsigned& depth);
    bool pp_condition();
    void pp_include(std::string_view text);
    void include_file(std::string_view name, bool angle);
    void pp_define();
    bool parameters(std::vector<std::string_view>& names, std::string_view macro, size_t& at);
    bool pp_check_ops(PP_TOKENS body);
    void pp_redefine(const MACDEF& macro);
    void pp_line();
    bool line_operands(PP_TOKENS tokens);
    void pp_undef();
    const PP_TOKEN* single_name() const;

    // Macros.
    void pp_predef();
    void pp_create_def(std::string_view name, std::string_view value, PP_BUILTIN builtin,
                       bool standard);
    void pp_remove_def(std::string_view name);

    // Expansion.
    void start_tokens(const PP_LINE& line, size_t offset);
    bool pp_token(PP_TOKEN& token);
    bool next_raw(PP_TOKEN& token);
    void drop_frame();
    bool is_next(uint16_t kind) const;
    bool more_tokens();
    bool pp_invoke(MACDEF* macro, const PP_TOKEN& name);
    bool push_frame(MACDEF* macro, PP_TOKENS tokens, bool fence);
    PP_TOKENS builtin_body(PP_BUILTIN builtin, const PP_TOKEN& name);
    bool pp_findargs(const MACDEF* macro, ARGUMENTS& args);
    void check_arguments(const MACDEF* macro, ARGUMENTS& args);
    const TOKEN_LIST& expanded(ARGUMENT& arg);
    TOKEN_LIST substitute(const MACDEF* macro, ARGUMENTS& args, const PP_TOKEN& name);
    void pp_cat(TOKEN_LIST& out, PP_TOKENS right);
    PP_TOKEN pp_string(const ARGUMENT& arg, const PP_TOKEN& op);
    std::string_view keep(std::string_view text);
    TOKEN_LIST expand_all();

    CPP_CLIENT_INTERFACE* client_;
    PP_SOURCE source_;
    PP_MACROS macros_;
    std::vector<CONDITIONAL> conditionals_;

    // Of the line in hand.
    std::array<std::byte, 4096> first_memory_;
    std::pmr::monotonic_buffer_resource memory_;
    std::vector<PP_TOKEN> tokens_;
    std::vector<FRAME> frames_;
    size_t token_count_ = 0;
    size_t line_work_ = 0;
    uint32_t owed_gap_ = 0; // blanks in front of a macro that expanded to nothing
    bool in_directive_ = false;
    bool expand_ = true;
    PP_LINE more_; // a line that the arguments of a macro reach into

    // Output.
    std::string_view pending_; // waits behind blank lines
    unsigned blank_lines_ = 0;
    std::string out_;
    std::vector<PP_LINE::PIECE> places_;
    bool is_rewritten_ = false;
    const char* reported_file_;
    unsigned expected_line_ = 1; // what a reader takes the next line for

    size_t work_ = 0;
    bool ended_ = false;
};
