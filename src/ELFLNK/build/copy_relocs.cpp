// Relocations that stay in the output, and the rules for references of read-only sections.
#include <cstring>
#include <unordered_map>

#include "ELFLNK/build/build.h"
#include "ELFLNK/build/build_state.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "ELFLNK/trampoline/trampoline.h"
#include "OBJEDIT04/machine/reloc_type.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_reloc.h"
#include "OBJEDIT04/ofe/of_reloc_table.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OF_RELENG/releng.h"
#include "OPTIONGEN/option_obj.h"

using namespace OFE;

namespace {

// The symbol of the output that a relocation's symbol ends in; null when it has none there.
OF_SYMBOL* output_symbol(OF_RELOC* rel) {
    OF_SYMBOL* symbol = rel->symbol();
    return symbol ? output_symbol_of(symbol) : nullptr;
}

std::unordered_map<OF_SECTION*, std::vector<OF_SECTION*>> dependencies;

} // namespace

OF_SYMBOL* output_symbol_of(OF_SYMBOL* symbol) {
    OF_SYMBOL* final = symbol->resolved_by_final();
    if (final == symbol)
        if (OF_SYMBOL* copied = output_of_local(symbol->ofile(), symbol->id())) final = copied;
    return final->ofile() == output_OF_FILE() ? final : nullptr;
}

void copy_reloc_entries(SECTION* section, OF_SECTION* output, uint32_t offset) {
    OF_SECTION* input = section->OF_SECTION_api();
    bool force_rela = global_opts->isopt(OPT_rom) && strncmp(output->name(), ".debug", 6) == 0;
    OF_RELENG engine(input);
    engine.set_output_section(output);
    const std::vector<RELOC_REDIRECT> redirects = call_redirects(section);
    for (OF_RELOC* rel : input->all_relocs()) {
        OF_SYMBOL* symbol = nullptr;
        const RELOC_REDIRECT* redirect =
            find_redirect(redirects, *rel->type(), rel->scnrel_offset());
        if (rel->takes_symbol() && !rel->is_internal()) {
            symbol = redirect ? redirect->symbol : output_symbol(rel);
            if (!symbol) continue;
        }
        bool rela = force_rela || rel->has_addend();
        OF_RELOC* copy = output->new_reloc(rela);
        copy->set_type(rel->type());
        if (rel->is_internal())
            copy->set_internal();
        else if (symbol)
            copy->set_symbol(symbol);
        copy->set_scnrel_offset(rel->scnrel_offset() + offset);
        if (rela)
            copy->set_addend(redirect ? redirect->addend : static_cast<int>(engine.opnd_A(rel)));
    }
}

void add_section_dependencies(OF_SECTION* input, OF_SECTION* output) {
    for (OF_RELOC* rel : input->all_relocs()) {
        OF_SYMBOL* symbol =
            rel->takes_symbol() && !rel->is_internal() ? output_symbol(rel) : nullptr;
        if (!symbol || symbol->kind() != OF_SYM_KIND_DEFINED || symbol->name()[0] == '\0') continue;
        if (OF_SECTION* target = symbol->section(); target && target != output)
            dependencies[output].push_back(target);
    }
}

READONLY_VIOLATIONS& readonly_violations() {
    static READONLY_VIOLATIONS violations;
    return violations;
}

void enforce_readonly_relocs(OF_SECTION* section) {
    READONLY_VIOLATIONS& found = readonly_violations();
    for (OF_RELOC* rel : section->all_relocs()) {
        OF_SYMBOL* symbol =
            rel->takes_symbol() && !rel->is_internal() ? output_symbol(rel) : nullptr;
        if (!symbol) continue;
        SYMBOLS_BY_NAME* set = nullptr;
        if (symbol->kind() == OF_SYM_KIND_UNDEFINED)
            set =
                symbol->binding() == OF_SYM_BINDING_WEAK ? &found.weak_undefined : &found.undefined;
        else if (!global_symbols.is_bound(symbol) &&
                 !Target->abi()->is_readonly_unbound_ref_allowed(rel))
            set = &found.unbound;
        if (set) set->try_emplace(symbol->name(), rel->symbol());
    }
}
