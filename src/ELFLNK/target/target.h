// What the processor family is: unit sizes, limits, the entry point, checks of options and files,
// and the factories of everything that is written in its code. `Target` is the one object; it owns
// the run-time convention, Target->abi().
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class ABI;
class COLLECTION;
class COMMAND_FILE;
class COMPRESSED_SECTION;
class COPY_TABLE;
class CRC_TABLE;
class FCOMPAT;
class HANDLER_TABLE;
class LINKER_OBJECT;
class LOCATOR;
class OBJ_FILE;
class SECTION;
class SECTION_SPEC;
class SOURCE_POSITION;
class TEXT_TABLE;
class TRAMPOLINE;
class TRAMP_CALLEE;
class TRAMP_CALL_SITE;
namespace OFE {
class OBJECT_FILE;
class OF_SECTION;
class OF_SYMBOL;
struct OF_RELOC_TEMPLATE;
struct OF_RELOC_TYPE;
} // namespace OFE

class TARGET {
  public:
    TARGET();
    virtual ~TARGET();
    TARGET(const TARGET&) = delete;
    TARGET& operator=(const TARGET&) = delete;

    // --- options, environment, command files

    /// Hands the directories of the environment to the file manager.
    virtual void setup_env_paths();
    virtual const char* c_dir_env_name() const { return nullptr; }
    virtual const char* a_dir_env_name() const { return nullptr; }
    /// Checks and completes the options; from here on abi() may be asked.
    virtual void finalize_options();
    bool options_final() const { return options_final_; }
    /// The macros that the preprocessor of a command file knows, each as "NAME=value".
    std::vector<std::string> predefined_macros() const;
    virtual void target_enter_predefined_macros(std::vector<std::string>&) const {}

    // --- input files

    virtual void check_linker_compatibility(OBJ_FILE*) {}
    /// The comparison of an input with the output, set up; null if the target makes none.
    virtual FCOMPAT* fcompat(OBJ_FILE*, OBJ_FILE*) { return nullptr; }
    /// The first version of the compiler whose objects fit the run-time library; null if all do.
    virtual const char* first_version_without_dinkum() const { return nullptr; }
    /// True if the run-time library of the link is of the kind that older C objects don't fit.
    virtual bool dinkum_exported_symbols() const { return false; }
    virtual void check_advice() {}
    virtual void add_migration_assistance_symbols(OBJ_FILE*) {}
    virtual bool is_static_reloc_file(OFE::OBJECT_FILE*) const { return false; }
    virtual void update_upon_scanning() {}
    virtual void update_upon_load() {}
    virtual void update_after_collection() {}
    virtual std::vector<const char*> auto_rts_triggers() const { return {}; }
    /// The run-time library's vendor: that of the output file, or 1 if it names none.
    unsigned rts_vendor() const;

    // --- symbols

    /// The name of the entry point, or null if the link needs none.
    virtual const char* entry_point_name() const;
    /// The definition of the entry point, or null. The first call reports what is wrong with it.
    virtual OFE::OF_SYMBOL* entry_point_symbol();
    virtual const char* cstart_name() const { return "_c_int00"; }
    virtual const char* main_name() const { return "_main"; }
    virtual const char* icode_section_name() const { return ".icode"; }
    virtual bool ignore_undef_sym(OFE::OF_SYMBOL*) const { return false; }
    /// True if update_symbol() has to see a reference of this name.
    virtual bool wants_update_symbol(const char*) const { return false; }
    virtual void update_symbol(OFE::OF_SYMBOL*) {}
    virtual void report_undef_symbol(OFE::OF_SYMBOL*) {}

    // --- units, in bits, and limits

    virtual unsigned fill_min_width() const { return 8; }
    virtual unsigned fill_max_width() const { return 8; }
    virtual unsigned data_unit_bit_size() const { return 8; }
    virtual unsigned code_unit_bit_size() const { return 8; }
    /// Bytes that may lie between two segments, or two sections of one segment.
    virtual uint64_t max_segment_gap() const { return 0; }
    virtual uint64_t max_section_gap() const { return 7; }
    virtual uint64_t required_alignment(LINKER_OBJECT*) const { return 0; }

    // --- command files and placement

    virtual bool is_eabi() const;
    /// The run-time convention, made on first use.
    virtual ABI* abi() = 0;
    virtual bool is_seg_attrs_allowed() const { return false; }
    virtual bool is_cregister_allowed() const { return false; }
    virtual bool sections_mix_addressability(OFE::OF_SECTION*, OFE::OF_SECTION*) const {
        return false;
    }
    virtual bool scn_addr_ops_use_bytes() const { return false; }
    virtual bool ignore_empty_section_spec(SECTION_SPEC*) const { return false; }
    virtual void update_size(COLLECTION*, uint64_t&, uint64_t&) {}
    virtual bool may_overlay(LOCATOR*, LOCATOR*) const { return false; }
    virtual bool linker_generates_trampolines() const { return false; }
    virtual bool linker_uses_callgraph() const { return false; }
    virtual void visit_callgraph() {}
    virtual bool is_copy_table_supported() const;
    virtual bool is_copy_compression_supported() const { return false; }
    virtual bool is_crc_table_supported() const { return false; }
    virtual unsigned default_crc_algorithm() const { return 0; }

    // --- far calls; each object lives to the end of the link

    /// The field of a branch: bits, how far the value is shifted left, how far the address that it
    /// counts from lies behind the instruction, and what of the instruction's address counts.
    virtual void get_rel_field_info(const OFE::OF_RELOC_TEMPLATE& rel, unsigned& bits,
                                    unsigned& shift, unsigned& bias, uint64_t& mask) const;
    /// The addresses [lo, hi] that a branch at `pc` reaches.
    virtual void get_reachable_range(uint64_t pc, const OFE::OF_RELOC_TEMPLATE& rel, uint64_t& lo,
                                     uint64_t& hi) const;
    virtual int call_bias(const OFE::OF_RELOC_TEMPLATE&) const { return 0; }
    /// Does it take more than the instruction to enter the code at `offset` of `to`? `odd`: a
    /// function symbol with bit 0 set stands there.
    virtual bool call_may_change_state(SECTION* from, const OFE::OF_RELOC_TEMPLATE& rel,
                                       uint32_t at, SECTION* to, uint64_t offset, bool odd) const;
    /// How far behind its symbol the call goes; `addend` is that of the relocation's entry, null
    /// where it stands in the instruction.
    virtual int64_t call_displacement(const TRAMP_CALL_SITE* site, const int* addend) const;
    virtual TRAMP_CALL_SITE* new_TRAMP_CALL_SITE(SECTION* section, const OFE::OF_RELOC_TYPE* type,
                                                 uint32_t offset);
    /// A callee in a section, or without one an absolute address.
    virtual TRAMP_CALLEE* new_TRAMP_CALLEE(SECTION* section, uint64_t offset);
    virtual TRAMPOLINE* new_TRAMPOLINE(TRAMP_CALLEE* callee, OBJ_FILE* file, const char* name);

    // --- load data tables; each object lives to the end of the link

    virtual COPY_TABLE* new_COPY_TABLE(const char* name, const SOURCE_POSITION* pos) = 0;
    virtual COPY_TABLE* new_CINIT_TABLE() = 0;
    virtual CRC_TABLE* new_CRC_TABLE(const char* name, const SOURCE_POSITION* pos) = 0;
    virtual HANDLER_TABLE* new_HANDLER_TABLE(unsigned capacity) = 0;
    virtual COMPRESSED_SECTION* new_COMPRESSED_SECTION(const char* name, COLLECTION* run,
                                                       short kind) = 0;

    // --- the output

    virtual bool ELF_supported() const { return false; }
    /// Sets up the output file after the first object file of the link.
    virtual void init_output_file(OFE::OBJECT_FILE*, OFE::OBJECT_FILE*) {}
    /// What relocations of type TARGET2 mean: a distance, or (as without this) an address.
    virtual void set_target2_relative(bool) {}
    /// Brings the data of an output section, which is complete, into its last form; once.
    virtual void finalize_section_data(OFE::OF_SECTION*) {}
    /// The same for a copy of an input section's data that does not go to an output section.
    virtual void finalize_copied_data(OFE::OF_SECTION*, uint8_t*, uint32_t) {}
    virtual void finalize_output_file() {}

    // --- the map file

    virtual void init_mapfile_filter();
    virtual void generate_map_file() {}
    virtual void generate_map_mem_config_units_header() {}
    virtual void generate_map_scn_alloc_header();
    virtual bool map_scn_alloc_output_section(LINKER_OBJECT* object);
    virtual void map_scn_alloc_input_object(LINKER_OBJECT* object);
    virtual void print_hole(LINKER_OBJECT* object, uint64_t start, uint64_t length);
    /// Prints the symbols, or only counts them.
    virtual int generate_map_symlist(const std::vector<OFE::OF_SYMBOL*>& symbols, bool count_only);
    virtual void generate_map_symval_heading(TEXT_TABLE& table, int row, int col);
    virtual void generate_map_symval_info(TEXT_TABLE& table, int& row, int col,
                                          OFE::OF_SYMBOL* symbol);
    void generate_map_symdef_info(const std::vector<OFE::OF_SYMBOL*>& symbols, OBJ_FILE* file);

  protected:
    bool entry_point_checked_ = false;
    bool options_final_ = false;
    std::unique_ptr<ABI> abi_;
};

/// The target of this linker, fixed from before main().
extern TARGET* const Target;
