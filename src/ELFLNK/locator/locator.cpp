// The wishes of a locator: what the command file and the generators of objects say about where an
// object is to go. Conflicting wishes are reported here, as they come in; what the last one said
// stands. Wishes that conflict with the object itself are settled by analyze(), in placement/.
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/memory_range.h"

#include <algorithm>

#include "DIAG/elnk_msgs.h"
#include "DIAG/source_position.h"
#include "ELFLNK/object/collection.h"

namespace {

/// 0 counts as a power of two.
bool is_power_of_two(uint64_t n) {
    return (n & (n - 1)) == 0;
}

uint64_t round_up(uint64_t addr, uint64_t n) {
    uint64_t rest = addr % n;
    if (rest == 0) return addr;
    return n - rest > ~addr ? ~uint64_t{0} : addr + (n - rest);
}

const char* name_of(const LINKER_OBJECT* object) {
    return object ? object->name() : "";
}

} // namespace

const LOCATOR::MORE LOCATOR::NOTHING_MORE;

LOCATOR::LOCATOR(const LOCATOR& other)
    : OALLOC<LOCATOR>(other),
      kind_(other.kind_),
      sub_items_unsorted_(other.sub_items_unsorted_),
      flags_(other.flags_),
      object_(other.object_),
      align_(other.align_),
      min_address_(other.min_address_),
      address_(other.address_),
      end_(other.end_),
      range_(other.range_),
      more_(other.more_ != nullptr ? std::make_unique<MORE>(*other.more_) : nullptr),
      attempts_(other.attempts_) {}

void LOCATOR::set_position(const SOURCE_POSITION* pos) {
    if (pos != nullptr) own_more().position = new SOURCE_POSITION(*pos);
}

void LOCATOR::report_conflict(const SOURCE_POSITION* pos) const {
    DIAG_REPORT_AT(pos, elnk_place_conflict, name_of(object_));
}

// ---- setters ----------------------------------------------------------------------------------

void LOCATOR::add_specific(uint64_t addr, const SOURCE_POSITION* pos) {
    if (has_flag(LF_SPECIFIC | LF_RANGES | LF_ATTRS | LF_HIGHEST)) report_conflict(pos);
    set_position(pos);
    own_more().specific = addr;
    set_flag(LF_SPECIFIC);
}

void LOCATOR::add_ranges(const std::vector<const char*>& names, const SOURCE_POSITION* pos) {
    if (names.empty()) return;
    if (has_flag(LF_SPECIFIC | LF_RANGES | LF_ATTRS)) report_conflict(pos);
    set_position(pos);
    own_more().range_names = names;
    set_flag(LF_RANGES);
}

void LOCATOR::add_attrs(uint32_t attrs, const SOURCE_POSITION* pos) {
    if (has_flag(LF_SPECIFIC | LF_RANGES | LF_ATTRS)) report_conflict(pos);
    set_position(pos);
    own_more().attrs = attrs;
    set_flag(LF_ATTRS);
}

void LOCATOR::add_page(int page, const SOURCE_POSITION* pos) {
    if (has_flag(LF_PAGE)) DIAG_REPORT_AT(pos, elnk_page_exists, name_of(object_));
    set_position(pos);
    own_more().page = page;
    set_flag(LF_PAGE);
}

void LOCATOR::add_priority(uint32_t n, const SOURCE_POSITION* pos) {
    if (has_flag(LF_PRIORITY))
        DIAG_REPORT_AT(pos, elnk_priority_exists, diag_kind(), name_of(object_));
    set_position(pos);
    own_more().priority = n;
    set_flag(LF_PRIORITY);
}

void LOCATOR::add_align(uint64_t n, const SOURCE_POSITION* pos) {
    if (has_flag(LF_ALIGN)) DIAG_REPORT_AT(pos, elnk_align_exists, name_of(object_));
    if (!is_power_of_two(n)) {
        DIAG_REPORT_AT(pos, elnk_bad_align_val);
        return;
    }
    set_position(pos);
    align_ = std::max(align_, n);
    set_flag(LF_ALIGN);
}

void LOCATOR::add_block(uint64_t n, const SOURCE_POSITION* pos) {
    if (has_flag(LF_BLOCK)) DIAG_REPORT_AT(pos, elnk_blocking_exists, name_of(object_));
    if (!is_power_of_two(n)) {
        DIAG_REPORT_AT(pos, elnk_bad_align_val);
        return;
    }
    set_position(pos);
    own_more().block = n;
    set_flag(LF_BLOCK);
}

void LOCATOR::add_palign(uint64_t n, const SOURCE_POSITION* pos) {
    add_align(n, pos);
    set_flag(LF_PALIGN);
}

void LOCATOR::add_p2align(const SOURCE_POSITION* pos) {
    add_align(0, pos);
    set_flag(LF_POWER2);
}

void LOCATOR::add_min_align(uint64_t n) {
    if (n < 2 || !is_power_of_two(n)) return;
    align_ = std::max(align_, n);
    set_flag(LF_ALIGN);
}

void LOCATOR::add_min_block(uint64_t n) {
    if (n < 2 || !is_power_of_two(n)) return;
    if (n > blocking()) own_more().block = n;
    set_flag(LF_BLOCK);
}

void LOCATOR::merge(const LOCATOR* other) {
    const SOURCE_POSITION* pos = other->position();
    if (other->has_flag(LF_SPECIFIC)) add_specific(other->specific_address(), pos);
    if (other->has_flag(LF_RANGES)) add_ranges(other->range_names(), pos);
    if (other->has_flag(LF_ATTRS)) add_attrs(other->attrs(), pos);
    if (other->has_flag(LF_PAGE)) add_page(other->page(), pos);
    if (other->has_flag(LF_PRIORITY)) add_priority(other->priority(), pos);
    if (other->has_flag(LF_ALIGN)) {
        align_ = other->align_;
        set_flag(LF_ALIGN);
    }
    set_flag(other->flags_ & LF_PALIGN);
    if (other->has_flag(LF_BLOCK)) {
        own_more().block = other->blocking();
        set_flag(LF_BLOCK);
    }
    set_flag(other->flags_ &
             (LF_UNORDERED | LF_LAST | LF_OVERLAY | LF_UNION | LF_HIGHEST | LF_POWER2));

    bool split = (is_split() || other->is_split()) && object_ && object_->is_collection();
    clear_flag(LF_SPLIT | LF_ORDERED);
    if (split) set_flag(LF_SPLIT);
    set_flag(other->flags_ & LF_ORDERED);
}

// ---- small questions --------------------------------------------------------------------------

const char* LOCATOR::diag_kind() const {
    switch (kind_) {
    case LOCATOR_KIND::RUN:
    case LOCATOR_KIND::RUN_ALT:
        return "run ";
    case LOCATOR_KIND::LOAD:
        return "load ";
    case LOCATOR_KIND::BOTH:
        break;
    }
    return "";
}

bool LOCATOR::is_fixed_min_size() const {
    return object_ && object_->is_collection() &&
           static_cast<const COLLECTION*>(object_)->has_fixed_min_size();
}

bool LOCATOR::less_by_address(const LOCATOR* a, const LOCATOR* b) {
    if (a->address_ != b->address_) return a->address_ < b->address_;
    if (a->end_ != b->end_) return a->end_ < b->end_;
    return a->object_->id() < b->object_->id();
}

void LOCATOR::sort_by_address(LOCATOR_LIST& list) {
    struct KEY {
        uint64_t address;
        uint64_t end;
        LOCATOR* locator;
        bool operator<(const KEY& b) const {
            if (address != b.address) return address < b.address;
            return end != b.end ? end < b.end : less_by_address(locator, b.locator);
        }
    };
    std::vector<KEY> keys;
    keys.reserve(list.size());
    for (LOCATOR* locator : list) keys.push_back({locator->address_, locator->end_, locator});
    if (std::is_sorted(keys.begin(), keys.end())) return;
    std::stable_sort(keys.begin(), keys.end());
    std::transform(keys.begin(), keys.end(), list.begin(), [](const KEY& k) { return k.locator; });
}

void LOCATOR::sort_by_address_rev(LOCATOR_LIST& list) {
    std::stable_sort(list.begin(), list.end(), less_by_address_rev);
}

void LOCATOR::sort_late_sub_items() const {
    sub_items_unsorted_ = false;
    sort_by_address(more_->sub_items);
}

// ---- rounding ---------------------------------------------------------------------------------

uint64_t LOCATOR::align(uint64_t addr, uint64_t n) const {
    if (n == 0) {
        if (!has_flag(LF_ALIGN) || align_ < 2) return addr;
        n = align_;
    }
    return round_up(addr, n);
}

uint64_t LOCATOR::block(uint64_t addr, uint64_t size) const {
    if (!has_flag(LF_BLOCK) || blocking() < 2) return addr;
    uint64_t next = round_up(addr, blocking());
    bool crosses = size > next - addr;
    return crosses || blocking() <= size ? next : addr;
}

// The blocking test of this direction takes the alignment, not the blocking.
uint64_t LOCATOR::align_down(uint64_t addr, uint64_t size) const {
    if (!has_flag(LF_ALIGN | LF_BLOCK) || align_ < 2) return addr;
    if (!has_flag(LF_BLOCK) || size >= align_) return addr - addr % align_;
    uint64_t boundary = addr + size - (addr + size) % align_;
    return boundary > addr && boundary >= size ? boundary - size : addr;
}
