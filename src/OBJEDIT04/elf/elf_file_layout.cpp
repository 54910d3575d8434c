// An ELF file built or edited in memory on its way to disk. Lock: membership and indices become
// final and the header is filled in. Format: every file offset is computed, and the order of the
// steps fixes the layout. Save: the bytes are written.
#include "OBJEDIT04/elf/elf32_rw.h"
#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/elf_section.h"
#include "OBJEDIT04/elf/elf_section_table.h"
#include "OBJEDIT04/elf/elf_string_table.h"
#include "OBJEDIT04/elf/elf_symbol_table.h"
#include "OBJEDIT04/elf/segments/elf_seg_attr.h"
#include "OBJEDIT04/elf/segments/elf_segment_table.h"

namespace OFE {

int ELF_FILE::progress_to_state(OF_STATE target) {
    if (own_state() >= target) return 0;
    switch (target) {
    case OF_STATE_LOCKED:
        return lock_elf_file();
    case OF_STATE_FORMATTED:
        return format_elf_file();
    case OF_STATE_SAVED:
        return save_elf_file();
    default:
        return 0;
    }
}

int ELF_FILE::revert_to_state(OF_STATE target) {
    return target == OF_STATE_OPEN ? reopen_elf_file() : 0;
}

int ELF_FILE::lock_elf_file() {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    if (load_and_clear_string_table() != 0) return -1;
    if (has_seg_attr_db()) {
        ELF_SEG_ATTR_TABLE* attributes = seg_attr_db()->table();
        if (!attributes || attributes->is_empty()) {
            if (seg_attr_db()->drop() != 0) return -1;
            seg_attr_db_.reset();
        }
    }
    if (sections_->lock_section_table_entries() != 0) return -1;
    if (segments_->set_state(OF_STATE_LOCKED) != 0 || sections_->set_state(OF_STATE_LOCKED) != 0)
        return -1;
    OF_ENDIAN endian = machine_endian();
    unsigned count = sections_->scnnum();
    ehdr_.e_ident[EI_CLASS] = 1;
    ehdr_.e_ident[EI_DATA] =
        static_cast<uint8_t>(endian == OF_ENDIAN_LITTLE || endian == OF_ENDIAN_BIG ? endian : 0);
    ehdr_.e_ident[EI_VERSION] = 1;
    ehdr_.e_version = 1;
    ehdr_.e_ehsize = ELF_EHSIZE;
    ehdr_.e_phentsize =
        segments_->segnum() ? static_cast<uint16_t>(segments_->program_header_size()) : 0;
    ehdr_.e_phnum = segments_->segnum();
    ehdr_.e_shentsize = static_cast<uint16_t>(sections_->section_header_size());
    ehdr_.e_shnum = static_cast<uint16_t>(count < SHN_LORESERVE ? count : 0);
    return 0;
}

// Names of sections and symbols are entered anew at lock, so that texts no longer used vanish.
// Dynamic strings stay: other tables count on their offsets.
int ELF_FILE::load_and_clear_string_table() {
    if (!is_input()) return 0;
    if (sections_->load_all_sections_into_mem() != 0) return -1;
    for (unsigned i = 0; i < sections_->scnnum(); ++i) {
        ELF_SECTION* s = sections_->elf_section(i);
        if (s->sh_type() != SHT_SYMTAB && s->sh_type() != SHT_DYNSYM) continue;
        ELF_SYMBOL_TABLE* table = s->symbol_table_api();
        if (!table || table->load_all_symbols_into_mem() != 0) return -1;
        if (s->sh_type() == SHT_SYMTAB)
            if (ELF_STRING_TABLE* strings = table->string_table()) strings->clear();
    }
    if (ELF_STRING_TABLE* strings = sections_->string_table()) strings->clear();
    return 0;
}

int ELF_FILE::format_elf_file() {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    uint64_t offset = elf_header_in_segment_ ? 0 : ehdr_.e_ehsize;
    offset = segments_->format_segments(offset);
    offset = sections_->format_sections(offset);
    if (segments_->segnum() && !segments_->phdr_in_load_segment()) {
        offset = aligned_offset(offset, 0, 4);
        segments_->set_file_offset(static_cast<unsigned>(offset));
        offset += segments_->table_size();
    }
    if (generate_section_headers()) offset = sections_->format_section_headers(offset);
    if (offset > UINT32_MAX) {
        set_error(OF_ERROR_ACCESS, "the file would be larger than 4 GiB (0x%llx bytes)",
                  static_cast<unsigned long long>(offset));
        return -1;
    }
    if (segments_->set_state(OF_STATE_FORMATTED) != 0 ||
        sections_->set_state(OF_STATE_FORMATTED) != 0)
        return -1;
    ehdr_.e_phoff = segments_->segnum() ? segments_->file_offset() : 0;
    ehdr_.e_shoff =
        sections_->scnnum() && generate_section_headers() ? sections_->file_offset() : 0;
    if (!generate_section_headers()) ehdr_.e_shnum = ehdr_.e_shstrndx = 0;
    set_final_size(static_cast<unsigned>(offset));
    return 0;
}

int ELF_FILE::save_elf_file() {
    uint8_t bytes[ELF_EHSIZE];
    store_Elf32_Ehdr(bytes, ehdr_, swap());
    if (put_file_bytes(bytes, sizeof bytes, 0) != 0) return -1;
    int result = sections_->set_state(OF_STATE_SAVED);
    result |= segments_->set_state(OF_STATE_SAVED);
    return result;
}

int ELF_FILE::reopen_elf_file() {
    if (min_state(OF_STATE_SAVED) != 0) return -1;
    int result = sections_->reset_state(OF_STATE_OPEN);
    result |= segments_->reset_state(OF_STATE_OPEN);
    return result;
}

} // namespace OFE
