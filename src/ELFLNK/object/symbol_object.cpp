// Common blocks and absolute symbols.
#include "ELFLNK/object/symbol_object.h"

#include "ELFLNK/object/fill_data.h"
#include "ELFLNK/object/root_collection.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "UTIL/narrow.h"
#include "UTIL/savestr.h"

COMMON_BLOCK::COMMON_BLOCK(OFE::OF_SYMBOL* symbol)
    : SYMBOL_OBJECT(savestrf(".common:%s", symbol->name()), symbol) {
    set_attr(PA_ALLOCATED | PA_WRITE);
    clear_attr(PA_HAS_DATA | PA_EXEC);
    root_collection->add_symbol_object(this);
}

uint64_t COMMON_BLOCK::size() {
    return symbol()->size();
}

/// The value of a common symbol is its alignment.
uint32_t COMMON_BLOCK::alignment() const {
    return symbol()->value();
}

void COMMON_BLOCK::write_data_internal(OFE::OF_SECTION* output, uint32_t offset) {
    if (output == nullptr || !has_attr(PA_HAS_DATA) || size() == 0) return;
    fill_data(output, offset, narrow<uint32_t>(size()), fill());
}

ABSOLUTE_SYMBOL::ABSOLUTE_SYMBOL(OFE::OF_SYMBOL* symbol)
    : SYMBOL_OBJECT(savestrf(".absolute_symbol:%s", symbol->name()), symbol) {
    clear_attr(PA_HAS_DATA | PA_ALLOCATED | PA_WRITE | PA_EXEC);
    root_collection->add_symbol_object(this);
}
