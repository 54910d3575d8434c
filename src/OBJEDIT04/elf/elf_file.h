// An ELF32 object file. Reading looks at the headers only; sections, symbols and relocations come
// into being on first access. A file built in memory is locked (membership and indices final),
// formatted (offsets final) and saved.
#pragma once

#include "OBJEDIT04/elf/elf_types.h"
#include "OBJEDIT04/ofe/object_file.h"
#include <memory>

namespace OFE {

class ELF_SCN_ATTR_TABLE;
class ELF_SEG_ATTR_DB;
class ELF_SECTION;
class ELF_SECTION_TABLE;
class ELF_SEGMENT_TABLE;
class ELF_SYMALIAS_TABLE;
class ELF_SYMBOL_TABLE;

class ELF_FILE final : public OBJECT_FILE {
  public:
    ELF_FILE(const OF_FILE_HANDLE& handle, OF_ERROR_HANDLER handler);
    ~ELF_FILE() override;

    int progress_to_state(OF_STATE target) override;
    int revert_to_state(OF_STATE target) override;

    OF_FORMAT_VER format_version() const override;
    OF_FILE_TYPE file_type() const override;
    int set_file_type(OF_FILE_TYPE type) override;
    long time_stamp() const override { return 0; }
    int set_time_stamp(long) override { return max_state(OF_STATE_LOCKED); }
    OF_MACHINE machine() const override;
    bool has_entry_point() const override { return ehdr_.e_entry != 0; }
    unsigned entry_point() const override { return ehdr_.e_entry; }
    int set_entry_point(unsigned addr) override;
    OF_ENDIAN machine_endian() const override;
    int set_machine_endian(OF_ENDIAN e) override;
    OF_ENDIAN control_endian() const override { return machine_endian(); }
    const char* vendor() override;
    unsigned flags() const override { return ehdr_.e_flags; }
    int set_flags(unsigned flags) override;
    int clear() override;
    bool values_are_scnrel() override {
        return ehdr_.e_type == ET_REL && (scnrel_computed_ ? scnrel_ : compute_scnrel());
    }
    bool represents_groups_with_sections() const override { return true; }
    bool is_load_image_file() override;
    bool has_dynamic_linkage() override;
    bool build_attributes_supported() const override;
    bool build_attributes_exist() override { return build_attr_index() != 0; }
    OF_BUILD_ATTR_TABLE* build_attributes() override;

    OF_SECTION_TABLE* section_table() override;
    OF_SYMBOL_TABLE* symbol_table() override;
    OF_SYMBOL_TABLE* dynamic_symbol_table() override;
    ELF_SECTION_TABLE* elf_section_table(); // never null
    ELF_SYMBOL_TABLE*
    elf_symbol_table(); // made in a file built in memory; else null when the file has none
    ELF_SEGMENT_TABLE* segment_table(); // never null
    int load(OF_FILE_HANDLE handle) override;
    int load_and_clear_string_table() override;

    Elf32_Ehdr& header() { return ehdr_; }
    const Elf32_Ehdr& header() const { return ehdr_; }
    bool swap() const { return machine_endian() != host_endian(); }
    bool big() const { return machine_endian() == OF_ENDIAN_BIG; }
    unsigned unit_bytes() const; // bytes of an addressable unit of the machine
    void set_symtab_index(unsigned i) { symtab_index_ = i; }
    unsigned symtab_index();     // section index; 0: none
    unsigned build_attr_index(); // likewise

    // Extended section attributes (the flag word, the page word) and symbol aliases: null when
    // there is none.
    ELF_SCN_ATTR_TABLE* qv_sh_attr_api(int kind, bool create);
    ELF_SECTION* qv_sh_attr_section(int kind, bool create);
    ELF_SYMALIAS_TABLE* symalias_table(bool create);
    // Attributes of segments: in a file with a segment of the machine's type for them.
    bool has_seg_attr_db();
    ELF_SEG_ATTR_DB* seg_attr_db(); // null: it has none

    bool generate_section_headers() const {
        return ehdr_.e_type == ET_REL || generate_section_headers_;
    }
    int set_generate_section_headers(bool on);
    void set_elf_header_in_segment(bool on) { elf_header_in_segment_ = on; }
    bool elf_header_in_segment() const { return elf_header_in_segment_; }

    // The smallest number at or above offset that is congruent to addr modulo align.
    static unsigned align_file_offset(unsigned offset, unsigned addr, unsigned align) {
        return static_cast<unsigned>(aligned_offset(offset, addr, align));
    }
    // The same while a file is laid out, which may turn out to be too large.
    static uint64_t aligned_offset(uint64_t offset, unsigned addr, unsigned align);

    bool is_icode_present() override;
    void generate_file_info(TEXT_TABLE& table) override;

    const char* ei_osabi_name(unsigned v);
    const char* e_flag_name(unsigned flag);
    static const char* ei_class_name(unsigned v);
    static const char* ei_data_name(unsigned v);
    static const char* e_type_name(unsigned v);
    static const char* e_machine_name(unsigned v);

    // Sections and symbols were renumbered.
    void translate_cached_indices(const RECORD_MAP<unsigned>& map);
    void forget_companions(ELF_SECTION* section); // the section is about to go

  private:
    int lock_elf_file();
    int format_elf_file();
    int save_elf_file();
    int reopen_elf_file();
    void save_text_extra(FHM_FILE* to) override;
    void reset_header();
    ELF_SECTION* find_attr_section(int kind);
    bool compute_scnrel();

    Elf32_Ehdr ehdr_{};
    std::unique_ptr<ELF_SEGMENT_TABLE> segments_;
    std::unique_ptr<ELF_SECTION_TABLE> sections_;
    bool generate_section_headers_ = true;
    bool elf_header_in_segment_ = false;
    bool symtab_searched_ = false;
    unsigned symtab_index_ = 0;
    unsigned build_attr_index_ = 0;
    unsigned build_attr_searched_ = 0; // the sections that there were at the last search
    ELF_SECTION* attr_sections_[QV_SH_ATTR_KINDS] = {};
    bool attr_searched_[QV_SH_ATTR_KINDS] = {};
    ELF_SYMALIAS_TABLE* symalias_ = nullptr;
    bool symalias_searched_ = false;
    std::unique_ptr<ELF_SEG_ATTR_DB> seg_attr_db_;
    unsigned seg_attr_searched_ = 0; // the segments that there were at the last search
    bool scnrel_ = true;             // the answer of values_are_scnrel() for a relocatable file
    bool scnrel_computed_ = false;
};

// The ELF view of a generic object; null, with an error on its file, when the file is not ELF.
ELF_FILE* elf_api(OBJECT_FILE* file);

} // namespace OFE
