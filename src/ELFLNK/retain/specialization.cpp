// The mechanism that all specializations share: see specialization.h.
#include "ELFLNK/retain/specialization.h"

#include <algorithm>

#include "ELFLNK/build/link_kind.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/retain/retain_spec.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OPTIONGEN/register_option.h"
#include "UTIL/savestr.h"
#include "UTIL/trace.h"

using OFE::OF_SECTION;
using OFE::OF_SYMBOL;

static register_option disable_specialization("disable:specialization");

SPECIALIZATION::SPECIALIZATION() {
    SPECIALIZATION_MANAGER::register_specialization(this);
}

// ---- the variants

void SPECIALIZATION::add_routine(const char* name, uint32_t flags) {
    routines_.push_back({name, global_symbols.lookup_def(name), flags});
}

void SPECIALIZATION::expand_routine_list(const char* suffix, uint32_t flag) {
    const size_t count = routines_.size();
    for (size_t i = 0; i < count; ++i)
        add_routine(savestrf("%s_%s", routines_[i].name, suffix), routines_[i].flags | flag);
}

bool SPECIALIZATION::defining_file_has(const char* marker) const {
    return symbol_->ofile()->symbol_table()->symbol_name(marker, 0) != nullptr;
}

void SPECIALIZATION::keep_variants_that_exist() {
    std::erase_if(routines_, [](const SPECIALIZATION_ROUTINE& routine) {
        if (routine.symbol && routine.symbol->section()) return false;
        trace_specialization.printf("No symbol for routine %s, erasing\n", routine.name);
        return true;
    });
    for (const SPECIALIZATION_ROUTINE& routine : routines_)
        immune_.insert(routine.symbol->section());
}

void SPECIALIZATION::instantiate_specialization() {
    init();
    trace_specialization.printf("SPECIALIZATION: Instantiate specialization for %s\n", name_);
    symbol_ = global_symbols.lookup_def(name_);
    keep_variants_that_exist();
    if (disable_specialization || !symbol_ || !symbol_->section() || !can_specialize() ||
        is_partial_link()) {
        trace_specialization.printf("Routine cannot be specialized. Clearing list\n");
        routines_.clear();
        immune_.clear();
        return;
    }
    make_placeholder();
    immune_.insert(symbol_->section());
}

void SPECIALIZATION::make_placeholder() {
    OFE::OBJECT_FILE* file = symbol_->ofile();
    trace_specialization.printf("Base file is %s\n", file->display_name());
    const char* name = savestrf("__QV_%s_specialization", name_);
    placeholder_section_ = file->section_table()->new_section(name);
    if (!placeholder_section_) return;
    placeholder_section_->set_allocated(true);
    placeholder_section_->set_bss();
    placeholder_symbol_ = file->symbol_table()->new_symbol();
    placeholder_symbol_->set_name_view(name);
    placeholder_symbol_->set_binding(OFE::OF_SYM_BINDING_LOCAL);
    placeholder_symbol_->set_section(placeholder_section_);
    trace_specialization.printf("Creating placehold symbol %s in section %s\n", name, name);
    symbol_->set_resolved_by(placeholder_symbol_);
}

// ---- the decisions

bool SPECIALIZATION::active() const {
    return !routines_.empty() && root_collection->lookup_OF_SECTION(placeholder_section_);
}

void SPECIALIZATION::remove_routine(size_t index) {
    const SPECIALIZATION_ROUTINE routine = routines_[index];
    trace_specialization.printf("Removing %s (defined in section %s)\n", routine.name,
                                routine.symbol->section()->name());
    root_collection->remove_reference(
        root_collection->lookup_OF_SECTION(placeholder_section_),
        root_collection->lookup_OF_SECTION(routine.symbol->section()));
    // What refers to the function by its name is moved to the variant later; what the user retains
    // stays.
    if (routine.symbol != symbol_ && !retain_manager.match_symbol(routine.name))
        root_collection->remove_symbol_reference_from_root_section(routine.name);
    routines_.erase(routines_.begin() + static_cast<std::ptrdiff_t>(index));
}

bool SPECIALIZATION::is_covered(uint32_t known) const {
    return std::any_of(routines_.begin(), routines_.end(),
                       [known](const auto& routine) { return (known & ~routine.flags) == 0; });
}

// Where no variant of the library has all that is needed, the function stays as it stands.
OF_SYMBOL* SPECIALIZATION::select_routine(uint32_t mask) {
    const uint32_t known = flags_ & ~mask;
    const bool is_sufficient = is_covered(known);
    OF_SYMBOL* chosen = nullptr;
    for (size_t i = 0; i < routines_.size();) {
        const SPECIALIZATION_ROUTINE& routine = routines_[i];
        const bool serves =
            is_sufficient ? (known & ~routine.flags) == 0 : routine.symbol == symbol_;
        if (chosen || !serves) {
            trace_specialization.printf("Disqualifying %s\n", routine.name);
            remove_routine(i);
            continue;
        }
        if (is_sufficient && (flags_ & ~routine.flags) != 0) {
            trace_specialization.printf("Skipping %s\n", routine.name);
        } else {
            trace_specialization.printf("Choosing %s\n", routine.name);
            chosen = routine.symbol;
        }
        ++i;
    }
    return chosen;
}

void SPECIALIZATION::update_before_compressed_sections_formed() {
    if (!active()) return;
    trace_specialization.printf("SPECIALIZATION: Updating %s before compressed sections formed\n",
                                name_);
    select_routine(update_flags_before_compressed_sections_formed());
}

void SPECIALIZATION::update_after_compressed_sections_formed() {
    if (!active()) return;
    trace_specialization.printf("SPECIALIZATION: Updating %s after compressed sections formed\n",
                                name_);
    update_flags_after_compressed_sections_formed();
    OF_SYMBOL* chosen = select_routine(0);
    if (!chosen) chosen = symbol_;
    while (!routines_.empty()) remove_routine(routines_.size() - 1);
    LINKER_OBJECT* placeholder = root_collection->lookup_OF_SECTION(placeholder_section_);
    LINKER_OBJECT* routine = root_collection->lookup_OF_SECTION(chosen->section());
    for (LINKER_OBJECT* referrer : root_collection->references_to_object(placeholder)) {
        root_collection->remove_reference(referrer, placeholder);
        root_collection->add_reference(referrer, routine);
    }
    // Every reference to the function lands on the variant.
    if (chosen == symbol_) symbol_->set_resolved_by(nullptr);
    placeholder_symbol_->set_resolved_by(chosen);
}

// ---- all of them

std::vector<SPECIALIZATION*>& SPECIALIZATION_MANAGER::list() {
    static std::vector<SPECIALIZATION*> specializations_m;
    return specializations_m;
}

const std::vector<SPECIALIZATION*>& SPECIALIZATION_MANAGER::specializations() {
    return list();
}

void SPECIALIZATION_MANAGER::register_specialization(SPECIALIZATION* specialization) {
    list().push_back(specialization);
}

void SPECIALIZATION_MANAGER::instantiate_specializations() {
    for (SPECIALIZATION* s : list()) s->instantiate_specialization();
}

void SPECIALIZATION_MANAGER::update_before_compressed_sections_formed() {
    for (SPECIALIZATION* s : list()) s->update_before_compressed_sections_formed();
}

void SPECIALIZATION_MANAGER::update_after_compressed_sections_formed() {
    for (SPECIALIZATION* s : list()) s->update_after_compressed_sections_formed();
}

bool SPECIALIZATION_MANAGER::any_instantiated() {
    return std::any_of(list().begin(), list().end(),
                       [](const SPECIALIZATION* s) { return s->is_instantiated(); });
}

const SPECIALIZATION* SPECIALIZATION_MANAGER::find(const OF_SECTION* placeholder) {
    for (const SPECIALIZATION* s : list())
        if (s->placeholder_section() == placeholder) return s;
    return nullptr;
}

bool SPECIALIZATION_MANAGER::section_immune_to_retain(OF_SECTION* section) {
    return std::any_of(list().begin(), list().end(), [section](const SPECIALIZATION* s) {
        return s->section_immune_to_retain(section);
    });
}
