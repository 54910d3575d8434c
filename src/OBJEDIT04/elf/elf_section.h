// A section of an ELF file, and the companion object that interprets its contents by its type
// (symbol table, string table, relocation table, group), made on first use and owned by the
// section.
#pragma once

#include "OBJEDIT04/elf/elf_types.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "UTIL/oalloc.h"
#include <memory>
#include <vector>

namespace OFE {

class ELF_FILE;
class ELF_GROUP_TABLE;
class ELF_RELOC_TABLE;
class ELF_SCN_ATTR_TABLE;
class ELF_SEG_ATTR_TABLE;
class ELF_SECTION_TABLE;
class ELF_STRING_TABLE;
class ELF_SYMALIAS_TABLE;
class ELF_SYMBOL_TABLE;
class OF_BUILD_ATTR_TABLE;

class ELF_SECTION final : public OF_SECTION, public OALLOC<ELF_SECTION> {
  public:
    ELF_SECTION(ELF_SECTION_TABLE* table, unsigned id);
    ~ELF_SECTION() override;

    int progress_to_state(OF_STATE target) override;
    int revert_to_state(OF_STATE target) override;

    ELF_FILE* elf_file() const;
    ELF_SECTION_TABLE* elf_table() const;

    unsigned load_addr() override;
    int set_load_addr(unsigned addr) override;
    unsigned run_addr() override { return shdr_.sh_addr; }
    int set_run_addr(unsigned addr) override;
    unsigned page() override { return ext_attr_[QV_SH_ATTR_PAGE]; }
    int set_page(unsigned page) override;
    OF_SYMBOL* create_section_symbol() override;
    bool initialized() override { return shdr_.sh_type != SHT_NULL && shdr_.sh_type != SHT_NOBITS; }
    unsigned align() override { return shdr_.sh_addralign; }
    int set_align(unsigned align) override;
    unsigned max_align() override { return 0xFFFFFFFFu; }
    int set_blocked() override;
    bool allocated() override { return shdr_.sh_flags & SHF_ALLOC; }
    int set_allocated(bool on) override;
    bool loaded() override { return allocated(); }
    bool exec() override { return shdr_.sh_flags & SHF_EXECINSTR; }
    int set_exec() override;
    bool data() override { return progbits_type() && !exec(); }
    int set_data() override;
    int set_const_data() override;
    bool bss() override { return shdr_.sh_type == SHT_NOBITS && allocated() && !exec(); }
    int set_bss() override;
    bool writable() override { return shdr_.sh_flags & SHF_WRITE; }
    bool tls() override { return shdr_.sh_flags & SHF_TLS; }
    unsigned unit_size() override { return unit_size_; }
    int set_unit_size(unsigned bits) override;
    int set_unit_size(const char* name); // by the special section rows
    unsigned size() override;
    int set_size(unsigned units) override;
    unsigned sh_id() override { return id_; }
    unsigned file_offset() override { return shdr_.sh_offset; }
    bool is_build_attr() override { return shdr_.sh_type == SHT_ATTRIBUTES; }
    bool is_group() override { return shdr_.sh_type == SHT_GROUP; }
    OF_GROUP_TABLE* group_api() override;
    int clear() override;
    unsigned reloc_table_num() override;
    OF_RELOC_TABLE* reloc_table(unsigned i) override;
    OF_RELOC* new_reloc(bool rela) override;
    int set_group(OF_GROUP_TABLE* group) override;
    int clear_group() override;
    unsigned ext_flags() override { return ext_attr_[QV_SH_ATTR_FLAGS]; }
    int set_ext_flags(unsigned flags) override;
    int save() override;

    bool progbits_type();
    bool is_in_rom(); // the attributes of its segment say: bound, and not written
    unsigned ext_attr(int kind) const { return ext_attr_[kind]; }
    void set_ext_attr(int kind, unsigned v) { ext_attr_[kind] = v; }
    bool is_ext_attr_section() const; // holds extended attributes of the sections
    bool is_symalias_section() const;

    // The header fields. Setters require at most `locked`.
    Elf32_Shdr& header() { return shdr_; }
    const Elf32_Shdr& header() const { return shdr_; }
    unsigned sh_type() const { return shdr_.sh_type; }
    unsigned sh_flags() const { return shdr_.sh_flags; }
    unsigned sh_link() const { return shdr_.sh_link; }
    unsigned sh_info() const { return shdr_.sh_info; }
    unsigned sh_entsize() const { return shdr_.sh_entsize; }
    int set_sh_type(unsigned v);
    int set_sh_flags(unsigned v);
    int set_sh_link(unsigned v);
    int set_sh_info(unsigned v);
    int set_sh_entsize(unsigned v);
    unsigned file_bytes_size(); // bytes in the file: 0 when not initialized
    bool keeps_offset() const { return keeps_offset_; }
    void set_keeps_offset(bool on) { keeps_offset_ = on; }
    bool in_segment() const { return in_segment_; }
    void set_in_segment(bool on) { in_segment_ = on; }
    void take_header(const Elf32_Shdr& header) { // as read from the file
        shdr_ = header;
        in_file_ = true;
    }
    // Of a section that is compressed in the file: there it is `packed_size` bytes, while the
    // header speaks of what they unpack to.
    void take_packed(const Elf32_Shdr& header, unsigned packed_size);

    void generate_text_info(TEXT_TABLE& table) override;
    const char* sh_type_name(unsigned type);
    const char* sh_flag_name(unsigned flag);
    const char* qv_sh_flag_name(unsigned flag); // of the extended flag word

    // Companions; null, with an error, when the section is of another type.
    ELF_SYMBOL_TABLE* symbol_table_api();
    ELF_STRING_TABLE* string_table_api();
    ELF_RELOC_TABLE* reloc_table_api();
    ELF_GROUP_TABLE* group_table_api();
    ELF_SCN_ATTR_TABLE* scn_attr_table_api(int kind);
    ELF_SYMALIAS_TABLE* symalias_api();
    OF_BUILD_ATTR_TABLE* build_attr_api();
    ELF_SEG_ATTR_TABLE* seg_attr_table_api();
    OF_STATE_MACHINE* companion() const { return companion_.get(); }

    int lock_section();
    int reopen_section();

  protected:
    OF_BYTES file_bytes() override;

  private:
    bool make_companion();
    OF_BYTES unpacked_bytes();
    int take_special_row(const char* name, unsigned clear_flags);

    struct PACKED {
        unsigned size;              // in the file, with its header
        std::vector<uint8_t> bytes; // unpacked on first use
    };

    Elf32_Shdr shdr_{};
    unsigned load_addr_ = 0; // 0: the run address
    unsigned ext_attr_[QV_SH_ATTR_KINDS] = {};
    unsigned char unit_size_ = 8;
    bool keeps_offset_ = false;
    bool in_segment_ = false;
    bool in_file_ = false; // the contents stand in the file at sh_offset
    std::unique_ptr<OF_STATE_MACHINE> companion_;
    std::unique_ptr<PACKED> packed_;
};

ELF_SECTION* elf_api(OF_SECTION* section);

} // namespace OFE
