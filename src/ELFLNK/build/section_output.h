// Shared by what settles an input section and what writes it.
#pragma once

class SECTION;

namespace OFE {
class OF_SECTION;
}

// The section's relocations are to be applied to its data, and have not been yet.
bool section_wants_relocation(SECTION* section, OFE::OF_SECTION* output);
