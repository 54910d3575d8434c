// Symbol maps: a reference to a mapped name behaves as if it had been written with the definition's
// name.
#include "DIAG/elnk_msgs.h"
#include "DIAG/gen_msgs.h"
#include "DIAG/source_position.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "UTIL/str_parser.h"

void SYMBOL_TABLE::add_mapping_entry(const SOURCE_POSITION* pos, const char* ref, const char* def) {
    const uint32_t ref_id = intern_copy(ref), def_id = intern_copy(def);
    RECORD& r = records_[ref_id];
    if (r.mapped_to != NAME_TABLE::NO_NAME) {
        if (r.mapped_to != def_id)
            DIAG_REPORT_AT(pos, elnk_sym_map_conflict, diag_sym_name(ref),
                           diag_sym_name(name_of(r.mapped_to)));
        return;
    }
    r.mapped_to = def_id;
    records_[def_id].flags |= MAPPED_TARGET;
    reverse_map_[def_id].push_back(ref_id);
    if ((r.flags & (IN_UNDEFS | WEAK_UNDEF)) == IN_UNDEFS) needs_.push_back(ref_id);
}

const char* SYMBOL_TABLE::mapped_to(const char* name) const {
    const RECORD* r = record(name);
    return !r || r->mapped_to == NAME_TABLE::NO_NAME ? name : names_.text(r->mapped_to);
}

void SYMBOL_TABLE::mapped_from_ids(uint32_t id, std::vector<uint32_t>& ids) const {
    if (records_[id].flags & MAPPED_TARGET) {
        const std::vector<uint32_t>& refs = reverse_map_.at(id);
        ids.insert(ids.end(), refs.begin(), refs.end());
    }
    if (records_[id].mapped_to == NAME_TABLE::NO_NAME) ids.push_back(id);
}

void SYMBOL_TABLE::mapped_from(const char* name, std::vector<const char*>& names) const {
    const uint32_t id = names_.find(name);
    if (id == NAME_TABLE::NO_NAME) {
        names.push_back(name);
        return;
    }
    std::vector<uint32_t> ids;
    mapped_from_ids(id, ids);
    for (uint32_t ref : ids) names.push_back(names_.text(ref));
}

bool SYMBOL_TABLE::is_symbol_mapped_to(const char* name) const {
    const RECORD* r = record(name);
    return r && r->mapped_to != NAME_TABLE::NO_NAME;
}

void process_symbol_map(const char* text, bool hll) {
    STR_PARSER parser(text, "=");
    const STR_PARSER::TOKEN ref = parser.next(), equals = parser.next(), def = parser.next(),
                            end = parser.next();
    const auto invalid = [text] { DIAG_REPORT(gen_opt_param_invalid, text, "--symbol_map"); };
    if (ref.kind != STR_PARSER::WORD || !equals.is('=') || def.kind != STR_PARSER::WORD ||
        end.kind != STR_PARSER::END)
        return invalid();

    ABI* abi = Target->abi();
    const auto enter = [&](const std::string& r, const std::string& d) {
        if (r == d) return invalid();
        global_symbols.add_mapping_entry(nullptr, r.c_str(), d.c_str());
    };
    if (!hll) return enter(ref.text, def.text);
    enter(abi->hll_to_link_name(ref.text.c_str()), abi->hll_to_link_name(def.text.c_str()));
    if (abi->has_alt_hll_prefix())
        enter(abi->hll_to_alt_link_name(ref.text.c_str()),
              abi->hll_to_alt_link_name(def.text.c_str()));
}
