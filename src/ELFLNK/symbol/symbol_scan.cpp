// What happens while files are scanned: definitions and needs are recorded, no conflict is looked
// at, and the archives ask which names still want a definition.
#include "DIAG/elnk_msgs.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/ofe/of_symbol.h"

using OFE::OF_SYMBOL;

void SYMBOL_TABLE::add_symbol(OF_SYMBOL* sym, bool local_too) {
    if (!local_too && sym->binding() == OFE::OF_SYM_BINDING_LOCAL) return;
    if (locked_) {
        DIAG_REPORT(elnk_stlocked);
        return;
    }
    switch (sym->kind()) {
    case OFE::OF_SYM_KIND_DEFINED:
    case OFE::OF_SYM_KIND_ABSOLUTE:
    case OFE::OF_SYM_KIND_COMMON:
        add_def(sym);
        break;
    case OFE::OF_SYM_KIND_UNDEFINED:
        add_undef(sym);
        break;
    default:
        break;
    }
}

void SYMBOL_TABLE::add_undef(OF_SYMBOL* sym) {
    const uint32_t id = id_of(sym);
    const RECORD& r = records_[id];
    if (!def_of(mapped_id(id))) {
        const bool takes_over =
            (r.flags & WEAK_UNDEF) && sym->binding() != OFE::OF_SYM_BINDING_WEAK;
        if (!(r.flags & IN_UNDEFS) || !r.undef || takes_over) set_undef(id, sym);
    }
    update_visibility(sym);
}

bool SYMBOL_TABLE::undef_matters(uint32_t id, bool weak) const {
    const RECORD& r = records_[id];
    if (r.import != IMPORT_STATE::NONE) return true;
    if (def_of(mapped_id(id))) return false;
    return !(r.flags & IN_UNDEFS) || !r.undef || ((r.flags & WEAK_UNDEF) && !weak);
}

void SYMBOL_TABLE::add_def(OF_SYMBOL* sym) {
    const uint32_t id = id_of(sym);
    if (!records_[id].def) {
        records_[id].def = sym;
        ++def_count_;
    }
    bool was_wanted = false;
    if (records_[id].flags & MAPPED_TARGET) {
        std::vector<uint32_t> served;
        mapped_from_ids(id, served);
        for (uint32_t ref : served) was_wanted |= erase_undef(ref);
    } else if (mapped_id(id) == id) {
        was_wanted = erase_undef(id);
    }
    if (was_wanted) update_visibility(sym);
}

void SYMBOL_TABLE::add_import_symbol(OF_SYMBOL* sym) {
    const OFE::OF_SYM_BINDING binding = sym->binding();
    if (binding != OFE::OF_SYM_BINDING_GLOBAL && binding != OFE::OF_SYM_BINDING_WEAK) return;
    if (sym->kind() == OFE::OF_SYM_KIND_UNDEFINED) return;
    const auto [it, is_new] = imports_.try_emplace(sym->name(), sym);
    if (!is_new && it->second->binding() == OFE::OF_SYM_BINDING_WEAK &&
        binding != OFE::OF_SYM_BINDING_WEAK)
        it->second = sym;
}

// ---- archive decisions

bool SYMBOL_TABLE::need_def(uint32_t id) const {
    const RECORD& r = records_[id];
    const auto wanted = [this](uint32_t ref) {
        return (records_[ref].flags & (IN_UNDEFS | WEAK_UNDEF)) == IN_UNDEFS;
    };
    if (!(r.flags & MAPPED_TARGET)) return mapped_id(id) == id && wanted(id);
    std::vector<uint32_t> served;
    mapped_from_ids(id, served);
    for (uint32_t ref : served)
        if (wanted(ref)) return true;
    return false;
}

bool SYMBOL_TABLE::need_def(const char* name, OF_SYMBOL** out) const {
    if (out) *out = nullptr;
    const uint32_t id = names_.find(name);
    if (id == NAME_TABLE::NO_NAME) return false;
    std::vector<uint32_t> served;
    mapped_from_ids(id, served);
    for (uint32_t ref : served) {
        if ((records_[ref].flags & (IN_UNDEFS | WEAK_UNDEF)) != IN_UNDEFS) continue;
        if (out) *out = records_[ref].undef;
        return true;
    }
    return false;
}

bool SYMBOL_TABLE::need_undef(OF_SYMBOL* sym) const {
    return !sym || sym->binding() != OFE::OF_SYM_BINDING_WEAK;
}

bool SYMBOL_TABLE::need_name_from_archive(const char* name) const {
    if (!file_manager.output_file()) return true;
    return std::string_view(name) != Target->abi()->static_base_name();
}
