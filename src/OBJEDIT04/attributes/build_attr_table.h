// Build attributes: how code was built, per file, per section or per symbol. A section of them
// holds a format byte and one subsection per vendor, each with lists of attributes by scope.
//
// The table is read once, on first need, every offset checked; what is malformed is skipped and the
// rest stays. Attributes stand in their list by value, ordered by tag number, so that a query is a
// binary search over integers; texts are shared copies that live to exit. A pointer to an attribute
// holds until its list changes.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "OBJEDIT04/attributes/build_attr_tag.h"
#include "OBJEDIT04/ofe/of_state_machine.h"

class DATA_MAP;
class FHM_FILE;

namespace OFE {

class OBJECT_FILE;
class OFBA_VENDOR_SCN;
class OF_BUILD_ATTR_TABLE;
class OF_SECTION;
class OF_SYMBOL;

/// One attribute: a tag and its value.
struct OFBA_ATTR {
    const OFBA_TAG* tag = nullptr;
    OFBA_AVAL val;

    /// 0; -1 for a tag that is not understood and needs to be; -ENOENT when what follows cannot be
    /// told.
    int load(DATA_MAP& map, OFBA_TAG_MAP* tags, OF_MACHINE_DB* db);
    /// Nothing for an empty value.
    void save(DATA_MAP& map, OF_MACHINE_DB* db) const;
    OFBA_AVAL value() const { return val; }
    bool is_empty() const;
    static bool tag_less(const OFBA_ATTR& a, const OFBA_ATTR& b) {
        return a.tag->number < b.tag->number;
    }
};

/// The attributes of one scope: of the file, or of the sections or symbols with the list's ids.
class OFBA_ATTR_LIST {
  public:
    OFBA_ATTR_LIST(OFBA_VENDOR_SCN* owner, OFBA_SCOPE scope) : owner_(owner), scope_(scope) {}

    OFBA_SCOPE scope() const { return scope_; }
    OFBA_VENDOR_SCN* vendor_section() const { return owner_; }
    const std::vector<OFBA_ATTR>& attrs() const { return attrs_; }
    const std::vector<unsigned>& ids() const { return ids_; }

    /// Takes over the attributes of another list, of any file, and its ids if asked.
    void copy(const OFBA_ATTR_LIST& from, bool with_ids);
    /// Reads a list's contents, from behind its size to the end of the map.
    int load(DATA_MAP& map);
    void save(DATA_MAP& map);
    void save_text(FHM_FILE* to);

    /// The attribute of a tag, the `start`th of those that have it; null when there is none.
    OFBA_ATTR* attr_tag(unsigned tag, unsigned start = 0);
    unsigned uval(unsigned tag); // 0 when absent
    const char* str(unsigned tag);
    /// Adds an attribute behind those of the same tag. Setting makes one when there is none.
    OFBA_ATTR* new_attr(unsigned tag);
    int delete_attr(unsigned index);
    int set_uval(unsigned tag, unsigned value);
    int set_str(unsigned tag, const char* text);

    void add_section(OF_SECTION* section);
    void add_symbol(OF_SYMBOL* symbol);
    bool applies_to(unsigned id) const;
    OF_SECTION* section(unsigned i) const; // null in a list of another scope
    OF_SYMBOL* symbol(unsigned i) const;
    /// Translates the ids; those that are gone go.
    void update_refs(const RECORD_MAP<unsigned>& map);

  private:
    void sort_attrs();
    void changed();

    OFBA_VENDOR_SCN* owner_;
    OFBA_SCOPE scope_;
    bool sorted_ = true;
    std::vector<OFBA_ATTR> attrs_;
    std::vector<unsigned> ids_;
    std::vector<uint8_t> opaque_; // attributes of a vendor whose values cannot be told apart
};

/// The lists of one vendor.
class OFBA_VENDOR_SCN {
  public:
    OFBA_VENDOR_SCN(OF_BUILD_ATTR_TABLE* table, std::string_view name);

    OF_BUILD_ATTR_TABLE* table() const { return table_; }
    const char* name() const { return tags_->vendor(); }
    void set_vendor_name(std::string_view name);
    OFBA_TAG_MAP* tags() const { return tags_; }
    const OFBA_TAG* tag_name(const char* name) const { return tags_->tag_name(name); }

    /// Takes over the lists of file scope of another vendor section, and all lists, with their ids,
    /// within one file.
    void copy(const OFBA_VENDOR_SCN& from);
    /// Reads the lists, up to the end of the map.
    int load(DATA_MAP& map);
    void save(DATA_MAP& map);
    void save_text(FHM_FILE* to);

    unsigned attrlist_num() const { return static_cast<unsigned>(lists_.size()); }
    OFBA_ATTR_LIST* attrlist(unsigned i) const {
        return i < lists_.size() ? lists_[i].get() : nullptr;
    }
    OFBA_ATTR_LIST* new_attrlist(OFBA_SCOPE scope);
    int delete_attrlist(unsigned i);
    OFBA_ATTR_LIST* file_list() const { return scope_list(Tag_File); } // null: none
    OFBA_ATTR_LIST* scope_list(OFBA_SCOPE scope) const;                // the first of that scope

    OFBA_ATTR* attr_file_tag(unsigned tag) const;
    OFBA_ATTR* attr_section_tag(unsigned tag, OF_SECTION* section) const;
    OFBA_ATTR* attr_symbol_tag(unsigned tag, OF_SYMBOL* symbol) const;

    void update_refs(OFBA_SCOPE scope, const RECORD_MAP<unsigned>& map);

  private:
    OFBA_ATTR* attr_scoped_tag(OFBA_SCOPE scope, unsigned tag, unsigned id) const;
    int load_list(DATA_MAP& map);

    OF_BUILD_ATTR_TABLE* table_;
    OFBA_TAG_MAP* tags_ = nullptr; // never null once made
    std::vector<std::unique_ptr<OFBA_ATTR_LIST>> lists_;
};

/// The contents of a build attributes section.
class OF_BUILD_ATTR_TABLE final : public OF_STATE_MACHINE {
  public:
    explicit OF_BUILD_ATTR_TABLE(OF_SECTION* section);
    ~OF_BUILD_ATTR_TABLE() override;

    int progress_to_state(OF_STATE target) override;
    int revert_to_state(OF_STATE target) override;

    /// Reads the section once. 0, or the union of what went wrong; -1 when there is nothing to
    /// read.
    int load();
    /// Writes the section anew.
    int save();
    void save_text(FHM_FILE* to);
    unsigned char format_version() const { return format_; }

    unsigned vscn_num() const { return static_cast<unsigned>(vendors_.size()); }
    OFBA_VENDOR_SCN* vscn(unsigned i) const {
        return i < vendors_.size() ? vendors_[i].get() : nullptr;
    }
    /// The first subsection of a vendor from `start`, or null.
    OFBA_VENDOR_SCN* vscn_name(const char* vendor, unsigned start = 0) const;
    OFBA_VENDOR_SCN* vscn_copy(const OFBA_VENDOR_SCN* from);
    OFBA_VENDOR_SCN* new_vscn(const char* vendor);
    int delete_vscn(unsigned i);

    void update_section_refs(const RECORD_MAP<unsigned>& map);
    void update_symbol_refs(const RECORD_MAP<unsigned>& map);
    /// The contents are no longer what the bytes say.
    void note_change();

  private:
    int load_vscn(DATA_MAP& map);

    OF_SECTION* section_;
    std::vector<std::unique_ptr<OFBA_VENDOR_SCN>> vendors_;
    unsigned char format_ = 'A';
    bool loaded_ = false;
    bool touched_ = false; // changed since it was read
};

} // namespace OFE
