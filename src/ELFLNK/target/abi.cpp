// The convention's answers about names and sections, and its part in the phases behind placement.
//
// What a section is gets asked for every section of every input, so the questions go from the
// section's type to the first characters of its name, and work on raw records.
#include "ELFLNK/target/abi.h"

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/build/link_kind.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "OBJEDIT04/elf/elf_types.h"
#include "OBJEDIT04/machine/machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/savestr.h"

#include <algorithm>
#include <cctype>

using namespace OFE;

namespace {

bool is_one_of(std::string_view name, std::initializer_list<std::string_view> names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// The format that names are judged by: that of the output, ELF as long as there is none.
OF_FORMAT output_format() {
    const OBJ_FILE* output = file_manager.output_file();
    return output != nullptr ? output->object_file()->format() : OF_FORMAT_ELF;
}

OF_RAW_SECTION raw_record(OF_SECTION* section) {
    OF_RAW_SECTION raw;
    section->section_table()->raw_section(section->id(), raw);
    raw.name = section->name();
    return raw;
}

/// True for the sections that carry the extended flags, the pages or the aliases of a file.
bool is_vendor_metadata(const OF_RAW_SECTION& section, OF_MACHINE_DB* machine) {
    for (int kind = 0; kind < 2; kind++) {
        if (!machine->elf_supports_qv_sh_attr(kind)) continue;
        if (machine->elf_match_qv_sh_attr_type(kind)
                ? section.type == machine->elf_qv_sh_attr_type(kind)
                : std::string_view(section.name) == machine->elf_qv_sh_attr_name(kind))
            return true;
    }
    return machine->elf_match_symalias_type()
               ? section.type == machine->elf_symalias_type()
               : std::string_view(section.name) == ".QV.symbol.alias";
}

} // namespace

const char* ABI::hll_name(const char* link_name) const {
    return uses_hll_prefix() && link_name[0] == hll_prefix() ? link_name + 1 : link_name;
}

const char* ABI::hll_to_link_name(const char* name) const {
    return uses_hll_prefix() ? savestrf("%c%s", hll_prefix(), name) : name;
}

const char* ABI::hll_to_alt_link_name(const char* name) const {
    return has_alt_hll_prefix() ? savestrf("%c%s", hll_alt_prefix(), name) : hll_to_link_name(name);
}

bool ABI::need_compressed_cinit() const {
    return global_opts->isopt(OPT_rom_model);
}

bool ABI::is_final_executable_link() {
    return !is_partial_link() && !is_shared_output();
}

// --- what a section is

bool ABI::section_is_omdata(const OF_RAW_SECTION& section, const OBJECT_FILE* file) const {
    if (file->format() != OF_FORMAT_ELF) return false;
    switch (section.type) {
    case SHT_NULL:
    case SHT_SYMTAB:
    case SHT_STRTAB:
    case SHT_RELA:
    case SHT_HASH:
    case SHT_DYNAMIC:
    case SHT_REL:
    case SHT_SHLIB:
    case SHT_DYNSYM:
    case SHT_GROUP:
    case SHT_SYMTAB_SHNDX:
    case SHT_ATTRIBUTES:
        return true;
    default:
        break;
    }
    if (section.name[0] == '_') return std::string_view(section.name) == icode_section_name();
    return section.name[0] == '.' && section.name[1] == 'Q' &&
           is_vendor_metadata(section, file->machine_db());
}

bool ABI::section_is_pmdata(const OF_RAW_SECTION& section, const OBJECT_FILE* file) const {
    const std::string_view name = section.name;
    if (name.starts_with(".debug")) return true;
    return file->format() == OF_FORMAT_ELF ? name == "__QV_XREF"
                                           : is_one_of(name, {".xref", ".template"});
}

bool ABI::section_is_progdata(const OF_RAW_SECTION& section, const OBJECT_FILE* file) const {
    return !section_is_omdata(section, file) && !section_is_pmdata(section, file);
}

bool ABI::section_is_init_or_fini(const OF_RAW_SECTION& section, const OBJECT_FILE* file) const {
    if (file->format() != OF_FORMAT_ELF) return false;
    if (section.type == SHT_INIT_ARRAY || section.type == SHT_FINI_ARRAY ||
        section.type == SHT_PREINIT_ARRAY)
        return true;
    const std::string_view name = section.name;
    return name.size() > 4 && (name[1] == 'i' || name[1] == 'f' || name[1] == 'p') &&
           is_one_of(name, {".preinit_array", ".init", ".init_array", ".fini_array", ".fini"});
}

bool ABI::section_is_omdata(OF_SECTION* section) const {
    return section_is_omdata(raw_record(section), section->ofile());
}

bool ABI::section_is_pmdata(OF_SECTION* section) const {
    OF_RAW_SECTION named;
    named.name = section->name();
    return section_is_pmdata(named, section->ofile());
}

bool ABI::section_is_progdata(OF_SECTION* section) const {
    return section_is_progdata(raw_record(section), section->ofile());
}

bool ABI::section_is_init_or_fini(OF_SECTION* section) const {
    return section_is_init_or_fini(raw_record(section), section->ofile());
}

bool ABI::retain_section(OF_SECTION* section) const {
    return retain_section(raw_record(section), section->ofile());
}

// --- what a section's name says

bool ABI::section_name_is_reserved(const char* text) const {
    const std::string_view name = text;
    if (name.starts_with(".debug")) return true;
    if (output_format() == OF_FORMAT_QVCOFF)
        return is_one_of(name, {"$build.attributes", ".icode", ".xref", ".template"});
    return name.starts_with(".rel") ||
           is_one_of(name,
                     {".comment", ".dynstr", ".dynsym", ".hash", ".line", ".shstrtab",
                      ".symtab_shndx", ".symtab", "__QV_build_attributes", "__QV_ICODE", ".encode",
                      "__QV_XREF", ".gnu.version", ".gnu.version_d", ".gnu.version_r"});
}

const std::vector<std::string_view>& ABI::reserved_prefixes() const {
    if (reserved_prefixes_.empty()) {
        reserved_prefixes_ = {".QV.", ".QV.section."};
        append_reserved_prefixes(reserved_prefixes_);
    }
    return reserved_prefixes_;
}

std::string ABI::section_base_name(const char* text) const {
    const std::string_view name = text;
    if (section_name_is_reserved(text)) {
        size_t end = name.starts_with('.') ? 1 : 0;
        while (end < name.size() &&
               (std::isalnum(static_cast<unsigned char>(name[end])) != 0 || name[end] == '_'))
            end++;
        return std::string(name.substr(0, end));
    }
    size_t start = 1;
    for (std::string_view prefix : reserved_prefixes())
        if (name.starts_with(prefix)) start = std::max(start, prefix.size());
    return std::string(name.substr(0, name.find_first_of(legal_subsection_delimiters(), start)));
}

bool ABI::linker_controls_section_contents(const char* name) const {
    return is_one_of(name, {".ARM.exidx", ".plt", ".got"}) ||
           (need_compressed_cinit() && std::string_view(name) == cinit_section_name());
}

const char* ABI::linker_controlled_section_diag_name(const char* text) const {
    const std::string_view name = text;
    if (name == ".ARM.exidx") return "EXIDX";
    if (name == ".plt") return "PLT";
    if (name == ".got") return "GOT";
    return name == cinit_section_name() ? "CINIT" : text;
}

bool ABI::section_cannot_be_copied(const char* text) const {
    const std::string_view name = text;
    return name == stack_section_name() || name == sysmem_section_name() ||
           name == args_section_name() || name == plumasode_section_name() ||
           name == cio_section_name() || (need_compressed_cinit() && name == cinit_section_name());
}

bool ABI::splitting_permitted(LOCATOR* locator) const {
    const std::string_view name = locator->object()->name();
    return name != cinit_section_name() && name != pinit_section_name() &&
           name != args_section_name() && name != stack_section_name() &&
           name != sysmem_section_name();
}

bool ABI::is_linker_generated_section(const char* text) const {
    const std::string_view name = text;
    return (name == stack_section_name() || name == sysmem_section_name() ||
            name == args_section_name()) &&
           is_final_executable_link();
}

// --- phases

OF_SYMBOL* ABI::static_base_symbol() const {
    return global_symbols.lookup_def(static_base_name());
}

void ABI::update_upon_placement() {
    define_static_base_symbol(true);
}

void ABI::set_static_base() {
    if (is_elf_partial_link()) return;
    OF_SYMBOL* base = static_base_symbol();
    for (LINKER_OBJECT* object : root_collection->members())
        if (object->has_attr(PA_ALLOCATED) && object->run_placement_is_complete())
            if (OF_SECTION* output = object->output_OF_SECTION(); output != nullptr)
                output->set_static_base_symbol(base);
}

void ABI::check_abi_constraints() {
    check_abi_specific_constraints();
    if (!is_tls_supported() && global_symbols.lookup("__vla_alloc") != nullptr &&
        global_symbols.lookup("qv_rtkernel_KERNEL_start__E") != nullptr)
        DIAG_REPORT(elnk_vla_not_thread_safe);
}
