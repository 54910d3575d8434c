// The instruction fields that relocations fill, as pure functions over bytes: no symbols, no
// messages. Values are in units of the template's scale. A Thumb instruction of 32 bits is two
// halfwords, each in the section's byte order; hw1 is the first. Bit positions are those of the
// architecture manual.
#pragma once

#include <cstdint>

#include "OBJEDIT04/machine/reloc_template.h"

namespace OFE {

inline constexpr uint32_t ARM_NOP = 0xE1A00000; // mov r0, r0
inline constexpr uint16_t THUMB_NOP = 0x46C0;   // mov r8, r8
inline constexpr uint16_t THUMB2_NOP = 0xBF00;  // nop, from v6T2 on
inline constexpr unsigned ISA_V5T = 3;          // numbers of the ABI's architecture tag
inline constexpr unsigned ISA_V6T2 = 8;

// The bits hi..lo of v, at bit 0.
constexpr uint32_t bits(uint64_t v, unsigned hi, unsigned lo) {
    return static_cast<uint32_t>((v >> lo) & ((uint64_t{1} << (hi - lo + 1)) - 1));
}
// `word` with its bits hi..lo replaced by the low bits of v.
constexpr uint32_t with_bits(uint32_t word, unsigned hi, unsigned lo, uint64_t v) {
    uint32_t mask = static_cast<uint32_t>(((uint64_t{1} << (hi - lo + 1)) - 1) << lo);
    return (word & ~mask) | (static_cast<uint32_t>(v << lo) & mask);
}
// The low `width` bits of v as a signed number.
constexpr long sign_extend(long v, unsigned width) {
    if (width == 0 || width >= 64) return v;
    unsigned shift = 64 - width;
    return static_cast<long>(static_cast<unsigned long>(v) << shift) >> shift;
}

// The instruction at p: an ARM word, or hw1 in the upper and hw2 in the lower half for Thumb.
uint32_t get_arm(const uint8_t* p, bool big);
void put_arm(uint8_t* p, bool big, uint32_t word);
uint32_t get_thumb32(const uint8_t* p, bool big);
void put_thumb32(uint8_t* p, bool big, uint32_t pair);

// The field of the template's encoding as stored, not yet extended or scaled.
long get_field(const OF_RELOC_TEMPLATE& rel, const uint8_t* p, bool big);

// Stores a value that needs no decision into the field. Not for the branch and group encodings,
// whose packing looks at the symbol: those have functions of their own below.
void put_field(const OF_RELOC_TEMPLATE& rel, uint8_t* p, bool big, long value);

uint32_t put_thumb_branch24(uint32_t pair, long value, bool wide); // wide: J1 and J2 are in use
uint32_t put_thumb_branch19(uint32_t pair, long value);

// Group relocations: position of the highest 8 bits of a value, rounded up to a multiple of align.
unsigned alu_mask_offset(uint64_t value, unsigned align);
// What is left of a value for this relocation of its group.
uint64_t mask_for_group(uint32_t template_id, uint64_t value);

} // namespace OFE
