// See file_symbols.h. Records lie in a vector by file id, which the object file layer gives out
// densely.
#include "ELFLNK/load/file_symbols.h"

#include <memory>

#include "ELFLNK/symbol/symbol_table.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"

static std::vector<std::unique_ptr<FILE_SYMBOLS>> records;

FILE_SYMBOLS& file_symbols(const OFE::OBJECT_FILE* object) {
    const unsigned id = object->file_id();
    if (id >= records.size()) records.resize(id + 1);
    if (!records[id]) records[id] = std::make_unique<FILE_SYMBOLS>();
    return *records[id];
}

const FILE_SYMBOLS* find_file_symbols(const OFE::OBJECT_FILE* object) {
    const unsigned id = object->file_id();
    return id < records.size() ? records[id].get() : nullptr;
}

OFE::OF_SYMBOL* resolve_symbol(OFE::OBJECT_FILE* object, unsigned sym_id) {
    OFE::OF_SYMBOL_TABLE* table = object->symbol_table();
    if (!table) return nullptr;
    const FILE_SYMBOLS* file = find_file_symbols(object);
    const uint32_t id = file ? file->name_id(sym_id) : NAME_TABLE::NO_NAME;
    if (id != NAME_TABLE::NO_NAME && !table->loaded_symbol(sym_id)) {
        OFE::OF_SYMBOL* target = global_symbols.def_of(global_symbols.mapped_id(id));
        if (!target) target = global_symbols.undef_of(id);
        if (target) return target->resolved_by_final();
    }
    return SYMBOL_TABLE::resolution(table->symbol(sym_id));
}
