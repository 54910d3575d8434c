// The wishes of one locator against the object that it places: alignment that the object needs,
// members that fix the layout, and wishes that exclude each other. What can't be had is dropped
// with a warning; a virtual locator drops it silently, as its place means nothing.
#include <algorithm>

#include "DIAG/elnk_msgs.h"
#include "DIAG/source_position.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/savestr.h"

namespace {

/// "a, b and c"
std::string join_names(const std::vector<LINKER_OBJECT*>& objects) {
    std::string text;
    for (size_t i = 0; i < objects.size(); ++i) {
        if (i != 0) text += i + 1 == objects.size() ? " and " : ", ";
        text += objects[i]->name();
    }
    return text;
}

bool is_dot_expression(const LINKER_OBJECT* object) {
    return object->is_dot_expression();
}

} // namespace

void LOCATOR::analyze() {
    if (is_complete()) return;
    add_min_align(object_->alignment());
    add_min_block(object_->blocking());
    if (COLLECTION* collection = as_collection(object_)) analyze_collection(collection);
    analyze_priority();
    if (is_split()) analyze_split();
    if (is_highest()) {
        if (is_virtual()) {
            clear_flag(LF_HIGHEST);
        } else if (has_flag(LF_SPECIFIC)) {
            DIAG_REPORT_AT(position(), elnk_place_ignore_high_for_specific, object_->name());
            clear_flag(LF_HIGHEST);
        }
    }
    if (is_ordered() && is_split()) clear_flag(LF_ORDERED);
    if (is_virtual() && object_->has_attr(PA_P3_PLACEMENT)) set_flag(LF_BEHIND_LAST);
}

/// Dot counts from the start of the section: the members stay in order, and blocking that a first
/// member needs must hold for the section itself.
void LOCATOR::analyze_collection(COLLECTION* collection) {
    const MEMBER_LIST& members = collection->members();
    if (!is_overlay() && collection->has_member(is_dot_expression)) {
        set_flag(LF_ORDERED);
        bool from_the_start = members.front()->is_dot_expression();
        for (LINKER_OBJECT* member : members) {
            if (!from_the_start) break;
            if (member->is_dot_expression() && !member->is_space()) continue;
            uint64_t blocking = member->blocking();
            if (const COLLECTION* inner = as_collection(member)) {
                std::vector<LINKER_OBJECT*> sections;
                inner->flatten(sections, &LINKER_OBJECT::is_section);
                for (const LINKER_OBJECT* section : sections)
                    blocking = std::max<uint64_t>(blocking, section->blocking());
            }
            if (blocking == 0) break;
            add_min_block(blocking);
        }
    }
    if (collection->has_attr(PA_BOUND) && has_flag(LF_SPECIFIC)) add_mem_for_bound_object();
}

void LOCATOR::report_ignored_priority() {
    if (has_flag(LF_SPECIFIC))
        DIAG_REPORT_AT(position(), elnk_priority_specific, diag_kind(), priority(),
                       object_->name());
    else if (has_flag(LF_LAST))
        DIAG_REPORT_AT(position(), elnk_priority_last, diag_kind(), priority(), object_->name());
    else
        DIAG_REPORT_AT(position(), elnk_priority_highest, diag_kind(), priority(), object_->name());
}

void LOCATOR::analyze_priority() {
    if (!has_flag(LF_PRIORITY)) return;
    if (!is_virtual()) {
        if (!has_flag(LF_SPECIFIC | LF_LAST | LF_HIGHEST)) return;
        report_ignored_priority();
    }
    clear_flag(LF_PRIORITY);
}

void LOCATOR::analyze_split() {
    if (is_virtual() || split_is_ignored()) clear_flag(LF_SPLIT);
}

/// The first thing that stands against a split, reported.
bool LOCATOR::split_is_ignored() {
    const char* name = object_->name();
    COLLECTION* collection = as_collection(object_);
    const char* symbol = nullptr;
    if (!Target->abi()->splitting_permitted(this)) {
        DIAG_REPORT_AT(position(), elnk_place_ignore_split_general, name, diag_kind());
    } else if (has_flag(LF_SPECIFIC)) {
        DIAG_REPORT_AT(position(), elnk_place_ignore_split_for_specific, name);
    } else if (is_overlay()) {
        DIAG_REPORT_AT(position(), elnk_place_ignore_split_for_overlay, name);
    } else if (collection != nullptr && collection->has_member(is_dot_expression)) {
        DIAG_REPORT_AT(position(), elnk_place_ignore_split_for_dot_expr, name);
    } else if (symdef_inhibits_splitting(&symbol)) {
        DIAG_REPORT_AT(position(), elnk_place_ignore_split_contig, name, symbol);
    } else if (has_flag(LF_PALIGN | LF_POWER2)) {
        DIAG_REPORT_AT(position(), elnk_place_ignore_split_palign, name);
    } else if (is_highest()) {
        DIAG_REPORT_AT(position(), elnk_place_ignore_split_high, name);
    } else if (object_->is_exidx()) {
        DIAG_REPORT_AT(position(), elnk_place_ignore_split_EH, name);
    } else if (object_->has_attr(PA_P2_PLACEMENT | PA_P3_PLACEMENT) || object_->is_ecc_section()) {
        std::vector<LINKER_OBJECT*> late;
        if (collection != nullptr) collection->find_all_non_p1_member_outsects(late);
        if (late.empty())
            DIAG_REPORT_AT(position(), elnk_place_ignore_split_general, name, diag_kind());
        else
            DIAG_REPORT_AT(position(), elnk_place_ignore_split_non_p1, name, join_names(late));
    } else {
        return collection == nullptr || collection->members().empty();
    }
    return true;
}

/// A bound object lies where it lies: where the user's map has no memory, a range is made for it.
void LOCATOR::add_mem_for_bound_object() {
    uint64_t size = object_->size();
    int wanted_page = effective_page();
    if (memory_map->fits_in_a_range(specific_address(), size, wanted_page)) return;
    if (const MEMORY_RANGE* other = memory_map->intersects(specific_address(), size, wanted_page)) {
        DIAG_REPORT_AT(position(), elnk_bound_scn_intersects_memrng_boundary, object_->name(),
                       other->name());
        return;
    }
    const char* name = savestrf("$BOUND$0x%lx", static_cast<unsigned long>(specific_address()));
    memory_map->add(new MEMORY_RANGE(
        name, specific_address(), size,
        MEMORY_RANGE::ATTR_R | MEMORY_RANGE::ATTR_I | MEMORY_RANGE::ATTR_X, wanted_page));
    if (global_opts->isopt(OPT_warn_sections))
        DIAG_REPORT_AT(position(), elnk_unspec_memrng_created_for_bound_scn, name, object_->name());
}
