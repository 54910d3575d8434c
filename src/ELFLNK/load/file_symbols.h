// The global symbols of each scanned file as name ids: what raw relocations are resolved by,
// without a symbol object for a reference that another file's definition serves.
#pragma once

#include <cstdint>
#include <vector>

#include "ELFLNK/symbol/name_table.h"

class OBJ_FILE;
namespace OFE {
class OBJECT_FILE;
class OF_SYMBOL;
} // namespace OFE

/// Name ids of one file, by symbol id from the first global on; NO_NAME for entries that take no
/// part.
struct FILE_SYMBOLS {
    OBJ_FILE* file = nullptr;
    unsigned first_global = 0;
    std::vector<uint32_t> name_ids;

    uint32_t name_id(unsigned sym_id) const {
        const unsigned at = sym_id - first_global; // of a local symbol: beyond all
        return at < name_ids.size() ? name_ids[at] : NAME_TABLE::NO_NAME;
    }
};

/// The record of a file (by OBJECT_FILE::file_id), made if new.
FILE_SYMBOLS& file_symbols(const OFE::OBJECT_FILE* object);
const FILE_SYMBOLS* find_file_symbols(const OFE::OBJECT_FILE* object);

/// How many names of patches were met: each may have changed what another name stands for.
unsigned patch_mapping_count();

/// The final symbol that symbol `sym_id` of the file stands for once symbols are linked: its
/// definition, or the undefined representative of its name. Makes an object only where the symbol
/// has to stand for itself.
OFE::OF_SYMBOL* resolve_symbol(OFE::OBJECT_FILE* object, unsigned sym_id);
