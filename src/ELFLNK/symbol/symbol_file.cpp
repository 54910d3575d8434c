// See symbol_file.h.
#include "ELFLNK/symbol/symbol_file.h"

#include "ELFLNK/file/archive_file.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "UTIL/savestr.h"

OBJ_FILE* symbol_obj_file(OFE::OF_SYMBOL* symbol) {
    return symbol ? file_manager.lookup_OF_FILE(symbol->ofile()) : nullptr;
}

const char* file_diag_name(const OBJ_FILE* file) {
    if (!file) return "";
    if (!file->archive()) return file->name();
    return savestrf("%s<%s>", file->archive()->name(), file->member_name());
}

const char* symbol_file_name(OFE::OF_SYMBOL* symbol) {
    const OBJ_FILE* file = symbol_obj_file(symbol);
    const bool is_own = file == file_manager.internal_file() || file == file_manager.output_file();
    return is_own ? "" : file_diag_name(file);
}
