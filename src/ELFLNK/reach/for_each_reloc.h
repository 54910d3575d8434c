// The walk over a section's raw relocations that take a symbol.
#pragma once

#include "ELFLNK/reach/registrar.h"
#include "OBJEDIT04/ofe/of_section_table.h"

template <class VISIT>
void REGISTRAR::for_each_symbol_reloc(FILE_STATE& file, unsigned section_id, VISIT visit) {
    const unsigned tables = file.sections->raw_reloc_table_num(section_id);
    for (unsigned t = 0; t < tables; ++t) {
        const OFE::OF_RAW_RELOCS relocs = file.sections->raw_relocs(section_id, t);
        if (!file.symbols || relocs.symbols() != file.symbols) continue;
        for (unsigned i = 0; i < relocs.size(); ++i) {
            const OFE::OF_RAW_RELOC reloc = relocs[i];
            if (file.takes_symbol[reloc.type & 0xFF]) visit(reloc);
        }
    }
}
