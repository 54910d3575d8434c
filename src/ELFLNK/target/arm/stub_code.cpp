// The tables of stub_code.def, the choice among them, and their encoding.
#include "ELFLNK/target/arm/stub_code.h"

#include <array>

#include "ELFLNK/trampoline/jump_ent.h"
#include "OBJEDIT04/machine/reloc_template.h"
#include "OBJEDIT04/ofe/of_types.h"
#include "OF_RELENG/arm/arm_fields.h"
#include "OF_RELENG/arm/arm_machops.h"

using namespace OFE;

namespace {

constexpr uint32_t NONE = STUB_UNIT_ROW::NONE;
constexpr uint32_t NOP = STUB_UNIT_ROW::NOP;

constexpr STUB_UNIT_ROW UNITS[] = {
#define STUB_UNIT(sequence, unit, encoding, fixup, text)                                           \
    {STUB_##sequence, STUB_UNIT_##unit, encoding, fixup},
#include "ELFLNK/target/arm/stub_code.def"
};

enum STATE : uint8_t { ARM, THUMB };
struct SEQUENCE {
    STATE state;
    bool long_form;
};
constexpr SEQUENCE SEQUENCES[] = {
#define STUB_SEQUENCE(name, state, long_form) {state, long_form},
#include "ELFLNK/target/arm/stub_code.def"
};

enum CONDITION : uint8_t { NO, YES, ANY };
struct CHOICE {
    int kind;
    STATE state;
    CONDITION thumb2, near, embedded;
    STUB_ID sequence;
};
constexpr CHOICE CHOICES[] = {
#define STUB_CHOICE(kind, state, thumb2, near, embedded, sequence)                                 \
    {JUMP_ENT::kind, state, thumb2, near, embedded, STUB_##sequence},
#include "ELFLNK/target/arm/stub_code.def"
};

/// Where the units of a sequence begin; they stand together, in the order of the sequences.
constexpr auto FIRST_UNIT = [] {
    std::array<unsigned, STUB_COUNT + 1> first{};
    for (const STUB_UNIT_ROW& unit : UNITS) ++first[unit.sequence + 1U];
    for (unsigned i = 1; i <= STUB_COUNT; ++i) first[i] += first[i - 1];
    return first;
}();

constexpr bool units_are_in_order() {
    for (unsigned i = 1; i < std::size(UNITS); ++i)
        if (UNITS[i - 1].sequence > UNITS[i].sequence) return false;
    return true;
}
static_assert(units_are_in_order());

constexpr unsigned size_of(STUB_ID id) {
    unsigned size = 0;
    for (unsigned i = FIRST_UNIT[id]; i < FIRST_UNIT[id + 1U]; ++i)
        size += stub_unit_size(UNITS[i].kind);
    return size;
}

/// Data words are aligned in sequences that start aligned.
constexpr bool words_are_aligned() {
    for (unsigned id = 0; id < STUB_COUNT; ++id) {
        unsigned at = 0;
        for (unsigned i = FIRST_UNIT[id]; i < FIRST_UNIT[id + 1U]; ++i) {
            if (UNITS[i].kind == STUB_UNIT_WORD && at % 4 != 0) return false;
            at += stub_unit_size(UNITS[i].kind);
        }
    }
    return true;
}
static_assert(words_are_aligned());

/// The size doesn't depend on the distance.
constexpr bool near_is_as_long_as_far() {
    for (const CHOICE& a : CHOICES)
        for (const CHOICE& b : CHOICES)
            if (a.kind == b.kind && a.state == b.state && a.thumb2 == b.thumb2 &&
                a.embedded == b.embedded && size_of(a.sequence) != size_of(b.sequence))
                return false;
    return true;
}
static_assert(near_is_as_long_as_far());

bool holds(CONDITION condition, bool value) {
    return condition == ANY || (condition == YES) == value;
}

} // namespace

std::span<const STUB_UNIT_ROW> stub_units(STUB_ID id) {
    return std::span(UNITS).subspan(FIRST_UNIT[id], FIRST_UNIT[id + 1U] - FIRST_UNIT[id]);
}

unsigned stub_size(STUB_ID id) {
    return size_of(id);
}

bool stub_is_thumb(STUB_ID id) {
    return SEQUENCES[id].state == THUMB;
}

bool stub_is_long(STUB_ID id) {
    return SEQUENCES[id].long_form;
}

STUB_ID choose_stub(const STUB_WISH& wish) {
    for (const CHOICE& choice : CHOICES)
        if (choice.kind == wish.kind && (choice.state == THUMB) == wish.thumb &&
            holds(choice.thumb2, wish.thumb2) && holds(choice.near, wish.near) &&
            holds(choice.embedded, wish.embedded))
            return choice.sequence;
    return STUB_COUNT;
}

void encode_stub(STUB_ID id, uint8_t* bytes, bool big, uint32_t address, uint32_t callee,
                 uint16_t thumb_nop) {
    uint32_t offset = 0;
    for (const STUB_UNIT_ROW& unit : stub_units(id)) {
        uint8_t* p = bytes + offset;
        if (unit.kind == STUB_UNIT_THUMB)
            write_u16(p, unit.fixup == NOP ? thumb_nop : static_cast<uint16_t>(unit.encoding), big);
        else if (unit.kind == STUB_UNIT_THUMB32)
            put_thumb32(p, big, unit.encoding);
        else
            put_arm(p, big, unit.encoding);
        if (unit.has_callee()) {
            const OF_RELOC_TEMPLATE& rel = *reloc_template(unit.fixup);
            long value = static_cast<long>(callee);
            if (rel.pcrel())
                value = static_cast<long>(callee & ~1U) - static_cast<long>(address + offset) -
                        ARM_RELENG_MACHOPS::reltype_call_bias(rel);
            put_field(rel, p, big, value >> rel.scale);
        }
        offset += stub_unit_size(unit.kind);
    }
}
