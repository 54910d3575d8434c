// The section as a whole and its vendor subsections. Every size counts from the first byte of what
// it is the size of; one that cannot be ends the reading of the block it stands in.
#include "OBJEDIT04/attributes/build_attr_table.h"

#include <algorithm>
#include <cstring>

#include "OBJEDIT04/machine/machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "UTIL/data_map.h"

namespace OFE {

// --- a vendor's subsection

OFBA_VENDOR_SCN::OFBA_VENDOR_SCN(OF_BUILD_ATTR_TABLE* table, std::string_view name)
    : table_(table) {
    set_vendor_name(name);
}

void OFBA_VENDOR_SCN::set_vendor_name(std::string_view name) {
    tags_ = OFBA_TAG_MAP::vendor_tags(name, table_->ofile()->machine_db());
}

void OFBA_VENDOR_SCN::copy(const OFBA_VENDOR_SCN& from) {
    bool same_file = from.table_->ofile() == table_->ofile();
    for (const auto& list : from.lists_)
        if (same_file || list->scope() == Tag_File) {
            lists_.push_back(std::make_unique<OFBA_ATTR_LIST>(this, list->scope()));
            lists_.back()->copy(*list, same_file);
        }
}

int OFBA_VENDOR_SCN::load(DATA_MAP& map) {
    int result = 0;
    while (!map.at_end()) result |= load_list(map);
    return result;
}

int OFBA_VENDOR_SCN::load_list(DATA_MAP& map) {
    uint64_t start = map.pos();
    uint64_t scope = map.read_uleb128();
    uint64_t size = map.read32();
    uint64_t head = map.pos() - start;
    if (map.failed() || size < head || size > map.size() - start) {
        map.set_pos(map.size());
        return -1;
    }
    DATA_MAP own(map.bytes(map.pos(), size - head), map.endian());
    map.set_pos(start + size);
    if (scope < Tag_File || scope > Tag_Symbol) return -1;
    lists_.push_back(std::make_unique<OFBA_ATTR_LIST>(this, static_cast<OFBA_SCOPE>(scope)));
    return lists_.back()->load(own);
}

void OFBA_VENDOR_SCN::save(DATA_MAP& map) {
    uint64_t start = map.pos();
    map.write32(0);
    map.write_string(name());
    for (const auto& list : lists_) list->save(map);
    map.put32(start, static_cast<uint32_t>(map.pos() - start));
}

OFBA_ATTR_LIST* OFBA_VENDOR_SCN::new_attrlist(OFBA_SCOPE scope) {
    if (table_->max_state(OF_STATE_OPEN) != 0) return nullptr;
    table_->note_change();
    return lists_.emplace_back(std::make_unique<OFBA_ATTR_LIST>(this, scope)).get();
}

int OFBA_VENDOR_SCN::delete_attrlist(unsigned i) {
    if (table_->max_state(OF_STATE_OPEN) != 0 || i >= lists_.size()) return -1;
    lists_.erase(lists_.begin() + i);
    table_->note_change();
    return 0;
}

OFBA_ATTR_LIST* OFBA_VENDOR_SCN::scope_list(OFBA_SCOPE scope) const {
    for (const auto& list : lists_)
        if (list->scope() == scope) return list.get();
    return nullptr;
}

OFBA_ATTR* OFBA_VENDOR_SCN::attr_file_tag(unsigned tag) const {
    OFBA_ATTR_LIST* list = file_list();
    return list ? list->attr_tag(tag) : nullptr;
}

OFBA_ATTR* OFBA_VENDOR_SCN::attr_scoped_tag(OFBA_SCOPE scope, unsigned tag, unsigned id) const {
    for (const auto& list : lists_)
        if (list->scope() == scope && list->applies_to(id))
            if (OFBA_ATTR* attr = list->attr_tag(tag)) return attr;
    return nullptr;
}

OFBA_ATTR* OFBA_VENDOR_SCN::attr_section_tag(unsigned tag, OF_SECTION* section) const {
    return attr_scoped_tag(Tag_Section, tag, section->id());
}

OFBA_ATTR* OFBA_VENDOR_SCN::attr_symbol_tag(unsigned tag, OF_SYMBOL* symbol) const {
    return attr_scoped_tag(Tag_Symbol, tag, symbol->id());
}

void OFBA_VENDOR_SCN::update_refs(OFBA_SCOPE scope, const RECORD_MAP<unsigned>& map) {
    for (const auto& list : lists_)
        if (list->scope() == scope) list->update_refs(map);
    std::erase_if(lists_, [scope](const auto& list) {
        return list->scope() == scope && list->ids().empty();
    });
}

// --- the section

OF_BUILD_ATTR_TABLE::OF_BUILD_ATTR_TABLE(OF_SECTION* section)
    : OF_STATE_MACHINE(section->ofile()), section_(section) {}

OF_BUILD_ATTR_TABLE::~OF_BUILD_ATTR_TABLE() = default;

void OF_BUILD_ATTR_TABLE::note_change() {
    touched_ = true;
    ofile()->machine_db()->of_battr_changed();
}

int OF_BUILD_ATTR_TABLE::load() {
    if (loaded_) return 0;
    loaded_ = true;
    OF_BYTES bytes = section_->bytes();
    if (bytes.size == 0) return -1;
    bool big = ofile()->machine_endian() == OF_ENDIAN_BIG;
    DATA_MAP map({bytes.data, bytes.size}, big ? DATA_MAP::BIG : DATA_MAP::LITTLE);
    format_ = map.read8();
    int result = 0;
    while (!map.at_end()) result |= load_vscn(map);
    return result;
}

int OF_BUILD_ATTR_TABLE::load_vscn(DATA_MAP& map) {
    uint64_t start = map.pos();
    uint64_t size = map.read32();
    if (map.failed() || size < sizeof(uint32_t) || size > map.size()) {
        map.set_pos(map.size());
        return -1;
    }
    uint64_t end = std::min<uint64_t>(start + size, map.size());
    DATA_MAP own(map.bytes(map.pos(), end - map.pos()), map.endian());
    map.set_pos(end);
    std::string_view vendor = own.read_string();
    if (own.failed()) return -1;
    vendors_.push_back(std::make_unique<OFBA_VENDOR_SCN>(this, vendor));
    return vendors_.back()->load(own);
}

int OF_BUILD_ATTR_TABLE::save() {
    bool big = ofile()->machine_endian() == OF_ENDIAN_BIG;
    DATA_MAP map(big ? DATA_MAP::BIG : DATA_MAP::LITTLE);
    map.write8(format_);
    for (const auto& vendor : vendors_) vendor->save(map);
    section_->raw_data().set_copy(map.bytes());
    return 0;
}

// Bytes that nobody has changed stay as they came, with what could not be understood.
int OF_BUILD_ATTR_TABLE::progress_to_state(OF_STATE target) {
    return target == OF_STATE_LOCKED && touched_ ? save() : 0;
}

int OF_BUILD_ATTR_TABLE::revert_to_state(OF_STATE) {
    return 0;
}

OFBA_VENDOR_SCN* OF_BUILD_ATTR_TABLE::vscn_name(const char* vendor, unsigned start) const {
    for (unsigned i = start; i < vendors_.size(); ++i)
        if (std::strcmp(vendors_[i]->name(), vendor) == 0) return vendors_[i].get();
    return nullptr;
}

OFBA_VENDOR_SCN* OF_BUILD_ATTR_TABLE::new_vscn(const char* vendor) {
    if (max_state(OF_STATE_OPEN) != 0) return nullptr;
    note_change();
    return vendors_.emplace_back(std::make_unique<OFBA_VENDOR_SCN>(this, vendor)).get();
}

OFBA_VENDOR_SCN* OF_BUILD_ATTR_TABLE::vscn_copy(const OFBA_VENDOR_SCN* from) {
    OFBA_VENDOR_SCN* made = new_vscn(from->name());
    if (made) made->copy(*from);
    return made;
}

int OF_BUILD_ATTR_TABLE::delete_vscn(unsigned i) {
    if (max_state(OF_STATE_OPEN) != 0 || i >= vendors_.size()) return -1;
    vendors_.erase(vendors_.begin() + i);
    note_change();
    return 0;
}

void OF_BUILD_ATTR_TABLE::update_section_refs(const RECORD_MAP<unsigned>& map) {
    load();
    for (const auto& vendor : vendors_) vendor->update_refs(Tag_Section, map);
}

void OF_BUILD_ATTR_TABLE::update_symbol_refs(const RECORD_MAP<unsigned>& map) {
    load();
    for (const auto& vendor : vendors_) vendor->update_refs(Tag_Symbol, map);
}

} // namespace OFE
