// The section headers of an ELF file: read in place from the mapped table, ordered and numbered at
// lock, laid out at format, written at save. Which relocation sections apply to a section, and
// which group a section belongs to, are kept in flat arrays built once per file without making
// section objects.
#pragma once

#include "OBJEDIT04/elf/elf_types.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include <memory>

namespace OFE {

class ELF_FILE;
class ELF_GROUP_TABLE;
class ELF_SECTION;
class ELF_STRING_TABLE;
class ELF_SYMBOL_TABLE;

// What a section of a known name is to be.
struct ELF_SPECIAL_SECTION {
    const char* name;
    unsigned type, entsize, flags;
    unsigned unit; // bits; 0: the machine's
};

// Bytes of a string pool up to and with its last NUL: offsets below are those of terminated
// strings.
unsigned terminated_size(const char* pool, unsigned size);

class ELF_SECTION_TABLE final : public OF_SECTION_TABLE {
  public:
    explicit ELF_SECTION_TABLE(ELF_FILE* file);
    ~ELF_SECTION_TABLE() override;

    int progress_to_state(OF_STATE target) override;
    int revert_to_state(OF_STATE target) override;

    ELF_FILE* elf_file() const;
    ELF_SECTION* elf_section(unsigned id); // null: no such index
    OF_SECTION* section_name(const char* name, unsigned start) override;
    int delete_section(unsigned id) override;
    int purge_deleted_sections() override;
    unsigned section_header_size() const override { return ELF_SHENTSIZE; }
    OF_SECTION* new_section(const char* name) override;
    ELF_SECTION* new_null_section(); // at the end; lock moves it to index 0
    OF_GROUP_TABLE* new_group(const char* name) override;
    unsigned file_offset() const override { return file_offset_; }
    int clear() override;
    int load(unsigned offset, unsigned entsize, unsigned count) override;
    int patch_section_refs() override;
    int resolve_group_refs() override;
    std::vector<unsigned> group_sections() const override;

    bool raw_section(unsigned id, OF_RAW_SECTION& out) override;
    bool has_ext_flags() override;
    unsigned raw_reloc_table_num(unsigned section_id) override;
    OF_RAW_RELOCS raw_relocs(unsigned section_id, unsigned table) override;
    bool has_one_symbol_table() const override { return symbol_tables_ == 1; }
    OF_GROUP_TABLE* raw_group(unsigned section_id) override;
    bool raw_header(unsigned id,
                    Elf32_Shdr& out) const; // as read or as changed; false: no such index
    bool in_other_group(unsigned id, const OF_GROUP_TABLE* group) const {
        return id < group_of_.size() && group_of_[id] && group_of_[id] != group;
    }
    const char* raw_name(unsigned id);          // never null
    bool names_contain(const char* text) const; // in a file that was read: some name does

    static const ELF_SPECIAL_SECTION* special_section(const char* name);
    const char* machine_special_section_name(const char* name);
    unsigned lookup_section_by_type(unsigned type); // index; 0: none
    unsigned lookup_sym_section_by_type(unsigned link, unsigned type);
    unsigned lookup_section_by_name(const char* name);
    ELF_SECTION* create_string_table();
    int set_shstrndx(unsigned i);
    unsigned shstrndx() const;
    ELF_STRING_TABLE* string_table(); // of the section names; made in a file built in memory
    void find_reloc_tables();
    unsigned reloc_section(unsigned section_id,
                           unsigned table); // index of a relocation section; 0: none
    void relocs_changed() { relocs_found_ = false; }
    void add_reloc_section(unsigned section_id, unsigned id); // a new one, behind the others
    void clear_data();

    int lock_section_table_entries();
    int lock_section_ordering();
    int lock_sections();
    uint64_t format_sections(uint64_t offset); // each answers the offset behind
    uint64_t format_section_headers(uint64_t offset);
    int save();

  protected:
    OF_SECTION* alloc_section(unsigned id) override;
    int load_section_into_mem(unsigned id) override;

  private:
    int check_headers();
    // A section that is compressed in the file: what its header says, what is wrong with it (null:
    // nothing), and the section's header with what it is unpacked.
    Elf32_Chdr packed_header(const Elf32_Shdr& h) const;
    const char* packed_fault(const Elf32_Shdr& h) const;
    Elf32_Shdr unpacked_header(const Elf32_Shdr& h) const;
    OF_SYMBOL_TABLE* linked_symbols(unsigned link);
    unsigned header_word(unsigned id, size_t offset) const; // of one that exists
    void drop_group(unsigned id);
    void make_lock_sections();
    void store_shstrndx(unsigned i);
    void set_string_pool();

    const uint8_t* raw_ = nullptr; // the header table as read
    unsigned raw_count_ = 0;
    unsigned raw_entsize_ = 0;
    unsigned file_offset_ = 0;
    const char* names_ = nullptr; // the section name strings as read
    unsigned names_limit_ = 0;    // offsets below are those of terminated strings
    std::vector<uint8_t>
        changed_relocs_;         // what raw_relocs last showed of a table changed in memory
    unsigned symbol_tables_ = 0; // in the file as read
    bool any_loaded_ = false;    // a section object exists, whose name may differ from the file's
    bool relocs_found_ = false;
    bool groups_resolved_ = false;
    std::vector<unsigned> reloc_first_;     // section id to its range in reloc_list_; beyond: none
    std::vector<unsigned> reloc_list_;      // relocation section ids
    std::vector<OF_GROUP_TABLE*> group_of_; // empty: no groups
    std::vector<unsigned> raw_groups_;      // sections of the file as read that describe groups
};

} // namespace OFE
