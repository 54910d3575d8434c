// Writing of fill patterns into an output section.
#pragma once

#include <cstdint>

namespace OFE {
class OF_SECTION;
} // namespace OFE
class FILL_SPEC;

/// Write `length` units of fill at `offset`; the pattern is anchored to addresses. Null fill: the
/// default fill.
void fill_data(OFE::OF_SECTION* section, uint32_t offset, uint32_t length, FILL_SPEC* fill);
