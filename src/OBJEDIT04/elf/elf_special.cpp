// What a section is to be by its name. The longest row that is a prefix of the name decides, after
// the exact row.
#include <algorithm>
#include <cstring>

#include "OBJEDIT04/elf/elf_section_table.h"

namespace OFE {

namespace {

// Ascending by name, so that prefixes of a name stand before it and are found by binary search.
constexpr ELF_SPECIAL_SECTION ROWS[] = {
    {".QV.section.flags", SHT_QV_SH_FLAGS, 0, 0, 8},
    {".QV.section.page", SHT_QV_SH_PAGE, 0, 0, 8},
    {".QV.symbol.alias", SHT_QV_SYM_ALIAS, 0, 0, 8},
    {".bss", SHT_NOBITS, 0, 0x3, 0},
    {".comment", SHT_PROGBITS, 0, 0, 8},
    {".data", SHT_PROGBITS, 0, 0x3, 0},
    {".data1", SHT_PROGBITS, 0, 0x3, 0},
    {".debug", SHT_PROGBITS, 0, 0, 8},
    {".dynamic", SHT_DYNAMIC, 8, 0x2, 8},
    {".dynstr", SHT_STRTAB, 1, 0x22, 8},
    {".dynsym", SHT_DYNSYM, 16, 0x2, 8},
    {".fini", SHT_PROGBITS, 0, 0x6, 0},
    {".fini_array", SHT_FINI_ARRAY, 0, 0x3, 0},
    {".got", SHT_PROGBITS, 4, 0x3, 0},
    {".hash", SHT_HASH, 0, 0x2, 8},
    {".init", SHT_PROGBITS, 0, 0x6, 0},
    {".init_array", SHT_INIT_ARRAY, 0, 0x3, 0},
    {".interp", SHT_PROGBITS, 0, 0, 8},
    {".line", SHT_PROGBITS, 0, 0, 8},
    {".note", SHT_NOTE, 0, 0, 8},
    {".plt", SHT_PROGBITS, 0, 0, 8},
    {".preinit_array", SHT_PREINIT_ARRAY, 0, 0x3, 0},
    {".rel", SHT_REL, 8, 0, 8},
    {".rela", SHT_RELA, 12, 0, 8},
    {".rodata", SHT_PROGBITS, 0, 0x2, 0},
    {".rodata1", SHT_PROGBITS, 0, 0x2, 0},
    {".shstrtab", SHT_STRTAB, 1, 0x20, 8},
    {".strtab", SHT_STRTAB, 1, 0x20, 8},
    {".symtab", SHT_SYMTAB, 16, 0, 8},
    {".symtab_shndx", SHT_SYMTAB_SHNDX, 4, 0, 8},
    {".tbss", SHT_NOBITS, 0, 0x403, 0},
    {".tdata", SHT_PROGBITS, 0, 0x403, 0},
    {".tdata1", SHT_PROGBITS, 0, 0x403, 0},
    {".text", SHT_PROGBITS, 0, 0x6, 0},
    {"__QV_build_attributes", SHT_ATTRIBUTES, 0, 0, 8},
};

constexpr bool less(const char* a, const char* b) {
    while (*a && *a == *b) ++a, ++b;
    return static_cast<unsigned char>(*a) < static_cast<unsigned char>(*b);
}
static_assert(std::is_sorted(std::begin(ROWS), std::end(ROWS),
                             [](const ELF_SPECIAL_SECTION& a, const ELF_SPECIAL_SECTION& b) {
                                 return less(a.name, b.name);
                             }));

static_assert(std::all_of(std::begin(ROWS), std::end(ROWS), [](const ELF_SPECIAL_SECTION& row) {
    return row.unit == 0 || row.unit == 8;
}));

constexpr ELF_SPECIAL_SECTION GNU_VERSION_ROWS[] = {
    {".gnu.version", SHT_GNU_versym, 2, 0x2, 8},
    {".gnu.version_d", SHT_GNU_verdef, 0, 0x2, 8},
    {".gnu.version_r", SHT_GNU_verneed, 0, 0x2, 8},
};

bool starts_with(const char* name, const char* prefix) {
    return std::strncmp(name, prefix, std::strlen(prefix)) == 0;
}

bool ends_with(const char* name, const char* suffix) {
    size_t n = std::strlen(name), m = std::strlen(suffix);
    return n >= m && std::strcmp(name + n - m, suffix) == 0;
}

} // namespace

const ELF_SPECIAL_SECTION* ELF_SECTION_TABLE::special_section(const char* name) {
    if (!*name) return nullptr;
    for (const ELF_SPECIAL_SECTION& row : GNU_VERSION_ROWS)
        if (std::strcmp(row.name, name) == 0) return &row;
    // All prefixes of the name sort at or before it, the longest last; a row in between is no
    // prefix.
    auto at = std::upper_bound(
        std::begin(ROWS), std::end(ROWS), name,
        [](const char* n, const ELF_SPECIAL_SECTION& row) { return less(n, row.name); });
    while (at != std::begin(ROWS)) {
        --at;
        if (starts_with(name, at->name)) return at;
        if (at->name[1] != name[1]) break;
    }
    if (!ends_with(name, "_shndx")) return nullptr;
    return std::find_if(std::begin(ROWS), std::end(ROWS), [](const ELF_SPECIAL_SECTION& row) {
        return std::strcmp(row.name, ".symtab_shndx") == 0;
    });
}

} // namespace OFE
