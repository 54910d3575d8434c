// Where a callee is, or may come to rest, and the trampolines that lead to it.
#include "ELFLNK/trampoline/callee.h"

#include <algorithm>

#include "DIAG/elnk_msgs.h"
#include "DIAG/gen_msgs.h"
#include "DIAG/user_msg_api.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/target/target.h"
#include "ELFLNK/trampoline/call_info.h"
#include "ELFLNK/trampoline/jump_ent.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "UTIL/savestr.h"

namespace {

/// The nearest object from `obj` up that was given an address or named ranges; null: none was.
const LOCATOR* deciding_locator(const LINKER_OBJECT* obj) {
    for (; obj != nullptr; obj = obj->parent()) {
        const LOCATOR* run = obj->run_locator();
        if (run != nullptr && run->has_flag(LF_SPECIFIC | LF_RANGES)) return run;
    }
    return nullptr;
}

} // namespace

// ---- the symbol ----------------------------------------------------------------------------

void CALLEE::set_sym(OFE::OF_SYMBOL* symbol) {
    const bool keep = symbol_ != nullptr && (symbol_->type() != OFE::OF_SYM_TYPE_SECTION ||
                                             symbol->type() == OFE::OF_SYM_TYPE_SECTION);
    if (!keep) symbol_ = symbol;
}

const char* CALLEE::name() const {
    if (symbol_ != nullptr && symbol_->name()[0] != '\0') return symbol_->name();
    return section_ != nullptr ? section_->original_section_name() : "";
}

OBJ_FILE* CALLEE::file() const {
    if (section_ != nullptr && section_->object_file() != nullptr) return section_->object_file();
    return symbol_ != nullptr ? file_manager.lookup_OF_FILE(symbol_->ofile()) : nullptr;
}

// ---- the address ---------------------------------------------------------------------------

bool TRAMP_CALLEE::is_unevaluated() const {
    return section() == nullptr && symbol() != nullptr &&
           global_symbols.is_linker_symbol(symbol()) && !symbol()->final_value();
}

bool TRAMP_CALLEE::is_placed() const {
    return section() != nullptr ? section()->is_placed() : !is_unevaluated();
}

uint64_t TRAMP_CALLEE::address() const {
    if (section() != nullptr) return section()->run_address() + offset();
    if (symbol() == nullptr) return offset();
    return symbol()->resolved_by_final()->value() + static_cast<uint64_t>(displacement_);
}

// The wishes of the command file are settled before anything asks, so once is enough.
void TRAMP_CALLEE::get_min_max_addr(uint64_t& min, uint64_t& max) {
    if (!limits_known_) {
        limits_known_ = true;
        const LINKER_OBJECT* from = section();
        if (from == nullptr && !is_unevaluated()) {
            min_address_ = max_address_ = address();
        } else {
            if (from == nullptr) from = global_symbols.lookup_linker_symbol(symbol());
            LOCATOR::get_min_max(deciding_locator(from), min_address_, max_address_);
        }
    }
    min = min_address_;
    max = max_address_;
}

void TRAMP_CALLEE::warn_about_symasg() {
    if (warned_) return;
    warned_ = true;
    DIAG_REPORT(elnk_tramp_to_unknown_abs, name());
}

// ---- trampolines ---------------------------------------------------------------------------

TRAMPOLINE* TRAMP_CALLEE::new_trampoline(TRAMP_CALL_SITE*) {
    TRAMPOLINE* trampoline = nullptr;
    if (!discarded_.empty()) {
        trampoline = discarded_.front();
        discarded_.erase(discarded_.begin());
    } else {
        const char* label = savestrf(".tramp.%s.%d", name(), ++counter_);
        trampoline = Target->new_TRAMPOLINE(this, file(), label);
        if (trampoline == nullptr) DIAG_REPORT(gen_null_pointer, "trampoline");
    }
    live_.push_back(trampoline);
    return trampoline;
}

void TRAMP_CALLEE::discard_trampoline(TRAMPOLINE* trampoline) {
    if (trampoline->first_caller() != nullptr)
        USER_MSG::get_umsg_obj()->die(trampoline->name(), "cannot discard trampoline:  trampoline "
                                                          "still has callers");
    std::erase(live_, trampoline);
    discarded_.push_back(trampoline);
}

// ---- what hangs on a section ---------------------------------------------------------------

CALL_INFO& CALL_INFO::of(SECTION* section) {
    if (section->call_info() == nullptr) section->set_call_info(new CALL_INFO);
    return *section->call_info();
}

int CALL_INFO::compare_postorder(LINKER_OBJECT* a, LINKER_OBJECT* b) {
    const CALL_INFO* first = a->call_info();
    const CALL_INFO* second = b->call_info();
    if (first == nullptr || second == nullptr) return 0;
    const uint32_t x = first->postorder_;
    const uint32_t y = second->postorder_;
    if (x == 0 || y == 0) return 0;
    return x < y ? -1 : x > y ? 1 : 0;
}
