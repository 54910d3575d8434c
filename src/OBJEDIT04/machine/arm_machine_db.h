// ARM's answers, and what a linker needs to know about the ARM code of a file: the instruction set
// version, the mapping symbols that tell ARM code, Thumb code and data apart, and the swap between
// the byte orders of code.
//
// Mapping symbols are local symbols $a, $t, $d, alone or followed by '.' and anything. They are
// collected on first need into one list per section, sorted by address; a query is a binary search.
// Symbols that are added later are looked at when the next query comes.
#pragma once

#include <cstdint>
#include <vector>

#include "OBJEDIT04/machine/machine_db.h"

namespace OFE {

struct ARM_TYPES {
    enum SECTION_MODE : int {
        SM_UNKNOWN = 0,
        SM_ARM = 1,
        SM_THUMB = 2,
        SM_DATA = 3,
        SM_CODE16 = 4,
        SM_CODE32 = 5
    };
};

class ARM_MACHINE_DB final : public OF_MACHINE_DB {
  public:
    using SECTION_MODE = ARM_TYPES::SECTION_MODE;

    explicit ARM_MACHINE_DB(OBJECT_FILE* file) : OF_MACHINE_DB(file) {}

    // The database of a file as ARM's; null for a null file or another machine.
    static ARM_MACHINE_DB* of(OBJECT_FILE* file);
    // What the type R_ARM_TARGET2 means, which is up to the platform: S + A, or S + A - P.
    static void set_target2_relative(bool relative);

    OF_MACHINE machine() const override { return OF_MACHINE_ARM; }
    unsigned qvcoff_magic() const override { return 0x97; }
    unsigned elf_magic() const override { return 0x28; }
    unsigned unit_size() const override { return 8; }
    OF_ENDIAN of_section_endian(OF_SECTION* section) override;
    void of_update_section_refs(OF_SECTION_TABLE*) override { forget_mapping_syms(); }
    void of_update_symbol_refs(OF_SYMBOL_TABLE*) override { forget_mapping_syms(); }
    bool of_supports_build_attributes(OBJECT_FILE* file, bool& supported) override;
    const char* ofba_abi_scn_name() const override { return "aeabi"; }
    void of_build_tag_hash(OFBA_TAG_MAP* tags) override;
    bool ofba_arg_types(const OFBA_TAG* tag, OFBA_AVAL_TYPE& type) override;
    bool of_tag_value(const OFBA_TAG* tag, OFBA_AVAL value, const char*& text) override;
    void of_battr_changed() override { found_version_ = found_profile_ = -1; }
    bool elf_special_section_name(ELF_SECTION_TABLE*, const char* name,
                                  const char*& special) override;
    bool elf_gnu_symver(ELF_FILE*, bool& gnu) override;
    bool elf_set_gnu_symver(ELF_FILE*, bool gnu) override;
    bool elf_ei_osabi_name(ELF_FILE*, unsigned char osabi, bool brief, const char*& name) override;
    bool elf_e_flag_name(ELF_FILE*, unsigned flag, bool brief, const char*& name) override;
    bool elf_p_type_name(ELF_SEGMENT*, unsigned type, const char*& name) override;
    bool elf_p_flag_name(ELF_SEGMENT*, unsigned flag, const char*& name) override;
    bool elf_sh_type_name(ELF_SECTION*, unsigned type, const char*& name) override;
    bool elf_sh_flag_name(ELF_SECTION*, unsigned flag, const char*& name) override;
    bool elf_supports_qv_sh_attr(int kind) const override { return kind == 0; }
    unsigned elf_qv_sh_attr_type(int) const override { return 1; }
    unsigned elf_symalias_type() const override { return 1; }
    void rel_build_type_table(OF_MACHINE_RELTYPES& types, OF_FORMAT format) override;

    // Mapping symbols. An address is a run address where the file's symbol values are addresses,
    // else an offset from the section's run address plus that address.
    void find_mapping_syms() override;
    bool is_mapping_sym_name(const char* name) const override {
        return mapping_sym_mode(name) != ARM_TYPES::SM_UNKNOWN;
    }
    SECTION_MODE section_mode_addr(OF_SECTION* section, unsigned addr);
    bool is_mapped_from_start(OF_SECTION* section); // a mapping symbol stands at its first byte
    static const char* mapping_sym_name(SECTION_MODE mode);
    static SECTION_MODE mapping_sym_mode(const char* name); // SM_UNKNOWN for any other name
    void forget_mapping_syms();                             // symbols have changed: search again
    void add_mapping(OF_SECTION* section, unsigned addr,
                     SECTION_MODE mode); // one more, without a search

    // The numbers of the ABI's tags for the architecture and its profile ('A', 'R', 'M', 'S' or 0).
    unsigned find_isa_version();
    unsigned find_isa_profile();
    unsigned isa_version() const { return isa_version_; } // the override; 0 when unset
    unsigned isa_profile() const { return isa_profile_; }
    void set_isa_version(unsigned version, bool forced = true);
    void set_isa_profile(unsigned profile, bool forced = true);
    static const char* isa_version_name(unsigned version);
    // Orders the versions: those for microcontrollers stand between the ones they derive from.
    static unsigned isa_rank(unsigned version);

    unsigned eabi_version(); // top byte of e_flags
    unsigned be_enc(); // 1: code is little-endian in a big-endian file; 2: all big-endian; 0 unsaid
    void set_be_enc(unsigned enc); // also keeps the flag of the ELF header in step

    // Reverses the bytes of each ARM word and Thumb halfword of a section, as its mapping symbols
    // tell.
    void swap_be8_code(OF_SECTION* section);
    // The same for a copy of the section's bytes.
    void swap_be8_code(OF_SECTION* section, uint8_t* bytes, unsigned size);

    // Machine flag of the ELF header that says code is little-endian in a big-endian file.
    static constexpr unsigned EF_ARM_BE8 = 0x00800000;
    static constexpr unsigned EF_ARM_ABI_FLOAT_SOFT = 0x200;
    static constexpr unsigned EF_ARM_ABI_FLOAT_HARD = 0x400;

  private:
    struct MAPPING {
        uint32_t addr;
        SECTION_MODE mode;
    };
    using MAPPINGS = std::vector<MAPPING>;

    const MAPPINGS* mappings_of(OF_SECTION* section);
    MAPPINGS& mappings_at(unsigned section_id);
    SECTION_MODE default_mode(OF_SECTION* section);

    std::vector<MAPPINGS> mapping_; // by section id
    unsigned mapping_searched_ = 0; // symbols with a lower id have been looked at
    bool mapping_sorted_ = true;
    unsigned isa_version_ = 0;
    unsigned isa_profile_ = 0;
    int found_version_ = -1; // -1: not yet looked up
    int found_profile_ = -1;
    unsigned be_enc_ = 0;
};

} // namespace OFE
