// One section of an object file: its addresses, attributes, raw data, section symbol and group.
// Sizes count addressable units of unit_size() bits; a byte count is size x unit_size() / 8.
#pragma once

#include "OBJEDIT04/ofe/of_state_machine.h"
#include <memory>

class DATA_MAP;
class TEXT_TABLE;

namespace OFE {

class OF_GROUP_TABLE;
class OF_RELOC;
class OF_RELOC_TABLE;
class OF_SECTION_ALL_RELOCS;
class OF_SECTION_TABLE;
class OF_SYMBOL;

class OF_SECTION : public OF_STATE_MACHINE {
  public:
    OF_SECTION(OF_SECTION_TABLE* table, unsigned id);
    ~OF_SECTION() override;

    OF_SECTION_TABLE* section_table() const { return table_; }
    unsigned id() const { return id_; }
    void set_id(unsigned id) { id_ = id; }

    const char* name() const { return name_; } // never null; stays valid while the file lives
    virtual int set_name(const char* name);    // copied; at most locked
    void set_name_view(const char* name) {
        name_ = name ? name : "";
    } // text that outlives the file

    virtual unsigned load_addr() = 0;
    virtual int set_load_addr(unsigned addr) = 0;
    virtual unsigned run_addr() = 0;
    virtual int set_run_addr(unsigned addr) = 0;
    virtual unsigned page() = 0;
    virtual int set_page(unsigned page) = 0;

    virtual OF_SYMBOL* symbol();      // the section symbol, made when there is none
    virtual OF_SYMBOL* find_symbol(); // the section symbol, or null
    virtual OF_SYMBOL* create_section_symbol();
    bool has_cached_symbol() const { return symbol_ != nullptr; }
    void set_cached_symbol(OF_SYMBOL* s) { symbol_ = s; }

    virtual bool initialized() = 0;
    virtual unsigned align() = 0;
    virtual int set_align(unsigned align) = 0; // a power of 2, or 0
    virtual unsigned max_align() = 0;
    virtual bool is_blocked();
    virtual int set_blocked() = 0;
    virtual bool allocated() = 0;
    virtual int set_allocated(bool on) = 0;
    virtual bool loaded() = 0;
    virtual bool exec() = 0;
    virtual int set_exec() = 0;
    virtual bool data() = 0;
    virtual int set_data() = 0;
    virtual int set_const_data() = 0;
    virtual bool bss() = 0;
    virtual int set_bss() = 0;
    virtual bool writable() = 0;
    virtual bool tls() = 0;
    virtual unsigned unit_size() = 0; // bits
    virtual int set_unit_size(unsigned bits) = 0;
    virtual unsigned size() = 0; // units
    virtual int set_size(unsigned units) = 0;
    unsigned size_in_bytes();
    virtual unsigned sh_id() = 0;
    virtual unsigned file_offset() = 0; // bytes from the object's start
    virtual bool is_build_attr() = 0;
    virtual bool is_group() = 0;         // this section describes a group
    virtual OF_GROUP_TABLE* group_api(); // the group that this section describes, or null
    virtual int clear() = 0;

    // Relocations that apply to this section, over all its tables.
    virtual unsigned reloc_table_num() = 0;
    virtual OF_RELOC_TABLE* reloc_table(unsigned i) = 0;
    virtual OF_RELOC* new_reloc(bool rela) = 0;
    OF_SECTION_ALL_RELOCS all_relocs();
    void unload_relocs();
    int clear_relocs(); // empties the tables
    bool any_reloc_at_offset(unsigned offset);

    // The group that this section is a member of, or null.
    OF_GROUP_TABLE* group() const { return group_; }
    virtual int set_group(OF_GROUP_TABLE* group);
    virtual int clear_group();

    virtual bool is_noinit();                  // extended flag QV_SHF_NOINIT
    virtual unsigned ext_flags() { return 0; } // the extended flag word (QV_SHF_*)
    virtual int set_ext_flags(unsigned) { return 0; }

    // Raw data. bytes() is the contents as they stand, in the mapping or in memory, without a copy;
    // raw_data() is the same as a DATA_MAP. Writing (positions and sizes in bytes) copies a read
    // section into memory first.
    OF_BYTES bytes();
    DATA_MAP& raw_data();
    bool has_raw_data() const { return data_map_ != nullptr; }
    void drop_raw_data();
    int write_to_raw_data(const void* bytes, unsigned size, unsigned offset);
    int write_to_raw_data(DATA_MAP& from, unsigned offset);
    uint8_t* writable_bytes(unsigned offset,
                            unsigned size);   // in memory, grown as needed; null: not writable
    uint8_t* raw_data_writable(size_t& size); // all of it, in memory from the first call on
    // Where the section's bytes stand in the saved output file, to be written in place; null when
    // not possible.
    uint8_t* direct_bytes(unsigned offset, unsigned size);
    bool is_direct_write() const { return direct_write_; }
    int validate_direct_write();
    int set_direct_write();
    void clear_direct_write() { direct_write_ = false; }
    bool check_raw_data_ABW(unsigned offset,
                            unsigned& size); // cuts size to what fits; false when it was too large
    virtual int save() = 0;
    virtual void generate_text_info(TEXT_TABLE& table); // its row of the table of sections

    // What the user of this layer keeps for the section; null at first.
    void* client() const { return client_; }
    void set_client(void* client) { client_ = client; }

    // What static base-relative references to this section count from; set by the linker.
    OF_SYMBOL* static_base_symbol() const { return static_base_; }
    void set_static_base_symbol(OF_SYMBOL* s) { static_base_ = s; }

  protected:
    virtual OF_BYTES file_bytes() { return {}; } // the contents in the mapped input file
    void set_raw_data(std::unique_ptr<DATA_MAP> map);
    bool is_write_required(const void* bytes, size_t size) const;

    unsigned id_;
    bool direct_write_ = false;

  private:
    OF_SECTION_TABLE* table_;
    const char* name_ = "";
    std::unique_ptr<DATA_MAP> data_map_;
    OF_SYMBOL* symbol_ = nullptr;
    OF_GROUP_TABLE* group_ = nullptr;
    OF_SYMBOL* static_base_ = nullptr;
    void* client_ = nullptr;
};

} // namespace OFE
