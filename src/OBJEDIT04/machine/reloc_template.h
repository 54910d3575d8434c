// What a relocation type means, apart from any file format: which field it fills, how the value is
// computed and checked. The rows are in relocations.def; ids, flags and the lookup by id are
// derived from it here.
#pragma once

#include <cstdint>
#include <span>

namespace OFE {

// Bits of OF_RELOC_TEMPLATE::flags.
enum OF_RELOC_TEMPLATE_FLAGS : uint32_t {
    OFRT_PCREL = 0x1,                  // PC-relative
    OFRT_UNARY = 0x2,                  // expression operator with one operand
    OFRT_SYMBOL = 0x4,                 // takes a symbol
    OFRT_OPERATOR = 0x8,               // expression operator
    OFRT_PUSH = 0x10,                  // pushes on the expression stack
    OFRT_LOAD_FIELD = 0x20,            // loads a field and pushes it
    OFRT_STORE_FIELD = 0x40,           // pops and stores to a field
    OFRT_NO_ACTION = 0x80,             // marker; nothing is relocated
    OFRT_FIELD_OP = 0x100,             // field operation
    OFRT_PUSH_CONST = 0x200,           // pushes a constant of the relocation
    OFRT_PUSH_PC = 0x400,              // pushes the place
    OFRT_HAS_DISP = 0x800,             // MOVT kind: a displacement is kept beside the instruction
    OFRT_CALL = 0x2000,                // call or branch: may go through a trampoline
    OFRT_NO_GENERIC_OVERFLOW = 0x4000, // no generic check: the packer checks, or nothing is checked
    OFRT_SBREL = 0x8000,               // relative to the static base
    OFRT_CHECK_SCALE = 0x10000,        // low bits dropped by the scale are reported
    OFRT_EXPRESSION = OFRT_OPERATOR | OFRT_PUSH | OFRT_FIELD_OP
};

// How a value may overflow its field.
enum OF_RELOC_OVERFLOW : uint32_t {
    OFRO_NONE = 0,     // never checked
    OFRO_SIGNED = 1,   // must fit as a signed number
    OFRO_UNSIGNED = 2, // must fit as an unsigned number
    OFRO_EITHER = 3    // one of the two
};

// The formula of a value, in the letters of relocations.def.
enum OF_RELOC_VALUE : uint8_t {
    OFRV_UNSUPPORTED,
    OFRV_A,
    OFRV_S_A,
    OFRV_S_A_T,
    OFRV_S_A_P,
    OFRV_S_A_P_T,
    OFRV_S_A_B,
    OFRV_S_A_B_T,
    OFRV_B_A_P,
    OFRV_B_A
};

// The instruction encoding that a value is packed into.
enum OF_RELOC_ENCODING : uint8_t {
    OFRC_GENERIC, // field_size bits at field_offset of the container
    OFRC_ARM_BRANCH25,
    OFRC_ARM_LDR,
    OFRC_ARM_LDRS,
    OFRC_ARM_LDC,
    OFRC_ARM_ALU,
    OFRC_ARM_MOVW,
    OFRC_THM_BRANCH11,
    OFRC_THM_CZB,
    OFRC_THM_MOVW,
    OFRC_THM2_BRANCH19,
    OFRC_THM2_BRANCH24,
    OFRC_THM2_ALU,
    OFRC_THM2_LDR
};

// The generic type numbers. ARM's rows are named OFR_ARM_ and the row's name.
enum OF_RELOC_ID : uint32_t {
    OFR_NOT_SUPPORTED = 0, // the linker does not know what the type asks for
    OFR_OBSOLETE = 1,      // the type is no longer in use
    OFR_RESERVED = 2,      // the number is set aside; no file has a use for it
    OFR_FIRST_TEMPLATE = 0x100,
#define RELOC_COMMON(id, name, ...) name = id,
#define RELOC_ARM(id, name, ...) OFR_ARM_##name = id,
#include "OBJEDIT04/machine/relocations.def"
};

struct OF_RELOC_TEMPLATE {
    uint32_t id;
    const char* name;
    uint32_t flags;          // OFRT_ bits
    uint32_t pc_mask;        // applied to the place of a PC-relative relocation
    uint32_t overflow_kind;  // OFRO_
    uint32_t field_size;     // bits
    uint32_t field_offset;   // bits from bit 0 of the container
    uint32_t container_size; // bits
    uint32_t scale;          // the value is shifted right by so many bits before it is packed
    OF_RELOC_VALUE value;
    OF_RELOC_ENCODING encoding;

    bool is(uint32_t flag) const { return (flags & flag) != 0; }
    bool pcrel() const { return is(OFRT_PCREL); }
    bool takes_symbol() const { return is(OFRT_SYMBOL); }
    unsigned container_bytes() const { return container_size / 8; }
};

// The rows of every processor and the rows of ARM, by ascending id.
std::span<const OF_RELOC_TEMPLATE> common_reloc_templates();
std::span<const OF_RELOC_TEMPLATE> arm_reloc_templates();

// The row with this id; null when there is none.
const OF_RELOC_TEMPLATE* reloc_template(uint32_t id);

} // namespace OFE
