// ARM's formulas, modes and the packing that looks at more than the value.
#include "OF_RELENG/arm/arm_machops.h"

#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OF_RELENG/arm/arm_fields.h"
#include "OF_RELENG/releng.h"

namespace OFE {

using SECTION_MODE = ARM_TYPES::SECTION_MODE;

namespace {

constexpr uint32_t OPCODE_BL_AL = 0xEB;
constexpr unsigned ARM_CALL_BIAS = 8, THUMB_CALL_BIAS = 4;

bool is_blx(uint32_t word) {
    return bits(word, 31, 25) == 0x7D;
}

bool is_null_symbol(const RELOC_SITE& site) {
    return !site.symbol || !site.symbol->input || site.symbol->input->id() == 0;
}

bool is_unresolved_weak(const RELOC_SITE& site) {
    return site.symbol && site.symbol->unresolved_weak;
}

} // namespace

unsigned ARM_RELENG_MACHOPS::isa_version(OF_RELENG& engine) const {
    ARM_MACHINE_DB* db = ARM_MACHINE_DB::of(engine.section()->ofile());
    return db ? db->find_isa_version() : 0;
}

// What a plain symbol leaves open is only whether the value fits.
bool ARM_RELENG_MACHOPS::rel_apply_plain(OF_RELENG& engine, const RELOC_SITE& site) {
    if (!site.symbol || !site.symbol->plain || !engine.fits(site)) return false;
    const OF_RELOC_TEMPLATE& rel = *site.rel;
    uint8_t* p = engine.place(site);
    const bool big = engine.big_endian();
    const long target = site.symbol->gone ? 0
                        : rel.pcrel()     ? long{site.symbol->value} - engine.opnd_P(site)
                                          : long{site.symbol->value};
    const bool thumb = site.symbol->function && !engine.in_debug_section();
    auto value_of = [&](long field) {
        return (target + (site.rela ? site.addend : field)) | thumb;
    };
    switch (rel.id) {
    case OFR_RELLONG:
    case OFR_PCRLONG:
        put_arm(p, big, static_cast<uint32_t>(value_of(get_arm(p, big))));
        return true;
    case OFR_ARM_PREL31: {
        const uint32_t word = get_arm(p, big);
        const long value = value_of(sign_extend(word, 31));
        if (value != sign_extend(value, 31)) return false;
        put_arm(p, big, with_bits(word, 30, 0, static_cast<uint64_t>(value)));
        return true;
    }
    case OFR_ARM_THM_MOVW_ABS_NC:
    case OFR_ARM_THM_MOVT_ABS:
        put_field(rel, p, big, value_of(sign_extend(get_field(rel, p, big), 16)) >> rel.scale);
        return true;
    case OFR_ARM_THM_CALL:
    case OFR_ARM_THM_JUMP24: {
        if (!thumb || isa_version(engine) < ISA_V6T2) return false;
        const long value = value_of(sign_extend(get_field(rel, p, big), 24) * 2) >> 1;
        if (value != sign_extend(value, 24)) return false;
        uint32_t pair = get_thumb32(p, big);
        if (rel.id == OFR_ARM_THM_CALL) pair = with_bits(pair, 12, 12, 1); // BL
        put_thumb32(p, big, put_thumb_branch24(pair, value, true));
        return true;
    }
    default:
        return false;
    }
}

bool ARM_RELENG_MACHOPS::rel_calculate_relocated_value(OF_RELENG& engine, const RELOC_SITE& site,
                                                       long& value) {
    switch (site.rel->value) {
    case OFRV_UNSUPPORTED:
        return false;
    case OFRV_A:
        value = engine.opnd_A(site);
        return true;
    case OFRV_S_A:
        value = engine.calculate_symrel_reloc(site);
        return true;
    case OFRV_S_A_P:
        value = engine.calculate_pcrel_reloc(site);
        return true;
    case OFRV_S_A_B:
        value = engine.calculate_sbrel_reloc(site);
        return true;
    case OFRV_S_A_T:
        value = engine.calculate_symrel_reloc(site);
        break;
    case OFRV_S_A_P_T:
        value = engine.calculate_pcrel_reloc(site);
        break;
    case OFRV_S_A_B_T:
        value = engine.calculate_sbrel_reloc(site);
        break;
    case OFRV_B_A_P:
        value = is_null_symbol(site) ? engine.opnd_A(site) : engine.calculate_sb_pcrel_reloc(site);
        return true;
    case OFRV_B_A:
        value = is_null_symbol(site) ? engine.opnd_A(site) : engine.calculate_sb_offset_reloc(site);
        return true;
    }
    value |= rel_opnd_T(engine, site, value);
    return true;
}

long ARM_RELENG_MACHOPS::rel_opnd_T(OF_RELENG& engine, const RELOC_SITE& site, long value) {
    if (!site.symbol || !site.symbol->function || engine.in_debug_section()) return 0;
    return rel_refd_mode(engine, site, &value) == ARM_TYPES::SM_THUMB;
}

SECTION_MODE ARM_RELENG_MACHOPS::rel_reloc_symmode(const RELOC_SITE& site) const {
    const RELOC_SYMBOL* symbol = site.symbol;
    if (!symbol || !symbol->final) return ARM_TYPES::SM_UNKNOWN;
    if (symbol->function && symbol->odd) return ARM_TYPES::SM_THUMB;
    if (symbol->absolute) return symbol->odd ? ARM_TYPES::SM_THUMB : ARM_TYPES::SM_ARM;
    return ARM_TYPES::SM_UNKNOWN;
}

SECTION_MODE ARM_RELENG_MACHOPS::rel_refd_mode(OF_RELENG& engine, const RELOC_SITE& site,
                                               const long* value) {
    SECTION_MODE mode = rel_reloc_symmode(site);
    if (mode != ARM_TYPES::SM_UNKNOWN) return mode;
    OF_SECTION* section = site.symbol ? site.symbol->section : nullptr;
    ARM_MACHINE_DB* db = section ? ARM_MACHINE_DB::of(section->ofile()) : nullptr;
    if (!db) return ARM_TYPES::SM_UNKNOWN;
    return db->section_mode_addr(section,
                                 static_cast<unsigned>(rel_refd_dest_addr(engine, site, value)));
}

long ARM_RELENG_MACHOPS::rel_refd_dest_addr(OF_RELENG& engine, const RELOC_SITE& site,
                                            const long* value) {
    long addr = 0;
    if (value)
        addr = *value;
    else if (!rel_calculate_relocated_value(engine, site, addr))
        return 0;
    addr &= ~1L;
    return site.rel->pcrel() ? addr + engine.opnd_P(site) + reltype_call_bias(*site.rel) : addr;
}

int ARM_RELENG_MACHOPS::reltype_call_bias(const OF_RELOC_TEMPLATE& rel) {
    switch (rel.id) {
    case OFR_ARM_PC24:
    case OFR_ARM_PLT32:
    case OFR_ARM_CALL:
    case OFR_ARM_JUMP24:
        return ARM_CALL_BIAS;
    case OFR_ARM_THM_CALL:
    case OFR_ARM_THM_JUMP24:
    case OFR_ARM_THM_JUMP19:
    case OFR_ARM_THM_JUMP6:
    case OFR_ARM_THM_JUMP11:
    case OFR_ARM_THM_JUMP8:
        return THUMB_CALL_BIAS;
    default:
        return 0;
    }
}

// --- BL and BLX

bool ARM_RELENG_MACHOPS::rel_blx_conversion_possible(OF_RELENG& engine, const RELOC_SITE& site) {
    return blx_conversion_possible(isa_version(engine), *site.rel, engine.place(site),
                                   engine.big_endian());
}

bool ARM_RELENG_MACHOPS::blx_conversion_possible(unsigned version, const OF_RELOC_TEMPLATE& rel,
                                                 const uint8_t* instruction, bool big) {
    if (version < ISA_V5T) return false;
    switch (rel.id) {
    case OFR_ARM_THM_CALL:
    case OFR_ARM_CALL:
        return true;
    case OFR_ARM_PC24:
    case OFR_ARM_PLT32: {
        uint32_t word = get_arm(instruction, big);
        return bits(word, 31, 24) == OPCODE_BL_AL || is_blx(word);
    }
    default:
        return false;
    }
}

// Whether the call must change the mode. `value` is in units of the scale; for a call out of Thumb
// it is rounded to the word that BLX counts from.
bool ARM_RELENG_MACHOPS::rel_make_blx_instr(OF_RELENG& engine, const RELOC_SITE& site,
                                            long& value) {
    if (!site.symbol || !site.symbol->final || !rel_blx_conversion_possible(engine, site))
        return false;
    OBJECT_FILE* target = site.symbol->file;
    if (target->format() == OF_FORMAT_ELF && target->file_type() == OF_FILE_TYPE_RELOCATABLE)
        return false;
    long full = value * (1L << site.rel->scale);
    SECTION_MODE mode = rel_refd_mode(engine, site, &full);
    if (site.rel->id != OFR_ARM_THM_CALL) return mode == ARM_TYPES::SM_THUMB;
    if (mode != ARM_TYPES::SM_ARM) return false;
    if (value & 1) ++value;
    return true;
}

void ARM_RELENG_MACHOPS::pack_arm_branch(OF_RELENG& engine, const RELOC_SITE& site, long value) {
    uint8_t* p = engine.place(site);
    bool big = engine.big_endian();
    if (is_unresolved_weak(site)) return put_arm(p, big, ARM_NOP);
    uint32_t word = get_arm(p, big);
    bool may_be_blx = site.rel->id != OFR_ARM_JUMP24;
    if (may_be_blx && is_blx(word)) put_arm(p, big, word = with_bits(word, 31, 24, OPCODE_BL_AL));
    if (rel_make_blx_instr(engine, site, value)) word = with_bits(word, 31, 25, 0x7D);
    word = with_bits(word, 23, 0, static_cast<uint64_t>(value >> 1));
    if (may_be_blx && is_blx(word))
        word = with_bits(word, 24, 24, static_cast<uint64_t>(value & 1));
    put_arm(p, big, word);
}

// The two halves of BL have bit 12 of hw2 set, those of BLX have it clear.
void ARM_RELENG_MACHOPS::pack_thumb_branch24(OF_RELENG& engine, const RELOC_SITE& site,
                                             long value) {
    if (is_unresolved_weak(site)) return rel_encode_nops(engine, site, ARM_TYPES::SM_THUMB, 2);
    uint8_t* p = engine.place(site);
    bool big = engine.big_endian();
    bool call = site.rel->id == OFR_ARM_THM_CALL;
    uint32_t pair = get_thumb32(p, big);
    if (call) pair = with_bits(pair, 12, 12, 1);
    if (rel_make_blx_instr(engine, site, value)) pair = with_bits(pair, 12, 12, 0);
    bool wide = !call || isa_version(engine) >= ISA_V6T2;
    engine.check_for_overflow(site, value, wide ? 24 : 22);
    put_thumb32(p, big, put_thumb_branch24(pair, value, wide));
}

void ARM_RELENG_MACHOPS::rel_encode_nops(OF_RELENG& engine, const RELOC_SITE& site,
                                         SECTION_MODE mode, unsigned count) {
    uint8_t* p = engine.place(site);
    uint16_t thumb = isa_version(engine) < ISA_V6T2 ? THUMB_NOP : THUMB2_NOP;
    for (unsigned i = 0; i < count; ++i) {
        if (mode == ARM_TYPES::SM_THUMB)
            write_u16(p + 2 * i, thumb, engine.big_endian());
        else
            put_arm(p + 4 * i, engine.big_endian(), ARM_NOP);
    }
}

// --- immediates with a sign of their own

// An address offset: what the group leaves of the magnitude, checked where the generic check is not
// made.
void ARM_RELENG_MACHOPS::pack_magnitude(OF_RELENG& engine, const RELOC_SITE& site, long value) {
    long rest = static_cast<long>(
        mask_for_group(site.rel->id, static_cast<uint64_t>(value < 0 ? -value : value)));
    if (site.rel->is(OFRT_NO_GENERIC_OVERFLOW))
        engine.check_for_overflow(site, rest, site.rel->field_size);
    uint8_t* p = engine.place(site);
    put_field(*site.rel, p, engine.big_endian(), value < 0 ? -rest : rest);
    if (value < 0 && rest == 0) { // a negative offset that leaves nothing is still subtracted
        bool thumb = site.rel->encoding == OFRC_THM2_LDR;
        uint32_t word =
            thumb ? get_thumb32(p, engine.big_endian()) : get_arm(p, engine.big_endian());
        word = with_bits(word, 23, 23, 0);
        thumb ? put_thumb32(p, engine.big_endian(), word) : put_arm(p, engine.big_endian(), word);
    }
}

// ADD or SUB of an 8-bit number rotated right by an even count.
void ARM_RELENG_MACHOPS::pack_arm_alu(OF_RELENG& engine, const RELOC_SITE& site, long value) {
    uint8_t* p = engine.place(site);
    uint32_t word = with_bits(get_arm(p, engine.big_endian()), 23, 22, value < 0 ? 1 : 2);
    uint64_t rest = mask_for_group(site.rel->id, static_cast<uint64_t>(value < 0 ? -value : value));
    unsigned s = alu_mask_offset(rest, 2);
    if (rest & ~(uint64_t{0xFF} << s)) engine.overflow_error(site, static_cast<long>(rest), 8);
    word = with_bits(word, 11, 8, (32 - s) >> 1);
    put_arm(p, engine.big_endian(), with_bits(word, 7, 0, rest >> s));
}

// --- fields

bool ARM_RELENG_MACHOPS::rel_addend_is_plain(const RELOC_SITE& site) const {
    return site.rel->encoding == OFRC_ARM_MOVW || site.rel->encoding == OFRC_THM_MOVW;
}

bool ARM_RELENG_MACHOPS::rel_unpack(OF_RELENG& engine, const RELOC_SITE& site, long& value) {
    if (site.rel->encoding == OFRC_GENERIC) return false;
    value = get_field(*site.rel, engine.place(site), engine.big_endian());
    return true;
}

bool ARM_RELENG_MACHOPS::rel_pack(OF_RELENG& engine, const RELOC_SITE& site, long value) {
    switch (site.rel->encoding) {
    case OFRC_GENERIC:
        return false;
    case OFRC_ARM_BRANCH25:
        pack_arm_branch(engine, site, value);
        return true;
    case OFRC_THM2_BRANCH24:
        pack_thumb_branch24(engine, site, value);
        return true;
    case OFRC_ARM_LDR:
    case OFRC_ARM_LDRS:
    case OFRC_ARM_LDC:
    case OFRC_THM2_LDR:
        pack_magnitude(engine, site, value);
        return true;
    case OFRC_ARM_ALU:
        pack_arm_alu(engine, site, value);
        return true;
    case OFRC_THM2_ALU:
        if (value > 4095 || value < -4095) {
            engine.overflow_error(site, value, 12);
            value = value < 0 ? -4096 : 4096; // of the right sign, with a field of 0
        }
        break;
    case OFRC_THM_BRANCH11:
        if (is_unresolved_weak(site))
            return rel_encode_nops(engine, site, ARM_TYPES::SM_THUMB, 1), true;
        break;
    case OFRC_THM2_BRANCH19:
        if (is_unresolved_weak(site))
            return rel_encode_nops(engine, site, ARM_TYPES::SM_THUMB, 2), true;
        break;
    default:
        break;
    }
    put_field(*site.rel, engine.place(site), engine.big_endian(), value);
    return true;
}

} // namespace OFE
