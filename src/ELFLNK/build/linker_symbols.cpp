// Making and changing symbols of the output, apart from copying those of the inputs.
#include "DIAG/elnk_msgs.h"
#include "ELFLNK/build/build.h"
#include "ELFLNK/build/build_state.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "UTIL/trace.h"

using namespace OFE;

// A file for a further link passes on the commons that nothing in it refers to.
static bool takes_part(OF_SYMBOL* symbol) {
    return root_collection->symbol_is_in_link(symbol) ||
           (symbol->kind() == OF_SYM_KIND_COMMON && is_partial_link());
}

bool symbol_needs_final_value(OF_SYMBOL* symbol) {
    if (symbol->final() || !takes_part(symbol)) return false;
    OF_SYMBOL* by = symbol->resolved_by();
    return !by || (by->final() && !by->final_value());
}

void store_symbol_value(OF_SYMBOL* symbol, OF_SECTION* section, uint64_t value, bool final) {
    OBJ_FILE* internal = file_manager.internal_file();
    if (internal && symbol->ofile() == internal->object_file()) {
        symbol->set_kind(OF_SYM_KIND_ABSOLUTE);
    } else if (section) {
        symbol->set_section(section);
        if (symbol->ofile()->values_are_scnrel())
            value -= symbol->is_load_label() ? section->load_addr() : section->run_addr();
    }
    symbol->set_value(static_cast<uint32_t>(value));
    if (!final) return;
    symbol->set_final_value(true);
    trace_build.printf("--> update symbol %s, value = 0x%08x\n", symbol->name(), symbol->value());
}

void copy_symbol_fields(OF_SYMBOL* from, OF_SYMBOL* to) {
    OF_FORMAT in = from->ofile()->format(), out = to->ofile()->format();
    if (in == OF_FORMAT_UNKNOWN || out == OF_FORMAT_UNKNOWN) {
        DIAG_REPORT(elnk_sym_bad_fmt, from->name());
        return;
    }
    if (in != OF_FORMAT_ELF || out != OF_FORMAT_ELF) {
        DIAG_REPORT(elnk_fmt_conv_not_supported);
        return;
    }
    if (from->kind() != OF_SYM_KIND_DEFINED) to->set_kind(from->kind());
    to->set_size(from->size());
    to->set_type(from->type());
    to->set_visibility(from->visibility());
    to->set_binding(from->binding());
}

OF_SYMBOL* create_ref_symbol(OF_SYMBOL* symbol, OBJECT_FILE* file) {
    OF_SYMBOL* made = file->symbol_table()->new_symbol();
    made->set_name_view(symbol->name());
    copy_symbol_fields(symbol, made);
    made->set_kind(OF_SYM_KIND_UNDEFINED);
    global_symbols.update_symbol(symbol, made);
    return made;
}

OF_SYMBOL* create_dup_symbol(const char* name, OF_SYMBOL* symbol) {
    OF_SYMBOL* made = symbol->ofile()->symbol_table()->new_symbol();
    made->set_name_view(name);
    copy_symbol_fields(symbol, made);
    if (OF_SECTION* section = symbol->section()) made->set_section(section);
    made->set_value(symbol->value());
    return made;
}

OF_SYMBOL* create_linker_symbol(const char* name, const SOURCE_POSITION&, uint64_t value,
                                OF_SYM_BINDING binding) {
    if (binding == OF_SYM_BINDING_NONE) {
        DIAG_REPORT(elnk_sym_bad_binding, name);
        return nullptr;
    }
    OBJECT_FILE* out = output_OF_FILE();
    OF_SYMBOL_TABLE* table = out ? out->symbol_table() : nullptr;
    if (!table) {
        DIAG_REPORT(elnk_no_outfile_symtab);
        return nullptr;
    }
    OF_SYMBOL* symbol = table->new_symbol();
    symbol->set_name(name);
    symbol->set_final(binding != OF_SYM_BINDING_WEAK);
    symbol->set_visibility(OF_VIS_HIDDEN);
    symbol->set_type(OF_SYM_TYPE_NONE);
    update_linker_symbol(symbol, nullptr, value, false, binding);
    global_symbols.add_symbol(symbol, true);
    return symbol;
}

void update_linker_symbol(OF_SYMBOL* symbol, OF_SECTION* section, uint64_t value, bool final,
                          OF_SYM_BINDING binding) {
    if (!section) symbol->set_kind(OF_SYM_KIND_ABSOLUTE);
    store_symbol_value(symbol, section, value, final);
    symbol->set_binding(binding);
    trace_build.printf("--> linker symbol %s, value = 0x%08x, final=%s\n", symbol->name(),
                       symbol->value(), final ? "true" : "false");
}
