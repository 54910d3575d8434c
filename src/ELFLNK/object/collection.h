// A COLLECTION is a linker object with members: an output section, a GROUP, a UNION, a load
// segment, a section specification, or a merely logical container.
//
// Its size is kept and flushed by every change below it. Growth by one member adds the
// difference instead, so that a hundred thousand additions stay linear.
#pragma once

#include "ELFLNK/object/linker_object.h"

class ROOT_COLLECTION;
class SECTION;
class SECTION_SPEC;
struct LOAD_DATA_TABLE_SPECS;

enum COLLECTION_KIND : uint32_t {
    COLLECTION_OUTSECT = 0,
    COLLECTION_LOADSEG = 1,
    COLLECTION_GROUP = 2,
    COLLECTION_UNION = 3,
    COLLECTION_LOGICAL = 4,
};

class COLLECTION : public LINKER_OBJECT {
  public:
    static constexpr int NO_PAGE = -1;

    COLLECTION(const char* name, COLLECTION_KIND kind, const SOURCE_POSITION* pos = nullptr);
    ~COLLECTION() override;

    bool has_assign_to_dot_expression() const override;
    bool has_load_data() const override;
    bool is_collection() const override { return true; }
    uint64_t size() override;
    uint64_t est_size_min() override;
    uint32_t alignment() const override { return alignment_; }
    void update_upon_placement() override;
    uint32_t qv_flags() override;
    void dump_header(PPRINT* out) override;
    void dump_properties(PPRINT* out) override;

    virtual void set_min_align(uint32_t align);
    /// Appends a default specification for the collection's own name.
    virtual SECTION_SPEC* set_default_spec();
    virtual void merge_placement_attributes(uint32_t bits);
    /// Makes an output section below this collection; null on an output section.
    virtual COLLECTION* default_output_section(const char* name, const char* range_name,
                                               uint32_t alignment, int page = NO_PAGE);

    // ---- kind and user's wishes ------------------------------------------------------------
    COLLECTION_KIND kind() const { return kind_; }
    void set_kind(COLLECTION_KIND kind) { kind_ = kind; }
    const char* collection_kind_name() const;
    bool is_union() const { return kind_ == COLLECTION_UNION; }
    bool is_user_specified() const { return user_specified_; }
    void set_user_specified(bool on = true) { user_specified_ = on; }
    /// Created by collect() to catch a bound section that no specification names.
    bool is_made_by_collect() const { return made_by_collect_; }
    void set_made_by_collect(bool on = true) { made_by_collect_ = on; }
    uint32_t order_number() const { return order_number_; }
    void set_order_number(uint32_t n) { order_number_ = n; }
    bool is_locked() const { return locked_; }
    void set_locked(bool on = true) { locked_ = on; }
    /// Raise the alignment without touching the minimum.
    void raise_alignment(uint32_t align);

    // ---- members ---------------------------------------------------------------------------
    const MEMBER_LIST& members() const { return members_; }
    void add_member(LINKER_OBJECT* obj, bool merge = true);
    /// Nothing for an object that isn't a member.
    void remove_member(LINKER_OBJECT* obj);
    MEMBER_LIST::iterator erase_member(MEMBER_LIST::iterator at);
    void replace_member(LINKER_OBJECT* with, LINKER_OBJECT* old);
    void insert_member(MEMBER_LIST::iterator before, LINKER_OBJECT* obj, bool merge = true);
    /// Position of a direct member; end() for any other object.
    MEMBER_LIST::iterator member_position(LINKER_OBJECT* obj);
    MEMBER_LIST::iterator members_begin() { return members_.begin(); }
    MEMBER_LIST::iterator members_end() { return members_.end(); }
    void append(const MEMBER_LIST& objs);
    void transfer_sspec_members(SECTION_SPEC* spec) {
        transfer_sspec_members(spec, members_.end());
    }
    void transfer_sspec_members(SECTION_SPEC* spec, MEMBER_LIST::iterator before);
    /// Stable sort of the direct members.
    void sort_members(bool (*less)(LINKER_OBJECT*, LINKER_OBJECT*)) { members_.sort(less); }
    /// The same members in another order.
    void set_member_order(const std::vector<LINKER_OBJECT*>& order);

    // ---- size ------------------------------------------------------------------------------
    /// The size of this collection and all its ancestors must be computed anew.
    void flush_size();
    void update_size();
    void set_fixed_min_size(uint64_t size);
    bool has_fixed_min_size() const { return has_fixed_min_size_; }
    uint64_t fixed_min_size() const { return fixed_min_size_; }
    /// First locator (alternate run, run, load) with a layout that isn't split, or null.
    LOCATOR* layout_locator() const;

    // ---- walks -----------------------------------------------------------------------------
    /// All objects below, or without into_outsects those that lie in no output section, depth first
    /// in member order; each passing one once.
    void flatten(std::vector<LINKER_OBJECT*>& out, const OBJECT_PREDICATE& pass = nullptr,
                 bool into_outsects = true) const;
    LINKER_OBJECT* find_first_member(const OBJECT_PREDICATE& pass) const;
    bool has_member(const OBJECT_PREDICATE& pass) const {
        return find_first_member(pass) != nullptr;
    }
    SECTION* find_any_section() const;
    void clear_visited_flags();
    bool has_content() { return size() != 0; }
    bool has_copy_section() const;
    bool has_crc_section() const;
    /// Output sections below a GROUP or UNION that phase 1 doesn't place.
    void find_all_non_p1_member_outsects(std::vector<LINKER_OBJECT*>& out) const;

    // ---- order, split, flattening ----------------------------------------------------------
    bool is_unordered() const;
    void clear_unordered();
    bool is_split() const;
    void merge_consecutive_specs();
    void flatten_section_specs();
    bool ok_to_flatten(const LINKER_OBJECT* child) const;
    static void split_outsects();
    void split_outsect();
    bool can_coalesce(const std::vector<LINKER_OBJECT*>& group, LINKER_OBJECT* obj) const;
    void coalesce_into_outsect(const std::vector<LINKER_OBJECT*>& group);

    // ---- attributes ------------------------------------------------------------------------
    /// Members' attributes up, then the collection's down.
    void set_placement_attributes();
    void set_attributes_from_members(bool in_outsect);
    void propagate_attributes_into_members(bool in_outsect);
    void verify_consistent_noinit_vals(const std::vector<LINKER_OBJECT*>& noinit,
                                       const std::vector<LINKER_OBJECT*>& other);

    // ---- restrictions on the user's sections -------------------------------------------------
    void enforce_spec_restrictions();
    void enforce_linker_controlled_section_restrictions();
    /// Takes over the user's output section of the same name; false if there is none.
    bool replace_user_outsect();

    /// Appends a DOT_EXPRESSION for the assignment name = dot.
    void add_assign_from_dot(const char* symbol);

    // ---- load data tables ------------------------------------------------------------------
    /// The operator table(name, compression=word) of a command file; null without the word.
    void add_copy_table_spec(const char* name, const char* compression, const SOURCE_POSITION* pos);
    /// The operator crc_table(name, algorithm=word); null without the word.
    void add_crc_table_spec(const char* name, const char* algorithm, const SOURCE_POSITION* pos);
    /// What the operators asked for; null for nothing.
    LOAD_DATA_TABLE_SPECS* copy_table_specs() const { return copy_table_specs_; }
    LOAD_DATA_TABLE_SPECS* crc_table_specs() const { return crc_table_specs_; }
    void drop_copy_table_specs() { copy_table_specs_ = nullptr; }

  protected:
    /// Empties the list; the members keep no parent.
    void clear_members();
    void check_unlocked(const char* action, const LINKER_OBJECT* obj) const;
    /// Fix the size without a walk over the members.
    void set_valid_size(uint64_t size, uint64_t est);
    void link_member(MEMBER_LIST::iterator before, LINKER_OBJECT* obj);

  private:
    struct EXTENT {
        uint64_t size = 0;
        uint64_t est = 0;
    };
    /// Lists the same as often as it is found; true if each object was found below its parent, and
    /// so only once.
    bool query(std::vector<LINKER_OBJECT*>& out, const OBJECT_PREDICATE& pass,
               bool into_outsects) const;
    /// A member was added: only it is missing in the sum.
    void note_added(LINKER_OBJECT* obj);
    void sum_members();
    void add_to_sum(LINKER_OBJECT* member);

    COLLECTION_KIND kind_;
    MEMBER_LIST members_;
    LOAD_DATA_TABLE_SPECS* copy_table_specs_ = nullptr;
    LOAD_DATA_TABLE_SPECS* crc_table_specs_ = nullptr;
    uint64_t est_size_min_ = 0;
    uint64_t size_ = 0;
    EXTENT sum_; // plain sum of the members but the unsummed, while sum_valid_
    std::vector<LINKER_OBJECT*> unsummed_;
    uint64_t fixed_min_size_ = 0;
    uint32_t alignment_ = 0;
    uint32_t min_alignment_ = 0;
    uint32_t order_number_ = 0;
    bool size_valid_ : 1 = false;
    bool sum_valid_ : 1 = false;
    bool has_fixed_min_size_ : 1 = false;
    bool user_specified_ : 1 = false;
    bool made_by_collect_ : 1 = false;
    bool locked_ : 1 = false;
};

/// The object as a collection, or null.
inline COLLECTION* as_collection(LINKER_OBJECT* obj) {
    return obj != nullptr && obj->is_collection() ? static_cast<COLLECTION*>(obj) : nullptr;
}
inline const COLLECTION* as_collection(const LINKER_OBJECT* obj) {
    return obj != nullptr && obj->is_collection() ? static_cast<const COLLECTION*>(obj) : nullptr;
}
