// What the output takes over from each file that joins: the version of the convention from the
// first, the flags of the argument convention for floating point that all of them agree on, and the
// build attributes as far as the file is compatible with those before.
#include "DIAG/elnk_msgs.h"
#include "ELFLNK/build/build.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/target/target.h"
#include "FCOMPAT/fcompat.h"
#include "OBJEDIT04/machine/arm_machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"

using namespace OFE;

namespace {

void merge_header_flags(OBJECT_FILE* out, unsigned flags) {
    constexpr unsigned EABI_MASK = 0xFF000000;
    constexpr unsigned FLOAT_MASK =
        ARM_MACHINE_DB::EF_ARM_ABI_FLOAT_SOFT | ARM_MACHINE_DB::EF_ARM_ABI_FLOAT_HARD;
    static bool first = true;
    if (first)
        out->set_flags((out->flags() & ~(EABI_MASK | FLOAT_MASK)) |
                       (flags & (EABI_MASK | FLOAT_MASK)));
    else
        out->set_flags(out->flags() & (~FLOAT_MASK | flags));
    first = false;
}

// A version that was asked for stands until a file needs a higher one.
void raise_asked_version(OBJECT_FILE* out, OBJECT_FILE* object) {
    ARM_MACHINE_DB* to = ARM_MACHINE_DB::of(out);
    ARM_MACHINE_DB* from = ARM_MACHINE_DB::of(object);
    if (!to || !from || to->isa_version() == 0) return;
    to->set_isa_version(from->find_isa_version(), false);
    to->set_isa_profile(from->find_isa_profile(), false);
}

} // namespace

void merge_file_attributes(OBJ_FILE* file) {
    OBJECT_FILE* out = output_OF_FILE();
    OBJECT_FILE* object = file->object_file();
    if (!out || object == out) return;
    merge_header_flags(out, object->flags());
    FCOMPAT* checker = Target->fcompat(file_manager.output_file(), file);
    if (checker && !checker->check_compatibility(true)) {
        if (checker->error_count() != 0)
            checker->error_report();
        else
            DIAG_REPORT(elnk_obj_incompat_unknown, file_manager.baseline_file()->name(),
                        file->name());
    }
    raise_asked_version(out, object);
}
