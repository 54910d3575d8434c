#include "ELFLNK/exidx/exidx_section.h"

#include "ELFLNK/build/build.h"
#include "OBJEDIT04/elf/elf_types.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_reloc.h"
#include "OBJEDIT04/ofe/of_reloc_table.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "UTIL/savestr.h"

using namespace OFE;

OF_SECTION* EXIDX_SECTION::link_to_OF_section() {
    OF_SECTION* section = OF_SECTION_api();
    OF_RAW_SECTION header;
    if (section->ofile()->format() != OF_FORMAT_ELF ||
        !section->section_table()->raw_section(section->id(), header) ||
        (header.flags & SHF_LINK_ORDER) == 0 || header.link == 0)
        return nullptr;
    return section->section_table()->section(header.link);
}

void EXIDX_SECTION::patch_aliased_symbol_references() {
    OF_SECTION* section = OF_SECTION_api();
    // Only an object that was made for a symbol can be an alias; raw records need none.
    OF_SYMBOL_TABLE* symbols = section->ofile()->symbol_table();
    if (symbols == nullptr) return;
    OF_SECTION_TABLE* table = section->section_table();
    const unsigned raw_tables =
        section->ofile()->is_input() ? table->raw_reloc_table_num(section->id()) : 0;
    bool aliased = raw_tables == 0;
    for (unsigned t = 0; t < raw_tables && !aliased; t++) {
        const OF_RAW_RELOCS relocs = table->raw_relocs(section->id(), t);
        for (unsigned i = 0; i < relocs.size() && !aliased; i++) {
            const unsigned id = relocs[i].sym_id;
            const OF_SYMBOL* symbol = id < symbols->symnum() ? symbols->loaded_symbol(id) : nullptr;
            aliased = symbol != nullptr && symbol->is_alias();
        }
    }
    if (!aliased) return;
    for (OF_RELOC* reloc : section->all_relocs()) patch_reloc(reloc);
}

void EXIDX_SECTION::patch_reloc(OF_RELOC* reloc) {
    OF_SYMBOL* symbol = reloc->takes_symbol() ? reloc->symbol() : nullptr;
    if (symbol == nullptr || !symbol->is_alias() || link_to_OF_section() == nullptr) return;
    reloc->set_symbol(
        create_dup_symbol(savestrf("__QV_exidx_linkto_sym_%s", symbol->name()), symbol));
}
