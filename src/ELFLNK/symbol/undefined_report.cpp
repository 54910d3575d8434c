// A missing symbol is most often a name that is spelled otherwise, or a library that stands too
// early on the command line. Verbose diagnostics therefore look for similar names among the
// definitions of the link and in the directories of its archives; this costs nothing unless it is
// asked for and something is undefined.
#include "ELFLNK/symbol/undefined_report.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/file/archive_file.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/symbol/similar_names.h"
#include "ELFLNK/symbol/symbol_file.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "UTIL/text_table.h"

namespace {

enum COLUMN { NAME, FILE_NAME, SECTION_NAME, SIMILAR };

void set_heading(TEXT_TABLE& table, int column, const char* first, const char* second,
                 const char* rule) {
    table.set_string(0, column, first);
    table.set_string(1, column, second);
    table.set_string(2, column, rule);
}

/// The section, and its file where the table names another one.
std::string referrer_name(const UNDEFINED_SYMBOL& undefined) {
    if (undefined.referrer == nullptr) return {};
    std::string name = undefined.referrer->original_section_name();
    OBJ_FILE* file = undefined.referrer->object_file();
    if (file != symbol_obj_file(undefined.symbol))
        name += std::string("(") + file_diag_name(file) + ")";
    return name;
}

void offer_all_names(SIMILAR_NAMES& similar) {
    for (uint32_t id = 0; id < global_symbols.name_count(); id++)
        if (global_symbols.def_of(id) != nullptr)
            similar.offer(global_symbols.name_of(id), nullptr);
    for (INPUT_FILE* file : file_manager.input_files())
        if (ARCHIVE_FILE* archive = file->as_archive_file())
            for (const AR_SYMBOL& entry : archive->AR_FILE_api()->symbols())
                similar.offer(entry.name, archive->name());
}

std::string similar_name(const SIMILAR_NAMES::MATCH& match) {
    if (match.name.empty()) return {};
    const std::string name = global_symbols.diag_sym_name(std::string(match.name).c_str());
    return match.place == nullptr ? name : name + " (" + match.place + ")";
}

void add_details(TEXT_TABLE& table, int first_row, const std::vector<UNDEFINED_SYMBOL>& undefined) {
    std::vector<const char*> names;
    for (const UNDEFINED_SYMBOL& entry : undefined) names.push_back(entry.symbol->name());
    SIMILAR_NAMES similar(names);
    offer_all_names(similar);
    set_heading(table, SECTION_NAME, "", " in section ", "------------");
    set_heading(table, SIMILAR, "", "similar name", "------------");
    for (size_t n = 0; n < undefined.size(); n++) {
        const int row = first_row + static_cast<int>(n);
        table.set_string(row, SECTION_NAME, referrer_name(undefined[n]));
        table.set_string(row, SIMILAR, similar_name(similar.best(n)));
    }
}

/// What the names tell of the reason: how a file was compiled, or what other linkers define.
std::string reason_hint(const std::vector<UNDEFINED_SYMBOL>& undefined) {
    auto is_wanted = [&](std::string_view start) {
        return std::any_of(undefined.begin(), undefined.end(), [&](const UNDEFINED_SYMBOL& entry) {
            return std::string_view(entry.symbol->name()).starts_with(start);
        });
    };
    std::string text;
    const uint32_t slim = global_symbols.find_id("__gnu_lto_slim");
    if (slim != NAME_TABLE::NO_NAME && global_symbols.def_of(slim) != nullptr)
        text += std::string("; \"") + symbol_file_name(global_symbols.def_of(slim)) +
                "\" holds no code but what -flto leaves for later: compile with -ffat-lto-objects";
    if (is_wanted("_GLOBAL_OFFSET_TABLE_"))
        text += "; code compiled with -fPIC wants a table of addresses, which is not made";
    if (is_wanted("__start_") || is_wanted("__stop_"))
        text += "; RUN_START(__start_name), RUN_END(__stop_name) behind an output section define "
                "its ends";
    return text;
}

} // namespace

void report_undefined_symbols(std::vector<UNDEFINED_SYMBOL> undefined) {
    if (undefined.empty()) return;
    std::sort(undefined.begin(), undefined.end(),
              [](const UNDEFINED_SYMBOL& a, const UNDEFINED_SYMBOL& b) {
                  return OFE::OF_SYMBOL::less_than_symname(a.symbol, b.symbol);
              });
    TEXT_TABLE table;
    table.set_indent(1);
    table.set_padding(1);
    set_heading(table, NAME, "undefined", " symbol  ", "---------");
    set_heading(table, FILE_NAME, "first referenced", "    in file     ", "----------------");
    const int first_row = table.nrows();
    for (const UNDEFINED_SYMBOL& entry : undefined) {
        Target->report_undef_symbol(entry.symbol);
        const int row = table.append_rows();
        table.set_string(row, NAME, global_symbols.diag_sym_name(entry.symbol->name()));
        table.set_string(row, FILE_NAME, symbol_file_name(entry.symbol));
    }
    if (DIAGNOSTIC::verbose_m) add_details(table, first_row, undefined);
    fputc('\n', stderr);
    table.print(stderr);
    fputc('\n', stderr);
    DIAG::elnk_symref_errors message(__FILE__, __LINE__);
    if (DIAGNOSTIC::verbose_m) message.set_hint(reason_hint(undefined));
    message.report();
}
