// Types of relocations per machine and format. A set is built from the machine's rows on first use
// and shared by all files; types that a file uses and no row names join it then, so that they can
// still be printed.
#include "OBJEDIT04/machine/reloc_type.h"

#include <cstdio>
#include <cstring>

#include "OBJEDIT04/machine/machine_db.h"

namespace OFE {

const OF_RELOC_TYPE OFR_INVALID{"OFR_INVALID", OFR_END_OF_ROWS, OFR_NOT_SUPPORTED, nullptr};

OF_RELOC_TYPE* OF_MACHINE_RELTYPES::new_type(std::string name, uint32_t machine_type,
                                             uint32_t template_id) {
    names_.push_back(std::make_unique<std::string>(std::move(name)));
    types_.push_back(std::make_unique<OF_RELOC_TYPE>());
    OF_RELOC_TYPE* type = types_.back().get();
    type->name = names_.back()->c_str();
    type->machine_type = machine_type;
    type->template_id = template_id;
    type->rel_template = reloc_template(template_id);
    if (machine_type < small_numbers_.size())
        small_numbers_[machine_type] = type;
    else
        large_numbers_[machine_type] = type;
    return type;
}

void OF_MACHINE_RELTYPES::add_rows(const OF_RELOC_TYPE_ROW* rows) {
    for (; rows->machine_type != OFR_END_OF_ROWS; ++rows) {
        OF_RELOC_TYPE* type = new_type(rows->name, rows->machine_type, rows->template_id);
        if (type->rel_template) template_map_.try_emplace(rows->template_id, type);
    }
}

const OF_RELOC_TYPE* OF_MACHINE_RELTYPES::by_template(uint32_t template_id) const {
    auto it = template_map_.find(template_id);
    return it == template_map_.end() ? nullptr : it->second;
}

const OF_RELOC_TYPE* OF_MACHINE_RELTYPES::by_machine_number(uint32_t machine_type) {
    if (machine_type < small_numbers_.size()) {
        if (const OF_RELOC_TYPE* type = small_numbers_[machine_type]) return type;
    } else if (auto it = large_numbers_.find(machine_type); it != large_numbers_.end()) {
        return it->second;
    }
    char name[24];
    snprintf(name, sizeof name, format_ == OF_FORMAT_ELF ? "R_0x%02x" : "R_0x%04x", machine_type);
    return new_type(name, machine_type, OFR_NOT_SUPPORTED);
}

const OF_RELOC_TYPE* OF_MACHINE_RELTYPES::by_name(const char* name) const {
    for (const auto& type : types_)
        if (strcmp(type->name, name) == 0) return type.get();
    return nullptr;
}

bool OF_MACHINE_RELTYPES::set_template(uint32_t machine_type, uint32_t template_id) {
    for (const auto& type : types_) {
        if (type->machine_type != machine_type) continue;
        type->template_id = template_id;
        type->rel_template = reloc_template(template_id);
        return true;
    }
    return false;
}

bool OF_MACHINE_RELTYPES::remap(uint32_t from, uint32_t to) {
    const OF_RELOC_TYPE* type = by_template(to);
    if (!type) return false;
    template_map_[from] = type;
    return true;
}

OF_MACHINE_RELTYPES& shared_machine_reltypes(OF_MACHINE machine, OF_FORMAT format) {
    static std::map<std::pair<OF_MACHINE, OF_FORMAT>, std::unique_ptr<OF_MACHINE_RELTYPES>> sets;
    std::unique_ptr<OF_MACHINE_RELTYPES>& set = sets[{machine, format}];
    if (!set) {
        set = std::make_unique<OF_MACHINE_RELTYPES>(format);
        OF_MACHINE_DB::machine_db(nullptr, machine)->rel_build_type_table(*set, format);
    }
    return *set;
}

} // namespace OFE
