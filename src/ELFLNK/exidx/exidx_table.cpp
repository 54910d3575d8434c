// Order, shortening and end of the table.
#include "ELFLNK/exidx/exidx_table.h"

#include <algorithm>
#include <unordered_map>

#include "DIAG/elnk_msgs.h"
#include "DIAG/user_msg_api.h"
#include "ELFLNK/exidx/exidx.h"
#include "ELFLNK/exidx/exidx_section.h"
#include "ELFLNK/expr/expression.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/memory_range.h"
#include "ELFLNK/object/root_collection.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OPTIONGEN/register_option.h"
#include "UTIL/data_map.h"
#include "UTIL/pprint.h"
#include "UTIL/prefetch.h"
#include "UTIL/trace.h"

using namespace OFE;

static register_option disable_exidx_opt("disable:exidx_opt");

namespace EXIDX {

namespace {

constexpr unsigned WORD = 4;
constexpr uint32_t IN_LINE = 0x80000000;

EXIDX_SECTION* as_piece(LINKER_OBJECT* object) {
    return static_cast<EXIDX_SECTION*>(object);
}

/// Both words say the same wherever they stand: "cannot be unwound", or instructions in line.
bool is_same_extab(uint32_t a, uint32_t b) {
    return a == b && (a == CANTUNWIND || (a & IN_LINE) != 0);
}

/// What the addresses of code count from: nothing yet, the layout of its group, or memory. They can
/// be compared if all are of one of the last two kinds.
struct BASES {
    bool none = false;
    bool layout = false;
    bool memory = false;

    void note(const LINKER_OBJECT* code) {
        if (!code->has_attr(PA_ALLOCATED)) return;
        const LOCATOR* run = code->run_locator();
        const bool has_address = run != nullptr && run->is_placed();
        const bool in_layout =
            has_address && run->range() != nullptr && run->range()->is_temp_layout();
        (!has_address ? none : in_layout ? layout : memory) = true;
    }
    bool can_be_compared() const { return !none && !(layout && memory); }
};

} // namespace

EXIDX_TABLE::EXIDX_TABLE(const char* name) : COLLECTION(name, COLLECTION_OUTSECT) {
    set_attr(PA_P2_PLACEMENT);
}

void EXIDX_TABLE::add_code(SECTION* code, EXIDX_SECTION* piece) {
    entries_.push_back({code, piece, {}});
    if (piece == nullptr) return;
    piece->set_code(code);
    add_piece(piece);
}

void EXIDX_TABLE::complete() {
    if (members().empty()) add_piece(piece_of(entries_.front()));
}

void EXIDX_TABLE::add_piece(EXIDX_SECTION* piece) {
    piece->set_attr(PA_P2_PLACEMENT);
    add_member(piece, true);
}

EXIDX_SECTION* EXIDX_TABLE::piece_of(ENTRY& entry) {
    if (entry.piece == nullptr) {
        entry.piece = create_default_exidx_section(entry.code);
        entry.piece->set_code(entry.code);
        entry.piece->set_attr(PA_P2_PLACEMENT);
        entry.words = words_of(entry.piece);
    }
    return entry.piece;
}

void EXIDX_TABLE::define_exidx_symbols() {
    const auto assign = [this](const char* name, EXPR_OPCODE opcode) {
        add_linker_assignment(name, new EXPRESSION(opcode, &source_position()), EXPR_BIND_STRONG);
    };
    assign("__QV_UNWIND_TABLE_START", EXPR_OP_RUN_START);
    assign(".ARM.exidx$$Base", EXPR_OP_RUN_START);
    assign("__QV_UNWIND_TABLE_END", EXPR_OP_RUN_END);
    assign(".ARM.exidx$$Limit", EXPR_OP_RUN_END);
}

void EXIDX_TABLE::add_table_terminator(EXIDX_SECTION* piece) {
    terminator_ = piece;
    add_piece(piece);
}

// ---- before placement ------------------------------------------------------------------------

void EXIDX_TABLE::update_before_placement(PLACEMENT_PHASE phase) {
    if (phase != PLACEMENT_PHASE_2) DIAG_REPORT(elnk_invalid_placement_attempt_p1, "EXIDX_TABLE");
    if (locked_) {
        // What is laid out is only copied: to its load address, or to the top of a range.
        if (layout_locator() != nullptr) return;
        DIAG_REPORT(elnk_exidx_locked);
    }
    sort_entries();
    take_members();
    // Either of them may be placed first, and the other one copies its layout.
    for (LOCATOR* locator : {run_locator(), load_locator()}) {
        if (locator == nullptr) continue;
        locator->clear_pending_items();
        locator->set_flag(LF_ORDERED);
    }
    sorted_ = true;
}

// By the address of the code, stable. Code of no length gives way to what begins at its address.
void EXIDX_TABLE::sort_entries() {
    struct KEY {
        uint64_t address;
        bool has_code;
        ENTRY entry;
        bool operator<(const KEY& b) const {
            return address != b.address ? address < b.address : has_code < b.has_code;
        }
    };
    std::vector<KEY> keys;
    keys.reserve(entries_.size());
    BASES bases;
    const auto ask = [](const ENTRY& entry) { prefetch<LINKER_OBJECT>(entry.code); };
    visit_ahead(entries_, ask, [&keys, &bases](ENTRY& entry) {
        if (root_collection->object_is_in_link(entry.code)) {
            if (entry.piece != nullptr) entry.words = words_of(entry.piece);
            bases.note(entry.code);
            keys.push_back({entry.code->run_address(), entry.code->size() != 0, entry});
        } else if (entry.piece != nullptr) {
            trace_collect.printf("EXIDX section %s is removed as link to section is not in link",
                                 entry.piece->original_section_name());
            root_collection->remove_section(entry.piece);
        }
    });
    order_is_open_ = !bases.can_be_compared();
    std::stable_sort(keys.begin(), keys.end());
    entries_.clear();
    for (const KEY& key : keys) entries_.push_back(key.entry);
    last_code_ = entries_.empty() ? nullptr : entries_.back().code;
}

void EXIDX_TABLE::take_members() {
    std::vector<LINKER_OBJECT*> chosen;
    choose_members(chosen);
    clear_members();
    for (LINKER_OBJECT* piece : chosen) add_member(piece, true);
}

// An entry that says what the one before it says is left out. What code without a piece would say
// is known before there is a piece. As long as the order is open, every entry stays: the size is
// that of any order.
void EXIDX_TABLE::choose_members(std::vector<LINKER_OBJECT*>& chosen) {
    taken_out_.clear();
    const WORDS* prev = nullptr;
    const bool may_leave_out = disable_exidx_opt == 0 && !order_is_open_ && !needs_order_;
    const auto is_eliminated = [&prev, may_leave_out](const ENTRY& entry) {
        return prev != nullptr && may_leave_out && is_said_by(*prev, entry);
    };
    for (ENTRY& entry : entries_) {
        if (!is_eliminated(entry)) {
            chosen.push_back(piece_of(entry));
            prev = &entry.words;
        } else if (entry.piece != nullptr) {
            trace_collect.printf("EXIDX section %s is optimized out",
                                 entry.piece->original_section_name());
            taken_out_.push_back(entry.piece);
        }
    }
    if (terminator_ == nullptr) return;
    const bool is_needless = is_eliminated({nullptr, terminator_, words_of(terminator_)});
    (is_needless ? taken_out_ : chosen).push_back(terminator_);
}

/// What code without a piece would say needs no look at the size.
bool EXIDX_TABLE::is_said_by(const WORDS& prev, const ENTRY& entry) {
    if (entry.piece == nullptr) return prev.last == CANTUNWIND;
    return entry.words.size == ENTRY_SIZE && prev.size >= ENTRY_SIZE &&
           is_same_extab(prev.last, entry.words.first);
}

EXIDX_TABLE::WORDS EXIDX_TABLE::words_of(EXIDX_SECTION* piece) {
    OF_SECTION* section = piece->OF_SECTION_api();
    const OF_BYTES bytes = section->bytes();
    const auto endian = static_cast<DATA_MAP::ENDIAN>(section->ofile()->machine_endian());
    const auto word_at = [&](unsigned offset) {
        if (bytes.size < WORD || offset > bytes.size - WORD) return uint32_t{0};
        return static_cast<uint32_t>(DATA_MAP::load(bytes.data + offset, WORD, endian));
    };
    const unsigned size = section->size();
    return {size, word_at(WORD), word_at(size - WORD)};
}

// ---- upon placement --------------------------------------------------------------------------

void EXIDX_TABLE::update_upon_placement() {
    const LOCATOR* load = load_locator();
    const bool has_place = LINKER_OBJECT::is_placed() || (load != nullptr && load->is_placed());
    if (locked_ || !has_place) { // what found no room is tried elsewhere
        COLLECTION::update_upon_placement();
        return;
    }
    if (!sorted_) DIAG_REPORT(elnk_exidx_not_sorted);
    needs_order_ = order_is_open_;
    if (!needs_order_) update_table_terminator();
    for (LINKER_OBJECT* piece : taken_out_) {
        trace_collect.printf("EXIDX section %s is purged", piece->name());
        root_collection->remove_section(as_piece(piece));
    }
    patch_aliased_symbol_references();
    locked_ = true;
    COLLECTION::update_upon_placement();
}

void EXIDX_TABLE::settle_order() {
    if (!needs_order_) return;
    sort_entries();
    take_members();
    for (LOCATOR* locator : {run_locator(), load_locator()})
        if (locator != nullptr && locator->is_placed()) lay_out_in_order(locator);
    needs_order_ = false;
    update_table_terminator();
    COLLECTION::update_upon_placement();
}

// The pieces stand one behind the other in words, so that each order takes the same room.
void EXIDX_TABLE::lay_out_in_order(LOCATOR* locator) {
    LOCATOR* lowest = nullptr;
    LOCATOR* highest = nullptr;
    locator->subitem_extremities(lowest, highest);
    if (lowest == nullptr) return;
    uint64_t at = lowest->address();
    LOCATOR_LIST& subs = locator->edit_sub_items();
    std::unordered_map<const LINKER_OBJECT*, LOCATOR*> of_piece;
    for (LOCATOR* sub : subs) of_piece.emplace(sub->object(), sub);
    subs.clear();
    for (LINKER_OBJECT* piece : members()) {
        const auto found = of_piece.find(piece);
        if (found == of_piece.end()) continue;
        found->second->set_extent(at, at + piece->size());
        at += piece->size();
        subs.push_back(found->second);
    }
}

// What was joined with the last piece counts: the end is that of all code.
void EXIDX_TABLE::update_table_terminator() {
    if (terminator_ == nullptr || members().empty() || members().back() != terminator_) return;
    if (members().size() < 2 || last_code_ == nullptr) {
        USER_MSG::get_umsg_obj()->die("EXIDX_TABLE",
                                      "Too few EXIDX entries to update table terminator");
        return;
    }
    add_entry_address(terminator_,
                      create_local_symbol("__QV_exidx_terminator_", EXPR_OP_RUN_END, last_code_));
}

void EXIDX_TABLE::patch_aliased_symbol_references() {
    for (LINKER_OBJECT* member : members()) as_piece(member)->patch_aliased_symbol_references();
}

// ---- dump ------------------------------------------------------------------------------------

void EXIDX_TABLE::dump_header(PPRINT* out) {
    out->printf("EXIDX TABLE: %s\n", name());
}

void EXIDX_TABLE::dump_properties(PPRINT* out) {
    COLLECTION::dump_properties(out);
    out->printf("sorted      : %s\n", sorted_ ? "true" : "false");
    out->printf("locked      : %s\n", locked_ ? "true" : "false");
    out->printf("taken out   : %u\n", static_cast<unsigned>(taken_out_.size()));
}

} // namespace EXIDX
