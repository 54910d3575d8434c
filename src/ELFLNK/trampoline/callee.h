// What calls lead to: a place in a section, or an absolute address.
//
// A callee owns the trampolines that lead to it: those in use, and those that lost their callers
// and are taken again before a new one is made.
#pragma once

#include <cstdint>
#include <vector>

class LINKER_OBJECT;
class LOCATOR;
class OBJ_FILE;
class SECTION;
class TRAMP_CALL_SITE;
class TRAMPOLINE;
namespace OFE {
class OF_SYMBOL;
} // namespace OFE

class CALLEE {
  public:
    /// Without a section the offset is the absolute address.
    CALLEE(SECTION* section, uint64_t offset) : section_(section), offset_(offset) {}
    CALLEE(const CALLEE&) = delete;
    CALLEE& operator=(const CALLEE&) = delete;
    virtual ~CALLEE() = default;

    SECTION* section() const { return section_; }
    uint64_t offset() const { return offset_; }
    OFE::OF_SYMBOL* symbol() const { return symbol_; }
    /// Keeps the first symbol, unless that is a section's and the new one isn't.
    void set_sym(OFE::OF_SYMBOL* symbol);
    /// The symbol's name; a symbol without one goes by its section.
    const char* name() const;
    /// The file that the symbol belongs to.
    OBJ_FILE* file() const;

  private:
    SECTION* section_;
    uint64_t offset_;
    OFE::OF_SYMBOL* symbol_ = nullptr;
};

class TRAMP_CALLEE : public CALLEE {
  public:
    using CALLEE::CALLEE;

    /// For an absolute callee: how far behind its symbol it is.
    void set_displacement(int64_t n) { displacement_ = n; }
    /// Run address; only final with is_placed().
    uint64_t address() const;
    bool is_placed() const;
    /// A symbol of the command file, or of the linker, whose value is computed at the end.
    bool is_unevaluated() const;
    /// The addresses between which the callee will come to rest.
    void get_min_max_addr(uint64_t& min, uint64_t& max);
    /// Says, once, that a symbol's late value costs a trampoline.
    void warn_about_symasg();

    const std::vector<TRAMPOLINE*>& trampolines() const { return live_; }
    /// A trampoline for the site, without callers: a discarded one, or a new one.
    virtual TRAMPOLINE* new_trampoline(TRAMP_CALL_SITE* site);
    /// Puts a trampoline that has no callers aside for the next time.
    void discard_trampoline(TRAMPOLINE* trampoline);

  private:
    std::vector<TRAMPOLINE*> live_;
    std::vector<TRAMPOLINE*> discarded_;
    uint64_t min_address_ = 0;
    uint64_t max_address_ = ~uint64_t{0};
    int64_t displacement_ = 0;
    unsigned counter_ = 0;
    bool limits_known_ = false;
    bool warned_ = false;
};
