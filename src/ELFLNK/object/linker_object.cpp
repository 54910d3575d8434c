// The base of the tree: addresses, locators, assignments, fills and pads of one object, and the
// orders between objects.
#include "ELFLNK/object/linker_object.h"

#include <utility>

#include "DIAG/elnk_msgs.h"
#include "DIAG/gen_msgs.h"
#include "ELFLNK/build/link_kind.h"
#include "ELFLNK/expr/expr_mgr.h"
#include "ELFLNK/expr/expression.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/fill_spec.h"
#include "ELFLNK/memmap/memory_range.h"
#include "ELFLNK/object/root_collection.h"
#include "UTIL/savestr.h"

uint32_t LINKER_OBJECT::obj_count_m = 0;
const LINKER_OBJECT::MORE LINKER_OBJECT::NOTHING_MORE;

LINKER_OBJECT::LINKER_OBJECT(const char* name, const SOURCE_POSITION* pos)
    : name_(name), obj_id_(++obj_count_m) {
    if (pos != nullptr) own_more().position = SOURCE_POSITION(pos);
}

LINKER_OBJECT::~LINKER_OBJECT() {
    delete padding();
}

const char* attr_name(uint32_t attribute) {
    switch (attribute) {
    case PA_NONE:
        return "PA_NONE";
#define PLACEMENT_ATTR(name, value)                                                                \
    case name:                                                                                     \
        return #name;
#include "ELFLNK/object/placement_attributes.def"
#undef PLACEMENT_ATTR
    default:
        return "PA_UNKNOWN";
    }
}

void LINKER_OBJECT::set_name(const char* name) {
    if (is_output_section_) root_collection->unindex_outsect_name(this);
    name_ = name;
    if (is_output_section_) root_collection->index_outsect_name(this);
}

const char* LINKER_OBJECT::rwx_string() const {
    static constexpr const char* TEXTS[8] = {"---", "r--", "-w-", "rw-",
                                             "--x", "r-x", "-wx", "rwx"};
    return TEXTS[(has_attr(PA_READ) ? 1 : 0) | (has_attr(PA_WRITE) ? 2 : 0) |
                 (has_attr(PA_EXEC) ? 4 : 0)];
}

// ---- addresses -----------------------------------------------------------------------------

bool LINKER_OBJECT::carries_no_address() const {
    if (has_attr(PA_HAS_DATA | PA_ALLOCATED)) return false;
    return has_attr(PA_PMDATA) || !has_attr(PA_COPY | PA_DSECT);
}

uint64_t LINKER_OBJECT::run_address() const {
    if (carries_no_address() || run_locator_ == nullptr) return 0;
    return run_locator_->address();
}

uint64_t LINKER_OBJECT::load_address() const {
    if (carries_no_address()) return 0;
    if (load_locator_ != nullptr && load_locator_->is_placed()) return load_locator_->address();
    return run_address();
}

namespace {

/// The page on which the locator's object lies, or will lie.
int page_of(const LOCATOR* locator) {
    if (locator->range() != nullptr) return locator->range()->page();
    return locator->effective_page();
}

} // namespace

int LINKER_OBJECT::run_page() const {
    if (carries_no_address() || run_locator_ == nullptr) return 0;
    return page_of(run_locator_);
}

int LINKER_OBJECT::load_page() const {
    if (carries_no_address()) return 0;
    if (load_locator_ == nullptr || !load_locator_->is_placed()) return run_page();
    return page_of(load_locator_);
}

bool LINKER_OBJECT::is_placed() const {
    return run_locator_ != nullptr && run_locator_->is_placed();
}

bool LINKER_OBJECT::run_placement_is_complete() const {
    return run_locator_ != nullptr && run_locator_->is_complete();
}

bool LINKER_OBJECT::load_placement_is_complete() const {
    const LOCATOR* locator = load_locator_ != nullptr ? load_locator_ : run_locator_;
    return locator != nullptr && locator->is_complete();
}

void LINKER_OBJECT::clear_locators() {
    run_locator_ = load_locator_ = nullptr;
    if (more_ != nullptr) more_->alt_run_locator = nullptr;
}

void LINKER_OBJECT::add_locator(LOCATOR* locator) {
    if (locator == nullptr) {
        clear_locators();
        return;
    }
    switch (locator->kind()) {
    case LOCATOR_KIND::RUN:
        run_locator_ = locator;
        break;
    case LOCATOR_KIND::LOAD:
        load_locator_ = locator;
        break;
    case LOCATOR_KIND::BOTH:
        run_locator_ = locator;
        load_locator_ = nullptr;
        break;
    case LOCATOR_KIND::RUN_ALT:
        own_more().alt_run_locator = locator;
        break;
    default:
        clear_locators();
        break;
    }
    locator->set_object(this);
}

LOCATOR* LINKER_OBJECT::take_load_locator() {
    return std::exchange(load_locator_, nullptr);
}

bool LINKER_OBJECT::can_be_part_of_load_segment() const {
    return is_output_section_ || is_meta_segment() || is_elf_file_header() ||
           is_elf_phdr_segment() || is_tls_segment();
}

bool LINKER_OBJECT::is_loaded() {
    return has_attr(PA_ALLOCATED) && !has_attr(PA_NOLOAD) && can_be_part_of_load_segment() &&
           size() != 0;
}

// ---- position in the tree ------------------------------------------------------------------

bool LINKER_OBJECT::contains(const LINKER_OBJECT* obj) const {
    for (; obj != nullptr; obj = obj->parent_)
        if (obj == this) return true;
    return false;
}

COLLECTION* LINKER_OBJECT::containing_outsect() const {
    for (COLLECTION* above = parent_; above != nullptr; above = above->parent_)
        if (above->kind() == COLLECTION_OUTSECT) return above;
    return nullptr;
}

LINKER_OBJECT* LINKER_OBJECT::outsect_object() const {
    for (const LINKER_OBJECT* obj = this; obj != nullptr; obj = obj->parent_)
        if (obj->is_output_section_) return const_cast<LINKER_OBJECT*>(obj);
    return nullptr;
}

OFE::OF_SECTION* LINKER_OBJECT::output_OF_SECTION() const {
    const LINKER_OBJECT* outsect = outsect_object();
    return outsect != nullptr ? outsect->own_output_section() : nullptr;
}

void LINKER_OBJECT::set_output_OF_SECTION(OFE::OF_SECTION* section) {
    if (!is_output_section_) {
        DIAG_REPORT(elnk_lobj_not_outsect, name());
        return;
    }
    own_more().output_section = section;
    root_collection->map_output(section, this);
}

void LINKER_OBJECT::clear_output_OF_SECTION() {
    if (!is_output_section_) {
        DIAG_REPORT(elnk_lobj_not_outsect, name());
        return;
    }
    if (own_output_section() == nullptr) return;
    root_collection->unmap_output(own_output_section());
    own_more().output_section = nullptr;
}

// ---- fill, assignments, pads ---------------------------------------------------------------

void LINKER_OBJECT::add_fill(FILL_SPEC* fill, const SOURCE_POSITION* pos) {
    if (fill_ != nullptr) {
        DIAG_REPORT_AT(pos, elnk_lobj_fill_exists, name());
        return;
    }
    fill_ = fill;
    fill_->check_fill_width(pos);
    set_attr(PA_HAS_DATA);
}

void LINKER_OBJECT::add_assignment(EXPRESSION* expr, bool user) {
    own_more().assignments.push_back(expr);
    get_expr_mgr()->add_assignment(expr, this, user);
}

void LINKER_OBJECT::add_linker_assignment(EXPRESSION* expr) {
    expr->set_user(false);
    add_assignment(expr, false);
}

void LINKER_OBJECT::add_linker_assignment(const char* symbol, EXPRESSION* value,
                                          EXPR_SYM_BINDING binding) {
    auto* left = new EXPRESSION(EXPR_OP_SYMBOL, symbol, binding, &source_position());
    add_linker_assignment(new EXPRESSION(EXPR_OP_ASSIGN, left, value, &source_position()));
}

void LINKER_OBJECT::move_assignment(EXPRESSION* expr, LINKER_OBJECT* to) {
    std::erase(own_more().assignments, expr);
    to->own_more().assignments.push_back(expr);
    get_expr_mgr()->move_assignment(expr, to);
}

void LINKER_OBJECT::remove_assignment(EXPRESSION* expr) {
    if (!expr->is_assignment()) return;
    get_expr_mgr()->remove_assignment(expr);
    if (more_ != nullptr) std::erase(more_->assignments, expr);
}

void LINKER_OBJECT::take_assignments(LINKER_OBJECT* from) {
    if (from->assignments().empty()) return;
    auto& mine = own_more().assignments;
    auto& theirs = from->own_more().assignments;
    mine.insert(mine.end(), theirs.begin(), theirs.end());
    theirs.clear();
    get_expr_mgr()->move_assignments(from, this);
}

void LINKER_OBJECT::attach_padding(LINKER_OBJECT* pad) {
    own_more().padding = pad;
    set_attr(PA_PADDED);
}

void LINKER_OBJECT::detach_padding() {
    if (more_ != nullptr) {
        delete more_->padding;
        more_->padding = nullptr;
    }
    clear_attr(PA_PADDED);
}

// What is allocated and yet stands in no real memory was put there after a failure, but in a
// partial link, whose sections have no addresses yet.
bool LINKER_OBJECT::failed_to_allocate() const {
    for (const LOCATOR* locator : {run_locator_, load_locator_}) {
        if (locator == nullptr) continue;
        if (locator->placement_failed()) return true;
        if (locator->is_virtual() && has_attr(PA_ALLOCATED) && !is_partial_link()) return true;
    }
    return false;
}

// ---- build and write -----------------------------------------------------------------------

void LINKER_OBJECT::finalize_internal(OFE::OF_SECTION*, uint32_t) {}

void LINKER_OBJECT::write_data_internal(OFE::OF_SECTION*, uint32_t) {
    if (has_attr(PA_HAS_DATA) && size() != 0) DIAG_REPORT(elnk_method_not_overridden, name());
}

// ---- orders --------------------------------------------------------------------------------

namespace {

template <class T>
int compare(T a, T b) {
    return a < b ? -1 : b < a ? 1 : 0;
}

} // namespace

int LINKER_OBJECT::sort_by_id(const LINKER_OBJECT* a, const LINKER_OBJECT* b) {
    return compare(a->obj_id_, b->obj_id_);
}

int LINKER_OBJECT::sort_by_run_address(LINKER_OBJECT* a, LINKER_OBJECT* b) {
    if (int c = compare(a->run_page(), b->run_page()); c != 0) return c;
    if (int c = compare(a->run_address(), b->run_address()); c != 0) return c;
    if (int c = compare(a->size(), b->size()); c != 0) return c;
    return sort_by_id(a, b);
}

int LINKER_OBJECT::sort_by_load_address(LINKER_OBJECT* a, LINKER_OBJECT* b) {
    if (int c = compare(a->load_page(), b->load_page()); c != 0) return c;
    if (int c = compare(a->load_address(), b->load_address()); c != 0) return c;
    if (int c = compare(a->size(), b->size()); c != 0) return c;
    return sort_by_id(a, b);
}

bool LINKER_OBJECT::less_than_run_address(LINKER_OBJECT* a, LINKER_OBJECT* b) {
    return sort_by_run_address(a, b) < 0;
}

bool LINKER_OBJECT::less_than_load_address(LINKER_OBJECT* a, LINKER_OBJECT* b) {
    if (a->is_placed() && b->is_placed() && a->has_attr(PA_ALLOCATED) &&
        b->has_attr(PA_ALLOCATED)) {
        if (int c = compare(a->load_page(), b->load_page()); c != 0) return c < 0;
        if (int c = compare(a->load_address(), b->load_address()); c != 0) return c < 0;
    }
    return less_than_obj_id(a, b);
}
