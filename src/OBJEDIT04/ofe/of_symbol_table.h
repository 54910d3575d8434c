// The symbols of a file by id; objects are made on first access, one at a time or all at once. Ids
// are stepped with next_symbol_id, since an entry may own auxiliary records in some formats.
#pragma once

#include "OBJEDIT04/ofe/of_state_machine.h"
#include "OBJEDIT04/ofe/raw_records.h"
#include <vector>

class FHM_FILE;

namespace OFE {

class OF_SECTION_TABLE;
class OF_SYMBOL;

class OF_SYMBOL_TABLE : public OF_STATE_MACHINE {
  public:
    explicit OF_SYMBOL_TABLE(OBJECT_FILE* file);
    ~OF_SYMBOL_TABLE() override;

    virtual const char* name() const = 0;
    virtual OF_SYMBOL* symbol(unsigned id); // null: no such id
    virtual OF_SYMBOL* symbol_name(const char* name,
                                   unsigned start); // first of that name from start, or null
    virtual unsigned next_symbol_id(unsigned id) const { return id + 1; }
    virtual OF_SYMBOL* new_symbol();
    // A new symbol with the fields of a record, but for the section and the value.
    virtual OF_SYMBOL* new_symbol_like(const OF_RAW_SYMBOL& model) = 0;
    // Room for so many symbols, so that none is moved as the table grows.
    void reserve(size_t symbols) { symbols_.reserve(symbols); }
    virtual OF_SYMBOL* new_symbol_at(unsigned id);
    virtual int delete_symbol(unsigned id);
    void mark_changed() { changed_ = true; }
    bool is_deleted(unsigned id) const { return id < deleted_.size() && deleted_[id]; }
    virtual int purge_deleted_symbols();
    virtual unsigned symnum() const { return symnum_; }
    virtual unsigned symbol_size() const = 0;
    virtual int load_all_symbols_into_mem();
    virtual void unload_symbol(unsigned id); // these two drop objects that can be read again
    virtual void unload();
    virtual int clear();
    virtual int update_translations(const RECORD_MAP<unsigned>& map);
    virtual int update_section_refs(const RECORD_MAP<unsigned>& map);
    virtual int patch_symbol_refs();
    virtual OF_SECTION_TABLE* section_table() const = 0;
    const RECORD_MAP<unsigned>& translations() const { return translations_; }

    void save_text(FHM_FILE* to);

    // Raw records: no object is made. A symbol changed in memory is read from its object.
    virtual bool raw_symbol(unsigned id, OF_RAW_SYMBOL& out) = 0;
    virtual unsigned first_global() const = 0; // id of the first symbol that is not local
    OF_SYMBOL* loaded_symbol(unsigned id) const {
        return id < symbols_.size() ? symbols_[id] : nullptr;
    }

  protected:
    virtual OF_SYMBOL* alloc_symbol(unsigned id) = 0;
    virtual OF_SYMBOL* load_symbol_into_mem(unsigned id) = 0; // made from the file, or null
    virtual bool from_file() const = 0;                       // entries not made yet can be read
    void replace_symbols(std::vector<OF_SYMBOL*>&& symbols, RECORD_MAP<unsigned>&& old_to_new);

    std::vector<OF_SYMBOL*> symbols_;   // null or short: not made yet
    std::vector<bool> deleted_;         // short: not deleted
    RECORD_MAP<unsigned> translations_; // empty: identity
    unsigned symnum_ = 0;
    bool has_deleted_ = false;
    bool translations_pending_ = false;
    bool all_loaded_ = false;
    bool changed_ = false; // objects hold what the file does not
};

} // namespace OFE
