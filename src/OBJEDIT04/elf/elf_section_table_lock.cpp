// Changing the membership of a section table, and taking it through lock, format and save. Lock
// gives the output its order: the null section, groups, program data, then tables; the order inside
// each class stays.
#include <cstring>

#include "OBJEDIT04/elf/elf32_rw.h"
#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/elf_group_table.h"
#include "OBJEDIT04/elf/elf_reloc.h"
#include "OBJEDIT04/elf/elf_scn_attr_table.h"
#include "OBJEDIT04/elf/elf_section.h"
#include "OBJEDIT04/elf/elf_section_table.h"
#include "OBJEDIT04/elf/elf_string_table.h"
#include "OBJEDIT04/elf/elf_symbol.h"
#include "OBJEDIT04/elf/elf_symbol_table.h"
#include "OBJEDIT04/elf/segments/elf_segment_table.h"
#include "OBJEDIT04/machine/machine_db.h"
#include "UTIL/data_map.h"

namespace OFE {

ELF_SECTION* ELF_SECTION_TABLE::new_null_section() {
    auto* s = static_cast<ELF_SECTION*>(OF_SECTION_TABLE::new_section(""));
    if (s) any_loaded_ = true;
    return s;
}

// The first section of a new file comes after the null section, so that no section has index 0.
OF_SECTION* ELF_SECTION_TABLE::new_section(const char* name) {
    if (max_state(OF_STATE_OPEN) != 0) return nullptr;
    if (scnnum() == 0 && !new_null_section()) return nullptr;
    const char* borne = machine_special_section_name(name ? name : "");
    auto* s = static_cast<ELF_SECTION*>(OF_SECTION_TABLE::new_section(borne));
    if (!s) return nullptr;
    any_loaded_ = true;
    const ELF_SPECIAL_SECTION* row = special_section(name ? name : "");
    Elf32_Shdr& h = s->header();
    h.sh_type = row ? row->type : unsigned{SHT_PROGBITS};
    h.sh_flags = row ? row->flags : unsigned{SHF_ALLOC};
    h.sh_entsize = row ? row->entsize : 0;
    h.sh_addralign = h.sh_entsize >= 4 ? 4 : 1;
    if (std::strncmp(borne, ".debug", 6) == 0) h.sh_flags &= ~unsigned{SHF_ALLOC};
    s->set_unit_size(name ? name : "");
    if (!group_of_.empty()) group_of_.resize(scnnum());
    return s;
}

OF_GROUP_TABLE* ELF_SECTION_TABLE::new_group(const char* name) {
    if (max_state(OF_STATE_OPEN) != 0) return nullptr;
    auto* s = static_cast<ELF_SECTION*>(new_section(".group"));
    if (!s) return nullptr;
    s->header().sh_type = SHT_GROUP;
    s->header().sh_flags = 0;
    s->header().sh_entsize = 4;
    s->header().sh_addralign = 4;
    elf_file()->elf_symbol_table();
    s->header().sh_link = elf_file()->symtab_index();
    s->set_name(name ? name : ".group");
    s->set_unit_size(8);
    return s->group_table_api();
}

int ELF_SECTION_TABLE::delete_section(unsigned id) {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    if (id >= scnnum()) return -1;
    if (is_deleted(id)) return 0;
    for (unsigned i = 0, n = raw_reloc_table_num(id); i < n; ++i)
        if (OF_SECTION_TABLE::delete_section(reloc_section(id, i)) != 0) return -1;
    if (sections_[id]) elf_file()->forget_companions(static_cast<ELF_SECTION*>(sections_[id]));
    Elf32_Shdr h;
    if (raw_header(id, h)) {
        if (h.sh_type == SHT_REL || h.sh_type == SHT_RELA) relocs_found_ = false;
        if (h.sh_type == SHT_GROUP) drop_group(id);
        if (h.sh_type == SHT_SYMTAB && elf_file()->symtab_index() == id)
            elf_file()->set_symtab_index(0);
    }
    return OF_SECTION_TABLE::delete_section(id);
}

// The group's members are on their own from now on.
void ELF_SECTION_TABLE::drop_group(unsigned id) {
    auto* s = static_cast<ELF_SECTION*>(sections_[id]);
    OF_GROUP_TABLE* group = s ? static_cast<OF_GROUP_TABLE*>(s->group_table_api()) : nullptr;
    for (unsigned i = 0; group && i < group->member_num(); ++i) {
        unsigned m = group->member_id(i);
        if (m < group_of_.size() && group_of_[m] == group) group_of_[m] = nullptr;
        if (m < sections_.size() && sections_[m] && !is_deleted(m) &&
            sections_[m]->group() == group)
            sections_[m]->clear_group();
    }
}

int ELF_SECTION_TABLE::purge_deleted_sections() {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    if (!has_deleted()) return 0;
    if (load_all_sections_into_mem() != 0) return -1;
    resolve_group_refs();
    if (ELF_SYMBOL_TABLE* symbols = elf_file()->elf_symbol_table())
        symbols->purge_deleted_symbols();
    ELF_SEGMENT_TABLE* segments = elf_file()->segment_table();
    if (segments->load_all_segments_into_mem() != 0 || segments->purge_deleted_seg_objects() != 0)
        return -1;
    return OF_SECTION_TABLE::purge_deleted_sections();
}

int ELF_SECTION_TABLE::set_shstrndx(unsigned i) {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    store_shstrndx(i);
    return 0;
}

void ELF_SECTION_TABLE::store_shstrndx(unsigned i) {
    Elf32_Ehdr& ehdr = elf_file()->header();
    ELF_SECTION* first = elf_section(0);
    bool extended = i >= SHN_LORESERVE;
    if (first && (extended || ehdr.e_shstrndx == SHN_XINDEX))
        first->header().sh_link = extended ? i : 0;
    ehdr.e_shstrndx = static_cast<uint16_t>(extended ? unsigned{SHN_XINDEX} : i);
}

ELF_SECTION* ELF_SECTION_TABLE::create_string_table() {
    auto* s = static_cast<ELF_SECTION*>(new_section(".shstrtab"));
    if (s) set_shstrndx(s->id());
    return s;
}

ELF_STRING_TABLE* ELF_SECTION_TABLE::string_table() {
    unsigned i = shstrndx();
    ELF_SECTION* s = i ? elf_section(i) : nullptr;
    if (!s && own_state() == OF_STATE_OPEN) s = create_string_table();
    return s ? s->string_table_api() : nullptr;
}

namespace {

// A reference to a section as the map has it: 0 when the section is gone.
unsigned translated(unsigned id, const RECORD_MAP<unsigned>& map) {
    unsigned to = id < map.size() ? map[id] : OF_DELETED;
    return to == OF_DELETED ? 0 : to;
}

bool info_is_section(const Elf32_Shdr& h) {
    return h.sh_type == SHT_REL || h.sh_type == SHT_RELA || (h.sh_flags & SHF_INFO_LINK);
}

// Types that this layer does not know name their companions by sh_link, too. Section 0 keeps a
// count.
bool link_is_section(const Elf32_Shdr& h) {
    switch (h.sh_type) {
    case SHT_NULL:
        return false;
    case SHT_PROGBITS:
    case SHT_NOBITS:
    case SHT_STRTAB:
    case SHT_NOTE:
        return h.sh_flags & SHF_LINK_ORDER;
    default:
        return true;
    }
}

} // namespace

int ELF_SECTION_TABLE::patch_section_refs() {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    if (!translations_pending_) return 0;
    const RECORD_MAP<unsigned> map = translations();
    ELF_FILE* file = elf_file();
    Elf32_Ehdr& ehdr = file->header();
    ehdr.e_shentsize = static_cast<uint16_t>(section_header_size());
    ehdr.e_shnum = static_cast<uint16_t>(scnnum() < SHN_LORESERVE ? scnnum() : 0);
    if (unsigned strings = shstrndx()) store_shstrndx(translated(strings, map));
    file->translate_cached_indices(map);
    for (unsigned i = 0; i < scnnum(); ++i) {
        Elf32_Shdr& h = elf_section(i)->header();
        if (info_is_section(h)) h.sh_info = translated(h.sh_info, map);
        if (link_is_section(h)) h.sh_link = translated(h.sh_link, map);
    }
    for (unsigned i = 0; i < scnnum(); ++i) {
        ELF_SECTION* s = elf_section(i);
        if (ELF_SYMBOL_TABLE* symbols = s->symbol_table_api()) symbols->update_section_refs(map);
        if (ELF_GROUP_TABLE* group = s->group_table_api()) group->update_section_refs(map);
    }
    file->segment_table()->update_section_refs(map);
    relocs_found_ = false;
    group_of_.clear(); // every section is loaded and knows its group
    return OF_SECTION_TABLE::patch_section_refs();
}

int ELF_SECTION_TABLE::progress_to_state(OF_STATE target) {
    switch (target) {
    case OF_STATE_LOCKED:
        return lock_sections();
    case OF_STATE_FORMATTED: {
        int result = 0;
        for (unsigned i = 0; i < scnnum(); ++i) result |= section(i)->set_state(OF_STATE_FORMATTED);
        return result;
    }
    case OF_STATE_SAVED:
        return save();
    default:
        return 0;
    }
}

int ELF_SECTION_TABLE::revert_to_state(OF_STATE target) {
    if (target != OF_STATE_OPEN) return 0;
    int result = 0;
    for (unsigned i = 0; i < scnnum(); ++i) result |= section(i)->reset_state(OF_STATE_OPEN);
    return result;
}

int ELF_SECTION_TABLE::lock_section_table_entries() {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    if (load_all_sections_into_mem() != 0 || purge_deleted_sections() != 0) return -1;
    resolve_group_refs();
    const char* tool = OBJECT_FILE::tool_name_m;
    if (std::strcmp(tool, "Assembler") == 0 || std::strcmp(tool, "Linker") == 0)
        for (int kind = 0; kind < QV_SH_ATTR_KINDS; ++kind)
            if (ELF_SCN_ATTR_TABLE* table = elf_file()->qv_sh_attr_api(kind, true))
                table->reset_state(OF_STATE_OPEN);
    ofile()->machine_db()->elf_lock_section_table(this);
    make_lock_sections();
    for (unsigned i = 0; i < scnnum(); ++i) {
        ELF_GROUP_TABLE* group = elf_section(i)->group_table_api();
        if (group && group->live_member_num() != 0)
            group->add_reloc_sections();
        else if (group)
            delete_section(i);
    }
    if (purge_deleted_sections() != 0) return -1;
    return lock_section_ordering();
}

// The sections that locking fills: names, strings of symbols, extended indices. Made while sections
// can still be added.
void ELF_SECTION_TABLE::make_lock_sections() {
    string_table();
    for (unsigned i = 0; i < scnnum(); ++i) {
        ELF_SYMBOL_TABLE* symbols = elf_section(i)->symbol_table_api();
        if (!symbols) continue;
        symbols->string_table();
        if (elf_section(i)->sh_type() != SHT_SYMTAB || scnnum() < SHN_LORESERVE ||
            symbols->shndx_table())
            continue;
        auto* indices = static_cast<ELF_SECTION*>(new_section(".symtab_shndx"));
        if (indices) indices->header().sh_link = i;
    }
}

int ELF_SECTION_TABLE::lock_section_ordering() {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    if (scnnum() == 0 || elf_section(0)->sh_type() != SHT_NULL) {
        if (scnnum() != 0) ofile()->set_error(OF_ERROR_INTERNAL, "section 0 is not a NULL section");
        ELF_SECTION* null = new_null_section();
        if (!null) return -1;
        sections_.pop_back();
        sections_.insert(sections_.begin(), null);
    }
    auto class_of = [](ELF_SECTION* s) {
        if (s->sh_type() == SHT_GROUP) return 1;
        return s->progbits_type() || s->sh_type() == SHT_NOBITS ? 2 : 3;
    };
    std::vector<OF_SECTION*> ordered{sections_[0]};
    ordered.reserve(scnnum());
    for (int wanted = 1; wanted <= 3; ++wanted)
        for (unsigned i = 1; i < scnnum(); ++i)
            if (class_of(static_cast<ELF_SECTION*>(sections_[i])) == wanted)
                ordered.push_back(sections_[i]);
    RECORD_MAP<unsigned> map(scnnum());
    bool changed = false;
    for (unsigned i = 0; i < ordered.size(); ++i) {
        unsigned old = ordered[i]->id();
        changed |= old != i;
        if (old < map.size()) map[old] = i;
        ordered[i]->set_id(i);
    }
    sections_ = std::move(ordered);
    if (!changed) return 0;
    return update_translations(map) != 0 || patch_section_refs() != 0 ? -1 : 0;
}

// Symbol tables come first, since they add strings; string tables when all names are in; attributes
// last.
int ELF_SECTION_TABLE::lock_sections() {
    ELF_FILE* file = elf_file();
    ELF_STRING_TABLE* names = string_table();
    bool names_shared = false;
    int result = 0;
    for (unsigned i = 0; i < scnnum(); ++i) {
        ELF_SECTION* s = elf_section(i);
        unsigned type = s->sh_type();
        if (type != SHT_SYMTAB && type != SHT_DYNSYM && type != SHT_DYNAMIC) continue;
        result |= s->set_state(OF_STATE_LOCKED);
        if (ELF_SYMBOL_TABLE* symbols = s->symbol_table_api())
            names_shared |= symbols->string_table() == names;
    }
    for (unsigned i = 0; i < scnnum(); ++i) {
        ELF_SECTION* s = elf_section(i);
        if (s->sh_type() != SHT_STRTAB && !s->is_ext_attr_section())
            result |= s->set_state(OF_STATE_LOCKED);
    }
    if (names) {
        if (!names_shared) names->clear();
        for (unsigned i = 0; i < scnnum(); ++i)
            elf_section(i)->header().sh_name = names->add_string(section(i)->name());
    }
    for (unsigned i = 0; i < scnnum(); ++i)
        if (elf_section(i)->sh_type() == SHT_STRTAB)
            result |= section(i)->set_state(OF_STATE_LOCKED);
    for (unsigned i = 0; i < scnnum(); ++i)
        if (elf_section(i)->is_ext_attr_section()) result |= section(i)->set_state(OF_STATE_LOCKED);
    if (scnnum() >= SHN_LORESERVE || elf_section(0)->header().sh_size)
        elf_section(0)->header().sh_size = scnnum() >= SHN_LORESERVE ? scnnum() : 0;
    file->header().e_shnum = static_cast<uint16_t>(scnnum() < SHN_LORESERVE ? scnnum() : 0);
    return result;
}

uint64_t ELF_SECTION_TABLE::format_sections(uint64_t offset) {
    unsigned unit = elf_file()->unit_bytes();
    for (unsigned i = 0; i < scnnum(); ++i) {
        ELF_SECTION* s = elf_section(i);
        Elf32_Shdr& h = s->header();
        if (s->in_segment() || h.sh_type == SHT_NULL) continue;
        if (s->allocated()) {
            offset = ELF_FILE::aligned_offset(offset, h.sh_addr * unit, h.sh_addralign * unit);
        } else {
            switch (h.sh_type) {
            case SHT_SYMTAB:
            case SHT_RELA:
            case SHT_HASH:
            case SHT_DYNAMIC:
            case SHT_REL:
            case SHT_DYNSYM:
            case SHT_GROUP:
            case SHT_SYMTAB_SHNDX:
                offset = ELF_FILE::aligned_offset(offset, 0, 4);
                break;
            default:
                break;
            }
        }
        bool nowhere = !s->allocated() && h.sh_size == 0 && !s->keeps_offset();
        h.sh_offset = nowhere ? 0 : static_cast<unsigned>(offset);
        offset += s->file_bytes_size();
    }
    return offset;
}

uint64_t ELF_SECTION_TABLE::format_section_headers(uint64_t offset) {
    offset = ELF_FILE::aligned_offset(offset, 0, 4);
    file_offset_ = static_cast<unsigned>(offset);
    return offset + uint64_t{scnnum()} * section_header_size();
}

int ELF_SECTION_TABLE::save() {
    if (scnnum() == 0) return 0;
    int result = 0;
    if (elf_file()->generate_section_headers()) {
        std::vector<uint8_t> bytes(size_t{scnnum()} * ELF_SHENTSIZE);
        for (unsigned i = 0; i < scnnum(); ++i)
            store_Elf32_Shdr(&bytes[size_t{i} * ELF_SHENTSIZE], elf_section(i)->header(),
                             elf_file()->swap());
        result = ofile()->put_file_bytes(bytes.data(), bytes.size(), file_offset_);
    }
    for (unsigned i = 0; i < scnnum(); ++i) result |= section(i)->set_state(OF_STATE_SAVED);
    return result;
}

} // namespace OFE
