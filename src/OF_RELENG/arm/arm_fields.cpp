// Packing and unpacking of ARM and Thumb instruction fields, one pair per encoding.
#include "OF_RELENG/arm/arm_fields.h"

#include <bit>

#include "OBJEDIT04/ofe/of_types.h"

namespace OFE {

namespace {

// The sign of an address offset: bit 23, U, set for a positive one.
constexpr unsigned U_BIT = 23;

long magnitude(uint32_t word, long value) {
    return bits(word, U_BIT, U_BIT) ? value : -value;
}

// ADD and SUB of immediates differ in the opcode: bits 23-22 are 2 for ADD, 1 for SUB.
constexpr uint32_t ALU_SUB = 1;

long get_arm_alu(uint32_t word) {
    uint32_t imm = std::rotr(bits(word, 7, 0), static_cast<int>(2 * bits(word, 11, 8)));
    return bits(word, 23, 22) == ALU_SUB ? -static_cast<long>(imm) : static_cast<long>(imm);
}

// A BLX (the opcode byte is 0xFA or 0xFB) has one more bit of offset, H, at bit 24.
long get_arm_branch(uint32_t word) {
    long value = static_cast<long>(bits(word, 23, 0)) * 2;
    return bits(word, 31, 25) == 0x7D ? value + bits(word, 24, 24) : value;
}

long get_thumb_branch24(uint32_t pair) {
    uint32_t s = bits(pair, 26, 26);
    uint32_t i1 = bits(pair, 13, 13) == s, i2 = bits(pair, 11, 11) == s;
    return static_cast<long>(s << 23 | i1 << 22 | i2 << 21 | bits(pair, 25, 16) << 11 |
                             bits(pair, 10, 0));
}

long get_thumb_branch19(uint32_t pair) {
    return static_cast<long>(bits(pair, 26, 26) << 19 | bits(pair, 11, 11) << 18 |
                             bits(pair, 13, 13) << 17 | bits(pair, 21, 16) << 11 |
                             bits(pair, 10, 0));
}

long get_thumb_movw(uint32_t pair) {
    return static_cast<long>(bits(pair, 19, 16) << 12 | bits(pair, 26, 26) << 11 |
                             bits(pair, 14, 12) << 8 | bits(pair, 7, 0));
}

uint32_t put_thumb_movw(uint32_t pair, long value) {
    uint64_t v = static_cast<uint64_t>(value);
    pair = with_bits(pair, 19, 16, v >> 12);
    pair = with_bits(pair, 26, 26, v >> 11);
    pair = with_bits(pair, 14, 12, v >> 8);
    return with_bits(pair, 7, 0, v);
}

// ADR.W: a 12-bit magnitude in i:imm3:imm8; for SUB the bits 23 and 21 are set.
long get_thumb_alu(uint32_t pair) {
    long value =
        static_cast<long>(bits(pair, 26, 26) << 11 | bits(pair, 14, 12) << 8 | bits(pair, 7, 0));
    return bits(pair, 23, 23) && bits(pair, 21, 21) ? -value : value;
}

uint32_t put_thumb_alu(uint32_t pair, long value) {
    uint64_t v = static_cast<uint64_t>(value < 0 ? -value : value);
    pair = with_bits(pair, 26, 26, v >> 11);
    pair = with_bits(pair, 14, 12, v >> 8);
    pair = with_bits(pair, 7, 0, v);
    pair = with_bits(pair, 23, 23, value < 0);
    return with_bits(pair, 21, 21, value < 0);
}

// An address offset: the magnitude in the field, the sign in U.
uint32_t put_ldr(uint32_t word, long value) {
    word = with_bits(word, U_BIT, U_BIT, value >= 0);
    return with_bits(word, 11, 0, static_cast<uint64_t>(value < 0 ? -value : value));
}

uint32_t put_ldrs(uint32_t word, long value) {
    uint64_t v = static_cast<uint64_t>(value < 0 ? -value : value);
    word = with_bits(word, U_BIT, U_BIT, value >= 0);
    return with_bits(with_bits(word, 11, 8, v >> 4), 3, 0, v);
}

uint32_t put_ldc(uint32_t word, long value) {
    word = with_bits(word, U_BIT, U_BIT, value >= 0);
    return with_bits(word, 7, 0, static_cast<uint64_t>(value < 0 ? -value : value));
}

uint64_t get_container(const uint8_t* p, unsigned bytes, bool big) {
    uint64_t v = 0;
    for (unsigned i = 0; i < bytes; ++i) v = v << 8 | p[big ? i : bytes - 1 - i];
    return v;
}

void put_container(uint8_t* p, unsigned bytes, bool big, uint64_t v) {
    for (unsigned i = 0; i < bytes; ++i)
        p[big ? bytes - 1 - i : i] = static_cast<uint8_t>(v >> (8 * i));
}

uint64_t field_mask(unsigned size) {
    return size >= 64 ? ~uint64_t{0} : (uint64_t{1} << size) - 1;
}

} // namespace

uint32_t get_arm(const uint8_t* p, bool big) {
    return read_u32(p, big);
}
void put_arm(uint8_t* p, bool big, uint32_t word) {
    write_u32(p, word, big);
}

uint32_t get_thumb32(const uint8_t* p, bool big) {
    return static_cast<uint32_t>(read_u16(p, big)) << 16 | read_u16(p + 2, big);
}

void put_thumb32(uint8_t* p, bool big, uint32_t pair) {
    write_u16(p, static_cast<uint16_t>(pair >> 16), big);
    write_u16(p + 2, static_cast<uint16_t>(pair), big);
}

uint32_t put_thumb_branch24(uint32_t pair, long value, bool wide) {
    uint64_t v = static_cast<uint64_t>(value);
    uint32_t s = bits(v, 23, 23);
    uint32_t j1 = wide ? bits(v, 22, 22) ^ s ^ 1 : 1;
    uint32_t j2 = wide ? bits(v, 21, 21) ^ s ^ 1 : 1;
    pair = with_bits(pair, 26, 26, s);
    pair = with_bits(pair, 25, 16, v >> 11);
    pair = with_bits(pair, 13, 13, j1);
    pair = with_bits(pair, 11, 11, j2);
    return with_bits(pair, 10, 0, v);
}

uint32_t put_thumb_branch19(uint32_t pair, long value) {
    uint64_t v = static_cast<uint64_t>(value);
    pair = with_bits(pair, 26, 26, v >> 19);
    pair = with_bits(pair, 21, 16, v >> 11);
    pair = with_bits(pair, 11, 11, v >> 18);
    pair = with_bits(pair, 13, 13, v >> 17);
    return with_bits(pair, 10, 0, v);
}

long get_field(const OF_RELOC_TEMPLATE& rel, const uint8_t* p, bool big) {
    switch (rel.encoding) {
    case OFRC_GENERIC:
        return static_cast<long>(get_container(p, rel.container_bytes(), big) >> rel.field_offset &
                                 field_mask(rel.field_size));
    case OFRC_ARM_BRANCH25:
        return get_arm_branch(get_arm(p, big));
    case OFRC_ARM_LDR: {
        uint32_t word = get_arm(p, big);
        return magnitude(word, static_cast<long>(bits(word, 11, 0)));
    }
    case OFRC_ARM_LDRS: {
        uint32_t word = get_arm(p, big);
        return magnitude(word, static_cast<long>(bits(word, 11, 8) << 4 | bits(word, 3, 0)));
    }
    case OFRC_ARM_LDC: {
        uint32_t word = get_arm(p, big);
        return magnitude(word, static_cast<long>(bits(word, 7, 0)));
    }
    case OFRC_ARM_ALU:
        return get_arm_alu(get_arm(p, big));
    case OFRC_ARM_MOVW: {
        uint32_t word = get_arm(p, big);
        return static_cast<long>(bits(word, 19, 16) << 12 | bits(word, 11, 0));
    }
    case OFRC_THM_BRANCH11:
        return static_cast<long>(bits(read_u16(p, big), 10, 0));
    case OFRC_THM_CZB: {
        uint32_t half = read_u16(p, big);
        return static_cast<long>(bits(half, 9, 9) << 5 | bits(half, 7, 3));
    }
    case OFRC_THM_MOVW:
        return get_thumb_movw(get_thumb32(p, big));
    case OFRC_THM2_BRANCH19:
        return get_thumb_branch19(get_thumb32(p, big));
    case OFRC_THM2_BRANCH24:
        return get_thumb_branch24(get_thumb32(p, big));
    case OFRC_THM2_ALU:
        return get_thumb_alu(get_thumb32(p, big));
    case OFRC_THM2_LDR: {
        uint32_t pair = get_thumb32(p, big);
        return magnitude(pair, static_cast<long>(bits(pair, 11, 0)));
    }
    }
    return 0;
}

void put_field(const OF_RELOC_TEMPLATE& rel, uint8_t* p, bool big, long value) {
    uint64_t v = static_cast<uint64_t>(value);
    switch (rel.encoding) {
    case OFRC_GENERIC: {
        uint64_t mask = field_mask(rel.field_size) << rel.field_offset;
        uint64_t old = get_container(p, rel.container_bytes(), big);
        put_container(p, rel.container_bytes(), big,
                      (old & ~mask) | (v << rel.field_offset & mask));
        break;
    }
    case OFRC_ARM_BRANCH25:
        put_arm(p, big, with_bits(get_arm(p, big), 23, 0, v >> 1));
        break;
    case OFRC_ARM_LDR:
        put_arm(p, big, put_ldr(get_arm(p, big), value));
        break;
    case OFRC_ARM_LDRS:
        put_arm(p, big, put_ldrs(get_arm(p, big), value));
        break;
    case OFRC_ARM_LDC:
        put_arm(p, big, put_ldc(get_arm(p, big), value));
        break;
    case OFRC_ARM_ALU: { // what fits in 8 bits; see mask_for_group for more
        uint32_t word = with_bits(get_arm(p, big), 23, 22, value < 0 ? ALU_SUB : 2);
        put_arm(p, big,
                with_bits(word, 11, 0, static_cast<uint64_t>(value < 0 ? -value : value) & 0xFF));
        break;
    }
    case OFRC_ARM_MOVW:
        put_arm(p, big, with_bits(with_bits(get_arm(p, big), 19, 16, v >> 12), 11, 0, v));
        break;
    case OFRC_THM_BRANCH11:
        write_u16(p, static_cast<uint16_t>(with_bits(read_u16(p, big), 10, 0, v)), big);
        break;
    case OFRC_THM_CZB:
        write_u16(
            p, static_cast<uint16_t>(with_bits(with_bits(read_u16(p, big), 9, 9, v >> 5), 7, 3, v)),
            big);
        break;
    case OFRC_THM_MOVW:
        put_thumb32(p, big, put_thumb_movw(get_thumb32(p, big), value));
        break;
    case OFRC_THM2_BRANCH19:
        put_thumb32(p, big, put_thumb_branch19(get_thumb32(p, big), value));
        break;
    case OFRC_THM2_BRANCH24:
        put_thumb32(p, big, put_thumb_branch24(get_thumb32(p, big), value, true));
        break;
    case OFRC_THM2_ALU:
        put_thumb32(p, big, put_thumb_alu(get_thumb32(p, big), value));
        break;
    case OFRC_THM2_LDR:
        put_thumb32(p, big, put_ldr(get_thumb32(p, big), value));
        break;
    }
}

unsigned alu_mask_offset(uint64_t value, unsigned align) {
    if (value <= 0xFF) return 0;
    unsigned low = static_cast<unsigned>(std::bit_width(value)) - 8;
    return (low + align - 1) / align * align;
}

namespace {

// The place of a relocation in its group, and whether it concludes the group.
struct GROUP {
    unsigned number;
    bool concludes;
};

bool group_of(uint32_t id, GROUP& group) {
    switch (id) {
    case OFR_ARM_ALU_PC_G0_NC:
    case OFR_ARM_ALU_SB_G0_NC:
        group = {0, false};
        return true;
    case OFR_ARM_ALU_PC_G1_NC:
    case OFR_ARM_ALU_SB_G1_NC:
        group = {1, false};
        return true;
    case OFR_ARM_ALU_PC_G0:
    case OFR_ARM_ALU_SB_G0:
    case OFR_ARM_LDR_PC_G0:
    case OFR_ARM_LDR_SB_G0:
    case OFR_ARM_LDRS_PC_G0:
    case OFR_ARM_LDRS_SB_G0:
    case OFR_ARM_LDC_PC_G0:
    case OFR_ARM_LDC_SB_G0:
        group = {0, true};
        return true;
    case OFR_ARM_ALU_PC_G1:
    case OFR_ARM_ALU_SB_G1:
    case OFR_ARM_LDR_PC_G1:
    case OFR_ARM_LDR_SB_G1:
    case OFR_ARM_LDRS_PC_G1:
    case OFR_ARM_LDRS_SB_G1:
    case OFR_ARM_LDC_PC_G1:
    case OFR_ARM_LDC_SB_G1:
        group = {1, true};
        return true;
    case OFR_ARM_ALU_PC_G2:
    case OFR_ARM_ALU_SB_G2:
    case OFR_ARM_LDR_PC_G2:
    case OFR_ARM_LDR_SB_G2:
    case OFR_ARM_LDRS_PC_G2:
    case OFR_ARM_LDRS_SB_G2:
    case OFR_ARM_LDC_PC_G2:
    case OFR_ARM_LDC_SB_G2:
        group = {2, true};
        return true;
    default:
        return false;
    }
}

} // namespace

uint64_t mask_for_group(uint32_t template_id, uint64_t value) {
    switch (template_id) {
    case OFR_ARM_LDR_SBREL_11_0_NC:
        return value & 0xFFF;
    case OFR_ARM_ALU_SBREL_19_12_NC:
        return value & 0xFF000;
    case OFR_ARM_ALU_SBREL_27_20_CK:
        return value & ~uint64_t{0xFFFFF};
    default:
        break;
    }
    GROUP group;
    if (!group_of(template_id, group)) return value;
    uint64_t rest = value, chunk = 0;
    unsigned taken = group.concludes ? group.number : group.number + 1;
    for (unsigned i = 0; i < taken; ++i) {
        chunk = rest & uint64_t{0xFF} << alu_mask_offset(rest, 2);
        rest &= ~chunk;
    }
    return group.concludes ? rest : chunk;
}

} // namespace OFE
