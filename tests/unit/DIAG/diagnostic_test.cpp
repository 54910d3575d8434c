#include "DIAG/elnk_msgs.h"
#include "DIAG/gen_msgs.h"
#include "DIAG/misc_msgs.h"
#include "DIAG/optgen_msgs.h"
#include "DIAG/releng_msgs.h"
#include "DIAG/user_msg_api.h"
#include "UTIL/filename.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <unistd.h>

namespace {

/// Everything that messages print while it exists.
class CAPTURE {
  public:
    CAPTURE() : stream_(open_memstream(&text_, &size_)) { DIAGNOSTIC::fp_m = stream_; }
    ~CAPTURE() {
        DIAGNOSTIC::fp_m = nullptr;
        std::fclose(stream_);
        std::free(text_);
    }
    std::string text() {
        std::fflush(stream_);
        return std::string(text_, size_);
    }

  private:
    char* text_ = nullptr;
    size_t size_ = 0;
    FILE* stream_;
};

template <class... A>
constexpr bool is_nofile_argument =
    std::is_constructible_v<DIAG::elnk_nofile, const char*, unsigned, A...>;

// The arguments of a message follow from its text.
static_assert(is_nofile_argument<const char*> && is_nofile_argument<std::string>);
static_assert(!is_nofile_argument<> && !is_nofile_argument<int> &&
              !is_nofile_argument<const char*, const char*>);
static_assert(std::is_constructible_v<DIAG::elnk_bad_ar_member, const char*, unsigned, uint64_t,
                                      const char*>);
static_assert(!std::is_constructible_v<DIAG::elnk_bad_ar_member, const char*, unsigned, const char*,
                                       uint64_t>);
static_assert(std::is_constructible_v<DIAG::elnk_no_files, const char*, unsigned>);

TEST(Message, the_text_follows_a_header_with_the_severity) {
    CAPTURE out;
    DIAG_REPORT(elnk_nofile, "a.o");
    DIAG_REPORT(elnk_not_prog_scn, std::string(".debug_info"), "lib.a:b.o");
    EXPECT_EQ(out.text(),
              "error: cannot find file \"a.o\"\n"
              "warning: linking in section .debug_info(lib.a:b.o), which does not contain\n"
              "   program data\n");
    EXPECT_EQ(DIAGNOSTIC::error_count_m, 1u);
}

TEST(Message, header_forms) {
    const SOURCE_POSITION plain("l.cmd", 12);
    const SOURCE_POSITION no_line("l.cmd", 0);
    const DIAG_SRCINFO_DATA near_by("l.cmd", 7, 3, true);
    const SOURCE_POSITION unknown;
    const struct {
        const DIAG_SRCINFO* position;
        bool code;
        const char* header;
    } cases[] = {
        {nullptr, false, "error: "},
        {nullptr, true, "error #10008-D: "},
        {&plain, false, "\"l.cmd\", line 12: error: "},
        {&plain, true, "\"l.cmd\", line 12: error #10008-D: "},
        {&no_line, false, "\"l.cmd\": error: "},
        {&near_by, false, "\"l.cmd\", line 7 (approximate): error: "},
        {&unknown, false, "error: "},
    };
    for (const auto& c : cases) {
        CAPTURE out;
        DIAGNOSTIC::display_code_m = c.code;
        DIAG_REPORT_AT(c.position, elnk_nofile, "x");
        EXPECT_EQ(out.text(), std::string(c.header) + "cannot find file \"x\"\n");
    }
    DIAGNOSTIC::display_code_m = true;
    CAPTURE out;
    DIAG_REPORT(elnk_outfile_not_built, "x");
    EXPECT_EQ(out.text(), "error #10010: errors encountered during linking; \"x\" not built\n")
        << "a fixed message is not discretionary";
}

TEST(Message, an_internal_message_names_its_source_and_code) {
    DIAGNOSTIC::push_debug_mode(true); // so that it does not end the process
    CAPTURE out;
    DIAG::gen_null_pointer message("src/x.cpp", 42, "osect");
    message.report();
    EXPECT_EQ(out.text(),
              "src/x.cpp:42:internal fatal error #6000: pointer \"osect\" should not be NULL at\n"
              "   this point\n");
    EXPECT_EQ(DIAGNOSTIC::error_count_m, 0u);
    DIAGNOSTIC::pop_debug_mode();
}

TEST(Message, numbers_print_in_full_whatever_their_type) {
    DIAG::releng_reloc_opnd wide("", 0, "S", uint64_t{0x123456789A});
    EXPECT_EQ(wide.text(), "relocation operand S = 0x123456789a");
    DIAG::max_errors count("", 0, uint64_t{5000000000});
    EXPECT_EQ(count.text(), "error limit reached; 5000000000 errors detected");
    DIAG::elnk_place_bad_range page("", 0, "RAM", -1);
    EXPECT_EQ(page.text(), "memory range not found: RAM on page -1");
    DIAG::elnk_bad_ar_member padded("", 0, 0x1F, "a.a");
    EXPECT_EQ(padded.text(),
              "offset 0x0000001f in file \"a.a\" does not point to a valid archive member");
}

TEST(Message, an_argument_with_conversions_is_plain_text) {
    CAPTURE out;
    DIAG_REPORT(elnk_nofile, "%s%n.o");
    EXPECT_EQ(out.text(), "error: cannot find file \"%s%n.o\"\n");
}

TEST(Message, verbose_text_goes_behind) {
    CAPTURE out;
    DIAG_REPORT(elnk_sym_opt_demoted, "-e", "-u", "main", "-e", "ELF relocatable");
    DIAGNOSTIC::verbose_m = true;
    DIAGNOSTIC::wrap_enabled_m = false;
    DIAG_REPORT(elnk_sym_opt_demoted, "-e", "-u", "main", "-e", "ELF relocatable");
    EXPECT_EQ(out.text(),
              "warning: option -e demoted to -u for symbol \"main\"\n"
              "warning: option -e demoted to -u for symbol \"main\"; option -e does not "
              "apply to ELF relocatable\n");
}

TEST(Message, verbose_mode_shows_the_line_with_a_caret) {
    const std::string name = fn_tmpnam();
    std::ofstream(name) << "one\ntwo words\nthree\n";
    DIAGNOSTIC::verbose_m = true;
    CAPTURE out;
    const SOURCE_POSITION position(name.c_str(), 2, 5);
    DIAG_REPORT_AT(&position, elnk_bad_expr);
    unlink(name.c_str());
    EXPECT_EQ(out.text(),
              "\"" + name + "\", line 2: error: illegal expression\ntwo words\n    ^\n");
}

TEST(Wrap, lines_hold_79_columns_and_break_at_blanks) {
    std::string text;
    for (int i = 0; i < 40; i++) text += "word" + std::to_string(i) + " ";
    CAPTURE out;
    USER_MSG::get_umsg_obj()->error("%s", text.c_str());
    std::string joined;
    std::string shown = out.text();
    size_t lines = 0;
    while (!shown.empty()) {
        const size_t end = shown.find('\n');
        const std::string line = shown.substr(0, end);
        shown.erase(0, end + 1);
        EXPECT_LE(line.size(), 79u);
        EXPECT_EQ(line.substr(0, 3), lines == 0 ? "err" : "   ");
        joined += line.substr(lines == 0 ? 7 : 3) + " ";
        lines++;
    }
    while (joined.ends_with("  ")) joined.pop_back();
    EXPECT_EQ(joined, text);
    EXPECT_GE(lines, 4u);
}

TEST(Wrap, a_word_longer_than_a_line_is_not_broken) {
    const std::string word(200, 'x');
    CAPTURE out;
    USER_MSG::get_umsg_obj()->error("%s end", word.c_str());
    EXPECT_EQ(out.text(), "error: " + word + "\n   end\n");
}

TEST(Wrap, a_line_end_in_the_text_starts_a_new_line) {
    CAPTURE out;
    USER_MSG::get_umsg_obj()->error("first:\nsecond");
    EXPECT_EQ(out.text(), "error: first:\n   second\n");
}

TEST(Wrap, blanks_at_the_start_of_a_line_are_skipped) {
    CAPTURE out;
    USER_MSG::get_umsg_obj()->error("first:\n  second\n\n\tthird");
    EXPECT_EQ(out.text(), "error: first:\n   second\n   \n   third\n");
}

TEST(Wrap, off_means_one_line) {
    DIAGNOSTIC::wrap_enabled_m = false;
    CAPTURE out;
    USER_MSG::get_umsg_obj()->error("%s", std::string(300, 'y').c_str());
    EXPECT_EQ(out.text(), "error: " + std::string(300, 'y') + "\n");
}

TEST(Wrap, the_indent_stands_in_front_of_every_line) {
    DIAGNOSTIC::push_indent(9);
    CAPTURE out;
    USER_MSG::get_umsg_obj()->error("a\nb");
    DIAGNOSTIC::pop_indent();
    DIAGNOSTIC::pop_indent();
    EXPECT_EQ(out.text(), std::string(9, ' ') + "error: a\n" + std::string(12, ' ') + "b\n");
    EXPECT_EQ(DIAGNOSTIC::indent_m, 0);
}

TEST(Wrap, sp_print_wraps_into_a_buffer) {
    DIAG::elnk_bad_expr message("", 0);
    message.sp_print("%s %s", std::string(70, 'a').c_str(), "bbbbbbbbbbbb");
    EXPECT_EQ(message.get_sp_buffer(),
              std::string(70, 'a') + "\n" + std::string(10, ' ') + "bbbbbbbbbbbb");
}

TEST(Severity, remarks_and_debug_texts_show_only_when_asked_for) {
    CAPTURE out;
    USER_MSG* user = USER_MSG::get_umsg_obj();
    user->remark("r");
    user->debug("d");
    user->advice("a");
    EXPECT_EQ(out.text(), "");
    DIAGNOSTIC::remarks_m = DIAGNOSTIC::debug_m = DIAGNOSTIC::advice_m = true;
    user->remark("r");
    user->advice("a");
    EXPECT_EQ(out.text(), "remark: r\nadvice: a\n");
    EXPECT_EQ(DIAGNOSTIC::error_count_m, 0u);
}

TEST(Severity, warnings_can_be_turned_off_but_not_those_raised_to_errors) {
    DIAGNOSTIC::warnings_m = false;
    CAPTURE out;
    DIAG_REPORT(elnk_no_matching_section);
    EXPECT_EQ(out.text(), "");
    DIAGNOSTIC::override_severity("10007", dc_ERROR);
    DIAG_REPORT(elnk_pattern_match_failed, "*.o");
    EXPECT_EQ(out.text(), "error: no files match the pattern *.o\n");
    EXPECT_EQ(DIAGNOSTIC::error_count_m, 1u);
}

TEST(Severity, overrides_leave_some_rows_alone) {
    const struct {
        int code;
        dc_SEVERITY to;
        dc_SEVERITY expected;
        const char* why;
    } cases[] = {
        {10008, dc_WARNING, dc_WARNING, "an ordinary error"},
        {10008, dc_ADVICE, dc_WARNING, "advice is no target"},
        {10008, dc_DEBUG, dc_WARNING, "debug is no target"},
        {10008, dc_NO_ERROR, dc_WARNING, "no error is no target"},
        {10008, dc_SUPPRESSED, dc_SUPPRESSED, "suppressed is"},
        {10010, dc_SUPPRESSED, dc_ERROR, "a fixed row"},
        {10009, dc_SUPPRESSED, dc_FATAL, "a fatal row"},
        {99927, dc_ERROR, dc_ADVICE, "an advice row"},
        {10453, dc_WARNING, dc_ERROR, "an internal row"},
    };
    for (const auto& c : cases) {
        DIAGNOSTIC::override_severity(c.code, c.to);
        EXPECT_EQ(DIAGNOSTIC::get_info(c.code)->severity, c.expected) << c.why;
    }
    DIAGNOSTIC::override_severity(12345, dc_ERROR); // no such row
    EXPECT_EQ(DIAGNOSTIC::get_info(12345), nullptr);
}

TEST(Severity, a_list_takes_the_digits_of_each_item) {
    DIAGNOSTIC::override_severity("10005-D, x10006,,99999999999999999999,10008", dc_REMARK);
    EXPECT_EQ(DIAGNOSTIC::get_info(10005)->severity, dc_REMARK);
    EXPECT_EQ(DIAGNOSTIC::get_info(10006)->severity, dc_REMARK);
    EXPECT_EQ(DIAGNOSTIC::get_info(10008)->severity, dc_REMARK);
}

TEST(Severity, warnings_as_errors_spare_the_fixed_free_text) {
    DIAGNOSTIC::override_severity(dc_WARNING, dc_ERROR);
    EXPECT_EQ(DIAGNOSTIC::get_info(10007)->severity, dc_ERROR);
    EXPECT_EQ(DIAGNOSTIC::get_info(99922)->severity, dc_WARNING);
    EXPECT_EQ(DIAGNOSTIC::get_info(10205)->severity, dc_REMARK);
}

TEST(Severity, a_suppressed_message_is_not_counted) {
    DIAGNOSTIC::override_severity("10008", dc_SUPPRESSED);
    CAPTURE out;
    DIAG_REPORT(elnk_nofile, "x");
    EXPECT_EQ(out.text(), "");
    EXPECT_EQ(DIAGNOSTIC::error_count_m, 0u);
}

TEST(Severity, names) {
    EXPECT_STREQ(severity_name(dc_FATAL), "fatal error");
    EXPECT_STREQ(severity_name(dc_SUPPRESSED), "(suppressed)");
    EXPECT_STREQ(severity_name(static_cast<dc_SEVERITY>(8)), "(unknown)");
}

TEST(Streams, up_to_remark_on_stdout_and_the_rest_on_stderr) {
    DIAGNOSTIC::remarks_m = true;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    USER_MSG::get_umsg_obj()->remark("r");
    USER_MSG::get_umsg_obj()->warning(0u, "w");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "remark: r\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "warning: w\n");
}

TEST(End, a_fatal_message_exits_with_1) {
    EXPECT_EXIT(DIAG_REPORT(elnk_no_files), testing::ExitedWithCode(1),
                "^fatal error: no input files\n$");
}

TEST(End, an_internal_fatal_message_aborts) {
    EXPECT_EXIT(DIAG_REPORT(gen_null_pointer, "p"), testing::KilledBySignal(SIGABRT),
                "internal fatal error #6000");
}

TEST(End, the_error_behind_the_limit_ends_the_run) {
    DIAGNOSTIC::max_errors_m = 2;
    const auto three_errors = [] {
        for (int i = 0; i < 5; i++) DIAG_REPORT(elnk_nofile, std::to_string(i));
    };
    EXPECT_EXIT(three_errors(), testing::ExitedWithCode(1),
                "^error: cannot find file \"0\"\nerror: cannot find file \"1\"\nerror: cannot find "
                "file \"2\"\n"
                "fatal error: error limit reached; 2 errors detected\n$");
    DIAGNOSTIC::max_errors_m = 0;
    EXPECT_EXIT(DIAG_REPORT(elnk_nofile, "a"), testing::ExitedWithCode(1),
                "error limit reached; 0 errors detected");
}

TEST(UserMsg, warnings_can_count_as_errors) {
    CAPTURE out;
    USER_MSG* user = USER_MSG::get_umsg_obj();
    user->set_warnings_as_errors(true);
    const SOURCE_POSITION position("a.cmd", 3);
    user->warning(&position, 5u, "careful %d", 1);
    EXPECT_EQ(out.text(), "\"a.cmd\", line 3: error: careful 1\n");
    EXPECT_EQ(user->get_error_count(), 1u);
}

TEST(UserMsg, a_fault_of_the_tool_is_in_parentheses) {
    EXPECT_EXIT(USER_MSG::get_umsg_obj()->die("f()", "bad %d", 3), testing::KilledBySignal(SIGABRT),
                "\\(f\\(\\):[[:space:]]+bad[[:space:]]+3\\)");
    CAPTURE out;
    USER_MSG::get_umsg_obj()->apperror("odd");
    EXPECT_NE(out.text().find("internal error #99924: (odd)\n"), std::string::npos);
}

TEST(Equality, needs_the_same_code_and_position) {
    const SOURCE_POSITION here("a", 1, 2);
    const SOURCE_POSITION there("a", 2, 2);
    DIAG::elnk_nofile a("", 0, "x");
    DIAG::elnk_nofile b("", 0, "y");
    DIAG::elnk_bad_expr c("", 0);
    EXPECT_TRUE(a.is_equal(&b));
    EXPECT_FALSE(a.is_equal(&c));
    a.set_src(&here);
    EXPECT_FALSE(a.is_equal(&b));
    b.set_src(&there);
    EXPECT_FALSE(a.is_equal(&b));
    b.set_src(&here);
    EXPECT_TRUE(a.is_equal(&b));
    const std::unique_ptr<DIAGNOSTIC> copy(a.alloc());
    EXPECT_TRUE(copy->is_equal(&a));
    EXPECT_NE(copy->src(), a.src());
}

TEST(Position, a_copy_is_never_approximate) {
    SOURCE_POSITION position("f", 4, 5);
    position.set_approx(true);
    const SOURCE_POSITION copy(&position);
    EXPECT_FALSE(copy.approx());
    EXPECT_EQ(copy.line(), 4u);
    EXPECT_STREQ(SOURCE_POSITION(static_cast<SOURCE_POSITION*>(nullptr)).file(), "");
}

TEST(Table, every_row_is_found_by_its_code) {
    int rows = 0;
    for (const DIAG_INFO* row = DIAG_INFO_ENTRY; row->code != 0; row++, rows++)
        EXPECT_EQ(DIAGNOSTIC::get_info(row->code), row);
    EXPECT_GT(rows, 400);
    EXPECT_EQ(DIAG::elnk_nofile::row()->code, 10008);
    EXPECT_EQ(DIAG::gfatal::row()->code, 99925);
    EXPECT_EQ(DIAG::optgen_conflict_option::row()->code, 24002);
    EXPECT_EQ(DIAG::releng_reloc_overflow::row()->code, 0x426B);
}

} // namespace
