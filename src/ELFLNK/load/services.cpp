// Small services of the load phase that other phases ask for.
#include "ELFLNK/exidx/exidx.h"
#include "ELFLNK/exidx/exidx_section.h"
#include "ELFLNK/load/load.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "OBJEDIT04/ofe/of_group_table.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"

SECTION* new_section(OFE::OF_SECTION* section, OBJ_FILE* file) {
    SECTION* object =
        EXIDX::is_exidx(section) ? new EXIDX_SECTION(file, section) : new SECTION(file, section);
    root_collection->add_section(object);
    return object;
}

bool is_comdat_member(OFE::OF_SECTION* section, OFE::OF_GROUP_TABLE* group) {
    return section && group && group->comdat_flag() &&
           section->section_table()->raw_group(section->id()) == group;
}
