// What is left by --no_symtable: the names by which the run-time's host finds its buffers, start-up
// data and arguments.
#include "ELFLNK/write/strip.h"

#include <cstring>

#include "DIAG/elnk_msgs.h"
#include "DIAG/user_msg_api.h"
#include "ELFLNK/build/build.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/trace.h"

using namespace OFE;

namespace {

bool has_section(const char* name) {
    return output_OF_FILE()->section_table()->section_name(name, 0) != nullptr;
}

class KEPT_NAMES {
  public:
    KEPT_NAMES()
        : cinit_(has_section(Target->abi()->cinit_section_name())),
          args_(has_section(Target->abi()->args_section_name())) {}

    bool keeps(const char* name) const {
        ABI* abi = Target->abi();
        auto starts = [name](const char* prefix) {
            return strncmp(name, prefix, strlen(prefix)) == 0;
        };
        auto is = [name](const char* other) { return other && strcmp(name, other) == 0; };
        if (starts("C$$EXIT") || starts("C$$IO") || is("__CIOBUF_")) return true;
        if (cinit_ && (is(abi->cinit_symbol_name()) || is(abi->cinit_alt_symbol_name())))
            return true;
        return args_ && is(abi->args_symbol_name());
    }

  private:
    bool cinit_;
    bool args_;
};

} // namespace

void strip_symbol_table() {
    if (output_OF_FILE()->format() == OF_FORMAT_ELF) DIAG_REPORT(elnk_s_opt_deprecated, "strip");
    if (!is_dynamic_output() &&
        (global_opts->isopt(OPT_rom) || global_opts->isopt(OPT_relocatable))) {
        USER_MSG::get_umsg_obj()->warning(
            0u, "ignoring the --no_symtable (-s) option; a relocatable output file must have "
                "symbols. Use --hide=* to remove symbol names.");
        return;
    }
    trace_build.printf("stripping symbol table\n");
    OF_SYMBOL_TABLE* table = output_OF_FILE()->symbol_table();
    KEPT_NAMES kept;
    for (unsigned id = 1, n = table->symnum(); id < n; id = table->next_symbol_id(id))
        if (!kept.keeps(table->symbol(id)->name())) table->delete_symbol(id);
    table->purge_deleted_symbols();
}
