// Load segments: which output sections may share one program header, and what it then covers.
#include "ELFLNK/object/load_segment.h"

#include <algorithm>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/ofe/of_section.h"

namespace {

constexpr uint32_t PF_X = 1;
constexpr uint32_t PF_W = 2;
constexpr uint32_t PF_R = 4;

} // namespace

LOAD_SEGMENT::LOAD_SEGMENT(const char* name, const SOURCE_POSITION* pos)
    : COLLECTION(name, COLLECTION_LOADSEG, pos) {}

void LOAD_SEGMENT::merge_placement_attributes(uint32_t bits) {
    set_attr(bits & ~(STICKY_PLACEMENT_ATTRIBUTES | PA_P2_PLACEMENT));
}

void LOAD_SEGMENT::take_addresses(LINKER_OBJECT* obj) {
    run_address_ = obj->run_address();
    load_address_ = obj->load_address();
    run_page_ = obj->run_page();
    load_page_ = obj->load_page();
}

void LOAD_SEGMENT::update_upon_placement() {
    if (is_output_section()) {
        COLLECTION::update_upon_placement();
        run_address_ = LINKER_OBJECT::run_address();
        load_address_ = LINKER_OBJECT::load_address();
        run_page_ = LINKER_OBJECT::run_page();
        load_page_ = LINKER_OBJECT::load_page();
        init_size_ = has_attr(PA_HAS_DATA) ? size() : 0;
        return;
    }
    std::vector<LINKER_OBJECT*> parts;
    flatten(parts, &LINKER_OBJECT::can_be_part_of_load_segment);
    std::sort(parts.begin(), parts.end(), less_than_load_address);
    clear_members();
    init_size_ = 0;
    const bool free_form = Target->abi()->gabi_segment_mode();
    for (LINKER_OBJECT* part : parts) {
        if (free_form || !part->is_loaded() || can_combine(part)) {
            add_member(part);
        } else {
            DIAG_REPORT_AT(&source_position(), elnk_ldseg_bad_member, name(), part->name());
            root_collection->add_member(part, true);
        }
    }
}

/// Run and load address lie equally far behind those of the segment.
bool LOAD_SEGMENT::keeps_distance(LINKER_OBJECT* obj) {
    return obj->run_address() >= run_address_ + size() &&
           obj->run_address() - run_address_ == obj->load_address() - load_address_;
}

namespace {

bool is_bss(const LINKER_OBJECT* obj) {
    OFE::OF_SECTION* output = obj->output_OF_SECTION();
    return output != nullptr && output->bss();
}

} // namespace

bool LOAD_SEGMENT::can_combine(LINKER_OBJECT* obj) {
    const LINKER_OBJECT* last = last_member();
    if (last == nullptr) return true;
    if (obj->alignment() > 1 && run_address_ % obj->alignment() != 0) return false;
    if (has_attr(PA_TLS) || obj->has_attr(PA_TLS)) return has_attr(PA_TLS) == obj->has_attr(PA_TLS);
    if (!match_flags(obj) || !match_seg_attrs(obj)) return false;
    if (is_bss(last) && !is_bss(obj)) return false;
    if (last->has_attr(PA_RUN_IMAGE) != obj->has_attr(PA_RUN_IMAGE)) return false;
    if (!obj->has_attr(PA_RUN_IMAGE) && !keeps_distance(obj)) return false;
    if (obj->has_attr(PA_HAS_DATA) && size() != init_size_) return false;
    return obj->run_address() <= run_address_ + size() + Target->max_segment_gap();
}

void LOAD_SEGMENT::add_member(LINKER_OBJECT* obj) {
    const bool is_first = members().empty();
    if (!LINKER_OBJECT::is_placed() && !obj->is_placed()) {
        if (!is_first && (size() != 0 || run_address_ != 0))
            DIAG_REPORT(elnk_ldseg_incompat_members, name(), obj->name());
        COLLECTION::add_member(obj, true);
        return;
    }
    const uint64_t end_before = is_first ? 0 : run_address_ + size();
    if (is_first || obj->run_address() < run_address_) take_addresses(obj);
    COLLECTION::add_member(obj, true);
    const uint64_t end = std::max(end_before, obj->run_address() + obj->size());
    set_valid_size(end - run_address_, end - run_address_);
    if (obj->has_attr(PA_HAS_DATA)) init_size_ = end - run_address_;
}

uint32_t LOAD_SEGMENT::flags() const {
    return (has_attr(PA_EXEC) ? PF_X : 0) | (has_attr(PA_WRITE) ? PF_W : 0) |
           (has_attr(PA_READ) ? PF_R : 0);
}

bool LOAD_SEGMENT::match_flags(const LINKER_OBJECT* obj) const {
    return has_attr(PA_WRITE) == obj->has_attr(PA_WRITE);
}

bool LOAD_SEGMENT::match_seg_attrs(const LINKER_OBJECT* obj) const {
    return load_page_ == obj->load_page() && has_attr(PA_READONLY) == obj->has_attr(PA_READONLY) &&
           has_attr(PA_BOUND) == obj->has_attr(PA_BOUND);
}
