// Hiding and localizing: one rule with two sets of patterns each. A name that no "on" pattern
// matches stays; of an "on" and an "off" pattern the narrower decides; two that are equally wide
// are an error.
#include "ELFLNK/write/outsym_attr_manager.h"

#include <cstdio>
#include <cstring>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/build/build.h"
#include "ELFLNK/filter/filter.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/target/target.h"
#include "ELFLNK/write/make_static.h"
#include "OBJEDIT04/machine/machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OPTIONGEN/option_obj.h"
#include "OPTIONGEN/register_option.h"
#include "UTIL/savestr.h"
#include "UTIL/trace.h"

using namespace OFE;

namespace {

register_option debug_outsym_mods("debug:outsym_mods");

bool is_visible_outside(OF_SYMBOL* symbol) {
    return symbol->binding() == OF_SYM_BINDING_GLOBAL || symbol->binding() == OF_SYM_BINDING_WEAK;
}

bool in_comdat_section(OF_SYMBOL* symbol) {
    OF_SECTION* section = symbol->section();
    return section && scn_in_comdat_group(section);
}

void dump_set(const char* title, const auto& set) {
    printf("%s\n", title);
    for (const FILTER* filter : set) printf("  %s\n", filter->get_pattern());
}

} // namespace

bool needs_make_static(OF_SYMBOL* symbol) {
    return is_visible_outside(symbol) && !global_symbols.is_nohide_name(symbol->name()) &&
           symbol->kind() != OF_SYM_KIND_UNDEFINED;
}

bool OUTSYM_ATTR_MANAGER::FILTER_ORDER::operator()(const FILTER* a, const FILTER* b) const {
    return strcmp(a->get_pattern(), b->get_pattern()) < 0;
}

bool OUTSYM_ATTR_MANAGER::add_pattern(PATTERNS& set, const char* text) {
    if (!text || !*text) return false;
    auto* filter = new FILTER(savestr(text));
    if (set.insert(filter).second) return true;
    delete filter;
    return false;
}

void OUTSYM_ATTR_MANAGER::add_hide_pattern(const char* text) {
    if (add_pattern(hide_, text)) trace_outsym_mods.printf("add_hide: \"%s\"\n", text);
}
void OUTSYM_ATTR_MANAGER::add_unhide_pattern(const char* text) {
    if (add_pattern(unhide_, text)) trace_outsym_mods.printf("add_unhide: \"%s\"\n", text);
}
void OUTSYM_ATTR_MANAGER::add_localize_pattern(const char* text) {
    if (add_pattern(localize_, text)) trace_outsym_mods.printf("add_localize: \"%s\"\n", text);
}
void OUTSYM_ATTR_MANAGER::add_globalize_pattern(const char* text) {
    if (add_pattern(globalize_, text)) trace_outsym_mods.printf("add_globalize: \"%s\"\n", text);
}

const FILTER* OUTSYM_ATTR_MANAGER::find_first_match(const PATTERNS& set, const char* name) {
    for (const FILTER* filter : set)
        if (filter->match(name)) return filter;
    return nullptr;
}

bool OUTSYM_ATTR_MANAGER::decide(const RULE& rule, OF_SYMBOL* symbol) {
    const FILTER* on = find_first_match(rule.on, symbol->name());
    const FILTER* off = find_first_match(rule.off, symbol->name());
    if (!off || !on) return on != nullptr;
    if (on->supersedes(off)) return false;
    if (off->supersedes(on)) return true;
    DIAG_REPORT(elnk_equally_restrictive_options, rule.what,
                global_symbols.diag_sym_name(symbol->name()), rule.on_option, on->get_pattern(),
                rule.off_option, off->get_pattern());
    return false;
}

// Without the names of the symbols that tell code from data the next link could not.
static bool is_mapping_symbol(OF_SYMBOL* symbol) {
    return symbol->binding() == OF_SYM_BINDING_LOCAL &&
           symbol->ofile()->machine_db()->is_mapping_sym_name(symbol->name());
}

bool OUTSYM_ATTR_MANAGER::needs_hiding(OF_SYMBOL* symbol) const {
    if (symbol->kind() == OF_SYM_KIND_UNDEFINED || symbol->type() == OF_SYM_TYPE_SECTION ||
        is_mapping_symbol(symbol))
        return false;
    return decide({"hide", "--hide=", "--unhide=", hide_, unhide_}, symbol);
}

bool OUTSYM_ATTR_MANAGER::needs_localization(OF_SYMBOL* symbol) const {
    if (!is_visible_outside(symbol) || symbol->kind() == OF_SYM_KIND_UNDEFINED) return false;
    unsigned visibility = symbol->visibility();
    if (localize_hidden_symbols() && (visibility == OF_VIS_INTERNAL || visibility == OF_VIS_HIDDEN))
        return true;
    // The other side's name is spelled as users have come to know it.
    return decide({"localization", "--localize=", "--gloablize=", localize_, globalize_}, symbol);
}

bool OUTSYM_ATTR_MANAGER::localize_hidden_symbols() const {
    return global_opts->isopt(OPT_rom);
}

void OUTSYM_ATTR_MANAGER::build_symbol_attr_lists() {
    if (debug_outsym_mods) dump();
    bool make_static = global_opts->isopt(OPT_make_static);
    if (!has_patterns() && !localize_hidden_symbols() && !make_static) return;
    OF_SYMBOL_TABLE* table = output_OF_FILE()->symbol_table();
    for (unsigned id = 1, n = table->symnum(); id < n; id = table->next_symbol_id(id)) {
        OF_SYMBOL* symbol = table->symbol(id);
        std::vector<OF_SYMBOL*>* list = nullptr;
        if (make_static) {
            if (needs_make_static(symbol) && in_comdat_section(symbol)) comdat_.push_back(symbol);
            continue;
        }
        if (needs_hiding(symbol))
            list = &hidden_;
        else if (needs_localization(symbol))
            list = &localized_;
        if (!list) continue;
        if (in_comdat_section(symbol)) {
            comdat_.push_back(symbol);
        } else if (list == &hidden_ && is_group_signature(symbol)) {
            // The next link knows the group by this name.
            if (is_visible_outside(symbol)) comdat_.push_back(symbol);
        } else {
            list->push_back(symbol);
            changed_.insert(symbol);
        }
    }
    report_comdat_symbols();
}

void OUTSYM_ATTR_MANAGER::report_comdat_symbols() const {
    int count = Target->generate_map_symlist(comdat_, true);
    if (count == 0) return;
    const char* option = "<unknown>";
    for (option_id id : {OPT_make_static, OPT_localize, OPT_hide})
        if (global_opts->isopt(id)) {
            option = global_opts->format_of_option(id);
            break;
        }
    if (global_opts->isopt(OPT_make_static))
        DIAGNOSTIC::override_severity(DIAG::elnk_comdat_syms_not_hidden::row()->code, dc_REMARK);
    DIAG_REPORT(elnk_comdat_syms_not_hidden, option, count);
}

void OUTSYM_ATTR_MANAGER::hide(OF_SYMBOL* symbol) {
    symbol->set_name_view("");
    localize(symbol);
}

// A common block in the output is one that nothing in it refers to: as a local one, which ELF
// doesn't know, it would be of no use to anybody.
void OUTSYM_ATTR_MANAGER::localize(OF_SYMBOL* symbol) {
    symbol->set_binding(OF_SYM_BINDING_LOCAL);
    if (symbol->kind() == OF_SYM_KIND_COMMON) symbol->symbol_table()->delete_symbol(symbol->id());
}

// The lists were made from the same table by the same rules.
void OUTSYM_ATTR_MANAGER::update_symbol_attrs() {
    for (OF_SYMBOL* symbol : hidden_) hide(symbol);
    for (OF_SYMBOL* symbol : localized_) localize(symbol);
}

void OUTSYM_ATTR_MANAGER::dump() const {
    dump_set("CONTENTS OF LOCALIZE ARE : ", localize_);
    dump_set("CONTENTS OF GLOBALIZE ARE : ", globalize_);
    dump_set("CONTENTS OF HIDE  ARE : ", hide_);
    dump_set("CONTENTS OF UNHIDE  ARE : ", unhide_);
}
