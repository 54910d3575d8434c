// Generated sections of code that lead on to a callee: trampolines, and whatever else is an entry
// of its own.
//
// Such a section has no input behind it. Its size is known from the start; its code is chosen when
// all addresses that can matter are, and is encoded into the output while that is written.
#pragma once

#include <cstdint>
#include <vector>

#include "ELFLNK/object/section.h"

class CALLEE;
class TRAMP_CALL_SITE;
class TRAMP_CALLEE;
namespace OFE {
class OF_SYMBOL;
} // namespace OFE

class JUMP_ENT : public SECTION {
  public:
    /// Values of jump_type_kind().
    enum KIND : int { FARCALL = 1, VENEER = 2, PLT = 3 };

    JUMP_ENT(CALLEE* callee, OBJ_FILE* file, const char* name);

    bool is_jump_ent() const override { return true; }
    CALLEE* callee() const { return callee_; }
    /// Where the callee is; 0 if nobody knows.
    virtual uint64_t callee_address() const;
    /// First of the callers, in the order in which they came; null: nobody uses the entry.
    virtual TRAMP_CALL_SITE* first_caller() const { return nullptr; }
    /// The local symbol of the entry, in the output; null before the output has symbols.
    OFE::OF_SYMBOL* entry_symbol() const { return entry_symbol_; }
    bool is_generated() const { return generated_; }
    /// All entries that have a place, in the order of their making.
    static std::vector<JUMP_ENT*> all_placed();
    /// Has any been made?
    static bool any();
    /// The entries of one kind that are in the tree, in its order.
    static std::vector<JUMP_ENT*> all_of_kind(int kind);

    /// Chooses the code; from here on neither it nor the size changes. Once.
    virtual void generate();
    virtual int jump_type_kind() const = 0;
    /// "trampoline", "veneer", "PLT".
    const char* jump_type_name() const;
    virtual const char* entry_symbol_name() const = 0;
    /// Makes, or moves, the entry symbol and the mapping symbols in the output.
    void mk_entry_symbol(bool final);

    /// Relocations that stay in the output.
    void finalize_internal(OFE::OF_SECTION* output, uint32_t offset) override;
    void write_data_internal(OFE::OF_SECTION* output, uint32_t offset) override;

  protected:
    /// A stretch of code of one state, or of data, from an offset on.
    struct MARK {
        uint32_t offset;
        const char* name; ///< of the mapping symbol
    };
    /// A place whose value depends on the callee.
    struct FIXUP {
        uint32_t offset;
        uint32_t template_id; ///< relocation that describes the field
    };

    /// Settles what generate() leaves to the processor.
    virtual void choose_code() = 0;
    virtual std::vector<MARK> marks() const = 0;
    virtual std::vector<FIXUP> fixups() const = 0;
    /// Bit 0 of addresses of the entry.
    virtual bool entry_is_odd() const = 0;
    /// The code, size() bytes in the byte order of data, for an entry at `address`.
    virtual void generate_code(uint8_t* bytes, uint64_t address, bool big) const = 0;

  private:
    CALLEE* callee_;
    OFE::OF_SYMBOL* entry_symbol_ = nullptr;
    std::vector<OFE::OF_SYMBOL*> mark_symbols_;
    bool generated_ = false;
};

/// A stub between call sites and a callee that they don't reach, or can't enter.
class TRAMPOLINE : public JUMP_ENT {
  public:
    TRAMPOLINE(TRAMP_CALLEE* callee, OBJ_FILE* file, const char* name);

    bool is_trampoline() const override { return true; }
    TRAMP_CALLEE* tramp_callee() const;
    uint64_t callee_address() const override;
    TRAMP_CALL_SITE* first_caller() const override { return first_; }
    void add_caller(TRAMP_CALL_SITE* site);
    /// The last caller takes a trampoline with it that isn't part of a finished layout.
    void remove_caller(TRAMP_CALL_SITE* site);
    /// Takes it out of a layout that failed, and from all its callers.
    void give_up();
    /// Hangs it below the parent of a call site, with a new run locator, ready to be placed.
    void prepare(COLLECTION* parent);
    /// Hands the locator the addresses from which all callers reach it.
    void update_placement_limits();
    /// The callee has its address, and a branch of this type reaches it from here.
    bool tramp_in_range(uint32_t template_id) const;
    /// The output section that it was made for.
    const LINKER_OBJECT* home() const { return home_; }
    bool is_patched() const { return patched_; }
    void set_patched() { patched_ = true; }

  private:
    TRAMP_CALL_SITE* first_ = nullptr;
    TRAMP_CALL_SITE* last_ = nullptr;
    const LINKER_OBJECT* home_ = nullptr;
    bool patched_ = false;
};
