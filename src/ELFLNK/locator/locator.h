// A LOCATOR is one placement request of one object in one address space: what the command file
// wished for (an address, ranges, an alignment, ...), and, once placed, where the object went. An
// object that is loaded elsewhere than it runs has two of them and is placed twice.
//
// The data and the small operations live in this folder; the operations that search for room
// (placement/), order requests (placement/order/) and lay out collections (placement/layout/) are
// members too, as all of them work on these fields.
//
// There is at least one for each section of the program, so what a plain member of an output
// section doesn't need (wishes, sub-items) hangs on it only where it is used.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "UTIL/oalloc.h"

class COLLECTION;
class LINKER_OBJECT;
class LOCATOR;
class MEMORY_RANGE;
class PPRINT;
class SOURCE_POSITION;

/// Which address of its object a locator stands for.
enum class LOCATOR_KIND : uint8_t {
    RUN = 0,     ///< run address only
    LOAD = 1,    ///< load address only
    BOTH = 2,    ///< one placement that is load and run address
    RUN_ALT = 3, ///< the address in the other window of an ALIAS pair
};

/// The bits of LOCATOR::flags().
enum LOCATOR_FLAG : uint32_t {
    LF_VIRTUAL = 0x1,            ///< no real memory: placed in a VIRTUAL range
    LF_SPECIFIC = 0x2,           ///< specific address given
    LF_RANGES = 0x4,             ///< range names given
    LF_ATTRS = 0x8,              ///< attribute wish given
    LF_PAGE = 0x10,              ///< page given
    LF_ALIGN = 0x20,             ///< alignment in force
    LF_BLOCK = 0x40,             ///< blocking in force
    LF_SPLIT = 0x80,             ///< split placement (>>)
    LF_OVERLAY = 0x100,          ///< members overlay each other (run of a UNION)
    LF_UNION = 0x200,            ///< set with LF_OVERLAY by UNION
    LF_ORDERED = 0x400,          ///< members keep their written order
    LF_SPECIFIC_TRIED = 0x800,   ///< a specific placement has been attempted
    LF_PALIGN = 0x1000,          ///< end padded to the alignment
    LF_LAST = 0x2000,            ///< placed after everything else in its range
    LF_HIGHEST = 0x4000,         ///< HIGH: from the top downwards
    LF_PLACED = 0x8000,          ///< stands in a range
    LF_SPLIT_PLACED = 0x10000,   ///< a split placement has placed something
    LF_COMPLETE = 0x20000,       ///< all of it is placed
    LF_TENTATIVE = 0x40000,      ///< may still move
    LF_ONE_ATTEMPT = 0x80000,    ///< the range was made for this object
    LF_PRIORITY = 0x100000,      ///< priority given
    LF_SPLIT_FAILED = 0x200000,  ///< placement failed, the rest is virtual
    LF_TRAMP_RES = 0x400000,     ///< reserved trampoline
    LF_BEHIND_LAST = 0x800000,   ///< VIRTUAL object of phase 3: behind the last item of the range
    LF_UNORDERED = 0x1000000,    ///< members were declared unordered
    LF_POWER2 = 0x2000000,       ///< PALIGN(POWER2) waits to be resolved
    LF_PRE_PLACED = 0x4000000,   ///< laid out before placement
    LF_NO_PADDING = 0x8000000,   ///< no speculation padding for this object
    LF_ALIAS_MOVED = 0x10000000, ///< already moved into the first range of its ALIAS pair

    LF_PLACEMENT_MASK = LF_SPECIFIC | LF_RANGES | LF_ATTRS | LF_PAGE,
};

/// Locators in an order that matters.
using LOCATOR_LIST = std::vector<LOCATOR*>;

class LOCATOR : public OALLOC<LOCATOR> {
  public:
    static constexpr uint64_t no_limit = ~uint64_t{0};

    explicit LOCATOR(LOCATOR_KIND kind, LINKER_OBJECT* object = nullptr)
        : kind_(kind), object_(object) {}
    LOCATOR(const LOCATOR& other);
    LOCATOR& operator=(const LOCATOR&) = delete;

    // ---- wishes, as the command file and generators state them -------------------------------
    // Each takes the place in the command file, or null, and remembers it if given.

    /// Wishes a specific address; a conflicting wish is reported and the new address stands.
    void add_specific(uint64_t addr, const SOURCE_POSITION* pos = nullptr);
    /// Wishes one of the named ranges, tried in this order; nothing for an empty list.
    void add_ranges(const std::vector<const char*>& names, const SOURCE_POSITION* pos = nullptr);
    /// Wishes a range that has all the attribute bits (R 1, W 2, I 4, X 8).
    void add_attrs(uint32_t attrs, const SOURCE_POSITION* pos = nullptr);
    void add_page(int page, const SOURCE_POSITION* pos = nullptr);
    /// A higher number is placed earlier.
    void add_priority(uint32_t n, const SOURCE_POSITION* pos = nullptr);
    void add_align(uint64_t n, const SOURCE_POSITION* pos = nullptr);
    /// An object below n in size stays inside one block of n; a larger one starts on a block.
    void add_block(uint64_t n, const SOURCE_POSITION* pos = nullptr);
    /// Aligns start and end to n.
    void add_palign(uint64_t n, const SOURCE_POSITION* pos = nullptr);
    /// PALIGN(POWER2): size and alignment rise to the next power of two.
    void add_p2align(const SOURCE_POSITION* pos = nullptr);
    /// Raise the field silently; below 2, or no power of two, is ignored.
    void add_min_align(uint64_t n);
    void add_min_block(uint64_t n);
    /// Replays the wishes of another locator through the setters above.
    void merge(const LOCATOR* other);
    /// Drops specific address, ranges, attributes and page.
    void ignore_placement() { flags_ &= ~uint32_t{LF_PLACEMENT_MASK}; }

    // ---- plain fields -----------------------------------------------------------------------

    LOCATOR_KIND kind() const { return kind_; }
    void set_kind(LOCATOR_KIND kind) { kind_ = kind; }
    bool is_run() const { return kind_ == LOCATOR_KIND::RUN; }
    bool is_load() const { return kind_ == LOCATOR_KIND::LOAD; }
    bool is_both() const { return kind_ == LOCATOR_KIND::BOTH; }
    bool is_run_or_both() const {
        return kind_ == LOCATOR_KIND::RUN || kind_ == LOCATOR_KIND::BOTH;
    }

    uint32_t flags() const { return flags_; }
    bool has_flag(uint32_t any_of) const { return (flags_ & any_of) != 0; }
    void set_flag(uint32_t bits) { flags_ |= bits; }
    void clear_flag(uint32_t bits) { flags_ &= ~bits; }
    bool is_virtual() const { return has_flag(LF_VIRTUAL); }
    bool is_split() const { return has_flag(LF_SPLIT); }
    bool is_overlay() const { return has_flag(LF_OVERLAY); }
    bool is_ordered() const { return has_flag(LF_ORDERED); }
    bool is_highest() const { return has_flag(LF_HIGHEST); }
    bool is_placed() const { return has_flag(LF_PLACED); }
    bool is_complete() const { return has_flag(LF_COMPLETE); }
    /// A specific address, ranges, attributes or a page were given.
    bool placement_specified() const { return has_flag(LF_PLACEMENT_MASK); }
    /// Some of this did not fit and went to a virtual range.
    bool placement_failed() const { return has_flag(LF_SPLIT_FAILED); }

    LINKER_OBJECT* object() const { return object_; }
    void set_object(LINKER_OBJECT* object) { object_ = object; }
    /// Where in the command file the last wish stands; null if nowhere.
    const SOURCE_POSITION* position() const { return more().position; }
    void set_position(const SOURCE_POSITION* pos);
    uint64_t specific_address() const { return more().specific; }
    void set_specific_address(uint64_t addr) { own_more().specific = addr; }
    const std::vector<const char*>& range_names() const { return more().range_names; }
    uint32_t attrs() const { return more().attrs; }
    /// The page wished for; meaningful with LF_PAGE.
    int page() const { return more().page; }
    /// Units of the target; meaningful with LF_ALIGN, LF_BLOCK.
    uint64_t alignment() const { return align_; }
    uint64_t blocking() const { return more().block; }
    uint64_t min_address() const { return min_address_; }
    uint64_t max_address() const { return more().max_address; }
    void set_min_address(uint64_t addr) { min_address_ = addr; }
    void set_max_address(uint64_t addr) {
        if (addr != max_address()) own_more().max_address = addr;
    }
    uint32_t priority() const { return more().priority; }
    uint64_t available_space() const { return more().available_space; }
    void set_available_space(uint64_t n) {
        if (n != available_space()) own_more().available_space = n;
    }
    uint64_t address() const { return address_; }
    /// One past the last unit.
    uint64_t end_address() const { return end_; }
    void set_extent(uint64_t address, uint64_t end) {
        address_ = address;
        end_ = end;
    }
    /// The root or trial range in which this stands; null if in none.
    MEMORY_RANGE* range() const { return range_; }
    void set_range(MEMORY_RANGE* range) { range_ = range; }
    /// The locators of a collection's members, of this kind.
    const LOCATOR_LIST& sub_items() const {
        if (sub_items_unsorted_) sort_late_sub_items();
        return more().sub_items;
    }
    /// The same, to be changed.
    LOCATOR_LIST& edit_sub_items() {
        if (sub_items_unsorted_) sort_late_sub_items();
        ++own_more().sub_item_edits;
        return more_->sub_items;
    }
    void drop_sub_items() {
        if (more_ != nullptr) edit_sub_items().clear();
    }
    const LOCATOR_LIST& pending_items() const { return more().pending_items; }

    // ---- questions --------------------------------------------------------------------------

    /// May this be placed in the range, by page and wishes?
    bool match(const MEMORY_RANGE* range) const;
    /// Is there room enough in the sum of the range's holes? A split locator: for any member.
    bool fits_in_range(MEMORY_RANGE* range);
    bool can_use_range(MEMORY_RANGE* range) { return match(range) && fits_in_range(range); }
    unsigned range_use_count();
    bool must_use_single_range() { return range_use_count() == 1; }
    bool can_use_many_ranges() { return range_use_count() > 1; }
    /// Sum of the free space of the ranges that this can use; kept in available_space().
    uint64_t estimate_available_space();
    /// Sum of the free space of the ranges that both can use.
    uint64_t available_space_in_contention(LOCATOR* other);
    bool competes_for_range_vs(LOCATOR* other);
    /// The page on which the object goes if it has no wish of its own.
    int default_memory_page() const;
    /// The page wished for, else default_memory_page().
    int effective_page() const { return has_flag(LF_PAGE) ? page() : default_memory_page(); }
    /// The address hull that a locator can reach; null: the hull of all ranges. max is one past.
    static void get_min_max(const LOCATOR* locator, uint64_t& min, uint64_t& max);
    /// "run ", "load " or "" for a locator of both kinds, as messages put it before a noun.
    const char* diag_kind() const;
    bool is_fixed_min_size() const;
    static bool less_by_address(const LOCATOR* a, const LOCATOR* b);
    static bool less_by_address_rev(const LOCATOR* a, const LOCATOR* b) {
        return less_by_address(b, a);
    }
    static void sort_by_address(LOCATOR_LIST& list);
    static void sort_by_address_rev(LOCATOR_LIST& list);
    /// Finds an assignment of the object that needs it in one piece; names its symbol.
    bool symdef_inhibits_splitting(const char** symbol_name);
    /// Debug text; ends with a newline only when placed.
    std::string text() const;
    void dump(PPRINT* printer) const;

    // ---- placement --------------------------------------------------------------------------

    /// Takes a locator out of the worklists of phases 1 and 2.
    static void remove_locator(LOCATOR* locator);
    /// Settles conflicting wishes; run once before the locator is placed.
    void analyze();
    /// Gives the object an address, or reports that it has no room and places it virtually.
    void place_object();
    void place_specific();
    void place_by_named_range();
    void place_by_page();
    void place_default();
    /// First fit in the ranges, in order; through an alias into the range it points to.
    bool place_in_range_list(const std::vector<MEMORY_RANGE*>& list);
    /// Appends the ranges that this locator can be placed in, in map order.
    void available_mem_range(std::vector<MEMORY_RANGE*>& list);
    /// First fit within one range. *needed (may be null): false came early, because a reserved
    /// trampoline bounds a large hole in which an attempt failed; it is to be moved.
    bool insert_into_range(MEMORY_RANGE* range, bool* needed = nullptr);
    /// insert_into_range of a member, with one retry after a consolidation.
    bool insert_with_retry(LOCATOR* sub, MEMORY_RANGE* range);
    /// Tries one hole; the trial range has the bounds of the hole.
    bool attempt_placement(MEMORY_RANGE* trial);
    /// Settles address and end in the trial by size, alignment, blocking and direction.
    bool fit_into_subrange(MEMORY_RANGE* trial);
    void commit(MEMORY_RANGE* range);
    void uncommit();
    /// Reserves trampolines for the calls of an object that has just been placed and that may not
    /// reach their callees. False: one found no room.
    bool reserve_trampolines();
    /// Lets calls to what has just been placed go direct where they reach it.
    void prune_trampolines();
    /// Moves the reserved trampolines of a range down behind what precedes them, and drops those
    /// without callers; `final`: for the last time.
    static void consolidate_trampolines(MEMORY_RANGE* range, bool final);
    /// Gives a VIRTUAL locator a range of its own at the address.
    void place_virtual(uint64_t addr);
    void fail_placement(const std::vector<MEMORY_RANGE*>& list, bool report);
    uint64_t largest_hole(MEMORY_RANGE* range);
    /// Rounds up to n, or to the alignment when n is 0 and an alignment is in force.
    uint64_t align(uint64_t addr, uint64_t n = 0) const;
    /// Rounds up to the blocking if an object of the size would not stay within one block.
    uint64_t block(uint64_t addr, uint64_t size) const;
    uint64_t align_down(uint64_t addr, uint64_t size) const;
    /// May the other object share addresses with this one?
    bool may_overlay(LOCATOR* other);

    // ---- order ------------------------------------------------------------------------------

    /// Negative if a is to be placed before b.
    static int locator_priority_cmp(LOCATOR* a, LOCATOR* b);
    static bool locator_priority_less(LOCATOR* a, LOCATOR* b) {
        return locator_priority_cmp(a, b) < 0;
    }
    static bool node_priority_less(const LOCATOR* a, const LOCATOR* b) {
        return a->priority() < b->priority();
    }

    // ---- layout of collections --------------------------------------------------------------

    /// Makes the locators of the members, once.
    void extract_subitems();
    void sort_subitems();
    bool place_collection(MEMORY_RANGE* trial);
    bool place_duplicate(MEMORY_RANGE* trial);
    void copy_layout(MEMORY_RANGE* range, const LOCATOR* source, uint64_t delta);
    void pre_placement_layout();
    void pre_place_highest();
    void pre_place_run_image();
    void pre_place_p2align();
    void set_pre_placed();
    bool place_split_collection(MEMORY_RANGE* trial);
    bool place_blocked_split_collection(MEMORY_RANGE* trial);
    void set_collection_endpoints();
    void assign_to_dot(LOCATOR* dot, uint64_t addr);
    bool add_padding_to_subitems(MEMORY_RANGE* trial);
    bool add_padding_to_one_subitem(LOCATOR* item, uint64_t bound);
    LINKER_OBJECT* create_padding_object(LOCATOR* item, uint64_t size);
    bool reserve_space_for_padding(MEMORY_RANGE* trial);
    void unreserve_space_for_padding(MEMORY_RANGE* trial);
    /// The placed items (pending ones too) with the lowest address and the highest end, or null.
    void subitem_extremities(LOCATOR*& lowest, LOCATOR*& highest) const;
    void add_pending_item(LOCATOR* item) { own_more().pending_items.push_back(item); }
    bool has_pending_items() const { return !pending_items().empty(); }
    void clear_pending_items() {
        if (more_ != nullptr) more_->pending_items.clear();
    }
    /// Generated objects of a tentative placement become members, now that it is final.
    void add_pending_items_to_object();
    void unreserve_pending_objects();
    /// Wraps padded members of a split collection so that its load placement keeps the pads.
    void bind_padding_to_subobjects();
    /// Rebuilds the sub-items of a container that was split into output sections.
    void coalesce();
    static bool is_adjacent(const LOCATOR* a, const LOCATOR* b);
    void convert_run_loc_to_alt_run();
    /// A new sub-item at a settled place, kept in address order.
    void place_subitem(LINKER_OBJECT* object, uint64_t start, uint64_t end);
    bool place_hole(LINKER_OBJECT* object, uint64_t start, uint64_t end);
    /// Places a collection that fills a gap at its specific address; false if that can't be.
    bool commit_specific_fill_sect();
    void set_failed_placement();
    void reset_placement();

  private:
    struct UNPLACED {
        LOCATOR* item;
        uint64_t least;     ///< room that it needs; 0 where it must be asked
        uint64_t alignment; ///< of its start in a hole
    };
    /// What a plain member of an output section doesn't have.
    struct MORE {
        const SOURCE_POSITION* position = nullptr;
        uint64_t specific = 0;
        std::vector<const char*> range_names;
        uint32_t attrs = 15;
        int page = 0;
        uint64_t block = 0;
        uint64_t max_address = no_limit;
        uint32_t priority = 0;
        uint64_t available_space = 0;
        LOCATOR_LIST sub_items;
        LOCATOR_LIST pending_items;
        uint32_t sub_item_edits = 0;
        /// Of a split: the sub-items that had no place when it was last asked, and when that was.
        std::vector<UNPLACED> unplaced;
        uint32_t unplaced_as_of = 0;
    };
    const MORE& more() const { return more_ != nullptr ? *more_ : NOTHING_MORE; }
    MORE& own_more() {
        if (more_ == nullptr) more_ = std::make_unique<MORE>();
        return *more_;
    }

    void report_conflict(const SOURCE_POSITION* pos) const;
    void sort_late_sub_items() const;
    void report_ignored_priority();

    void analyze_collection(COLLECTION* collection);
    void analyze_priority();
    void analyze_split();
    bool split_is_ignored();
    void add_mem_for_bound_object();

    bool walk_holes(MEMORY_RANGE* range, MEMORY_RANGE* trial, uint64_t start, uint64_t final,
                    bool* needed);
    bool search_holes(MEMORY_RANGE* range, MEMORY_RANGE* trial, uint64_t start, uint64_t final,
                      bool* needed);
    bool overlay_test_is_on();
    uint64_t smallest_hole();
    uint64_t alignment_in_hole() const;
    void note_attempt_in_vain(const MEMORY_RANGE* range);
    void prepare_collection();
    bool settle_start(MEMORY_RANGE* trial);
    void commit_final();
    void update_range(MEMORY_RANGE* range);
    bool has_range_of_its_own() const;
    void leave_range_of_its_own();
    void forget_placement();
    void detach_call_sites();
    void drop_trampolines();
    void set_split_failed_placement();
    void set_unsplit_failed_and_reset();
    bool insert_into_virtual_range(uint64_t addr);
    std::string failure_text(const std::vector<MEMORY_RANGE*>& list);
    void report_failure(const std::vector<MEMORY_RANGE*>& list);
    uint64_t lead_in() const;
    bool stands_aside(const LOCATOR* sub) const;
    bool lay_out_aside(LOCATOR* sub);
    bool place_member(LOCATOR* sub, MEMORY_RANGE* trial, uint64_t& cursor);
    bool place_held_back(LOCATOR_LIST& held_back, MEMORY_RANGE* trial);
    bool place_members(MEMORY_RANGE* trial);
    bool place_split_members(MEMORY_RANGE* trial);
    bool place_split_member(LOCATOR* sub, MEMORY_RANGE* trial);
    std::vector<UNPLACED> take_unplaced();
    void coalesce_item(LOCATOR* item);
    void bind_pad(LINKER_OBJECT* member, LOCATOR* run);

    static const MORE NOTHING_MORE;

    LOCATOR_KIND kind_;
    mutable bool sub_items_unsorted_ = false; // place_subitem() appended out of address order
    uint32_t flags_ = 0;
    LINKER_OBJECT* object_;
    uint64_t align_ = 0;
    uint64_t min_address_ = 0;
    uint64_t address_ = 0;
    uint64_t end_ = 0;
    MEMORY_RANGE* range_ = nullptr;
    std::unique_ptr<MORE> more_;
    uint32_t attempts_ = 0;
};
