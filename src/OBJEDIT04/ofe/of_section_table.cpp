// Sections by index: made on access, deleted by mark, renumbered by a purge.
#include "OBJEDIT04/ofe/of_section_table.h"

#include <cstring>

#include "OBJEDIT04/attributes/build_attr_table.h"
#include "OBJEDIT04/machine/machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"

namespace OFE {

OF_SECTION_TABLE::OF_SECTION_TABLE(OBJECT_FILE* file) : OF_STATE_MACHINE(file) {}

OF_SECTION_TABLE::~OF_SECTION_TABLE() {
    OF_SECTION_TABLE::clear();
}

int OF_SECTION_TABLE::clear() {
    for (OF_SECTION* s : sections_)
        if (s != placeholder_) delete s;
    delete placeholder_;
    sections_.clear();
    translations_.clear();
    placeholder_ = nullptr;
    has_deleted_ = translations_pending_ = all_loaded_ = false;
    section_symbols_.clear();
    section_symbols_at_ = OF_DELETED;
    return 0;
}

OF_SECTION* OF_SECTION_TABLE::section(unsigned id) {
    if (id >= sections_.size()) return nullptr;
    if (!sections_[id]) load_section_into_mem(id);
    return sections_[id];
}

OF_SECTION* OF_SECTION_TABLE::section_name(const char* name, unsigned start) {
    for (unsigned i = start; i < scnnum(); ++i) {
        OF_SECTION* s = section(i);
        if (s && std::strcmp(s->name(), name) == 0) return s;
    }
    return nullptr;
}

namespace {

bool in_range(unsigned addr, unsigned start, unsigned size) {
    return addr >= start && addr - start < size;
}

} // namespace

OF_SECTION* OF_SECTION_TABLE::section_addr(unsigned addr, unsigned start) {
    for (unsigned i = start; i < scnnum(); ++i) {
        OF_SECTION* s = section(i);
        if (s && s->allocated() && in_range(addr, s->run_addr(), s->size())) return s;
    }
    return nullptr;
}

OF_SECTION* OF_SECTION_TABLE::section_load_addr(unsigned addr, unsigned start) {
    for (unsigned i = start; i < scnnum(); ++i) {
        OF_SECTION* s = section(i);
        if (s && s->allocated() && in_range(addr, s->load_addr(), s->size())) return s;
    }
    return nullptr;
}

OF_SECTION* OF_SECTION_TABLE::section_offset(unsigned offset, unsigned start) {
    for (unsigned i = start; i < scnnum(); ++i) {
        OF_SECTION* s = section(i);
        if (s && s->initialized() && in_range(offset, s->file_offset(), s->size_in_bytes()))
            return s;
    }
    return nullptr;
}

OF_SECTION* OF_SECTION_TABLE::new_section(const char* name) {
    if (max_state(OF_STATE_OPEN) != 0) return nullptr;
    unsigned id = scnnum();
    OF_SECTION* s = alloc_section(id);
    sections_.push_back(s);
    if (!translations_.empty()) translations_.push_back(id);
    s->set_name(name);
    if (std::strncmp(s->name(), ".debug", 6) == 0) {
        s->set_allocated(false);
        s->set_unit_size(8);
    }
    return s;
}

OF_SECTION* OF_SECTION_TABLE::deleted_section() {
    if (!placeholder_) {
        placeholder_ = alloc_section(OF_DELETED);
        placeholder_->set_name_view(OF_DELETED_SECTION_NAME);
    }
    return placeholder_;
}

int OF_SECTION_TABLE::delete_section(unsigned id) {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    if (id >= sections_.size()) return -1;
    if (is_deleted(id)) return 0;
    OF_SECTION* gone = sections_[id];
    sections_[id] = deleted_section();
    has_deleted_ = true;
    section_symbols_at_ = OF_DELETED;
    delete gone;
    return 0;
}

void OF_SECTION_TABLE::set_identity_translations() {
    translations_.resize(sections_.size());
    for (unsigned i = 0; i < translations_.size(); ++i) translations_[i] = i;
}

int OF_SECTION_TABLE::purge_deleted_sections() {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    if (!has_deleted_) return 0;
    static bool running = false;
    const NO_REENTRY once(running, ofile());
    if (once.refused()) return -1;
    int result = load_all_sections_into_mem();
    RECORD_MAP<unsigned> map(sections_.size(), OF_DELETED);
    unsigned kept = 0;
    for (unsigned i = 0; i < sections_.size(); ++i) {
        if (sections_[i] == placeholder_) continue;
        map[i] = kept;
        sections_[kept] = sections_[i];
        sections_[kept]->set_id(kept);
        ++kept;
    }
    if (translations_.empty()) set_identity_translations();
    sections_.resize(kept);
    has_deleted_ = false;
    section_symbols_at_ = OF_DELETED;
    result |= update_translations(map);
    result |= patch_section_refs();
    return result;
}

int OF_SECTION_TABLE::load_all_sections_into_mem() {
    if (all_loaded_) return 0;
    for (unsigned i = 0; i < sections_.size(); ++i)
        if (!section(i)) return -1;
    all_loaded_ = true;
    return 0;
}

int OF_SECTION_TABLE::update_translations(const RECORD_MAP<unsigned>& map) {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    compose_translations(translations_, map, OF_DELETED);
    translations_pending_ = true;
    return 0;
}

int OF_SECTION_TABLE::patch_section_refs() {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    if (!translations_pending_) return 0;
    if (ofile()->build_attributes_exist())
        if (OF_BUILD_ATTR_TABLE* attributes = ofile()->build_attributes())
            attributes->update_section_refs(translations_);
    ofile()->machine_db()->of_update_section_refs(this);
    translations_.clear();
    translations_pending_ = false;
    section_symbols_at_ = OF_DELETED;
    return 0;
}

unsigned OF_SECTION_TABLE::section_symbol_id(unsigned section_id) {
    OF_SYMBOL_TABLE* table = ofile()->symbol_table();
    if (!table) return OF_DELETED;
    if (section_symbols_at_ != table->symnum()) find_section_symbols();
    return section_id < section_symbols_.size() ? section_symbols_[section_id] : OF_DELETED;
}

// A section symbol stands at 0 or at the section's run address; 0 wins, else the highest value.
void OF_SECTION_TABLE::find_section_symbols() {
    OF_SYMBOL_TABLE* table = ofile()->symbol_table();
    section_symbols_.assign(sections_.size(), OF_DELETED);
    std::vector<unsigned> values(sections_.size());
    OF_RAW_SECTION section;
    OF_RAW_SYMBOL s;
    for (unsigned i = 0; i < table->symnum(); i = table->next_symbol_id(i)) {
        if (table->is_deleted(i) || !table->raw_symbol(i, s)) continue;
        if (s.type != OF_SYM_TYPE_SECTION || s.section_id >= sections_.size() ||
            is_deleted(s.section_id))
            continue;
        if (s.value != 0 && (!raw_section(s.section_id, section) || section.addr != s.value))
            continue;
        unsigned& best = section_symbols_[s.section_id];
        unsigned& value = values[s.section_id];
        if (best != OF_DELETED && (value == 0 || (s.value != 0 && s.value <= value))) continue;
        best = i;
        value = s.value;
    }
    section_symbols_at_ = table->symnum();
}

} // namespace OFE
