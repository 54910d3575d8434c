#include "ELFLNK/target/internal_section.h"

#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"

#include <vector>

namespace {

OFE::OF_SECTION* new_internal_OF_SECTION(const char* name, unsigned alignment) {
    OFE::OBJECT_FILE* file = file_manager.internal_file()->object_file();
    OFE::OF_SECTION* section = file->section_table()->new_section(name);
    section->set_align(alignment);
    return section;
}

SECTION* new_object(OFE::OF_SECTION* section) {
    auto* object = new SECTION(file_manager.internal_file(), section);
    root_collection->add_section(object);
    return object;
}

} // namespace

// SECTION reads its attributes from the section when it is made, so the section is complete before.
SECTION* create_uninitialized_section(const char* name, unsigned alignment) {
    OFE::OF_SECTION* section = new_internal_OF_SECTION(name, alignment);
    section->set_bss();
    section->set_allocated(true);
    return new_object(section);
}

OFE::OF_SECTION* new_internal_constant_section(const char* name, unsigned alignment) {
    OFE::OF_SECTION* section = new_internal_OF_SECTION(name, alignment);
    section->set_const_data();
    section->set_allocated(true);
    return section;
}

SECTION* create_read_only_section(const char* name, unsigned size, unsigned alignment) {
    OFE::OF_SECTION* section = new_internal_constant_section(name, alignment);
    const std::vector<uint8_t> zeros(size);
    section->write_to_raw_data(zeros.data(), size, 0);
    return new_object(section);
}
