// Attributes and their lists. A list's contents are ids, if it is of sections or symbols, ending in
// a 0, and then attributes; each attribute is a tag and what its kind says: an integer, a text, or
// one after the other.
#include <algorithm>
#include <cerrno>

#include "OBJEDIT04/attributes/build_attr_table.h"
#include "OBJEDIT04/machine/machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "UTIL/data_map.h"
#include "UTIL/savestr.h"

namespace OFE {

namespace {

bool has_integer(OFBA_AVAL_TYPE kind) {
    return kind == OFBA_AVAL_INT || kind == OFBA_AVAL_INT_TEXT;
}
bool has_text(OFBA_AVAL_TYPE kind) {
    return kind == OFBA_AVAL_TEXT || kind == OFBA_AVAL_INT_TEXT;
}

unsigned read_number(DATA_MAP& map) {
    return static_cast<unsigned>(map.read_uleb128());
}

} // namespace

// --- one attribute

int OFBA_ATTR::load(DATA_MAP& map, OFBA_TAG_MAP* tags, OF_MACHINE_DB* db) {
    unsigned number = read_number(map);
    tag = tags->find(number);
    if (!tag) tag = tags->create_tag(number, db);
    if (tag->kind == OFBA_AVAL_NONE) return -ENOENT;
    if (!db->ofba_attr_load(*this, map)) {
        if (has_integer(tag->kind)) val.uval = read_number(map);
        if (has_text(tag->kind)) val.str = savestr(map.read_string());
    }
    if (map.failed()) return -ENOENT;
    return !tag->known && tag->is_compatibility() ? -1 : 0;
}

bool OFBA_ATTR::is_empty() const {
    return (!has_integer(tag->kind) || val.uval == 0) && (!has_text(tag->kind) || !*val.str);
}

void OFBA_ATTR::save(DATA_MAP& map, OF_MACHINE_DB* db) const {
    if (is_empty()) return;
    map.write_uleb128(tag->number);
    if (db->ofba_attr_save(*this, map)) return;
    if (has_integer(tag->kind)) map.write_uleb128(val.uval);
    if (has_text(tag->kind)) map.write_string(val.str);
}

// --- a list

void OFBA_ATTR_LIST::copy(const OFBA_ATTR_LIST& from, bool with_ids) {
    attrs_ = from.attrs_;
    opaque_ = from.opaque_;
    sorted_ = from.sorted_;
    if (with_ids) ids_ = from.ids_;
    changed();
}

int OFBA_ATTR_LIST::load(DATA_MAP& map) {
    OF_MACHINE_DB* db = owner_->table()->ofile()->machine_db();
    if (scope_ != Tag_File)
        while (!map.at_end()) {
            unsigned id = read_number(map);
            if (id == 0) break;
            ids_.push_back(id);
        }
    int result = 0;
    while (!map.at_end()) {
        uint64_t at = map.pos();
        OFBA_ATTR attr;
        int status = attr.load(map, owner_->tags(), db);
        if (status == -ENOENT) {
            if (!map.failed()) {
                auto rest = map.bytes(at, map.size() - at);
                opaque_.assign(rest.begin(), rest.end());
            }
            result = -1;
            break;
        }
        if (!attrs_.empty() && OFBA_ATTR::tag_less(attr, attrs_.back())) sorted_ = false;
        attrs_.push_back(attr);
        result |= status;
    }
    sort_attrs();
    return result;
}

void OFBA_ATTR_LIST::save(DATA_MAP& map) {
    uint64_t start = map.pos();
    map.write_uleb128(scope_);
    uint64_t size_at = map.pos();
    map.write32(0);
    if (scope_ != Tag_File) {
        for (unsigned id : ids_) map.write_uleb128(id);
        map.write_uleb128(0);
    }
    OF_MACHINE_DB* db = owner_->table()->ofile()->machine_db();
    for (const OFBA_ATTR& attr : attrs_) attr.save(map, db);
    map.write(opaque_);
    map.put32(size_at, static_cast<uint32_t>(map.pos() - start));
}

void OFBA_ATTR_LIST::sort_attrs() {
    if (!sorted_) std::stable_sort(attrs_.begin(), attrs_.end(), OFBA_ATTR::tag_less);
    sorted_ = true;
}

void OFBA_ATTR_LIST::changed() {
    owner_->table()->note_change();
}

OFBA_ATTR* OFBA_ATTR_LIST::attr_tag(unsigned tag, unsigned start) {
    auto first = std::lower_bound(attrs_.begin(), attrs_.end(), tag,
                                  [](const OFBA_ATTR& a, unsigned n) { return a.tag->number < n; });
    if (start >= static_cast<size_t>(attrs_.end() - first)) return nullptr;
    first += start;
    return first->tag->number == tag ? &*first : nullptr;
}

unsigned OFBA_ATTR_LIST::uval(unsigned tag) {
    OFBA_ATTR* attr = attr_tag(tag);
    return attr ? attr->val.uval : 0;
}

const char* OFBA_ATTR_LIST::str(unsigned tag) {
    OFBA_ATTR* attr = attr_tag(tag);
    return attr ? attr->val.str : "";
}

OFBA_ATTR* OFBA_ATTR_LIST::new_attr(unsigned tag) {
    if (owner_->table()->max_state(OF_STATE_OPEN) != 0) return nullptr;
    OFBA_ATTR made;
    made.tag = owner_->tags()->create_tag(tag, owner_->table()->ofile()->machine_db());
    changed();
    return &*attrs_.insert(
        std::upper_bound(attrs_.begin(), attrs_.end(), made, OFBA_ATTR::tag_less), made);
}

int OFBA_ATTR_LIST::delete_attr(unsigned index) {
    if (owner_->table()->max_state(OF_STATE_OPEN) != 0 || index >= attrs_.size()) return -1;
    attrs_.erase(attrs_.begin() + index);
    changed();
    return 0;
}

int OFBA_ATTR_LIST::set_uval(unsigned tag, unsigned value) {
    if (owner_->table()->max_state(OF_STATE_OPEN) != 0) return -1;
    OFBA_ATTR* attr = attr_tag(tag);
    if (!attr) attr = new_attr(tag);
    attr->val.uval = value;
    changed();
    return 0;
}

int OFBA_ATTR_LIST::set_str(unsigned tag, const char* text) {
    if (owner_->table()->max_state(OF_STATE_OPEN) != 0) return -1;
    OFBA_ATTR* attr = attr_tag(tag);
    if (!attr) attr = new_attr(tag);
    attr->val.str = savestr(text ? text : "");
    changed();
    return 0;
}

// --- what a list applies to

void OFBA_ATTR_LIST::add_section(OF_SECTION* section) {
    ids_.push_back(section->id());
    changed();
}

void OFBA_ATTR_LIST::add_symbol(OF_SYMBOL* symbol) {
    ids_.push_back(symbol->id());
    changed();
}

bool OFBA_ATTR_LIST::applies_to(unsigned id) const {
    return std::find(ids_.begin(), ids_.end(), id) != ids_.end();
}

OF_SECTION* OFBA_ATTR_LIST::section(unsigned i) const {
    OF_SECTION_TABLE* table = owner_->table()->ofile()->section_table();
    return scope_ == Tag_Section && i < ids_.size() ? table->section(ids_[i]) : nullptr;
}

OF_SYMBOL* OFBA_ATTR_LIST::symbol(unsigned i) const {
    OF_SYMBOL_TABLE* table = owner_->table()->ofile()->symbol_table();
    return scope_ == Tag_Symbol && table && i < ids_.size() ? table->symbol(ids_[i]) : nullptr;
}

void OFBA_ATTR_LIST::update_refs(const RECORD_MAP<unsigned>& map) {
    size_t kept = 0;
    for (unsigned id : ids_)
        if (id < map.size() && map[id] != OF_DELETED) ids_[kept++] = map[id];
    ids_.resize(kept);
    changed();
}

} // namespace OFE
