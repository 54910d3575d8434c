// Symbols of the internal file.
#include "ELFLNK/symbol/internal_symbols.h"

#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "UTIL/savestr.h"

static OFE::OF_SYMBOL* new_internal_symbol(const char* name, OFE::OF_SYM_KIND kind) {
    OFE::OF_SYMBOL* sym = file_manager.internal_file()->object_file()->symbol_table()->new_symbol();
    sym->set_name_view(savestr(name));
    sym->set_kind(kind);
    sym->set_binding(OFE::OF_SYM_BINDING_GLOBAL);
    return sym;
}

OFE::OF_SYMBOL* create_internal_undef_symbol(const char* name) {
    return new_internal_symbol(name, OFE::OF_SYM_KIND_UNDEFINED);
}

OFE::OF_SYMBOL* create_internal_abs_symbol(const char* name, unsigned value) {
    OFE::OF_SYMBOL* sym = new_internal_symbol(name, OFE::OF_SYM_KIND_ABSOLUTE);
    sym->set_value(value);
    sym->set_final_value(true);
    return sym;
}
