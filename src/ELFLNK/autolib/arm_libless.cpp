// The tests in their order: the first that tells ends the comparison.
#include "ELFLNK/autolib/arm_libless.h"

#include "OBJEDIT04/machine/arm_machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"

using OFE::ARM_MACHINE_DB;
using OFE::OBJECT_FILE;

namespace {

// Attributes of this vendor.
constexpr unsigned TAG_EMBEDDED_CONSTS = 0x110, TAG_LODI_CACHE_WORK = 0x114;
// Public attributes of the processor.
constexpr unsigned TAG_CPU_ARCH_PROFILE = 7, TAG_ARM_ISA_USE = 8, TAG_THUMB_ISA_USE = 9,
                   TAG_FP_ARCH = 10, TAG_NEON_ARCH = 12;

template <unsigned TAG>
unsigned qv_value(OBJECT_FILE* file) {
    return file->qv_battr_uval(TAG);
}

template <unsigned TAG>
unsigned abi_value(OBJECT_FILE* file) {
    return file->abi_battr_uval(TAG);
}

unsigned isa_version(OBJECT_FILE* file) {
    ARM_MACHINE_DB* machine = ARM_MACHINE_DB::of(file);
    if (!machine) return 0;
    return machine->isa_version() != 0 ? machine->isa_version() : machine->find_isa_version();
}

unsigned prefers_arm_state(OBJECT_FILE* file) {
    return file->abi_battr_uval(TAG_ARM_ISA_USE) > file->abi_battr_uval(TAG_THUMB_ISA_USE);
}

enum RULE { MATCH, CLOSEST };

struct TEST {
    unsigned (*value)(OBJECT_FILE*);
    RULE rule;
    bool needs_qv; // only if all files carry this vendor's attributes
};

constexpr TEST TESTS[] = {
    {qv_value<TAG_LODI_CACHE_WORK>, MATCH, true},
    {qv_value<TAG_EMBEDDED_CONSTS>, MATCH, true},
    {abi_value<TAG_NEON_ARCH>, CLOSEST, false},
    {abi_value<TAG_FP_ARCH>, CLOSEST, false},
    {abi_value<TAG_CPU_ARCH_PROFILE>, CLOSEST, false},
    {isa_version, CLOSEST, false},
    {prefers_arm_state, MATCH, false},
};

} // namespace

int ARM_LIBLESS::lib_compare(OBJECT_FILE* output, OBJECT_FILE* a, OBJECT_FILE* b) {
    for (const TEST& test : TESTS) {
        if (test.needs_qv && !all_have_qv_attributes()) continue;
        const auto rule = test.rule == MATCH ? match : closest;
        if (const int r = rule(test.value(output), test.value(a), test.value(b))) return r;
    }
    return 0;
}
