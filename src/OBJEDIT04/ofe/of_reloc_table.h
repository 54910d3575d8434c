// The relocations of one table by index, and the walk over all relocations of a section.
#pragma once

#include "OBJEDIT04/ofe/of_state_machine.h"
#include <utility>
#include <vector>

class FHM_FILE;
class TEXT_TABLE;

namespace OFE {

class OF_RELOC;
struct OF_RELOC_TYPE;
class OF_SECTION;
class OF_SYMBOL_TABLE;

class OF_RELOC_TABLE : public OF_STATE_MACHINE {
  public:
    explicit OF_RELOC_TABLE(OBJECT_FILE* file);
    ~OF_RELOC_TABLE() override;

    virtual OF_RELOC* reloc(unsigned i); // null: no such index
    // First relocation at the offset (of the type, unless that is null) from index start, or null.
    virtual OF_RELOC* reloc_offset_type(unsigned offset, const OF_RELOC_TYPE* type, unsigned start);
    virtual OF_SECTION* section_relocated() = 0;
    virtual OF_SYMBOL_TABLE* symbol_table() = 0;
    virtual bool is_rela() const = 0;
    virtual OF_RELOC* new_reloc();
    virtual int delete_reloc(unsigned i);
    bool is_deleted(unsigned i) const { return i < deleted_.size() && deleted_[i]; }
    virtual int purge_deleted_relocs();
    virtual int load_all_relocs_into_mem();
    virtual unsigned relnum() const { return relnum_; }
    virtual bool refs_section(OF_SECTION* section);
    virtual unsigned reloc_size() const = 0;
    virtual unsigned file_offset() = 0;
    virtual void unload(); // drops objects that can be read again
    virtual int clear();
    virtual int update_symbol_refs(const RECORD_MAP<unsigned>& map);
    int sort_relocs(); // by offset, then id
    void swap_relocs(unsigned a, unsigned b);
    bool any_reloc_at_offset(unsigned offset);
    void save_text(FHM_FILE* to);
    virtual void generate_text_info(TEXT_TABLE& table); // a heading and a row per relocation
    void mark_unsorted() {
        sorted_ = false;
        offset_map_stale_ = true;
    }

  protected:
    virtual OF_RELOC* alloc_reloc(unsigned i) = 0;
    virtual OF_RELOC* load_reloc_into_mem(unsigned i) = 0; // made from the file, or null
    virtual bool from_file() const = 0;

    std::vector<OF_RELOC*> relocs_; // null or short: not made yet
    std::vector<bool> deleted_;
    unsigned relnum_ = 0;
    bool sorted_ = false;
    bool has_deleted_ = false;
    bool changed_ = false; // objects hold what the file does not

  private:
    void build_offset_map();

    std::vector<std::pair<unsigned, unsigned>>
        offset_map_; // offset to the last index there, ascending
    bool offset_map_stale_ = true;
};

// Steps over a section's relocations, table after table, past the deleted ones.
class OF_SECTION_RELOC_ITERATOR {
  public:
    OF_SECTION_RELOC_ITERATOR(OF_SECTION* section, unsigned table_num);
    OF_RELOC* operator*() const;
    OF_SECTION_RELOC_ITERATOR& operator++() {
        increment();
        return *this;
    }
    bool operator==(const OF_SECTION_RELOC_ITERATOR& o) const {
        return num_ == o.num_ && index_ == o.index_;
    }
    OF_RELOC_TABLE* table() const { return table_; }

  private:
    void increment();
    void enter(); // load the table at num_ and stop at its first live entry, or go on to the next
    void settle();

    OF_SECTION* section_;
    OF_RELOC_TABLE* table_ = nullptr;
    unsigned num_;
    unsigned index_ = 0;
};

class OF_SECTION_ALL_RELOCS {
  public:
    explicit OF_SECTION_ALL_RELOCS(OF_SECTION* section) : section_(section) {}
    OF_SECTION_RELOC_ITERATOR begin() const;
    OF_SECTION_RELOC_ITERATOR end() const;

  private:
    OF_SECTION* section_;
};

} // namespace OFE
