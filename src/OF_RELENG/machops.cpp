// Base behaviour of the machine operations, and the machines there are.
#include "OF_RELENG/machops.h"

#include "OF_RELENG/arm/arm_machops.h"
#include "OF_RELENG/releng.h"

namespace OFE {

bool OF_RELENG_MACHOPS::rel_skip(const RELOC_SITE& site) const {
    return site.rel->id == OFR_NONE || site.rel->id == OFR_ABS || site.rel->is(OFRT_NO_ACTION);
}

uint32_t OF_RELENG_MACHOPS::rel_addend_kind(const RELOC_SITE& site) const {
    return site.rel ? site.rel->overflow_kind : static_cast<uint32_t>(OFRO_NONE);
}

ARM_RELENG_MACHOPS* OF_RELENG_MACHOPS::ARM_api() {
    static ARM_RELENG_MACHOPS arm;
    return &arm;
}

OF_RELENG_MACHOPS* OF_RELENG_MACHOPS::of(OF_MACHINE machine) {
    return machine == OF_MACHINE_ARM ? ARM_api() : nullptr;
}

} // namespace OFE
