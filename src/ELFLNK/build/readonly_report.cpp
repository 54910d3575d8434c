// The tables of references that read-only sections may not make.
#include <cstdio>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/build/build.h"
#include "ELFLNK/build/build_state.h"
#include "ELFLNK/load/load.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "UTIL/text_table.h"

namespace {

struct COLUMN_TITLE {
    const char* line[3];
};

constexpr COLUMN_TITLE UNBOUND[] = {{{"unbound", "symbol ", "-------"}},
                                    {{"first referenced", "       in       ", "----------------"}},
                                    {{"defined", "   in  ", "-------"}}};
constexpr COLUMN_TITLE UNDEFINED[] = {
    {{"undefined", "  symbol ", "---------"}},
    {{"first referenced", "       in       ", "----------------"}}};
constexpr COLUMN_TITLE WEAK_UNDEFINED[] = {
    {{"undefined", "  symbol ", "---------"}},
    {{"first weak reference", "         in         ", "--------------------"}}};

template <size_t N>
void print_table(const COLUMN_TITLE (&titles)[N], const SYMBOLS_BY_NAME& symbols) {
    TEXT_TABLE table;
    table.set_indent(1);
    table.set_padding(1);
    for (int col = 0; col < static_cast<int>(N); ++col)
        for (int row = 0; row < 3; ++row) table.set_string(row, col, titles[col].line[row]);
    for (const auto& [name, symbol] : symbols) {
        int row = table.append_rows();
        table.set_string(row, 0, global_symbols.diag_sym_name(name.c_str()));
        table.set_string(row, 1, symbol_file_name(symbol));
        if (N > 2)
            if (OFE::OF_SYMBOL* input =
                    lookup_input_symbol_from_output(symbol->resolved_by_final()))
                table.set_string(row, 2, symbol_file_name(input));
    }
    fputc('\n', stderr);
    table.print(stderr);
    fputc('\n', stderr);
}

} // namespace

void report_readonly_violations() {
    const READONLY_VIOLATIONS& found = readonly_violations();
    if (!found.unbound.empty()) {
        print_table(UNBOUND, found.unbound);
        DIAG_REPORT(elnk_readonly_unbound_errors);
    }
    if (!found.undefined.empty()) {
        print_table(UNDEFINED, found.undefined);
        DIAG_REPORT(elnk_readonly_undef_errors);
    }
    if (!found.weak_undefined.empty()) {
        DIAG::elnk_readonly_weak_undef_refs message(__FILE__, __LINE__);
        if (message.severity() != dc_SUPPRESSED) print_table(WEAK_UNDEFINED, found.weak_undefined);
        message.report();
    }
}
