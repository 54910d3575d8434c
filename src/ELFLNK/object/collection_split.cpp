// Order and shape of collections: dissolving specifications that keep no order, gathering the
// loose ones of an unordered section, and taking split output sections apart into the pieces
// that placement made of them.
#include <algorithm>
#include <cstring>
#include <tuple>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/expr/expression.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section_spec.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "UTIL/prefetch.h"
#include "UTIL/savestr.h"

namespace {

bool any_locator(const LINKER_OBJECT* obj, uint32_t flag) {
    return (obj->run_locator() != nullptr && obj->run_locator()->has_flag(flag)) ||
           (obj->load_locator() != nullptr && obj->load_locator()->has_flag(flag));
}

} // namespace

bool COLLECTION::is_unordered() const {
    return any_locator(this, LF_UNORDERED);
}

void COLLECTION::clear_unordered() {
    for (LOCATOR* locator : {run_locator(), load_locator()})
        if (locator != nullptr) locator->clear_flag(LF_UNORDERED);
}

bool COLLECTION::is_split() const {
    for (const COLLECTION* c = this; c != nullptr; c = c->parent())
        if (any_locator(c, LF_SPLIT)) return true;
    return false;
}

// ---- flattening ----------------------------------------------------------------------------

void COLLECTION::merge_consecutive_specs() {
    if (!is_output_section() || !is_unordered()) return;
    std::vector<std::vector<LINKER_OBJECT*>> runs(1);
    for (LINKER_OBJECT* member : members_) {
        if (!member->is_section_spec()) {
            if (!runs.back().empty()) runs.emplace_back();
        } else if (!static_cast<SECTION_SPEC*>(member)->members().empty()) {
            runs.back().push_back(member);
        }
    }
    int count = 0;
    for (const auto& run : runs) {
        if (run.empty()) continue;
        auto* loose = new COLLECTION(savestrf("%s.%d", name(), ++count), COLLECTION_LOGICAL);
        insert_member(member_position(run.front()), loose, false);
        for (LINKER_OBJECT* spec : run) {
            remove_member(spec);
            loose->add_member(spec, true);
        }
        merge_placement_attributes(loose->attrs());
    }
    clear_unordered();
}

bool COLLECTION::ok_to_flatten(const LINKER_OBJECT* child) const {
    if (!child->is_section_spec() || !child->assignments().empty()) return false;
    if (is_split() || members_.size() == 1) return true;
    return static_cast<const SECTION_SPEC*>(child)->members().size() < 2;
}

void COLLECTION::flatten_section_specs() {
    if (is_section_spec()) return; // it holds sections and common blocks
    if (is_output_section()) merge_consecutive_specs();
    std::vector<SECTION_SPEC*> specs;
    for (LINKER_OBJECT* member : members_) {
        if (COLLECTION* below = as_collection(member)) below->flatten_section_specs();
        if (SECTION_SPEC* spec = as_section_spec(member)) specs.push_back(spec);
    }
    // One that goes may leave another as the only member.
    for (bool changed = true; changed;) {
        changed = false;
        for (SECTION_SPEC*& spec : specs) {
            if (spec == nullptr || !ok_to_flatten(spec)) continue;
            transfer_sspec_members(spec, member_position(spec));
            remove_member(spec);
            delete spec;
            spec = nullptr;
            changed = true;
        }
    }
}

namespace {

/// Sorts by less_than_run_address; each object is asked once for what decides.
void sort_by_run_address(std::vector<LINKER_OBJECT*>& objects) {
    using KEY = std::tuple<int, uint64_t, uint64_t, uint32_t, LINKER_OBJECT*>;
    std::vector<KEY> keys;
    keys.reserve(objects.size());
    for (LINKER_OBJECT* obj : objects)
        keys.emplace_back(obj->run_page(), obj->run_address(), obj->size(), obj->id(), obj);
    std::sort(keys.begin(), keys.end());
    for (size_t i = 0; i < keys.size(); ++i) objects[i] = std::get<LINKER_OBJECT*>(keys[i]);
}

} // namespace

// ---- splitting -----------------------------------------------------------------------------

void COLLECTION::split_outsects() {
    const std::vector<LINKER_OBJECT*> all(root_collection->outsects().begin(),
                                          root_collection->outsects().end());
    for (LINKER_OBJECT* obj : all)
        if (COLLECTION* outsect = as_collection(obj); outsect != nullptr && outsect->is_split())
            outsect->split_outsect();
}

void COLLECTION::split_outsect() {
    kind_ = COLLECTION_LOGICAL;
    is_split_container_ = true;
    // A member that was split itself has no place: its members stand for it. The symbols on it
    // name no address any more and stay with the container.
    std::vector<LINKER_OBJECT*> pieces;
    pieces.reserve(members_.size());
    std::vector<COLLECTION*> split{this};
    for (size_t i = 0; i < split.size(); ++i) {
        COLLECTION* whole = split[i];
        for (LINKER_OBJECT* member : whole->members_)
            if (COLLECTION* below = as_collection(member); below && any_locator(below, LF_SPLIT))
                split.push_back(below);
            else
                pieces.push_back(member);
        if (whole != this) take_assignments(whole);
        whole->clear_members();
    }
    ::sort_by_run_address(pieces);

    std::vector<LINKER_OBJECT*> group;
    auto place_piece = [&](LINKER_OBJECT* piece) {
        if (!group.empty() && !(piece->is_placed() && can_coalesce(group, piece))) {
            coalesce_into_outsect(group);
            group.clear();
        }
        group.push_back(piece);
    };
    visit_ahead(pieces, prefetch<LINKER_OBJECT>, place_piece);
    if (!group.empty()) coalesce_into_outsect(group);

    root_collection->remove_outsect(this);
    if (run_locator() != nullptr) run_locator()->coalesce();
    if (load_locator() != nullptr) load_locator()->coalesce();
    if (members_.size() < 2) return;
    int count = 0;
    for (LINKER_OBJECT* member : members_) member->set_name(savestrf("%s.%d", name(), ++count));
}

bool COLLECTION::can_coalesce(const std::vector<LINKER_OBJECT*>& group, LINKER_OBJECT* obj) const {
    LINKER_OBJECT* first = group.front();
    LINKER_OBJECT* last = group.back();
    if (last->has_attr(PA_HAS_DATA) != obj->has_attr(PA_HAS_DATA)) return false;
    if (obj->alignment() > 1 && first->run_address() % obj->alignment() != 0) return false;
    const uint64_t run_end = last->run_address() + last->size();
    const uint64_t load_end = last->load_address() + last->size();
    if (run_end > obj->run_address() || load_end > obj->load_address()) return false;
    const uint64_t gap = obj->run_address() - run_end;
    if (gap > Target->max_section_gap() || load_end + gap != obj->load_address()) return false;
    if (run_locator() != nullptr && run_locator()->is_split() &&
        !LOCATOR::is_adjacent(last->run_locator(), obj->run_locator()))
        return false;
    return load_locator() == nullptr || !load_locator()->is_split() ||
           LOCATOR::is_adjacent(last->load_locator(), obj->load_locator());
}

void COLLECTION::coalesce_into_outsect(const std::vector<LINKER_OBJECT*>& group) {
    auto* outsect = new COLLECTION(name(), COLLECTION_OUTSECT, &source_position());
    outsect->set_attrs(attrs());
    for (LINKER_OBJECT* obj : group) outsect->add_member(obj, true);
    root_collection->add_outsect(outsect);
    outsect->set_attributes_from_members(true);
    outsect->propagate_attributes_into_members(true);
    add_member(outsect, true);
}

// ---- restrictions on the user's sections ---------------------------------------------------

void COLLECTION::enforce_spec_restrictions() {
    if (!is_user_specified()) return;
    if (Target->abi()->section_name_is_reserved(name()))
        DIAG_REPORT_AT(&source_position(), elnk_illegal_oscn_name, name());
    enforce_linker_controlled_section_restrictions();
}

namespace {

/// Symbols that take dot in front of or behind what the linker puts into a section are those of its
/// start or end.
void anchor_to_extent(COLLECTION* outsect, LINKER_OBJECT* dot, EXPR_OPCODE extent) {
    if (dot->has_assign_to_dot_expression()) return;
    for (EXPRESSION* expr : dot->assignments())
        if (expr->right() != nullptr && expr->right()->opcode() == EXPR_OP_DOT)
            expr->set_right(new EXPRESSION(extent, &expr->source_position()));
    outsect->take_assignments(dot);
    outsect->remove_member(dot);
}

} // namespace

void COLLECTION::enforce_linker_controlled_section_restrictions() {
    ABI* abi = Target->abi();
    if (!abi->linker_controls_section_contents(name())) return;
    std::vector<LINKER_OBJECT*> body;
    flatten(body, [](const LINKER_OBJECT* obj) {
        return obj->is_section_spec() || obj->is_dot_expression();
    });
    bool warned = false;
    for (LINKER_OBJECT* obj : body) {
        if (obj->is_dot_expression()) {
            anchor_to_extent(this, obj, warned ? EXPR_OP_RUN_END : EXPR_OP_RUN_START);
            continue;
        }
        if (static_cast<SECTION_SPEC*>(obj)->is_default()) continue;
        if (!warned)
            DIAG_REPORT_AT(&obj->source_position(), elnk_no_sspec,
                           abi->linker_controlled_section_diag_name(name()), name());
        warned = true;
        remove_member(obj);
    }
}

bool COLLECTION::replace_user_outsect() {
    COLLECTION* user = as_collection(root_collection->find_other_outsect(name(), this));
    if (user == nullptr) return false;
    user->enforce_linker_controlled_section_restrictions();
    LOCATOR* load = user->load_locator();
    if (user->run_locator() != nullptr) add_locator(user->run_locator());
    if (load != nullptr) add_locator(load);
    take_assignments(user);
    root_collection->remove_outsect(user);
    set_attr(user->attrs() & STICKY_PLACEMENT_ATTRIBUTES);
    if (user->parent() != nullptr) user->parent()->replace_member(this, user);
    set_user_specified(user->is_user_specified());
    return true;
}
