// Sections that the linker makes itself: they live in the internal file and take part in the link
// like input sections.
#pragma once

#include <cstdint>

namespace OFE {
class OF_SECTION;
}
class SECTION;

/// The section of the internal file for a read-only object that fills it itself.
OFE::OF_SECTION* new_internal_constant_section(const char* name, unsigned alignment);

/// A section without data and of size 0; `alignment` is a power of two.
SECTION* create_uninitialized_section(const char* name, unsigned alignment);

/// A read-only section with `size` bytes of 0.
SECTION* create_read_only_section(const char* name, unsigned size, unsigned alignment);
