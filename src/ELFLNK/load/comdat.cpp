// See comdat.h. Signatures are interned by themselves: they name groups, not symbols of the link.
#include "ELFLNK/load/comdat.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/symbol/name_table.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_group_table.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "UTIL/trace.h"

namespace {

NAME_TABLE signatures;
std::vector<OFE::OF_GROUP_TABLE*> kept_groups; // by signature id

// The group's members, their relocation sections with them, and the section that describes the
// group.
void delete_group(OFE::OF_SECTION_TABLE* sections, OFE::OF_GROUP_TABLE* group) {
    std::vector<unsigned> doomed;
    for (unsigned i = 0; i < group->member_num(); ++i)
        if (!group->member_deleted(i)) doomed.push_back(group->member_id(i));
    doomed.push_back(group->section_id());
    for (unsigned id : doomed)
        if (id != 0 && id < sections->scnnum()) sections->delete_section(id);
}

void process_group(OFE::OF_SECTION_TABLE* sections, OFE::OF_GROUP_TABLE* group) {
    const char* signature = group->signature_name();
    if (*signature == '\0') return; // nothing tells it from another
    const uint32_t id = signatures.intern(signature);
    if (id == kept_groups.size()) {
        trace_comdat.printf("keeping comdat group %s\n", signature);
        kept_groups.push_back(group);
    } else {
        trace_comdat.printf("deleting comdat group %s\n", signature);
        delete_group(sections, group);
    }
}

} // namespace

void process_comdat_groups(OBJ_FILE* file) {
    OFE::OF_SECTION_TABLE* sections = file->object_file()->section_table();
    for (unsigned id : sections->group_sections()) {
        OFE::OF_SECTION* section = sections->is_deleted(id) ? nullptr : sections->section(id);
        OFE::OF_GROUP_TABLE* group = section ? section->group_api() : nullptr;
        if (group && group->comdat_flag()) process_group(sections, group);
    }
}

void for_each_kept_comdat(const std::function<void(OFE::OF_GROUP_TABLE*)>& visit) {
    std::vector<uint32_t> ids(kept_groups.size());
    for (uint32_t i = 0; i < ids.size(); ++i) ids[i] = i;
    std::sort(ids.begin(), ids.end(),
              [](uint32_t a, uint32_t b) { return signatures.view(a) < signatures.view(b); });
    for (uint32_t id : ids) visit(kept_groups[id]);
}

void clear_comdat_map() {
    signatures = NAME_TABLE();
    kept_groups.clear();
}
