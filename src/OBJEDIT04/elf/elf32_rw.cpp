// The fields of each ELF32 record, once; reading, writing and toggling follow from the list.
#include "OBJEDIT04/elf/elf32_rw.h"

#include <cstring>

#include "UTIL/data_map.h"

namespace OFE {

namespace {

void toggle(uint16_t& v) {
    v = static_cast<uint16_t>(v >> 8 | v << 8);
}
void toggle(uint32_t& v) {
    v = __builtin_bswap32(v);
}
void toggle(int32_t& v) {
    v = static_cast<int32_t>(__builtin_bswap32(static_cast<uint32_t>(v)));
}

template <class... FIELD>
void toggle_all(FIELD&... fields) {
    (toggle(fields), ...);
}

} // namespace

void swap_Elf32_Ehdr(Elf32_Ehdr& r) {
    toggle_all(r.e_type, r.e_machine, r.e_version, r.e_entry, r.e_phoff, r.e_shoff, r.e_flags,
               r.e_ehsize, r.e_phentsize, r.e_phnum, r.e_shentsize, r.e_shnum, r.e_shstrndx);
}
void swap_Elf32_Phdr(Elf32_Phdr& r) {
    toggle_all(r.p_type, r.p_offset, r.p_vaddr, r.p_paddr, r.p_filesz, r.p_memsz, r.p_flags,
               r.p_align);
}
void swap_Elf32_Shdr(Elf32_Shdr& r) {
    toggle_all(r.sh_name, r.sh_type, r.sh_flags, r.sh_addr, r.sh_offset, r.sh_size, r.sh_link,
               r.sh_info, r.sh_addralign, r.sh_entsize);
}
void swap_Elf32_Chdr(Elf32_Chdr& r) {
    toggle_all(r.ch_type, r.ch_size, r.ch_addralign);
}
void swap_Elf32_Sym(Elf32_Sym& r) {
    toggle_all(r.st_name, r.st_value, r.st_size, r.st_shndx);
}
void swap_Elf32_Rel(Elf32_Rel& r) {
    toggle_all(r.r_offset, r.r_info);
}
void swap_Elf32_Rela(Elf32_Rela& r) {
    toggle_all(r.r_offset, r.r_info, r.r_addend);
}

void swap_Elf32_PHattr(Elf32_PHattr& r) {
    toggle_all(r.pha_seg, r.pha_tag, r.pha_val);
}

#define OFE_ELF32_RECORD(T)                                                                        \
    void store_##T(uint8_t* p, const T& r, bool swap) {                                            \
        T copy = r;                                                                                \
        if (swap) swap_##T(copy);                                                                  \
        std::memcpy(p, &copy, sizeof copy);                                                        \
    }                                                                                              \
    bool read_##T(DATA_MAP& map, T& r, bool swap) {                                                \
        if (!map.read(&r, sizeof r)) return false;                                                 \
        if (swap) swap_##T(r);                                                                     \
        return true;                                                                               \
    }                                                                                              \
    void write_##T(DATA_MAP& map, const T& r, bool swap) {                                         \
        T copy = r;                                                                                \
        if (swap) swap_##T(copy);                                                                  \
        map.write(&copy, sizeof copy);                                                             \
    }
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
