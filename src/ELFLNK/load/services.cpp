// Small services of the load phase that other phases ask for.
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/load/load.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "OBJEDIT04/ofe/of_group_table.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"

SECTION* new_section(OFE::OF_SECTION* section) {
    auto* object = new SECTION(file_manager.lookup_OF_FILE(section->ofile()), section);
    root_collection->add_section(object);
    return object;
}

bool is_comdat_member(OFE::OF_SECTION* section, OFE::OF_GROUP_TABLE* group) {
    return section && group && group->comdat_flag() &&
           section->section_table()->raw_group(section->id()) == group;
}
