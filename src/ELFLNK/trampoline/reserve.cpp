// What the placement of an object does about far calls.
//
// Where an object lands decides which of its calls may be out of reach, so that is when stubs are
// reserved: as far up as all callers reach, to leave the room for objects in one piece. When a
// callee lands, the calls that turn out to reach it go direct, and stubs without callers vanish.
// When a collection is full, or a stub is in the way, what is left is moved down behind what
// precedes it.
#include "DIAG/elnk_msgs.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/memory_range.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/trampoline/call_info.h"
#include "ELFLNK/trampoline/call_site.h"
#include "ELFLNK/trampoline/callee.h"
#include "ELFLNK/trampoline/jump_ent.h"
#include "UTIL/trace.h"

namespace {

/// A trampoline that a site has for itself, and that may be moved.
LOCATOR* new_reserved_trampoline(TRAMP_CALL_SITE* site, const LOCATOR* caller) {
    TRAMPOLINE* trampoline = site->new_trampoline();
    LOCATOR* run = trampoline->run_locator();
    run->set_flag(LF_HIGHEST | LF_TENTATIVE | LF_TRAMP_RES);
    const LOCATOR* load = site->section()->load_locator();
    if (caller->is_run() && load != nullptr && load != caller) {
        auto* own_load = new LOCATOR(LOCATOR_KIND::LOAD, trampoline);
        own_load->merge(run);
        trampoline->add_locator(own_load);
    }
    return run;
}

void report_no_room(const TRAMP_CALL_SITE* site) {
    const SOURCE_POSITION where = site->srcloc();
    SECTION* section = site->section();
    DIAG_REPORT_AT(where.is_known() ? &where : nullptr, elnk_cannot_reserve_tramp, section->name(),
                   section->size());
}

/// All callers that need it no longer, or can use another that stays, leave the trampoline.
void review_callers(TRAMPOLINE* trampoline) {
    for (TRAMP_CALL_SITE *next, *site = trampoline->first_caller(); site != nullptr; site = next) {
        next = site->next_caller();
        if (!site->need_trampoline())
            site->detach_trampoline();
        else
            site->share_trampoline(true);
    }
}

} // namespace

bool LOCATOR::reserve_trampolines() {
    CALL_INFO* info = is_run_or_both() ? object_->call_info() : nullptr;
    if (info == nullptr) return true;
    for (TRAMP_CALL_SITE* site : info->calls()) {
        if (!site->need_trampoline() || site->share_trampoline(false)) continue;
        LOCATOR* place = new_reserved_trampoline(site, this);
        if (!place->insert_into_range(range_)) {
            trace_tramps.printf("Trampoline reservation fails\n");
            if (range_->is_hidden()) report_no_room(site);
            return false;
        }
        COLLECTION* parent = object_->parent();
        LOCATOR* owner = parent != nullptr ? parent->run_locator() : nullptr;
        if (owner != nullptr) owner->add_pending_item(place);
    }
    return true;
}

void LOCATOR::prune_trampolines() {
    CALL_INFO* info = is_run_or_both() ? object_->call_info() : nullptr;
    if (info == nullptr) return;
    for (TRAMP_CALLEE* callee : info->callees()) {
        const std::vector<TRAMPOLINE*> trampolines = callee->trampolines();
        for (TRAMPOLINE* trampoline : trampolines) {
            if (trampoline->run_locator()->range() != range_) continue;
            for (TRAMP_CALL_SITE *next, *site = trampoline->first_caller(); site != nullptr;
                 site = next) {
                next = site->next_caller();
                if (!site->need_trampoline()) site->detach_trampoline();
            }
        }
    }
}

void LOCATOR::consolidate_trampolines(MEMORY_RANGE* range, bool final) {
    if (range->reserved_trampolines() == 0) return;
    std::vector<LOCATOR*> reserved;
    for (LOCATOR* item : range->contents())
        if (item->has_flag(LF_TRAMP_RES)) reserved.push_back(item);
    for (LOCATOR* place : reserved) {
        auto* trampoline = static_cast<TRAMPOLINE*>(place->object());
        review_callers(trampoline);
        if (trampoline->first_caller() == nullptr) continue; // gone with its last caller
        place->uncommit();
        trace_tramps.printf("Moving tramp %s\n", trampoline->name());
        place->clear_flag(LF_HIGHEST | (final ? LF_TENTATIVE | LF_TRAMP_RES : 0));
        trampoline->update_placement_limits();
        if (!place->insert_into_range(range))
            DIAG_REPORT(elnk_tramp_consol_failed, trampoline->name());
    }
}

void LOCATOR::detach_call_sites() {
    CALL_INFO* info = is_run_or_both() ? object_->call_info() : nullptr;
    if (info == nullptr) return;
    for (TRAMP_CALL_SITE* site : info->calls()) site->detach_trampoline();
}

/// A layout that is given up takes with it the trampolines that have become members.
void LOCATOR::drop_trampolines() {
    COLLECTION* collection = as_collection(object_);
    if (collection == nullptr || !JUMP_ENT::any()) return;
    std::erase_if(edit_sub_items(), [collection](LOCATOR* sub) {
        if (!sub->object()->is_trampoline()) return false;
        collection->remove_member(sub->object());
        static_cast<TRAMPOLINE*>(sub->object())->give_up();
        return true;
    });
}
