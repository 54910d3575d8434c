// Everything the linker lays out is a LINKER_OBJECT: an input section, a section specification,
// an output section, a GROUP or UNION, a load segment, a common block, a hole.
//
// All objects hang in one tree under root_collection. The command file builds the upper tree,
// collect() hangs the input sections in it, placement gives addresses through the object's
// LOCATORs, build and write walk the same tree. Objects live to the end of the link.
//
// Most objects are input sections, of which there may be hundreds of thousands: what few objects
// have (a place in a command file, assignments, an output section) hangs on those that have it.
#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <vector>

#include "DIAG/source_position.h"
#include "ELFLNK/object/placement_attributes.h"

namespace OFE {
class OF_SECTION;
} // namespace OFE
class CALL_INFO;
class COLLECTION;
class EXPRESSION;
class FILL_SPEC;
class LINKER_OBJECT;
class LOCATOR;
class PPRINT;
enum EXPR_SYM_BINDING : int;

/// Members of a collection, in layout order.
using MEMBER_LIST = std::list<LINKER_OBJECT*>;
/// A query on an object; &LINKER_OBJECT::is_section and the like convert to it.
using OBJECT_PREDICATE = std::function<bool(const LINKER_OBJECT*)>;

class LINKER_OBJECT {
  public:
    explicit LINKER_OBJECT(const char* name, const SOURCE_POSITION* pos = nullptr);
    virtual ~LINKER_OBJECT();
    LINKER_OBJECT(const LINKER_OBJECT&) = delete;
    LINKER_OBJECT& operator=(const LINKER_OBJECT&) = delete;

    // ---- virtual queries -------------------------------------------------------------------
    virtual bool has_assign_to_dot_expression() const { return false; }
    /// Run address; 0 for an object that carries no address or isn't placed.
    virtual uint64_t run_address() const;
    /// Load address; the run address unless the load locator is placed.
    virtual uint64_t load_address() const;
    virtual int run_page() const;
    virtual int load_page() const;
    /// The object has initialized contents that need a load address.
    virtual bool has_load_data() const { return has_attr(PA_HAS_DATA); }
    virtual void set_output_OF_SECTION(OFE::OF_SECTION* section);
    virtual void clear_output_OF_SECTION();

    virtual bool is_section() const { return false; }
    virtual bool is_ecc_section() const { return false; }
    virtual bool is_collection() const { return false; }
    virtual bool is_load_segment() const { return false; }
    virtual bool is_section_spec() const { return false; }
    virtual bool is_symbol_object() const { return false; }
    virtual bool is_common_block() const { return false; }
    virtual bool is_absolute_symbol() const { return false; }
    virtual bool is_space() const { return false; }
    virtual bool is_dot_expression() const { return false; }
    virtual bool is_elf_file_header() const { return false; }
    virtual bool is_elf_phdr_segment() const { return false; }
    virtual bool is_dyn_ro_metadata() const { return false; }
    virtual bool is_dynamic_segment() const { return false; }
    virtual bool is_dyn_meta_section() const { return false; }
    virtual bool is_dynamic() const { return false; }
    virtual bool is_meta_segment() const { return false; }
    virtual bool is_meta_section() const { return false; }
    virtual bool is_jump_ent() const { return false; }
    virtual bool is_exidx() const { return false; }
    virtual bool is_plt() const { return false; }
    virtual bool is_plt_collection() const { return false; }
    virtual bool is_trampoline() const { return false; }
    virtual bool is_copy_table() const { return false; }
    virtual bool is_crc_table() const { return false; }
    virtual bool is_tls_segment() const { return false; }

    /// Size in addressable units. Not const: collections compute and keep it, a dot expression
    /// may leave the tree when it turns out to be empty.
    virtual uint64_t size() { return 0; }
    /// Lower bound of the size that a placement needs.
    virtual uint64_t est_size_min() { return size(); }
    virtual uint32_t alignment() const { return 0; }
    virtual uint32_t blocking() const { return 0; }
    /// Called each time a memory range is about to be tried; generated tables fix their size.
    virtual void update_before_placement(PLACEMENT_PHASE) {}
    /// Called when the placement of the object is committed.
    virtual void update_upon_placement() {}
    virtual bool can_be_part_of_load_segment() const;
    virtual bool is_loaded();
    virtual CALL_INFO* call_info() { return nullptr; }
    virtual bool is_RO() const { return has_attr(PA_ALLOCATED) && !has_attr(PA_WRITE); }
    virtual bool is_RW() const { return has_all_attrs(PA_HAS_DATA | PA_ALLOCATED | PA_WRITE); }
    virtual bool is_ZI() const {
        return has_all_attrs(PA_ALLOCATED | PA_WRITE) && !has_attr(PA_HAS_DATA);
    }
    virtual uint32_t qv_flags() { return 0; }
    /// Settle the object at `offset` in the output section (null without one).
    virtual void finalize_internal(OFE::OF_SECTION* output, uint32_t offset);
    /// Write the object's bytes at `offset` of the output section.
    virtual void write_data_internal(OFE::OF_SECTION* output, uint32_t offset);
    virtual void dump_header(PPRINT* out) = 0;
    virtual void dump_properties(PPRINT* out);

    // ---- identity --------------------------------------------------------------------------
    /// Never null; "" for an unnamed object.
    const char* name() const { return name_ != nullptr ? name_ : make_name(); }
    /// The text isn't copied. Keeps the root's index of output sections right.
    void set_name(const char* name);
    const SOURCE_POSITION& source_position() const { return more().position; }
    void set_source_position(const SOURCE_POSITION& pos) { own_more().position = pos; }
    COLLECTION* parent() const { return parent_; }
    uint32_t id() const { return obj_id_; }

    // ---- attributes ------------------------------------------------------------------------
    uint32_t attrs() const { return attrs_; }
    bool has_attr(uint32_t bits) const { return (attrs_ & bits) != 0; }
    bool has_all_attrs(uint32_t bits) const { return (attrs_ & bits) == bits; }
    void set_attr(uint32_t bits) { attrs_ |= bits; }
    void clear_attr(uint32_t bits) { attrs_ &= ~bits; }
    void set_attrs(uint32_t all) { attrs_ = all; }
    bool has_seg_attrs() const { return load_page() != 0 || has_attr(PA_READONLY | PA_BOUND); }
    /// "r", "w", "x" with "-" for what is absent.
    const char* rwx_string() const;

    // ---- placement -------------------------------------------------------------------------
    LOCATOR* run_locator() const { return run_locator_; }
    LOCATOR* load_locator() const { return load_locator_; }
    LOCATOR* alt_run_locator() const { return more().alt_run_locator; }
    /// Enters the locator in the slot of its kind; null clears all three slots.
    void add_locator(LOCATOR* locator);
    /// Empties the slot of the load locator and hands out what was in it.
    LOCATOR* take_load_locator();
    bool is_placed() const;
    bool is_complete() const { return run_placement_is_complete(); }
    bool run_placement_is_complete() const;
    bool load_placement_is_complete() const;
    /// Found no room, by itself or with the GROUP or UNION that it is in.
    bool failed_to_allocate() const;

    // ---- position in the tree --------------------------------------------------------------
    bool contains(const LINKER_OBJECT* obj) const;
    /// Counts as below the collection, which will take it as a member when its placement is final.
    void adopt_by(COLLECTION* parent) { parent_ = parent; }
    bool has_common_parent(const LINKER_OBJECT* obj) const {
        return parent_ != nullptr && parent_ == obj->parent_;
    }
    /// Nearest ancestor of kind OUTSECT, or null.
    COLLECTION* containing_outsect() const;
    /// This or the nearest ancestor that is in the root's set of output sections, or null.
    LINKER_OBJECT* outsect_object() const;
    /// Output section of outsect_object(), or null.
    OFE::OF_SECTION* output_OF_SECTION() const;
    /// An object that takes part in build and write by itself, not through its members.
    bool is_leaf() const { return !is_collection() || is_meta_segment(); }

    // ---- fill, assignments, pads -----------------------------------------------------------
    FILL_SPEC* fill() const { return fill_; }
    void add_fill(FILL_SPEC* fill, const SOURCE_POSITION* pos = nullptr);
    void override_fill(FILL_SPEC* fill) { fill_ = fill; }
    const std::vector<EXPRESSION*>& assignments() const { return more().assignments; }
    void add_user_assignment(EXPRESSION* expr) { add_assignment(expr, true); }
    void add_assignment(EXPRESSION* expr, bool user);
    void add_linker_assignment(EXPRESSION* expr);
    void add_linker_assignment(const char* symbol, EXPRESSION* value, EXPR_SYM_BINDING binding);
    void remove_assignment(EXPRESSION* expr);
    /// The assignment goes over to another object.
    void move_assignment(EXPRESSION* expr, LINKER_OBJECT* to);
    /// Takes over the assignments of an object that this one replaces.
    void take_assignments(LINKER_OBJECT* from);
    LINKER_OBJECT* padding() const { return more().padding; }
    void attach_padding(LINKER_OBJECT* pad);
    /// Deletes the pad.
    void detach_padding();

    // ---- flags -----------------------------------------------------------------------------
    bool is_output_section() const { return is_output_section_; }
    bool is_split_container() const { return is_split_container_; }
    bool is_visited() const { return visited_; }
    /// Answers what held before.
    bool set_visited(bool on) {
        const bool before = visited_;
        visited_ = on;
        return before;
    }
    bool output_updated() const { return output_updated_; }
    void set_output_updated(bool on) { output_updated_ = on; }
    bool data_written() const { return data_written_; }
    void set_data_written(bool on) { data_written_ = on; }
    /// Output section data is buffered and saved by itself at the end.
    bool output_buffered() const { return output_buffered_; }
    void set_output_buffered(bool on) { output_buffered_ = on; }
    bool finalized() const { return finalized_; }
    void set_finalized(bool on) { finalized_ = on; }

    /// Header, then properties one step deeper; makes a printer of its own if given none.
    void dump(PPRINT* out = nullptr);

    // ---- orders ----------------------------------------------------------------------------
    static int sort_by_run_address(LINKER_OBJECT* a, LINKER_OBJECT* b);
    static int sort_by_load_address(LINKER_OBJECT* a, LINKER_OBJECT* b);
    static bool less_than_run_address(LINKER_OBJECT* a, LINKER_OBJECT* b);
    static bool less_than_load_address(LINKER_OBJECT* a, LINKER_OBJECT* b);
    static int sort_by_id(const LINKER_OBJECT* a, const LINKER_OBJECT* b);
    static bool less_than_obj_id(const LINKER_OBJECT* a, const LINKER_OBJECT* b) {
        return a->obj_id_ < b->obj_id_;
    }

  protected:
    /// Makes and keeps the name of an object that was born without one.
    virtual const char* make_name() const { return ""; }
    /// The object stands for no memory: addresses and pages are 0.
    bool carries_no_address() const;
    void keep_name(const char* name) const { name_ = name; }
    OFE::OF_SECTION* own_output_section() const { return more().output_section; }

  private:
    friend class COLLECTION;
    friend class ROOT_COLLECTION;

    void clear_locators();

    /// What few objects have.
    struct MORE {
        SOURCE_POSITION position;
        LOCATOR* alt_run_locator = nullptr;
        LINKER_OBJECT* padding = nullptr;
        std::vector<EXPRESSION*> assignments;
        OFE::OF_SECTION* output_section = nullptr;
    };
    static const MORE NOTHING_MORE;
    const MORE& more() const { return more_ != nullptr ? *more_ : NOTHING_MORE; }
    MORE& own_more() {
        if (more_ == nullptr) more_ = std::make_unique<MORE>();
        return *more_;
    }

    mutable const char* name_;
    COLLECTION* parent_ = nullptr;
    MEMBER_LIST::iterator member_position_; // in parent_'s members; meaningful with a parent only
    LOCATOR* run_locator_ = nullptr;
    LOCATOR* load_locator_ = nullptr;
    FILL_SPEC* fill_ = nullptr;
    std::unique_ptr<MORE> more_;
    uint32_t attrs_ = PA_HAS_DATA | PA_ALLOCATED | PA_READ;
    uint32_t obj_id_;
    bool is_output_section_ : 1 = false;
    bool is_split_container_ : 1 = false;
    bool visited_ : 1 = false;
    bool output_updated_ : 1 = false;
    bool data_written_ : 1 = false;
    bool output_buffered_ : 1 = false;
    bool finalized_ : 1 = false;

    static uint32_t obj_count_m;
};

/// Ordered-container predicate: by object id.
struct LESS_OBJ_ID {
    bool operator()(const LINKER_OBJECT* a, const LINKER_OBJECT* b) const {
        return LINKER_OBJECT::less_than_obj_id(a, b);
    }
};
