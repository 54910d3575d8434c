// A call or branch instruction of an input section, and the stub that it goes through.
//
// A site goes direct until its section is placed out of reach of the callee, or the instruction
// can't change into the callee's state. Then it is attached to a TRAMPOLINE, which it may share
// with other sites of the same callee; it is detached again when the callee comes to rest within
// reach. The callers of a trampoline are a list through the sites themselves, so that attaching
// and detaching cost the same however many there are.
#pragma once

#include <cstdint>

#include "DIAG/source_position.h"

class SECTION;
class TRAMP_CALLEE;
class TRAMPOLINE;
namespace OFE {
struct OF_RELOC_TYPE;
} // namespace OFE

/// An instruction that enters other code: the section that holds it, and its relocation.
class CALL_SITE {
  public:
    CALL_SITE(SECTION* section, const OFE::OF_RELOC_TYPE* type, uint32_t offset)
        : section_(section), type_(type), offset_(offset) {}
    CALL_SITE(const CALL_SITE&) = delete;
    CALL_SITE& operator=(const CALL_SITE&) = delete;
    virtual ~CALL_SITE() = default;

    SECTION* section() const { return section_; }
    const OFE::OF_RELOC_TYPE* reloc_type() const { return type_; }
    /// Offset of the relocation in its section.
    uint32_t offset() const { return offset_; }
    /// Run address of the instruction, once the section has one.
    uint64_t address() const;
    /// The section has a place, even if only a tentative one.
    bool is_placed() const;

  private:
    SECTION* section_;
    const OFE::OF_RELOC_TYPE* type_;
    uint32_t offset_;
};

/// A call site whose callee may turn out to be out of reach.
class TRAMP_CALL_SITE : public CALL_SITE {
  public:
    using CALL_SITE::CALL_SITE;

    TRAMP_CALLEE* callee() const { return callee_; }
    /// The trampoline in use; null when the call goes direct.
    TRAMPOLINE* trampoline() const { return trampoline_; }
    /// The next caller of the same trampoline.
    TRAMP_CALL_SITE* next_caller() const { return next_; }
    /// Enters what the site calls, once; a target may settle the callee's state by it.
    virtual void set_callee(TRAMP_CALLEE* callee) { callee_ = callee; }

    /// Can the call not go direct, as things stand? A callee without a place counts as lying
    /// anywhere that it may be placed.
    virtual bool need_trampoline();
    /// Attaches the site to a trampoline of its callee in its own output section that is within
    /// reach; `strict`: only to one that stays where it is. False if there is none.
    bool share_trampoline(bool strict);
    virtual bool tramp_is_compatible(const TRAMPOLINE*) const { return true; }
    /// The addresses [lo, hi] that the instruction reaches.
    virtual void get_reachable_range(uint64_t& lo, uint64_t& hi) const;
    /// A trampoline of its own, without a place yet.
    TRAMPOLINE* new_trampoline();
    void attach_trampoline(TRAMPOLINE* trampoline);
    void detach_trampoline();

    /// The call goes to the trampoline in the output.
    bool is_patched() const { return patched_; }
    void set_patched() { patched_ = true; }
    /// The place in the user's source, if debug information tells it.
    SOURCE_POSITION srcloc() const;

  private:
    friend class TRAMPOLINE;
    TRAMP_CALLEE* callee_ = nullptr;
    TRAMPOLINE* trampoline_ = nullptr;
    TRAMP_CALL_SITE* prev_ = nullptr; // among the callers of trampoline_
    TRAMP_CALL_SITE* next_ = nullptr;
    bool patched_ = false;
};
