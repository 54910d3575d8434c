// The output's symbols: every symbol of an input that takes part in the link and is not superseded
// is copied, file by file in table order. Local symbols are copied from their raw records, without
// an object in the input; what was made from which is kept by the output symbol's index and, for
// locals, by the input's.
#include <algorithm>
#include <cstring>
#include <unordered_set>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/build/build.h"
#include "ELFLNK/build/build_state.h"
#include "ELFLNK/expr/expr_mgr.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/load/file_symbols.h"
#include "ELFLNK/load/load.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/object/symbol_object.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/symbol/undefined_report.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "ELFLNK/trampoline/trampoline.h"
#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/elf_symalias_table.h"
#include "OBJEDIT04/machine/reloc_type.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_reloc.h"
#include "OBJEDIT04/ofe/of_reloc_table.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OF_RELENG/releng.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/trace.h"

using namespace OFE;

namespace {

struct INPUT_REF {
    OF_SYMBOL* output = nullptr;
    OF_SYMBOL_TABLE* table = nullptr; // of the input
    unsigned id = 0;
};

std::vector<INPUT_REF> input_refs;                  // by output symbol id at the time of copying
std::vector<std::vector<OF_SYMBOL*>> local_outputs; // by file id, then symbol id
std::vector<UNDEFINED_SYMBOL> undefined_symbols;
bool final_call_done = false;

void remember_input(OF_SYMBOL* output, OF_SYMBOL_TABLE* table, unsigned id) {
    if (output->ofile() != output_OF_FILE()) return;
    const unsigned at = output->id();
    if (at > input_refs.size()) input_refs.resize(at);
    if (at == input_refs.size())
        input_refs.push_back({output, table, id});
    else
        input_refs[at] = {output, table, id};
}

// The slots for the outputs of a file's local symbols.
std::vector<OF_SYMBOL*>& locals_of(OBJECT_FILE* file, OF_SYMBOL_TABLE* table) {
    if (file->file_id() >= local_outputs.size()) local_outputs.resize(file->file_id() + 1);
    std::vector<OF_SYMBOL*>& of_file = local_outputs[file->file_id()];
    if (of_file.size() < table->first_global()) of_file.resize(table->first_global());
    return of_file;
}

// --- values

bool is_load_label_of(OF_SYMBOL* symbol) {
    return symbol && symbol->is_load_label();
}

// An address in an input section becomes the same place of the placed object.
uint64_t placed_value(SECTION* object, OF_SECTION* section, uint64_t value, bool relative,
                      bool load) {
    if (!relative) value -= load ? section->load_addr() : section->run_addr();
    return value + (load ? object->load_address() : object->run_address());
}

struct PLACE_IN_OUTPUT {
    OF_SECTION* section = nullptr;
    uint64_t value = 0;
};

PLACE_IN_OUTPUT place_of_section_symbol(OF_SYMBOL* symbol) {
    OF_SECTION* section = symbol->section();
    SECTION* object = section ? root_collection->lookup_OF_SECTION(section) : nullptr;
    OF_SECTION* output = object ? object->output_OF_SECTION() : nullptr;
    if (!output) {
        DIAG_REPORT(elnk_no_section, section ? section->name() : symbol->name());
        return {};
    }
    bool load = is_load_label_of(symbol);
    return {output, placed_value(object, section, symbol->value(),
                                 symbol->ofile()->values_are_scnrel(), load)};
}

PLACE_IN_OUTPUT place_of(OF_SYMBOL* symbol) {
    if (symbol->refs_section()) return place_of_section_symbol(symbol);
    if (symbol->kind() != OF_SYM_KIND_COMMON) return {nullptr, symbol->value()};
    SYMBOL_OBJECT* object = root_collection->lookup_symbol_object(symbol);
    if (OF_SECTION* output = object ? object->output_OF_SECTION() : nullptr)
        return {output, object->run_address()};
    if (!is_partial_link()) DIAG_REPORT(elnk_no_section_for_sym, symbol->name());
    return {nullptr, symbol->value()};
}

// --- copying

// Debug sections' global symbols stay out of the output's table, where that is wanted.
bool belongs_to_internal_file(OF_SYMBOL* symbol) {
    if (!outfile_symtab_optimization_enabled() || symbol->binding() == OF_SYM_BINDING_LOCAL)
        return false;
    OF_SECTION* section = symbol->section();
    return section && strncmp(section->name(), ".debug", 6) == 0;
}

void copy_symbol(OF_SYMBOL_TABLE* table, OF_SYMBOL* symbol, bool final) {
    OF_SYMBOL* output = symbol->resolved_by();
    if (!output) {
        OBJECT_FILE* to = belongs_to_internal_file(symbol)
                              ? file_manager.internal_file()->object_file()
                              : output_OF_FILE();
        output = to->symbol_table()->new_symbol();
        output->set_name_view(symbol->name());
        copy_symbol_fields(symbol, output);
        global_symbols.update_symbol(symbol, output);
        output->set_final(true);
        remember_input(output, table, symbol->id());
        trace_build.printf("--> copy symbol %s\n", symbol->name());
    }
    PLACE_IN_OUTPUT place = place_of(symbol);
    store_symbol_value(output, place.section, place.value, final);
}

// Copies the local symbols of one file that have no object. One is in the link when its section is,
// or, being absolute, when it has a type.
class LOCAL_COPIER {
  public:
    LOCAL_COPIER(OBJECT_FILE* file, OF_SYMBOL_TABLE* table, bool prebuild)
        : file_(file),
          table_(table),
          outputs_(locals_of(file, table)),
          to_(output_OF_FILE()->symbol_table()),
          prebuild_(prebuild) {}

    void copy(const OF_RAW_SYMBOL& raw) {
        const bool defined = raw.kind == OF_SYM_KIND_DEFINED;
        if (defined) find_place(raw.section_id);
        if (defined ? !output_section_
                    : raw.kind != OF_SYM_KIND_ABSOLUTE || raw.type == OF_SYM_TYPE_NONE)
            return;
        if (raw.id >= outputs_.size()) outputs_.resize(raw.id + 1);
        OF_SYMBOL*& output = outputs_[raw.id];
        if (!output) {
            output = to_->new_symbol_like(raw);
            output->set_final(true);
            remember_input(output, table_, raw.id);
        } else if (output->final_value()) {
            return;
        }
        if (defined)
            store_symbol_value(output, output_section_, raw.value + base_,
                               !prebuild_ || object_->is_placed());
        else
            store_symbol_value(output, nullptr, raw.value, true);
    }

  private:
    // Symbols of one section come in runs.
    void find_place(unsigned section_id) {
        if (section_id == section_id_) return;
        section_id_ = section_id;
        object_ = root_collection->lookup_section(file_->file_id(), section_id);
        output_section_ = object_ ? object_->output_OF_SECTION() : nullptr;
        if (output_section_)
            base_ = placed_value(object_, object_->OF_SECTION_api(), 0, file_->values_are_scnrel(),
                                 false);
    }

    OBJECT_FILE* file_;
    OF_SYMBOL_TABLE* table_;
    std::vector<OF_SYMBOL*>& outputs_;
    OF_SYMBOL_TABLE* to_;
    bool prebuild_;
    unsigned section_id_ = OF_RAW_SYMBOL::NO_SECTION; // what the others are about
    SECTION* object_ = nullptr;
    OF_SECTION* output_section_ = nullptr;
    uint64_t base_ = 0; // what makes a value of the input one of the output
};

// A kind that no format gives a meaning to is not copied, nor is what other files define.
bool is_copied(OF_SYM_KIND kind) {
    return kind != OF_SYM_KIND_UNDEFINED && kind != OF_SYM_KIND_NONE;
}

bool is_defined_now(OF_SYMBOL* symbol, bool prebuild) {
    if (!prebuild) return true;
    LINKER_OBJECT* object = global_symbols.symbol_defining_object(symbol);
    return object && object->is_placed();
}

void copy_symbols_of(OBJECT_FILE* file, bool prebuild) {
    OF_SYMBOL_TABLE* table = file->symbol_table();
    if (!table) return;
    LOCAL_COPIER locals(file, table, prebuild);
    OF_RAW_SYMBOL raw;
    for (unsigned id = 0, n = table->symnum(); id < n; id = table->next_symbol_id(id)) {
        OF_SYMBOL* symbol = table->loaded_symbol(id);
        if (!symbol) {
            if (!table->raw_symbol(id, raw) || !is_copied(raw.kind)) continue;
            if (raw.binding == OF_SYM_BINDING_LOCAL) {
                locals.copy(raw);
                continue;
            }
            if (raw.kind != OF_SYM_KIND_COMMON &&
                (raw.kind != OF_SYM_KIND_DEFINED ||
                 !root_collection->lookup_section(file->file_id(), raw.section_id)))
                continue;
            symbol = table->symbol(id);
        }
        if (!is_copied(symbol->kind()) || !symbol_needs_final_value(symbol)) continue;
        copy_symbol(table, symbol, is_defined_now(symbol, prebuild));
    }
}

} // namespace

OF_SYMBOL* output_of_local(OBJECT_FILE* file, unsigned symbol_id) {
    if (file->file_id() >= local_outputs.size()) return nullptr;
    const std::vector<OF_SYMBOL*>& of_file = local_outputs[file->file_id()];
    return symbol_id < of_file.size() ? of_file[symbol_id] : nullptr;
}

OF_SYMBOL* lookup_input_symbol_from_output(OF_SYMBOL* output) {
    if (output->id() >= input_refs.size()) return nullptr;
    const INPUT_REF& ref = input_refs[output->id()];
    return ref.output == output ? ref.table->symbol(ref.id) : nullptr;
}

// What is never used of this costs no memory, whereas growing would copy all of it several times.
static void reserve_for_all_symbols() {
    size_t count = 0;
    for (OBJ_FILE* file : file_manager.object_files())
        if (OF_SYMBOL_TABLE* table = file->object_file()->symbol_table()) count += table->symnum();
    input_refs.reserve(count);
    output_OF_FILE()->symbol_table()->reserve(count);
}

void copy_symbols(bool prebuild) {
    if (input_refs.empty()) reserve_for_all_symbols();
    for (OBJ_FILE* file : file_manager.object_files())
        if (file != file_manager.output_file() && file->is_static_linking_object())
            copy_symbols_of(file->object_file(), prebuild);
}

void drop_unlinked_absolute_symbols() {
    OF_SYMBOL_TABLE* table = output_OF_FILE()->symbol_table();
    bool deleted = false;
    for (unsigned id = 1, n = table->symnum(); id < n; id = table->next_symbol_id(id)) {
        OF_SYMBOL* symbol = table->symbol(id);
        if (symbol->kind() == OF_SYM_KIND_ABSOLUTE && !root_collection->symbol_is_in_link(symbol) &&
            !get_expr_mgr()->is_refd(symbol->name())) {
            if (id < input_refs.size()) input_refs[id] = {};
            global_symbols.remove_linker_symbol(symbol);
            table->delete_symbol(id);
            deleted = true;
        } else {
            symbol->set_final(true);
        }
    }
    if (!deleted) return;
    get_expr_mgr()->drop_undefined();
    table->purge_deleted_symbols();
    std::vector<INPUT_REF> old = std::move(input_refs); // ids have moved down
    input_refs.clear();
    for (const INPUT_REF& ref : old)
        if (ref.output) remember_input(ref.output, ref.table, ref.id);
}

// --- what is still undefined

namespace {

bool may_be_bound_at_run_time(OF_SYMBOL* s) {
    ABI* abi = Target->abi();
    if (!abi->supports_dynamic_linkage() || s->visibility() != OF_VIS_DEFAULT) return false;
    return global_symbols.lookup_imported(s->name()) || !abi->forced_static_binding();
}

bool is_default_entry_point(OF_SYMBOL* s) {
    const char* entry = Target->entry_point_name();
    return !is_shared_output() && is_c_runtime_model() && !global_opts->isopt(OPT_entry_point) &&
           entry && strcmp(entry, s->name()) == 0;
}

// Whether an undefined symbol stays in the output; what may not stay is kept for the report.
bool accept_undefined(OF_SYMBOL* s, SECTION* referrer) {
    if (s->binding() == OF_SYM_BINDING_WEAK || may_be_bound_at_run_time(s)) return true;
    bool ignore =
        global_opts->isopt(OPT_ignore_undef_syms) && global_opts->not_off(OPT_ignore_undef_syms);
    if (!ignore && is_default_entry_point(s)) {
        DIAG_REPORT(elnk_entry_sym_undef, s->name());
        return true;
    }
    if (Target->ignore_undef_sym(s)) return false;
    if (ignore || is_partial_link()) return true;
    undefined_symbols.push_back({s, referrer});
    return false;
}

class UNDEFINED_PASS {
  public:
    /// A reference from a root of the link.
    void root(OF_SYMBOL* s) {
        referrer_ = nullptr;
        reference(s);
    }

    // References from the sections of one file.
    void references_of(const OF_SECTION_TABLE* sections) {
        if (!enter(sections->ofile())) return;
        for (unsigned id = 0, n = sections->scnnum(); id < n; ++id)
            if (OF_SECTION* section = sections->loaded_section(id))
                if (SECTION* object = root_collection->lookup_OF_SECTION(section))
                    references_of(object, section);
    }

  private:
    // Most files refer to nothing undefined that was not met before: their symbols tell, of which
    // there are fewer than relocations. False: the file need not be searched.
    bool enter(OBJECT_FILE* file) {
        file_ = file;
        OF_SYMBOL_TABLE* table = file->symbol_table();
        open_.clear();
        if (!table || !file->is_input()) return true;
        const FILE_SYMBOLS* names = find_file_symbols(file);
        bool any = !file->section_table()->has_one_symbol_table();
        open_.assign(table->symnum(), any);
        for (unsigned id = table->first_global(), n = table->symnum(); id < n; ++id) {
            open_[id] = is_open(table, names, id);
            any |= open_[id];
        }
        return any;
    }

    void references_of(SECTION* object, OF_SECTION* section) {
        referrer_ = object;
        OF_SECTION_TABLE* table = section->section_table();
        unsigned raw_tables = file_->is_input() ? table->raw_reloc_table_num(section->id()) : 0;
        for (unsigned i = 0; i < raw_tables; ++i)
            references_of(table->raw_relocs(section->id(), i));
        if (raw_tables != 0 || file_->is_input()) return;
        for (OF_RELOC* rel : section->all_relocs())
            if (rel->takes_symbol() && !rel->is_internal() && rel->symbol())
                reference(rel->symbol()->resolved_by_final());
    }

    // False: a reference to the symbol changes nothing.
    bool is_open(const OF_SYMBOL_TABLE* table, const FILE_SYMBOLS* names, unsigned sym_id) {
        if (OF_SYMBOL* loaded = table->loaded_symbol(sym_id)) return is_open(loaded);
        const uint32_t name = names ? names->name_id(sym_id) : NAME_TABLE::NO_NAME;
        if (name >= settled_.size()) return true;
        if (settled_[name]) return false;
        OF_SYMBOL* target = global_symbols.def_of(global_symbols.mapped_id(name));
        if (!target) target = global_symbols.undef_of(name);
        settled_[name] = target && !is_open(target);
        return !settled_[name];
    }

    bool is_open(OF_SYMBOL* symbol) {
        OF_SYMBOL* s = symbol->resolved_by_final();
        return s->kind() == OF_SYM_KIND_UNDEFINED && !s->final() && !seen_.contains(s);
    }

    void reference(OF_SYMBOL* s) {
        if (!s || s->kind() != OF_SYM_KIND_UNDEFINED) return;
        if (s->binding() != OF_SYM_BINDING_GLOBAL && s->binding() != OF_SYM_BINDING_WEAK) return;
        if (!seen_.insert(s).second || s->final()) return;
        global_symbols.link_undef(s);
        OF_SYMBOL* now = s->resolved_by_final();
        if (now != s) return reference(now);
        if (accept_undefined(s, referrer_)) copy_symbol(s->symbol_table(), s, true);
    }

    void references_of(const OF_RAW_RELOCS& relocs) {
        OF_SYMBOL_TABLE* symbols = relocs.symbols();
        if (!symbols || relocs.size() == 0) return;
        unsigned first_global = symbols->first_global();
        for (unsigned i = 0, n = relocs.size(); i < n; ++i) {
            OF_RAW_RELOC raw = relocs[i];
            if (raw.sym_id < first_global || raw.sym_id >= open_.size() || !open_[raw.sym_id])
                continue;
            if (!file_->machine_reloc_type(raw.type)->has_symbol()) continue;
            open_[raw.sym_id] = false;
            reference(resolve_symbol(file_, raw.sym_id));
        }
    }

    SECTION* referrer_ = nullptr;
    OBJECT_FILE* file_ = nullptr;
    std::vector<bool> open_; // by symbol id, in the file: not met yet
    std::vector<bool> settled_ = std::vector<bool>(global_symbols.name_count()); // names not open
    std::unordered_set<OF_SYMBOL*> seen_;
};

} // namespace

void copy_undefined_symbols() {
    UNDEFINED_PASS pass;
    for (const OF_SECTION_TABLE* sections : root_collection->section_tables())
        if (sections) pass.references_of(sections);
    for (OF_SYMBOL* symbol : global_symbols.entry_symbols())
        pass.root(SYMBOL_TABLE::resolution(symbol));
}

// --- aliases

namespace {

// In a final link an alias is a symbol of its own again, with what its target says.
void define_alias(OF_SYMBOL_TABLE* table, OF_SYMBOL* alias) {
    OF_SYMBOL* target = alias->resolved_by_final();
    if (alias->final() || !alias->is_alias() || target == alias || !target->final()) return;
    OF_SYMBOL* made = output_OF_FILE()->symbol_table()->new_symbol();
    made->set_name_view(alias->name());
    copy_symbol_fields(alias, made);
    global_symbols.update_symbol(alias, made);
    remember_input(made, table, alias->id());
    trace_build.printf("--> define alias symbol %s (alias of %s)\n", made->name(), target->name());
    if (target->refs_section()) made->set_section(target->section());
    made->set_value(target->value());
    made->set_alias(true);
    made->set_final_value(true);
    made->set_final(true);
    trace_build.printf("--> update alias symbol %s, value = 0x%08x\n", made->name(), made->value());
}

// What a partial link writes down for the next one: the ids of both in its output.
void record_alias(OF_SYMBOL* alias, OF_SYMBOL* target) {
    const OF_SYMBOL* from = alias->resolved_by_final();
    const OF_SYMBOL* to = target->resolved_by_final();
    OBJECT_FILE* output = output_OF_FILE();
    if (from->ofile() != output || to->ofile() != output) return;
    elf_api(output)->symalias_table(true)->add_alias(from->id(), to->id());
}

} // namespace

void define_alias_symbols() {
    if (output_OF_FILE()->format() != OF_FORMAT_ELF) return;
    const bool partial = is_partial_link();
    for (OBJ_FILE* file : file_manager.object_files()) {
        OBJECT_FILE* object = file->object_file();
        if (object->format() != OF_FORMAT_ELF || file == file_manager.output_file()) continue;
        ELF_SYMALIAS_TABLE* aliases = elf_api(object)->symalias_table(false);
        OF_SYMBOL_TABLE* table = object->symbol_table();
        if (aliases == nullptr || table == nullptr) continue;
        for (const auto& [alias, target] : aliases->alias_map()) {
            if (alias == target || alias >= table->symnum() || target >= table->symnum()) continue;
            if (partial)
                record_alias(table->symbol(alias), table->symbol(target));
            else
                define_alias(table, table->symbol(alias));
        }
    }
}

void check_imports() {
    for (unsigned i = 0, n = global_opts->getargcount(OPT_import); i < n; ++i) {
        const char* name = global_opts->getstrarg(OPT_import, i);
        if (name && !global_symbols.lookup_def(name))
            DIAG_REPORT(elnk_sym_def_ref_not_found, name, name);
    }
}

void create_outfile_components(bool prebuild) {
    if (!prebuild && final_call_done) DIAG_REPORT(elnk_illegal_final_build_call);
    trace_build.printf("CREATE OUTFILE COMPONENTS (%s)\n", prebuild ? "prebuild" : "final");
    OF_RELENG::forget_symbols();
    create_outfile_sections();
    trace_build.printf("\nCREATE OUTFILE SYMBOLS\n");
    if (!prebuild) drop_unlinked_absolute_symbols();
    copy_symbols(prebuild);
    create_jump_entry_symbols(!prebuild);
    if (!prebuild) {
        copy_undefined_symbols();
        define_alias_symbols();
        check_imports();
        report_undefined_symbols(undefined_symbols);
    }
    Target->abi()->define_static_base_symbol(true);
    trace_build.printf("\nUPDATE LINKER SYMBOLS\n");
    get_expr_mgr()->evaluate_all_sym_assignments(!prebuild);
    Target->abi()->update_output_symbols();
    if (!prebuild) final_call_done = true;
    Target->abi()->set_static_base();
}
