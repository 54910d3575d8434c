// The ordering of libraries, as far as it doesn't hang on the processor.
#include "ELFLNK/autolib/libless.h"

#include <cstring>

#include "ELFLNK/autolib/arm_libless.h"
#include "ELFLNK/file/file_manager.h"
#include "OBJEDIT04/ofe/object_file.h"

using OFE::OBJECT_FILE;

namespace {

constexpr unsigned TAG_EXCEPTIONS = 6;

} // namespace

LIBLESS::LIBLESS(const CANDIDATES& candidates) {
    all_have_qv_ = output_OF_FILE()->qv_battr_vendor_section() != nullptr;
    for (OBJECT_FILE* candidate : candidates)
        all_have_qv_ = all_have_qv_ && candidate->qv_battr_vendor_section() != nullptr;
}

const char* LIBLESS::lib_name(const OBJECT_FILE* candidate) {
    return candidate->display_name();
}

int LIBLESS::lib_compare(OBJECT_FILE*, OBJECT_FILE*, OBJECT_FILE*) {
    return 0;
}

bool LIBLESS::operator()(OBJECT_FILE* a, OBJECT_FILE* b) {
    if (a == b) return false;
    OBJECT_FILE* output = output_OF_FILE();
    if (const int r = lib_compare(output, a, b)) return r < 0;
    if (all_have_qv_) {
        const int r = match(output->qv_battr_uval(TAG_EXCEPTIONS), a->qv_battr_uval(TAG_EXCEPTIONS),
                            b->qv_battr_uval(TAG_EXCEPTIONS));
        if (r != 0) return r < 0;
    }
    return std::strcmp(lib_name(a), lib_name(b)) < 0;
}

// The one that says what the output says.
int LIBLESS::match(unsigned output, unsigned a, unsigned b) {
    if (a == b) return 0;
    if (a == output) return -1;
    return b == output ? 1 : 0;
}

// The one that uses the most of what the objects use, but no more; if one uses more, the lesser.
int LIBLESS::closest(unsigned output, unsigned a, unsigned b) {
    if (a == b) return 0;
    if (a <= output && b <= output) return a > b ? -1 : 1;
    return a < b ? -1 : 1;
}

std::unique_ptr<LIBLESS> new_LIBLESS(const LIBLESS::CANDIDATES& candidates) {
    if (output_OF_FILE()->machine() == OFE::OF_MACHINE_ARM)
        return std::make_unique<ARM_LIBLESS>(candidates);
    return std::make_unique<LIBLESS>(candidates);
}

const char* choose_lib(const LIBLESS::CANDIDATES& candidates) {
    if (candidates.empty()) return nullptr;
    const std::unique_ptr<LIBLESS> less = new_LIBLESS(candidates);
    OBJECT_FILE* best = candidates.front();
    for (OBJECT_FILE* candidate : candidates)
        if ((*less)(candidate, best)) best = candidate;
    return LIBLESS::lib_name(best);
}
