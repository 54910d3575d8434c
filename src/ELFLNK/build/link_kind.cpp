// The predicates, from the options and the output's format.
#include "ELFLNK/build/link_kind.h"

#include "ELFLNK/build/build.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OPTIONGEN/option_obj.h"
#include "OPTIONGEN/register_option.h"

namespace {

register_option disable_dwarf_sym_opt("disable:dwarf_sym_opt");

bool has(option_id id) {
    return global_opts->isopt(id);
}

// ELF as long as nothing says otherwise: there is no output before the first object file.
bool output_is(OFE::OF_FORMAT format) {
    OFE::OBJECT_FILE* out = output_OF_FILE();
    return (out ? out->format() : OFE::OF_FORMAT_ELF) == format;
}

} // namespace

bool is_dynamic_output() {
    return has(OPT_shared) || has(OPT_dynamic) || has(OPT_sysv);
}

bool is_shared_output() {
    return has(OPT_shared) || global_opts->isvalue(OPT_dynamic, OPTV_dynamic_lib);
}

bool is_partial_link_by_options() {
    return !is_dynamic_output() && !has(OPT_rom) && has(OPT_relocatable) && !has(OPT_absolute_exe);
}

bool is_elf_partial_link() {
    return output_is(OFE::OF_FORMAT_ELF) && is_partial_link_by_options();
}

bool is_coff_partial_link() {
    return output_is(OFE::OF_FORMAT_QVCOFF) && has(OPT_relocatable) && !has(OPT_absolute_exe);
}

bool is_partial_link() {
    return is_elf_partial_link() || is_coff_partial_link();
}

bool generate_static_relocs() {
    return !is_dynamic_output() && (has(OPT_rom) || has(OPT_relocatable));
}

bool combine_subsections() {
    return !is_partial_link();
}

bool must_preserve_blocking() {
    return has(OPT_relocatable) || is_shared_output() || has(OPT_rom);
}

bool is_c_runtime_model() {
    return has(OPT_ram_model) || has(OPT_rom_model);
}

bool can_user_specify_rom_flags() {
    return Target->is_seg_attrs_allowed() && has(OPT_rom);
}

bool outfile_symtab_optimization_enabled() {
    return disable_dwarf_sym_opt == 0 && !is_dynamic_output() && !has(OPT_rom) &&
           !has(OPT_relocatable);
}

bool is_plain_partial_link() {
    return has(OPT_relocatable) && !has(OPT_rom) && !has(OPT_absolute_exe) &&
           !has(OPT_force_reloc) && !is_dynamic_output();
}
