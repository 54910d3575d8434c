// Small services of the load phase that other phases ask for.
#include "ELFLNK/archive/ar_file.h"
#include "ELFLNK/file/archive_file.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/load/load.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "OBJEDIT04/ofe/of_group_table.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "UTIL/savestr.h"

SECTION* new_section(OFE::OF_SECTION* section) {
    auto* object = new SECTION(file_manager.lookup_OF_FILE(section->ofile()), section);
    root_collection->add_section(object);
    return object;
}

bool is_comdat_member(OFE::OF_SECTION* section, OFE::OF_GROUP_TABLE* group) {
    return section && group && group->comdat_flag() &&
           section->section_table()->raw_group(section->id()) == group;
}

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
