// One relocation: where (offset), how (a type with its template), against what (a symbol), plus
// what (an addend in the entry, for tables that carry one).
#pragma once

#include "OBJEDIT04/ofe/of_types.h"

class TEXT_TABLE;

namespace OFE {

class OBJECT_FILE;
class OF_RELOC_TABLE;
struct OF_RELOC_TEMPLATE;
struct OF_RELOC_TYPE;
class OF_SYMBOL;

class OF_RELOC {
  public:
    OF_RELOC(OF_RELOC_TABLE* table, unsigned id) : table_(table), id_(id) {}
    OF_RELOC(const OF_RELOC&) = delete;
    OF_RELOC& operator=(const OF_RELOC&) = delete;
    virtual ~OF_RELOC() = default;

    OF_RELOC_TABLE* reloc_table() const { return table_; }
    OBJECT_FILE* ofile() const;

    virtual const OF_RELOC_TYPE* type() const = 0; // never null; OFR_INVALID when not known
    virtual int set_type(const OF_RELOC_TYPE* type) = 0;
    virtual OF_SYMBOL* symbol() = 0; // null: takes none
    virtual int set_symbol(OF_SYMBOL* symbol) = 0;
    virtual unsigned offset() const = 0;
    virtual int set_offset(unsigned offset) = 0;
    virtual unsigned scnrel_offset() = 0; // from the section's start
    virtual int set_scnrel_offset(unsigned offset) = 0;
    virtual int delete_reloc();
    virtual bool is_deleted() const;
    virtual bool is_internal() const { return false; }
    virtual int set_internal() { return 0; }
    virtual bool has_addend() const { return false; } // the entry carries the addend (RELA)
    virtual int addend() const { return 0; }
    virtual int set_addend(int) { return 0; }

    virtual bool sym_is_unresolved();
    virtual bool sym_is_unresolved_weak();
    virtual bool sym_is_unallocated_common();
    virtual void check_symrel_final_value() {}

    virtual unsigned id() const { return id_; }
    void set_id(unsigned id) { id_ = id; }
    virtual unsigned field_size() const;
    virtual unsigned field_offset() const;
    virtual unsigned container_size() const;
    virtual unsigned scale() const;
    virtual unsigned pc_mask() const;
    bool takes_symbol() const;  // the template's symbol flag
    unsigned raw_data_offset(); // bytes from the section's start

    virtual void generate_text_info(TEXT_TABLE& table); // its row of the table of relocations

    virtual int patch_raw_data() = 0;
    virtual unsigned sym_id() const = 0;
    virtual int set_sym_id(unsigned id) = 0;

  private:
    OF_RELOC_TABLE* table_;

  protected:
    unsigned id_;
};

} // namespace OFE
