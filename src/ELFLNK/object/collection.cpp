// Membership of collections, and the walks over what is below them.
//
// A member knows its place in its parent's list, so leaving is O(1) however long the list is.
#include "ELFLNK/object/collection.h"
#include "ELFLNK/compress/compress_db.h"

#include <algorithm>
#include <cstdint>

#include "DIAG/elnk_msgs.h"
#include "DIAG/gen_msgs.h"
#include "ELFLNK/expr/expression.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/object/section_spec.h"
#include "ELFLNK/object/space.h"
#include "UTIL/prefetch.h"
#include "UTIL/savestr.h"

COLLECTION::COLLECTION(const char* name, COLLECTION_KIND kind, const SOURCE_POSITION* pos)
    : LINKER_OBJECT(name, pos), kind_(kind) {
    set_attrs(PA_READ);
}

COLLECTION::~COLLECTION() = default;

const char* COLLECTION::collection_kind_name() const {
    static constexpr const char* NAMES[] = {"OUTSECT", "LOADSEG", "GROUP", "UNION", "LOGICAL"};
    if (is_split_container_) return "SPLIT CONTAINER";
    if (is_section_spec()) return "SECTION SPEC";
    if (is_output_section()) return "OUTSECT";
    return kind_ < std::size(NAMES) ? NAMES[kind_] : "UNKNOWN";
}

void COLLECTION::set_min_align(uint32_t align) {
    min_alignment_ = std::max(min_alignment_, align);
    alignment_ = std::max(alignment_, min_alignment_);
}

void COLLECTION::raise_alignment(uint32_t align) {
    alignment_ = std::max(alignment_, align);
}

// ---- members -------------------------------------------------------------------------------

void COLLECTION::check_unlocked(const char* action, const LINKER_OBJECT* obj) const {
    if (locked_) DIAG_REPORT(elnk_locked_collection, action, obj->name(), name());
}

void COLLECTION::link_member(MEMBER_LIST::iterator before, LINKER_OBJECT* obj) {
    obj->member_position_ = members_.insert(before, obj);
    obj->parent_ = this;
}

void COLLECTION::add_member(LINKER_OBJECT* obj, bool merge) {
    check_unlocked("add", obj);
    link_member(members_.end(), obj);
    note_added(obj);
    if (merge) merge_placement_attributes(obj->attrs());
}

void COLLECTION::insert_member(MEMBER_LIST::iterator before, LINKER_OBJECT* obj, bool merge) {
    check_unlocked("add", obj);
    link_member(before, obj);
    flush_size();
    if (merge) merge_placement_attributes(obj->attrs());
}

MEMBER_LIST::iterator COLLECTION::member_position(LINKER_OBJECT* obj) {
    return obj->parent_ == this ? obj->member_position_ : members_.end();
}

MEMBER_LIST::iterator COLLECTION::erase_member(MEMBER_LIST::iterator at) {
    LINKER_OBJECT* obj = *at;
    check_unlocked("erase", obj);
    flush_size();
    if (obj->parent_ == this) obj->parent_ = nullptr;
    return members_.erase(at);
}

void COLLECTION::clear_members() {
    for (LINKER_OBJECT* obj : members_)
        if (obj->parent_ == this) obj->parent_ = nullptr;
    members_.clear();
    flush_size();
}

void COLLECTION::remove_member(LINKER_OBJECT* obj) {
    auto at = member_position(obj);
    if (at != members_.end()) erase_member(at);
}

void COLLECTION::replace_member(LINKER_OBJECT* with, LINKER_OBJECT* old) {
    check_unlocked("replace", old);
    if (with->parent() != nullptr) {
        DIAG_REPORT(gen_nonnull_pointer, "m_new->parent()");
        return;
    }
    insert_member(member_position(old), with, true);
    remove_member(old);
}

void COLLECTION::append(const MEMBER_LIST& objs) {
    for (LINKER_OBJECT* obj : objs) add_member(obj, true);
}

void COLLECTION::set_member_order(const std::vector<LINKER_OBJECT*>& order) {
    auto at = members_.begin();
    for (LINKER_OBJECT* obj : order) {
        *at = obj;
        if (obj->parent_ == this) obj->member_position_ = at;
        ++at;
    }
}

void COLLECTION::transfer_sspec_members(SECTION_SPEC* spec, MEMBER_LIST::iterator before) {
    COLLECTION* from = spec;
    for (LINKER_OBJECT* obj : from->members_) {
        obj->parent_ = this;
        merge_placement_attributes(obj->attrs());
        if (spec->fill() != nullptr) obj->add_fill(spec->fill(), nullptr);
    }
    members_.splice(before, from->members_);
    from->flush_size();
    flush_size();
}

// ---- walks ---------------------------------------------------------------------------------

bool COLLECTION::query(std::vector<LINKER_OBJECT*>& out, const OBJECT_PREDICATE& pass,
                       bool into_outsects) const {
    bool each_is_below_its_parent = true;
    visit_ahead(members_, prefetch<LINKER_OBJECT>, [&](LINKER_OBJECT* obj) {
        each_is_below_its_parent &= obj->parent_ == this;
        if (!pass || pass(obj)) out.push_back(obj);
        if (!into_outsects && obj->is_output_section()) return;
        if (const COLLECTION* below = as_collection(obj))
            each_is_below_its_parent &= below->query(out, pass, into_outsects);
    });
    return each_is_below_its_parent;
}

void COLLECTION::flatten(std::vector<LINKER_OBJECT*>& out, const OBJECT_PREDICATE& pass,
                         bool into_outsects) const {
    std::vector<LINKER_OBJECT*> found;
    if (query(found, pass, into_outsects)) {
        out.insert(out.end(), found.begin(), found.end());
        return;
    }
    for (LINKER_OBJECT* obj : found) obj->set_visited(false);
    for (LINKER_OBJECT* obj : found)
        if (!obj->set_visited(true)) out.push_back(obj);
    for (LINKER_OBJECT* obj : found) obj->set_visited(false);
}

LINKER_OBJECT* COLLECTION::find_first_member(const OBJECT_PREDICATE& pass) const {
    for (LINKER_OBJECT* obj : members_) {
        if (pass(obj)) return obj;
        if (const COLLECTION* below = as_collection(obj))
            if (LINKER_OBJECT* found = below->find_first_member(pass)) return found;
    }
    return nullptr;
}

SECTION* COLLECTION::find_any_section() const {
    return as_section(find_first_member(&LINKER_OBJECT::is_section));
}

void COLLECTION::clear_visited_flags() {
    set_visited(false);
    for (LINKER_OBJECT* obj : members_) {
        obj->set_visited(false);
        if (COLLECTION* below = as_collection(obj)) below->clear_visited_flags();
    }
}

bool COLLECTION::has_assign_to_dot_expression() const {
    return std::any_of(members_.begin(), members_.end(), [](const LINKER_OBJECT* obj) {
        return obj->has_assign_to_dot_expression();
    });
}

bool COLLECTION::has_load_data() const {
    if (kind_ == COLLECTION_OUTSECT)
        return has_attr(PA_HAS_DATA) && !global_compress_db->is_outsect_auto_init(this);
    return std::any_of(members_.begin(), members_.end(),
                       [](const LINKER_OBJECT* obj) { return obj->has_load_data(); });
}

bool COLLECTION::has_copy_section() const {
    return has_member(&LINKER_OBJECT::is_copy_table);
}

bool COLLECTION::has_crc_section() const {
    return has_member(&LINKER_OBJECT::is_crc_table);
}

void COLLECTION::find_all_non_p1_member_outsects(std::vector<LINKER_OBJECT*>& out) const {
    if (kind_ == COLLECTION_OUTSECT) return;
    for (LINKER_OBJECT* obj : members_) {
        const COLLECTION* below = as_collection(obj);
        if (below == nullptr) continue;
        if (below->kind_ != COLLECTION_OUTSECT)
            below->find_all_non_p1_member_outsects(out);
        else if (obj->has_attr(PA_P2_PLACEMENT | PA_P3_PLACEMENT) || obj->is_ecc_section() ||
                 below->has_member(&LINKER_OBJECT::is_ecc_section))
            out.push_back(obj);
    }
}

uint32_t COLLECTION::qv_flags() {
    constexpr uint32_t NO_FLAGS = 1;
    uint32_t flags = NO_FLAGS;
    for (LINKER_OBJECT* obj : members_) {
        const uint32_t own = obj->qv_flags();
        if ((own & NO_FLAGS) != 0) continue;
        flags = (flags & NO_FLAGS) != 0 ? own : flags | (own & 0x1E);
    }
    return flags;
}

// ---- what others hang in -------------------------------------------------------------------

SECTION_SPEC* COLLECTION::set_default_spec() {
    auto* spec = new SECTION_SPEC(savestrf("%s.*", name()));
    spec->add_section_name(name());
    spec->set_is_default();
    add_member(spec, true);
    return spec;
}

COLLECTION* COLLECTION::default_output_section(const char* name, const char* range_name,
                                               uint32_t alignment, int page) {
    if (kind_ == COLLECTION_OUTSECT) return nullptr;
    auto* outsect = new COLLECTION(name, COLLECTION_OUTSECT);
    auto* locator = new LOCATOR(LOCATOR_KIND::BOTH, outsect);
    if (range_name != nullptr) locator->add_ranges({range_name});
    locator->add_align(alignment);
    if (page != NO_PAGE) locator->add_page(page);
    outsect->add_locator(locator);
    add_member(outsect, true);
    root_collection->add_outsect(outsect);
    return outsect;
}

void COLLECTION::add_assign_from_dot(const char* symbol) {
    const SOURCE_POSITION* pos = &source_position();
    auto* left = new EXPRESSION(EXPR_OP_SYMBOL, symbol, EXPR_BIND_STRONG, pos);
    auto* dot = new EXPRESSION(EXPR_OP_DOT, pos);
    auto* expr = new EXPRESSION(EXPR_OP_ASSIGN, left, dot, pos);
    auto* anchor = new DOT_EXPRESSION(expr, pos);
    add_member(anchor, true);
    anchor->add_linker_assignment(expr);
}
