// The message table: all rows of all components, ascending by code, with the first row of each
// component marked.
#include "DIAG/cpp_msgs.h"
#include "DIAG/elnk_msgs.h"
#include "DIAG/fcompat_msgs.h"
#include "DIAG/gen_msgs.h"
#include "DIAG/misc_msgs.h"
#include "DIAG/optgen_msgs.h"
#include "DIAG/releng_msgs.h"

#include <iterator>

namespace {

constexpr unsigned INTERNAL = 1;
constexpr unsigned FIXED = 2;

} // namespace

#define DIAG_MSGV(code, id, severity, flags, text, verbose)                                        \
    {code, text, verbose, dc_##severity, ((flags)&INTERNAL) != 0, ((flags)&FIXED) != 0},
#define DIAG_MSG(code, id, severity, flags, text)                                                  \
    DIAG_MSGV(code, id, severity, flags, text, nullptr)
DIAG_INFO DIAG_INFO_ENTRY[] = {
#include "DIAG/tables/gen.def"

#include "DIAG/tables/elnk.def"

#include "DIAG/tables/fcompat.def"

#include "DIAG/tables/releng.def"

#include "DIAG/tables/cpp.def"

#include "DIAG/tables/optgen.def"

#include "DIAG/tables/misc.def"
    {0, nullptr, nullptr, dc_SUPPRESSED, false, false}};
#undef DIAG_MSG
#undef DIAG_MSGV

namespace DIAG {

DIAG_INFO* const GEN_ROWS::first = DIAG_INFO_ENTRY;
DIAG_INFO* const ELNK_ROWS::first = DIAG_INFO_ENTRY + GEN_ROWS::COUNT;
DIAG_INFO* const FCOMPAT_ROWS::first = DIAG_INFO_ENTRY + GEN_ROWS::COUNT + ELNK_ROWS::COUNT;
DIAG_INFO* const RELENG_ROWS::first =
    DIAG_INFO_ENTRY + GEN_ROWS::COUNT + ELNK_ROWS::COUNT + FCOMPAT_ROWS::COUNT;
DIAG_INFO* const CPP_ROWS::first =
    DIAG_INFO_ENTRY + GEN_ROWS::COUNT + ELNK_ROWS::COUNT + FCOMPAT_ROWS::COUNT + RELENG_ROWS::COUNT;
DIAG_INFO* const OPTGEN_ROWS::first = DIAG_INFO_ENTRY + GEN_ROWS::COUNT + ELNK_ROWS::COUNT +
                                      FCOMPAT_ROWS::COUNT + RELENG_ROWS::COUNT + CPP_ROWS::COUNT;
DIAG_INFO* const MISC_ROWS::first = DIAG_INFO_ENTRY + GEN_ROWS::COUNT + ELNK_ROWS::COUNT +
                                    FCOMPAT_ROWS::COUNT + RELENG_ROWS::COUNT + CPP_ROWS::COUNT +
                                    OPTGEN_ROWS::COUNT;

namespace {

struct CODE_RANGE {
    int low;
    int high;
};

/// True if the codes ascend and lie within the component's range.
template <size_t N>
constexpr bool codes_fit(const int (&codes)[N], CODE_RANGE range) {
    for (size_t i = 0; i < N; i++)
        if (codes[i] < range.low || codes[i] > range.high || (i != 0 && codes[i] <= codes[i - 1]))
            return false;
    return true;
}

/// True if every text consists of words and known conversions.
template <class ROWS>
constexpr bool texts_parse() {
    for (unsigned row = 0; row < ROWS::COUNT; row++)
        if (!conversions(ROWS::texts[row], ROWS::verbose_texts[row]).valid) return false;
    return true;
}

#define DIAG_MSGV(code, id, severity, flags, text, verbose) code,
#define DIAG_MSG(code, id, severity, flags, text) code,
constexpr int gen_codes[] = {
#include "DIAG/tables/gen.def"
};
constexpr int elnk_codes[] = {
#include "DIAG/tables/elnk.def"
};
constexpr int fcompat_codes[] = {
#include "DIAG/tables/fcompat.def"
};
constexpr int releng_codes[] = {
#include "DIAG/tables/releng.def"
};
constexpr int cpp_codes[] = {
#include "DIAG/tables/cpp.def"
};
constexpr int optgen_codes[] = {
#include "DIAG/tables/optgen.def"
};
constexpr int misc_codes[] = {
#include "DIAG/tables/misc.def"
};
#undef DIAG_MSG
#undef DIAG_MSGV

static_assert(codes_fit(gen_codes, {6000, 6007}) && texts_parse<GEN_ROWS>());
static_assert(codes_fit(elnk_codes, {10000, 10457}) && texts_parse<ELNK_ROWS>());
static_assert(codes_fit(fcompat_codes, {16000, 16041}) && texts_parse<FCOMPAT_ROWS>());
static_assert(codes_fit(releng_codes, {17000, 17012}) && texts_parse<RELENG_ROWS>());
static_assert(codes_fit(cpp_codes, {19000, 19041}) && texts_parse<CPP_ROWS>());
static_assert(codes_fit(optgen_codes, {24000, 24044}) && texts_parse<OPTGEN_ROWS>());
static_assert(codes_fit(misc_codes, {99900, 99927}) && texts_parse<MISC_ROWS>());

} // namespace

} // namespace DIAG
