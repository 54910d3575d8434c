// See link_symbols.h. Files that were scanned are walked by their interned names; what the linker
// made itself (output and internal file) by its symbol objects.
#include "ELFLNK/load/link_symbols.h"

#include "ELFLNK/build/link_kind.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/load/file_symbols.h"
#include "ELFLNK/symbol/internal_symbols.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "UTIL/trace.h"

using OFE::OF_SYMBOL;
using OFE::OF_SYMBOL_TABLE;

namespace {

bool is_global(const OF_SYMBOL* sym) {
    const OFE::OF_SYM_BINDING binding = sym->binding();
    return binding == OFE::OF_SYM_BINDING_GLOBAL || binding == OFE::OF_SYM_BINDING_WEAK;
}

bool is_definition(const OF_SYMBOL* sym) {
    const OFE::OF_SYM_KIND kind = sym->kind();
    return kind == OFE::OF_SYM_KIND_DEFINED || kind == OFE::OF_SYM_KIND_ABSOLUTE ||
           kind == OFE::OF_SYM_KIND_COMMON;
}

// The record of a file that was scanned, or null.
const FILE_SYMBOLS* scanned(const OFE::OBJECT_FILE* object) {
    const FILE_SYMBOLS* record = find_file_symbols(object);
    return record && record->file ? record : nullptr;
}

// A visible definition of a dynamic output can be reached from outside.
void add_dynamic_entry(OF_SYMBOL* sym) {
    const unsigned v = sym->visibility();
    if (v != OFE::OF_VIS_HIDDEN && v != OFE::OF_VIS_INTERNAL) global_symbols.add_entry_symbol(sym);
}

void link_file_defs(OBJ_FILE* file) {
    OFE::OBJECT_FILE* object = file->object_file();
    OF_SYMBOL_TABLE* symbols = object->symbol_table();
    if (!symbols) return;
    const FILE_SYMBOLS* record = scanned(object);
    const bool is_dynamic = is_dynamic_output() && object->format() == OFE::OF_FORMAT_ELF;
    for (unsigned id = record ? record->first_global : 0; id < symbols->symnum();
         id = symbols->next_symbol_id(id)) {
        OF_SYMBOL* sym = record ? symbols->loaded_symbol(id) : symbols->symbol(id);
        if (!sym || !is_global(sym) || !is_definition(sym)) continue;
        global_symbols.link_def(sym);
        if (is_dynamic) add_dynamic_entry(sym);
    }
}

void link_file_undefs(OBJ_FILE* file) {
    OFE::OBJECT_FILE* object = file->object_file();
    OF_SYMBOL_TABLE* symbols = object->symbol_table();
    if (!symbols) return;
    const FILE_SYMBOLS* record = scanned(object);
    for (unsigned id = record ? record->first_global : 0; id < symbols->symnum();
         id = symbols->next_symbol_id(id)) {
        OF_SYMBOL* sym = record ? symbols->loaded_symbol(id) : symbols->symbol(id);
        if (!sym) {
            const uint32_t name_id = record ? record->name_id(id) : NAME_TABLE::NO_NAME;
            OFE::OF_RAW_SYMBOL raw;
            if (name_id == NAME_TABLE::NO_NAME || !symbols->raw_symbol(id, raw)) continue;
            if (global_symbols.link_raw_undef(name_id, raw)) continue;
            sym = symbols->symbol(id);
        }
        if (sym && is_global(sym) && sym->kind() == OFE::OF_SYM_KIND_UNDEFINED)
            global_symbols.link_undef(sym);
    }
}

template <class VISIT>
void for_each_linked_file(VISIT visit) {
    if (OBJ_FILE* output = file_manager.output_file()) visit(output);
    for (size_t i = 0; i < file_manager.object_files().size(); ++i) {
        OBJ_FILE* file = file_manager.object_files()[i];
        if (file->is_static_linking_object()) visit(file);
    }
}

} // namespace

void link_global_definitions() {
    trace_load.printf("\nLINKING GLOBAL DEFINITIONS\n");
    global_symbols.clear_defs();
    for_each_linked_file(link_file_defs);
}

void link_global_references() {
    trace_load.printf("\nLINKING GLOBAL REFERENCES\n");
    for (const char* name : global_symbols.entry_names())
        global_symbols.add_entry_symbol(create_internal_undef_symbol(name));
    for_each_linked_file(link_file_undefs);
}
