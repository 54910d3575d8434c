// The ARM family: its option checks, architectures, byte orders of code, and the run-time
// convention that it links for.
#pragma once

#include <set>

#include "ELFLNK/target/arm/arm_arch_types.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/machine/arm_machine_db.h"

class ARM_TARGET final : public TARGET {
  public:
    ARM_TARGET();
    ~ARM_TARGET() override;

    const char* c_dir_env_name() const override { return "ALPINE_C_DIR"; }
    const char* a_dir_env_name() const override { return "ALPINE_A_DIR"; }
    void finalize_options() override;
    void target_enter_predefined_macros(std::vector<std::string>& macros) const override;

    void check_linker_compatibility(OBJ_FILE* file) override;
    FCOMPAT* fcompat(OBJ_FILE* output, OBJ_FILE* file) override;
    const char* first_version_without_dinkum() const override { return "15.3.0"; }
    bool dinkum_exported_symbols() const override;
    void check_advice() override;
    void update_upon_scanning() override;
    bool wants_update_symbol(const char* name) const override;
    void update_symbol(OFE::OF_SYMBOL* symbol) override;
    void report_undef_symbol(OFE::OF_SYMBOL* symbol) override;

    unsigned fill_max_width() const override { return 32; }
    uint64_t max_segment_gap() const override { return 7; }
    bool linker_generates_trampolines() const override;
    bool linker_generates_veneers() const { return true; }
    bool is_copy_compression_supported() const override { return true; }
    bool is_crc_table_supported() const override { return true; }
    unsigned default_crc_algorithm() const override { return 10; }
    void get_rel_field_info(const OFE::OF_RELOC_TEMPLATE& rel, unsigned& bits, unsigned& shift,
                            unsigned& bias, uint64_t& mask) const override;
    void get_reachable_range(uint64_t pc, const OFE::OF_RELOC_TEMPLATE& rel, uint64_t& lo,
                             uint64_t& hi) const override;
    int call_bias(const OFE::OF_RELOC_TEMPLATE& rel) const override;
    bool call_may_change_state(SECTION* from, const OFE::OF_RELOC_TEMPLATE& rel, uint32_t at,
                               SECTION* to, uint64_t offset, bool odd) const override;
    int64_t call_displacement(const TRAMP_CALL_SITE* site, const int* addend) const override;
    TRAMP_CALL_SITE* new_TRAMP_CALL_SITE(SECTION* section, const OFE::OF_RELOC_TYPE* type,
                                         uint32_t offset) override;
    TRAMP_CALLEE* new_TRAMP_CALLEE(SECTION* section, uint64_t offset) override;
    TRAMPOLINE* new_TRAMPOLINE(TRAMP_CALLEE* callee, OBJ_FILE* file, const char* name) override;
    COPY_TABLE* new_COPY_TABLE(const char* name, const SOURCE_POSITION* pos) override;
    COPY_TABLE* new_CINIT_TABLE() override;
    CRC_TABLE* new_CRC_TABLE(const char* name, const SOURCE_POSITION* pos) override;
    HANDLER_TABLE* new_HANDLER_TABLE(unsigned capacity) override;
    COMPRESSED_SECTION* new_COMPRESSED_SECTION(const char* name, COLLECTION* run,
                                               short kind) override;
    ABI* abi() override;

    bool ELF_supported() const override { return true; }
    void init_output_file(OFE::OBJECT_FILE* output, OFE::OBJECT_FILE* first) override;
    void set_target2_relative(bool relative) override;
    void finalize_section_data(OFE::OF_SECTION* section) override;
    void finalize_copied_data(OFE::OF_SECTION* input, uint8_t* bytes, uint32_t size) override;
    void finalize_output_file() override;
    void init_mapfile_filter() override;

    /// A mapping symbol of a mode of the machine database at `offset` of the section.
    static void gen_mapping_symbol(OFE::OF_SECTION* section, OFE::ARM_TYPES::SECTION_MODE mode,
                                   uint32_t offset);

    static constexpr unsigned arm_nop() { return 0xE1A00000; }
    /// By the output's instruction set version.
    unsigned thumb_nop() const;

  private:
    void init_output_ELF_file(OFE::OBJECT_FILE* output, OFE::OBJECT_FILE* first);
    void normalize_section_data(OBJ_FILE* file);
    void be8_output_check();
    void mark_unmapped_sections();
    void check_symver_options();

    ARM_ARCH_TYPES silicon_;
    std::unique_ptr<FCOMPAT> fcompat_; ///< one object for the run
    bool unmapped_sections_marked_ = false;
    std::set<const OFE::OF_SECTION*> swapped_sections_; ///< output sections in their last form
    bool needs_be8_code_swap_ = true; ///< the output is big-endian with little-endian code
};
