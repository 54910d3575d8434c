// The map file: the human-readable report of the link, a fixed sequence of parts that can be turned
// on and off by
// --mapfile_contents. It only reads the link's objects. All text is gathered in one buffer and
// written at once.
#pragma once

#include <string>
#include <vector>

class TEXT_TABLE;
class LINKER_OBJECT;

namespace OFE {
class OF_SYMBOL;
}
class DISP_FILTER;
class MAPFILE_DISPFLAGS;

/// Writes the map file that --map_file names.
void generate_map_file();

/// Adds formatted text to the map file.
[[gnu::format(printf, 1, 2)]] void mprintf(const char* format, ...);
/// Adds a table to the map file.
void mprint_table(TEXT_TABLE& table);

/// The attributes that --mapfile_contents turns on and off.
MAPFILE_DISPFLAGS* mdisp_flags();
DISP_FILTER* mdisp_filter();

/// The name of a symbol with its version, if it has one; "" for none.
const char* versym_name(const OFE::OF_SYMBOL* symbol);
bool symname_less(const OFE::OF_SYMBOL* a, const OFE::OF_SYMBOL* b);
int symname_cmp(const OFE::OF_SYMBOL* a, const OFE::OF_SYMBOL* b);
bool symval_less(const OFE::OF_SYMBOL* a, const OFE::OF_SYMBOL* b);
int symval_cmp(const OFE::OF_SYMBOL* a, const OFE::OF_SYMBOL* b);
bool symval_less_page(const OFE::OF_SYMBOL* a, const OFE::OF_SYMBOL* b);
/// The address of a symbol of an input file in the load image.
unsigned long input_symbol_load_address(OFE::OF_SYMBOL* symbol);
