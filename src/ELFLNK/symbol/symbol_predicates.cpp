// Questions about single symbols that the later phases ask.
#include <cstring>

#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/object/symbol_object.h"
#include "ELFLNK/symbol/demangle.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/elf/elf_symbol.h"
#include "OBJEDIT04/elf/elf_symbol_table.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_group_table.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OPTIONGEN/option_obj.h"

using OFE::OF_SYMBOL;

namespace {

constexpr unsigned QV_SHF_BOUND = 4;

bool is_definition(const OF_SYMBOL* sym) {
    const OFE::OF_SYM_KIND kind = sym->kind();
    return kind == OFE::OF_SYM_KIND_DEFINED || kind == OFE::OF_SYM_KIND_ABSOLUTE ||
           kind == OFE::OF_SYM_KIND_COMMON;
}

// Global or weak, and seen outside of its component.
bool is_visible(const OF_SYMBOL* sym) {
    const OFE::OF_SYM_BINDING binding = sym->binding();
    if (binding != OFE::OF_SYM_BINDING_GLOBAL && binding != OFE::OF_SYM_BINDING_WEAK) return false;
    return sym->visibility() != OFE::OF_VIS_INTERNAL && sym->visibility() != OFE::OF_VIS_HIDDEN;
}

// A version that only programs linked against it long ago ask for: its index has the highest bit.
bool has_hidden_version(OF_SYMBOL* sym) {
    if (sym->ofile()->format() != OFE::OF_FORMAT_ELF) return false;
    auto* symbols = static_cast<OFE::ELF_SYMBOL_TABLE*>(sym->symbol_table());
    if (symbols->versym_table() == nullptr) return false;
    return static_cast<int16_t>(static_cast<OFE::ELF_SYMBOL*>(sym)->version_index()) < 0;
}

} // namespace

bool SYMBOL_TABLE::is_bound(OF_SYMBOL* sym) const {
    OFE::OF_SECTION* section = sym->section();
    return section && (section->ext_flags() & QV_SHF_BOUND) != 0;
}

bool SYMBOL_TABLE::is_defined_in_comdat(OF_SYMBOL* sym) const {
    if (!sym->refs_section()) return false;
    const OFE::OF_GROUP_TABLE* group = sym->ofile()->section_table()->raw_group(sym->section_id());
    return group && group->comdat_flag();
}

bool SYMBOL_TABLE::is_exported_by_shared_object(OF_SYMBOL* sym) const {
    return is_visible(sym) && is_definition(sym) && !has_hidden_version(sym);
}

bool SYMBOL_TABLE::is_imported_def(OF_SYMBOL* sym) const {
    if (imports_.empty() || !is_visible(sym) || !is_definition(sym)) return false;
    const OBJ_FILE* output = file_manager.output_file();
    if (!sym->ofile()->has_dynamic_linkage() || (output && sym->ofile() == output->object_file()))
        return false;
    return lookup_imported(sym->name()) != nullptr;
}

bool SYMBOL_TABLE::is_class_impedimenta(OF_SYMBOL* sym) const {
    const char* name = sym->name();
    const auto begins = [name](const char* prefix) {
        return std::strncmp(name, prefix, std::strlen(prefix)) == 0;
    };
    if (Target->abi()->mangle_scheme() == MANGLE_ITANIUM)
        return begins("_ZTV") || begins("_ZTT") || begins("_ZTS") || begins("_ZTI");
    return begins("__vt") || begins("__T_");
}

LINKER_OBJECT* SYMBOL_TABLE::symbol_defining_object(OF_SYMBOL* sym) const {
    if (!sym) return nullptr;
    if (OFE::OF_SECTION* section = sym->section())
        return root_collection->lookup_OF_SECTION(section);
    if (LINKER_OBJECT* object = lookup_linker_symbol(sym)) return object;
    return root_collection->lookup_symbol_object(sym);
}

std::string SYMBOL_TABLE::diag_sym_name(const char* name) const {
    if (global_opts->isopt(OPT_no_demangle)) return name;
    const char* plain = Target->abi()->hll_name(name);
    std::string decoded = decode_id(plain, Target->abi()->mangle_scheme());
    return decoded != plain ? decoded : name;
}
