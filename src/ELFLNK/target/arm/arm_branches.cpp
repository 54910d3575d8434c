// What ARM answers about branches: their reach, their states, where they lead.
#include "ELFLNK/target/arm/arm_target.h"
#include "ELFLNK/target/arm/arm_trampoline.h"
#include "OBJEDIT04/machine/reloc_type.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OF_RELENG/arm/arm_fields.h"
#include "OF_RELENG/arm/arm_machops.h"

using namespace OFE;

void ARM_TARGET::get_rel_field_info(const OF_RELOC_TEMPLATE& rel, unsigned& bits, unsigned& shift,
                                    unsigned& bias, uint64_t& mask) const {
    constexpr unsigned NARROW_BL = 22; // before the two bits J1 and J2 came into use
    TARGET::get_rel_field_info(rel, bits, shift, bias, mask);
    bias = static_cast<unsigned>(ARM_RELENG_MACHOPS::reltype_call_bias(rel));
    if (rel.id == OFR_ARM_THM_CALL && arm_output_isa_version() < ISA_V6T2) bits = NARROW_BL;
}

// BL may become BLX, which counts from the word that its place is in.
void ARM_TARGET::get_reachable_range(uint64_t pc, const OF_RELOC_TEMPLATE& rel, uint64_t& lo,
                                     uint64_t& hi) const {
    TARGET::get_reachable_range(pc, rel, lo, hi);
    if (rel.id != OFR_ARM_THM_CALL) return;
    uint64_t unused = 0;
    TARGET::get_reachable_range(pc & ~uint64_t{1}, rel, lo, unused);
    TARGET::get_reachable_range(pc & ~uint64_t{3}, rel, unused, hi);
}

int ARM_TARGET::call_bias(const OF_RELOC_TEMPLATE& rel) const {
    return ARM_RELENG_MACHOPS::reltype_call_bias(rel);
}

bool ARM_TARGET::call_may_change_state(SECTION* from, const OF_RELOC_TEMPLATE& rel, uint32_t at,
                                       SECTION* to, uint64_t offset, bool odd) const {
    const ARM_TYPES::SECTION_MODE state = arm_branch_state(rel);
    if (state == ARM_TYPES::SM_UNKNOWN) return true; // reported when the site is made
    if (odd && state == ARM_TYPES::SM_THUMB) return false;
    if (arm_branch_may_become_blx(from, rel, at)) return false;
    return odd || arm_state_at(to, offset) != state;
}

int64_t ARM_TARGET::call_displacement(const TRAMP_CALL_SITE* site, const int* addend) const {
    const OF_RELOC_TEMPLATE& rel = *site->reloc_type()->rel_template;
    const int bias = ARM_RELENG_MACHOPS::reltype_call_bias(rel);
    if (addend != nullptr) return int64_t{*addend} + bias;
    OF_SECTION* input = site->section()->OF_SECTION_api();
    const OF_BYTES bytes = input->bytes();
    if (bytes.size < 4 || site->offset() > bytes.size - 4) return 0;
    const bool big = input->ofile()->machine_db()->of_section_endian(input) == OF_ENDIAN_BIG;
    const long field = get_field(rel, bytes.data + site->offset(), big);
    return sign_extend(field, rel.field_size) * (1L << rel.scale) + bias;
}

TRAMP_CALL_SITE* ARM_TARGET::new_TRAMP_CALL_SITE(SECTION* section, const OF_RELOC_TYPE* type,
                                                 uint32_t offset) {
    return new_ARM_TRAMP_CALL_SITE(section, type, offset);
}

TRAMP_CALLEE* ARM_TARGET::new_TRAMP_CALLEE(SECTION* section, uint64_t offset) {
    return new ARM_TRAMP_CALLEE(section, offset);
}

TRAMPOLINE* ARM_TARGET::new_TRAMPOLINE(TRAMP_CALLEE* callee, OBJ_FILE* file, const char* name) {
    return new ARM_TRAMPOLINE(callee, file, name);
}
