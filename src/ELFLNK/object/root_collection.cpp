// The indexes of the link and the way out of the tree.
#include "ELFLNK/object/root_collection.h"

#include <algorithm>

#include "DIAG/elnk_msgs.h"
#include "DIAG/gen_msgs.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/object/symbol_object.h"
#include "ELFLNK/refgraph/reference_graph.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"

ROOT_COLLECTION::ROOT_COLLECTION() : COLLECTION("<root>", COLLECTION_LOGICAL) {}

ROOT_COLLECTION::~ROOT_COLLECTION() = default;

// ---- input sections ------------------------------------------------------------------------

namespace {

uint64_t place_of(uint32_t file, uint32_t section) {
    return uint64_t{file} << 32 | section;
}

} // namespace

void ROOT_COLLECTION::add_section(SECTION* section) {
    OFE::OF_SECTION* input = section->OF_SECTION_api();
    if (input == nullptr) return;
    const std::size_t file = input->ofile()->file_id();
    if (file >= section_tables_.size()) section_tables_.resize(file + 1);
    section_tables_[file] = input->section_table();
    if (input->client() == nullptr) ++section_count_;
    input->set_client(section);
    note_change_at(input);
}

void ROOT_COLLECTION::remove_section(SECTION* section) {
    OFE::OF_SECTION* input = section->OF_SECTION_api();
    if (input == nullptr || lookup_OF_SECTION(input) != section) return;
    input->set_client(nullptr);
    --section_count_;
    note_change_at(input);
}

SECTION* ROOT_COLLECTION::lookup_section(uint32_t file_id, uint32_t section_id) const {
    if (file_id >= section_tables_.size() || section_tables_[file_id] == nullptr) return nullptr;
    return lookup_OF_SECTION(section_tables_[file_id]->loaded_section(section_id));
}

SECTION* ROOT_COLLECTION::lookup_OF_SECTION(const OFE::OF_SECTION* section) const {
    return section == nullptr ? nullptr : static_cast<SECTION*>(section->client());
}

void ROOT_COLLECTION::note_change_at(const OFE::OF_SECTION* input) {
    if (list_is_made_) changed_places_.push_back(place_of(input->ofile()->file_id(), input->id()));
}

void ROOT_COLLECTION::make_list() const {
    listed_.reserve(section_count_);
    for (uint32_t file = 0; file < section_tables_.size(); ++file) {
        const unsigned count = section_tables_[file] ? section_tables_[file]->scnnum() : 0;
        for (unsigned id = 0; id < count; ++id)
            if (SECTION* section = lookup_section(file, id))
                listed_.push_back({place_of(file, id), section});
    }
    list_is_made_ = true;
}

/// Few sections come and go once there is a list: only their places are looked up again.
void ROOT_COLLECTION::update_list() const {
    if (changed_places_.empty()) return;
    std::sort(changed_places_.begin(), changed_places_.end());
    std::vector<LISTED> list;
    list.reserve(section_count_);
    auto change = changed_places_.begin();
    auto look_up_below = [&](uint64_t limit) {
        for (; change != changed_places_.end() && *change < limit; ++change) {
            SECTION* section = lookup_section(static_cast<uint32_t>(*change >> 32),
                                              static_cast<uint32_t>(*change));
            const bool is_listed = !list.empty() && list.back().place == *change;
            if (section != nullptr && !is_listed) list.push_back({*change, section});
        }
    };
    for (const LISTED& entry : listed_) {
        look_up_below(entry.place);
        if (change == changed_places_.end() || *change != entry.place) list.push_back(entry);
    }
    look_up_below(~uint64_t{0});
    listed_ = std::move(list);
    changed_places_.clear();
}

void ROOT_COLLECTION::list_sections(std::vector<SECTION*>& out) const {
    if (list_is_made_)
        update_list();
    else
        make_list();
    out.reserve(out.size() + listed_.size());
    for (const LISTED& entry : listed_) out.push_back(entry.section);
}

// ---- symbol objects ------------------------------------------------------------------------

namespace {

ROOT_COLLECTION::SYMBOL_KEY key_of(const OFE::OF_SYMBOL* symbol) {
    return {symbol->ofile()->file_id(), symbol->id()};
}

} // namespace

void ROOT_COLLECTION::add_symbol_object(SYMBOL_OBJECT* obj) {
    symbol_objects_[key_of(obj->symbol())] = obj;
}

void ROOT_COLLECTION::remove_symbol_object(SYMBOL_OBJECT* obj) {
    auto at = symbol_objects_.find(key_of(obj->symbol()));
    if (at != symbol_objects_.end() && at->second == obj) symbol_objects_.erase(at);
}

SYMBOL_OBJECT* ROOT_COLLECTION::lookup_symbol_object(const OFE::OF_SYMBOL* symbol) const {
    if (symbol == nullptr) return nullptr;
    auto at = symbol_objects_.find(key_of(symbol));
    return at == symbol_objects_.end() ? nullptr : at->second;
}

// ---- output sections -----------------------------------------------------------------------

void ROOT_COLLECTION::add_outsect(LINKER_OBJECT* obj) {
    if (!outsects_.insert(obj).second) return;
    obj->is_output_section_ = true;
    index_outsect_name(obj);
}

void ROOT_COLLECTION::remove_outsect(LINKER_OBJECT* obj) {
    if (outsects_.erase(obj) == 0) return;
    unindex_outsect_name(obj);
    obj->is_output_section_ = false;
}

void ROOT_COLLECTION::index_outsect_name(LINKER_OBJECT* obj) {
    auto& list = outsects_by_name_[obj->name()];
    list.insert(std::lower_bound(list.begin(), list.end(), obj, less_than_obj_id), obj);
}

void ROOT_COLLECTION::unindex_outsect_name(LINKER_OBJECT* obj) {
    auto at = outsects_by_name_.find(obj->name());
    if (at == outsects_by_name_.end()) return;
    std::erase(at->second, obj);
    if (at->second.empty()) outsects_by_name_.erase(at);
}

LINKER_OBJECT* ROOT_COLLECTION::find_other_outsect(const char* name,
                                                   const LINKER_OBJECT* but) const {
    if (name == nullptr || *name == '\0') return nullptr;
    auto at = outsects_by_name_.find(name);
    if (at == outsects_by_name_.end()) return nullptr;
    for (LINKER_OBJECT* obj : at->second)
        if (obj != but) return obj;
    return nullptr;
}

LINKER_OBJECT* ROOT_COLLECTION::lookup_OF_outsect(const OFE::OF_SECTION* output) const {
    auto at = output_map_.find(output);
    return at == output_map_.end() ? nullptr : at->second;
}

// ---- the tree ------------------------------------------------------------------------------

void ROOT_COLLECTION::unregister_object(LINKER_OBJECT* obj) {
    if (obj == this) return;
    if (obj->is_output_section()) {
        obj->clear_output_OF_SECTION();
        remove_outsect(obj);
        for (LOCATOR* locator : {obj->run_locator(), obj->load_locator()})
            if (locator != nullptr) LOCATOR::remove_locator(locator);
        obj->add_locator(nullptr);
    }
    // A collection that has lost its last member may leave with it, through the call below.
    if (COLLECTION* collection = as_collection(obj)) {
        const std::vector<LINKER_OBJECT*> below(collection->members().begin(),
                                                collection->members().end());
        for (LINKER_OBJECT* member : below) unregister_object(member);
    } else if (obj->is_section()) {
        remove_section(static_cast<SECTION*>(obj));
    } else if (obj->is_symbol_object()) {
        remove_symbol_object(static_cast<SYMBOL_OBJECT*>(obj));
    }
    COLLECTION* above = obj->parent();
    if (above == nullptr) return;
    above->remove_member(obj);
    if (above->members().empty() && !above->is_user_specified()) unregister_object(above);
}

COLLECTION* ROOT_COLLECTION::find_enclosing_collection(LINKER_OBJECT* obj,
                                                       const LINKER_OBJECT* other) {
    for (COLLECTION* above = obj->parent(); above != nullptr; above = above->parent())
        if (above->contains(other)) return above;
    return this;
}

void ROOT_COLLECTION::update_after_collection() {
    set_attributes_from_members(false);
    propagate_attributes_into_members(false);
    finish_reference_graph();
}

bool ROOT_COLLECTION::symbol_is_in_link(const OFE::OF_SYMBOL* symbol) const {
    if (symbol == nullptr || symbol->is_alias()) return false;
    if (symbol->final()) return true;
    switch (symbol->kind()) {
    case OFE::OF_SYM_KIND_DEFINED:
        return lookup_section(symbol->ofile()->file_id(), symbol->section_id()) != nullptr;
    case OFE::OF_SYM_KIND_ABSOLUTE:
        return symbol->ofile()->format() == OFE::OF_FORMAT_QVCOFF ||
               symbol->type() != OFE::OF_SYM_TYPE_NONE || lookup_symbol_object(symbol) != nullptr;
    case OFE::OF_SYM_KIND_COMMON:
        return lookup_symbol_object(symbol) != nullptr;
    case OFE::OF_SYM_KIND_UNDEFINED:
        return true;
    default:
        DIAG_REPORT(elnk_bad_sym_kind, symbol->name());
        return false;
    }
}

bool ROOT_COLLECTION::object_is_in_link(const LINKER_OBJECT* obj) const {
    if (obj->is_section()) {
        const auto* section = static_cast<const SECTION*>(obj);
        return lookup_OF_SECTION(section->OF_SECTION_api()) == section;
    }
    if (obj->is_symbol_object()) {
        const auto* owner = static_cast<const SYMBOL_OBJECT*>(obj);
        return lookup_symbol_object(owner->symbol()) == owner;
    }
    return true;
}
