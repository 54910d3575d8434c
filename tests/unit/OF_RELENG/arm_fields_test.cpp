// Instruction fields against words that an assembler made, in both byte orders, and what must hold
// for every encoding.
#include "OF_RELENG/arm/arm_fields.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "OBJEDIT04/ofe/of_types.h"

using namespace OFE;

namespace {

bool is_thumb32(const OF_RELOC_TEMPLATE& rel) {
    switch (rel.encoding) {
    case OFRC_THM_MOVW:
    case OFRC_THM2_BRANCH19:
    case OFRC_THM2_BRANCH24:
    case OFRC_THM2_ALU:
    case OFRC_THM2_LDR:
        return true;
    default:
        return false;
    }
}

// An instruction as it lies in memory: a word, a halfword, or two halfwords with the first one in
// the upper half.
class CODE {
  public:
    CODE(const OF_RELOC_TEMPLATE& rel, uint32_t code, bool big) : rel_(rel), big_(big) {
        if (rel.container_size == 16)
            write_u16(bytes_.data(), static_cast<uint16_t>(code), big);
        else if (rel.container_size == 8)
            bytes_[0] = static_cast<uint8_t>(code);
        else if (is_thumb32(rel))
            put_thumb32(bytes_.data(), big, code);
        else
            put_arm(bytes_.data(), big, code);
    }
    uint32_t code() const {
        if (rel_.container_size == 16) return read_u16(bytes_.data(), big_);
        if (rel_.container_size == 8) return bytes_[0];
        return is_thumb32(rel_) ? get_thumb32(bytes_.data(), big_) : get_arm(bytes_.data(), big_);
    }
    void put(long value) { put_field(rel_, bytes_.data(), big_, value); }
    long get() const { return get_field(rel_, bytes_.data(), big_); }
    long get_signed() const { return sign_extend(get(), rel_.field_size); }

  private:
    const OF_RELOC_TEMPLATE& rel_;
    bool big_;
    std::array<uint8_t, 4> bytes_{};
};

struct WORD_ROW {
    OF_RELOC_ID id;
    uint32_t before; // the instruction with another operand
    long value;      // in units of the scale
    uint32_t after;
};

constexpr WORD_ROW WORDS[] = {
    {OFR_RELLONG, 0, 0x12345678, 0x12345678},
    {OFR_RELWORD, 0, 0xABCD, 0xABCD},
    {OFR_ARM_ABS8, 0, 0x7F, 0x7F},
    {OFR_ARM_PREL31, 0x80000000, -4, 0xFFFFFFFC}, // bit 31 is not of the field
    {OFR_ARM_PREL31, 0x00000000, -4, 0x7FFFFFFC},
    {OFR_ARM_CALL, 0xEB123456, 0x1FF8 / 2, 0xEB0007FE},
    {OFR_ARM_JUMP24, 0xEA000000, -0x40 / 2, 0xEAFFFFF0},
    {OFR_ARM_MOVW_ABS_NC, 0xE3001000, 0xABCD, 0xE30A1BCD},
    {OFR_ARM_MOVT_ABS, 0xE3402000, 0x1234, 0xE3412234},
    {OFR_ARM_LDR_PC_G0, 0xE51F0000, 0x123, 0xE59F0123},
    {OFR_ARM_LDR_PC_G0, 0xE59F0000, -0x123, 0xE51F0123},
    {OFR_ARM_LDRS_PC_G0, 0xE15F00B0, 0x5A, 0xE1DF05BA},
    {OFR_ARM_LDRS_PC_G0, 0xE1DF00B0, -0x5A, 0xE15F05BA},
    {OFR_ARM_LDC_PC_G0, 0xED1F2100, 0x40 / 4, 0xED9F2110},
    {OFR_ARM_THM_CALL, 0xF000F800, 0x123456 / 2, 0xF123FA2B},
    {OFR_ARM_THM_CALL, 0xF000F800, -0x123456 / 2, 0xF6DCFDD5},
    {OFR_ARM_THM_JUMP24, 0xF000B800, 0x800000 / 2, 0xF0009800},
    {OFR_ARM_THM_JUMP19, 0xF0408000, 0x12344 / 2, 0xF05281A2},
    {OFR_ARM_THM_JUMP19, 0xF0408000, -0x12344 / 2, 0xF46DAE5E},
    {OFR_ARM_THM_JUMP11, 0xE000, -2, 0xE7FE},
    {OFR_ARM_THM_JUMP8, 0xD100, -2, 0xD1FE},
    {OFR_ARM_THM_JUMP6, 0xB100, 0x28 / 2, 0xB1A0},
    {OFR_ARM_THM_MOVW_ABS_NC, 0xF2400100, 0xABCD, 0xF64A31CD},
    {OFR_ARM_THM_MOVT_ABS, 0xF2C00200, 0x1234, 0xF2C12234},
    {OFR_ARM_THM_ALU_PREL_11_0, 0xF20F0000, -4, 0xF2AF0004},
    {OFR_ARM_THM_ALU_PREL_11_0, 0xF2AF0000, 0x123, 0xF20F1023},
    {OFR_ARM_THM_PC12, 0xF85F0000, 0x123, 0xF8DF0123},
};

TEST(ArmFields, are_those_that_the_assembler_writes) {
    for (bool big : {false, true})
        for (const WORD_ROW& row : WORDS) {
            const OF_RELOC_TEMPLATE& rel = *reloc_template(row.id);
            CODE code(rel, row.before, big);
            code.put(row.value);
            EXPECT_EQ(code.code(), row.after)
                << rel.name << " of " << row.value << (big ? " big" : " little");
        }
}

TEST(ArmFields, read_back_what_was_written) {
    for (bool big : {false, true})
        for (const WORD_ROW& row : WORDS) {
            const OF_RELOC_TEMPLATE& rel = *reloc_template(row.id);
            long value = rel.overflow_kind == OFRO_SIGNED
                             ? row.value
                             : row.value & ((1L << rel.field_size) - 1);
            CODE code(rel, row.after, big);
            long got = rel.overflow_kind == OFRO_SIGNED ? code.get_signed() : code.get();
            EXPECT_EQ(got, value) << rel.name;
        }
}

// Signs live in a bit of their own here, so that the most negative number of the field's size has
// no encoding.
bool has_magnitude(const OF_RELOC_TEMPLATE& rel) {
    switch (rel.encoding) {
    case OFRC_ARM_LDR:
    case OFRC_ARM_LDRS:
    case OFRC_ARM_LDC:
    case OFRC_ARM_ALU:
    case OFRC_THM2_ALU:
    case OFRC_THM2_LDR:
        return true;
    default:
        return false;
    }
}

TEST(ArmFields, hold_the_limits_of_every_type_and_leave_other_bits_alone) {
    for (const OF_RELOC_TEMPLATE& rel : arm_reloc_templates()) {
        if (rel.is(OFRT_NO_ACTION) || rel.encoding == OFRC_ARM_ALU) continue;
        bool branch25 = rel.encoding == OFRC_ARM_BRANCH25; // bit 0 of the value is only BLX's
        long top = (1L << (rel.field_size - 1)) - 1, bottom = -top - 1;
        long even_top = branch25 ? top & ~1L : top;
        for (bool big : {false, true})
            for (long value :
                 {even_top, has_magnitude(rel) ? -top : bottom, 0L, branch25 ? 2L : 1L}) {
                for (uint32_t background : {0x00000000u, 0xE1B2C3D4u}) {
                    CODE code(rel, background, big);
                    uint32_t first = code.code();
                    long original = code.get();
                    code.put(value);
                    EXPECT_EQ(code.get_signed(), value) << rel.name;
                    code.put(original);
                    if (value != 0 && original != 0) {
                        EXPECT_EQ(code.code(), first) << rel.name;
                    }
                }
            }
    }
}

TEST(ArmFields, narrow_thumb_calls_set_j1_and_j2) {
    EXPECT_EQ(put_thumb_branch24(0xF000F800, 0x1FFFFF, false), 0xF3FFFFFFu);
    EXPECT_EQ(put_thumb_branch24(0xF000F800, -1, false), 0xF7FFFFFFu);
}

struct CHUNK_ROW {
    OF_RELOC_ID id;
    uint64_t value;
    uint64_t chunk;
};

// 0x12345678 in chunks of eight bits at even positions: 0x12000000, 0x344000, 0x1640, 0x38.
constexpr CHUNK_ROW CHUNKS[] = {
    {OFR_ARM_ALU_PC_G0_NC, 0x12345678, 0x12000000},
    {OFR_ARM_ALU_PC_G1_NC, 0x12345678, 0x00344000},
    {OFR_ARM_ALU_PC_G0, 0x12345678, 0x12345678},
    {OFR_ARM_ALU_PC_G1, 0x12345678, 0x00345678},
    {OFR_ARM_ALU_PC_G2, 0x12345678, 0x00001678},
    {OFR_ARM_LDR_PC_G1, 0x12000FFF, 0x00000FFF},
    {OFR_ARM_LDR_PC_G2, 0x12344FFF, 0x00000FFF},
    {OFR_ARM_LDR_SBREL_11_0_NC, 0x12345678, 0x678},
    {OFR_ARM_ALU_SBREL_19_12_NC, 0x12345678, 0x45000},
    {OFR_ARM_ALU_SBREL_27_20_CK, 0x12345678, 0x12300000},
    {OFR_ARM_ALU_PC_G0_NC, 0, 0},
};

TEST(ArmGroups, take_the_highest_chunk_first) {
    for (const CHUNK_ROW& row : CHUNKS)
        EXPECT_EQ(mask_for_group(row.id, row.value), row.chunk) << reloc_template(row.id)->name;
}

TEST(ArmGroups, chunks_start_at_even_positions) {
    EXPECT_EQ(alu_mask_offset(0xFF, 2), 0u);
    EXPECT_EQ(alu_mask_offset(0x100, 2), 2u);
    EXPECT_EQ(alu_mask_offset(0x3FF, 2), 2u);
    EXPECT_EQ(alu_mask_offset(0x400, 2), 4u);
    EXPECT_EQ(alu_mask_offset(0xFFFFFFFF, 2), 24u);
}

} // namespace
