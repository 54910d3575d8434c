// Which bytes of a section are ARM code, Thumb code or data: the mapping symbols, and what follows
// from them.
#include <algorithm>

#include "OBJEDIT04/machine/arm_machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"

namespace OFE {

namespace {

constexpr unsigned TAG_ARM_ISA_USE = 8;
constexpr unsigned TAG_THUMB_ISA_USE = 9;
constexpr unsigned PROFILE_M = 'M';

} // namespace

const char* ARM_MACHINE_DB::mapping_sym_name(SECTION_MODE mode) {
    switch (mode) {
    case ARM_TYPES::SM_ARM:
        return "$a";
    case ARM_TYPES::SM_THUMB:
        return "$t";
    case ARM_TYPES::SM_DATA:
        return "$d";
    case ARM_TYPES::SM_CODE16:
        return "$code16";
    case ARM_TYPES::SM_CODE32:
        return "$code32";
    default:
        return nullptr;
    }
}

ARM_TYPES::SECTION_MODE ARM_MACHINE_DB::mapping_sym_mode(const char* name) {
    if (name[0] != '$' || name[1] == '\0' || (name[2] != '\0' && name[2] != '.'))
        return ARM_TYPES::SM_UNKNOWN;
    switch (name[1]) {
    case 'a':
        return ARM_TYPES::SM_ARM;
    case 't':
        return ARM_TYPES::SM_THUMB;
    case 'd':
        return ARM_TYPES::SM_DATA;
    default:
        return ARM_TYPES::SM_UNKNOWN;
    }
}

void ARM_MACHINE_DB::forget_mapping_syms() {
    mapping_.clear();
    mapping_searched_ = 0;
    mapping_sorted_ = true;
}

ARM_MACHINE_DB::MAPPINGS& ARM_MACHINE_DB::mappings_at(unsigned section_id) {
    if (section_id >= mapping_.size()) mapping_.resize(section_id + 1);
    return mapping_[section_id];
}

void ARM_MACHINE_DB::add_mapping(OF_SECTION* section, unsigned addr, SECTION_MODE mode) {
    mappings_at(section->id()).push_back({addr, mode});
    mapping_sorted_ = false;
}

// Looks at the symbols that have come since the last search. In a file whose values count from the
// section's start, an address is the value behind the section's run address.
void ARM_MACHINE_DB::find_mapping_syms() {
    OF_SYMBOL_TABLE* symbols = file_->symbol_table();
    OF_SECTION_TABLE* sections = file_->section_table();
    if (symbols && sections) {
        bool relative = file_->values_are_scnrel();
        OF_RAW_SYMBOL raw;
        for (unsigned n = symbols->symnum(); mapping_searched_ < n; ++mapping_searched_) {
            if (!symbols->raw_symbol(mapping_searched_, raw) || raw.binding != OF_SYM_BINDING_LOCAL)
                continue;
            SECTION_MODE mode = mapping_sym_mode(raw.name);
            if (mode == ARM_TYPES::SM_UNKNOWN || raw.section_id >= sections->scnnum()) continue;
            unsigned base = 0;
            if (relative)
                if (OF_SECTION* section = sections->section(raw.section_id))
                    base = section->run_addr();
            mappings_at(raw.section_id).push_back({base + raw.value, mode});
            mapping_sorted_ = false;
        }
    }
    if (mapping_sorted_) return;
    for (MAPPINGS& list : mapping_)
        std::stable_sort(list.begin(), list.end(),
                         [](const MAPPING& a, const MAPPING& b) { return a.addr < b.addr; });
    mapping_sorted_ = true;
}

const ARM_MACHINE_DB::MAPPINGS* ARM_MACHINE_DB::mappings_of(OF_SECTION* section) {
    find_mapping_syms();
    return section->id() < mapping_.size() ? &mapping_[section->id()] : nullptr;
}

ARM_TYPES::SECTION_MODE ARM_MACHINE_DB::default_mode(OF_SECTION* section) {
    if (!section->exec()) return ARM_TYPES::SM_UNKNOWN;
    if (find_isa_profile() == PROFILE_M) return ARM_TYPES::SM_THUMB;
    if (file_->abi_battr_uval(TAG_THUMB_ISA_USE) != 0 &&
        file_->abi_battr_uval(TAG_ARM_ISA_USE) == 0)
        return ARM_TYPES::SM_THUMB;
    return ARM_TYPES::SM_ARM;
}

ARM_TYPES::SECTION_MODE ARM_MACHINE_DB::section_mode_addr(OF_SECTION* section, unsigned addr) {
    const MAPPINGS* list = mappings_of(section);
    if (list) {
        auto after = std::upper_bound(list->begin(), list->end(), addr,
                                      [](unsigned a, const MAPPING& m) { return a < m.addr; });
        if (after != list->begin()) return std::prev(after)->mode;
    }
    return default_mode(section);
}

bool ARM_MACHINE_DB::is_mapped_from_start(OF_SECTION* section) {
    const MAPPINGS* list = mappings_of(section);
    return list && !list->empty() && list->front().addr == section->run_addr();
}

// Stretches run from one mapping symbol to the next; what precedes the first is data, for only data
// may do without. A stretch's last incomplete unit stays as it is.
void ARM_MACHINE_DB::swap_be8_code(OF_SECTION* section) {
    if (!section->initialized() || !section->exec()) return;
    unsigned size = section->size_in_bytes();
    uint8_t* bytes = size ? section->writable_bytes(0, size) : nullptr;
    if (bytes) swap_be8_code(section, bytes, size);
}

void ARM_MACHINE_DB::swap_be8_code(OF_SECTION* section, uint8_t* bytes, unsigned size) {
    const MAPPINGS* list = mappings_of(section);
    uint32_t base = section->run_addr();
    auto swap_stretch = [&](uint64_t from, uint64_t to, SECTION_MODE mode) {
        unsigned unit = mode == ARM_TYPES::SM_ARM ? 4 : mode == ARM_TYPES::SM_THUMB ? 2 : 0;
        if (unit == 0) return;
        for (; from + unit <= to; from += unit) std::reverse(bytes + from, bytes + from + unit);
    };
    uint64_t from = 0;
    SECTION_MODE mode = ARM_TYPES::SM_DATA;
    if (list)
        for (const MAPPING& m : *list) {
            uint64_t at = std::min<uint64_t>(m.addr - base, size);
            if (at > from) swap_stretch(from, at, mode);
            from = std::max(from, at);
            mode = m.mode;
        }
    swap_stretch(from, size, mode);
}

} // namespace OFE
