// The walk over a section's raw relocations that take a symbol.
#pragma once

#include "ELFLNK/reach/registrar.h"
#include "OBJEDIT04/elf/elf_types.h"
#include "OBJEDIT04/ofe/of_section_table.h"

template <class VISIT>
void REGISTRAR::visit_relocs(const FILE_STATE& file, const OFE::OF_RAW_RELOCS& relocs,
                             VISIT visit) {
    for (unsigned i = 0; i < relocs.size(); ++i) {
        const OFE::OF_RAW_RELOC reloc = relocs[i];
        if (file.takes_symbol[reloc.type & 0xFF]) visit(reloc);
    }
}

template <class VISIT>
void REGISTRAR::for_each_symbol_reloc(const FILE_STATE& file, unsigned section_id, VISIT visit) {
    const RELOC_SPAN span = section_id < file.relocs.size()
                                ? file.relocs[section_id]
                                : RELOC_SPAN{nullptr, 0, RELOC_SPAN::OTHER};
    if (span.kind == RELOC_SPAN::NONE) return;
    if (span.kind != RELOC_SPAN::OTHER) {
        const bool rela = span.kind == RELOC_SPAN::RELA;
        const unsigned size = rela ? OFE::ELF_RELASIZE : OFE::ELF_RELSIZE;
        visit_relocs(file, {span.data, span.count, size, rela, file.is_big, 0, file.symbols},
                     visit);
        return;
    }
    const unsigned tables = file.sections->raw_reloc_table_num(section_id);
    for (unsigned t = 0; t < tables; ++t) {
        const OFE::OF_RAW_RELOCS relocs = file.sections->raw_relocs(section_id, t);
        if (file.symbols && relocs.symbols() == file.symbols) visit_relocs(file, relocs, visit);
    }
}
