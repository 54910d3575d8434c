// What a run-time convention fixes: names of sections and symbols, default memory, stack, heap and
// arguments, the tables of initialisers, what stays in a link and what is reserved.
//
// The linker asks by operation and never by name, so another convention is another class. Names are
// data: the rows of abi_names.def are the operations of that name. Target->abi() is the one object;
// it may be asked once options are final.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class COLLECTION;
class LINKER_OBJECT;
class LOCATOR;
class OBJ_FILE;
class FILL_SPEC;
class SECTION;
class SOURCE_POSITION;
namespace OFE {
class OBJECT_FILE;
class OF_GROUP_TABLE;
class OF_RELOC;
class OF_SECTION;
class OF_SYMBOL;
struct OF_RAW_SECTION;
} // namespace OFE

class ABI {
  public:
    virtual ~ABI() = default;

#define ABI_NAME(operation, text)                                                                  \
    virtual const char* operation() const {                                                        \
        return text;                                                                               \
    }
#include "ELFLNK/target/abi_names.def"
#undef ABI_NAME

    // --- source-level names and link names; results live to the end of the process

    virtual bool uses_hll_prefix() const {
        return false;
    }
    virtual char hll_prefix() const {
        return '_';
    }
    virtual char hll_alt_prefix() const {
        return '_';
    }
    virtual bool has_alt_hll_prefix() const {
        return false;
    }
    /// The source-level name of a link name.
    virtual const char* hll_name(const char* link_name) const;
    /// The link name of a source-level name.
    virtual const char* hll_to_link_name(const char* name) const;
    virtual const char* hll_to_alt_link_name(const char* name) const;
    /// The scheme of mangled C++ names.
    virtual int mangle_scheme() const {
        return 1;
    }

    // --- default memory and output sections

    /// What the link uses where the command file says nothing of memory or sections.
    virtual void default_allocation();
    virtual uint64_t default_block_size() const {
        return 0;
    }
    virtual int default_memory_page(LINKER_OBJECT*) const {
        return 0;
    }
    virtual bool supports_memory_pages() const {
        return false;
    }
    /// A new range of the memory map.
    virtual void default_memory_range(const char* name, int page, uint64_t origin, uint64_t length,
                                      unsigned attrs);
    /// A new collection under the root that is placed in the named range, for load and run.
    virtual COLLECTION* default_group(const char* name, const char* range);
    /// Makes output section `name` with copies of `parent`'s locators if the parent stands directly
    /// under the root and has no absolute address; null if nothing was made.
    COLLECTION* create_and_inherit_output_section(const char* name, const char* parent,
                                                  bool force = false);

    // --- sections that the linker makes

    /// True for a section that a final link makes itself: stack, heap, arguments.
    virtual bool is_linker_generated_section(const char* name) const;
    virtual void define_linker_sections();
    virtual void define_stack_section();
    virtual void define_heap_section();
    virtual void define_args_section();
    virtual void define_alternate_stack_symbols(LINKER_OBJECT*) {}
    virtual void define_alternate_heap_symbols(LINKER_OBJECT*) {}
    virtual void define_alternate_args_symbols(LINKER_OBJECT*) {}
    virtual uint64_t default_stack_size() const {
        return 0;
    }
    virtual uint64_t default_heap_size() const {
        return 0;
    }
    virtual unsigned stack_alignment() const {
        return 4;
    }
    virtual unsigned sysmem_alignment() const {
        return 4;
    }
    virtual unsigned args_alignment() const {
        return 4;
    }
    virtual unsigned cio_alignment() const {
        return 4;
    }
    virtual unsigned ppinfo_alignment() const {
        return 4;
    }
    virtual unsigned ppdata_alignment() const {
        return 4;
    }
    virtual uint64_t args_min_size() const {
        return 8;
    }
    virtual bool args_weak_symbol_ref() const {
        return true;
    }
    virtual void define_link_time_constants() {}
    /// A read-only section of 4 bytes of 0 for the caller to fill, with `name` as its address.
    virtual SECTION* create_constant_variable(const char* name);

    // --- tables of initialisers

    virtual void form_init_tables();
    virtual void form_cinit_table() {}
    virtual void form_pinit_table();
    virtual void form_binit_table() {}
    virtual bool need_compressed_cinit() const;
    virtual uint64_t cinit_pad_size() const {
        return 0;
    }
    virtual uint64_t cinit_pad_align() const {
        return 0;
    }
    virtual uint64_t pinit_pad_size() const {
        return 0;
    }
    virtual uint64_t pinit_pad_align() const {
        return 0;
    }
    virtual bool const_data_needs_cinit(LINKER_OBJECT*) const {
        return false;
    }

    // --- widths, in bits

    virtual unsigned max_data_bit_align() const = 0;
    virtual unsigned max_code_bit_align() const = 0;
    virtual unsigned data_address_bit_size() const = 0;
    virtual unsigned code_address_bit_size() const = 0;
    virtual unsigned data_address_bit_align() const {
        return data_address_bit_size();
    }
    virtual unsigned code_address_bit_align() const {
        return code_address_bit_size();
    }

    // --- what a section is. The forms on raw records make no object.

    /// Metadata of the object format.
    bool section_is_omdata(OFE::OF_SECTION* section) const;
    virtual bool section_is_omdata(const OFE::OF_RAW_SECTION& section,
                                   const OFE::OBJECT_FILE* file) const;
    /// Debug and cross-reference data: kept out of the memory image.
    bool section_is_pmdata(OFE::OF_SECTION* section) const;
    virtual bool section_is_pmdata(const OFE::OF_RAW_SECTION& section,
                                   const OFE::OBJECT_FILE* file) const;
    /// Neither of the two.
    bool section_is_progdata(OFE::OF_SECTION* section) const;
    bool section_is_progdata(const OFE::OF_RAW_SECTION& section,
                             const OFE::OBJECT_FILE* file) const;
    bool section_is_init_or_fini(OFE::OF_SECTION* section) const;
    virtual bool section_is_init_or_fini(const OFE::OF_RAW_SECTION& section,
                                         const OFE::OBJECT_FILE* file) const;
    /// True if the section stays in the link though nothing reaches it.
    bool retain_section(OFE::OF_SECTION* section) const;
    virtual bool retain_section(const OFE::OF_RAW_SECTION&, const OFE::OBJECT_FILE*) const {
        return false;
    }
    virtual bool section_name_is_reserved(const char* name) const;
    /// The part of a section's name before its subsection.
    virtual std::string section_base_name(const char* name) const;
    virtual bool linker_controls_section_contents(const char* name) const;
    virtual const char* linker_controlled_section_diag_name(const char* name) const;
    virtual bool section_cannot_be_copied(const char* name) const;
    virtual bool is_reserved_far_section(const char*) const {
        return false;
    }
    virtual bool splitting_permitted(LOCATOR* locator) const;
    virtual const char* common_block_section_name(OFE::OF_SYMBOL*) const {
        return ".bss:.common";
    }
    /// The prefixes behind which the subsection search of section_base_name() starts.
    const std::vector<std::string_view>& reserved_prefixes() const;
    virtual void append_reserved_prefixes(std::vector<std::string_view>&) const {}

    // --- symbols

    virtual bool use_invalid_binding_symbols() const {
        return false;
    }
    virtual void define_abi_symbols();
    virtual bool pprof_supported() const {
        return false;
    }
    virtual void define_pprof_symbols();
    virtual void update_output_symbols() {}
    virtual void add_mapping_symbols_to_uninitialized_sections() {}
    virtual void add_symbol_maps() {}
    virtual void add_retain_specs() {}
    virtual bool is_muldef_ok(OFE::OF_SYMBOL*) const {
        return false;
    }
    virtual bool is_static_guard(const char*) const {
        return false;
    }
    virtual uint64_t entry_point_value(uint64_t address) const {
        return address;
    }
    /// With `use_lowest` the symbol stands for the lowest allocated output section, else for the
    /// first one.
    virtual void define_static_base_symbol(bool) {}
    /// The defined symbol of static_base_name(), or null.
    virtual OFE::OF_SYMBOL* static_base_symbol() const;
    /// Tells every allocated output section its static base.
    virtual void set_static_base();
    virtual bool need_static_base() const {
        return false;
    }

    // --- relocations and files

    /// True if process_reloc_attr() does anything.
    virtual bool wants_reloc_attr() const {
        return false;
    }
    virtual void process_reloc_attr(OFE::OF_SYMBOL*, OFE::OF_RELOC*) {}
    virtual bool legal_nearDP_relocation(LINKER_OBJECT*, OFE::OF_RELOC*) const {
        return true;
    }
    virtual bool legal_dynamic_object(OBJ_FILE*) {
        return false;
    }
    virtual bool check_file_compatibility(OBJ_FILE*) {
        return true;
    }
    virtual bool expects_build_attributes() const {
        return false;
    }
    virtual void demote_exported_comdat_class(OFE::OF_GROUP_TABLE*) {}
    virtual bool requires_tdeh() const {
        return true;
    }

    // --- padding and fill

    virtual uint64_t pad_size(LOCATOR*) const {
        return 0;
    }
    virtual bool pads_code_with_nops() const {
        return false;
    }
    virtual bool fills_code_with_nops() const {
        return false;
    }
    virtual FILL_SPEC* get_nop_fill() {
        return nullptr;
    }

    // --- phases

    virtual void model_section_attributes() {}
    void check_abi_constraints();
    virtual void check_abi_specific_constraints() {}
    virtual void update_upon_placement();
    virtual void check_outfile() {}
    virtual void write_auxillary_files() {}

    // --- dynamic linkage and thread-local storage: none in the base

    virtual void dynamic_object_originate() {}
    virtual bool supports_dynamic_linkage() const {
        return false;
    }
    virtual bool gabi_segment_mode() const {
        return false;
    }
    /// True if the tables of dynamic linking lie in the program's memory, and their alignment
    /// there.
    virtual bool need_loadable_metadata() const {
        return false;
    }
    virtual unsigned metadata_alignment() const {
        return 0;
    }
    virtual uint64_t max_page_size() const {
        return 0;
    }
    virtual bool need_symver_support() const {
        return false;
    }
    virtual bool is_shared() const {
        return false;
    }
    virtual bool allow_symbol_preemption() const {
        return false;
    }
    virtual bool convert_weak_to_strong() const {
        return false;
    }
    virtual bool forced_static_binding() const {
        return false;
    }
    virtual bool allows_import_ref_patching() const {
        return false;
    }
    virtual bool is_exported_def(OFE::OF_SYMBOL*) const {
        return false;
    }
    virtual bool is_dynamically_relocatable() const {
        return false;
    }
    virtual bool is_readonly_unbound_ref_allowed(OFE::OF_RELOC*) const {
        return false;
    }
    virtual bool is_tls_supported() const {
        return false;
    }
    virtual bool is_tls_init_needed() const {
        return false;
    }

  protected:
    /// The stack, heap or argument collection with its memory reserved; null if it takes no part in
    /// the link.
    COLLECTION* expand_rts_section(const char* name, uint64_t size, unsigned alignment,
                                   bool create);
    /// Assigns `name` an address operator (an EXPR_OPCODE) of `object`.
    static void assign_address(const char* name, int opcode, LINKER_OBJECT* object);
    /// Assigns `name` the value -1, on the root.
    void bind_invalid(const char* name);
    /// True for a link that is neither partial nor a dynamic library.
    static bool is_final_executable_link();
    /// The fixed size from the option or the default, and the section's names, of stack or heap.
    COLLECTION* define_memory_section(const char* name, int option, uint64_t default_size,
                                      unsigned alignment, const char* option_text);

  private:
    mutable std::vector<std::string_view> reserved_prefixes_;
    unsigned constant_counter_ = 0;
};

/// The phase between collect() and placement(): the convention turns from names into objects.
void model_ABI();
