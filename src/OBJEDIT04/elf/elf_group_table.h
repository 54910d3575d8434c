// A group section: a flag word and the indices of its members; the signature is the symbol sh_info
// of the symbol table sh_link.
#pragma once

#include "OBJEDIT04/elf/elf_types.h"
#include "OBJEDIT04/ofe/of_group_table.h"

namespace OFE {

class ELF_SECTION;
class ELF_SYMBOL_TABLE;

class ELF_GROUP_TABLE final : public OF_GROUP_TABLE {
  public:
    explicit ELF_GROUP_TABLE(ELF_SECTION* section);

    int progress_to_state(OF_STATE target) override;
    int revert_to_state(OF_STATE target) override;

    ELF_SECTION* elf_section() const { return section_; }
    const char* name() override;
    int set_name(const char* name) override;
    OF_SYMBOL* symbol() override;
    int set_symbol(OF_SYMBOL* symbol) override;
    const char* signature_name() override;
    bool comdat_flag() const override { return flags_ & GRP_COMDAT; }
    int set_comdat_flag() override;
    OF_SECTION* section_api() override;
    unsigned section_id() const override;
    const char* comdat_flag_name() const override { return comdat_flag() ? "GRP_COMDAT" : ""; }
    int lock_group_table() override;
    void add_reloc_sections(); // those of the members join the group
    int update_symbol_refs(const RECORD_MAP<unsigned>& map);

  private:
    ELF_SYMBOL_TABLE* symbols();
    void read_members();

    ELF_SECTION* section_;
    unsigned entsize_ = 4;
    unsigned flags_ = 0;
};

} // namespace OFE
