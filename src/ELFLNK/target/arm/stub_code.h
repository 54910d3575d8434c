// The code sequences of trampolines and veneers: the rows of stub_code.def as tables.
#pragma once

#include <cstdint>
#include <span>

/// A sequence of the table.
enum STUB_ID : uint8_t {
#define STUB_SEQUENCE(name, state, long_form) STUB_##name,
#include "ELFLNK/target/arm/stub_code.def"
    STUB_COUNT
};

enum STUB_UNIT_KIND : uint8_t { STUB_UNIT_ARM, STUB_UNIT_THUMB, STUB_UNIT_THUMB32, STUB_UNIT_WORD };

constexpr unsigned stub_unit_size(STUB_UNIT_KIND kind) {
    return kind == STUB_UNIT_THUMB ? 2 : 4;
}

/// One instruction or word.
struct STUB_UNIT_ROW {
    /// Fixups that are no relocation template.
    static constexpr uint32_t NONE = 0;
    static constexpr uint32_t NOP = 1;

    STUB_ID sequence;
    STUB_UNIT_KIND kind;
    uint32_t encoding;
    uint32_t fixup; ///< a template's id, NONE or NOP

    bool has_callee() const { return fixup > NOP; }
};

/// The conditions that choose among the sequences of a kind and state.
struct STUB_WISH {
    int kind;    ///< JUMP_ENT::FARCALL or VENEER
    bool thumb;  ///< the callee is Thumb code
    bool thumb2; ///< the output's architecture has Thumb-2
    bool near;   ///< a branch reaches the callee
    bool embedded;
};

std::span<const STUB_UNIT_ROW> stub_units(STUB_ID id);
unsigned stub_size(STUB_ID id);
bool stub_is_thumb(STUB_ID id);
/// It reaches any address.
bool stub_is_long(STUB_ID id);
/// The sequence that serves; STUB_COUNT if there is none.
STUB_ID choose_stub(const STUB_WISH& wish);
/// Writes the sequence, for a stub at `address` and a callee's address with its state in bit 0.
/// `thumb_nop`: the NOP of the output's architecture.
void encode_stub(STUB_ID id, uint8_t* bytes, bool big, uint32_t address, uint32_t callee,
                 uint16_t thumb_nop);
