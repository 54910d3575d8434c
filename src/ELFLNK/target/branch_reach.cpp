// How far a branch reaches, from its relocation's field, and what a target without far calls
// answers.
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/machine/reloc_template.h"

void TARGET::get_rel_field_info(const OFE::OF_RELOC_TEMPLATE& rel, unsigned& bits, unsigned& shift,
                                unsigned& bias, uint64_t& mask) const {
    bits = rel.field_size;
    shift = rel.scale;
    bias = 0;
    mask = rel.pc_mask;
}

void TARGET::get_reachable_range(uint64_t pc, const OFE::OF_RELOC_TEMPLATE& rel, uint64_t& lo,
                                 uint64_t& hi) const {
    unsigned bits = 0;
    unsigned shift = 0;
    unsigned bias = 0;
    uint64_t mask = 0;
    get_rel_field_info(rel, bits, shift, bias, mask);
    const uint64_t half = bits != 0 ? uint64_t{1} << (bits - 1) : 0;
    const uint64_t at = pc & mask;
    const uint64_t back = (half << shift) - bias;
    const uint64_t ahead = ((half - 1) << shift) + bias;
    lo = at < back ? 0 : at - back;
    hi = ahead > ~at ? ~uint64_t{0} : at + ahead;
}

bool TARGET::call_may_change_state(SECTION*, const OFE::OF_RELOC_TEMPLATE&, uint32_t, SECTION*,
                                   uint64_t, bool) const {
    return false;
}

int64_t TARGET::call_displacement(const TRAMP_CALL_SITE*, const int*) const {
    return 0;
}

TRAMP_CALL_SITE* TARGET::new_TRAMP_CALL_SITE(SECTION*, const OFE::OF_RELOC_TYPE*, uint32_t) {
    return nullptr;
}

TRAMP_CALLEE* TARGET::new_TRAMP_CALLEE(SECTION*, uint64_t) {
    return nullptr;
}

TRAMPOLINE* TARGET::new_TRAMPOLINE(TRAMP_CALLEE*, OBJ_FILE*, const char*) {
    return nullptr;
}
