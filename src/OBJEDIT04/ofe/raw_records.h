// Sections, symbols and relocations as plain records, read straight from the mapped file without
// making an object. Deciding what is live walks millions of them; only what is live becomes
// OF_SECTION, OF_SYMBOL, OF_RELOC. Every record is bounds-checked where it is read; the ids are
// those of the file as read.
#pragma once

#include "OBJEDIT04/ofe/of_types.h"
#include <cstddef>

namespace OFE {

class OF_SYMBOL_TABLE;

struct OF_RAW_SECTION {
    const char* name = "";
    unsigned id = 0;
    unsigned type = 0;  // sh_type
    unsigned flags = 0; // sh_flags
    unsigned link = 0;  // sh_link
    unsigned info = 0;  // sh_info
    unsigned addr = 0;
    unsigned size = 0; // bytes
    unsigned align = 0;
    unsigned ext_flags = 0; // the extended flag word (QV_SHF_*)
    bool deleted = false;
};

struct OF_RAW_SYMBOL {
    static constexpr unsigned NO_SECTION = ~0u;
    const char* name = "";
    unsigned id = 0;
    unsigned value = 0;
    unsigned size = 0;
    unsigned section_id = NO_SECTION;
    OF_SYM_KIND kind = OF_SYM_KIND_NONE;
    OF_SYM_BINDING binding = OF_SYM_BINDING_NONE;
    OF_SYM_TYPE type = OF_SYM_TYPE_NONE;
    unsigned char visibility = 0;
};

struct OF_RAW_RELOC {
    unsigned offset = 0;
    unsigned sym_id = 0;
    unsigned type = 0; // machine type number
    int addend = 0;    // of a RELA entry; 0 for REL
};

// The entries of one relocation section, decoded one by one. Empty when the section is not to be
// read.
class OF_RAW_RELOCS {
  public:
    OF_RAW_RELOCS() = default;
    OF_RAW_RELOCS(const uint8_t* data, unsigned count, unsigned entsize, bool rela, bool big,
                  unsigned table_section, OF_SYMBOL_TABLE* symbols)
        : data_(data),
          count_(count),
          entsize_(entsize),
          table_section_(table_section),
          rela_(rela),
          big_(big),
          symbols_(symbols) {}

    unsigned size() const { return count_; }
    const uint8_t* data() const { return data_; }
    unsigned entry_size() const { return entsize_; }
    bool rela() const { return rela_; }
    unsigned table_section() const { return table_section_; } // id of the relocation section
    OF_SYMBOL_TABLE* symbols() const {
        return symbols_;
    } // the table that sym_id counts in; may be null
    OF_RAW_RELOC operator[](unsigned i) const {
        const uint8_t* p = data_ + size_t{i} * entsize_;
        uint32_t info = read_u32(p + 4, big_);
        return {read_u32(p, big_), info >> 8, info & 0xFF,
                rela_ ? static_cast<int>(read_u32(p + 8, big_)) : 0};
    }

  private:
    const uint8_t* data_ = nullptr;
    unsigned count_ = 0;
    unsigned entsize_ = 0;
    unsigned table_section_ = 0;
    bool rela_ = false;
    bool big_ = false;
    OF_SYMBOL_TABLE* symbols_ = nullptr;
};

} // namespace OFE
