// A symbol table of an ELF file: entries are read in place, one object at a time, and encoded anew
// at lock, locals before all others.
#pragma once

#include "OBJEDIT04/elf/elf_types.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"

namespace OFE {

class ELF_FILE;
class ELF_SECTION;
class ELF_STRING_TABLE;
class ELF_SYMBOL;

class ELF_SYMBOL_TABLE final : public OF_SYMBOL_TABLE {
  public:
    explicit ELF_SYMBOL_TABLE(ELF_SECTION* section);
    ~ELF_SYMBOL_TABLE() override;

    int progress_to_state(OF_STATE target) override;
    int revert_to_state(OF_STATE target) override;

    ELF_FILE* elf_file() const;
    ELF_SECTION* elf_section() const { return section_; }
    const char* name() const override;
    unsigned symbol_size() const override { return entsize_; }
    OF_SECTION_TABLE* section_table() const override;
    ELF_SYMBOL* elf_symbol(unsigned id);
    OF_SYMBOL* new_symbol() override;
    OF_SYMBOL* new_symbol_like(const OF_RAW_SYMBOL& model) override;
    int clear() override;
    int update_section_refs(const RECORD_MAP<unsigned>& map) override;
    int patch_symbol_refs() override;

    bool raw_symbol(unsigned id, OF_RAW_SYMBOL& out) override;
    unsigned first_global() const override;
    bool may_have_name(const char* name) const; // false: no symbol has it

    ELF_STRING_TABLE* string_table(); // made in a file built in memory
    ELF_SECTION* shndx_table();       // section of the extended indices; null: none
    ELF_SECTION* versym_table();      // section of the version indices; null: none
    unsigned default_visibility() const { return default_visibility_; }
    void set_default_visibility(unsigned v) { default_visibility_ = v & 3; }

    int lock_symbol_table();
    int lock_symbol_ordering();

  protected:
    OF_SYMBOL* alloc_symbol(unsigned id) override;
    OF_SYMBOL* load_symbol_into_mem(unsigned id) override;
    bool from_file() const override { return raw_ != nullptr; }

  private:
    void take_raw();
    bool read_record(unsigned id, Elf32_Sym& sym, unsigned& ext_shndx);
    void report_record(unsigned id, const Elf32_Sym& sym);
    const char* string_at(unsigned offset, unsigned id);
    int write_records();

    ELF_SECTION* section_;
    unsigned entsize_ = ELF_SYMSIZE;
    unsigned default_visibility_ = OF_VIS_DEFAULT;
    const uint8_t* raw_ = nullptr; // the entries as read
    unsigned raw_count_ = 0;
    const char* names_ = nullptr; // the strings as read
    unsigned names_limit_ = 0;
    const uint8_t* raw_shndx_ = nullptr; // the extended indices as read
    unsigned raw_shndx_count_ = 0;
    const uint8_t* raw_versym_ = nullptr; // the version indices as read
    unsigned raw_versym_count_ = 0;
    bool big_ = false;
};

} // namespace OFE
