// Order, shortening and end of the table.
#include "ELFLNK/exidx/exidx_table.h"

#include <algorithm>

#include "DIAG/elnk_msgs.h"
#include "DIAG/user_msg_api.h"
#include "ELFLNK/exidx/exidx.h"
#include "ELFLNK/exidx/exidx_section.h"
#include "ELFLNK/expr/expression.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/object/root_collection.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OPTIONGEN/register_option.h"
#include "UTIL/data_map.h"
#include "UTIL/pprint.h"
#include "UTIL/trace.h"

using namespace OFE;

static register_option disable_exidx_opt("disable:exidx_opt");

namespace EXIDX {

namespace {

constexpr unsigned WORD = 4;
constexpr unsigned ENTRY = 2 * WORD;
constexpr uint32_t CANTUNWIND = 1;
constexpr uint32_t IN_LINE = 0x80000000;

EXIDX_SECTION* as_piece(LINKER_OBJECT* object) {
    return static_cast<EXIDX_SECTION*>(object);
}

uint32_t word_at(OF_SECTION* section, unsigned offset) {
    const OF_BYTES bytes = section->bytes();
    if (bytes.size < WORD || offset > bytes.size - WORD) return 0;
    const auto endian = static_cast<DATA_MAP::ENDIAN>(section->ofile()->machine_endian());
    return static_cast<uint32_t>(DATA_MAP::load(bytes.data + offset, WORD, endian));
}

/// The place of a piece: behind the address of its code; what describes no byte gives way to what
/// follows at the same address.
struct KEY {
    uint64_t address;
    bool has_code;
    bool terminates;
    LINKER_OBJECT* piece;

    bool operator<(const KEY& b) const {
        if (terminates != b.terminates) return b.terminates;
        return address != b.address ? address < b.address : has_code < b.has_code;
    }
};

} // namespace

EXIDX_TABLE::EXIDX_TABLE(const char* name) : COLLECTION(name, COLLECTION_OUTSECT) {
    set_attr(PA_P2_PLACEMENT);
}

void EXIDX_TABLE::add_piece(EXIDX_SECTION* piece) {
    piece->set_attr(PA_P2_PLACEMENT);
    add_member(piece, true);
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
    for (LINKER_OBJECT* piece : taken_out_) add_member(piece, true);
    taken_out_.clear();
    sort_by_code();
    optimize();
    // Either of them may be placed first, and the other one copies its layout.
    for (LOCATOR* locator : {run_locator(), load_locator()}) {
        if (locator == nullptr) continue;
        locator->clear_pending_items();
        locator->set_flag(LF_ORDERED);
    }
    sorted_ = true;
}

void EXIDX_TABLE::sort_by_code() {
    std::vector<KEY> keys;
    keys.reserve(members().size());
    for (LINKER_OBJECT* member : members()) {
        SECTION* code = as_piece(member)->code();
        keys.push_back({code != nullptr ? code->run_address() : 0,
                        code != nullptr && code->size() != 0, member == terminator_, member});
    }
    std::stable_sort(keys.begin(), keys.end());
    std::vector<LINKER_OBJECT*> order;
    order.reserve(keys.size());
    for (const KEY& key : keys) {
        order.push_back(key.piece);
        SECTION* code = as_piece(key.piece)->code();
        if (code != nullptr && root_collection->object_is_in_link(code)) last_code_ = code;
    }
    set_member_order(order);
}

void EXIDX_TABLE::optimize() {
    if (disable_exidx_opt != 0) return;
    EXIDX_SECTION* prev = nullptr;
    for (auto at = members_begin(); at != members_end();) {
        EXIDX_SECTION* piece = as_piece(*at++);
        if (piece->code() != nullptr && !root_collection->object_is_in_link(piece->code())) {
            trace_collect.printf("EXIDX section %s is removed as link to section is not in link",
                                 piece->original_section_name());
            remove_member(piece);
            root_collection->remove_section(piece);
        } else if (prev != nullptr &&
                   can_exidx_be_eliminated(prev->OF_SECTION_api(), piece->OF_SECTION_api())) {
            trace_collect.printf("EXIDX section %s is optimized out",
                                 piece->original_section_name());
            taken_out_.push_back(piece);
            remove_member(piece);
        } else {
            prev = piece;
        }
    }
    flush_size();
}

bool EXIDX_TABLE::is_same_extab(uint32_t a, uint32_t b) {
    return a == b && (a == CANTUNWIND || (a & IN_LINE) != 0);
}

bool EXIDX_TABLE::can_exidx_be_eliminated(OF_SECTION* prev, OF_SECTION* cur) {
    if (cur->size() != ENTRY || prev->size() < ENTRY) return false;
    return is_same_extab(word_at(prev, prev->size() - WORD), word_at(cur, WORD));
}

// ---- upon placement --------------------------------------------------------------------------

void EXIDX_TABLE::update_upon_placement() {
    if (!sorted_) DIAG_REPORT(elnk_exidx_not_sorted);
    if (locked_) {
        COLLECTION::update_upon_placement();
        return;
    }
    update_table_terminator();
    for (LINKER_OBJECT* piece : taken_out_) {
        trace_collect.printf("EXIDX section %s is purged", piece->name());
        root_collection->remove_section(as_piece(piece));
    }
    patch_aliased_symbol_references();
    locked_ = true;
    COLLECTION::update_upon_placement();
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
