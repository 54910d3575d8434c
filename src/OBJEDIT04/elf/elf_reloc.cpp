// Relocation entries: read in place, made into objects one at a time or for a whole table, encoded
// anew at lock.
#include "OBJEDIT04/elf/elf_reloc.h"

#include <cstring>

#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/elf_section.h"
#include "OBJEDIT04/elf/elf_section_table.h"
#include "OBJEDIT04/elf/elf_symbol_table.h"
#include "OBJEDIT04/machine/reloc_type.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "UTIL/data_map.h"

namespace OFE {

ELF_RELOC* elf_api(OF_RELOC* reloc) {
    if (!reloc || !elf_api(reloc->ofile())) return nullptr;
    return static_cast<ELF_RELOC*>(reloc);
}

ELF_RELOC::ELF_RELOC(ELF_RELOC_TABLE* table, unsigned id)
    : OF_RELOC(table, id), type_(&OFR_INVALID) {}

ELF_RELOC_TABLE* ELF_RELOC::elf_table() const {
    return static_cast<ELF_RELOC_TABLE*>(reloc_table());
}

void ELF_RELOC::set_record(unsigned offset, unsigned info, int addend, const OF_RELOC_TYPE* type) {
    r_offset_ = offset;
    r_info_ = info;
    r_addend_ = addend;
    type_ = type;
}

int ELF_RELOC::editable() const {
    OF_RELOC_TABLE* table = reloc_table();
    return table->own_state() == OF_STATE_OPEN ? 0 : table->max_state(OF_STATE_LOCKED);
}

int ELF_RELOC::patched() {
    elf_table()->touch();
    return elf_table()->own_state() == OF_STATE_LOCKED ? patch_raw_data() : 0;
}

int ELF_RELOC::set_type(const OF_RELOC_TYPE* type) {
    if (!type || editable() != 0) return -1;
    type_ = type;
    r_info_ = (r_info_ & ~0xFFu) | (type->machine_type & 0xFF);
    elf_table()->mark_unsorted();
    return patched();
}

OF_SYMBOL* ELF_RELOC::symbol() {
    if (!takes_symbol()) return nullptr;
    OF_SYMBOL_TABLE* table = elf_table()->symbol_table();
    if (!table) return nullptr;
    OF_SYMBOL* s = table->symbol(sym_id());
    if (!s)
        ofile()->set_error(OF_ERROR_CORRUPT,
                           "relocation %u in \"%s\" refers to symbol %u, which does not exist", id_,
                           elf_table()->elf_section()->name(), sym_id());
    return s;
}

int ELF_RELOC::set_symbol(OF_SYMBOL* symbol) {
    if (!symbol || symbol->symbol_table() != elf_table()->symbol_table()) return 0;
    return set_sym_id(symbol->id());
}

int ELF_RELOC::set_sym_id(unsigned id) {
    if (editable() != 0) return -1;
    if (id > 0xFFFFFF) {
        ofile()->set_error(OF_ERROR_TRUNCATED, "symbol %u is beyond what a relocation can refer to",
                           id);
        return -1;
    }
    r_info_ = id << 8 | (r_info_ & 0xFF);
    return patched();
}

int ELF_RELOC::set_offset(unsigned offset) {
    if (editable() != 0) return -1;
    r_offset_ = offset;
    elf_table()->mark_unsorted();
    return patched();
}

unsigned ELF_RELOC::scnrel_offset() {
    if (ofile()->values_are_scnrel()) return r_offset_;
    OF_SECTION* s = elf_table()->section_relocated();
    return s ? r_offset_ - s->run_addr() : r_offset_;
}

int ELF_RELOC::set_scnrel_offset(unsigned offset) {
    if (ofile()->values_are_scnrel()) return set_offset(offset);
    OF_SECTION* s = elf_table()->section_relocated();
    return set_offset(s ? offset + s->run_addr() : offset);
}

bool ELF_RELOC::has_addend() const {
    return elf_table()->is_rela();
}

int ELF_RELOC::set_addend(int addend) {
    if (editable() != 0) return -1;
    r_addend_ = addend;
    return patched();
}

void ELF_RELOC::save(uint8_t* to, bool big) const {
    write_u32(to, r_offset_, big);
    write_u32(to + 4, r_info_, big);
    if (has_addend()) write_u32(to + 8, static_cast<uint32_t>(r_addend_), big);
}

int ELF_RELOC::patch_raw_data() {
    uint8_t bytes[ELF_RELASIZE];
    unsigned size = has_addend() ? ELF_RELASIZE : ELF_RELSIZE;
    save(bytes, elf_table()->elf_file()->big());
    return elf_table()->elf_section()->write_to_raw_data(bytes, size, id_ * size);
}

ELF_RELOC_TABLE::ELF_RELOC_TABLE(ELF_SECTION* section)
    : OF_RELOC_TABLE(section->ofile()), section_(section) {
    entsize_ = section->sh_entsize();
    if (entsize_ < ELF_RELSIZE)
        entsize_ = std::strncmp(section->name(), ".rela", 5) == 0 ? ELF_RELASIZE : ELF_RELSIZE;
    if (is_rela() && entsize_ < ELF_RELASIZE) entsize_ = ELF_RELASIZE;
    take_raw();
}

ELF_RELOC_TABLE::~ELF_RELOC_TABLE() = default;

ELF_FILE* ELF_RELOC_TABLE::elf_file() const {
    return static_cast<ELF_FILE*>(ofile());
}
bool ELF_RELOC_TABLE::is_rela() const {
    return section_->sh_type() == SHT_RELA;
}
unsigned ELF_RELOC_TABLE::file_offset() {
    return section_->file_offset();
}

OF_SECTION* ELF_RELOC_TABLE::section_relocated() {
    unsigned id = section_->sh_info();
    return id ? section_->elf_table()->section(id) : nullptr;
}

OF_SYMBOL_TABLE* ELF_RELOC_TABLE::symbol_table() {
    unsigned link = section_->sh_link();
    ELF_SECTION* s = link ? section_->elf_table()->elf_section(link) : nullptr;
    return s ? s->symbol_table_api() : nullptr;
}

void ELF_RELOC_TABLE::take_raw() {
    OF_BYTES entries = section_->bytes();
    if (!ofile()->is_input() || entries.size < entsize_) return;
    raw_ = entries.data;
    raw_count_ = relnum_ = static_cast<unsigned>(entries.size / entsize_);
    big_ = elf_file()->big();
}

bool ELF_RELOC_TABLE::raw_records(const uint8_t*& bytes, size_t& count) const {
    if (!raw_ || changed_) return false;
    bytes = raw_;
    count = raw_count_;
    return true;
}

OF_RELOC* ELF_RELOC_TABLE::alloc_reloc(unsigned i) {
    return new ELF_RELOC(this, i);
}

OF_RELOC* ELF_RELOC_TABLE::load_reloc_into_mem(unsigned i) {
    if (!raw_ || i >= raw_count_) return nullptr;
    const uint8_t* p = raw_ + size_t{i} * entsize_;
    unsigned info = read_u32(p + 4, big_);
    auto* r = new ELF_RELOC(this, i);
    r->set_record(read_u32(p, big_), info, is_rela() ? static_cast<int>(read_u32(p + 8, big_)) : 0,
                  ofile()->machine_reloc_type(info & 0xFF));
    return r;
}

int ELF_RELOC_TABLE::clear() {
    if (OF_RELOC_TABLE::clear() != 0) return -1;
    raw_ = nullptr;
    raw_count_ = 0;
    return 0;
}

void ELF_RELOC_TABLE::encode(std::vector<uint8_t>& out) {
    unsigned size = is_rela() ? ELF_RELASIZE : ELF_RELSIZE;
    bool big = elf_file()->big();
    out.clear();
    out.reserve(size_t{relnum_} * size);
    for (unsigned i = 0; i < relnum_; ++i) {
        OF_RELOC* r = is_deleted(i) ? nullptr : reloc(i);
        if (!r) continue;
        out.resize(out.size() + size);
        static_cast<ELF_RELOC*>(r)->save(out.data() + out.size() - size, big);
    }
}

int ELF_RELOC_TABLE::progress_to_state(OF_STATE target) {
    return target == OF_STATE_LOCKED ? lock_reloc_table() : 0;
}

int ELF_RELOC_TABLE::revert_to_state(OF_STATE) {
    return 0;
}

int ELF_RELOC_TABLE::lock_reloc_table() {
    if (max_state(OF_STATE_OPEN) != 0 || load_all_relocs_into_mem() != 0) return -1;
    for (unsigned i = 0; i < relnum_; ++i)
        if (relocs_[i]->type() == &OFR_INVALID) delete_reloc(i);
    if (purge_deleted_relocs() != 0 || sort_relocs() != 0) return -1;
    raw_ = nullptr;
    raw_count_ = 0;
    std::vector<uint8_t> bytes;
    encode(bytes);
    DATA_MAP& map = section_->raw_data();
    map.set_zeros(0);
    if (!bytes.empty()) map.set_copy(bytes);
    entsize_ = is_rela() ? ELF_RELASIZE : ELF_RELSIZE;
    section_->set_sh_entsize(entsize_);
    return 0;
}

} // namespace OFE
