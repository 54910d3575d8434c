// Reading and writing the ELF32 records: in place from checked bytes, or at the position of a
// DATA_MAP. `swap` is true when the file's byte order is not the host's; every field wider than a
// byte is then toggled.
#pragma once

#include "OBJEDIT04/elf/elf_types.h"
#include <cstring>

class DATA_MAP;

namespace OFE {

// From sizeof(record) bytes at p, and to them.
#define OFE_ELF32_RECORD(T)                                                                        \
    void swap_##T(T& r);                                                                           \
    inline void load_##T(const uint8_t* p, T& r, bool swap) {                                      \
        std::memcpy(&r, p, sizeof r);                                                              \
        if (swap) swap_##T(r);                                                                     \
    }                                                                                              \
    void store_##T(uint8_t* p, const T& r, bool swap);                                             \
    bool read_##T(DATA_MAP& map, T& r, bool swap);                                                 \
    void write_##T(DATA_MAP& map, const T& r, bool swap);
OFE_ELF32_RECORD(Elf32_Ehdr)
OFE_ELF32_RECORD(Elf32_Phdr)
OFE_ELF32_RECORD(Elf32_Shdr)
OFE_ELF32_RECORD(Elf32_Chdr)
OFE_ELF32_RECORD(Elf32_Sym)
OFE_ELF32_RECORD(Elf32_Rel)
OFE_ELF32_RECORD(Elf32_Rela)
OFE_ELF32_RECORD(Elf32_PHattr)
#undef OFE_ELF32_RECORD

} // namespace OFE
