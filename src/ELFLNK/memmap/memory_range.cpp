// Ranges: the declaration with its checks, the contents, and the free space between them.
#include "ELFLNK/memmap/memory_range.h"

#include <algorithm>
#include <cstdio>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/fill_spec.h"
#include "ELFLNK/memmap/memory_map_table.h"
#include "ELFLNK/object/collection.h"

bool LESS_BY_ADDRESS::operator()(const LOCATOR* a, const LOCATOR* b) const {
    return LOCATOR::less_by_address(a, b);
}
bool LESS_BY_ADDRESS::operator()(const LOCATOR* a, uint64_t address) const {
    return a->address() < address;
}

MEMORY_RANGE::MEMORY_RANGE(const char* name, const SOURCE_POSITION* pos)
    : name_(name), position_(pos) {}

MEMORY_RANGE::MEMORY_RANGE(const char* name, uint64_t origin, uint64_t length, uint32_t attrs,
                           int page)
    : name_(name),
      page_(page),
      origin_(origin),
      length_(length),
      attrs_(attrs),
      page_set_(true),
      origin_set_(true),
      length_set_(true),
      attrs_set_(true) {}

MEMORY_RANGE::MEMORY_RANGE(MEMORY_RANGE* source)
    : name_(source->name_),
      position_(source->position_),
      page_(source->page_),
      origin_(source->origin_),
      length_(source->length_),
      reserved_(source->reserved_),
      attrs_(source->attrs_),
      fill_(source->fill_),
      alias_(source->alias_),
      page_set_(source->page_set_),
      origin_set_(true),
      length_set_(true),
      attrs_set_(true),
      fill_set_(source->fill_set_),
      vfill_set_(source->vfill_set_),
      cregister_(source->cregister_),
      parent_(source) {}

MEMORY_RANGE::~MEMORY_RANGE() = default;

// ---- declaration ---------------------------------------------------------------------------

void MEMORY_RANGE::add_page(int page, const SOURCE_POSITION* pos) {
    if (page_set_) DIAG_REPORT_AT(pos, elnk_memrng_page_exists, name_);
    page_ = page;
    page_set_ = true;
}

void MEMORY_RANGE::add_origin(uint64_t origin, const SOURCE_POSITION* pos) {
    if (origin_set_) DIAG_REPORT_AT(pos, elnk_memrng_origin_exists, name_);
    origin_ = origin;
    origin_set_ = true;
}

void MEMORY_RANGE::add_length(uint64_t length, const SOURCE_POSITION* pos) {
    if (length_set_) DIAG_REPORT_AT(pos, elnk_memrng_length_exists, name_);
    length_ = length;
    length_set_ = true;
}

void MEMORY_RANGE::add_attrs(uint32_t attrs, const SOURCE_POSITION* pos) {
    if (attrs_set_) DIAG_REPORT_AT(pos, elnk_memrng_attrs_exist, name_);
    attrs_ = attrs;
    attrs_set_ = true;
}

void MEMORY_RANGE::add_fill(FILL_SPEC* fill, const SOURCE_POSITION* pos, bool vfill) {
    if (fill_set_ || vfill_set_) DIAG_REPORT_AT(pos, elnk_memrng_fill_exists, name_);
    fill->check_fill_width(pos);
    fill_ = fill;
    vfill_set_ = vfill;
    fill_set_ = !vfill;
}

void MEMORY_RANGE::add_alias(MEMORY_RANGE* alias, const SOURCE_POSITION* pos) {
    if (alias_ != nullptr) DIAG_REPORT_AT(pos, elnk_memrng_alias_exist, name_, alias_->name_);
    alias_ = alias;
}

MEMORY_RANGE* MEMORY_RANGE::root_range() {
    MEMORY_RANGE* range = this;
    while (range->parent_ != nullptr) range = range->parent_;
    return range;
}

const char* MEMORY_RANGE::debug_name() const {
    if (parent_ == nullptr) return name_;
    static char text[100];
    std::snprintf(text, sizeof text, "%s[0x%lx..0x%lx]", name_, origin_, origin_ + length_);
    return text;
}

// ---- contents ------------------------------------------------------------------------------

namespace {

/// What stands for its members in a list of leaves: a collection above output sections.
bool is_grouping(const LOCATOR* locator) {
    const LINKER_OBJECT* obj = locator->object();
    return obj->is_collection() && !obj->is_output_section() && !locator->sub_items().empty();
}

void insert_ordered(LOCATOR_SET& set, LOCATOR* locator) {
    set.insert(set.end(), locator);
}

} // namespace

void MEMORY_RANGE::add_item(LOCATOR* locator, bool is_subitem) {
    if (!is_subitem) enter(locator);
    if (parent_ != nullptr) return;
    if (is_grouping(locator)) {
        for (LOCATOR* sub : locator->sub_items())
            if (locator->is_virtual() || !sub->is_virtual()) // or it has a range of its own
                add_item(sub, true);
        return;
    }
    insert_ordered(leaf_contents_, locator);
}

void MEMORY_RANGE::remove_item(LOCATOR* locator, bool is_subitem) {
    if (!is_subitem) leave(locator);
    if (parent_ != nullptr) return;
    if (is_grouping(locator)) {
        for (LOCATOR* sub : locator->sub_items()) remove_item(sub, true);
        return;
    }
    leaf_contents_.erase(locator);
}

namespace {

/// Takes the items out of the set and shows each that was in it. What stands behind an item is
/// looked at before the set is searched.
template <class VISIT>
void erase_all(LOCATOR_SET& set, const LOCATOR_LIST& items, VISIT visit) {
    auto at = set.end();
    for (LOCATOR* item : items) {
        if (at == set.end() || *at != item) at = set.find(item);
        if (at == set.end()) continue;
        at = set.erase(at);
        visit(item);
    }
}

} // namespace

void MEMORY_RANGE::remove_items(const LOCATOR_LIST& items) {
    visited_valid_ = false;
    order_entered();
    erase_all(contents_, items, [this](LOCATOR* item) {
        if (item->has_flag(LF_TRAMP_RES)) --reserved_trampolines_;
    });
    forget_holes();
    if (parent_ != nullptr) return;
    LOCATOR_LIST leaves;
    for (LOCATOR* item : items)
        if (is_grouping(item))
            for (LOCATOR* sub : item->sub_items()) remove_item(sub, true);
        else
            leaves.push_back(item);
    erase_all(leaf_contents_, leaves, [](LOCATOR*) {});
}

bool MEMORY_RANGE::follows_directly(LOCATOR* second, LOCATOR* first) const {
    order_entered();
    if (!visited_valid_ || *visited_ != first) {
        visited_ = contents_.find(first);
        visited_valid_ = visited_ != contents_.end();
        if (!visited_valid_) return false;
    }
    auto next = std::next(visited_);
    if (next == contents_.end() || *next != second) return false;
    visited_ = next;
    return true;
}

void MEMORY_RANGE::clear_contents() {
    visited_valid_ = false;
    entered_.clear();
    if (!contents_.empty()) contents_.clear();
    if (!leaf_contents_.empty()) leaf_contents_.clear();
    reserved_trampolines_ = 0;
    forget_holes();
    overlapped_ = false;
}

namespace {

LOCATOR* first_holding(const LOCATOR_SET& set, uint64_t address) {
    for (LOCATOR* item : set) {
        if (item->address() > address) break;
        if (item->end_address() > address) return item;
    }
    return nullptr;
}

} // namespace

LOCATOR* MEMORY_RANGE::locator_for_address(uint64_t address) const {
    return holds(address) ? first_holding(contents(), address) : nullptr;
}

LOCATOR* MEMORY_RANGE::leaf_locator_for_address(uint64_t address) const {
    return holds(address) ? first_holding(leaf_contents_, address) : nullptr;
}

// ---- free space ----------------------------------------------------------------------------

void MEMORY_RANGE::forget_holes() const {
    holes_valid_ = false;
    covered_ = 0;
}

void MEMORY_RANGE::enter(LOCATOR* locator) {
    const uint64_t start = locator->address();
    const uint64_t end = locator->end_address();
    if (holes_valid_ && !overlapped_ && start < end && holes_->occupy(start, end)) {
        covered_ += end - start;
        lowest_entered_ = entered_.empty() ? start : std::min(lowest_entered_, start);
        entered_.push_back(locator);
    } else {
        order_entered();
        const std::size_t before = contents_.size();
        insert_ordered(contents_, locator);
        if (contents_.size() == before) return;
        if (holes_valid_ && !overlapped_ && start >= end) {
            holes_->cut(start);
        } else if (holes_valid_) {
            overlapped_ = true;
            forget_holes();
        }
    }
    if (locator->has_flag(LF_TRAMP_RES)) ++reserved_trampolines_;
}

void MEMORY_RANGE::order_entered() const {
    LOCATOR::sort_by_address(entered_);
    for (LOCATOR* locator : entered_) insert_ordered(contents_, locator);
    entered_.clear();
}

uint64_t MEMORY_RANGE::lowest_address() const {
    if (contents_.empty()) return lowest_entered_;
    const uint64_t lowest = (*contents_.begin())->address();
    return entered_.empty() ? lowest : std::min(lowest, lowest_entered_);
}

void MEMORY_RANGE::leave(LOCATOR* locator) {
    order_entered();
    auto at = contents_.find(locator);
    if (at == contents_.end()) return;
    visited_valid_ = false;
    contents_.erase(at);
    if (locator->has_flag(LF_TRAMP_RES)) --reserved_trampolines_;
    if (!holes_valid_) return;
    const uint64_t start = locator->address();
    const uint64_t end = locator->end_address();
    // Where empty items stand within this one, its space isn't one hole.
    auto inside = start < end ? contents_.lower_bound(start + 1) : contents_.end();
    bool holds_item = inside != contents_.end() && (*inside)->address() < end;
    if (overlapped_ || holds_item || contents_.empty()) {
        forget_holes();
        return;
    }
    if (start < end) {
        covered_ -= end - start;
        holes_->release(start, end, !starts_item(start), !starts_item(end));
    } else if (!starts_item(start)) {
        holes_->heal(start);
    }
}

bool MEMORY_RANGE::starts_item(uint64_t address) const {
    auto at = contents().lower_bound(address);
    return at != contents_.end() && (*at)->address() == address;
}

/// The index, brought up to date. While no two items overlap it follows every change; once some
/// do, a cursor over the contents makes it anew when it is asked for.
const HOLE_INDEX& MEMORY_RANGE::holes() const {
    if (holes_valid_) return *holes_;
    order_entered();
    if (holes_ == nullptr)
        holes_ = std::make_unique<HOLE_INDEX>();
    else
        holes_->reset();
    covered_ = 0;
    holes_valid_ = true;
    uint64_t cursor = 0;
    for (const LOCATOR* item : contents_) {
        const uint64_t start = item->address();
        const uint64_t end = item->end_address();
        if (start < cursor) {
            // Only the part behind the cursor is new; an empty item within another one cuts
            // nothing.
            if (start < end) overlapped_ = true;
            if (end > cursor && holes_->occupy(cursor, end)) covered_ += end - cursor;
        } else if (start < end) {
            if (holes_->occupy(start, end)) covered_ += end - start;
        } else {
            holes_->cut(start);
        }
        cursor = std::max(cursor, end);
    }
    return *holes_;
}

uint64_t MEMORY_RANGE::unused_by_walk() const {
    uint64_t free = 0;
    uint64_t cursor = origin_;
    for (const LOCATOR* item : contents()) {
        if (item->address() > cursor) free += item->address() - cursor;
        cursor = std::max(cursor, item->end_address());
    }
    return end() > cursor ? free + (end() - cursor) : free;
}

uint64_t MEMORY_RANGE::unused() const {
    if (is_empty()) return length_;
    if (lowest_address() < origin_) return unused_by_walk();
    const uint64_t behind = std::max(end(), holes().tail());
    return behind - origin_ - covered_;
}

bool MEMORY_RANGE::reserve(uint32_t n) {
    if (length_ < n) return false;
    length_ -= n;
    reserved_ = n;
    return true;
}

void MEMORY_RANGE::unreserve() {
    length_ += reserved_;
    reserved_ = 0;
}

bool MEMORY_RANGE::first_hole(uint64_t from, uint64_t to, uint64_t size, uint64_t align,
                              HOLE* out) const {
    if (!is_empty()) return holes().first_fit(from, to, size, align, out);
    *out = {from, to};
    return from < to && usable_length(from, to, align) >= std::max<uint64_t>(size, 1);
}

bool MEMORY_RANGE::last_hole(uint64_t from, uint64_t to, uint64_t size, HOLE* out) const {
    if (!is_empty()) return holes().last_fit(from, to, size, out);
    *out = {from, to};
    return from < to && to - from >= std::max<uint64_t>(size, 1);
}

// ---- texts ---------------------------------------------------------------------------------

namespace {
constexpr char ATTR_LETTERS[] = "RWIX"; // bit 0 first
}

bool MEMORY_RANGE::encode_attr(const char* text, uint32_t* attrs) {
    uint32_t bits = 0;
    if (text == nullptr || *text == '\0') return false;
    for (; *text != '\0'; ++text) {
        uint32_t bit = 0;
        for (unsigned i = 0; i < 4; ++i)
            if (*text == ATTR_LETTERS[i]) bit = 1U << i;
        if (bit == 0 || (bits & bit) != 0) return false;
        bits |= bit;
    }
    *attrs = bits;
    return true;
}

const char* MEMORY_RANGE::attr_name(uint32_t attrs) {
    static char text[5];
    unsigned n = 0;
    for (unsigned i = 0; i < 4; ++i)
        if ((attrs & (1U << i)) != 0) text[n++] = ATTR_LETTERS[i];
    text[n] = '\0';
    return n == 0 ? "NONE" : text;
}

void MEMORY_RANGE::dump() {
    MEMORY_MAP_TABLE table;
    table.add_headings();
    table.add_range(this);
    table.print(stdout);
}

bool MEMORY_RANGE::less_order(const MEMORY_RANGE* a, const MEMORY_RANGE* b) {
    if (a->is_hidden() != b->is_hidden()) return b->is_hidden();
    if (a->page_ != b->page_) return a->page_ < b->page_;
    return a->origin_ < b->origin_;
}
