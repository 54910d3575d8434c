// Gaps become objects: filler output sections in the gaps of a memory range, SPACE members in the
// gaps of a collection. The write phase writes them like any other object.
#pragma once

class LINKER_OBJECT;

/// Last step of placement that adds objects: all addresses are known.
void fill_holes();
/// Fill the gaps between the members of a placed, allocated collection, and below.
void fill_collection(LINKER_OBJECT* obj);
