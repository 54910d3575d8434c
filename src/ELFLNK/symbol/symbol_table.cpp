// Records, roots, plain queries and ordered walks of the symbol table. Scanning, linking,
// visibility and symbol maps have files of their own.
#include "ELFLNK/symbol/symbol_table.h"

#include <algorithm>
#include <cstring>

#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "UTIL/savestr.h"

using OFE::OF_SYMBOL;

// ---- records

uint32_t SYMBOL_TABLE::record_id(uint32_t id) {
    if (id >= records_.size()) records_.resize(id + 1);
    return id;
}

uint32_t SYMBOL_TABLE::intern_copy(const char* name) {
    const uint32_t id = names_.find(name);
    return id != NAME_TABLE::NO_NAME ? id : intern(savestr(name));
}

// The id of a symbol's name, kept in the symbol (where 0 means none yet).
uint32_t SYMBOL_TABLE::id_of(OF_SYMBOL* sym) {
    if (sym->global_id() == 0) sym->set_global_id(intern(sym->name()) + 1);
    return sym->global_id() - 1;
}

const SYMBOL_TABLE::RECORD* SYMBOL_TABLE::record(const char* name) const {
    if (!name) return nullptr;
    const uint32_t id = names_.find(name);
    return id == NAME_TABLE::NO_NAME ? nullptr : &records_[id];
}

void SYMBOL_TABLE::set_undef(uint32_t id, OF_SYMBOL* sym) {
    RECORD& r = records_[id];
    const bool weak = sym && sym->binding() == OFE::OF_SYM_BINDING_WEAK;
    const bool was_needed = (r.flags & (IN_UNDEFS | WEAK_UNDEF)) == IN_UNDEFS;
    r.undef = sym;
    r.flags = static_cast<uint8_t>((r.flags & ~WEAK_UNDEF) | IN_UNDEFS | (weak ? WEAK_UNDEF : 0));
    if (!was_needed && !weak) needs_.push_back(id);
}

bool SYMBOL_TABLE::erase_undef(uint32_t id) {
    RECORD& r = records_[id];
    const bool was_there = r.flags & IN_UNDEFS;
    r.undef = nullptr;
    r.flags = static_cast<uint8_t>(r.flags & ~(IN_UNDEFS | WEAK_UNDEF));
    return was_there;
}

// ---- roots and plain names

void SYMBOL_TABLE::add_entry_name(const char* name) {
    const uint32_t id = intern_copy(name);
    records_[id].flags |= ENTRY_NAME;
    if (!has_undef(id)) set_undef(id, nullptr);
}

void SYMBOL_TABLE::remove_entry_name(const char* name) {
    const uint32_t id = names_.find(name);
    if (id == NAME_TABLE::NO_NAME) return;
    records_[id].flags &= static_cast<uint8_t>(~(ENTRY_NAME | ENTRY_SYM));
    std::erase_if(entry_symbols_,
                  [=](const OF_SYMBOL* sym) { return strcmp(sym->name(), name) == 0; });
}

void SYMBOL_TABLE::add_entry_symbol(OF_SYMBOL* sym) {
    const uint32_t id = id_of(sym);
    set_undef(id, sym);
    records_[id].flags |= ENTRY_SYM;
    entry_symbols_.push_back(sym);
}

void SYMBOL_TABLE::add_undef_name(const char* name) {
    const uint32_t id = intern_copy(name);
    if (!has_undef(id)) set_undef(id, nullptr);
}

void SYMBOL_TABLE::remove_undef_name(const char* name) {
    const uint32_t id = names_.find(name);
    if (id != NAME_TABLE::NO_NAME) erase_undef(id);
}

void SYMBOL_TABLE::add_nohide_name(const char* name) {
    add_entry_name(name);
    records_[names_.find(name)].flags |= NOHIDE;
}

bool SYMBOL_TABLE::is_nohide_name(const char* name) const {
    const RECORD* r = record(name);
    return r && (r->flags & NOHIDE);
}

void SYMBOL_TABLE::add_rts_trigger(const char* name) {
    records_[intern_copy(name)].flags |= RTS_TRIGGER;
}

std::vector<const char*> SYMBOL_TABLE::entry_names() const {
    return names_with(ENTRY_NAME);
}
std::vector<const char*> SYMBOL_TABLE::rts_triggers() const {
    return names_with(RTS_TRIGGER);
}

void SYMBOL_TABLE::clear_entry_symbols() {
    for (OF_SYMBOL* sym : entry_symbols_)
        records_[id_of(sym)].flags &= static_cast<uint8_t>(~ENTRY_SYM);
    entry_symbols_.clear();
}

// ---- queries

OF_SYMBOL* SYMBOL_TABLE::lookup_def(const char* name) const {
    const RECORD* r = record(name);
    return r ? r->def : nullptr;
}

OF_SYMBOL* SYMBOL_TABLE::lookup_undef(const char* name) const {
    const RECORD* r = record(name);
    return r ? r->undef : nullptr;
}

OF_SYMBOL* SYMBOL_TABLE::lookup(const char* name) const {
    const RECORD* r = record(name);
    return !r ? nullptr : r->def ? r->def : r->undef;
}

OF_SYMBOL* SYMBOL_TABLE::lookup_hll(const char* name) const {
    return lookup(Target->abi()->hll_to_link_name(name));
}

OF_SYMBOL* SYMBOL_TABLE::lookup_def_hll(const char* name) const {
    return lookup_def(Target->abi()->hll_to_link_name(name));
}

OF_SYMBOL* SYMBOL_TABLE::lookup_imported(const char* name) const {
    const auto it = imports_.find(name);
    return it == imports_.end() ? nullptr : it->second;
}

LINKER_OBJECT* SYMBOL_TABLE::lookup_linker_symbol(const OF_SYMBOL* sym) const {
    const auto it = linker_symbols_.find(sym);
    return it == linker_symbols_.end() ? nullptr : it->second;
}

bool SYMBOL_TABLE::is_linker_symbol(const OF_SYMBOL* sym) const {
    return linker_symbols_.contains(sym);
}

bool SYMBOL_TABLE::is_undef_name(const char* name) const {
    const RECORD* r = record(name);
    return r && (r->flags & IN_UNDEFS);
}

// ---- changes after linking

OF_SYMBOL* SYMBOL_TABLE::resolution(OF_SYMBOL* sym) {
    return sym ? sym->resolved_by_final() : nullptr;
}

void SYMBOL_TABLE::update_symbol(OF_SYMBOL* old, OF_SYMBOL* replacement) {
    if (old == replacement) return;
    old->set_resolved_by(replacement);
    if (old->binding() == OFE::OF_SYM_BINDING_LOCAL && old->global_id() == 0) return;
    const uint32_t id = id_of(old);
    RECORD& r = records_[id];
    if (r.def == old) r.def = replacement;
    if (r.undef == old) r.undef = replacement;
    if (r.flags & ENTRY_SYM)
        std::replace(entry_symbols_.begin(), entry_symbols_.end(), old, replacement);
    const auto it = linker_symbols_.find(old);
    if (it == linker_symbols_.end()) return;
    LINKER_OBJECT* object = it->second;
    linker_symbols_.erase(it);
    linker_symbols_[replacement] = object;
}

void SYMBOL_TABLE::update_linker_symbol(OF_SYMBOL* sym, LINKER_OBJECT* object) {
    linker_symbols_[sym] = object;
}
void SYMBOL_TABLE::remove_linker_symbol(const OF_SYMBOL* sym) {
    linker_symbols_.erase(sym);
    const uint32_t id = find_id(sym->name());
    if (id == NAME_TABLE::NO_NAME || records_[id].def != sym) return;
    records_[id].def = nullptr;
    --def_count_;
}

void SYMBOL_TABLE::clear_defs() {
    for (RECORD& r : records_) r.def = nullptr;
    def_count_ = 0;
}

void SYMBOL_TABLE::clear_undefs() {
    for (uint32_t id = 0; id < records_.size(); ++id) erase_undef(id);
    needs_.clear();
}

// ---- walks

std::vector<uint32_t> SYMBOL_TABLE::sorted_ids(std::vector<uint32_t> ids) const {
    std::sort(ids.begin(), ids.end(),
              [this](uint32_t a, uint32_t b) { return names_.view(a) < names_.view(b); });
    return ids;
}

std::vector<const char*> SYMBOL_TABLE::names_with(uint8_t flag) const {
    std::vector<uint32_t> ids;
    for (uint32_t id = 0; id < records_.size(); ++id)
        if (records_[id].flags & flag) ids.push_back(id);
    std::vector<const char*> names;
    for (uint32_t id : sorted_ids(std::move(ids))) names.push_back(names_.text(id));
    return names;
}

std::vector<OF_SYMBOL*> SYMBOL_TABLE::sorted_defs() const {
    std::vector<uint32_t> ids;
    ids.reserve(def_count_);
    for (uint32_t id = 0; id < records_.size(); ++id)
        if (records_[id].def) ids.push_back(id);
    std::vector<OF_SYMBOL*> defs;
    defs.reserve(ids.size());
    for (uint32_t id : sorted_ids(std::move(ids))) defs.push_back(records_[id].def);
    return defs;
}

std::vector<OF_SYMBOL*> SYMBOL_TABLE::sorted_absolute_defs() const {
    std::vector<uint32_t> ids;
    for (uint32_t id = 0; id < records_.size(); ++id)
        if (records_[id].def && records_[id].def->kind() == OFE::OF_SYM_KIND_ABSOLUTE)
            ids.push_back(id);
    std::vector<OF_SYMBOL*> defs;
    for (uint32_t id : sorted_ids(std::move(ids))) defs.push_back(records_[id].def);
    return defs;
}

std::vector<std::pair<const char*, OF_SYMBOL*>> SYMBOL_TABLE::sorted_undefs() const {
    std::vector<uint32_t> ids;
    for (uint32_t id = 0; id < records_.size(); ++id)
        if (records_[id].flags & IN_UNDEFS) ids.push_back(id);
    std::vector<std::pair<const char*, OF_SYMBOL*>> undefs;
    for (uint32_t id : sorted_ids(std::move(ids)))
        undefs.emplace_back(names_.text(id), records_[id].undef);
    return undefs;
}

std::vector<std::pair<const char*, IMPORT_STATE>> SYMBOL_TABLE::sorted_import_names() const {
    std::vector<uint32_t> ids;
    for (uint32_t id = 0; id < records_.size(); ++id)
        if (records_[id].import != IMPORT_STATE::NONE) ids.push_back(id);
    std::vector<std::pair<const char*, IMPORT_STATE>> names;
    for (uint32_t id : sorted_ids(std::move(ids)))
        names.emplace_back(names_.text(id), records_[id].import);
    return names;
}
