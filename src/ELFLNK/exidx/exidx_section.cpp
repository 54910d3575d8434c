#include "ELFLNK/exidx/exidx_section.h"

#include "ELFLNK/build/build.h"
#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/elf_types.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_reloc.h"
#include "OBJEDIT04/ofe/of_reloc_table.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
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
    // Symbols are aliases only where their file has a table that says so.
    if (elf_api(section->ofile())->symalias_table(false) == nullptr) return;
    for (OF_RELOC* reloc : section->all_relocs()) patch_reloc(reloc);
}

void EXIDX_SECTION::patch_reloc(OF_RELOC* reloc) {
    OF_SYMBOL* symbol = reloc->takes_symbol() ? reloc->symbol() : nullptr;
    if (symbol == nullptr || !symbol->is_alias() || link_to_OF_section() == nullptr) return;
    reloc->set_symbol(
        create_dup_symbol(savestrf("__QV_exidx_linkto_sym_%s", symbol->name()), symbol));
}
