// A relocation of an ELF file and the table it stands in (.rel or .rela).
#pragma once

#include "OBJEDIT04/elf/elf_types.h"
#include "OBJEDIT04/ofe/of_reloc.h"
#include "OBJEDIT04/ofe/of_reloc_table.h"
#include "UTIL/oalloc.h"

namespace OFE {

class ELF_FILE;
class ELF_RELOC_TABLE;
class ELF_SECTION;

class ELF_RELOC final : public OF_RELOC, public OALLOC<ELF_RELOC> {
  public:
    ELF_RELOC(ELF_RELOC_TABLE* table, unsigned id);

    ELF_RELOC_TABLE* elf_table() const;
    const OF_RELOC_TYPE* type() const override { return type_; }
    int set_type(const OF_RELOC_TYPE* type) override;
    OF_SYMBOL* symbol() override;
    int set_symbol(OF_SYMBOL* symbol) override;
    unsigned offset() const override { return r_offset_; }
    int set_offset(unsigned offset) override;
    unsigned scnrel_offset() override;
    int set_scnrel_offset(unsigned offset) override;
    bool has_addend() const override;
    int addend() const override { return r_addend_; }
    int set_addend(int addend) override;
    int patch_raw_data() override;
    unsigned sym_id() const override { return r_info_ >> 8; }
    int set_sym_id(unsigned id) override;

    unsigned r_info() const { return r_info_; }
    void set_record(unsigned offset, unsigned info, int addend, const OF_RELOC_TYPE* type);
    void save(uint8_t* to, bool big) const; // reloc_size() bytes

  private:
    int editable() const; // guard of the setters
    int patched();

    const OF_RELOC_TYPE* type_;
    unsigned r_offset_ = 0;
    unsigned r_info_ = 0; // symbol id in the upper 24 bits, machine type in the lower 8
    int r_addend_ = 0;
};

class ELF_RELOC_TABLE final : public OF_RELOC_TABLE {
  public:
    explicit ELF_RELOC_TABLE(ELF_SECTION* section);
    ~ELF_RELOC_TABLE() override;

    int progress_to_state(OF_STATE target) override;
    int revert_to_state(OF_STATE target) override;

    ELF_FILE* elf_file() const;
    ELF_SECTION* elf_section() const { return section_; }
    OF_SECTION* section_relocated() override;
    OF_SYMBOL_TABLE* symbol_table() override;
    bool is_rela() const override;
    unsigned reloc_size() const override { return entsize_; }
    unsigned entry_size() const { return entsize_; }
    unsigned file_offset() override;
    int clear() override;
    void touch() { changed_ = true; }

    // The entries as read, in the file's byte order, entry_size() bytes each; false once an entry
    // has been changed, added or deleted, or when the table was not read from a file.
    bool raw_records(const uint8_t*& bytes, size_t& count) const;

    // The entries that are not deleted, as they would stand in the file.
    void encode(std::vector<uint8_t>& out);

    int lock_reloc_table();

  protected:
    OF_RELOC* alloc_reloc(unsigned i) override;
    OF_RELOC* load_reloc_into_mem(unsigned i) override;
    bool from_file() const override { return raw_ != nullptr; }

  private:
    void take_raw();

    ELF_SECTION* section_;
    unsigned entsize_;
    const uint8_t* raw_ = nullptr;
    unsigned raw_count_ = 0;
    bool big_ = false;
};

ELF_RELOC* elf_api(OF_RELOC* reloc);

} // namespace OFE
