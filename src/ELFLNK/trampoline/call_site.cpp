// Does a call need a trampoline, and which one does it take.
#include "ELFLNK/trampoline/call_site.h"

#include <algorithm>

#include "ELFLNK/build/link_kind.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/memory_range.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/target/target.h"
#include "ELFLNK/trampoline/callee.h"
#include "ELFLNK/trampoline/jump_ent.h"
#include "OBJEDIT04/machine/reloc_type.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OPTIONGEN/register_option.h"
#include "dwarf_editor/dw_source.h"

/// Every call goes through a trampoline.
register_option extreme_tramps("debug:xtramps");
/// The reach of every call, in bytes, instead of that of its instruction.
register_option short_calls("debug:xcall");

namespace {

const MEMORY_RANGE* root_of(const LOCATOR* locator) {
    MEMORY_RANGE* range = locator != nullptr ? locator->range() : nullptr;
    return range != nullptr ? range->root_range() : nullptr;
}

/// Both stand in one range: the distance between them is what it will be.
bool in_same_range(const SECTION* a, const SECTION* b) {
    return b != nullptr && b->is_placed() && root_of(a->run_locator()) == root_of(b->run_locator());
}

} // namespace

uint64_t CALL_SITE::address() const {
    return section_->run_address() + offset_;
}

bool CALL_SITE::is_placed() const {
    return section_->is_placed();
}

// ---- reach ---------------------------------------------------------------------------------

void TRAMP_CALL_SITE::get_reachable_range(uint64_t& lo, uint64_t& hi) const {
    const uint64_t at = address();
    if (short_calls == 0) {
        Target->get_reachable_range(at, *reloc_type()->rel_template, lo, hi);
        return;
    }
    const uint64_t reach =
        std::max<uint64_t>(static_cast<uint64_t>(int{short_calls}), section()->size());
    lo = at < reach ? 0 : at - reach;
    hi = reach > ~at ? ~uint64_t{0} : at + reach;
}

bool TRAMP_CALL_SITE::need_trampoline() {
    if (is_partial_link() || !Target->linker_generates_trampolines()) return false;
    if (extreme_tramps != 0 || !is_placed()) return true;
    const LOCATOR* here = section()->run_locator();
    // Where no memory is, nothing tells how far away anything else will be.
    if (here->range() != nullptr && here->range()->is_hidden() &&
        !in_same_range(section(), callee_->section()))
        return true;
    uint64_t lo = 0;
    uint64_t hi = 0;
    get_reachable_range(lo, hi);
    if (callee_->is_placed()) {
        const uint64_t to = callee_->address();
        return to < lo || to > hi;
    }
    uint64_t min = 0;
    uint64_t max = 0;
    callee_->get_min_max_addr(min, max);
    const bool need = min < lo || max > hi;
    if (need && callee_->is_unevaluated()) callee_->warn_about_symasg();
    return need;
}

// ---- the trampoline in use -----------------------------------------------------------------

void TRAMP_CALL_SITE::attach_trampoline(TRAMPOLINE* trampoline) {
    if (trampoline_ == trampoline) return;
    detach_trampoline();
    trampoline_ = trampoline;
    trampoline->add_caller(this);
}

void TRAMP_CALL_SITE::detach_trampoline() {
    if (trampoline_ == nullptr) return;
    TRAMPOLINE* old = trampoline_;
    trampoline_ = nullptr;
    old->remove_caller(this);
}

bool TRAMP_CALL_SITE::share_trampoline(bool strict) {
    if (callee_->trampolines().empty()) return false;
    uint64_t lo = 0;
    uint64_t hi = 0;
    get_reachable_range(lo, hi);
    const LINKER_OBJECT* home = section()->outsect_object();
    TRAMPOLINE* found = nullptr;
    for (TRAMPOLINE* candidate : callee_->trampolines()) {
        if (candidate == trampoline_ || candidate->home() != home || !candidate->is_placed())
            continue;
        const uint64_t at = candidate->run_locator()->address();
        if (at < lo || at > hi || !tramp_is_compatible(candidate)) continue;
        if (!candidate->run_locator()->has_flag(LF_TENTATIVE)) {
            found = candidate;
            break;
        }
        if (!strict) found = candidate;
    }
    if (found == nullptr) return false;
    attach_trampoline(found);
    return true;
}

TRAMPOLINE* TRAMP_CALL_SITE::new_trampoline() {
    TRAMPOLINE* trampoline = callee_->new_trampoline(this);
    trampoline->prepare(section()->parent());
    attach_trampoline(trampoline);
    trampoline->update_placement_limits();
    return trampoline;
}

SOURCE_POSITION TRAMP_CALL_SITE::srcloc() const {
    SECTION* where = section();
    OFE::OF_SECTION* input = where->OF_SECTION_api();
    if (input == nullptr) return {};
    const DWE::DW_SOURCE_MAP map(input->ofile());
    const DWE::DW_LINE* row = map.line_at(input->id(), offset());
    if (row == nullptr) return {};
    return SOURCE_POSITION(map.file_name(*row).c_str(), row->line, row->column);
}
