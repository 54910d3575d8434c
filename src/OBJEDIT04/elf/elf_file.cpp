// The header of an ELF file, what it says of the file, and the reading of the two tables it names.
#include "OBJEDIT04/elf/elf_file.h"

#include <cstring>

#include "OBJEDIT04/attributes/build_attr_table.h"
#include "OBJEDIT04/elf/elf32_rw.h"
#include "OBJEDIT04/elf/elf_scn_attr_table.h"
#include "OBJEDIT04/elf/elf_section.h"
#include "OBJEDIT04/elf/elf_section_table.h"
#include "OBJEDIT04/elf/elf_symalias_table.h"
#include "OBJEDIT04/elf/elf_symbol_table.h"
#include "OBJEDIT04/elf/segments/elf_seg_attr.h"
#include "OBJEDIT04/elf/segments/elf_segment_table.h"
#include "OBJEDIT04/machine/machine_db.h"

namespace OFE {

ELF_FILE* elf_api(OBJECT_FILE* file) {
    if (!file) return nullptr;
    if (file->format() == OF_FORMAT_ELF) return static_cast<ELF_FILE*>(file);
    file->set_error(OF_ERROR_CORRUPT, "attempting to get ELF interface for non-ELF file");
    return nullptr;
}

ELF_FILE::ELF_FILE(const OF_FILE_HANDLE& handle, OF_ERROR_HANDLER handler)
    : OBJECT_FILE(handle, handler) {
    set_format(OF_FORMAT_ELF);
    reset_header();
    ehdr_.e_type = ET_REL;
    ehdr_.e_machine = static_cast<uint16_t>(handle.machine == OF_MACHINE_ARM ? EM_ARM
                                            : handle.machine >= OF_MACHINE_OTHER
                                                ? handle.machine - OF_MACHINE_OTHER
                                                : 0);
    if (handle.endian != OF_ENDIAN_NONE)
        ehdr_.e_ident[EI_DATA] = static_cast<uint8_t>(handle.endian);
    set_machine_db(handle.machine);
    sections_ = std::make_unique<ELF_SECTION_TABLE>(this);
    segments_ = std::make_unique<ELF_SEGMENT_TABLE>(this);
}

ELF_FILE::~ELF_FILE() = default;

void ELF_FILE::reset_header() {
    uint16_t machine = ehdr_.e_machine;
    ehdr_ = {};
    std::memcpy(ehdr_.e_ident, "\177ELF\1\1\1", 7);
    ehdr_.e_machine = machine;
    ehdr_.e_version = 1;
    ehdr_.e_ehsize = ELF_EHSIZE;
    ehdr_.e_phentsize = ELF_PHENTSIZE;
    ehdr_.e_shentsize = ELF_SHENTSIZE;
}

int ELF_FILE::clear() {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    uint8_t data = ehdr_.e_ident[EI_DATA];
    reset_header();
    ehdr_.e_ident[EI_DATA] = data;
    ehdr_.e_type = ET_REL;
    segments_->clear();
    sections_->clear();
    symtab_index_ = build_attr_index_ = build_attr_searched_ = 0;
    symtab_searched_ = symalias_searched_ = elf_header_in_segment_ = false;
    symalias_ = nullptr;
    seg_attr_db_.reset();
    seg_attr_searched_ = 0;
    scnrel_computed_ = false;
    for (int kind = 0; kind < QV_SH_ATTR_KINDS; ++kind) {
        attr_sections_[kind] = nullptr;
        attr_searched_[kind] = false;
    }
    clear_error();
    return 0;
}

int ELF_FILE::load(OF_FILE_HANDLE handle) {
    if (max_state(OF_STATE_OPEN) != 0 || take_input(handle) != 0) return -1;
    set_format(OF_FORMAT_ELF);
    if (image_.size < ELF_EHSIZE || std::memcmp(image_.data, "\177ELF", 4) != 0) {
        set_error(OF_ERROR_FORMAT, "the ELF header is truncated");
        return -1;
    }
    Elf32_Ehdr ehdr;
    load_Elf32_Ehdr(image_.data, ehdr, false);
    unsigned data = ehdr.e_ident[EI_DATA];
    if (ehdr.e_ident[EI_CLASS] != 1 || (data != OF_ENDIAN_LITTLE && data != OF_ENDIAN_BIG)) {
        set_error(OF_ERROR_FORMAT, "class %u with data encoding %u is not supported",
                  ehdr.e_ident[EI_CLASS], data);
        return -1;
    }
    ehdr_ = ehdr;
    if (swap()) swap_Elf32_Ehdr(ehdr_);
    unsigned count = ehdr_.e_shnum;
    if (count == 0 && ehdr_.e_shoff != 0) {
        if (!in_image(ehdr_.e_shoff, ELF_SHENTSIZE)) {
            set_error(OF_ERROR_CORRUPT,
                      "the section header table at offset 0x%x is beyond the end of the file",
                      ehdr_.e_shoff);
            return -1;
        }
        Elf32_Shdr first;
        load_Elf32_Shdr(image_.data + ehdr_.e_shoff, first, swap());
        count = first.sh_size;
    }
    if (sections_->load(ehdr_.e_shoff, ehdr_.e_shentsize, count) < 0) return -1;
    return segments_->load(ehdr_.e_phoff, ehdr_.e_phentsize, ehdr_.e_phnum) < 0 ? -1 : 0;
}

OF_FORMAT_VER ELF_FILE::format_version() const {
    return ehdr_.e_version == 1 ? OF_FORMAT_VER_ELF1 : OF_FORMAT_VER_UNKNOWN;
}

OF_FILE_TYPE ELF_FILE::file_type() const {
    return ehdr_.e_type >= ET_REL && ehdr_.e_type <= ET_CORE
               ? static_cast<OF_FILE_TYPE>(ehdr_.e_type)
               : OF_FILE_TYPE_NONE;
}

int ELF_FILE::set_file_type(OF_FILE_TYPE type) {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    bool known = type >= OF_FILE_TYPE_RELOCATABLE && type <= OF_FILE_TYPE_CORE;
    ehdr_.e_type = static_cast<uint16_t>(known ? type : 0);
    if (known) return 0;
    set_error(OF_ERROR_ILLEGAL, "invalid file type");
    return -1;
}

OF_MACHINE ELF_FILE::machine() const {
    return ehdr_.e_machine == EM_ARM ? OF_MACHINE_ARM
                                     : static_cast<OF_MACHINE>(OF_MACHINE_OTHER + ehdr_.e_machine);
}

OF_ENDIAN ELF_FILE::machine_endian() const {
    return static_cast<OF_ENDIAN>(ehdr_.e_ident[EI_DATA]);
}

int ELF_FILE::set_machine_endian(OF_ENDIAN e) {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    bool known = e == OF_ENDIAN_LITTLE || e == OF_ENDIAN_BIG;
    ehdr_.e_ident[EI_DATA] = static_cast<uint8_t>(known ? e : 0);
    if (known) return 0;
    set_error(OF_ERROR_ILLEGAL, "invalid endian setting");
    return -1;
}

int ELF_FILE::set_entry_point(unsigned addr) {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    ehdr_.e_entry = addr;
    return 0;
}

int ELF_FILE::set_flags(unsigned flags) {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    ehdr_.e_flags = flags;
    return 0;
}

unsigned ELF_FILE::unit_bytes() const {
    return machine_db()->unit_size() / 8;
}

// Made of the image of a program: a symbol says so. The names are searched as text first, since
// nearly no file has it.
bool ELF_FILE::is_load_image_file() {
    ELF_SYMBOL_TABLE* symbols = symtab_index() ? elf_symbol_table() : nullptr;
    return symbols && symbols->may_have_name(load_image_symbol_name()) &&
           symbols->symbol_name(load_image_symbol_name(), load_image_index());
}

bool ELF_FILE::is_icode_present() {
    if (icode_flag() == ICODE_UNKNOWN)
        set_icode_flag(sections_->lookup_section_by_name(ELF_ICODE_SECTION_NAME) ? ICODE_PRESENT
                                                                                 : ICODE_ABSENT);
    return icode_flag() == ICODE_PRESENT;
}

bool ELF_FILE::has_dynamic_linkage() {
    if (ehdr_.e_type != ET_DYN && ehdr_.e_type != ET_EXEC) return false;
    return segments_->segment_type(PT_DYNAMIC, 0) != nullptr;
}

int ELF_FILE::set_generate_section_headers(bool on) {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    generate_section_headers_ = on;
    return 0;
}

OF_SECTION_TABLE* ELF_FILE::section_table() {
    return sections_.get();
}
ELF_SECTION_TABLE* ELF_FILE::elf_section_table() {
    return sections_.get();
}
ELF_SEGMENT_TABLE* ELF_FILE::segment_table() {
    return segments_.get();
}
OF_SYMBOL_TABLE* ELF_FILE::symbol_table() {
    return elf_symbol_table();
}

unsigned ELF_FILE::symtab_index() {
    if (!symtab_searched_) {
        symtab_searched_ = true;
        symtab_index_ = sections_->lookup_section_by_type(SHT_SYMTAB);
    }
    return symtab_index_;
}

ELF_SYMBOL_TABLE* ELF_FILE::elf_symbol_table() {
    if (symtab_index() == 0) {
        if (is_input() || own_state() != OF_STATE_OPEN) return nullptr;
        if (sections_->scnnum() == 0) sections_->new_null_section();
        OF_SECTION* s = sections_->new_section(".symtab");
        if (!s) return nullptr;
        symtab_index_ = s->id();
    }
    return sections_->elf_section(symtab_index_)->symbol_table_api();
}

OF_SYMBOL_TABLE* ELF_FILE::dynamic_symbol_table() {
    unsigned i = sections_->lookup_section_by_type(SHT_DYNSYM);
    return i ? sections_->elf_section(i)->symbol_table_api() : nullptr;
}

// The first vendor that has a subsection of its own; the processor's public one is nobody's.
const char* ELF_FILE::vendor() {
    OF_BUILD_ATTR_TABLE* table = build_attributes_exist() ? build_attributes() : nullptr;
    const char* abi = machine_db()->ofba_abi_scn_name();
    for (unsigned i = 0; table && i < table->vscn_num(); ++i)
        if (!abi || std::strcmp(table->vscn(i)->name(), abi) != 0) return table->vscn(i)->name();
    return nullptr;
}

bool ELF_FILE::build_attributes_supported() const {
    bool supported = false;
    return machine_db()->of_supports_build_attributes(const_cast<ELF_FILE*>(this), supported) &&
           supported;
}

// Looked for from the end, where it stands as a rule, and again when there are more sections than
// at the last search.
unsigned ELF_FILE::build_attr_index() {
    if (build_attr_index_ != 0 && sections_->is_deleted(build_attr_index_)) build_attr_index_ = 0;
    if (build_attr_index_ == 0 && build_attr_searched_ != sections_->scnnum()) {
        build_attr_searched_ = sections_->scnnum();
        if (!build_attributes_supported()) return 0;
        Elf32_Shdr h;
        for (unsigned i = sections_->scnnum(); build_attr_index_ == 0 && i-- > 1;)
            if (sections_->raw_header(i, h) && h.sh_type == SHT_ATTRIBUTES &&
                !sections_->is_deleted(i))
                build_attr_index_ = i;
    }
    return build_attr_index_;
}

OF_BUILD_ATTR_TABLE* ELF_FILE::build_attributes() {
    if (build_attr_index() == 0) {
        if (is_input() || own_state() != OF_STATE_OPEN || !build_attributes_supported())
            return nullptr;
        OF_SECTION* s = sections_->new_section("__QV_build_attributes");
        if (!s) return nullptr;
        build_attr_index_ = s->id();
    }
    ELF_SECTION* s = sections_->elf_section(build_attr_index_);
    OF_BUILD_ATTR_TABLE* table = s ? s->build_attr_api() : nullptr;
    if (table) table->load();
    return table;
}

ELF_SECTION* ELF_FILE::find_attr_section(int kind) {
    OF_MACHINE_DB* db = machine_db();
    unsigned i = db->elf_match_qv_sh_attr_type(kind)
                     ? sections_->lookup_section_by_type(db->elf_qv_sh_attr_type(kind))
                     : sections_->lookup_section_by_name(db->elf_qv_sh_attr_name(kind));
    return i ? sections_->elf_section(i) : nullptr;
}

ELF_SECTION* ELF_FILE::qv_sh_attr_section(int kind, bool create) {
    if (attr_sections_[kind]) return attr_sections_[kind];
    if (!create && attr_searched_[kind]) return nullptr;
    if (!machine_db()->elf_supports_qv_sh_attr(kind)) return nullptr;
    if (!attr_searched_[kind]) {
        attr_searched_[kind] = true;
        attr_sections_[kind] = find_attr_section(kind);
    }
    if (!attr_sections_[kind] && create)
        attr_sections_[kind] = static_cast<ELF_SECTION*>(
            sections_->new_section(machine_db()->elf_qv_sh_attr_name(kind)));
    return attr_sections_[kind];
}

ELF_SCN_ATTR_TABLE* ELF_FILE::qv_sh_attr_api(int kind, bool create) {
    ELF_SECTION* s = qv_sh_attr_section(kind, create);
    return s ? s->scn_attr_table_api(kind) : nullptr;
}

ELF_SYMALIAS_TABLE* ELF_FILE::symalias_table(bool create) {
    if (symalias_) return symalias_;
    if (!create && symalias_searched_) return nullptr;
    symalias_searched_ = true;
    unsigned i = sections_->lookup_section_by_name(ELF_SYMALIAS_SECTION_NAME);
    ELF_SECTION* s = i ? sections_->elf_section(i) : nullptr;
    if (!s && create)
        s = static_cast<ELF_SECTION*>(sections_->new_section(ELF_SYMALIAS_SECTION_NAME));
    if (s) symalias_ = s->symalias_api();
    return symalias_;
}

// Looked for again when there are more segments than at the last search.
bool ELF_FILE::has_seg_attr_db() {
    if (seg_attr_db_) return true;
    if (seg_attr_searched_ == segments_->segnum()) return false;
    seg_attr_searched_ = segments_->segnum();
    for (unsigned short i = 0; i < segments_->segnum(); ++i)
        if (segments_->segment_header(i)->p_type == machine_db()->seg_attr_p_type() &&
            !segments_->is_deleted(i)) {
            seg_attr_db_ = std::make_unique<ELF_SEG_ATTR_DB>(this);
            return true;
        }
    return false;
}

ELF_SEG_ATTR_DB* ELF_FILE::seg_attr_db() {
    return has_seg_attr_db() ? seg_attr_db_.get() : nullptr;
}

// Files of this vendor's older tools count the values of symbols from 0 instead of from the start
// of their section: a section symbol that is not at 0 gives them away. What is built in memory
// counts from the section.
bool ELF_FILE::compute_scnrel() {
    if (!is_input()) return true;
    scnrel_computed_ = true;
    scnrel_ = true;
    const char* maker = vendor();
    OF_SYMBOL_TABLE* symbols =
        maker && std::strcmp(maker, OFBA_VENDOR_QV) == 0 ? elf_symbol_table() : nullptr;
    OF_RAW_SYMBOL s;
    for (unsigned i = 1; symbols && scnrel_ && i < symbols->symnum(); ++i)
        if (symbols->raw_symbol(i, s) && s.type == OF_SYM_TYPE_SECTION)
            scnrel_ = s.section_id == OF_RAW_SYMBOL::NO_SECTION || s.value == 0;
    return scnrel_;
}

void ELF_FILE::translate_cached_indices(const RECORD_MAP<unsigned>& map) {
    for (unsigned* index : {&symtab_index_, &build_attr_index_}) {
        unsigned to = *index < map.size() ? map[*index] : OF_DELETED;
        if (*index != 0) *index = to == OF_DELETED ? 0 : to;
    }
}

void ELF_FILE::forget_companions(ELF_SECTION* section) {
    for (ELF_SECTION*& s : attr_sections_)
        if (s == section) s = nullptr;
    if (symalias_ && section->companion() == symalias_) symalias_ = nullptr;
    if (seg_attr_db_) seg_attr_db_->forget(section);
}

uint64_t ELF_FILE::aligned_offset(uint64_t offset, unsigned addr, unsigned align) {
    if (align == 0) align = 1;
    return offset + (uint64_t{addr % align} + align - offset % align) % align;
}

const char* ELF_FILE::ei_class_name(unsigned v) {
    return v == 1 ? "ELFCLASS32" : v == 2 ? "ELFCLASS64" : "ELFCLASSNONE";
}
const char* ELF_FILE::ei_data_name(unsigned v) {
    return v == 1 ? "ELFDATA2LSB" : v == 2 ? "ELFDATA2MSB" : "ELFDATANONE";
}
const char* ELF_FILE::e_type_name(unsigned v) {
    static constexpr const char* NAMES[] = {"ET_NONE", "ET_REL", "ET_EXEC", "ET_DYN", "ET_CORE"};
    return v <= ET_CORE ? NAMES[v] : "ET_UNKNOWN";
}
const char* ELF_FILE::e_machine_name(unsigned v) {
    return v == EM_ARM ? "EM_ARM" : "EM_UNKNOWN";
}

} // namespace OFE
