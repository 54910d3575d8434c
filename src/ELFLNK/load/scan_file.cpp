// Reading one object file into the link. Global symbols are interned and entered; a reference whose
// name needs nothing more stays a record in the mapped file, and only definitions and the first
// references become symbol objects.
#include <cstring>
#include <string_view>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/build/build.h"
#include "ELFLNK/command/command.h"
#include "ELFLNK/expr/expr_mgr.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/load/alias_tracker.h"
#include "ELFLNK/load/comdat.h"
#include "ELFLNK/load/file_symbols.h"
#include "ELFLNK/load/load.h"
#include "ELFLNK/retain/retain_spec.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/elf_symalias_table.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/trace.h"

using OFE::OBJECT_FILE;
using OFE::OF_RAW_SYMBOL;
using OFE::OF_SYMBOL;
using OFE::OF_SYMBOL_TABLE;

namespace {

constexpr std::string_view RETAIN_TAG = "__tagsym$$retain.";
constexpr std::string_view PATCH_INTERCEPT = "__QV_PATCH_INTERCEPT_";
constexpr std::string_view PATCH_ORIGINAL = "__QV_PATCH_ORIGINAL_";
constexpr unsigned QV_SHF_RETAIN = 2;

bool begins(const char* text, std::string_view prefix) {
    return std::strncmp(text, prefix.data(), prefix.size()) == 0;
}

bool is_global(OFE::OF_SYM_BINDING binding) {
    return binding == OFE::OF_SYM_BINDING_GLOBAL || binding == OFE::OF_SYM_BINDING_WEAK;
}

// The first object of the link settles format, machine, byte order and mangling: what waited for
// them runs now.
void start_link_with(OBJ_FILE* file) {
    file_manager.create_linker_files(file);
    report_objfmt_conflicts(output_OF_FILE()->format());
    for (unsigned i = 0; i < global_opts->getargcount(OPT_remap_symref); ++i)
        process_symbol_map(global_opts->getstrarg(OPT_remap_symref, i), true);
    for (unsigned i = 0; i < global_opts->getargcount(OPT_symbol_map); ++i)
        process_symbol_map(global_opts->getstrarg(OPT_symbol_map, i), false);
    Target->abi()->add_symbol_maps();
    Target->abi()->add_retain_specs();
    get_expr_mgr()->evaluate_all_sym_assignments(false);
}

// Symbols that the file itself calls aliases are resolved by their targets, in a final link that
// isn't dynamic. True if there are any.
bool resolve_aliases(OBJECT_FILE* object) {
    if (object->format() != OFE::OF_FORMAT_ELF || is_partial_link() || is_dynamic_output())
        return false;
    OFE::ELF_SYMALIAS_TABLE* aliases = static_cast<OFE::ELF_FILE*>(object)->symalias_table(false);
    OF_SYMBOL_TABLE* symbols = object->symbol_table();
    if (!aliases || !symbols) return false;
    for (const auto& [alias_id, target_id] : aliases->alias_map()) {
        OF_SYMBOL* alias = symbols->symbol(alias_id);
        OF_SYMBOL* target = symbols->symbol(target_id);
        if (!alias || !target || alias == target) continue;
        alias->set_resolved_by(target);
        alias->set_alias(true);
    }
    return !aliases->alias_map().empty();
}

// A patch object replaces a function by its own and still reaches the replaced one, by names of two
// forms.
unsigned patch_mappings = 0;

void add_patch_mapping(const char* name) {
    ABI* abi = Target->abi();
    const char* plain = abi->hll_name(name);
    ++patch_mappings;
    if (begins(plain, PATCH_INTERCEPT))
        global_symbols.add_mapping_entry(
            nullptr, abi->hll_to_link_name(plain + PATCH_INTERCEPT.size()), name);
    else if (begins(plain, PATCH_ORIGINAL))
        global_symbols.add_mapping_entry(nullptr, name,
                                         abi->hll_to_link_name(plain + PATCH_ORIGINAL.size()));
}

// The symbols of one file.
class SYMBOL_SCAN {
  public:
    SYMBOL_SCAN(OBJ_FILE* file, OF_SYMBOL_TABLE* symbols, bool has_aliases)
        : object_(file->object_file()),
          symbols_(symbols),
          sections_(object_->section_table()),
          record_(file_symbols(object_)),
          has_aliases_(has_aliases),
          is_elf_(object_->format() == OFE::OF_FORMAT_ELF),
          retains_symbols_(retain_manager.has_symbol_specs()) {}

    void run() {
        const unsigned count = symbols_->symnum();
        record_.first_global = std::min(symbols_->first_global(), count);
        record_.name_ids.assign(count - record_.first_global, NAME_TABLE::NO_NAME);
        OF_RAW_SYMBOL raw;
        for (unsigned id = symbols_->next_symbol_id(0); id < count;
             id = symbols_->next_symbol_id(id)) {
            if (!symbols_->raw_symbol(id, raw)) continue;
            if (is_elf_ && raw.kind == OFE::OF_SYM_KIND_DEFINED && begins(raw.name, RETAIN_TAG))
                retain_section(raw);
            if (id >= record_.first_global && is_global(raw.binding))
                scan_global(raw);
            else if (has_aliases_)
                alias_section_tracker.track_symbol(symbols_->symbol(id));
        }
    }

  private:
    void scan_global(OF_RAW_SYMBOL& raw) {
        OF_SYMBOL* sym = symbols_->loaded_symbol(raw.id);
        if (raw.kind == OFE::OF_SYM_KIND_UNDEFINED && Target->wants_update_symbol(raw.name)) {
            sym = symbols_->symbol(raw.id);
            Target->update_symbol(sym);
            raw.name = sym->name();
        }
        if (raw.kind == OFE::OF_SYM_KIND_DEFINED && sections_->is_deleted(raw.section_id)) {
            sym = symbols_->symbol(raw.id);
            sym->set_kind(OFE::OF_SYM_KIND_UNDEFINED);
            raw.kind = OFE::OF_SYM_KIND_UNDEFINED;
        }
        const uint32_t name_id = global_symbols.intern(raw.name);
        record_.name_ids[raw.id - record_.first_global] = name_id;
        if (retains_symbols_ && retain_manager.user_retains_symbol(raw.name)) {
            sym = symbols_->symbol(raw.id);
            global_symbols.add_entry_symbol(sym);
        }
        if (begins(raw.name, "__QV_PATCH_")) add_patch_mapping(raw.name);
        if (raw.kind == OFE::OF_SYM_KIND_UNDEFINED && !sym &&
            !global_symbols.undef_matters(name_id, raw.binding == OFE::OF_SYM_BINDING_WEAK))
            return;
        if (!sym) sym = symbols_->symbol(raw.id);
        if (!sym) return;
        sym->set_global_id(name_id + 1);
        if (has_aliases_) alias_section_tracker.track_symbol(sym);
        global_symbols.add_symbol(sym, false);
    }

    void retain_section(const OF_RAW_SYMBOL& raw) {
        if (raw.section_id == OF_RAW_SYMBOL::NO_SECTION || sections_->is_deleted(raw.section_id))
            return;
        if (OFE::OF_SECTION* section = sections_->section(raw.section_id))
            section->set_ext_flags(section->ext_flags() | QV_SHF_RETAIN);
    }

    OBJECT_FILE* object_;
    OF_SYMBOL_TABLE* symbols_;
    OFE::OF_SECTION_TABLE* sections_;
    FILE_SYMBOLS& record_;
    bool has_aliases_;
    bool is_elf_;
    bool retains_symbols_;
};

} // namespace

unsigned patch_mapping_count() {
    return patch_mappings;
}

bool default_abi_is_known() {
    return file_manager.output_file() != nullptr;
}

void scan_static_linking_file(OBJ_FILE* file) {
    if (file == file_manager.internal_file()) return;
    if (!default_abi_is_known()) start_link_with(file);
    OBJECT_FILE* object = file->object_file();
    trace_load.printf("scanning %s\n", file->name());
    if (!object->represents_groups_with_sections()) {
        DIAG_REPORT(elnk_bad_case);
        return;
    }
    file_symbols(object).file = file;
    process_comdat_groups(file);
    Target->add_migration_assistance_symbols(file);
    const bool has_aliases = resolve_aliases(object);
    if (OF_SYMBOL_TABLE* symbols = object->symbol_table())
        SYMBOL_SCAN(file, symbols, has_aliases).run();
    merge_file_attributes(file);
    Target->abi()->check_file_compatibility(file);
    check_dinkum_compatibility(file);
}
