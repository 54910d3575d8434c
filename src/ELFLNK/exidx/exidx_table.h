// The unwinding index of the program (of one output section in a partial link).
//
// Its size hangs on the addresses of the code: neighbours that say the same are joined. So it is
// placed after the code, sorts and shortens itself when a range is about to be tried, and is locked
// once it has its place. Code without a piece of its own gets one only then, and only where its
// entry is not joined with the one before: most code of a large program has none.
//
// A table in one group with code, or at an address, can be placed before some of the code. Then it
// keeps every entry, and they are brought in order when placement is over.
#pragma once

#include <cstdint>
#include <vector>

#include "ELFLNK/object/collection.h"

namespace OFE {
class OF_SYMBOL;
}
class EXIDX_SECTION;
class LOCATOR;

namespace EXIDX {

class EXIDX_TABLE : public COLLECTION {
  public:
    explicit EXIDX_TABLE(const char* name);

    bool is_exidx() const override { return true; }
    void update_before_placement(PLACEMENT_PHASE phase) override;
    void update_upon_placement() override;
    void dump_header(PPRINT* out) override;
    void dump_properties(PPRINT* out) override;
    /// Nothing: the members are known.
    SECTION_SPEC* set_default_spec() override { return nullptr; }

    /// Code of the link with its piece, or with null for code without one.
    void add_code(SECTION* code, EXIDX_SECTION* piece);
    /// All code has been added: a table of code without pieces gets its first piece.
    void complete();
    /// Start and end of the table, under the names that run-time libraries look for.
    void define_exidx_symbols();
    /// The entry behind the last function.
    void add_table_terminator(EXIDX_SECTION* piece);

    bool is_sorted() const { return sorted_; }
    /// After placement: brings the entries in order if they were placed before some of the code.
    void settle_order();

  private:
    /// What decides whether neighbours say the same, read before the entries are sorted.
    struct WORDS {
        unsigned size;  // of the piece in bytes
        uint32_t first; // how the first entry unwinds
        uint32_t last;  // how the last one does
    };
    struct ENTRY {
        SECTION* code;
        EXIDX_SECTION* piece; // null for code without one, as long as its entry isn't needed
        WORDS words;          // of the piece, once entries have been sorted
    };

    static WORDS words_of(EXIDX_SECTION* piece);
    /// The one entry says what the last one of the piece before it says.
    static bool is_said_by(const WORDS& prev, const ENTRY& entry);

    void sort_entries();
    void take_members();
    void lay_out_in_order(LOCATOR* locator);
    void choose_members(std::vector<LINKER_OBJECT*>& chosen);
    void add_piece(EXIDX_SECTION* piece);
    EXIDX_SECTION* piece_of(ENTRY& entry);
    void update_table_terminator();
    void patch_aliased_symbol_references();

    std::vector<ENTRY> entries_; // all code
    EXIDX_SECTION* terminator_ = nullptr;
    SECTION* last_code_ = nullptr;          // the code at the highest address
    std::vector<LINKER_OBJECT*> taken_out_; // pieces that are joined with the one before them
    bool order_is_open_ = false;            // some code had no address when it was last asked
    bool needs_order_ = false;              // the table has its place, and its order is open
    bool sorted_ = false;
    bool locked_ = false;
};

/// A piece of one entry, "cannot be unwound", in the internal file and in the link; with a symbol,
/// the entry is for the symbol's address.
EXIDX_SECTION* new_default_piece(const char* name, OFE::OF_SYMBOL* symbol);
/// The same for code, with a symbol of its own for the code's address.
EXIDX_SECTION* create_default_exidx_section(SECTION* code);
/// Assigns `name` an address operator (an EXPR_OPCODE) of the object, and makes a symbol of the
/// internal file that refers to it.
OFE::OF_SYMBOL* create_local_symbol(const char* name, int opcode, LINKER_OBJECT* object);
/// Gives the entry of a default piece the address of a symbol.
void add_entry_address(EXIDX_SECTION* piece, OFE::OF_SYMBOL* symbol);

} // namespace EXIDX
