// The map file: the human-readable report of the link, a fixed sequence of parts that can be turned
// on and off by --mapfile_contents. It only reads the link's objects. All text is gathered in one
// buffer and written at once.
#pragma once

#include <cstdint>
#include <vector>

#include "DIAG/disp_filter.h"

class OBJ_FILE;
class TEXT_TABLE;

namespace OFE {
class OF_SYMBOL;
} // namespace OFE

/// The attributes that turn the parts of the map on and off.
class MAPFILE_DISPFLAGS : public STRFLAGS {
  public:
    /// The states that hold when nothing is asked for.
    void set_ascii_defaults();
};

/// Writes the map file that --map_file names.
void generate_map_file();

/// Adds formatted text to the map file.
[[gnu::format(printf, 1, 2)]] void mprintf(const char* format, ...);
/// Adds text as it stands.
void mputs(const char* text);
/// Adds a table.
void mprint_table(const TEXT_TABLE& table);

/// The attributes of --mapfile_contents, entered by the target on first use, and the parser of its
/// value.
MAPFILE_DISPFLAGS& mdisp_flags();
DISP_FILTER& mdisp_filter();

/// The name of a symbol as reports show it; "" for none.
const char* versym_name(const OFE::OF_SYMBOL* symbol);
int symname_cmp(const OFE::OF_SYMBOL* a, const OFE::OF_SYMBOL* b);
bool symname_less(const OFE::OF_SYMBOL* a, const OFE::OF_SYMBOL* b);
int symval_cmp(const OFE::OF_SYMBOL* a, const OFE::OF_SYMBOL* b);
bool symval_less(const OFE::OF_SYMBOL* a, const OFE::OF_SYMBOL* b);
bool symval_less_page(const OFE::OF_SYMBOL* a, const OFE::OF_SYMBOL* b);
/// The address of a symbol of an input file in the load image.
uint64_t input_symbol_load_address(OFE::OF_SYMBOL* symbol);

// The parts that have a file of their own.
void map_section_allocation();
void map_modules();
void map_veneers();
void map_far_calls();
void map_global_symbols();
void map_symbol_definitions();
