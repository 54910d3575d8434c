// The run-time convention of the ARM embedded ABI.
#pragma once

#include "ELFLNK/target/abi.h"

class ARM_EABI : public ABI {
  public:
    const char* init_array_base_name() const override { return "SHT$$INIT_ARRAY$$Base"; }
    const char* init_array_limit_name() const override { return "SHT$$INIT_ARRAY$$Limit"; }
    const char* stack_size_symbol_name() const override { return "__STACK_SIZE"; }
    const char* stack_end_symbol_name() const override { return "__STACK_END"; }
    const char* sysmem_size_symbol_name() const override { return "__SYSMEM_SIZE"; }
    virtual const char* plt_section_name() const { return ".plt"; }
    virtual const char* got_section_name() const { return ".got"; }

    uint64_t default_stack_size() const override { return 0x800; }
    uint64_t default_heap_size() const override { return 0x800; }
    unsigned stack_alignment() const override { return 8; }
    bool args_weak_symbol_ref() const override { return false; }
    unsigned max_data_bit_align() const override { return 64; }
    unsigned max_code_bit_align() const override { return 64; }
    unsigned data_address_bit_size() const override { return 32; }
    unsigned code_address_bit_size() const override { return 32; }
    bool pprof_supported() const override { return true; }
    bool expects_build_attributes() const override { return true; }

    void default_allocation() override;
    void form_binit_table() override;
    void define_link_time_constants() override;
    void define_static_base_symbol(bool use_lowest) override;
    void update_output_symbols() override;
    void add_retain_specs() override;
    void append_reserved_prefixes(std::vector<std::string_view>& prefixes) const override;
    bool is_muldef_ok(OFE::OF_SYMBOL* symbol) const override;
    bool is_static_guard(const char* name) const override;
    uint64_t entry_point_value(uint64_t address) const override;

    using ABI::section_is_omdata;
    bool section_is_omdata(const OFE::OF_RAW_SECTION& section,
                           const OFE::OBJECT_FILE* file) const override;

  private:
    void base_default_allocation();
};
