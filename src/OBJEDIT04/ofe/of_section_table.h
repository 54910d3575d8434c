// The sections of a file by index. A section object comes into being on first access; deciding what
// is live reads raw records instead. Deleting puts a placeholder in the slot; purging closes the
// gaps and leaves old-to-new indices.
#pragma once

#include "OBJEDIT04/ofe/of_state_machine.h"
#include "OBJEDIT04/ofe/raw_records.h"
#include <vector>

class FHM_FILE;
class TEXT_TABLE;

namespace OFE {

class OF_GROUP_TABLE;
class OF_SECTION;

class OF_SECTION_TABLE : public OF_STATE_MACHINE {
  public:
    explicit OF_SECTION_TABLE(OBJECT_FILE* file);
    ~OF_SECTION_TABLE() override;

    virtual OF_SECTION* section(unsigned id); // null: no such index
    virtual OF_SECTION* section_name(const char* name,
                                     unsigned start); // first of that name from start, or null
    virtual OF_SECTION* section_addr(unsigned addr,
                                     unsigned start); // first whose run range holds addr
    virtual OF_SECTION* section_load_addr(unsigned addr, unsigned start);
    virtual OF_SECTION* section_offset(unsigned offset, unsigned start);
    virtual OF_SECTION* new_section(const char* name);
    virtual int delete_section(unsigned id);
    virtual int purge_deleted_sections();
    virtual int load_all_sections_into_mem();
    virtual bool all_sections_loaded() const { return all_loaded_; }
    virtual unsigned scnnum() const { return static_cast<unsigned>(sections_.size()); }
    virtual unsigned section_header_size() const = 0;
    virtual OF_GROUP_TABLE* new_group(const char* name) = 0;
    virtual unsigned file_offset() const = 0;
    virtual int clear();
    virtual int load(unsigned offset, unsigned entsize, unsigned count) = 0;
    virtual int update_translations(const RECORD_MAP<unsigned>& map);
    virtual int patch_section_refs();
    virtual int resolve_group_refs() = 0;
    // The sections that describe groups, ascending; a deleted one may be among them.
    virtual std::vector<unsigned> group_sections() const = 0;
    const RECORD_MAP<unsigned>& translations() const { return translations_; }

    void save_text(FHM_FILE* to);
    virtual void generate_text_info(TEXT_TABLE& table); // a heading and a row per section

    // The placeholder of deleted sections, made on first need.
    OF_SECTION* deleted_section();
    bool is_deleted(unsigned id) const {
        return placeholder_ && id < sections_.size() && sections_[id] == placeholder_;
    }
    bool has_deleted() const { return has_deleted_; }
    OF_SECTION* loaded_section(unsigned id) const {
        return id < sections_.size() ? sections_[id] : nullptr;
    }

    // The id of the section symbol of a section, as the symbol table stands; OF_DELETED: it has
    // none. One walk over the symbols serves all sections.
    unsigned section_symbol_id(unsigned section_id);

    // Raw records: no object is made. raw_section is right for sections changed in memory too.
    virtual bool raw_section(unsigned id, OF_RAW_SECTION& out) = 0;
    virtual bool has_ext_flags() { return false; } // some section carries an extended flag word
    virtual unsigned raw_reloc_table_num(unsigned section_id) = 0;
    virtual OF_RAW_RELOCS raw_relocs(unsigned section_id, unsigned table) = 0;
    // False: relocation sections may count in other symbol tables than the file's own.
    virtual bool has_one_symbol_table() const = 0;
    virtual OF_GROUP_TABLE*
    raw_group(unsigned section_id) = 0; // the group the section is a member of, or null

  protected:
    virtual OF_SECTION* alloc_section(unsigned id) = 0;
    virtual int load_section_into_mem(unsigned id) = 0; // fills sections_[id]
    void set_identity_translations();

    std::vector<OF_SECTION*> sections_; // null: not made yet
    RECORD_MAP<unsigned> translations_; // old index to new; empty: identity
    OF_SECTION* placeholder_ = nullptr;
    bool has_deleted_ = false;
    bool translations_pending_ = false;
    bool all_loaded_ = false;

  private:
    void find_section_symbols();

    std::vector<unsigned> section_symbols_;    // section id to symbol id
    unsigned section_symbols_at_ = OF_DELETED; // number of symbols when they were found
};

} // namespace OFE
