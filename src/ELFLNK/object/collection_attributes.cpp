// Attributes flow up from members to their collection, then what holds for an output section as a
// whole flows down again.
#include <algorithm>
#include <string>
#include <unordered_set>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/build/link_kind.h"
#include "ELFLNK/expr/expression.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/object/space.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "UTIL/prefetch.h"

void COLLECTION::set_placement_attributes() {
    set_attributes_from_members(is_output_section());
    propagate_attributes_into_members(is_output_section());
}

void COLLECTION::merge_placement_attributes(uint32_t bits) {
    const bool was_allocated = has_attr(PA_ALLOCATED);
    set_attr(bits & ~STICKY_PLACEMENT_ATTRIBUTES);
    if (has_attr(PA_ALLOCATED) != was_allocated) flush_size();
}

namespace {

bool output_is_elf() {
    const OBJ_FILE* output = file_manager.output_file();
    return output == nullptr || output->object_file()->format() == OFE::OF_FORMAT_ELF;
}

/// The alignment that a member asks of its collection.
uint64_t alignment_of(const LINKER_OBJECT* member) {
    uint64_t align = member->alignment();
    if (!member->has_attr(PA_BOUND) && must_preserve_blocking())
        align = std::max<uint64_t>(align, member->blocking());
    if (member->is_dot_expression()) {
        const EXPRESSION* expr = static_cast<const DOT_EXPRESSION*>(member)->expression();
        unsigned long wanted = 0;
        if (expr != nullptr && expr->has_align(&wanted)) align = std::max<uint64_t>(align, wanted);
    }
    return align;
}

/// A symbol of the object takes a load address or dot.
bool symbol_needs_memory(const LINKER_OBJECT* obj) {
    const auto& list = obj->assignments();
    return std::any_of(list.begin(), list.end(), [](const EXPRESSION* expr) {
        return expr->right() != nullptr && (expr->right()->opclass() & EXPR_CLASS_LOAD_OR_DOT) != 0;
    });
}

constexpr uint32_t HELD_BY_ALL = PA_DSECT | PA_COPY | PA_NOLOAD | PA_BOUND | PA_READONLY;

} // namespace

void COLLECTION::set_attributes_from_members(bool in_outsect) {
    const uint32_t before = attrs();
    set_attrs(before & STICKY_PLACEMENT_ATTRIBUTES);
    set_min_align(0);
    if (run_locator() != nullptr)
        raise_alignment(static_cast<uint32_t>(run_locator()->alignment()));

    const bool inside = is_output_section() || in_outsect;
    uint32_t held_by_all = HELD_BY_ALL;
    std::vector<LINKER_OBJECT*> noinit;
    std::vector<LINKER_OBJECT*> other;
    visit_ahead(members_, prefetch<LINKER_OBJECT>, [&](LINKER_OBJECT* member) {
        if (COLLECTION* below = as_collection(member)) below->set_attributes_from_members(inside);
        merge_placement_attributes(member->attrs());
        if (inside) (member->has_attr(PA_NOINIT) ? noinit : other).push_back(member);
        raise_alignment(static_cast<uint32_t>(alignment_of(member)));
        held_by_all &= member->attrs();
    });
    if (!has_attr(PA_ALLOCATED) && symbol_needs_memory(this)) set_attr(PA_ALLOCATED);
    if (!members_.empty()) set_attr(held_by_all);
    verify_consistent_noinit_vals(noinit, other);
    if (has_attr(PA_COPY | PA_DSECT) && !has_attr(PA_PMDATA)) clear_attr(PA_ALLOCATED);
    if (run_locator() != nullptr && run_locator()->is_overlay()) {
        set_attr(PA_OVERLAY);
        if (has_load_data()) set_attr(PA_INIT_OVERLAY);
    }
    if (load_locator() != nullptr && load_locator()->placement_specified())
        set_attr(PA_LOAD_PLACEMENT);
    if (fill() != nullptr) set_attr(PA_HAS_DATA);
    if (has_attr(PA_DSECT | PA_NOLOAD) && output_is_elf()) clear_attr(PA_HAS_DATA);
    if (((before ^ attrs()) & PA_ALLOCATED) != 0) flush_size();
}

void COLLECTION::propagate_attributes_into_members(bool in_outsect) {
    const bool inside = is_output_section() || in_outsect;
    const uint32_t down =
        inside ? attrs() & (PA_HAS_DATA | PA_READONLY | PA_BOUND | PA_NE_DATA) : 0;
    const bool allocate = kind_ != COLLECTION_LOGICAL && has_attr(PA_ALLOCATED);
    visit_ahead(members_, prefetch<LINKER_OBJECT>, [&](LINKER_OBJECT* member) {
        member->set_attr(down);
        if (allocate && (!member->has_attr(PA_COPY | PA_DSECT) || member->has_attr(PA_PMDATA)))
            member->set_attr(PA_ALLOCATED);
        if (COLLECTION* below = as_collection(member))
            below->propagate_attributes_into_members(inside);
    });
    flush_size();
}

namespace {

std::string bullet_list(const char* heading, const std::vector<LINKER_OBJECT*>& objs) {
    std::string text = heading;
    for (const LINKER_OBJECT* obj : objs) {
        text += "\n- ";
        text += obj->name();
    }
    return text;
}

} // namespace

void COLLECTION::verify_consistent_noinit_vals(const std::vector<LINKER_OBJECT*>& noinit,
                                               const std::vector<LINKER_OBJECT*>& other) {
    static std::unordered_set<uint32_t> reported;
    if (noinit.empty()) return;
    if (other.empty()) {
        set_attr(PA_NOINIT);
        return;
    }
    if (!reported.insert(id()).second) return;
    std::string first = bullet_list("\nNOINIT sections:", noinit);
    std::string second = bullet_list("\nSections not specified as NOINIT:", other);
    for (LINKER_OBJECT* obj : noinit) obj->clear_attr(PA_NOINIT);
    DIAG_REPORT(elnk_mixed_noinit, name(), first, second);
    clear_attr(PA_NOINIT);
}
