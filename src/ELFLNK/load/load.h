// The load phase: which object files make up the link. Objects are scanned in command line order,
// archive members pulled on demand, comdat groups settled, symbols linked, and what nothing reaches
// is left out.
#pragma once

#include "ELFLNK/symbol/symbol_file.h"

class ARCHIVE_FILE;
class OBJ_FILE;
class SECTION;
namespace OFE {
class OBJECT_FILE;
class OF_GROUP_TABLE;
class OF_SECTION;
class OF_SYMBOL;
} // namespace OFE

/// The phase. False when template instantiation fails, which ends the link.
bool load();

/// Reads one object file into the link.
void scan_static_linking_file(OBJ_FILE* file);

/// Reports, once, an object of a compiler that is too old for the run-time library.
void check_dinkum_compatibility(OBJ_FILE* file);

/// A new linker object for an input section of that file, in the root collection's maps.
SECTION* new_section(OFE::OF_SECTION* section, OBJ_FILE* file);
bool is_comdat_member(OFE::OF_SECTION* section, OFE::OF_GROUP_TABLE* group);
/// The output file exists, so format and mangling are known.
bool default_abi_is_known();
