#include "ELFLNK/target/arm/arm_arch_types.h"

#include <strings.h>

namespace {

struct ROW {
    const char* name;
    unsigned value;
    unsigned isa_version;
    unsigned profile;
};

constexpr ROW ROWS[] = {
    {"4", 61, 2, 0},      {"5e", 62, 4, 0},     {"6", 63, 6, 0},
    {"6M0", 64, 11, 'M'}, {"7A8", 65, 10, 'A'}, {"7M3", 66, 10, 'M'},
    {"7M4", 67, 13, 'M'}, {"7R4", 68, 10, 'R'}, {"7R5", 69, 0, 0},
};

const ROW* row_of(unsigned value) {
    for (const ROW& row : ROWS)
        if (row.value == value) return &row;
    return nullptr;
}

} // namespace

void ARM_ARCH_TYPES::set(const char* name) {
    value_ = name == nullptr ? 0 : UNKNOWN;
    for (const ROW& row : ROWS)
        if (name != nullptr && strcasecmp(row.name, name) == 0) value_ = row.value;
}

unsigned ARM_ARCH_TYPES::isa_version() const {
    const ROW* row = row_of(value_);
    return row != nullptr ? row->isa_version : 0;
}

unsigned ARM_ARCH_TYPES::profile() const {
    const ROW* row = row_of(value_);
    return row != nullptr ? row->profile : 0;
}
