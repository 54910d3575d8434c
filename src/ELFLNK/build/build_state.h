// What the sources of the build phase share: the symbol copier's maps, the sets of read-only
// violations, the steps.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

class LINKER_OBJECT;
class OBJ_FILE;

namespace OFE {
class OBJECT_FILE;
class OF_RELOC;
class OF_SECTION;
class OF_SYMBOL;
class OF_SYMBOL_TABLE;
} // namespace OFE

// First reference of each name that a read-only section may not refer to.
using SYMBOLS_BY_NAME = std::map<std::string, OFE::OF_SYMBOL*>;

struct READONLY_VIOLATIONS {
    SYMBOLS_BY_NAME unbound;
    SYMBOLS_BY_NAME undefined;
    SYMBOLS_BY_NAME weak_undefined;
};
READONLY_VIOLATIONS& readonly_violations();

// The output symbol made for a symbol of an input file that has no object of its own; null when
// there is none.
OFE::OF_SYMBOL* output_of_local(OFE::OBJECT_FILE* file, unsigned symbol_id);

// The output symbol that stands for a symbol of an input; null when there is none.
OFE::OF_SYMBOL* output_symbol_of(OFE::OF_SYMBOL* symbol);

// The relocation engine asks the linker through these.
void install_releng_hooks();

// Steps of create_outfile_components and build.
void create_outfile_sections();
void copy_symbols(bool prebuild);
void drop_unlinked_absolute_symbols();
void copy_undefined_symbols();
void define_alias_symbols();
void check_imports();
void report_readonly_violations();
void create_program_headers();

// The object's size as a header of the output stores it; 0 after an error for one that is too
// large.
uint32_t storable_size(LINKER_OBJECT* object, unsigned unit_bytes);

// Stores a value in a symbol of the output: relative to its section where the file's values are.
void store_symbol_value(OFE::OF_SYMBOL* symbol, OFE::OF_SECTION* section, uint64_t value,
                        bool final);
