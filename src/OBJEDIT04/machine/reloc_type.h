// What a relocation points to: a type of its file format, with the template that tells what it
// means. One set of types per (machine, format) is shared by all files; looking a type up by its
// number is an array access.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "OBJEDIT04/machine/reloc_template.h"
#include "OBJEDIT04/ofe/of_types.h"

namespace OFE {

struct OF_RELOC_TYPE {
    const char* name = "";
    uint32_t machine_type = 0; // the number in the file
    uint32_t template_id = OFR_NOT_SUPPORTED;
    const OF_RELOC_TEMPLATE* rel_template = nullptr; // null for a template id below 256

    bool has_symbol() const { return rel_template && rel_template->takes_symbol(); }
};

// The answer of a lookup that fails.
extern const OF_RELOC_TYPE OFR_INVALID;

// A row of a format's type table; a row with machine number OFR_END_OF_ROWS ends it.
struct OF_RELOC_TYPE_ROW {
    const char* name;
    uint32_t machine_type;
    uint32_t template_id;
};
inline constexpr uint32_t OFR_END_OF_ROWS = 0xFFFFFFFFu;

// The types of one (machine, format).
class OF_MACHINE_RELTYPES {
  public:
    explicit OF_MACHINE_RELTYPES(OF_FORMAT format) : format_(format) {}

    // Enters the rows, up to the one that ends the table. The first row for a template becomes the
    // template's type.
    void add_rows(const OF_RELOC_TYPE_ROW* rows);

    // The type that stands for a template; null when the format has none.
    const OF_RELOC_TYPE* by_template(uint32_t template_id) const;

    // The type with this machine number. An unknown number gets a type on the spot, named
    // "R_0x%02x" in ELF and "R_0x%04x" in QV-COFF, without a template.
    const OF_RELOC_TYPE* by_machine_number(uint32_t machine_type);

    // The type with this name; null when there is none.
    const OF_RELOC_TYPE* by_name(const char* name) const;

    // From now on the template `from` is expressed by the type of the template `to`.
    bool remap(uint32_t from, uint32_t to);
    // From now on the type of that machine number is worked out by another template.
    bool set_template(uint32_t machine_type, uint32_t template_id);

  private:
    OF_RELOC_TYPE* new_type(std::string name, uint32_t machine_type, uint32_t template_id);

    OF_FORMAT format_;
    std::vector<std::unique_ptr<OF_RELOC_TYPE>> types_;
    std::vector<std::unique_ptr<std::string>> names_;
    std::map<uint32_t, const OF_RELOC_TYPE*> template_map_;
    std::array<const OF_RELOC_TYPE*, 256> small_numbers_{}; // the whole range of ELF32
    std::map<uint32_t, const OF_RELOC_TYPE*> large_numbers_;
};

// The shared set of a (machine, format), made on first use.
OF_MACHINE_RELTYPES& shared_machine_reltypes(OF_MACHINE machine, OF_FORMAT format);

} // namespace OFE
