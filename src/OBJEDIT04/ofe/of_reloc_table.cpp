// Relocations by index, in offset order on demand, and the walk over all tables of a section.
#include "OBJEDIT04/ofe/of_reloc_table.h"

#include <algorithm>

#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_reloc.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_symbol.h"

namespace OFE {

OF_RELOC_TABLE::OF_RELOC_TABLE(OBJECT_FILE* file) : OF_STATE_MACHINE(file) {}

OF_RELOC_TABLE::~OF_RELOC_TABLE() {
    for (OF_RELOC* r : relocs_) delete r;
}

OF_RELOC* OF_RELOC_TABLE::reloc(unsigned i) {
    if (i >= relnum_) return nullptr;
    if (i < relocs_.size() && relocs_[i]) return relocs_[i];
    if (!from_file()) return nullptr;
    if (relocs_.size() < relnum_) relocs_.resize(relnum_);
    relocs_[i] = load_reloc_into_mem(i);
    return relocs_[i];
}

OF_RELOC* OF_RELOC_TABLE::new_reloc() {
    if (max_state(OF_STATE_OPEN) != 0) return nullptr;
    if (relocs_.size() < relnum_) relocs_.resize(relnum_);
    OF_RELOC* r = alloc_reloc(relnum_);
    relocs_.push_back(r);
    ++relnum_;
    changed_ = true;
    mark_unsorted();
    return r;
}

int OF_RELOC_TABLE::delete_reloc(unsigned i) {
    if (i >= relnum_) return -1;
    if (deleted_.size() <= i) deleted_.resize(relnum_);
    deleted_[i] = true;
    has_deleted_ = changed_ = true;
    offset_map_stale_ = true;
    return 0;
}

int OF_RELOC_TABLE::purge_deleted_relocs() {
    if (!has_deleted_) return 0;
    if (load_all_relocs_into_mem() != 0) return -1;
    unsigned kept = 0;
    for (unsigned i = 0; i < relnum_; ++i) {
        if (is_deleted(i)) {
            delete relocs_[i];
            continue;
        }
        relocs_[kept] = relocs_[i];
        relocs_[kept]->set_id(kept);
        ++kept;
    }
    relocs_.resize(kept);
    relnum_ = kept;
    deleted_.clear();
    has_deleted_ = false;
    offset_map_stale_ = true;
    return 0;
}

int OF_RELOC_TABLE::load_all_relocs_into_mem() {
    for (unsigned i = 0; i < relnum_; ++i)
        if (!reloc(i)) return -1;
    return 0;
}

void OF_RELOC_TABLE::unload() {
    if (changed_ || !from_file()) return;
    for (OF_RELOC* r : relocs_) delete r;
    relocs_ = {};
}

int OF_RELOC_TABLE::clear() {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    for (OF_RELOC* r : relocs_) delete r;
    relocs_.clear();
    deleted_.clear();
    relnum_ = 0;
    has_deleted_ = sorted_ = false;
    changed_ = offset_map_stale_ = true;
    return 0;
}

bool OF_RELOC_TABLE::refs_section(OF_SECTION* section) {
    for (unsigned i = 0; i < relnum_; ++i) {
        OF_RELOC* r = reloc(i);
        if (!r || r->is_internal() || is_deleted(i)) continue;
        OF_SYMBOL* s = r->symbol();
        if (s && s->section() == section) return true;
    }
    return false;
}

int OF_RELOC_TABLE::update_symbol_refs(const RECORD_MAP<unsigned>& map) {
    if (max_state(OF_STATE_LOCKED) != 0 || load_all_relocs_into_mem() != 0) return -1;
    for (OF_RELOC* r : relocs_) {
        unsigned id = r->sym_id();
        if (id >= map.size()) continue;
        unsigned to = map[id] == OF_DELETED ? 0 : map[id];
        if (to != id) r->set_sym_id(to);
    }
    return 0;
}

void OF_RELOC_TABLE::swap_relocs(unsigned a, unsigned b) {
    std::swap(relocs_[a], relocs_[b]);
    relocs_[a]->set_id(a);
    relocs_[b]->set_id(b);
    bool da = is_deleted(a), db = is_deleted(b);
    if (da != db) {
        deleted_.resize(relnum_);
        deleted_[a] = db;
        deleted_[b] = da;
    }
}

int OF_RELOC_TABLE::sort_relocs() {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    if (sorted_) return 0;
    if (load_all_relocs_into_mem() != 0) return -1;
    auto before = [](const OF_RELOC* a, const OF_RELOC* b) {
        return a->offset() != b->offset() ? a->offset() < b->offset() : a->id() < b->id();
    };
    if (!std::is_sorted(relocs_.begin(), relocs_.end(), before)) {
        std::sort(relocs_.begin(), relocs_.end(), before);
        std::vector<bool> deleted;
        if (has_deleted_) {
            deleted.resize(relnum_);
            for (unsigned i = 0; i < relnum_; ++i) deleted[i] = is_deleted(relocs_[i]->id());
        }
        deleted_ = std::move(deleted);
        for (unsigned i = 0; i < relnum_; ++i) relocs_[i]->set_id(i);
        changed_ = offset_map_stale_ = true;
        if (own_state() == OF_STATE_LOCKED)
            for (OF_RELOC* r : relocs_) r->patch_raw_data();
    }
    sorted_ = true;
    return 0;
}

void OF_RELOC_TABLE::build_offset_map() {
    sort_relocs();
    if (!offset_map_stale_) return;
    offset_map_.clear();
    for (unsigned i = 0; i < relnum_; ++i) {
        OF_RELOC* r = reloc(i);
        if (!r || is_deleted(i)) continue;
        if (!offset_map_.empty() && offset_map_.back().first == r->offset())
            offset_map_.back().second = i;
        else
            offset_map_.emplace_back(r->offset(), i);
    }
    offset_map_stale_ = false;
}

OF_RELOC* OF_RELOC_TABLE::reloc_offset_type(unsigned offset, const OF_RELOC_TYPE* type,
                                            unsigned start) {
    if (relnum_ == 0) return nullptr;
    build_offset_map();
    auto at = std::lower_bound(offset_map_.begin(), offset_map_.end(), std::make_pair(offset, 0u));
    if (at == offset_map_.end() || at->first != offset) return nullptr;
    OF_RELOC* found = nullptr;
    for (unsigned i = at->second + 1; i-- > start;) {
        OF_RELOC* r = reloc(i);
        if (!r || r->offset() != offset) break;
        if (!is_deleted(i) && (!type || r->type() == type)) found = r;
    }
    return found;
}

bool OF_RELOC_TABLE::any_reloc_at_offset(unsigned offset) {
    build_offset_map();
    auto at = std::lower_bound(offset_map_.begin(), offset_map_.end(), std::make_pair(offset, 0u));
    return at != offset_map_.end() && at->first == offset;
}

OF_SECTION_RELOC_ITERATOR::OF_SECTION_RELOC_ITERATOR(OF_SECTION* section, unsigned table_num)
    : section_(section), num_(table_num) {
    enter();
}

OF_RELOC* OF_SECTION_RELOC_ITERATOR::operator*() const {
    return table_->reloc(index_);
}

void OF_SECTION_RELOC_ITERATOR::enter() {
    table_ = nullptr;
    index_ = 0;
    if (num_ >= section_->reloc_table_num()) return;
    table_ = section_->reloc_table(num_);
    if (table_) table_->load_all_relocs_into_mem();
    settle();
}

void OF_SECTION_RELOC_ITERATOR::settle() {
    while (table_ && index_ < table_->relnum() && table_->is_deleted(index_)) ++index_;
    if (table_ && index_ < table_->relnum()) return;
    ++num_;
    enter();
}

void OF_SECTION_RELOC_ITERATOR::increment() {
    ++index_;
    settle();
}

OF_SECTION_RELOC_ITERATOR OF_SECTION_ALL_RELOCS::begin() const {
    return {section_, 0};
}
OF_SECTION_RELOC_ITERATOR OF_SECTION_ALL_RELOCS::end() const {
    return {section_, section_->reloc_table_num()};
}

} // namespace OFE
