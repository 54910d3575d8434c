// Which sections and symbols are roots, and what each section is.
#include <cstring>

#include "DIAG/gen_msgs.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/load/alias_tracker.h"
#include "ELFLNK/load/file_symbols.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/reach/registrar.h"
#include "ELFLNK/retain/retain_spec.h"
#include "ELFLNK/retain/specialization.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/target/abi.h"
#include "OBJEDIT04/elf/elf_types.h"
#include "OBJEDIT04/machine/reloc_type.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"

using OFE::OF_RAW_SECTION;
using OFE::OF_SYMBOL;

// ---- files

void REGISTRAR::prepare_files() {
    name_targets_.resize(global_symbols.name_count());
    name_bits_.resize(global_symbols.name_count());
    for (OBJ_FILE* file : file_manager.object_files()) {
        FILE_STATE& state = state_of(file->object_file());
        order_.push_back(&state);
        classify_sections(state);
        state.relocs.resize(state.bits.size());
        for (unsigned id = 1; id < state.bits.size(); ++id)
            state.relocs[id] = find_relocs(state, id);
    }
}

REGISTRAR::FILE_STATE& REGISTRAR::state_of(OFE::OBJECT_FILE* object) {
    const unsigned id = object->file_id();
    if (id >= files_.size()) files_.resize(id + 1);
    if (files_[id]) return *files_[id];
    files_[id] = std::make_unique<FILE_STATE>();
    FILE_STATE& state = *files_[id];
    state.object = object;
    state.file = file_manager.lookup_OF_FILE(object);
    state.sections = object->section_table();
    state.symbols = object->symbol_table();
    state.id = id;
    state.is_big = object->machine_endian() == OFE::OF_ENDIAN_BIG;
    if (const FILE_SYMBOLS* names = find_file_symbols(object)) {
        state.name_ids = names->name_ids.data();
        state.name_count = static_cast<unsigned>(names->name_ids.size());
        state.first_global = names->first_global;
    }
    state.takes_symbol = relocs_that_take_symbols(object);
    state.is_linked = state.file && state.file != file_manager.output_file() &&
                      state.file->is_static_linking_object();
    state.is_executable = object->file_type() == OFE::OF_FILE_TYPE_EXECUTABLE;
    state.bits.resize(state.sections->scnnum());
    return state;
}

const bool* REGISTRAR::relocs_that_take_symbols(OFE::OBJECT_FILE* object) {
    const void* types = object->reltypes();
    for (const auto& [known, kinds] : reloc_kinds_)
        if (known == types) return kinds.get();
    auto kinds = std::make_unique<bool[]>(256);
    for (unsigned number = 0; number < 256; ++number) {
        const OFE::OF_RELOC_TYPE* type = object->machine_reloc_type(number);
        kinds[number] = type && type->has_symbol();
    }
    reloc_kinds_.emplace_back(types, std::move(kinds));
    return reloc_kinds_.back().second.get();
}

// One table in place, which counts in the symbols of the file, is what there is as a rule.
REGISTRAR::RELOC_SPAN REGISTRAR::find_relocs(const FILE_STATE& file, unsigned section_id) const {
    const unsigned tables = file.sections->raw_reloc_table_num(section_id);
    if (tables == 0) return {};
    const OFE::OF_RAW_RELOCS relocs = file.sections->raw_relocs(section_id, 0);
    const bool is_plain =
        tables == 1 && file.symbols && relocs.symbols() == file.symbols &&
        !file.sections->loaded_section(relocs.table_section()) &&
        relocs.entry_size() == (relocs.rela() ? OFE::ELF_RELASIZE : OFE::ELF_RELSIZE);
    if (!is_plain) return {nullptr, 0, RELOC_SPAN::OTHER};
    return {relocs.data(), relocs.size(), relocs.rela() ? RELOC_SPAN::RELA : RELOC_SPAN::REL};
}

REGISTRAR::KEY REGISTRAR::key_of(const FILE_STATE& file, unsigned section_id) {
    return KEY{file.id} << 32 | section_id;
}

REGISTRAR::KEY REGISTRAR::key_of(const OF_SYMBOL* sym) {
    return KEY{sym->ofile()->file_id()} << 32 | sym->id();
}

void REGISTRAR::classify_sections(FILE_STATE& file) {
    OF_RAW_SECTION section;
    // The root of all references is no part of the program.
    SECTION* root_object = root_collection->root_section();
    const OFE::OF_SECTION* root = root_object ? root_object->OF_SECTION_api() : nullptr;
    const unsigned root_id = root && root->ofile() == file.object ? root->id() : 0;
    if (!file.bits.empty()) file.bits[0] = ABSENT;
    for (unsigned id = 1; id < file.bits.size(); ++id) {
        if (id == root_id || !file.sections->raw_section(id, section) || section.deleted) {
            file.bits[id] = ABSENT;
            continue;
        }
        uint16_t bits = 0;
        if (std::strncmp(section.name, ".debug", 6) == 0) bits |= DEBUG_DATA;
        if (std::strcmp(section.name, "$BRID") == 0) bits |= DEBUG_LIKE;
        if (abi_->section_is_omdata(section, file.object))
            bits |= OMDATA;
        else if (!abi_->section_is_pmdata(section, file.object))
            bits |= PROGDATA;
        if (section.flags & OFE::SHF_LINK_ORDER) bits |= LINK_ORDER;
        if (section.ext_flags & OFE::QV_SHF_RETAINREFS) has_retainrefs_ = true;
        if (section_is_required(file, section, bits)) bits |= REQUIRED;
        file.has_debug_data |= (bits & DEBUG_DATA) != 0;
        file.bits[id] = bits;
    }
}

// ---- roots

bool REGISTRAR::section_is_required(FILE_STATE& file, const OF_RAW_SECTION& section,
                                    uint16_t bits) {
    if (abi_->is_linker_generated_section(SECTION::orig_section_name(section.name))) return true;
    if (!file.file) {
        DIAG_REPORT(gen_null_pointer, "objfile");
        return false;
    }
    if (abi_->section_is_init_or_fini(section, file.object)) return true;
    if (bits & PROGDATA) {
        if (progdata_section_immune_to_retain(file, section)) return false;
        if (elimination_is_off_ || is_partial_) return true;
        if (metadata_retains_section(file, section)) return true;
        if (has_retain_specs_ && retain_manager.user_retains_section(section.name, file.file))
            return true;
        if (abi_->retain_section(section, file.object)) return true;
    }
    return std::strcmp(section.name, "__QV_XREF") == 0;
}

bool REGISTRAR::progdata_section_immune_to_retain(const FILE_STATE& file,
                                                  const OF_RAW_SECTION& section) const {
    if (alias_section_tracker.only_aliases(file.object, section.id)) return true;
    if (has_specializations_) {
        OFE::OF_SECTION* loaded = file.sections->loaded_section(section.id);
        if (loaded && SPECIALIZATION_MANAGER::section_immune_to_retain(loaded)) return true;
    }
    return file.object->format() == OFE::OF_FORMAT_ELF && section.type == OFE::SHT_ARM_EXIDX &&
           (section.flags & OFE::SHF_LINK_ORDER);
}

bool REGISTRAR::metadata_retains_section(const FILE_STATE& file,
                                         const OF_RAW_SECTION& section) const {
    if (file.object->format() != OFE::OF_FORMAT_ELF || is_partial_ || *section.name == '\0')
        return false;
    return (section.ext_flags & OFE::QV_SHF_RETAIN) != 0;
}

void REGISTRAR::register_required_symbols() {
    for (OF_SYMBOL* sym : global_symbols.entry_symbols())
        register_target(root_referrer(sym), target_of_symbol(SYMBOL_TABLE::resolution(sym)));
    for (OF_SYMBOL* sym : global_symbols.sorted_absolute_defs())
        if (is_partial_ || sym->binding() != OFE::OF_SYM_BINDING_WEAK)
            register_target(root_referrer(sym), target_of_symbol(SYMBOL_TABLE::resolution(sym)));
}

void REGISTRAR::register_required_sections() {
    for (FILE_STATE* file : order_) {
        if (!file->is_linked) continue;
        for (unsigned id = 1; id < file->bits.size(); ++id)
            if (file->bits[id] & REQUIRED) register_section(root_referrer(), *file, id);
    }
}
