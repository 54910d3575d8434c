// What the output takes over from each file that joins: the version of the convention from the
// first, the highest architecture of all, and of the argument convention for floating point what
// all of them agree on.
#include "ELFLNK/build/build.h"
#include "ELFLNK/file/obj_file.h"
#include "OBJEDIT04/machine/arm_machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"

using namespace OFE;

void merge_file_attributes(OBJ_FILE* file) {
    constexpr unsigned EABI_MASK = 0xFF000000;
    constexpr unsigned FLOAT_MASK =
        ARM_MACHINE_DB::EF_ARM_ABI_FLOAT_SOFT | ARM_MACHINE_DB::EF_ARM_ABI_FLOAT_HARD;
    static bool first = true;
    OBJECT_FILE* out = output_OF_FILE();
    ARM_MACHINE_DB* to = ARM_MACHINE_DB::of(out);
    ARM_MACHINE_DB* from = ARM_MACHINE_DB::of(file->object_file());
    if (!to || !from || file->object_file() == out) return;
    unsigned flags = file->object_file()->flags();
    if (first)
        out->set_flags((out->flags() & ~(EABI_MASK | FLOAT_MASK)) |
                       (flags & (EABI_MASK | FLOAT_MASK)));
    else
        out->set_flags(out->flags() & (~FLOAT_MASK | flags));
    first = false;
    to->set_isa_version(from->find_isa_version(), false);
    to->set_isa_profile(from->find_isa_profile(), false);
}
