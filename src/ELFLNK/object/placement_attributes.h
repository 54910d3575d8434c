// What a linker object is, as a set of bits, and the phases of placement.
//
// The bits decide where an object may be placed, whether it is loaded, and how it is written.
// They flow upward (merge) and downward (propagate) in the tree; the sticky ones stay where
// they were set.
#pragma once

#include <cstdint>

enum PLACEMENT_ATTRIBUTES : uint32_t {
    PA_NONE = 0,
#define PLACEMENT_ATTR(name, value) name = value,
#include "ELFLNK/object/placement_attributes.def"
#undef PLACEMENT_ATTR
};

/// Bits that survive set_attributes_from_members and are not merged upward.
inline constexpr uint32_t STICKY_PLACEMENT_ATTRIBUTES = PA_COPY | PA_DSECT | PA_NOLOAD | PA_PADDED |
                                                        PA_RUN_IMAGE | PA_NOINIT | PA_READONLY |
                                                        PA_BOUND | PA_TLS | PA_NOSPLIT;
static_assert(STICKY_PLACEMENT_ATTRIBUTES == 0xce3e00);

/// The three passes of placement(), handed to update_before_placement.
enum PLACEMENT_PHASE : uint32_t {
    PLACEMENT_PHASE_1 = 0,
    PLACEMENT_PHASE_2 = 1,
    PLACEMENT_PHASE_3 = 2
};

/// Name of a single bit, "PA_NONE" for 0, "PA_UNKNOWN" for anything else.
const char* attr_name(uint32_t attribute);
