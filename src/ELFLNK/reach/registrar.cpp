// The closure of the reachable: see registrar.h.
#include "ELFLNK/reach/registrar.h"

#include <algorithm>
#include <cstring>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/build/build.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/load/file_symbols.h"
#include "ELFLNK/load/load.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/object/symbol_object.h"
#include "ELFLNK/reach/for_each_reloc.h"
#include "ELFLNK/retain/retain_spec.h"
#include "ELFLNK/retain/specialization.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/elf/elf_types.h"
#include "OBJEDIT04/machine/reloc_type.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_group_table.h"
#include "OBJEDIT04/ofe/of_reloc.h"
#include "OBJEDIT04/ofe/of_reloc_table.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/trace.h"

using OFE::OF_RAW_RELOC;
using OFE::OF_RAW_SECTION;
using OFE::OF_RAW_SYMBOL;
using OFE::OF_SYMBOL;

REGISTRAR::REGISTRAR()
    : abi_(Target->abi()),
      is_partial_(is_partial_link()),
      elimination_is_off_(!global_opts->not_off(OPT_unused_section_elimination)),
      has_retain_specs_(retain_manager.has_section_specs()),
      relocs_stay_(is_partial_ || generate_static_relocs() || is_dynamic_output()) {}

REGISTRAR::~REGISTRAR() = default;

void REGISTRAR::register_objects() {
    trace_load.push("\nREGISTER OBJECTS\n");
    root_collection->create_reference_graph();
    records_references_ = root_collection->reference_graph() != nullptr;
    has_specializations_ = SPECIALIZATION_MANAGER::any_instantiated();
    prepare_files();
    find_implicit_deps();
    // The implicit tables are only read from here on.
    register_required_symbols();
    register_required_sections();
    register_referenced_objects();
    if (work_.empty()) DIAG_REPORT(elnk_no_input_sections);
    register_sh_link_dependences();
    root_collection->set_objects_registered();
    // No input section gets an object below.
    trace_load.pop();
}

// ---- what a relocation leads to

uint32_t REGISTRAR::FILE_STATE::name_id(unsigned sym_id) const {
    const unsigned at = sym_id - first_global; // of a local symbol: beyond all
    return at < name_count ? name_ids[at] : NAME_TABLE::NO_NAME;
}

REGISTRAR::TARGET_REF REGISTRAR::target_of_symbol(OF_SYMBOL* sym) {
    TARGET_REF target;
    target.is_known = true;
    if (!sym) return target;
    target.sym = sym;
    target.kind = sym->kind();
    target.file = &state_of(sym->ofile());
    if (sym->refs_section() && sym->section_id() < target.file->bits.size())
        target.section_id = sym->section_id();
    return target;
}

const REGISTRAR::TARGET_REF& REGISTRAR::target_of(FILE_STATE& file, unsigned sym_id) {
    const uint32_t name = file.name_id(sym_id);
    if (name == NAME_TABLE::NO_NAME) return local_target_of(file, sym_id);
    // A definition that lost stands in the chain of the name's winner like every reference. Only
    // what a mapped name leads to depends on the file.
    if (global_symbols.mapped_id(name) != name)
        return scratch_ = target_of_symbol(resolve_symbol(file.object, sym_id));
    TARGET_REF& known = name_targets_[name];
    if (!known.is_known) known = target_of_symbol(resolve_symbol(file.object, sym_id));
    return known;
}

// A symbol that is no global of a scanned file: mostly a local one without an object.
const REGISTRAR::TARGET_REF& REGISTRAR::local_target_of(FILE_STATE& file, unsigned sym_id) {
    scratch_ = TARGET_REF();
    if (OF_SYMBOL* loaded = file.symbols->loaded_symbol(sym_id))
        return scratch_ = target_of_symbol(SYMBOL_TABLE::resolution(loaded));
    OF_RAW_SYMBOL raw;
    if (!file.symbols->raw_symbol(sym_id, raw)) return scratch_;
    scratch_.file = &file;
    scratch_.kind = raw.kind;
    if (raw.section_id != OF_RAW_SYMBOL::NO_SECTION && raw.section_id < file.bits.size())
        scratch_.section_id = raw.section_id;
    else if (raw.kind == OFE::OF_SYM_KIND_ABSOLUTE || raw.kind == OFE::OF_SYM_KIND_COMMON)
        scratch_.sym = file.symbols->symbol(sym_id);
    return scratch_;
}

// The section that a local symbol leads to in its own file, or NO_SECTION.
unsigned REGISTRAR::local_section(FILE_STATE& file, unsigned sym_id) {
    if (file.local_sections.empty()) file.local_sections.resize(file.symbols->first_global());
    if (sym_id >= file.local_sections.size()) return OF_RAW_SYMBOL::NO_SECTION;
    unsigned& section_id = file.local_sections[sym_id];
    if (section_id == 0) { // not looked at so far
        const TARGET_REF& target = local_target_of(file, sym_id);
        section_id = target.file == &file && target.has_section() ? target.section_id
                                                                  : OF_RAW_SYMBOL::NO_SECTION;
    }
    return section_id;
}

// A debug reference keeps no program data, no common block and nothing that was discarded.
bool REGISTRAR::debug_keeps(const TARGET_REF& target) {
    if (!target.file) return false;
    if (!target.has_section()) return target.kind != OFE::OF_SYM_KIND_COMMON;
    return !(target.file->bits[target.section_id] & (PROGDATA | ABSENT));
}

// Most relocations lead to a section that is registered already, or lead from debug data to program
// data that nothing else wants, and need no more than this.
bool REGISTRAR::changes_nothing(FILE_STATE& file, unsigned sym_id, bool is_debug) {
    const auto look_at = [](uint16_t bits) -> uint8_t {
        if ((bits & (REGISTERED | OMDATA)) == REGISTERED) return LEADS_TO_REGISTERED;
        return bits & (PROGDATA | ABSENT) ? NOT_KEPT_BY_DEBUG : 0;
    };
    const uint8_t enough = is_debug ? LEADS_TO_REGISTERED | NOT_KEPT_BY_DEBUG : LEADS_TO_REGISTERED;
    const uint32_t name = file.name_id(sym_id);
    if (name != NAME_TABLE::NO_NAME) {
        uint8_t& bits = name_bits_[name];
        if (bits & enough) return true;
        const TARGET_REF& known = name_targets_[name];
        if (known.has_section() && global_symbols.mapped_id(name) == name)
            bits |= look_at(known.file->bits[known.section_id]);
        return bits & enough;
    }
    const unsigned section_id = local_section(file, sym_id);
    return section_id != OF_RAW_SYMBOL::NO_SECTION && look_at(file.bits[section_id]) & enough;
}

// A relocation that stays in the output will ask the file for this symbol: it has to know its
// definition by then.
void REGISTRAR::make_symbol(FILE_STATE& file, unsigned sym_id) {
    if (file.symbols->loaded_symbol(sym_id)) return;
    if (file.name_id(sym_id) == NAME_TABLE::NO_NAME) return;
    OF_SYMBOL* target = resolve_symbol(file.object, sym_id);
    OF_SYMBOL* sym = file.symbols->symbol(sym_id);
    if (!sym || sym == target) return;
    sym->set_global_id(file.name_id(sym_id) + 1);
    if (target) sym->set_resolved_by(target);
}

// ---- the closure

// The sections on the list lie anywhere in memory: what the walk is about to read is asked for a
// few sections before. (Not in a function of its own: it would count as one without effect.)
void REGISTRAR::register_referenced_objects() {
    constexpr size_t NEAR = 4, FAR = 8, FARTHEST = 16;
    for (; next_work_ < work_.size(); ++next_work_) {
        if (next_work_ + FARTHEST < work_.size()) {
            const FILE_STATE* farthest = work_[next_work_ + FARTHEST].file;
            __builtin_prefetch(farthest);
            __builtin_prefetch(&farthest->symbols);
            const WORK& far = work_[next_work_ + FAR];
            __builtin_prefetch(far.file->bits.data() + far.section_id);
            __builtin_prefetch(far.file->relocs.data() + far.section_id);
            __builtin_prefetch(far.file->name_ids);
            const WORK& near = work_[next_work_ + NEAR];
            if (near.section_id < near.file->relocs.size())
                __builtin_prefetch(near.file->relocs[near.section_id].data);
        }
        walk_section(WORK(work_[next_work_]));
    }
}

void REGISTRAR::walk_section(const WORK& work) {
    if (has_specializations_) register_variants(work);
    if (work.file->bits[work.section_id] & REFS_LISTED)
        register_debug_refs(work);
    else
        walk_relocs(work);
    if (abi_->wants_reloc_attr()) process_reloc_attrs(work);
}

void REGISTRAR::register_debug_refs(const WORK& work) {
    debug_refs_.for_each(key_of(*work.file, work.section_id), [this](KEY key) {
        const WORK to = work_of(key);
        TARGET_REF target;
        target.file = to.file;
        target.section_id = to.section_id;
        register_target({}, target);
    });
}

void REGISTRAR::walk_relocs(const WORK& work) {
    const bool is_debug = work.file->bits[work.section_id] & (DEBUG_DATA | DEBUG_LIKE);
    for_each_symbol_reloc(*work.file, work.section_id, [&](const OF_RAW_RELOC& reloc) {
        if (relocs_stay_) make_symbol(*work.file, reloc.sym_id);
        if (records_references_ || !changes_nothing(*work.file, reloc.sym_id, is_debug))
            register_a_reference(work, is_debug, reloc);
    });
}

void REGISTRAR::register_a_reference(const WORK& from, bool is_debug, const OF_RAW_RELOC& reloc) {
    FILE_STATE& file = *from.file;
    const TARGET_REF target = target_of(file, reloc.sym_id);
    if (!target.file) return;
    if (is_debug && !debug_keeps(target)) return;
    report_mapped_symbol(file, reloc.sym_id);
    if (target.is_absent()) {
        report_discarded(from, reloc, target);
        return;
    }
    if (target.kind == OFE::OF_SYM_KIND_UNDEFINED && target.sym)
        register_import_reference(target.sym);
    register_target(referrer_of(from, reloc), target);
    note_symbol_object(file, reloc.sym_id, target);
}

// A name of an absolute symbol or common block has its object now, or will never have one.
void REGISTRAR::note_symbol_object(const FILE_STATE& file, unsigned sym_id,
                                   const TARGET_REF& target) {
    if (target.has_section() ||
        (target.kind != OFE::OF_SYM_KIND_ABSOLUTE && target.kind != OFE::OF_SYM_KIND_COMMON))
        return;
    const uint32_t name = file.name_id(sym_id);
    if (name != NAME_TABLE::NO_NAME && global_symbols.mapped_id(name) == name)
        name_bits_[name] |= LEADS_TO_REGISTERED;
}

// What the convention makes of single relocations.
void REGISTRAR::process_reloc_attrs(const WORK& work) {
    OFE::OF_SECTION* section = work.file->sections->section(work.section_id);
    for (OFE::OF_RELOC* reloc : section->all_relocs())
        if (reloc && reloc->takes_symbol() && !reloc->is_internal())
            abi_->process_reloc_attr(SYMBOL_TABLE::resolution(reloc->symbol()), reloc);
    section->unload_relocs();
}

// A placeholder keeps the variants of its function.
void REGISTRAR::register_variants(const WORK& work) {
    const SPECIALIZATION* specialization =
        SPECIALIZATION_MANAGER::find(work.file->sections->loaded_section(work.section_id));
    if (!specialization) return;
    const REFERRER from{object_of(*work.file, work.section_id)};
    for (const SPECIALIZATION_ROUTINE& routine : specialization->routines())
        register_any_section(from, state_of(routine.symbol->ofile()), routine.symbol->section_id());
}

// What a shared file serves needs no object; it may need a symbol to be led to.
void REGISTRAR::register_import_reference(OF_SYMBOL* sym) {
    if (sym->ofile()->format() != OFE::OF_FORMAT_ELF || sym->visibility() != OFE::OF_VIS_DEFAULT)
        return;
    OF_SYMBOL* import = global_symbols.lookup_imported(sym->name());
    if (!import || !abi_->allows_import_ref_patching() || !global_symbols.is_bound(import)) return;
    create_linker_symbol(sym->name(), SOURCE_POSITION(), 0, OFE::OF_SYM_BINDING_GLOBAL);
    global_symbols.link_undef(sym);
}

// ---- recording

LINKER_OBJECT* REGISTRAR::object_of(const FILE_STATE& file, unsigned section_id) const {
    return records_references_ ? root_collection->lookup_section(file.object->file_id(), section_id)
                               : nullptr;
}

// A section's own symbol has the name of the section.
REGISTRAR::REFERRER REGISTRAR::referrer_of(const WORK& work, const OF_RAW_RELOC& reloc) const {
    REFERRER from{object_of(*work.file, work.section_id)};
    OF_RAW_SYMBOL sym;
    if (!records_references_ || !work.file->symbols->raw_symbol(reloc.sym_id, sym)) return from;
    from.symbol_name = sym.name;
    from.offset = reloc.offset;
    OF_RAW_SECTION section;
    if (*sym.name == '\0' && sym.section_id != OF_RAW_SYMBOL::NO_SECTION &&
        work.file->sections->raw_section(sym.section_id, section))
        from.symbol_name = section.name;
    return from;
}

REGISTRAR::REFERRER REGISTRAR::root_referrer(const OF_SYMBOL* symbol) const {
    REFERRER from{root_collection->root_section()};
    from.root_symbol = symbol;
    return from;
}

void REGISTRAR::record(const REFERRER& from, LINKER_OBJECT* to) const {
    if (!records_references_) return;
    if (from.object == root_collection->root_section())
        root_collection->add_symbol_reference_from_root_section(from.root_symbol, to);
    else
        root_collection->add_reference(from.object, to, from.symbol_name, from.offset);
}

// By the file that the symbol lies in.
void REGISTRAR::register_target(const REFERRER& from, const TARGET_REF& target) {
    if (!target.file) return;
    FILE_STATE& file = *target.file;
    if (file.is_linked) {
        if (file.is_executable) {
            // The code and data of an executable given as input are not linked in.
            if (target.has_section() && (file.bits[target.section_id] & DEBUG_DATA))
                register_section(from, file, target.section_id);
        } else if (target.has_section()) {
            register_section(from, file, target.section_id);
        } else if (target.sym) {
            register_symbol_object(from, target.sym, target.kind);
        }
    } else if (file.file == file_manager.output_file() && target.sym &&
               target.kind == OFE::OF_SYM_KIND_ABSOLUTE &&
               global_symbols.is_linker_symbol(target.sym)) {
        register_symbol_object(from, target.sym, target.kind);
    }
}

void REGISTRAR::register_section(const REFERRER& from, FILE_STATE& file, unsigned section_id) {
    const uint8_t bits = file.bits[section_id];
    if (bits & ABSENT) return;
    if (bits & OMDATA) {
        OF_RAW_SECTION section;
        file.sections->raw_section(section_id, section);
        DIAG_REPORT(elnk_not_prog_scn, section.name, file.file->name());
    }
    if (!(bits & REGISTERED))
        register_any_section(from, file, section_id);
    else if (records_references_)
        record(from, object_of(file, section_id));
}

// The only place that makes a SECTION. A section brings in its implicit dependents, then the
// members of its group; the stack keeps the order of a walk in depth.
void REGISTRAR::register_any_section(const REFERRER& first_from, FILE_STATE& first_file,
                                     unsigned first_id) {
    stack_.push_back({&first_file, first_id});
    while (!stack_.empty()) {
        const WORK next = stack_.back();
        stack_.pop_back();
        REFERRER from = first_from;
        if (!referrers_.empty()) {
            from = {referrers_.back()};
            referrers_.pop_back();
        }
        FILE_STATE& file = *next.file;
        uint16_t& bits = file.bits[next.section_id];
        if (bits & ABSENT) continue;
        if (bits & REGISTERED) {
            record(from, object_of(file, next.section_id));
            continue;
        }
        OFE::OF_SECTION* section = file.sections->section(next.section_id);
        if (!section) continue;
        bits |= REGISTERED;
        SECTION* object = new_section(section, file.file);
        record(from, object);
        work_.push_back(next);

        const size_t bottom = stack_.size();
        section_deps_.for_each(key_of(file, next.section_id),
                               [this](KEY dependent) { stack_.push_back(work_of(dependent)); });
        push_group_members(file, next.section_id);
        std::reverse(stack_.begin() + static_cast<std::ptrdiff_t>(bottom), stack_.end());
        referrers_.resize(stack_.size(), object);
    }
}

void REGISTRAR::push_group_members(FILE_STATE& file, unsigned section_id) {
    OFE::OF_GROUP_TABLE* group = file.sections->raw_group(section_id);
    if (!group) return;
    OF_RAW_SECTION member;
    for (unsigned i = 0; i < group->member_num(); ++i) {
        const unsigned id = group->member_id(i);
        if (group->member_deleted(i) || id >= file.bits.size() ||
            !file.sections->raw_section(id, member))
            continue;
        if (member.type != OFE::SHT_RELA && member.type != OFE::SHT_REL)
            stack_.push_back({&file, id});
    }
}

void REGISTRAR::register_symbol_object(const REFERRER& from, OF_SYMBOL* sym,
                                       OFE::OF_SYM_KIND kind) {
    if (kind != OFE::OF_SYM_KIND_ABSOLUTE && kind != OFE::OF_SYM_KIND_COMMON) return;
    if (!symbol_objects_.insert(sym).second) {
        record(from, records_references_ ? root_collection->lookup_symbol_object(sym) : nullptr);
        return;
    }
    SYMBOL_OBJECT* object = nullptr;
    if (kind == OFE::OF_SYM_KIND_ABSOLUTE)
        object = new ABSOLUTE_SYMBOL(sym);
    else
        object = new COMMON_BLOCK(sym);
    record(from, object);
    const REFERRER keeper{object};
    symbol_deps_.for_each(key_of(sym), [&](KEY dependent) {
        const WORK kept = work_of(dependent);
        register_any_section(keeper, *kept.file, kept.section_id);
    });
}

// Sections tied to another by their link field. An exception index section is kept with the code
// that it describes, and in a final link only if something can throw.
void REGISTRAR::register_sh_link_dependences() {
    trace_load.printf("\nREGISTER SH_LINK DEPENDENCES:\n");
    const bool can_throw = is_partial_ || global_symbols.lookup_def(abi_->throw_function_name());
    OF_RAW_SECTION section;
    for (FILE_STATE* file : order_) {
        if (file->object->format() != OFE::OF_FORMAT_ELF) continue;
        for (unsigned id = 1; id < file->bits.size(); ++id) {
            if (!(file->bits[id] & LINK_ORDER) || !file->sections->raw_section(id, section))
                continue;
            if (section.type == OFE::SHT_ARM_EXIDX && !can_throw) continue;
            if (section.link < file->bits.size() && (file->bits[section.link] & REGISTERED))
                register_any_section({object_of(*file, section.link)}, *file, id);
        }
    }
    register_referenced_objects();
}

// ---- what is wrong with a reference

void REGISTRAR::report_mapped_symbol(FILE_STATE& file, unsigned sym_id) {
    const uint32_t name = file.name_id(sym_id);
    if (name == NAME_TABLE::NO_NAME || global_symbols.mapped_id(name) == name) return;
    OF_RAW_SYMBOL raw;
    if (!file.symbols->raw_symbol(sym_id, raw)) return;
    if (raw.kind != OFE::OF_SYM_KIND_DEFINED && raw.kind != OFE::OF_SYM_KIND_ABSOLUTE &&
        raw.kind != OFE::OF_SYM_KIND_COMMON)
        return;
    DIAG_REPORT(elnk_mapped_sym_ref_def_in_same_file, global_symbols.diag_sym_name(raw.name),
                global_symbols.diag_sym_name(global_symbols.mapped_to(raw.name)),
                file.file->name());
}

void REGISTRAR::report_discarded(const WORK& from, const OF_RAW_RELOC& reloc,
                                 const TARGET_REF& target) {
    OF_RAW_SECTION section;
    from.file->sections->raw_section(from.section_id, section);
    if (std::strcmp(section.name, abi_->plumasode_section_name()) == 0) return;
    OF_RAW_SYMBOL raw;
    from.file->symbols->raw_symbol(reloc.sym_id, raw);
    const OFE::OF_RELOC_TYPE* type = from.file->object->machine_reloc_type(reloc.type);
    DIAG_REPORT(elnk_invalid_reloc_scn, type ? type->name : "", from.file->file->name(),
                reloc.offset, section.name, from.section_id, global_symbols.diag_sym_name(raw.name),
                target.section_id);
}
