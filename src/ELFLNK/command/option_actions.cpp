// Options to functions. Most options are only read, by the phase that they concern; here are those
// that act at once, because their order on the command line counts or because they stop the run.
#include "ELFLNK/command/option_actions.h"

#include "DIAG/diagnostic.h"
#include "DIAG/elnk_msgs.h"
#include "ELFLNK/command/command.h"
#include "ELFLNK/command/extension_options.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/main/main.h"
#include "ELFLNK/memmap/fill_spec.h"
#include "ELFLNK/retain/retain_spec.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/target/target.h"
#include "ELFLNK/write/outsym_attr_manager.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OPTIONGEN/option_obj.h"
#include "OPTIONGEN/register_option.h"

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

// Messages.

template <dc_SEVERITY SEVERITY>
void set_severity(const option_arg* arg) {
    DIAGNOSTIC::override_severity(arg->text, SEVERITY);
}

/// The messages of one kind of advice take the severity that the user names.
template <int FIRST, int SECOND>
void set_advice_severity(const option_arg* arg) {
    dc_SEVERITY severity = dc_REMARK;
    if (arg->number == OPTV_severity_error) severity = dc_ERROR;
    if (arg->number == OPTV_severity_warning) severity = dc_WARNING;
    if (arg->number == OPTV_severity_suppress) severity = dc_SUPPRESSED;
    DIAGNOSTIC::override_severity(FIRST, severity);
    DIAGNOSTIC::override_severity(SECOND, severity);
}

void warnings_as_errors(const option_arg*) {
    DIAGNOSTIC::override_severity(dc_WARNING, dc_ERROR);
}
void no_warnings(const option_arg*) {
    DIAGNOSTIC::warnings_m = false;
}
void issue_remarks(const option_arg*) {
    DIAGNOSTIC::remarks_m = true;
}
void issue_debug(const option_arg*) {
    DIAGNOSTIC::debug_m = true;
}
void verbose_diagnostics(const option_arg*) {
    DIAGNOSTIC::verbose_m = true;
}
void display_error_number(const option_arg*) {
    DIAGNOSTIC::display_code_m = true;
}
void diag_wrap(const option_arg* arg) {
    DIAGNOSTIC::wrap_enabled_m = arg->number != OPTV_onoff_off;
}
void set_error_limit(const option_arg* arg) {
    DIAGNOSTIC::max_errors_m = unsigned(arg->number);
}
void buffer_diagnostics(const option_arg*) {
    setvbuf(stderr, nullptr, _IOLBF, BUFSIZ);
}

// Files and definitions.

void library(const option_arg* arg) {
    file_manager.add_file(arg->text, nullptr, true, false);
}
void search_path(const option_arg* arg) {
    file_manager.add_default_dir(arg->text);
}
void start_group(const option_arg*) {
    file_manager.start_archive_group();
}
void end_group(const option_arg*) {
    file_manager.end_archive_group();
}
void define(const option_arg* arg) {
    option_define_ppsym(arg->text);
}
void undefine(const option_arg* arg) {
    option_undefine_ppsym(arg->text);
}

// Symbols.

void retain(const option_arg* arg) {
    retain_manager.add_retain_specifier(arg->text);
}
void undef_sym(const option_arg* arg) {
    global_symbols.add_entry_name(arg->text);
}
void make_global(const option_arg* arg) {
    global_symbols.add_nohide_name(arg->text);
}
void hide(const option_arg* arg) {
    outsym_attr_manager.add_hide_pattern(arg->text);
}
void unhide(const option_arg* arg) {
    outsym_attr_manager.add_unhide_pattern(arg->text);
}
void localize(const option_arg* arg) {
    outsym_attr_manager.add_localize_pattern(arg->text);
}
void globalize(const option_arg* arg) {
    outsym_attr_manager.add_globalize_pattern(arg->text);
}

// The output.

void abi(const option_arg* arg) {
    const bool is_elf = arg->number == OPTV_abi_eabi || arg->number == OPTV_abi_elfabi;
    objfmt_conflict(OPT_abi, is_elf ? OFE::OF_FORMAT_ELF : OFE::OF_FORMAT_QVCOFF);
}

void object_format(const option_arg* arg) {
    objfmt_conflict(OPT_object_format,
                    arg->number == OPTV_format_elf ? OFE::OF_FORMAT_ELF : OFE::OF_FORMAT_QVCOFF);
}

void fill_value(const option_arg* arg) {
    constexpr unsigned HEX = 16;
    constexpr unsigned BITS_PER_DIGIT = 4;
    FILL_SPEC::set_default_fill(uint64_t(arg->number), HEX,
                                Target->fill_max_width() / BITS_PER_DIGIT);
}

// Switches, and options that stop the run.

void debug_switches(const option_arg* arg) {
    process_debug_option("debug", arg->text);
}
void disable_switches(const option_arg* arg) {
    process_debug_option("disable", arg->text);
}

void help(const option_arg* arg) {
    option_obj::display_option_help(arg == nullptr ? nullptr : arg->text);
    exit(0);
}

void toolversion(const option_arg*) {
    print_tool_and_version(stdout);
    exit(0);
}

struct ACTION {
    option_id id;
    void (*act)(const option_arg*);
};

constexpr ACTION actions[] = {
    {OPT_abi, abi},
    {OPT_advice_hw_config_severity, set_advice_severity<10420, 10421>},
    {OPT_advice_power_severity, set_advice_severity<10371, 10372>},
    {OPT_buffer_diagnostics, buffer_diagnostics},
    {OPT_debug, debug_switches},
    {OPT_define, define},
    {OPT_diag_error, set_severity<dc_ERROR>},
    {OPT_diag_remark, set_severity<dc_REMARK>},
    {OPT_diag_suppress, set_severity<dc_SUPPRESSED>},
    {OPT_diag_warning, set_severity<dc_WARNING>},
    {OPT_diag_wrap, diag_wrap},
    {OPT_disable, disable_switches},
    {OPT_display_error_number, display_error_number},
    {OPT_emit_warnings_as_errors, warnings_as_errors},
    {OPT_end_group, end_group},
    {OPT_fill_value, fill_value},
    {OPT_globalize, globalize},
    {OPT_help, help},
    {OPT_hide, hide},
    {OPT_issue_debug, issue_debug},
    {OPT_issue_remarks, issue_remarks},
    {OPT_library, library},
    {OPT_localize, localize},
    {OPT_make_global, make_global},
    {OPT_no_warnings, no_warnings},
    {OPT_object_format, object_format},
    {OPT_retain, retain},
    {OPT_search_path, search_path},
    {OPT_set_error_limit, set_error_limit},
    {OPT_start_group, start_group},
    {OPT_toolversion, toolversion},
    {OPT_undef_sym, undef_sym},
    {OPT_undefine, undefine},
    {OPT_unhide, unhide},
    {OPT_verbose_diagnostics, verbose_diagnostics},
};

void act(option_id id, const option_arg* value) {
    for (const ACTION& action : actions)
        if (action.id == id) action.act(value);
}

/// An option that needs an output of a certain format.
struct FORMAT_NEED {
    option_id id;
    OFE::OF_FORMAT format;
};
std::vector<FORMAT_NEED> format_needs;

} // namespace

void install_option_actions() {
    option_obj::action = act;
    option_obj::extensions = extension_options();
}

void enter_exports_and_imports() {
    for (unsigned n = 0; n < global_opts->getargcount(OPT_export); n++)
        global_symbols.add_export_name(global_opts->getstrarg(OPT_export, n));
    for (unsigned n = 0; n < global_opts->getargcount(OPT_import); n++)
        global_symbols.add_import_name(global_opts->getstrarg(OPT_import, n));
}

void objfmt_conflict(option_id id, OFE::OF_FORMAT format) {
    format_needs.push_back({id, format});
}

void report_objfmt_conflicts(OFE::OF_FORMAT format) {
    for (const FORMAT_NEED& need : format_needs)
        if (need.format != format && global_opts->isopt(need.id))
            DIAG_REPORT(elnk_opt_outfmt_conflict, global_opts->export_option(need.id, 0),
                        OFE::OBJECT_FILE::format_name(format));
}
