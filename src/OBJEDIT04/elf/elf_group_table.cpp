// Group sections, read with every member index checked: in range, no group, in no other group.
#include "OBJEDIT04/elf/elf_group_table.h"

#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/elf_section.h"
#include "OBJEDIT04/elf/elf_section_table.h"
#include "OBJEDIT04/elf/elf_symbol_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "UTIL/data_map.h"

namespace OFE {

ELF_GROUP_TABLE::ELF_GROUP_TABLE(ELF_SECTION* section)
    : OF_GROUP_TABLE(section->ofile()), section_(section) {
    if (section->sh_entsize() >= 4) entsize_ = section->sh_entsize();
    if (ofile()->is_input()) read_members();
}

void ELF_GROUP_TABLE::read_members() {
    OF_BYTES b = section_->bytes();
    if (b.size < entsize_) return;
    bool big = static_cast<ELF_FILE*>(ofile())->big();
    ELF_SECTION_TABLE* sections = section_->elf_table();
    flags_ = read_u32(b.data, big);
    members_.reserve(b.size / entsize_ - 1);
    Elf32_Shdr h;
    for (size_t at = entsize_; at + 4 <= b.size; at += entsize_) {
        unsigned id = read_u32(b.data + at, big);
        if (id == 0 || !sections->raw_header(id, h) || h.sh_type == SHT_GROUP ||
            sections->in_other_group(id, this)) {
            ofile()->set_error(OF_ERROR_CORRUPT,
                               "group section %u (\"%s\") has section %u as a member",
                               section_->id(), section_->name(), id);
            continue;
        }
        if (!sections->is_deleted(id)) members_.push_back(id);
    }
}

ELF_SYMBOL_TABLE* ELF_GROUP_TABLE::symbols() {
    ELF_SECTION* s = section_->elf_table()->elf_section(section_->sh_link());
    return s ? s->symbol_table_api() : nullptr;
}

const char* ELF_GROUP_TABLE::name() {
    return section_->name();
}
int ELF_GROUP_TABLE::set_name(const char* name) {
    return section_->set_name(name);
}
OF_SECTION* ELF_GROUP_TABLE::section_api() {
    return section_;
}
unsigned ELF_GROUP_TABLE::section_id() const {
    return section_->id();
}

OF_SYMBOL* ELF_GROUP_TABLE::symbol() {
    ELF_SYMBOL_TABLE* table = section_->sh_info() ? symbols() : nullptr;
    return table ? table->symbol(section_->sh_info()) : nullptr;
}

// A signature without a name is a section symbol: the section's name tells the group.
const char* ELF_GROUP_TABLE::signature_name() {
    ELF_SYMBOL_TABLE* table = section_->sh_info() ? symbols() : nullptr;
    OF_RAW_SYMBOL s;
    if (!table || !table->raw_symbol(section_->sh_info(), s)) return "";
    if (*s.name == 0 && s.type == OF_SYM_TYPE_SECTION)
        return section_->elf_table()->raw_name(s.section_id);
    return s.name;
}

int ELF_GROUP_TABLE::set_symbol(OF_SYMBOL* symbol) {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    if (!symbol || symbol->symbol_table() != symbols()) return -1;
    return section_->set_sh_info(symbol->id());
}

int ELF_GROUP_TABLE::set_comdat_flag() {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    flags_ |= GRP_COMDAT;
    return 0;
}

int ELF_GROUP_TABLE::update_symbol_refs(const RECORD_MAP<unsigned>& map) {
    unsigned id = section_->sh_info();
    if (id >= map.size()) return 0;
    return section_->set_sh_info(map[id] == OF_DELETED ? 0 : map[id]);
}

int ELF_GROUP_TABLE::progress_to_state(OF_STATE target) {
    return target == OF_STATE_LOCKED ? lock_group_table() : 0;
}
int ELF_GROUP_TABLE::revert_to_state(OF_STATE) {
    return 0;
}

int ELF_GROUP_TABLE::lock_group_table() {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    if (section_->sh_info() == 0) {
        ofile()->set_error(OF_ERROR_CORRUPT,
                           "a symbol has not been specified for the group section %s", name());
        return -1;
    }
    entsize_ = 4;
    section_->set_sh_entsize(4);
    DATA_MAP& map = section_->raw_data();
    map.set_zeros(size_t{4} * (live_member_num() + 1));
    uint8_t* p = map.writable();
    bool big = static_cast<ELF_FILE*>(ofile())->big();
    write_u32(p, flags_, big);
    for (unsigned i = 0; i < member_num(); ++i)
        if (!member_deleted(i)) write_u32(p += 4, members_[i], big);
    return 0;
}

// A group is dropped as a whole: what relocates a member is a member.
void ELF_GROUP_TABLE::add_reloc_sections() {
    ELF_SECTION_TABLE* sections = section_->elf_table();
    for (unsigned i = 0, count = member_num(); i < count; ++i) {
        if (member_deleted(i)) continue;
        for (unsigned k = 0; k < sections->raw_reloc_table_num(members_[i]); ++k) {
            OF_SECTION* relocs = sections->section(sections->reloc_section(members_[i], k));
            if (relocs && !relocs->group()) add_member(relocs);
        }
    }
}

} // namespace OFE
