// One piece of the unwinding index: the entries of one code section.
#pragma once

#include "ELFLNK/object/section.h"

namespace OFE {
class OF_RELOC;
}

namespace EXIDX {

/// An entry of the index ("Exception Handling ABI for the Arm Architecture") in bytes: two words,
/// where the code is and how it unwinds.
inline constexpr unsigned ENTRY_SIZE = 8;
/// The second word of code that cannot be unwound.
inline constexpr uint32_t CANTUNWIND = 1;

} // namespace EXIDX

class EXIDX_SECTION : public SECTION {
  public:
    EXIDX_SECTION(OBJ_FILE* file, OFE::OF_SECTION* section) : SECTION(file, section) {}

    bool is_exidx() const override { return true; }

    /// The section that the link field names, null if there is none or no link order is asked for.
    OFE::OF_SECTION* link_to_OF_section();
    /// The code that the piece describes; null until a table has taken the piece.
    SECTION* code() const { return code_; }
    void set_code(SECTION* code) { code_ = code; }
    /// References through aliases get a symbol of their own, so that the entry stays with its code.
    void patch_aliased_symbol_references();

  private:
    void patch_reloc(OFE::OF_RELOC* reloc);

    SECTION* code_ = nullptr;
};
