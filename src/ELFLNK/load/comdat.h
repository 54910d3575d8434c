// Comdat groups: the first group of a signature stays, the members of every later one are deleted
// from their file.
#pragma once

#include <functional>

class OBJ_FILE;
namespace OFE {
class OF_GROUP_TABLE;
}

/// Settles the groups of one file that is being scanned.
void process_comdat_groups(OBJ_FILE* file);
/// Calls for each kept group in order of signature name.
void for_each_kept_comdat(const std::function<void(OFE::OF_GROUP_TABLE*)>& visit);
void clear_comdat_map();
