// The life of generated entries: made, hung into the tree, found to have callers or not, settled.
#include "ELFLNK/trampoline/jump_ent.h"

#include <algorithm>

#include "DIAG/gen_msgs.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/memory_range.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/target/target.h"
#include "ELFLNK/trampoline/call_site.h"
#include "ELFLNK/trampoline/callee.h"
#include "OBJEDIT04/machine/reloc_template.h"
#include "OBJEDIT04/ofe/of_symbol.h"

namespace {

std::vector<JUMP_ENT*>& registry() {
    static std::vector<JUMP_ENT*> made;
    return made;
}

} // namespace

JUMP_ENT::JUMP_ENT(CALLEE* callee, OBJ_FILE* file, const char* name)
    : SECTION(name), callee_(callee) {
    set_object_file(file);
    registry().push_back(this);
}

const char* JUMP_ENT::jump_type_name() const {
    switch (jump_type_kind()) {
    case FARCALL:
        return "trampoline";
    case VENEER:
        return "veneer";
    case PLT:
        return "PLT";
    default:
        return "";
    }
}

void JUMP_ENT::generate() {
    if (generated_) return;
    generated_ = true;
    set_attr(PA_HAS_DATA | PA_ALLOCATED | PA_EXEC);
    choose_code();
}

bool JUMP_ENT::any() {
    return !registry().empty();
}

std::vector<JUMP_ENT*> JUMP_ENT::all_of_kind(int kind) {
    std::vector<JUMP_ENT*> list;
    if (std::none_of(registry().begin(), registry().end(),
                     [=](const JUMP_ENT* entry) { return entry->jump_type_kind() == kind; }))
        return list; // without a walk over the tree
    std::vector<LINKER_OBJECT*> all;
    root_collection->flatten(all, &LINKER_OBJECT::is_jump_ent);
    for (LINKER_OBJECT* object : all) {
        auto* entry = static_cast<JUMP_ENT*>(object);
        if (entry->jump_type_kind() == kind) list.push_back(entry);
    }
    return list;
}

uint64_t JUMP_ENT::callee_address() const {
    OFE::OF_SYMBOL* symbol = callee_->symbol();
    return symbol != nullptr ? symbol->resolved_by_final()->value() : 0;
}

std::vector<JUMP_ENT*> JUMP_ENT::all_placed() {
    std::vector<JUMP_ENT*> placed;
    std::copy_if(registry().begin(), registry().end(), std::back_inserter(placed),
                 [](const JUMP_ENT* entry) { return entry->is_placed(); });
    return placed;
}

// ---- trampolines ---------------------------------------------------------------------------

TRAMPOLINE::TRAMPOLINE(TRAMP_CALLEE* callee, OBJ_FILE* file, const char* name)
    : JUMP_ENT(callee, file, name) {}

TRAMP_CALLEE* TRAMPOLINE::tramp_callee() const {
    return static_cast<TRAMP_CALLEE*>(callee());
}

void TRAMPOLINE::add_caller(TRAMP_CALL_SITE* site) {
    site->prev_ = last_;
    site->next_ = nullptr;
    (last_ != nullptr ? last_->next_ : first_) = site;
    last_ = site;
}

void TRAMPOLINE::remove_caller(TRAMP_CALL_SITE* site) {
    (site->prev_ != nullptr ? site->prev_->next_ : first_) = site->next_;
    (site->next_ != nullptr ? site->next_->prev_ : last_) = site->prev_;
    site->prev_ = site->next_ = nullptr;
    if (first_ != nullptr) return;
    LOCATOR* run = run_locator();
    // Part of a finished layout: nobody will close the gap that it would leave.
    if (run->has_flag(LF_PRE_PLACED) ||
        (run->is_placed() && run->range() != nullptr && run->range()->is_root()))
        return;
    if (run->is_placed()) run->uncommit();
    tramp_callee()->discard_trampoline(this);
}

uint64_t TRAMPOLINE::callee_address() const {
    return callee()->symbol() != nullptr ? JUMP_ENT::callee_address() : tramp_callee()->address();
}

void TRAMPOLINE::give_up() {
    run_locator()->clear_flag(LF_PRE_PLACED | LF_PLACED | LF_COMPLETE);
    run_locator()->set_range(nullptr);
    if (first_ == nullptr) tramp_callee()->discard_trampoline(this);
    while (first_ != nullptr) first_->detach_trampoline();
}

void TRAMPOLINE::prepare(COLLECTION* parent) {
    adopt_by(parent);
    home_ = outsect_object();
    set_attrs(PA_HAS_DATA | PA_ALLOCATED | PA_EXEC);
    add_locator(nullptr);
    auto* run = new LOCATOR(LOCATOR_KIND::RUN, this);
    run->add_min_align(alignment());
    add_locator(run);
}

void TRAMPOLINE::update_placement_limits() {
    uint64_t low = 0;
    uint64_t high = LOCATOR::no_limit;
    const uint64_t own_size = size();
    for (const TRAMP_CALL_SITE* site = first_; site != nullptr; site = site->next_caller()) {
        uint64_t lo = 0;
        uint64_t hi = 0;
        site->get_reachable_range(lo, hi);
        low = std::max(low, lo);
        high = std::min(high, own_size > ~hi ? LOCATOR::no_limit : hi + own_size);
    }
    run_locator()->set_min_address(low);
    run_locator()->set_max_address(high);
}

bool TRAMPOLINE::tramp_in_range(uint32_t template_id) const {
    const TRAMP_CALLEE* to = tramp_callee();
    if (!to->is_placed()) return false;
    uint64_t lo = 0;
    uint64_t hi = 0;
    Target->get_reachable_range(run_address(), *OFE::reloc_template(template_id), lo, hi);
    return to->address() >= lo && to->address() <= hi;
}
