// Reading the section headers: in place, checked once when the file is loaded, so that later every
// offset, size, link and name index of a header can be used as it stands.
#include "OBJEDIT04/elf/elf_section_table.h"

#include <cstddef>
#include <cstring>

#include "OBJEDIT04/elf/elf32_rw.h"
#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/elf_group_table.h"
#include "OBJEDIT04/elf/elf_reloc.h"
#include "OBJEDIT04/elf/elf_scn_attr_table.h"
#include "OBJEDIT04/elf/elf_section.h"
#include "OBJEDIT04/elf/elf_string_table.h"
#include "OBJEDIT04/elf/elf_symbol_table.h"
#include "OBJEDIT04/machine/machine_db.h"
#include "UTIL/savestr.h"

namespace OFE {

ELF_SECTION_TABLE::ELF_SECTION_TABLE(ELF_FILE* file) : OF_SECTION_TABLE(file) {}
ELF_SECTION_TABLE::~ELF_SECTION_TABLE() = default;

ELF_FILE* ELF_SECTION_TABLE::elf_file() const {
    return static_cast<ELF_FILE*>(ofile());
}

ELF_SECTION* ELF_SECTION_TABLE::elf_section(unsigned id) {
    return static_cast<ELF_SECTION*>(section(id));
}

OF_SECTION* ELF_SECTION_TABLE::alloc_section(unsigned id) {
    return new ELF_SECTION(this, id);
}

void ELF_SECTION_TABLE::clear_data() {
    raw_ = nullptr;
    raw_count_ = raw_entsize_ = 0;
    names_ = nullptr;
    names_limit_ = 0;
    symbol_tables_ = 0;
    any_loaded_ = false;
    relocs_found_ = groups_resolved_ = false;
    reloc_first_.clear();
    reloc_list_.clear();
    group_of_.clear();
    raw_groups_.clear();
}

int ELF_SECTION_TABLE::clear() {
    clear_data();
    file_offset_ = 0;
    return OF_SECTION_TABLE::clear();
}

int ELF_SECTION_TABLE::load(unsigned offset, unsigned entsize, unsigned count) {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    clear();
    if (count == 0) return 0;
    ELF_FILE* file = elf_file();
    if (entsize < ELF_SHENTSIZE) {
        file->set_error(OF_ERROR_CORRUPT, "a section header of %u bytes is too small", entsize);
        return -1;
    }
    if (!file->in_image(offset, uint64_t{count} * entsize)) {
        file->set_error(OF_ERROR_CORRUPT,
                        "%u section headers at offset 0x%x are beyond the end of the file", count,
                        offset);
        return -1;
    }
    raw_ = file->image().data + offset;
    raw_count_ = count;
    raw_entsize_ = entsize;
    file_offset_ = offset;
    sections_.assign(count, nullptr);
    set_string_pool();
    if (check_headers() == 0) {
        // Attributes of sections are known before any section is used.
        for (int kind = 0; kind < QV_SH_ATTR_KINDS; ++kind)
            if (ELF_SCN_ATTR_TABLE* table = file->qv_sh_attr_api(kind, false)) table->load();
        return 0;
    }
    clear();
    return -1;
}

unsigned ELF_SECTION_TABLE::shstrndx() const {
    unsigned i = elf_file()->header().e_shstrndx;
    if (i != SHN_XINDEX) return i;
    Elf32_Shdr first;
    return raw_header(0, first) ? first.sh_link : 0;
}

// Offsets below the last NUL are those of terminated strings.
void ELF_SECTION_TABLE::set_string_pool() {
    Elf32_Shdr h;
    unsigned i = shstrndx();
    if (i == 0 || !raw_header(i, h) || h.sh_type != SHT_STRTAB) return;
    if (!elf_file()->in_image(h.sh_offset, h.sh_size)) return;
    names_ = reinterpret_cast<const char*>(elf_file()->image().data) + h.sh_offset;
    names_limit_ = terminated_size(names_, h.sh_size);
}

unsigned terminated_size(const char* pool, unsigned size) {
    while (size && pool[size - 1] != 0) --size;
    return size;
}

namespace {

// What sh_link and sh_info of a type must name.
bool link_is_section(unsigned type, unsigned flags) {
    switch (type) {
    case SHT_SYMTAB:
    case SHT_DYNSYM:
    case SHT_REL:
    case SHT_RELA:
    case SHT_HASH:
    case SHT_DYNAMIC:
    case SHT_GROUP:
    case SHT_SYMTAB_SHNDX:
        return true;
    default:
        return flags & SHF_LINK_ORDER;
    }
}

unsigned least_entsize(unsigned type) {
    switch (type) {
    case SHT_SYMTAB:
    case SHT_DYNSYM:
        return ELF_SYMSIZE;
    case SHT_REL:
        return ELF_RELSIZE;
    case SHT_RELA:
        return ELF_RELASIZE;
    case SHT_GROUP:
    case SHT_SYMTAB_SHNDX:
        return 4;
    default:
        return 0;
    }
}

// Compressed by the compiler. What is linked is unpacked, and seen unpacked from the start.
bool is_packed(const Elf32_Shdr& h) {
    return (h.sh_flags & SHF_COMPRESSED) && h.sh_type == SHT_PROGBITS && !(h.sh_flags & SHF_ALLOC);
}

} // namespace

int ELF_SECTION_TABLE::check_headers() {
    ELF_FILE* file = elf_file();
    unsigned strings = shstrndx();
    if (strings != 0 && !names_) {
        file->set_error(OF_ERROR_CORRUPT, "section %u does not hold the names of the sections",
                        strings);
        return -1;
    }
    for (unsigned i = 0; i < raw_count_; ++i) {
        Elf32_Shdr h;
        raw_header(i, h);
        const char* fault = nullptr;
        if (h.sh_type == SHT_NULL) continue;
        if (h.sh_type == SHT_GROUP && i != 0) raw_groups_.push_back(i);
        if (h.sh_type == SHT_SYMTAB || h.sh_type == SHT_DYNSYM) ++symbol_tables_;
        if (names_ && h.sh_name >= names_limit_)
            fault = "its name is outside of the string table";
        else if (h.sh_type != SHT_NOBITS && h.sh_size && !file->in_image(h.sh_offset, h.sh_size))
            fault = "its contents are beyond the end of the file";
        else if (h.sh_addralign & (h.sh_addralign - 1))
            fault = "its alignment is not a power of 2";
        else if (link_is_section(h.sh_type, h.sh_flags) && h.sh_link >= raw_count_)
            fault = "its sh_link names no section";
        else if ((h.sh_type == SHT_REL || h.sh_type == SHT_RELA) &&
                 (h.sh_info >= raw_count_ || h.sh_info == i))
            fault = "its sh_info names no section";
        else if (h.sh_entsize && h.sh_entsize < least_entsize(h.sh_type))
            fault = "its entries are too small";
        if (!fault && is_packed(h)) fault = packed_fault(h);
        if (!fault) continue;
        file->set_error(OF_ERROR_CORRUPT, "section %u (\"%s\") is damaged: %s", i,
                        names_ && h.sh_name < names_limit_ ? names_ + h.sh_name : "", fault);
        return -1;
    }
    return 0;
}

Elf32_Chdr ELF_SECTION_TABLE::packed_header(const Elf32_Shdr& h) const {
    Elf32_Chdr packed;
    load_Elf32_Chdr(elf_file()->image().data + h.sh_offset, packed, elf_file()->swap());
    return packed;
}

// A byte of a zlib stream makes at most 1032, so that no header asks for more memory than that.
const char* ELF_SECTION_TABLE::packed_fault(const Elf32_Shdr& h) const {
    if (h.sh_size < ELF_CHDRSIZE) return "it is too small for a compressed section";
    const Elf32_Chdr packed = packed_header(h);
    if (packed.ch_type != ELFCOMPRESS_ZLIB) return "it is compressed by another method than zlib";
    if (packed.ch_size / 1032 > h.sh_size) return "its unpacked size is too large";
    if (packed.ch_addralign & (packed.ch_addralign - 1)) return "its alignment is not a power of 2";
    return nullptr;
}

Elf32_Shdr ELF_SECTION_TABLE::unpacked_header(const Elf32_Shdr& h) const {
    const Elf32_Chdr packed = packed_header(h);
    Elf32_Shdr out = h;
    out.sh_flags &= ~unsigned{SHF_COMPRESSED};
    out.sh_size = packed.ch_size;
    out.sh_addralign = packed.ch_addralign;
    return out;
}

bool ELF_SECTION_TABLE::raw_header(unsigned id, Elf32_Shdr& out) const {
    if (id >= sections_.size()) return false;
    if (sections_[id]) {
        out = static_cast<ELF_SECTION*>(sections_[id])->header();
        return true;
    }
    load_Elf32_Shdr(raw_ + size_t{id} * raw_entsize_, out, elf_file()->swap());
    return true;
}

// One field, by its offset in the header, without a copy of the others.
unsigned ELF_SECTION_TABLE::header_word(unsigned id, size_t offset) const {
    const OF_SECTION* loaded = sections_[id];
    if (!loaded) return read_u32(raw_ + size_t{id} * raw_entsize_ + offset, elf_file()->big());
    unsigned word;
    const Elf32_Shdr& header = static_cast<const ELF_SECTION*>(loaded)->header();
    std::memcpy(&word, reinterpret_cast<const char*>(&header) + offset, sizeof word);
    return word;
}

const char* ELF_SECTION_TABLE::raw_name(unsigned id) {
    if (id >= sections_.size()) return "";
    if (sections_[id]) return sections_[id]->name();
    unsigned offset = read_u32(raw_ + size_t{id} * raw_entsize_, elf_file()->big());
    return offset < names_limit_ ? names_ + offset : "";
}

int ELF_SECTION_TABLE::load_section_into_mem(unsigned id) {
    if (!raw_ || id >= raw_count_) return -1;
    Elf32_Shdr h;
    raw_header(id, h);
    const char* name = raw_name(id);
    auto* s = new ELF_SECTION(this, id);
    if (is_packed(h))
        s->take_packed(unpacked_header(h), h.sh_size);
    else
        s->take_header(h);
    s->set_name_view(name);
    s->set_unit_size(name);
    sections_[id] = s;
    any_loaded_ = true;
    for (int kind = 0; kind < QV_SH_ATTR_KINDS; ++kind)
        if (ELF_SCN_ATTR_TABLE* table = elf_file()->qv_sh_attr_api(kind, false))
            s->set_ext_attr(kind, table->value(id));
    if (id < group_of_.size() && group_of_[id]) s->set_group(group_of_[id]);
    return 0;
}

bool ELF_SECTION_TABLE::raw_section(unsigned id, OF_RAW_SECTION& out) {
    Elf32_Shdr h;
    if (!raw_header(id, h)) return false;
    if (!sections_[id] && is_packed(h)) h = unpacked_header(h);
    out.name = raw_name(id);
    out.id = id;
    out.type = h.sh_type;
    out.flags = h.sh_flags;
    out.link = h.sh_link;
    out.info = h.sh_info;
    out.addr = h.sh_addr;
    out.align = h.sh_addralign;
    out.deleted = is_deleted(id);
    if (sections_[id]) {
        out.size = sections_[id]->size_in_bytes();
        out.ext_flags = sections_[id]->ext_flags();
    } else {
        out.size = h.sh_size;
        ELF_SCN_ATTR_TABLE* table = elf_file()->qv_sh_attr_api(QV_SH_ATTR_FLAGS, false);
        out.ext_flags = table ? table->value(id) : 0;
    }
    return true;
}

bool ELF_SECTION_TABLE::has_ext_flags() {
    ELF_SCN_ATTR_TABLE* table = elf_file()->qv_sh_attr_api(QV_SH_ATTR_FLAGS, false);
    return table && table->has_values();
}

OF_SECTION* ELF_SECTION_TABLE::section_name(const char* name, unsigned start) {
    for (unsigned i = start; i < scnnum(); ++i)
        if (std::strcmp(raw_name(i), name) == 0) return section(i);
    return nullptr;
}

bool ELF_SECTION_TABLE::names_contain(const char* text) const {
    return names_ && memmem(names_, names_limit_, text, std::strlen(text)) != nullptr;
}

// One search in the string pool spares a compare per section where the name does not occur at all.
unsigned ELF_SECTION_TABLE::lookup_section_by_name(const char* name) {
    if (names_ && !any_loaded_ && !memmem(names_, names_limit_, name, std::strlen(name) + 1))
        return 0;
    Elf32_Shdr h;
    for (unsigned i = 1; i < scnnum(); ++i)
        if (std::strcmp(raw_name(i), name) == 0 && raw_header(i, h) && h.sh_type != SHT_NULL &&
            !is_deleted(i))
            return i;
    return 0;
}

unsigned ELF_SECTION_TABLE::lookup_section_by_type(unsigned type) {
    Elf32_Shdr h;
    for (unsigned i = 1; i < scnnum(); ++i)
        if (raw_header(i, h) && h.sh_type == type && !is_deleted(i)) return i;
    return 0;
}

unsigned ELF_SECTION_TABLE::lookup_sym_section_by_type(unsigned link, unsigned type) {
    Elf32_Shdr h;
    for (unsigned i = 1; i < scnnum(); ++i)
        if (raw_header(i, h) && h.sh_type == type && h.sh_link == link && !is_deleted(i)) return i;
    return 0;
}

// Two walks over the headers: count the relocation sections of each section, then enter them.
void ELF_SECTION_TABLE::find_reloc_tables() {
    if (relocs_found_) return;
    relocs_found_ = true;
    reloc_first_.clear();
    reloc_list_.clear();
    Elf32_Shdr h;
    std::vector<std::pair<unsigned, unsigned>> found; // section relocated, relocation section
    for (unsigned i = 1; i < scnnum(); ++i)
        if (raw_header(i, h) && (h.sh_type == SHT_REL || h.sh_type == SHT_RELA) && h.sh_info &&
            h.sh_info < scnnum() && !is_deleted(i))
            found.emplace_back(h.sh_info, i);
    if (found.empty()) return;
    unsigned last = 0;
    for (auto& f : found) last = f.first > last ? f.first : last;
    reloc_first_.assign(last + 2, 0);
    for (auto& f : found) ++reloc_first_[f.first + 1];
    for (unsigned i = 0; i <= last; ++i) reloc_first_[i + 1] += reloc_first_[i];
    std::vector<unsigned> at(reloc_first_.begin(), reloc_first_.end() - 1);
    reloc_list_.resize(found.size());
    for (auto& f : found) reloc_list_[at[f.first]++] = f.second;
}

// Files are built section by section, each with its relocations: what comes last is appended.
void ELF_SECTION_TABLE::add_reloc_section(unsigned section_id, unsigned id) {
    if (!relocs_found_) return;
    const unsigned at = static_cast<unsigned>(reloc_list_.size());
    if (section_id + 2 < reloc_first_.size()) {
        relocs_found_ = false;
    } else if (section_id + 2 == reloc_first_.size()) {
        reloc_list_.push_back(id);
        reloc_first_.back() = at + 1;
    } else {
        reloc_first_.resize(section_id + 1, at);
        reloc_first_.push_back(at + 1);
        reloc_list_.push_back(id);
    }
}

unsigned ELF_SECTION_TABLE::raw_reloc_table_num(unsigned section_id) {
    find_reloc_tables();
    if (section_id == OF_DELETED || section_id + 1 >= reloc_first_.size() || is_deleted(section_id))
        return 0;
    return reloc_first_[section_id + 1] - reloc_first_[section_id];
}

unsigned ELF_SECTION_TABLE::reloc_section(unsigned section_id, unsigned table) {
    return table < raw_reloc_table_num(section_id) ? reloc_list_[reloc_first_[section_id] + table]
                                                   : 0;
}

// The symbol table that a relocation section counts in; null: none.
OF_SYMBOL_TABLE* ELF_SECTION_TABLE::linked_symbols(unsigned link) {
    if (link == elf_file()->symtab_index()) return elf_file()->elf_symbol_table();
    if (link >= scnnum()) return nullptr;
    const unsigned type = header_word(link, offsetof(Elf32_Shdr, sh_type));
    return type == SHT_SYMTAB || type == SHT_DYNSYM ? elf_section(link)->symbol_table_api()
                                                    : nullptr;
}

OF_RAW_RELOCS ELF_SECTION_TABLE::raw_relocs(unsigned section_id, unsigned table) {
    const unsigned id = reloc_section(section_id, table);
    if (id == 0) return {};
    const bool rela = header_word(id, offsetof(Elf32_Shdr, sh_type)) == SHT_RELA;
    const bool big = elf_file()->big();
    unsigned entsize = header_word(id, offsetof(Elf32_Shdr, sh_entsize));
    if (entsize == 0) entsize = rela ? ELF_RELASIZE : ELF_RELSIZE;
    const uint8_t* data = nullptr;
    size_t size = header_word(id, offsetof(Elf32_Shdr, sh_size));
    if (!sections_[id]) {
        data = elf_file()->image().data + header_word(id, offsetof(Elf32_Shdr, sh_offset));
    } else {
        ELF_RELOC_TABLE* t = elf_section(id)->reloc_table_api();
        size_t count = 0;
        if (t && t->raw_records(data, count)) {
            size = count * t->entry_size();
        } else if (t) { // changed in memory: encode what the objects hold
            t->encode(changed_relocs_);
            data = changed_relocs_.data();
            size = changed_relocs_.size();
            entsize = rela ? ELF_RELASIZE : ELF_RELSIZE;
        }
    }
    if (!data) return {};
    OF_SYMBOL_TABLE* symbols = linked_symbols(header_word(id, offsetof(Elf32_Shdr, sh_link)));
    return {data, static_cast<unsigned>(size / entsize), entsize, rela, big, id, symbols};
}

// Those of the file as read were noted when its headers were checked; once all sections are objects
// they may have moved.
std::vector<unsigned> ELF_SECTION_TABLE::group_sections() const {
    std::vector<unsigned> groups;
    if (!all_loaded_) groups = raw_groups_;
    for (unsigned i = all_loaded_ || raw_count_ == 0 ? 1 : raw_count_; i < scnnum(); ++i)
        if (header_word(i, offsetof(Elf32_Shdr, sh_type)) == SHT_GROUP) groups.push_back(i);
    return groups;
}

int ELF_SECTION_TABLE::resolve_group_refs() {
    if (groups_resolved_) return 0;
    groups_resolved_ = true;
    for (unsigned i : group_sections()) {
        if (is_deleted(i)) continue;
        ELF_GROUP_TABLE* group = elf_section(i)->group_table_api();
        if (group_of_.empty()) group_of_.assign(scnnum(), nullptr);
        for (unsigned m = 0; m < group->member_num(); ++m) {
            unsigned id = group->member_id(m);
            group_of_[id] = group;
            if (sections_[id]) sections_[id]->set_group(group);
        }
    }
    return 0;
}

OF_GROUP_TABLE* ELF_SECTION_TABLE::raw_group(unsigned section_id) {
    resolve_group_refs();
    if (section_id < sections_.size() && sections_[section_id])
        return sections_[section_id]->group();
    return section_id < group_of_.size() ? group_of_[section_id] : nullptr;
}

const char* ELF_SECTION_TABLE::machine_special_section_name(const char* name) {
    const char* special = nullptr;
    return ofile()->machine_db()->elf_special_section_name(this, name, special) && special ? special
                                                                                           : name;
}

} // namespace OFE
