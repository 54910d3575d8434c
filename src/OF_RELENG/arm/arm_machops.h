// ARM's part of the relocation engine: the nine value formulas, the T operand, BL and BLX,
// unresolved weak calls, and the choice of the instruction encoding.
#pragma once

#include "OBJEDIT04/machine/arm_machine_db.h"
#include "OF_RELENG/machops.h"

namespace OFE {

class OF_RELOC;
struct OF_RELOC_TEMPLATE;

class ARM_RELENG_MACHOPS final : public OF_RELENG_MACHOPS {
  public:
    bool rel_apply_plain(OF_RELENG& engine, const RELOC_SITE& site) override;
    bool rel_calculate_relocated_value(OF_RELENG& engine, const RELOC_SITE& site,
                                       long& value) override;
    bool rel_unpack(OF_RELENG& engine, const RELOC_SITE& site, long& value) override;
    bool rel_pack(OF_RELENG& engine, const RELOC_SITE& site, long value) override;
    bool rel_addend_is_plain(const RELOC_SITE& site) const override;
    long rel_refd_dest_addr(OF_RELENG& engine, const RELOC_SITE& site, const long* value) override;

    // The mode of the code that the reference leads to: SM_ARM, SM_THUMB, SM_DATA or unknown.
    // `value` saves computing the relocated value again; null computes it.
    ARM_TYPES::SECTION_MODE rel_refd_mode(OF_RELENG& engine, const RELOC_SITE& site,
                                          const long* value);
    ARM_TYPES::SECTION_MODE rel_reloc_symmode(const RELOC_SITE& site) const;
    long rel_opnd_T(OF_RELENG& engine, const RELOC_SITE& site, long value);

    // Bytes from a branch's place to the address that its field counts from.
    static int reltype_call_bias(const OF_RELOC_TEMPLATE& rel);

    // Whether a branch instruction, built for an instruction set version, may turn BL into BLX.
    static bool blx_conversion_possible(unsigned isa_version, const OF_RELOC_TEMPLATE& rel,
                                        const uint8_t* instruction, bool big);
    // Whether a call may change the mode by turning BL into BLX, and whether it must.
    bool rel_blx_conversion_possible(OF_RELENG& engine, const RELOC_SITE& site);

    // `count` NOPs of a mode at the place of a relocation.
    void rel_encode_nops(OF_RELENG& engine, const RELOC_SITE& site, ARM_TYPES::SECTION_MODE mode,
                         unsigned count);

  private:
    bool rel_make_blx_instr(OF_RELENG& engine, const RELOC_SITE& site, long& value);
    void pack_arm_branch(OF_RELENG& engine, const RELOC_SITE& site, long value);
    void pack_thumb_branch24(OF_RELENG& engine, const RELOC_SITE& site, long value);
    void pack_magnitude(OF_RELENG& engine, const RELOC_SITE& site, long value);
    void pack_arm_alu(OF_RELENG& engine, const RELOC_SITE& site, long value);
    unsigned isa_version(OF_RELENG& engine) const;
};

} // namespace OFE
