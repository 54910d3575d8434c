// One object file, read from disk or built in memory. It owns its section table, symbol table,
// relocation, group and string tables and its machine database; formats (ELF_FILE) supply what is
// abstract here. Errors go by set_error to one handler per file; operations answer 0 or -1, or a
// value and a pending error.
#pragma once

#include "OBJEDIT04/ofe/of_state_machine.h"
#include <cstdarg>
#include <memory>

class DATA_MAP;
class TEXT_TABLE;

namespace OFE {

class OBJECT_FILE;
class OFBA_VENDOR_SCN;
struct OFBA_ATTR;
class OF_BUILD_ATTR_TABLE;
class OF_GROUP_TABLE;
class OF_MACHINE_DB;
class OF_MACHINE_RELTYPES;
struct OF_RELOC_TYPE;
class OF_SECTION;
class OF_SECTION_TABLE;
class OF_SYMBOL;
class OF_SYMBOL_TABLE;

/// What a text dump of a file shows.
struct OF_DISPFLAGS {
    bool file = true;
    bool sections = true;
    bool segments = true;
    bool symbols = true;
    bool relocs = true;
    bool groups = true;
    bool attributes = true;
    bool strings = false;
};

using OF_ERROR_HANDLER = void (*)(OBJECT_FILE*, OF_ERROR_CODE, const char*);

class OBJECT_FILE : public OF_STATE_MACHINE {
  public:
    ~OBJECT_FILE() override;

    // What the file is.
    OF_FORMAT format() const { return handle_.format; }
    virtual OF_FORMAT_VER format_version() const = 0;
    virtual OF_FILE_TYPE file_type() const = 0;
    virtual int set_file_type(OF_FILE_TYPE type) = 0;
    virtual long time_stamp() const = 0;
    virtual int set_time_stamp(long t) = 0;
    virtual void set_unsafe_to_execute() { safe_to_execute_ = false; }
    bool is_safe_to_execute() const { return safe_to_execute_; }
    virtual OF_MACHINE machine() const = 0;
    virtual bool has_entry_point() const = 0;
    virtual unsigned entry_point() const = 0;
    virtual int set_entry_point(unsigned addr) = 0;
    virtual OF_ENDIAN machine_endian() const = 0;
    virtual int set_machine_endian(OF_ENDIAN e) = 0;
    virtual OF_ENDIAN control_endian() const = 0;
    virtual const char* vendor() = 0;          // null when no vendor left its mark
    virtual unsigned flags() const = 0;        // ELF: e_flags
    virtual int set_flags(unsigned flags) = 0; // at most locked
    virtual int clear() = 0;
    virtual bool values_are_scnrel() = 0; // symbol values count from their section's start
    virtual bool represents_groups_with_sections() const { return false; }
    virtual bool has_dynamic_linkage() { return false; } // a shared object or a dynamic executable
    bool is_file_zero_init() const { return zero_init_; }
    virtual bool is_load_image_file() { return false; }

    virtual OF_SECTION_TABLE* section_table() = 0;
    virtual OF_SYMBOL_TABLE* symbol_table() = 0; // null: the file has none
    virtual OF_SYMBOL_TABLE* dynamic_symbol_table() { return nullptr; }

    // Reading and saving. load takes the handle as determine_file_properties left it.
    virtual int load(OF_FILE_HANDLE handle) = 0;
    virtual int save(OF_FILE_HANDLE handle);
    int load_obj(const char* name);
    int load_obj(FHM_FILE* file);
    int save_obj(const char* name);
    int save_obj(FHM_FILE* file);
    int reopen_for_editing();
    virtual int load_and_clear_string_table() = 0;

    // The handle.
    const OF_FILE_HANDLE& handle() const { return handle_; }
    FHM_FILE* file() const { return handle_.file; }
    const char* name() const { return handle_.name; }
    void set_name(const char* name);  // copied
    const char* display_name() const; // the handle's name, else the file's, else "(unknown file)"
    bool is_input() const { return image_.data != nullptr; } // was read from bytes that exist
    unsigned file_id() const { return file_id_; }
    unsigned load_image_index() const { return load_image_index_; }
    void set_load_image_index(unsigned i) { load_image_index_ = i; }
    ICODE_FLAG icode_flag() const { return icode_flag_; }
    void set_icode_flag(ICODE_FLAG f) { icode_flag_ = f; }
    virtual bool is_icode_present() = 0; // embedded intermediate code; looked for once

    // Errors.
    void set_error(OF_ERROR_CODE code, const char* format, ...)
        __attribute__((format(printf, 3, 4)));
    void clear_error();
    OF_ERROR_CODE error_code() const { return error_code_; }
    const char* error_text() const { return error_copy_ ? error_copy_.get() : ""; }
    OF_ERROR_HANDLER error_handler() const { return handler_; }
    void set_error_handler(OF_ERROR_HANDLER h) { handler_ = h; }

    // The machine.
    OF_MACHINE_DB* machine_db() const { return machine_db_.get(); }
    OF_MACHINE_RELTYPES* reltypes();              // shared by all files of this machine and format
    const OF_RELOC_TYPE* reloc_type(unsigned id); // by generic number
    const OF_RELOC_TYPE* reloc_type(const char* name);
    const OF_RELOC_TYPE* machine_reloc_type(unsigned number);
    const OF_RELOC_TYPE* machine_reloc_type(const char* name);
    void build_reloc_type_table(); // ahead of the first look-up
    // From now on the generic type `from` is expressed by the machine's type for `to`, in all files
    // of this machine and format; -1 when it has none.
    int remap_reloc_type(unsigned from, unsigned to);

    // Build attributes: what is said of the file, a symbol or a section, by a vendor's name, by
    // this vendor (qv_) or in the public subsection of the processor (abi_). Null, 0 and "" when
    // absent.
    virtual bool build_attributes_supported() const { return false; }
    virtual bool build_attributes_exist() = 0;
    virtual OF_BUILD_ATTR_TABLE*
    build_attributes() = 0; // made in a file built in memory; else null when there is none
    OFBA_VENDOR_SCN* battr_vendor_section(const char* vendor);
    OFBA_ATTR* battr(const char* vendor, unsigned tag);
    OFBA_ATTR* battr_create(const char* vendor, unsigned tag); // with all that it stands in
    unsigned battr_uval(const char* vendor, unsigned tag);
    const char* battr_str(const char* vendor, unsigned tag);
    OFBA_ATTR* battr_symbol(const char* vendor, OF_SYMBOL* symbol, unsigned tag);
    unsigned battr_symbol_uval(const char* vendor, OF_SYMBOL* symbol, unsigned tag);
    const char* battr_symbol_str(const char* vendor, OF_SYMBOL* symbol, unsigned tag);
    OFBA_ATTR* battr_section(const char* vendor, OF_SECTION* section, unsigned tag);
    unsigned battr_section_uval(const char* vendor, OF_SECTION* section, unsigned tag);
    const char* battr_section_str(const char* vendor, OF_SECTION* section, unsigned tag);
// clang-format off
#define OFBA_ACCESSORS(prefix, vendor) \
    OFBA_VENDOR_SCN* prefix##_battr_vendor_section() { return battr_vendor_section(vendor); } \
    OFBA_ATTR* prefix##_battr(unsigned tag) { return battr(vendor, tag); } \
    OFBA_ATTR* prefix##_battr_create(unsigned tag) { return battr_create(vendor, tag); } \
    unsigned prefix##_battr_uval(unsigned tag) { return battr_uval(vendor, tag); } \
    const char* prefix##_battr_str(unsigned tag) { return battr_str(vendor, tag); } \
    OFBA_ATTR* prefix##_battr_symbol(OF_SYMBOL* s, unsigned tag) { return battr_symbol(vendor, s, tag); } \
    unsigned prefix##_battr_symbol_uval(OF_SYMBOL* s, unsigned tag) { return battr_symbol_uval(vendor, s, tag); } \
    const char* prefix##_battr_symbol_str(OF_SYMBOL* s, unsigned tag) { return battr_symbol_str(vendor, s, tag); } \
    OFBA_ATTR* prefix##_battr_section(OF_SECTION* s, unsigned tag) { return battr_section(vendor, s, tag); } \
    unsigned prefix##_battr_section_uval(OF_SECTION* s, unsigned tag) { return battr_section_uval(vendor, s, tag); } \
    const char* prefix##_battr_section_str(OF_SECTION* s, unsigned tag) { return battr_section_str(vendor, s, tag); }
    OFBA_ACCESSORS(qv, qv_battr_vendor())
    OFBA_ACCESSORS(abi, abi_battr_vendor())
#undef OFBA_ACCESSORS
    // clang-format on

    // Who made the file, in this vendor's subsection. The versions are false when it doesn't say.
    virtual const char* producer_name() {
        return qv_battr_str(TAG_PRODUCER_NAME);
    }
    virtual bool producer_major_version(unsigned& v) {
        return producer_version(TAG_VMAJOR, v);
    }
    virtual bool producer_minor_version(unsigned& v) {
        return producer_version(TAG_VMINOR, v);
    }
    virtual bool producer_patch_version(unsigned& v) {
        return producer_version(TAG_VPATCH, v);
    }
    virtual const char* producer_version_str(); // "unknown", or as "4.5.3" or "4.5.x"
    virtual int set_producer(const char* name, unsigned major, unsigned minor, unsigned patch);

    // Raw file access for the format classes. Offsets count from the object's start in its file.
    int get_file_data(DATA_MAP& map, unsigned offset, unsigned size);
    int put_file_data(DATA_MAP& map, unsigned offset);
    int put_file_bytes(const void* bytes, size_t size, unsigned offset);
    uint8_t* output_bytes(unsigned offset,
                          size_t size); // the mapped output from `saved` on; null: not mapped
    const OF_BYTES& image() const {
        return image_;
    } // the bytes of an input file
    bool in_image(uint64_t offset, uint64_t size) const {
        return offset <= image_.size && size <= image_.size - offset;
    }

    // Sizes in addressable units over the allocated sections.
    void get_summary_section_sizes(unsigned& code, unsigned& data, unsigned& uninit);
    bool contains_default_rts_exit();
    bool contains_default_rts_auto_init();
    bool contains_default_rts_args_main();
    bool contains_default_rts_system_post_cinit();

    // A dump for people to read, of what the flags say; a name is opened for writing.
    int save_text(const char* name);
    int save_text(FHM_FILE* to);
    virtual void generate_file_info(TEXT_TABLE& table); // rows of a name and a value
    OF_DISPFLAGS& dispflags() {
        return dispflags_;
    }

    // Texts.
    static const char* error_code_name(OF_ERROR_CODE code);
    static const char* format_name(OF_FORMAT f);
    static const char* format_version_name(OF_FORMAT_VER v);
    static const char* file_type_name(OF_FILE_TYPE t);
    static const char* machine_name(OF_MACHINE m);
    static const char* simple_machine_name(OF_MACHINE m); // 1 to 11 only
    static OF_MACHINE of_machine_from_name(const char* name);
    static const char* sym_kind_name(OF_SYM_KIND k);
    static const char* sym_binding_name(OF_SYM_BINDING b);
    static const char* sym_type_name(OF_SYM_TYPE t);
    static const char* load_image_symbol_name() {
        return ".QV.load_image";
    }

    // "Linker" in the linker; decides what the output carries for the next tool of the chain.
    static const char* tool_name_m;

  protected:
    OBJECT_FILE(const OF_FILE_HANDLE& handle, OF_ERROR_HANDLER handler);

    int take_input(const OF_FILE_HANDLE& handle); // map the bytes; -1: cannot be read
    void set_machine_db(OF_MACHINE machine);
    void set_format(OF_FORMAT f) {
        handle_.format = f;
    }
    void set_final_size(unsigned size) {
        handle_.size = size;
    }

    OF_FILE_HANDLE handle_;
    OF_BYTES image_;

    virtual void save_text_extra(FHM_FILE*) {} // what the format has besides

  private:
    static constexpr unsigned TAG_PRODUCER_NAME = 5, TAG_VMAJOR = 8, TAG_VMINOR = 10,
                              TAG_VPATCH = 12;
    static const char* qv_battr_vendor();
    const char* abi_battr_vendor() const; // null: the machine has no public subsection
    bool producer_version(unsigned tag, unsigned& version);

    friend OBJECT_FILE* new_OBJECT_FILE(OF_FILE_HANDLE, OF_ERROR_HANDLER);
    bool symbol_exists(const char* name);
    int prepare_output();
    bool write_in_pieces(const uint8_t* bytes, size_t size, uint64_t offset);
    void unmap_output();

    OF_ERROR_HANDLER handler_;
    OF_ERROR_CODE error_code_ = OF_ERROR_NONE;
    std::unique_ptr<char[]> error_copy_;
    OF_MACHINE_RELTYPES* reltypes_ = nullptr;
    std::unique_ptr<uint8_t[]> image_copy_; // the file as it was saved, once it is open again
    uint8_t* output_map_ = nullptr;         // the file from its start, output_map_size_ bytes
    size_t output_map_size_ = 0;
    bool write_failed_ = false;
    std::unique_ptr<OF_MACHINE_DB> machine_db_;
    ICODE_FLAG icode_flag_ = ICODE_UNKNOWN;
    OF_DISPFLAGS dispflags_;
    bool safe_to_execute_ = true;
    bool zero_init_ = false;
    unsigned file_id_;
    unsigned load_image_index_ = 0;
    static unsigned next_file_id_m;
};

// Fills in format, version, byte order and machine of a handle by looking at the first bytes.
void determine_file_properties(OF_FILE_HANDLE& handle);

// The forms of making an object; null when the format is not known (or, with a name, the file
// cannot be opened).
OBJECT_FILE* new_OBJECT_FILE(OF_FILE_HANDLE handle, OF_ERROR_HANDLER handler);
OBJECT_FILE* new_OBJECT_FILE(OF_FORMAT format, OF_FORMAT_VER version, OF_MACHINE machine,
                             OF_ERROR_HANDLER handler, const char* name);
OBJECT_FILE* new_OBJECT_FILE(const char* name, OF_FILE_TYPE type, OBJECT_FILE* model);
OBJECT_FILE* new_OBJECT_FILE(const char* name, OF_ERROR_HANDLER handler);
OBJECT_FILE* new_OBJECT_FILE(FHM_FILE* file, unsigned size, const char* name,
                             OF_ERROR_HANDLER handler);
// Over bytes that outlive the object (a member of a mapped archive, a fuzzer's input).
OBJECT_FILE* new_OBJECT_FILE(const void* bytes, unsigned size, const char* name,
                             OF_ERROR_HANDLER handler);

} // namespace OFE
