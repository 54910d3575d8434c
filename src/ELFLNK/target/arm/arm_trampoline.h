// Calls, callees and trampolines of ARM: the two states of code, and the reasons for a stub. A
// farcall spans a distance in the callee's state; a veneer changes the state for an instruction
// that can't.
#pragma once

#include "ELFLNK/target/arm/stub_code.h"
#include "ELFLNK/trampoline/call_site.h"
#include "ELFLNK/trampoline/callee.h"
#include "ELFLNK/trampoline/jump_ent.h"
#include "OBJEDIT04/machine/arm_machine_db.h"
#include "UTIL/oalloc.h"

namespace OFE {
struct OF_RELOC_TEMPLATE;
} // namespace OFE

class ARM_TRAMP_CALLEE final : public TRAMP_CALLEE, public OALLOC<ARM_TRAMP_CALLEE> {
  public:
    /// The state of a place in a section is what its mapping symbols say; that of an absolute
    /// callee is settled by the first site that calls it.
    ARM_TRAMP_CALLEE(SECTION* section, uint64_t offset);

    OFE::ARM_TYPES::SECTION_MODE state() const { return state_; }
    void set_state(OFE::ARM_TYPES::SECTION_MODE state) { state_ = state; }
    bool is_thumb() const { return state_ == OFE::ARM_TYPES::SM_THUMB; }
    TRAMPOLINE* new_trampoline(TRAMP_CALL_SITE* site) override;

  private:
    OFE::ARM_TYPES::SECTION_MODE state_ = OFE::ARM_TYPES::SM_UNKNOWN;
};

class ARM_TRAMP_CALL_SITE final : public TRAMP_CALL_SITE, public OALLOC<ARM_TRAMP_CALL_SITE> {
  public:
    ARM_TRAMP_CALL_SITE(SECTION* section, const OFE::OF_RELOC_TYPE* type, uint32_t offset,
                        OFE::ARM_TYPES::SECTION_MODE state);

    void set_callee(TRAMP_CALLEE* callee) override;
    bool need_trampoline() override;
    bool tramp_is_compatible(const TRAMPOLINE* trampoline) const override;
    OFE::ARM_TYPES::SECTION_MODE state() const { return state_; }
    /// JUMP_ENT::FARCALL, VENEER, or 0 for a call that goes direct.
    int jump_type() const { return jump_type_; }

  private:
    ARM_TRAMP_CALLEE* arm_callee() const { return static_cast<ARM_TRAMP_CALLEE*>(callee()); }

    OFE::ARM_TYPES::SECTION_MODE state_;
    int8_t jump_type_ = 0;
    bool may_become_blx_; ///< BL and BLX of this processor can take each other's place
};

class ARM_TRAMPOLINE final : public TRAMPOLINE, public OALLOC<ARM_TRAMPOLINE> {
  public:
    using OALLOC<ARM_TRAMPOLINE>::operator new;
    using OALLOC<ARM_TRAMPOLINE>::operator delete;
    using TRAMPOLINE::TRAMPOLINE;

    uint64_t size() override;
    uint32_t alignment() const override { return 4; }
    int jump_type_kind() const override { return jump_type_; }
    void set_jump_type(int jump_type) { jump_type_ = jump_type; }
    const char* entry_symbol_name() const override;

    /// May literals stand between the instructions of generated code?
    static bool use_embedded_constants();

  protected:
    void choose_code() override;
    std::vector<MARK> marks() const override;
    std::vector<FIXUP> fixups() const override;
    bool entry_is_odd() const override { return stub_is_thumb(code_); }
    void generate_code(uint8_t* bytes, uint64_t address, bool big) const override;

  private:
    ARM_TRAMP_CALLEE* arm_callee() const { return static_cast<ARM_TRAMP_CALLEE*>(callee()); }
    STUB_ID choose(bool near) const;

    int jump_type_ = FARCALL;
    STUB_ID code_ = STUB_COUNT;
};

/// A site for a branch of the processor; null for a type that is no call.
TRAMP_CALL_SITE* new_ARM_TRAMP_CALL_SITE(SECTION* section, const OFE::OF_RELOC_TYPE* type,
                                         uint32_t offset);
/// The state that a branch of this type is made in; unknown for a type that is none.
OFE::ARM_TYPES::SECTION_MODE arm_branch_state(const OFE::OF_RELOC_TEMPLATE& rel);
/// Can the branch change into the other state?
bool arm_branch_may_become_blx(SECTION* section, const OFE::OF_RELOC_TEMPLATE& rel,
                               uint32_t offset);
/// The state of the code at a place of a section.
OFE::ARM_TYPES::SECTION_MODE arm_state_at(SECTION* section, uint64_t offset);
/// The output's instruction set version and profile.
unsigned arm_output_isa_version();
unsigned arm_output_isa_profile();
