// The analysis before placement: of all that the command file wished, which locators stand on
// their own, which follow an enclosing object, and what of the wishes can't be had.
//
// After it each object that is placed on its own has its run locator, and a load locator if it is
// loaded elsewhere, in the worklist of its phase; wishes that conflict are gone, with a warning.
#include "DIAG/elnk_msgs.h"
#include "DIAG/source_position.h"
#include "ELFLNK/build/link_kind.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/placement/placement.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/savestr.h"

namespace {

/// What analyze_object works on: an object, its locators, and those of an ancestor that takes it
/// along.
struct ANALYSIS {
    LINKER_OBJECT* object;
    LOCATOR* enclosing_run;
    LOCATOR* enclosing_load;
    LOCATOR* run; ///< the object's own, if it has wishes; later the one in force
    LOCATOR* load;
};

const SOURCE_POSITION* position_of(const LINKER_OBJECT* object) {
    return &object->source_position();
}

LOCATOR* with_wishes(LOCATOR* locator) {
    return locator != nullptr && locator->placement_specified() ? locator : nullptr;
}

/// Kinds of output whose placement is not the user's business.
bool default_placement_is_expected() {
    bool relocatable = global_opts->isopt(OPT_relocatable) && !global_opts->isopt(OPT_absolute_exe);
    return is_dynamic_output() || global_opts->isopt(OPT_rom) || relocatable;
}

void warn_of_default_placement(LINKER_OBJECT* object) {
    const COLLECTION* collection = as_collection(object);
    if (collection == nullptr || !collection->is_user_specified() || object->size() == 0) return;
    if (default_placement_is_expected()) return;
    DIAG_REPORT_AT(position_of(object), elnk_no_placement_props, object->name());
}

/// The run locator of an allocated object.
void settle_run_of_allocated(ANALYSIS& a) {
    if (a.enclosing_run != nullptr) {
        if (a.run == nullptr) return;
        DIAG_REPORT_AT(a.run->position(), elnk_noplace_subobj, a.object->name(),
                       a.enclosing_run->object()->name());
        a.run->ignore_placement();
        a.run = nullptr;
        return;
    }
    if (a.run != nullptr) return;
    bool separate_load = a.object->has_attr(PA_LOAD_PLACEMENT);
    LOCATOR_KIND kind = separate_load ? LOCATOR_KIND::RUN : LOCATOR_KIND::BOTH;
    a.run = a.object->run_locator();
    if (a.run == nullptr) {
        a.run = new LOCATOR(kind, a.object);
        if (is_partial_link()) a.run->set_flag(LF_VIRTUAL);
    }
    a.run->set_kind(kind);
    warn_of_default_placement(a.object);
}

/// The run locator of an object that takes no memory: it goes into a virtual range.
void settle_run_of_unallocated(ANALYSIS& a) {
    bool told = a.object->has_attr(PA_COPY | PA_DSECT) && !a.object->has_attr(PA_PMDATA);
    if (a.enclosing_run != nullptr && told)
        DIAG_REPORT_AT(position_of(a.object), elnk_unalloc_obj_in_alloc_obj, a.object->name(),
                       a.enclosing_run->object()->name());
    a.run = a.object->run_locator();
    if (a.run == nullptr) a.run = new LOCATOR(LOCATOR_KIND::BOTH, a.object);
    a.run->set_flag(LF_VIRTUAL);
    if (a.load == nullptr) return;
    a.load->set_flag(LF_VIRTUAL);
    if (!a.run->has_flag(LF_SPECIFIC)) a.load->clear_flag(LF_SPECIFIC); // the run place comes first
}

void drop_load(ANALYSIS& a) {
    if (a.run != nullptr && a.run->is_both()) a.run->set_kind(LOCATOR_KIND::RUN);
    if (a.load != nullptr) {
        a.load->ignore_placement();
        a.load->clear_flag(LF_SPLIT); // or the section would be taken for a split one
    }
    a.load = nullptr;
}

bool is_overlay_loc_both_placement_candidate(LINKER_OBJECT* member) {
    return member->has_load_data() && !member->has_attr(PA_LOAD_PLACEMENT);
}

/// The one initialized member of a UNION without a load placement takes over the UNION's.
void choose_load_member(COLLECTION* overlay) {
    LINKER_OBJECT* chosen = nullptr;
    for (LINKER_OBJECT* member : overlay->members()) {
        if (member->has_attr(PA_OVLY_LOC_BOTH_PLACEMENT)) return;
        if (!is_overlay_loc_both_placement_candidate(member)) continue;
        if (chosen != nullptr) return;
        chosen = member;
    }
    if (chosen != nullptr) chosen->set_attr(PA_OVLY_LOC_BOTH_PLACEMENT);
}

/// Members of an overlay within an overlay share addresses with all of the outer one; unless they
/// were chosen there, none of them may be loaded where it runs.
bool has_load_of_own(const LINKER_OBJECT* overlay) {
    if (overlay->has_attr(PA_OVLY_LOC_BOTH_PLACEMENT)) return true;
    for (const LINKER_OBJECT* above = overlay->parent(); above != nullptr; above = above->parent())
        if (above->run_locator() != nullptr && above->run_locator()->is_overlay()) return false;
    return true;
}

/// The wishes of a UNION for the member that takes them over; the member's inner layout stays.
LOCATOR* copy_for_member(const LOCATOR* enclosing, const LOCATOR* own) {
    constexpr uint32_t LAYOUT = LF_ORDERED | LF_UNORDERED | LF_PALIGN | LF_POWER2 | LF_OVERLAY |
                                LF_UNION | LF_BLOCK | LF_SPLIT;
    auto* copy = new LOCATOR(*enclosing);
    copy->set_kind(LOCATOR_KIND::BOTH);
    copy->clear_flag(LAYOUT);
    copy->drop_sub_items();
    copy->clear_pending_items();
    if (own == nullptr) return copy;
    copy->set_flag(own->flags() & (LAYOUT & ~uint32_t{LF_BLOCK}));
    copy->add_min_align(own->alignment());
    copy->add_min_block(own->blocking());
    return copy;
}

/// The object must have a load address and nothing says where.
void require_load(ANALYSIS& a) {
    if (a.run != nullptr) {
        if (a.load != nullptr || !a.run->is_run()) return;
        DIAG_REPORT_AT(position_of(a.object), elnk_use_run_to_place_load, a.object->name());
        a.run->set_kind(LOCATOR_KIND::BOTH);
        return;
    }
    if (a.load != nullptr) return;
    if (a.enclosing_run != nullptr && a.object->has_attr(PA_OVLY_LOC_BOTH_PLACEMENT)) {
        a.run = copy_for_member(a.enclosing_run, a.object->run_locator());
        return;
    }
    DIAG_REPORT_AT(position_of(a.object), elnk_place_load_init_obj, a.object->name());
    a.load = a.object->load_locator();
    if (a.load == nullptr) a.load = new LOCATOR(LOCATOR_KIND::LOAD, a.object);
}

void settle_load(ANALYSIS& a) {
    const SOURCE_POSITION* pos = a.load != nullptr ? a.load->position() : position_of(a.object);
    LINKER_OBJECT* object = a.object;
    if (!object->has_load_data()) {
        if (a.load != nullptr && object->size() > 0)
            DIAG_REPORT_AT(pos, elnk_noplace_load_uninit_obj, object->name());
        drop_load(a);
        return;
    }
    const LOCATOR* run = a.run != nullptr ? a.run : object->run_locator();
    if (run != nullptr && run->is_overlay() && object->is_collection()) {
        if (has_load_of_own(object)) choose_load_member(as_collection(object));
        if (a.load != nullptr) DIAG_REPORT_AT(pos, elnk_noplace_load_union);
        drop_load(a);
        return;
    }
    if (object->has_attr(PA_INIT_OVERLAY)) {
        if (a.run != nullptr && a.run->is_both()) {
            DIAG_REPORT_AT(position_of(object), elnk_place_load_members);
            a.run->set_kind(LOCATOR_KIND::RUN);
            return;
        }
        if (a.load != nullptr) DIAG_REPORT_AT(pos, elnk_noplace_load_init_members);
        drop_load(a);
        return;
    }
    if (object->has_attr(PA_RUN_IMAGE)) {
        if (a.load != nullptr) DIAG_REPORT_AT(pos, elnk_noplace_load_union);
        drop_load(a);
        return;
    }
    if (a.enclosing_load != nullptr && a.load != nullptr) {
        DIAG_REPORT_AT(pos, elnk_noplace_load_subobj, object->name(),
                       a.enclosing_load->object()->name());
        a.load->ignore_placement();
        a.load = nullptr;
        return;
    }
    if (a.enclosing_load != nullptr || object->has_attr(PA_LOAD_PLACEMENT)) return;
    require_load(a);
}

} // namespace

void enter_worklist(LOCATOR* locator) {
    locator->analyze();
    const LINKER_OBJECT* object = locator->object();
    unsigned phase = object->has_attr(PA_P3_PLACEMENT) ? 2 : object->has_attr(PA_P2_PLACEMENT);
    placement_state().worklist[phase].push_back(locator);
}

void analyze_object(LINKER_OBJECT* object, LOCATOR* enclosing_run, LOCATOR* enclosing_load) {
    COLLECTION* collection = as_collection(object);
    if (!object->is_output_section() && collection == nullptr) return;
    if (collection != nullptr && !object->is_output_section() &&
        collection->kind() == COLLECTION_LOGICAL) {
        for (LINKER_OBJECT* member : collection->members())
            analyze_object(member, enclosing_run, enclosing_load);
        return;
    }
    ANALYSIS a{object, enclosing_run, enclosing_load, with_wishes(object->run_locator()),
               with_wishes(object->load_locator())};
    if (object->has_attr(PA_ALLOCATED))
        settle_run_of_allocated(a);
    else
        settle_run_of_unallocated(a);
    settle_load(a);

    if (a.run != nullptr) object->add_locator(a.run);
    if (a.load != nullptr) object->add_locator(a.load);
    if (enclosing_run == nullptr && a.run != nullptr) enter_worklist(a.run);
    if (enclosing_load == nullptr && a.load != nullptr) enter_worklist(a.load);
    if (collection == nullptr || object->is_output_section()) return;

    LOCATOR* run_for_members = a.run != nullptr ? a.run : enclosing_run;
    LOCATOR* load_for_members = enclosing_load;
    if (a.load != nullptr)
        load_for_members = a.load;
    else if (a.run != nullptr && a.run->is_both())
        load_for_members = a.run;
    for (LINKER_OBJECT* member : collection->members())
        analyze_object(member, run_for_members, load_for_members);
}
