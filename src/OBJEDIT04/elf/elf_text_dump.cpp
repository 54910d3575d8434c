// What a text dump shows of ELF beyond the neutral model: the header, types and flags of sections
// by name, segments and their attributes, string tables.
#include <cstdio>
#include <cstring>
#include <string>

#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/elf_section.h"
#include "OBJEDIT04/elf/elf_section_table.h"
#include "OBJEDIT04/elf/elf_string_table.h"
#include "OBJEDIT04/elf/segments/elf_seg_attr.h"
#include "OBJEDIT04/elf/segments/elf_segment.h"
#include "OBJEDIT04/elf/segments/elf_segment_table.h"
#include "OBJEDIT04/machine/machine_db.h"
#include "UTIL/file_handle_manager.h"
#include "UTIL/savestr.h"
#include "UTIL/text_table.h"

namespace OFE {

namespace {

struct NUMBER_NAME {
    unsigned number;
    const char* name;
};

constexpr NUMBER_NAME SH_TYPES[] = {
    {SHT_NULL, "SHT_NULL"},
    {SHT_PROGBITS, "SHT_PROGBITS"},
    {SHT_SYMTAB, "SHT_SYMTAB"},
    {SHT_STRTAB, "SHT_STRTAB"},
    {SHT_RELA, "SHT_RELA"},
    {SHT_HASH, "SHT_HASH"},
    {SHT_DYNAMIC, "SHT_DYNAMIC"},
    {SHT_NOTE, "SHT_NOTE"},
    {SHT_NOBITS, "SHT_NOBITS"},
    {SHT_REL, "SHT_REL"},
    {SHT_SHLIB, "SHT_SHLIB"},
    {SHT_DYNSYM, "SHT_DYNSYM"},
    {SHT_INIT_ARRAY, "SHT_INIT_ARRAY"},
    {SHT_FINI_ARRAY, "SHT_FINI_ARRAY"},
    {SHT_PREINIT_ARRAY, "SHT_PREINIT_ARRAY"},
    {SHT_GROUP, "SHT_GROUP"},
    {SHT_SYMTAB_SHNDX, "SHT_SYMTAB_SHNDX"},
    {SHT_GNU_verdef, "SHT_GNU_verdef"},
    {SHT_GNU_verneed, "SHT_GNU_verneed"},
    {SHT_GNU_versym, "SHT_GNU_versym"},
    {SHT_ATTRIBUTES, "SHT_ATTRIBUTES"},
    {SHT_QV_SH_FLAGS, "SHT_QV_SH_FLAGS"},
    {SHT_QV_SH_PAGE, "SHT_QV_SH_PAGE"},
};
constexpr NUMBER_NAME SH_FLAGS[] = {
    {SHF_WRITE, "SHF_WRITE"},
    {SHF_ALLOC, "SHF_ALLOC"},
    {SHF_EXECINSTR, "SHF_EXECINSTR"},
    {SHF_MERGE, "SHF_MERGE"},
    {SHF_STRINGS, "SHF_STRINGS"},
    {SHF_INFO_LINK, "SHF_INFO_LINK"},
    {SHF_LINK_ORDER, "SHF_LINK_ORDER"},
    {SHF_GROUP, "SHF_GROUP"},
    {SHF_TLS, "SHF_TLS"},
    {SHF_COMPRESSED, "SHF_COMPRESSED"},
};
constexpr NUMBER_NAME QV_SH_FLAGS[] = {
    {QV_SHF_NONE, "QV_SHF_NONE"},
    {QV_SHF_INVALID, "QV_SHF_INVALID"},
    {QV_SHF_RETAIN, "QV_SHF_RETAIN"},
    {QV_SHF_BOUND, "QV_SHF_BOUND"},
    {QV_SHF_RETAINREFS, "QV_SHF_RETAINREFS"},
    {QV_SHF_NOINIT, "QV_SHF_NOINIT"},
};

template <size_t N>
const char* name_in(const NUMBER_NAME (&names)[N], unsigned number, const char* otherwise) {
    for (const NUMBER_NAME& row : names)
        if (row.number == number) return row.name;
    return savestrf(otherwise, number);
}

// The names of the bits that are set.
template <class NAME>
std::string names_of_bits(unsigned word, NAME name) {
    std::string text;
    for (unsigned bit = 1; bit; bit <<= 1)
        if (word & bit) text += (text.empty() ? "" : "|") + std::string(name(bit));
    return text;
}

} // namespace

const char* ELF_FILE::ei_osabi_name(unsigned v) {
    const char* name = nullptr;
    if (machine_db()->elf_ei_osabi_name(this, static_cast<unsigned char>(v), false, name) && name)
        return name;
    return v == 0 ? "ELFOSABI_NONE" : savestrf("ELFOSABI_0x%02x", v);
}

const char* ELF_FILE::e_flag_name(unsigned flag) {
    const char* name = nullptr;
    if (machine_db()->elf_e_flag_name(this, flag, false, name) && name) return name;
    return savestrf("EF_0x%08x", flag);
}

void ELF_FILE::generate_file_info(TEXT_TABLE& table) {
    OBJECT_FILE::generate_file_info(table);
    auto row = [&](const char* name, const std::string& value) {
        const int at = table.append_rows();
        table.set_string(at, 0, name);
        table.set_string(at, 1, value);
        return at;
    };
    row("class", ei_class_name(ehdr_.e_ident[EI_CLASS]));
    row("data", ei_data_name(ehdr_.e_ident[EI_DATA]));
    row("OS ABI", ei_osabi_name(ehdr_.e_ident[EI_OSABI]));
    row("e_type", e_type_name(ehdr_.e_type));
    row("e_machine", e_machine_name(ehdr_.e_machine));
    table.set_text(row("EABI version", ""), 1, "%u", ehdr_.e_flags >> 24);
    row("e_flags", names_of_bits(ehdr_.e_flags & ~EF_ARM_EABIMASK,
                                 [this](unsigned f) { return e_flag_name(f); }));
    table.set_text(row("e_phoff", ""), 1, "0x%x", ehdr_.e_phoff);
    table.set_text(row("e_shoff", ""), 1, "0x%x", ehdr_.e_shoff);
    table.set_text(row("program headers", ""), 1, "%u", segments_->segnum());
    table.set_text(row("section headers", ""), 1, "%u", sections_->scnnum());
}

void ELF_FILE::save_text_extra(FHM_FILE* to) {
    if (dispflags().segments && segments_->segnum()) segments_->save_text(to);
    if (!dispflags().strings) return;
    for (unsigned i = 0; i < sections_->scnnum(); ++i)
        if (ELF_STRING_TABLE* strings = sections_->elf_section(i)->string_table_api())
            strings->save_text(to);
}

const char* ELF_SECTION::sh_type_name(unsigned type) {
    const char* name = nullptr;
    if (type != SHT_ATTRIBUTES && ofile()->machine_db()->elf_sh_type_name(this, type, name) && name)
        return name;
    return name_in(SH_TYPES, type, "SHT_0x%08x");
}

const char* ELF_SECTION::sh_flag_name(unsigned flag) {
    const char* name = nullptr;
    if (ofile()->machine_db()->elf_sh_flag_name(this, flag, name) && name) return name;
    return name_in(SH_FLAGS, flag, "SHF_0x%08x");
}

const char* ELF_SECTION::qv_sh_flag_name(unsigned flag) {
    const char* name = nullptr;
    if (ofile()->machine_db()->elf_qv_sh_flag_name(this, flag, name) && name) return name;
    return name_in(QV_SH_FLAGS, flag, "QV_SHF_0x%08x");
}

void ELF_SECTION::generate_text_info(TEXT_TABLE& table) {
    OF_SECTION::generate_text_info(table);
    std::string kind = sh_type_name(shdr_.sh_type);
    for (const std::string& flags :
         {names_of_bits(shdr_.sh_flags, [this](unsigned f) { return sh_flag_name(f); }),
          names_of_bits(ext_flags(), [this](unsigned f) { return qv_sh_flag_name(f); })})
        if (!flags.empty()) kind += " " + flags;
    const struct {
        const char* name;
        uint32_t value;
    } fields[] = {
        {" link=", shdr_.sh_link}, {" info=", shdr_.sh_info}, {" entsize=", shdr_.sh_entsize}};
    for (const auto& field : fields)
        if (field.value != 0) kind += field.name + std::to_string(field.value);
    table.set_string(table.nrows() - 1, 8, kind);
}

void ELF_SEGMENT_TABLE::save_text(FHM_FILE* to) {
    FILE* fp = to->fp();
    if (!fp) return;
    TEXT_TABLE table;
    generate_text_info(table);
    std::fprintf(fp, "\nSEGMENTS\n\n");
    table.print(fp);
    ELF_SEG_ATTR_TABLE* attributes = attribute_table();
    if (!attributes || attributes->is_empty()) return;
    TEXT_TABLE rows;
    rows.set_indent(1);
    rows.set_padding(2);
    attributes->generate_text_info(rows);
    std::fprintf(fp, "\nSEGMENT ATTRIBUTES\n\n");
    rows.print(fp);
}

void ELF_SEGMENT_TABLE::generate_text_info(TEXT_TABLE& table) {
    table.set_indent(1);
    table.set_padding(2);
    int col = 0;
    for (const char* title :
         {"id", "type", "offset", "vaddr", "paddr", "filesz", "memsz", "align", "flags", "objects"})
        table.set_string(0, col++, title);
    table.set_row_as_border(1);
    ELF_SECTION_TABLE* sections = elf_file()->elf_section_table();
    for (unsigned short i = 0; i < segnum(); ++i) {
        if (is_deleted(i)) continue;
        const Elf32_Phdr& h = *headers_[i];
        ELF_SEGMENT* s = segment(i);
        const int row = table.append_rows();
        table.set_text(row, 0, "%u", i);
        table.set_string(row, 1, s->p_type_name(h.p_type));
        col = 2;
        for (uint32_t number : {h.p_offset, h.p_vaddr, h.p_paddr, h.p_filesz, h.p_memsz, h.p_align})
            table.set_text(row, col++, "0x%x", number);
        table.set_string(row, col++, s->p_flags_str());
        std::string objects;
        for (const SEG_OBJECT& o : s->objects()) {
            if (!objects.empty()) objects += " ";
            if (o.type == SEG_OBJECT_FILE_HEADER) objects += "file-header";
            if (o.type == SEG_OBJECT_SECTION) objects += sections->raw_name(o.id);
            if (o.type == SEG_OBJECT_SEGMENT) objects += "segment-" + std::to_string(o.id);
        }
        table.set_string(row, col, objects);
    }
}

} // namespace OFE
