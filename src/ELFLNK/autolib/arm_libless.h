// The ordering of ARM libraries: floating point, profile, architecture and state.
#pragma once

#include "ELFLNK/autolib/libless.h"

class ARM_LIBLESS final : public LIBLESS {
  public:
    using LIBLESS::LIBLESS;
    int lib_compare(OFE::OBJECT_FILE* output, OFE::OBJECT_FILE* a, OFE::OBJECT_FILE* b) override;
};
