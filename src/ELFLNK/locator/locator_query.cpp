// What a locator knows of the memory map: which ranges it may use, how much room they have for it,
// and whether another locator is after the same room. The order of placement rests on these.
//
// A range keeps its free space up to date, so each question costs a walk over the ranges of the
// map and none over what is in them.
#include <algorithm>
#include <cstring>
#include <functional>
#include <string_view>
#include <unordered_set>

#include "ELFLNK/expr/expr_mgr.h"
#include "ELFLNK/expr/expression.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/memmap/memory_range.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OBJEDIT04/ofe/raw_records.h"
#include "UTIL/pprint.h"
#include "UTIL/strformat.h"

namespace {

/// Grows [min, max) by a range.
void join_hull(const MEMORY_RANGE* range, uint64_t& min, uint64_t& max, bool& any) {
    min = any ? std::min(min, range->origin()) : range->origin();
    max = any ? std::max(max, range->end()) : range->end();
    any = true;
}

} // namespace

bool LOCATOR::match(const MEMORY_RANGE* range) const {
    if (range->page() != effective_page()) return false;
    if (has_flag(LF_SPECIFIC)) return range->holds(specific_address());
    if (has_flag(LF_RANGES)) {
        auto same_name = [range](const char* name) { return strcmp(name, range->name()) == 0; };
        if (std::none_of(range_names().begin(), range_names().end(), same_name)) return false;
    }
    return !has_flag(LF_ATTRS) || (range->attrs() & attrs()) == attrs();
}

bool LOCATOR::fits_in_range(MEMORY_RANGE* range) {
    if (!is_split()) return object_->est_size_min() <= range->unused();
    if (sub_items().empty()) extract_subitems();
    return std::any_of(sub_items().begin(), sub_items().end(), [range](LOCATOR* sub) {
        return !sub->is_complete() && sub->fits_in_range(range);
    });
}

unsigned LOCATOR::range_use_count() {
    if (has_flag(LF_SPECIFIC)) return 1;
    if (!placement_specified()) return static_cast<unsigned>(memory_map->size());
    if (!has_flag(LF_RANGES | LF_ATTRS)) return 0;
    unsigned count = 0;
    for (MEMORY_RANGE* range : *memory_map)
        if (can_use_range(range)) ++count;
    return count;
}

uint64_t LOCATOR::estimate_available_space() {
    uint64_t sum = 0;
    if (!is_complete() && !is_virtual() && has_flag(LF_RANGES | LF_ATTRS))
        for (MEMORY_RANGE* range : *memory_map)
            if (can_use_range(range)) sum += range->unused();
    set_available_space(sum);
    return sum;
}

uint64_t LOCATOR::available_space_in_contention(LOCATOR* other) {
    for (const LOCATOR* side :
         {static_cast<const LOCATOR*>(this), static_cast<const LOCATOR*>(other)})
        if (side->is_complete() || side->is_virtual() || !side->placement_specified()) return 0;
    uint64_t sum = 0;
    for (MEMORY_RANGE* range : *memory_map)
        if (can_use_range(range) && other->can_use_range(range)) sum += range->unused();
    return sum;
}

bool LOCATOR::competes_for_range_vs(LOCATOR* other) {
    if (!placement_specified() || !other->placement_specified()) return true;
    return available_space_in_contention(other) != 0;
}

int LOCATOR::default_memory_page() const {
    if (is_placed() && range_ != nullptr && range_->parent() == nullptr) return range_->page();
    if (!is_load()) {
        const LOCATOR* load = object_->load_locator();
        if (load != nullptr && load->has_flag(LF_PAGE)) return load->page();
        return Target->abi()->default_memory_page(object_);
    }
    const LOCATOR* run = object_->run_locator();
    if (run != nullptr && run->has_flag(LF_PAGE)) return run->page();
    LINKER_OBJECT* owner = object_;
    while (owner->is_collection() && owner->parent() != nullptr) owner = owner->parent();
    return Target->abi()->default_memory_page(owner);
}

void LOCATOR::get_min_max(const LOCATOR* locator, uint64_t& min, uint64_t& max) {
    min = 0;
    max = no_limit;
    if (locator != nullptr && locator->has_flag(LF_SPECIFIC)) {
        min = locator->specific_address();
        const MEMORY_RANGE* range = memory_map->lookup_by_addr(min, locator->effective_page());
        if (range != nullptr) max = range->end();
        return;
    }
    bool any = false;
    for (const MEMORY_RANGE* range : *memory_map)
        if (locator == nullptr || locator->match(range)) join_hull(range, min, max, any);
}

namespace {

/// The names that input files refer to and don't define, gathered when first asked for: the symbol
/// table wants none of them any more once the command file has defined it.
const std::unordered_set<std::string_view>& referenced_names() {
    static std::unordered_set<std::string_view> names;
    if (!names.empty()) return names;
    names.insert("");
    for (const OBJ_FILE* file : file_manager.object_files()) {
        OFE::OF_SYMBOL_TABLE* symbols = file->object_file()->symbol_table();
        OFE::OF_RAW_SYMBOL symbol;
        for (unsigned id = 0; symbols != nullptr && id < symbols->symnum();
             id = symbols->next_symbol_id(id))
            if (symbols->raw_symbol(id, symbol) && symbol.kind == OFE::OF_SYM_KIND_UNDEFINED &&
                symbol.binding == OFE::OF_SYM_BINDING_GLOBAL)
                names.insert(symbol.name);
    }
    return names;
}

bool is_wanted(const char* name) {
    return global_symbols.need_def(name) || get_expr_mgr()->is_refd(name) ||
           referenced_names().contains(name);
}

} // namespace

bool LOCATOR::symdef_inhibits_splitting(const char** symbol_name) {
    for (EXPRESSION* expr : object_->assignments()) {
        if (!expr->is_assignment() || expr->left() == nullptr) continue;
        if (is_wanted(expr->left()->symbol_name())) {
            *symbol_name = expr->left()->symbol_name();
            return true;
        }
        expr->set_right(EXPRESSION::minusone(0));
    }
    return false;
}

// ---- dump -------------------------------------------------------------------------------------

namespace {

struct FLAG_TEXT {
    uint32_t flag;
    const char* text;
};

constexpr const char* KIND_TEXT[] = {"<RUN> ", "<LOAD> ", "<BOTH> ", "<RUN_ALT> "};

constexpr FLAG_TEXT FLAG_TEXTS[] = {
    {LF_SPLIT, " split=true"},         {LF_OVERLAY, " overlay=true"},
    {LF_UNION, " union=true"},         {LF_ORDERED, " ordered=true"},
    {LF_UNORDERED, " unordered=true"}, {LF_LAST, " last=true"},
    {LF_HIGHEST, " highest=true"},     {LF_TENTATIVE, " tentative=true"},
    {LF_TRAMP_RES, " tramp res=true"},
};

} // namespace

std::string LOCATOR::text() const {
    std::string out = KIND_TEXT[static_cast<unsigned>(kind_)];
    auto value = [&out](const char* label, uint64_t n) {
        out += strformat("%s0x%lx", label, static_cast<unsigned long>(n));
    };
    if (is_virtual()) out += "<VIRTUAL>";
    if (has_flag(LF_SPECIFIC)) value("specific=", specific_address());
    if (has_flag(LF_RANGES)) {
        out += "ranges=(";
        for (size_t i = 0; i < range_names().size(); ++i) {
            if (i != 0) out += ',';
            out += range_names()[i];
        }
        out += ')';
    }
    if (has_flag(LF_ATTRS)) out += strformat("attrs=(%s)", MEMORY_RANGE::attr_name(attrs()));
    if (has_flag(LF_PAGE)) out += strformat(" page=%d", page());
    if (has_flag(LF_PRIORITY)) out += strformat(" priority=%u", priority());
    if (has_flag(LF_ALIGN)) value(has_flag(LF_PALIGN) ? " palign=" : " align=", align_);
    if (has_flag(LF_BLOCK)) value(" block=", blocking());
    for (const FLAG_TEXT& row : FLAG_TEXTS)
        if (has_flag(row.flag)) out += row.text;
    if (available_space() != 0) value(" avail=", available_space());
    if (min_address_ != 0) value(" min=", min_address_);
    if (max_address() != no_limit) value(" max=", max_address());
    if (is_placed()) {
        value("placed at address=", address_);
        out += strformat(" in %s\n", range_ ? range_->debug_name() : "<no range>");
    }
    return out;
}

void LOCATOR::dump(PPRINT* printer) const {
    printer->printf("%s", text().c_str());
}
