// Symbols by id: made on access, deleted by mark, renumbered by a purge or an insertion.
#include "OBJEDIT04/ofe/of_symbol_table.h"

#include <cstring>

#include "OBJEDIT04/attributes/build_attr_table.h"
#include "OBJEDIT04/machine/machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_symbol.h"

namespace OFE {

OF_SYMBOL_TABLE::OF_SYMBOL_TABLE(OBJECT_FILE* file) : OF_STATE_MACHINE(file) {}

OF_SYMBOL_TABLE::~OF_SYMBOL_TABLE() {
    for (OF_SYMBOL* s : symbols_) delete s;
}

OF_SYMBOL* OF_SYMBOL_TABLE::symbol(unsigned id) {
    if (id >= symnum_) return nullptr;
    if (id < symbols_.size() && symbols_[id]) return symbols_[id];
    if (!from_file()) return nullptr;
    if (symbols_.size() < symnum_) symbols_.resize(symnum_);
    symbols_[id] = load_symbol_into_mem(id);
    return symbols_[id];
}

OF_SYMBOL* OF_SYMBOL_TABLE::symbol_name(const char* name, unsigned start) {
    OF_RAW_SYMBOL s;
    for (unsigned i = start; i < symnum_; i = next_symbol_id(i))
        if (!is_deleted(i) && raw_symbol(i, s) && std::strcmp(s.name, name) == 0) return symbol(i);
    return nullptr;
}

OF_SYMBOL* OF_SYMBOL_TABLE::new_symbol() {
    if (max_state(OF_STATE_OPEN) != 0) return nullptr;
    unsigned id = symnum_;
    if (symbols_.size() < symnum_) symbols_.resize(symnum_);
    OF_SYMBOL* s = alloc_symbol(id);
    changed_ = true;
    symbols_.push_back(s);
    ++symnum_;
    if (!translations_.empty()) translations_.push_back(id);
    ofile()->machine_db()->of_process_new_symbol(s);
    return s;
}

OF_SYMBOL* OF_SYMBOL_TABLE::new_symbol_at(unsigned id) {
    if (max_state(OF_STATE_OPEN) != 0) return nullptr;
    if (id >= symnum_) return new_symbol();
    if (load_all_symbols_into_mem() != 0) return nullptr;
    OF_SYMBOL* s = alloc_symbol(id);
    changed_ = true;
    symbols_.insert(symbols_.begin() + id, s);
    if (id < deleted_.size()) deleted_.insert(deleted_.begin() + id, false);
    RECORD_MAP<unsigned> map(symnum_);
    for (unsigned i = 0; i < symnum_; ++i) map[i] = i < id ? i : i + 1;
    ++symnum_;
    for (unsigned i = id + 1; i < symnum_; ++i) symbols_[i]->set_id(i);
    update_translations(map);
    patch_symbol_refs();
    ofile()->machine_db()->of_process_new_symbol(s);
    return s;
}

int OF_SYMBOL_TABLE::delete_symbol(unsigned id) {
    if (max_state(OF_STATE_OPEN) != 0 || id >= symnum_) return -1;
    if (deleted_.size() <= id) deleted_.resize(symnum_);
    deleted_[id] = true;
    has_deleted_ = true;
    return 0;
}

int OF_SYMBOL_TABLE::purge_deleted_symbols() {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    if (!has_deleted_) return 0;
    if (load_all_symbols_into_mem() != 0) return -1;
    std::vector<OF_SYMBOL*> kept;
    kept.reserve(symnum_);
    RECORD_MAP<unsigned> map(symnum_, OF_DELETED);
    for (unsigned i = 0; i < symnum_; ++i) {
        if (is_deleted(i)) {
            delete symbols_[i];
        } else {
            map[i] = static_cast<unsigned>(kept.size());
            kept.push_back(symbols_[i]);
        }
    }
    replace_symbols(std::move(kept), std::move(map));
    return 0;
}

// The table's symbols are now these, in this order; references follow.
void OF_SYMBOL_TABLE::replace_symbols(std::vector<OF_SYMBOL*>&& symbols,
                                      RECORD_MAP<unsigned>&& old_to_new) {
    symbols_ = std::move(symbols);
    changed_ = true;
    symnum_ = static_cast<unsigned>(symbols_.size());
    deleted_.clear();
    has_deleted_ = false;
    for (unsigned i = 0; i < symnum_; ++i) symbols_[i]->set_id(i);
    update_translations(old_to_new);
    patch_symbol_refs();
}

int OF_SYMBOL_TABLE::load_all_symbols_into_mem() {
    if (all_loaded_) return 0;
    for (unsigned i = 0; i < symnum_; ++i)
        if (!symbol(i)) return -1;
    all_loaded_ = true;
    return 0;
}

void OF_SYMBOL_TABLE::unload_symbol(unsigned id) {
    if (changed_ || !from_file() || id >= symbols_.size()) return;
    delete symbols_[id];
    symbols_[id] = nullptr;
    all_loaded_ = false;
}

void OF_SYMBOL_TABLE::unload() {
    if (changed_ || !from_file()) return;
    for (OF_SYMBOL* s : symbols_) delete s;
    symbols_ = {};
    all_loaded_ = false;
}

int OF_SYMBOL_TABLE::clear() {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    for (OF_SYMBOL* s : symbols_) delete s;
    symbols_.clear();
    deleted_.clear();
    translations_.clear();
    symnum_ = 0;
    has_deleted_ = translations_pending_ = all_loaded_ = false;
    return 0;
}

int OF_SYMBOL_TABLE::update_translations(const RECORD_MAP<unsigned>& map) {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    compose_translations(translations_, map, OF_DELETED);
    translations_pending_ = true;
    return 0;
}

int OF_SYMBOL_TABLE::update_section_refs(const RECORD_MAP<unsigned>&) {
    return max_state(OF_STATE_LOCKED);
}

int OF_SYMBOL_TABLE::patch_symbol_refs() {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    if (!translations_pending_) return 0;
    if (ofile()->build_attributes_exist())
        if (OF_BUILD_ATTR_TABLE* attributes = ofile()->build_attributes())
            attributes->update_symbol_refs(translations_);
    ofile()->machine_db()->of_update_symbol_refs(this);
    translations_.clear();
    translations_pending_ = false;
    if (own_state() == OF_STATE_LOCKED)
        for (OF_SYMBOL* s : symbols_)
            if (s) s->patch_raw_data();
    return 0;
}

} // namespace OFE
