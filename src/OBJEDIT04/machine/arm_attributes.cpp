// ARM's build attributes: which tags there are, what follows each, and what values mean.
#include <cstring>

#include "OBJEDIT04/attributes/build_attr_tag.h"
#include "OBJEDIT04/machine/arm_machine_db.h"
#include "UTIL/savestr.h"

namespace OFE {

namespace {

constexpr bool AEABI = false, QV = true;
constexpr unsigned TAG_CPU_NAME = 5, TAG_CPU_ARCH = 6, TAG_COMPATIBILITY = 32;
constexpr unsigned TAG_QV_ISA = 258, TAG_QV_ARM_MODE = 320, TAG_QV_THUMB_MODE = 322;

struct TAG_ROW {
    bool qv;
    unsigned number;
    const char* name;
};
constexpr TAG_ROW TAGS[] = {
#define ARM_TAG(vendor, number, name) {vendor, number, name},
#include "OBJEDIT04/machine/arm_tags.def"
};

struct VALUE_ROW {
    bool qv;
    unsigned number;
    unsigned value;
    const char* text;
};
constexpr VALUE_ROW VALUES[] = {
#define ARM_TAG_VALUE(vendor, number, value, text) {vendor, number, value, text},
#include "OBJEDIT04/machine/arm_tags.def"
};

constexpr bool ascending() {
    auto less = [](bool qv, unsigned a, unsigned b, bool qv2, unsigned a2, unsigned b2) {
        return qv != qv2 ? qv < qv2 : a != a2 ? a < a2 : b < b2;
    };
    for (unsigned i = 1; i < std::size(TAGS); ++i)
        if (!less(TAGS[i - 1].qv, TAGS[i - 1].number, 0, TAGS[i].qv, TAGS[i].number, 0))
            return false;
    for (unsigned i = 1; i < std::size(VALUES); ++i)
        if (!less(VALUES[i - 1].qv, VALUES[i - 1].number, VALUES[i - 1].value, VALUES[i].qv,
                  VALUES[i].number, VALUES[i].value))
            return false;
    return true;
}
static_assert(ascending());

// Which of the two vendors with rows; -1 for any other.
int rows_of(const char* vendor) {
    return std::strcmp(vendor, OFBA_VENDOR_AEABI) == 0 ? AEABI
           : std::strcmp(vendor, OFBA_VENDOR_QV) == 0  ? QV
                                                       : -1;
}

} // namespace

void ARM_MACHINE_DB::of_build_tag_hash(OFBA_TAG_MAP* tags) {
    int rows = rows_of(tags->vendor());
    for (const TAG_ROW& row : TAGS)
        if (row.qv == rows) tags->add(row.number, row.name, this);
}

bool ARM_MACHINE_DB::ofba_arg_types(const OFBA_TAG* tag, OFBA_AVAL_TYPE& type) {
    constexpr unsigned FIRST_LISTED = 4;
    if (rows_of(tag->vendor) != AEABI || tag->number < FIRST_LISTED) return false;
    if (tag->number <= TAG_CPU_NAME)
        type = OFBA_AVAL_TEXT;
    else if (tag->number < TAG_COMPATIBILITY)
        type = OFBA_AVAL_INT;
    else if (tag->number == TAG_COMPATIBILITY)
        type = OFBA_AVAL_INT_TEXT;
    else
        type = tag->number & 1 ? OFBA_AVAL_TEXT : OFBA_AVAL_INT;
    return true;
}

bool ARM_MACHINE_DB::of_tag_value(const OFBA_TAG* tag, OFBA_AVAL value, const char*& text) {
    if (OF_MACHINE_DB::of_tag_value(tag, value, text)) return true;
    int rows = rows_of(tag->vendor);
    for (const VALUE_ROW& row : VALUES)
        if (row.qv == rows && row.number == tag->number && row.value == value.uval) {
            text = row.text;
            return true;
        }
    bool is_version = tag->number == (rows == QV ? TAG_QV_ISA : TAG_CPU_ARCH);
    const char* name = isa_version_name(value.uval);
    if (rows >= 0 && is_version && name != isa_version_name(0))
        text = name;
    else if (rows == QV && (tag->number == TAG_QV_ARM_MODE || tag->number == TAG_QV_THUMB_MODE))
        text = savestrf("%u # input files built in this mode", value.uval);
    else
        text = savestrf("%u", value.uval);
    return true;
}

} // namespace OFE
