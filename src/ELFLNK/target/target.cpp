// What all targets share: search directories, checks of options, the entry point, predefined
// macros.
#include "ELFLNK/target/target.h"

#include "DIAG/disp_filter.h"
#include "DIAG/elnk_msgs.h"
#include "DIAG/gen_msgs.h"
#include "ELFLNK/build/link_kind.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/main/main.h"
#include "ELFLNK/mapfile/map_file.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/target/abi.h"
#include "OBJEDIT04/machine/machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/strformat.h"

#include <cstdlib>
#include <cstring>

TARGET::TARGET() = default;
TARGET::~TARGET() = default;

namespace {

/// The value of the first variable that exists of the family of `name`; null if there is none.
const char* environment(const char* name) {
    for (const char* prefix : {"QV_ARM_", "ALPINE_", ""})
        if (const char* value = std::getenv((std::string(prefix) + name).c_str()); value != nullptr)
            return value;
    return nullptr;
}

/// Hands each item of a list divided by ";" to the file manager.
void extract_paths(std::string_view list) {
    constexpr std::string_view BLANKS = " \t\n\r\f\v";
    while (!list.empty()) {
        const size_t end = list.find(';');
        std::string_view item = list.substr(0, end);
        list = end == list.npos ? std::string_view() : list.substr(end + 1);
        const size_t first = item.find_first_not_of(BLANKS);
        if (first == item.npos) continue;
        item = item.substr(first, item.find_last_not_of(BLANKS) - first + 1);
        file_manager.add_env_dir(std::string(item).c_str());
    }
}

void report_option_pair(option_id first, option_id second) {
    if (global_opts->isopt(first) && global_opts->isopt(second))
        DIAG_REPORT(gen_opt_conflicts, option_obj::internal_option_string(first),
                    option_obj::internal_option_string(second));
}

/// --mapfile_contents without a list of attributes only asks what there is.
void answer_mapfile_help() {
    if (!global_opts->isopt(OPT_mapfile_contents)) return;
    const char* value = global_opts->getstrarg(OPT_mapfile_contents);
    if (value == nullptr) value = "";
    if (!DISP_FILTER::help_requested(value)) return;
    print_banner(stdout);
    mdisp_filter().process_option_arguments(value);
    std::exit(0);
}

/// A dynamic library has no initialisation model.
void drop_models_in_library() {
    const bool rom = global_opts->isopt(OPT_rom_model);
    if (!is_shared_output() || !is_c_runtime_model()) return;
    DIAG_REPORT(elnk_bad_opt_dynamic_lib, rom ? "-c" : "-cr");
    global_opts->clearopt(OPT_rom_model);
    global_opts->clearopt(OPT_ram_model);
}

} // namespace

void TARGET::setup_env_paths() {
    for (const char* name : {c_dir_env_name(), a_dir_env_name(), "C_DIR", "A_DIR"})
        if (name != nullptr && *name != '\0')
            if (const char* value = environment(name); value != nullptr) extract_paths(value);
}

void TARGET::finalize_options() {
    report_option_pair(OPT_localize, OPT_make_global);
    report_option_pair(OPT_localize, OPT_make_static);
    report_option_pair(OPT_hide, OPT_make_global);
    report_option_pair(OPT_hide, OPT_make_static);
    init_mapfile_filter();
    answer_mapfile_help();
    drop_models_in_library();
    options_final_ = true;
}

std::vector<std::string> TARGET::predefined_macros() const {
    std::vector<std::string> macros;
    macros.push_back(strformat("__QV_COMPILER_VERSION__=%d%03d%03d", version_major(),
                               version_minor(), version_patch()));
    if (global_opts->isvalue(OPT_abi, OPTV_abi_eabi)) macros.emplace_back("__QV_EABI__=1");
    target_enter_predefined_macros(macros);
    return macros;
}

unsigned TARGET::rts_vendor() const {
    const OBJ_FILE* output = file_manager.output_file();
    const unsigned vendor =
        output != nullptr ? output->object_file()->machine_db()->rts_vendor() : 0;
    return vendor != 0 ? vendor : 1;
}

const char* TARGET::entry_point_name() const {
    if (global_opts->isopt(OPT_entry_point)) return global_opts->getstrarg(OPT_entry_point);
    if (global_opts->isopt(OPT_no_entry_point) || is_shared_output() || !is_c_runtime_model())
        return nullptr;
    return cstart_name();
}

OFE::OF_SYMBOL* TARGET::entry_point_symbol() {
    const bool first_call = !entry_point_checked_;
    entry_point_checked_ = true;
    if (global_opts->isopt(OPT_entry_point)) {
        const char* name = global_opts->getstrarg(OPT_entry_point);
        OFE::OF_SYMBOL* symbol = global_symbols.lookup_def(name);
        if (first_call && symbol == nullptr)
            DIAG_REPORT(elnk_entry_sym_undef, name);
        else if (first_call && std::strcmp(name, cstart_name()) != 0 && is_c_runtime_model())
            DIAG_REPORT(elnk_entry_sym_overridden, cstart_name(), name);
        if (symbol != nullptr) return symbol;
    }
    OFE::OF_SYMBOL* symbol = global_symbols.lookup_def(cstart_name());
    return symbol != nullptr ? symbol : global_symbols.lookup_def(main_name());
}

bool TARGET::is_eabi() const {
    if (global_opts->isopt(OPT_abi)) return global_opts->isvalue(OPT_abi, OPTV_abi_eabi);
    const OBJ_FILE* output = file_manager.output_file();
    if (output == nullptr) {
        DIAG_REPORT(elnk_abi_before_first_file);
        return false;
    }
    return output->object_file()->format() == OFE::OF_FORMAT_ELF;
}

bool TARGET::is_copy_table_supported() const {
    return !is_elf_partial_link();
}
