// See alias_tracker.h.
#include "ELFLNK/load/alias_tracker.h"

#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"

ALIAS_SECTION_TRACKER alias_section_tracker;

static uint64_t key_of(const OFE::OBJECT_FILE* file, unsigned section_id) {
    return uint64_t{file->file_id()} << 32 | section_id;
}

void ALIAS_SECTION_TRACKER::track_symbol(OFE::OF_SYMBOL* sym) {
    if (!sym->refs_section()) return;
    const OFE::OF_SYM_KIND kind = sym->kind();
    if (kind != OFE::OF_SYM_KIND_DEFINED && kind != OFE::OF_SYM_KIND_ABSOLUTE &&
        kind != OFE::OF_SYM_KIND_COMMON)
        return;
    if (sym->type() != OFE::OF_SYM_TYPE_OBJECT && sym->type() != OFE::OF_SYM_TYPE_FUNCTION) return;
    OFE::OBJECT_FILE* file = sym->ofile();
    OFE::OF_RAW_SECTION section;
    if (!file->section_table()->raw_section(sym->section_id(), section)) return;
    if (!Target->abi()->section_is_progdata(section, file)) return;

    const auto [it, is_first] = sections_.try_emplace(key_of(file, section.id), sym->is_alias());
    if (!is_first && it->second) it->second = sym->is_alias();
}

bool ALIAS_SECTION_TRACKER::only_aliases(const OFE::OBJECT_FILE* file, unsigned section_id) const {
    const auto it = sections_.find(key_of(file, section_id));
    return it != sections_.end() && it->second;
}
