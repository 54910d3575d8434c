// A section's attributes in terms of its header, its companion, and its steps through the states.
#include "OBJEDIT04/elf/elf_section.h"

#include <cstring>
#include <zlib.h>

#include "OBJEDIT04/attributes/build_attr_table.h"
#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/elf_group_table.h"
#include "OBJEDIT04/elf/elf_reloc.h"
#include "OBJEDIT04/elf/elf_scn_attr_table.h"
#include "OBJEDIT04/elf/elf_section_table.h"
#include "OBJEDIT04/elf/elf_string_table.h"
#include "OBJEDIT04/elf/elf_symalias_table.h"
#include "OBJEDIT04/elf/elf_symbol.h"
#include "OBJEDIT04/elf/elf_symbol_table.h"
#include "OBJEDIT04/elf/segments/elf_seg_attr.h"
#include "OBJEDIT04/elf/segments/elf_segment.h"
#include "OBJEDIT04/elf/segments/elf_segment_table.h"
#include "OBJEDIT04/machine/machine_db.h"
#include "UTIL/data_map.h"
#include "UTIL/savestr.h"

namespace OFE {

ELF_SECTION* elf_api(OF_SECTION* section) {
    if (!section || !elf_api(section->ofile())) return nullptr;
    return static_cast<ELF_SECTION*>(section);
}

namespace {

bool is_reloc_type(unsigned type) {
    return type == SHT_REL || type == SHT_RELA;
}

} // namespace

ELF_SECTION::ELF_SECTION(ELF_SECTION_TABLE* table, unsigned id) : OF_SECTION(table, id) {}
ELF_SECTION::~ELF_SECTION() = default;

ELF_FILE* ELF_SECTION::elf_file() const {
    return static_cast<ELF_FILE*>(ofile());
}
ELF_SECTION_TABLE* ELF_SECTION::elf_table() const {
    return static_cast<ELF_SECTION_TABLE*>(section_table());
}

unsigned ELF_SECTION::load_addr() {
    ELF_SEGMENT_TABLE* segments = elf_file()->segment_table();
    if (segments->segnum()) {
        ELF_SEGMENT* segment = segments->segment_section(this);
        if (segment && shdr_.sh_addr >= segment->header().p_vaddr)
            return segment->header().p_paddr + (shdr_.sh_addr - segment->header().p_vaddr);
    }
    return load_addr_ ? load_addr_ : run_addr();
}

int ELF_SECTION::set_load_addr(unsigned addr) {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    load_addr_ = addr;
    return 0;
}

int ELF_SECTION::set_run_addr(unsigned addr) {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    shdr_.sh_addr = addr;
    return 0;
}

int ELF_SECTION::set_page(unsigned page) {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    ext_attr_[QV_SH_ATTR_PAGE] = page;
    return 0;
}

int ELF_SECTION::set_ext_flags(unsigned flags) {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    ext_attr_[QV_SH_ATTR_FLAGS] = flags;
    return 0;
}

OF_SYMBOL* ELF_SECTION::create_section_symbol() {
    OF_SYMBOL* s = OF_SECTION::create_section_symbol();
    if (!s) return nullptr;
    s->set_binding(OF_SYM_BINDING_LOCAL);
    s->set_type(OF_SYM_TYPE_SECTION);
    s->set_value(elf_file()->values_are_scnrel() ? 0 : run_addr());
    return s;
}

int ELF_SECTION::set_align(unsigned align) {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    if (align & (align - 1)) {
        ofile()->set_error(OF_ERROR_ILLEGAL, "only powers of 2 are valid alignment values");
        return -1;
    }
    shdr_.sh_addralign = align;
    return 0;
}

int ELF_SECTION::set_blocked() {
    ofile()->machine_db()->set_blocked(this);
    return 0;
}

int ELF_SECTION::set_allocated(bool on) {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    shdr_.sh_flags = on ? shdr_.sh_flags | SHF_ALLOC : shdr_.sh_flags & ~unsigned{SHF_ALLOC};
    return 0;
}

int ELF_SECTION::take_special_row(const char* name, unsigned clear_flags) {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    const ELF_SPECIAL_SECTION* row = ELF_SECTION_TABLE::special_section(name);
    shdr_.sh_type = row->type;
    shdr_.sh_flags = (shdr_.sh_flags | row->flags) & ~clear_flags;
    return 0;
}

int ELF_SECTION::set_exec() {
    return take_special_row(".text", SHF_WRITE);
}
int ELF_SECTION::set_data() {
    return take_special_row(".data", SHF_EXECINSTR);
}
int ELF_SECTION::set_bss() {
    return take_special_row(".bss", SHF_EXECINSTR);
}

int ELF_SECTION::set_const_data() {
    int result = set_data();
    shdr_.sh_flags &= ~unsigned{SHF_WRITE};
    return result;
}

bool ELF_SECTION::is_ext_attr_section() const {
    OF_MACHINE_DB* db = ofile()->machine_db();
    for (int kind = 0; kind < QV_SH_ATTR_KINDS; ++kind) {
        if (!db->elf_supports_qv_sh_attr(kind)) continue;
        if (db->elf_match_qv_sh_attr_type(kind)
                ? shdr_.sh_type == db->elf_qv_sh_attr_type(kind)
                : std::strcmp(name(), db->elf_qv_sh_attr_name(kind)) == 0)
            return true;
    }
    return false;
}

bool ELF_SECTION::is_symalias_section() const {
    return std::strcmp(name(), ELF_SYMALIAS_SECTION_NAME) == 0;
}

bool ELF_SECTION::progbits_type() {
    if (shdr_.sh_type != SHT_PROGBITS) return false;
    if (name()[0] != '.' || name()[1] != 'Q') return true; // the names of both begin so
    return !is_ext_attr_section() && !is_symalias_section();
}

int ELF_SECTION::set_unit_size(unsigned bits) {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    unit_size_ = static_cast<unsigned char>(bits);
    return 0;
}

int ELF_SECTION::set_unit_size(const char* section_name) {
    const ELF_SPECIAL_SECTION* row = nullptr;
    unit_size_ = static_cast<unsigned char>(ofile()->machine_db()->unit_size());
    if (unit_size_ == 8) return 0; // no row says anything else
    if (shdr_.sh_type == SHT_GROUP)
        unit_size_ = 8;
    else if ((row = ELF_SECTION_TABLE::special_section(section_name)) && row->unit)
        unit_size_ = static_cast<unsigned char>(row->unit);
    return 0;
}

// The header's size is the truth until there are bytes in memory.
unsigned ELF_SECTION::size() {
    unsigned in_bytes = shdr_.sh_size;
    if (initialized() && has_raw_data() && !raw_data().empty())
        in_bytes = static_cast<unsigned>(raw_data().size());
    return in_bytes / (unit_size_ / 8u);
}

int ELF_SECTION::set_size(unsigned units) {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    uint64_t in_bytes = uint64_t{units} * (unit_size_ / 8u);
    if (in_bytes > 0xFFFFFFFFu) {
        ofile()->set_error(OF_ERROR_TRUNCATED, "the size of section \"%s\" does not fit", name());
        return -1;
    }
    shdr_.sh_size = static_cast<unsigned>(in_bytes);
    if (initialized() && has_raw_data() && !raw_data().empty()) raw_data().resize(in_bytes);
    return 0;
}

unsigned ELF_SECTION::file_bytes_size() {
    return initialized() ? size_in_bytes() : 0;
}

OF_BYTES ELF_SECTION::file_bytes() {
    if (!in_file_ || !initialized() || shdr_.sh_size == 0) return {};
    if (packed_) return unpacked_bytes();
    if (!ofile()->in_image(shdr_.sh_offset, shdr_.sh_size)) return {};
    return {ofile()->image().data + shdr_.sh_offset, shdr_.sh_size};
}

void ELF_SECTION::take_packed(const Elf32_Shdr& header, unsigned packed_size) {
    take_header(header);
    packed_ = std::make_unique<PACKED>(PACKED{packed_size, {}});
}

OF_BYTES ELF_SECTION::unpacked_bytes() {
    std::vector<uint8_t>& bytes = packed_->bytes;
    if (bytes.empty()) {
        bytes.resize(shdr_.sh_size);
        const uint8_t* packed = ofile()->image().data + shdr_.sh_offset;
        uLongf size = shdr_.sh_size;
        const int result =
            uncompress(bytes.data(), &size, packed + ELF_CHDRSIZE, packed_->size - ELF_CHDRSIZE);
        if (result != Z_OK || size != shdr_.sh_size)
            ofile()->set_error(OF_ERROR_CORRUPT, "section \"%s\" is damaged: it can't be unpacked",
                               name());
    }
    return {bytes.data(), bytes.size()};
}

int ELF_SECTION::clear() {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    companion_.reset();
    packed_.reset();
    drop_raw_data();
    shdr_ = {};
    in_file_ = false;
    load_addr_ = 0;
    return 0;
}

unsigned ELF_SECTION::reloc_table_num() {
    return elf_table()->raw_reloc_table_num(id_);
}

OF_RELOC_TABLE* ELF_SECTION::reloc_table(unsigned i) {
    ELF_SECTION* s = elf_table()->elf_section(elf_table()->reloc_section(id_, i));
    return s ? s->reloc_table_api() : nullptr;
}

OF_RELOC* ELF_SECTION::new_reloc(bool rela) {
    if (max_state(OF_STATE_OPEN) != 0) return nullptr;
    for (unsigned i = 0; i < reloc_table_num(); ++i) {
        OF_RELOC_TABLE* table = reloc_table(i);
        if (table && table->is_rela() == rela) return table->new_reloc();
    }
    ELF_FILE* file = elf_file();
    if (!file->elf_symbol_table()) return nullptr;
    auto* s = static_cast<ELF_SECTION*>(
        elf_table()->new_section(savestrf("%s%s", rela ? ".rela" : ".rel", name())));
    if (!s) return nullptr;
    Elf32_Shdr& h = s->header();
    h.sh_type = rela ? SHT_RELA : SHT_REL;
    h.sh_flags = 0;
    h.sh_entsize = rela ? ELF_RELASIZE : ELF_RELSIZE;
    h.sh_addralign = 4;
    h.sh_info = id_;
    h.sh_link = file->symtab_index();
    elf_table()->add_reloc_section(id_, s->id());
    ELF_RELOC_TABLE* table = s->reloc_table_api();
    return table ? table->new_reloc() : nullptr;
}

int ELF_SECTION::set_group(OF_GROUP_TABLE* group) {
    shdr_.sh_flags |= SHF_GROUP;
    return OF_SECTION::set_group(group);
}

int ELF_SECTION::clear_group() {
    shdr_.sh_flags &= ~unsigned{SHF_GROUP};
    return OF_SECTION::clear_group();
}

// What is a relocation section, and of which section, is no longer what was found.
int ELF_SECTION::set_sh_type(unsigned v) {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    if (v != shdr_.sh_type && (is_reloc_type(v) || is_reloc_type(shdr_.sh_type)))
        elf_table()->relocs_changed();
    shdr_.sh_type = v;
    return 0;
}
int ELF_SECTION::set_sh_flags(unsigned v) {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    shdr_.sh_flags = v;
    return 0;
}
int ELF_SECTION::set_sh_link(unsigned v) {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    shdr_.sh_link = v;
    return 0;
}
int ELF_SECTION::set_sh_info(unsigned v) {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    if (is_reloc_type(shdr_.sh_type)) elf_table()->relocs_changed();
    shdr_.sh_info = v;
    return 0;
}
int ELF_SECTION::set_sh_entsize(unsigned v) {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    shdr_.sh_entsize = v;
    return 0;
}

bool ELF_SECTION::make_companion() {
    if (companion_) return true;
    switch (shdr_.sh_type) {
    case SHT_SYMTAB:
    case SHT_DYNSYM:
        companion_ = std::make_unique<ELF_SYMBOL_TABLE>(this);
        break;
    case SHT_STRTAB:
        companion_ = std::make_unique<ELF_STRING_TABLE>(this);
        break;
    case SHT_RELA:
    case SHT_REL:
        companion_ = std::make_unique<ELF_RELOC_TABLE>(this);
        break;
    case SHT_GROUP:
        companion_ = std::make_unique<ELF_GROUP_TABLE>(this);
        break;
    case SHT_ATTRIBUTES:
        if (!ofile()->build_attributes_supported()) return false;
        companion_ = std::make_unique<OF_BUILD_ATTR_TABLE>(this);
        break;
    default:
        return false;
    }
    return true;
}

ELF_SYMBOL_TABLE* ELF_SECTION::symbol_table_api() {
    if (shdr_.sh_type != SHT_SYMTAB && shdr_.sh_type != SHT_DYNSYM) return nullptr;
    make_companion();
    return static_cast<ELF_SYMBOL_TABLE*>(companion_.get());
}
ELF_STRING_TABLE* ELF_SECTION::string_table_api() {
    if (shdr_.sh_type != SHT_STRTAB) return nullptr;
    make_companion();
    return static_cast<ELF_STRING_TABLE*>(companion_.get());
}
ELF_RELOC_TABLE* ELF_SECTION::reloc_table_api() {
    if (shdr_.sh_type != SHT_REL && shdr_.sh_type != SHT_RELA) return nullptr;
    make_companion();
    return static_cast<ELF_RELOC_TABLE*>(companion_.get());
}
ELF_GROUP_TABLE* ELF_SECTION::group_table_api() {
    if (shdr_.sh_type != SHT_GROUP) return nullptr;
    make_companion();
    return static_cast<ELF_GROUP_TABLE*>(companion_.get());
}
// These three go by the section's name: one whose type asks for another companion gets that one,
// and is no table of theirs.
ELF_SCN_ATTR_TABLE* ELF_SECTION::scn_attr_table_api(int kind) {
    if (!make_companion()) companion_ = std::make_unique<ELF_SCN_ATTR_TABLE>(this, kind);
    return dynamic_cast<ELF_SCN_ATTR_TABLE*>(companion_.get());
}
ELF_SYMALIAS_TABLE* ELF_SECTION::symalias_api() {
    if (!make_companion()) companion_ = std::make_unique<ELF_SYMALIAS_TABLE>(this);
    return dynamic_cast<ELF_SYMALIAS_TABLE*>(companion_.get());
}
OF_BUILD_ATTR_TABLE* ELF_SECTION::build_attr_api() {
    if (shdr_.sh_type != SHT_ATTRIBUTES) return nullptr;
    return make_companion() ? static_cast<OF_BUILD_ATTR_TABLE*>(companion_.get()) : nullptr;
}

ELF_SEG_ATTR_TABLE* ELF_SECTION::seg_attr_table_api() {
    if (!make_companion()) companion_ = std::make_unique<ELF_SEG_ATTR_TABLE>(this);
    return dynamic_cast<ELF_SEG_ATTR_TABLE*>(companion_.get());
}

bool ELF_SECTION::is_in_rom() {
    ELF_SEGMENT_TABLE* segments = elf_file()->segment_table();
    ELF_SEGMENT* segment =
        elf_file()->has_seg_attr_db() ? segments->segment_section(this) : nullptr;
    return segment && segment->seg_attr_tag(PHA_READONLY) && segment->seg_attr_tag(PHA_BOUND);
}

OF_GROUP_TABLE* ELF_SECTION::group_api() {
    return group_table_api();
}

int ELF_SECTION::progress_to_state(OF_STATE target) {
    switch (target) {
    case OF_STATE_LOCKED:
        return lock_section();
    case OF_STATE_FORMATTED:
        return companion_ && companion_->own_state() == OF_STATE_LOCKED
                   ? companion_->set_state(target)
                   : 0;
    case OF_STATE_SAVED:
        return save();
    default:
        return 0;
    }
}

int ELF_SECTION::revert_to_state(OF_STATE target) {
    return target == OF_STATE_OPEN ? reopen_section() : 0;
}

int ELF_SECTION::lock_section() {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    make_companion();
    // Formatting changes sh_offset: the view of the contents is taken while it says where they are.
    if (in_file_ && initialized()) raw_data();
    if (companion_ && companion_->set_state(OF_STATE_LOCKED) != 0) return -1;
    if (initialized() && has_raw_data() && (companion_ || !raw_data().empty()))
        shdr_.sh_size = static_cast<unsigned>(raw_data().size());
    return 0;
}

// What is in memory or in the mapped input goes to its place. A section that is filled by direct
// writes only turns its view to the file. Nothing goes out beyond the size that the header tells.
int ELF_SECTION::save() {
    if (!initialized()) return 0;
    if (is_direct_write()) {
        raw_data().set_file(ofile()->file(), uint64_t{ofile()->handle().offset} + shdr_.sh_offset,
                            shdr_.sh_size);
        return 0;
    }
    OF_BYTES b = bytes();
    size_t size = b.size < shdr_.sh_size ? b.size : shdr_.sh_size;
    if (size == 0) return 0;
    if (is_write_required(b.data, size) &&
        ofile()->put_file_bytes(b.data, size, shdr_.sh_offset) != 0)
        return -1;
    if (has_raw_data())
        raw_data().set_file(ofile()->file(), uint64_t{ofile()->handle().offset} + shdr_.sh_offset,
                            size);
    return 0;
}

int ELF_SECTION::reopen_section() {
    clear_direct_write();
    if (initialized()) {
        drop_raw_data();
        in_file_ = true;
    }
    return companion_ ? companion_->reset_state(OF_STATE_OPEN) : 0;
}

} // namespace OFE
