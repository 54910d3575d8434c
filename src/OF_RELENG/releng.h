// The relocation engine: applies the relocations of one section to that section's bytes, when every
// address is known.
//
// A relocation is seen as a RELOC_SITE: its type, place, symbol and addend, taken from a raw record
// of the mapped file or from an OF_RELOC. So millions of relocations are applied without an object
// each, and the same code serves single relocations that somebody made or asks about. What a symbol
// contributes is worked out once per symbol and kept for the table in use (RELOC_SYMBOLS). What
// differs per processor is behind OF_RELENG_MACHOPS; overflow and scale checks and their messages
// are here. Diagnostics never stop the walk; one of warning severity or higher sets the error flag.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "OBJEDIT04/machine/reloc_type.h"
#include "OBJEDIT04/ofe/raw_records.h"

class DIAGNOSTIC;

namespace OFE {

class OBJECT_FILE;
class OF_RELENG_MACHOPS;
class OF_RELOC;
class OF_SECTION;
class OF_SYMBOL;
class OF_SYMBOL_TABLE;

// What the engine needs to know about the symbol of a relocation.
struct RELOC_SYMBOL {
    OF_SYMBOL* input = nullptr;    // the symbol as the relocation names it
    OF_SYMBOL* final = nullptr;    // what stands for it; null: the relocation has no symbol
    OF_SECTION* section = nullptr; // the section of the final symbol, if it refers to one
    OBJECT_FILE* file = nullptr;   // the file of the final symbol
    uint32_t value = 0;            // the final value, without the Thumb bit of a function
    bool known : 1 = false;
    bool function : 1 = false;   // of type function
    bool odd : 1 = false;        // bit 0 of the value as it stands: the Thumb bit of a function
    bool absolute : 1 = false;   // of kind absolute
    bool unresolved : 1 = false; // of kind undefined
    bool unresolved_weak : 1 = false; // of kind undefined and binding weak
    bool gone : 1 = false;            // an unallocated common, or its section is not in the link
    bool plain : 1 = false;           // not unresolved, and of type function only if Thumb code
};

// One relocation as the engine sees it.
struct RELOC_SITE {
    const OF_RELOC_TYPE* type = nullptr;
    const OF_RELOC_TEMPLATE* rel = nullptr; // the type's template, or null
    uint32_t offset = 0;                    // bytes from the start of the section's data
    int32_t addend = 0;                     // of a RELA entry
    bool rela = false;
    const RELOC_SYMBOL* symbol = nullptr; // null: none
    // Relocation expressions: the constant that an operation pushes stands in the addend, and the
    // field that it loads or stores here, in bits.
    uint32_t field_size = 0, field_offset = 0, container_size = 0;
};

// Values of relocation expressions.
__extension__ using XI_INT = __int128;

// Where a place is in the user's source.
struct RELOC_SOURCE {
    std::string file;
    unsigned line = 0;
    unsigned column = 0;
    std::string function;
    enum FUNCTION_KIND { FUNCTION, ASSEMBLY_FUNCTION, ASSEMBLY_RANGE } function_kind = FUNCTION;
};

// A call that leads to another symbol than its relocation names: to a stub that the linker made.
struct RELOC_REDIRECT {
    uint32_t offset = 0; // of the relocation in its section
    OF_SYMBOL* symbol = nullptr;
    int32_t addend = 0; // instead of the relocation's own
};
// The entry for a call at this offset, in a list by ascending offset; null: it goes where it says.
const RELOC_REDIRECT* find_redirect(const std::vector<RELOC_REDIRECT>& redirects,
                                    const OF_RELOC_TYPE& type, uint32_t offset);

// What the linker above knows and the engine asks for.
class RELENG_HOOKS {
  public:
    virtual ~RELENG_HOOKS() = default;
    // The source of a place, in units from the start of an allocated section; false when there is
    // none. Error path only.
    virtual bool source(OF_SECTION*, uint32_t /*offset*/, RELOC_SOURCE&) { return false; }
    // What stands for a symbol of an input file that has no object of its own; null: make the
    // object.
    virtual OF_SYMBOL* stand_in(OF_SYMBOL_TABLE*, unsigned /*id*/) { return nullptr; }
    // The calls of a section that lead elsewhere, by ascending offset.
    virtual std::vector<RELOC_REDIRECT> redirects(OF_SECTION*) { return {}; }
    // The symbol's section does not take part in the link.
    virtual bool is_gone(OF_SYMBOL*) { return false; }
    // The name of a symbol in messages.
    virtual std::string display_name(const char* link_name) { return link_name; }
};

class OF_RELENG {
  public:
    explicit OF_RELENG(OF_SECTION* section);

    void set_output_section(OF_SECTION* output) { output_ = output; }
    OF_SECTION* section() const { return section_; }
    OF_SECTION* output_section() const { return output_; }

    // Applies all relocations of the section for the run address, table by table in table order.
    void relocate(uint32_t run_addr);
    // The run address that places count from, without relocating.
    void set_run_addr(uint32_t run_addr);
    uint32_t reloc_run_addr() const { return run_addr_; }
    // Asks each relocation for check_symrel_final_value() before its value is computed.
    void set_check_final_values(bool on) { check_final_values_ = on; }
    // Works on a copy of the section's data that lies elsewhere, instead of on the section's own.
    void set_bytes(uint8_t* bytes, size_t size) {
        bytes_ = bytes;
        size_ = size;
    }
    // A diagnostic of severity warning or higher has been reported.
    bool has_error() const { return has_error_; }

    // One relocation. The forms with OF_RELOC look the site up first.
    void process_reloc(OF_RELOC* rel);
    void process_reloc(const RELOC_SITE& site);
    RELOC_SITE site(OF_RELOC* rel);
    long calculate_relocated_value(OF_RELOC* rel);
    bool calculate_relocated_value(const RELOC_SITE& site, long& value);
    void rel_encode_and_pack(long value, const RELOC_SITE& site);
    void rel_pack(long value, const RELOC_SITE& site);
    long rel_unpack(const RELOC_SITE& site);
    // One operation of a relocation expression, on the engine's stack; only a store yields a value.
    void process_reloc_expr(const RELOC_SITE& site, long& value);
    bool check_for_overflow(const RELOC_SITE& site, long value, unsigned width);
    void overflow_error(const RELOC_SITE& site, long value, unsigned width);
    void check_for_scale_truncation(const RELOC_SITE& site, long value);

    // The operands.
    long opnd_A(OF_RELOC* rel);
    long opnd_A(const RELOC_SITE& site);
    long opnd_S(const RELOC_SITE& site);
    long opnd_P(const RELOC_SITE& site) const;
    OF_SYMBOL* opnd_B_sym(const RELOC_SITE& site);
    long opnd_B(const RELOC_SITE& site);
    long extend_signed_addends(const RELOC_SITE& site, long addend) const;

    // The calculations.
    long calculate_symrel_reloc(const RELOC_SITE& site) { return opnd_S(site) + opnd_A(site); }
    long calculate_pcrel_reloc(const RELOC_SITE& site) {
        return opnd_S(site) + opnd_A(site) - opnd_P(site);
    }
    long calculate_sbrel_reloc(const RELOC_SITE& site);
    long calculate_sb_pcrel_reloc(const RELOC_SITE& site) {
        return opnd_B(site) + opnd_A(site) - opnd_P(site);
    }
    long calculate_sb_offset_reloc(const RELOC_SITE& site) { return opnd_B(site) + opnd_A(site); }

    // Texts of messages: "(type = ..., file = ..., offset = ..., section = ...)" and "from function
    // ... to symbol ...".
    std::string relinfo(const RELOC_SITE& site) const;
    std::string relref(const RELOC_SITE& site) const;
    void report_diag(const RELOC_SITE& site, DIAGNOSTIC&& diag);

    // The bytes of the section from the site's place on: room for the container has been checked by
    // process_reloc.
    uint8_t* place(const RELOC_SITE& site) { return bytes_ + site.offset; }
    bool big_endian() const { return big_; }
    bool in_debug_section() const { return debug_; }
    OF_RELENG_MACHOPS* machops() const { return machops_; }

    static void set_hooks(RELENG_HOOKS* hooks) { hooks_m = hooks; }
    // Symbols have changed: what was worked out for the table in use is no longer right.
    static void forget_symbols();

  private:
    friend class ARM_RELENG_MACHOPS;

    bool load_bytes();
    bool fits(const RELOC_SITE& site) const;
    void relocate_raw(const OF_RAW_RELOCS& relocs);
    void unsupported(const RELOC_SITE& site);
    void expression(const RELOC_SITE& site);
    bool pop(const RELOC_SITE& site, unsigned count, XI_INT* values);
    bool source(const RELOC_SITE& site, RELOC_SOURCE& out) const;

    OF_SECTION* section_;
    OF_SECTION* output_;
    OF_RELENG_MACHOPS* machops_;
    std::vector<XI_INT> stack_; // of relocation expressions; they run over several relocations
    uint8_t* bytes_ = nullptr;
    size_t size_ = 0; // bytes of data
    uint32_t run_addr_ = 0;
    uint32_t unit_bytes_ = 1;
    bool big_ = false;
    bool debug_ = false; // the section's name starts with ".debug"
    bool has_error_ = false;
    bool check_final_values_ = false;
    std::vector<RELOC_REDIRECT> redirects_;

    static RELENG_HOOKS* hooks_m;
};

} // namespace OFE
