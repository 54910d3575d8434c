// A range of target memory and what has been put into it.
//
// Contents are kept ordered by address; free blocks are the gaps between them. The placement
// works on trial copies, which start empty and cost nothing until something is put into them,
// and commits to the declared range only on success.
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <vector>

#include "DIAG/source_position.h"
#include "ELFLNK/memmap/hole_index.h"

class FILL_SPEC;
struct ECC_SPECIFICATION;
class LOCATOR;

/// LOCATOR::less_by_address as a predicate of sets.
struct LESS_BY_ADDRESS {
    using is_transparent = void;
    bool operator()(const LOCATOR* a, const LOCATOR* b) const;
    bool operator()(const LOCATOR* a, uint64_t address) const;
};
class LOCATOR_SET : public std::set<LOCATOR*, LESS_BY_ADDRESS> {
  public:
    /// The item with the highest start; the set isn't empty.
    LOCATOR* back() const { return *rbegin(); }
};

class MEMORY_RANGE {
  public:
    enum ATTR : uint32_t {
        ATTR_R = 0x1,
        ATTR_W = 0x2,
        ATTR_I = 0x4,
        ATTR_X = 0x8,
        ATTR_ALL = 0xF,
        ATTR_HIDDEN = 0x10,     // no part of the user's memory
        ATTR_TEMP_LAYOUT = 0x20 // a placement into it counts no attempt
    };

    /// A declaration; the properties follow one by one. The name isn't copied.
    MEMORY_RANGE(const char* name, const SOURCE_POSITION* pos);
    /// A range of the linker's own, complete.
    MEMORY_RANGE(const char* name, uint64_t origin, uint64_t length, uint32_t attrs = ATTR_ALL,
                 int page = 0);
    /// A trial copy: same properties, empty contents.
    explicit MEMORY_RANGE(MEMORY_RANGE* source);
    ~MEMORY_RANGE();
    MEMORY_RANGE(const MEMORY_RANGE&) = delete;
    MEMORY_RANGE& operator=(const MEMORY_RANGE&) = delete;

    // ---- declaration -----------------------------------------------------------------------
    void add_page(int page, const SOURCE_POSITION* pos);
    void add_origin(uint64_t origin, const SOURCE_POSITION* pos);
    void add_length(uint64_t length, const SOURCE_POSITION* pos);
    void add_attrs(uint32_t attrs, const SOURCE_POSITION* pos);
    void add_fill(FILL_SPEC* fill, const SOURCE_POSITION* pos, bool vfill);
    void add_alias(MEMORY_RANGE* alias, const SOURCE_POSITION* pos);
    void set_cregister(int n) { cregister_ = n; }
    void set_ecc_spec(ECC_SPECIFICATION* spec) { ecc_spec_ = spec; }

    const char* name() const { return name_; }
    const SOURCE_POSITION& source_position() const { return position_; }
    int page() const { return page_; }
    uint64_t origin() const { return origin_; }
    uint64_t length() const { return length_; }
    /// The first address behind the range: origin plus length, all ones where that would wrap.
    uint64_t end() const { return length_ > ~origin_ ? ~uint64_t{0} : origin_ + length_; }
    uint32_t attrs() const { return attrs_; }
    bool is_hidden() const { return (attrs_ & ATTR_HIDDEN) != 0; }
    bool is_temp_layout() const { return (attrs_ & ATTR_TEMP_LAYOUT) != 0; }
    FILL_SPEC* fill() const { return fill_; }
    bool has_fill() const { return fill_set_; }
    bool has_vfill() const { return vfill_set_; }
    MEMORY_RANGE* alias() const { return alias_; }
    /// The specification that computes ECC bytes from this range or into it, or null.
    ECC_SPECIFICATION* ecc_spec() const { return ecc_spec_; }
    bool has_page() const { return page_set_; }
    bool has_origin() const { return origin_set_; }
    bool has_length() const { return length_set_; }
    bool has_attrs() const { return attrs_set_; }
    int cregister() const { return cregister_; }
    /// For trial ranges and the linker's own.
    void set_origin(uint64_t origin) { origin_ = origin; }
    void set_length(uint64_t length) { length_ = length; }
    /// The bounds of a trial: [begin, end).
    void set_subrange_endpoints(uint64_t begin, uint64_t end) {
        origin_ = begin;
        length_ = end - begin;
    }
    void clear_reserved() { reserved_ = 0; }
    bool holds(uint64_t address) const { return address >= origin_ && address - origin_ < length_; }

    // ---- trial copies ----------------------------------------------------------------------
    MEMORY_RANGE* parent() const { return parent_; }
    bool is_root() const { return parent_ == nullptr; }
    MEMORY_RANGE* root_range();
    /// The name; for a trial copy with its bounds, in a static buffer.
    const char* debug_name() const;

    // ---- contents --------------------------------------------------------------------------
    /// Top level locators by address; walked backwards for a HIGH placement.
    const LOCATOR_SET& contents() const {
        if (!entered_.empty()) order_entered();
        return contents_;
    }
    bool is_empty() const { return contents_.empty() && entered_.empty(); }
    /// Locators of all objects without further sub-items; kept for root ranges only.
    const LOCATOR_SET& leaf_contents() const { return leaf_contents_; }
    void add_item(LOCATOR* locator, bool is_subitem = false);
    void remove_item(LOCATOR* locator, bool is_subitem = false);
    /// The same for items of which each mostly stands behind the one before.
    void remove_items(const std::vector<LOCATOR*>& items);
    void clear_contents();
    /// Does the second of the contents follow the first with nothing between them?
    bool follows_directly(LOCATOR* second, LOCATOR* first) const;
    LOCATOR* locator_for_address(uint64_t address) const;
    LOCATOR* leaf_locator_for_address(uint64_t address) const;
    /// How many of the contents are reserved trampolines.
    unsigned reserved_trampolines() const { return reserved_trampolines_; }

    // ---- free space ------------------------------------------------------------------------
    /// Free space, kept up to date.
    uint64_t unused() const;
    /// Takes n off the length until unreserve; false if it doesn't fit.
    bool reserve(uint32_t n);
    void unreserve();
    uint32_t reserved() const { return reserved_; }
    /// Lowest gap between contents that, cut to [from, to), has at least `size` (and isn't empty).
    /// `align`, a power of two, is that of the start within the gap.
    bool first_hole(uint64_t from, uint64_t to, uint64_t size, uint64_t align, HOLE* out) const;
    /// Highest such gap.
    bool last_hole(uint64_t from, uint64_t to, uint64_t size, HOLE* out) const;

    // ---- texts -----------------------------------------------------------------------------
    /// "RWIX" letters, capitals, each once, to bits.
    static bool encode_attr(const char* text, uint32_t* attrs);
    static const char* attr_name(uint32_t attrs);
    void dump();

    /// Hidden ranges last, then by page, then by origin.
    static bool less_order(const MEMORY_RANGE* a, const MEMORY_RANGE* b);

  private:
    void enter(LOCATOR* locator);
    void order_entered() const;
    uint64_t lowest_address() const;
    void leave(LOCATOR* locator);
    bool starts_item(uint64_t address) const;
    void forget_holes() const;
    const HOLE_INDEX& holes() const;
    uint64_t unused_by_walk() const;

    const char* name_;
    SOURCE_POSITION position_;
    int page_ = 0;
    uint64_t origin_ = 0;
    uint64_t length_ = 0;
    uint32_t reserved_ = 0;
    uint32_t attrs_ = ATTR_ALL;
    FILL_SPEC* fill_ = nullptr;
    MEMORY_RANGE* alias_ = nullptr;
    bool page_set_ = false;
    bool origin_set_ = false;
    bool length_set_ = false;
    bool attrs_set_ = false;
    bool fill_set_ = false;
    bool vfill_set_ = false;
    int cregister_ = -1;
    ECC_SPECIFICATION* ecc_spec_ = nullptr;
    MEMORY_RANGE* parent_ = nullptr;
    mutable LOCATOR_SET contents_;
    // Entered in free space, and not yet in the contents: most trials are given up or committed
    // without anybody having asked for those, and the holes tell what there is to know.
    mutable std::vector<LOCATOR*> entered_;
    mutable uint64_t lowest_entered_ = 0;
    LOCATOR_SET leaf_contents_;
    mutable LOCATOR_SET::const_iterator visited_; // where follows_directly() was last
    mutable bool visited_valid_ = false;
    unsigned reserved_trampolines_ = 0;

    // Derived from the contents: the holes, and the space that items cover. Made when first asked
    // for. While no two items overlap they follow each change; afterwards each change drops them.
    mutable std::unique_ptr<HOLE_INDEX> holes_;
    mutable uint64_t covered_ = 0;
    mutable bool holes_valid_ = false;
    mutable bool overlapped_ = false;
};
