// Which calls may need a trampoline, found before placement from the raw relocations of all live
// sections with code.
//
// Nearly all calls of nearly all programs are certain to reach: the ranges that caller and callee
// may be placed in lie close enough together, and both are code of one state. Such a call gets no
// object. What a symbol stands for is worked out once per file and symbol, where a section may go
// once per collection.
#include <algorithm>
#include <string>
#include <unordered_map>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/build/link_kind.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/load/file_symbols.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/target/target.h"
#include "ELFLNK/trampoline/call_info.h"
#include "ELFLNK/trampoline/call_site.h"
#include "ELFLNK/trampoline/callee.h"
#include "ELFLNK/trampoline/trampoline.h"
#include "OBJEDIT04/machine/reloc_type.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OPTIONGEN/option_obj.h"
#include "OPTIONGEN/register_option.h"

using namespace OFE;

namespace {

/// The addresses [min, max) among which an object will come to rest.
struct HULL {
    uint64_t min = 0;
    uint64_t max = ~uint64_t{0};
};

/// A wish of an inner object may still lose against that of an outer one, so all count.
HULL hull_of(const LINKER_OBJECT* obj) {
    HULL hull{~uint64_t{0}, 0};
    bool any = false;
    for (; obj != nullptr; obj = obj->parent()) {
        const LOCATOR* run = obj->run_locator();
        if (run == nullptr || !run->has_flag(LF_SPECIFIC | LF_RANGES)) continue;
        HULL one;
        LOCATOR::get_min_max(run, one.min, one.max);
        hull = {std::min(hull.min, one.min), std::max(hull.max, one.max)};
        any = true;
    }
    if (!any) LOCATOR::get_min_max(nullptr, hull.min, hull.max);
    return hull;
}

/// How far a branch reaches from wherever it stands, in bytes.
struct REACH {
    bool known = false;
    uint64_t back = 0;
    uint64_t ahead = 0;
};

REACH reach_of(const OF_RELOC_TEMPLATE& rel) {
    constexpr uint64_t MIDDLE = 0x80000002; // a place that rounding treats worst
    uint64_t lo = 0;
    uint64_t hi = 0;
    Target->get_reachable_range(MIDDLE, rel, lo, hi);
    return {true, MIDDLE - lo, hi - MIDDLE};
}

bool all_within(uint64_t from, uint64_t to, uint64_t distance) {
    return to <= from || to - from <= distance;
}

class GRAPH_BUILDER {
  public:
    GRAPH_BUILDER() : all_sites_(must_keep_all_sites()) {}

    void add_calls_of(SECTION* section) {
        section_ = section;
        OF_SECTION* input = section->OF_SECTION_api();
        if (input == nullptr || !input->ofile()->is_input()) return;
        if (input->ofile() != file_) begin_file(input->ofile());
        hull_ = nullptr;
        OF_SECTION_TABLE* table = input->section_table();
        base_ = file_->values_are_scnrel() ? 0 : input->run_addr();
        size_ = input->size();
        for (unsigned i = 0, n = table->raw_reloc_table_num(input->id()); i < n; ++i) {
            const OF_RAW_RELOCS relocs = table->raw_relocs(input->id(), i);
            if (relocs.symbols() == nullptr || relocs.symbols() != symbols_) continue;
            for (unsigned k = 0; k < relocs.size(); ++k) {
                const OF_RAW_RELOC reloc = relocs[k];
                if (is_call(reloc.type)) add_call(reloc, relocs.rela());
            }
        }
    }

  private:
    /// What a symbol of the current file stands for.
    struct REFERENT {
        enum KIND : uint8_t { UNSEEN, NOTHING, PLACE, ABSOLUTE, OTHER };
        KIND kind = UNSEEN;
        bool function = false;
        bool odd = false;
        OF_SYMBOL* symbol = nullptr; // null: a local one without an object
        SECTION* section = nullptr;
        const HULL* hull = nullptr;
        uint64_t value = 0; // behind the section's start, without bit 0 of a function
    };

    static bool must_keep_all_sites() {
        for (const char* key : {"debug:xtramps", "debug:xcall"})
            if (const register_option* option = register_option::get_option(key);
                option != nullptr && *option != 0)
                return true;
        if (global_opts->isopt(OPT_minimize_trampolines)) return true;
        // What is placed through an alias stands elsewhere first.
        return std::any_of(memory_map->begin(), memory_map->end(), [](const MEMORY_RANGE* range) {
            return range->alias() != nullptr && range->alias() != range;
        });
    }

    void begin_file(OBJECT_FILE* file) {
        file_ = file;
        symbols_ = file->symbol_table();
        referents_.assign(symbols_ != nullptr ? symbols_->symnum() : 0, REFERENT());
        for (unsigned type = 0; type < 256; ++type) types_[type] = nullptr;
    }

    const OF_RELOC_TYPE* type_of(unsigned number) {
        const OF_RELOC_TYPE*& type = types_[number & 0xFF];
        if (type == nullptr) type = file_->machine_reloc_type(number);
        return type;
    }

    bool is_call(unsigned number) {
        const OF_RELOC_TYPE* type = type_of(number);
        return type->rel_template != nullptr && type->rel_template->is(OFRT_CALL);
    }

    const HULL* hull_around(const SECTION* section) {
        auto [at, is_new] = hulls_.try_emplace(section->parent());
        if (is_new) at->second = hull_of(section->parent());
        return &at->second;
    }

    // ---- symbols ---------------------------------------------------------------------------

    const REFERENT& referent(unsigned id) {
        REFERENT& r = referents_[id];
        if (r.kind != REFERENT::UNSEEN) return r;
        r.kind = REFERENT::NOTHING;
        if (id >= symbols_->first_global() || symbols_->loaded_symbol(id) != nullptr)
            describe_object(r, resolve_symbol(file_, id), id);
        else
            describe_local(r, id);
        if (r.kind == REFERENT::PLACE && r.section == nullptr) r.kind = REFERENT::NOTHING;
        if (r.section != nullptr) r.hull = hull_around(r.section);
        return r;
    }

    void describe(REFERENT& r, OF_SYM_KIND kind, OF_SYM_TYPE type, uint64_t value) {
        r.function = type == OF_SYM_TYPE_FUNCTION;
        r.odd = (value & 1) != 0;
        r.value = value;
        switch (kind) {
        case OF_SYM_KIND_DEFINED:
            r.kind = REFERENT::PLACE;
            if (r.function) r.value &= ~uint64_t{1};
            break;
        case OF_SYM_KIND_ABSOLUTE:
            r.kind = REFERENT::ABSOLUTE;
            break;
        case OF_SYM_KIND_UNDEFINED:
            r.kind = REFERENT::NOTHING;
            break;
        default:
            r.kind = REFERENT::OTHER;
        }
    }

    void describe_object(REFERENT& r, OF_SYMBOL* symbol, unsigned id) {
        if (symbol == nullptr) {
            OF_RAW_SYMBOL raw;
            DIAG_REPORT(elnk_lgt_callee_not_found, symbols_->raw_symbol(id, raw) ? raw.name : "");
            return;
        }
        r.symbol = symbol;
        describe(r, symbol->kind(), symbol->type(), symbol->value());
        if (r.kind != REFERENT::PLACE) return;
        OF_SECTION* home = symbol->section();
        r.section = root_collection->lookup_OF_SECTION(home);
        if (home != nullptr && !symbol->ofile()->values_are_scnrel()) r.value -= home->run_addr();
    }

    void describe_local(REFERENT& r, unsigned id) {
        OF_RAW_SYMBOL raw;
        if (id == 0 || !symbols_->raw_symbol(id, raw)) return;
        describe(r, raw.kind, raw.type, raw.value);
        if (r.kind != REFERENT::PLACE) return;
        r.section = root_collection->lookup_section(file_->file_id(), raw.section_id);
        if (r.section != nullptr) r.value -= base_of(r.section);
    }

    uint64_t base_of(SECTION* section) const {
        return file_->values_are_scnrel() ? 0 : section->OF_SECTION_api()->run_addr();
    }

    OF_SYMBOL* symbol_of(const REFERENT& r, unsigned id) {
        return r.symbol != nullptr ? r.symbol : symbols_->symbol(id);
    }

    // ---- calls -----------------------------------------------------------------------------

    /// The call reaches wherever caller and callee come to rest, and changes no state.
    bool always_reaches(const OF_RELOC_TEMPLATE& rel, const REFERENT& r, uint32_t offset) {
        if (all_sites_ || !r.section->has_attr(PA_EXEC)) return false;
        REACH& reach = reach_[rel.id];
        if (!reach.known) reach = reach_of(rel);
        if (r.section == section_) {
            if (size_ > std::min(reach.back, reach.ahead)) return false;
        } else {
            constexpr uint64_t INSTRUCTION = 4;
            if (hull_ == nullptr) hull_ = hull_around(section_);
            if (!all_within(hull_->min, r.hull->max, reach.ahead) ||
                !all_within(r.hull->min, hull_->max - INSTRUCTION, reach.back))
                return false;
        }
        return !Target->call_may_change_state(section_, rel, offset, r.section, r.value,
                                              r.function && r.odd);
    }

    void add_call(const OF_RAW_RELOC& reloc, bool rela) {
        if (reloc.sym_id >= referents_.size()) return;
        const REFERENT& r = referent(reloc.sym_id);
        if (r.kind == REFERENT::NOTHING) return;
        const OF_RELOC_TYPE* type = type_of(reloc.type);
        const uint32_t offset = reloc.offset - base_;
        // A place outside of the section is reported when it comes to relocating it.
        if (size_ < 4 || offset > size_ - 4) return;
        if (r.kind == REFERENT::PLACE && always_reaches(*type->rel_template, r, offset)) return;
        TRAMP_CALL_SITE* site = Target->new_TRAMP_CALL_SITE(section_, type, offset);
        if (site == nullptr) return;
        const int64_t beyond = Target->call_displacement(site, rela ? &reloc.addend : nullptr);
        TRAMP_CALLEE* callee = find_callee(r, symbol_of(r, reloc.sym_id), beyond);
        site->set_callee(callee);
        CALL_INFO::of(section_).add_call(site);
    }

    TRAMP_CALLEE* find_callee(const REFERENT& r, OF_SYMBOL* symbol, int64_t beyond) {
        TRAMP_CALLEE* callee = nullptr;
        const uint64_t place = r.value + static_cast<uint64_t>(beyond);
        if (r.kind == REFERENT::PLACE) {
            if (!r.section->has_attr(PA_EXEC))
                DIAG_REPORT(elnk_lgt_callee_not_exec, symbol->name());
            callee = find_sect_callee(r.section, place);
        } else if (r.kind == REFERENT::ABSOLUTE) {
            callee = find_abs_callee(symbol, place, beyond);
        } else {
            DIAG_REPORT(elnk_lgt_callee_not_qualified, symbol->name());
        }
        callee->set_sym(symbol);
        return callee;
    }

    TRAMP_CALLEE* find_sect_callee(SECTION* section, uint64_t offset) {
        TRAMP_CALLEE*& callee = places_[PLACE_KEY{section, offset}];
        if (callee == nullptr) {
            callee = Target->new_TRAMP_CALLEE(section, offset);
            CALL_INFO::of(section).add_callee(callee);
        }
        return callee;
    }

    /// Absolute callees go by name: the value of one may not be known yet.
    TRAMP_CALLEE* find_abs_callee(OF_SYMBOL* symbol, uint64_t value, int64_t beyond) {
        std::string key = symbol->name();
        if (beyond != 0) key += '\n' + std::to_string(beyond);
        TRAMP_CALLEE*& callee = absolutes_[key];
        if (callee == nullptr) {
            callee = Target->new_TRAMP_CALLEE(nullptr, value);
            callee->set_displacement(beyond);
        }
        return callee;
    }

    struct PLACE_KEY {
        SECTION* section;
        uint64_t offset;
        bool operator==(const PLACE_KEY&) const = default;
    };
    struct PLACE_HASH {
        size_t operator()(const PLACE_KEY& key) const {
            return (key.section->id() * 0x9E3779B97F4A7C15U) ^ (key.offset * 0xC2B2AE3D27D4EB4FU);
        }
    };

    const bool all_sites_;
    OBJECT_FILE* file_ = nullptr;
    OF_SYMBOL_TABLE* symbols_ = nullptr;
    std::vector<REFERENT> referents_; // by symbol id of file_
    const OF_RELOC_TYPE* types_[256] = {};
    std::unordered_map<uint32_t, REACH> reach_; // by relocation template
    std::unordered_map<const COLLECTION*, HULL> hulls_;
    std::unordered_map<PLACE_KEY, TRAMP_CALLEE*, PLACE_HASH> places_;
    std::unordered_map<std::string, TRAMP_CALLEE*> absolutes_;

    SECTION* section_ = nullptr; // whose calls are looked at
    const HULL* hull_ = nullptr; // its hull, once asked for
    uint32_t base_ = 0;
    uint32_t size_ = 0;
};

} // namespace

void build_tramp_call_graph() {
    if (is_partial_link()) return;
    if (!Target->linker_generates_trampolines() && !Target->linker_uses_callgraph()) return;
    std::vector<SECTION*> sections;
    root_collection->list_sections(sections);
    GRAPH_BUILDER builder;
    for (SECTION* section : sections)
        if (section->has_attr(PA_EXEC)) builder.add_calls_of(section);
}
