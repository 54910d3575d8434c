// One symbol. Files hold millions of them, so an object is made only for those that take part, its
// name is a view into the file's string table, and format classes allocate from a pool.
#pragma once

#include "OBJEDIT04/ofe/of_types.h"

class TEXT_TABLE;

namespace OFE {

class OBJECT_FILE;
class OF_SECTION;
class OF_SYMBOL_TABLE;

class OF_SYMBOL {
  public:
    OF_SYMBOL(OF_SYMBOL_TABLE* table, unsigned id) : table_(table), id_(id) {}
    OF_SYMBOL(const OF_SYMBOL&) = delete;
    OF_SYMBOL& operator=(const OF_SYMBOL&) = delete;
    virtual ~OF_SYMBOL() = default;

    OF_SYMBOL_TABLE* symbol_table() const { return table_; }
    OBJECT_FILE* ofile() const;
    unsigned id() const { return id_; }
    void set_id(unsigned id) { id_ = id; }

    const char* name() const { return name_; } // never null; valid to process exit
    int set_name(const char* name);            // copied; the table must be open
    int set_name_view(const char* name);       // the same, for text that lives to process exit

    virtual unsigned value() const = 0;
    virtual int set_value(unsigned value) = 0;
    virtual bool refs_section() const = 0;
    virtual OF_SECTION* section() const = 0; // null when refs_section() is false
    virtual unsigned section_id() const = 0;
    virtual int
    set_section(OF_SECTION* section) = 0; // nothing for null or a section of another file
    virtual unsigned size() const = 0;
    virtual int set_size(unsigned size) = 0;
    virtual OF_SYM_KIND kind() const = 0;
    virtual int set_kind(OF_SYM_KIND kind) = 0;
    virtual OF_SYM_BINDING binding() const = 0;
    virtual int set_binding(OF_SYM_BINDING binding) = 0;
    virtual OF_SYM_TYPE type() const = 0;
    virtual int set_type(OF_SYM_TYPE type) = 0;
    virtual unsigned visibility() const { return OF_VIS_DEFAULT; }
    virtual int set_visibility(unsigned) { return 0; }
    virtual bool is_load_label() const = 0;
    virtual bool is_alias() const { return alias_; }
    virtual void set_alias(bool on) { alias_ = on; }
    virtual int set_near_common();
    virtual bool is_near_common() const { return false; }

    // Links to the symbol that this one stands for.
    virtual OF_SYMBOL* resolved_by() const { return resolved_by_; }
    virtual OF_SYMBOL*
    resolved_by_final(); // the end of the chain; this symbol when it has none or loops
    virtual void set_resolved_by(OF_SYMBOL* s); // never itself
    virtual void set_final_value(bool on) { final_value_ = on; }
    virtual bool final_value() const { return final_value_; }
    virtual bool final() const { return final_; }
    virtual void set_final(bool on) { final_ = on; }

    virtual int set_section_id(unsigned id) = 0;
    virtual int patch_raw_data() = 0; // rewrite the encoded record in a locked table

    virtual void generate_text_info(TEXT_TABLE& table); // its row of the table of symbols

    // The linker's own number for the symbol's name; 0: none.
    unsigned global_id() const { return global_id_; }
    void set_global_id(unsigned id) { global_id_ = id; }

    static bool less_than_symname(const OF_SYMBOL* a, const OF_SYMBOL* b);

  private:
    OF_SYMBOL_TABLE* table_;
    const char* name_ = "";
    OF_SYMBOL* resolved_by_ = nullptr;
    unsigned id_;
    unsigned global_id_ = 0;

  protected:
    bool final_value_ : 1 = false;
    bool final_ : 1 = false;
    bool alias_ : 1 = false;
};

} // namespace OFE
