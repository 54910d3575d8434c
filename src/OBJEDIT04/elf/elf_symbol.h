// A symbol of an ELF file. In a locked table every setter rewrites the encoded record, so the two
// stay in step.
#pragma once

#include "OBJEDIT04/elf/elf_types.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "UTIL/oalloc.h"

namespace OFE {

class ELF_FILE;
class ELF_SYMBOL_TABLE;

class ELF_SYMBOL final : public OF_SYMBOL, public OALLOC<ELF_SYMBOL> {
  public:
    ELF_SYMBOL(ELF_SYMBOL_TABLE* table, unsigned id);

    ELF_SYMBOL_TABLE* elf_table() const;

    unsigned value() const override { return sym_.st_value; }
    int set_value(unsigned value) override;
    bool refs_section() const override {
        return sym_.st_shndx != SHN_UNDEF &&
               (sym_.st_shndx < SHN_LORESERVE || sym_.st_shndx == SHN_XINDEX);
    }
    OF_SECTION* section() const override;
    unsigned section_id() const override {
        return sym_.st_shndx == SHN_XINDEX ? ext_shndx_ : sym_.st_shndx;
    }
    int set_section(OF_SECTION* section) override;
    unsigned size() const override { return sym_.st_size; }
    int set_size(unsigned size) override;
    OF_SYM_KIND kind() const override;
    int set_kind(OF_SYM_KIND kind) override;
    OF_SYM_BINDING binding() const override;
    int set_binding(OF_SYM_BINDING binding) override;
    OF_SYM_TYPE type() const override;
    int set_type(OF_SYM_TYPE type) override;
    unsigned visibility() const override { return sym_.st_other & 3; }
    int set_visibility(unsigned v) override;
    bool is_load_label() const override { return false; }
    int set_near_common() override;
    int set_section_id(unsigned id) override;
    int patch_raw_data() override;

    void set_null();
    bool is_null() const; // no name and an all-zero record
    Elf32_Sym& record() { return sym_; }
    const Elf32_Sym& record() const { return sym_; }
    unsigned st_other() const { return sym_.st_other; }
    int set_st_other(unsigned v);
    unsigned ext_shndx() const { return ext_shndx_; }
    void set_ext_shndx(unsigned i) { ext_shndx_ = i; }
    unsigned version_index() const { return version_; }
    void set_version_index(unsigned v) { version_ = static_cast<uint16_t>(v); }

    static OF_SYM_KIND kind_of(unsigned shndx); // by the standard; what a machine adds comes first
    static OF_SYM_BINDING binding_of(unsigned st_info);
    static OF_SYM_TYPE type_of(unsigned st_info);
    static uint8_t info_of(OF_SYM_BINDING binding, OF_SYM_TYPE type); // binding: not "none"
    static const char* st_bind_name(unsigned v);
    static const char* st_type_name(unsigned v);
    static const char* st_visibility_name(unsigned v);

  private:
    int editable() const; // guard of the setters
    int patched();

    uint16_t version_ = 0;
    unsigned ext_shndx_ = 0;
    Elf32_Sym sym_{};
};

ELF_SYMBOL* elf_api(OF_SYMBOL* symbol);

} // namespace OFE
