// ELF32 as the standard lays it out: records, and the numbers of types, flags and special indices
// that this layer uses. elf32_rw reads and writes the records in either byte order.
#pragma once

#include <cstdint>

namespace OFE {

struct Elf32_Ehdr {
    uint8_t e_ident[16];
    uint16_t e_type, e_machine;
    uint32_t e_version, e_entry, e_phoff, e_shoff, e_flags;
    uint16_t e_ehsize, e_phentsize, e_phnum, e_shentsize, e_shnum, e_shstrndx;
};
struct Elf32_Phdr {
    uint32_t p_type, p_offset, p_vaddr, p_paddr, p_filesz, p_memsz, p_flags, p_align;
};
struct Elf32_Shdr {
    uint32_t sh_name, sh_type, sh_flags, sh_addr, sh_offset, sh_size, sh_link, sh_info,
        sh_addralign, sh_entsize;
};
struct Elf32_Sym {
    uint32_t st_name, st_value, st_size;
    uint8_t st_info, st_other;
    uint16_t st_shndx;
};
struct Elf32_Rel {
    uint32_t r_offset, r_info;
};
struct Elf32_Rela {
    uint32_t r_offset, r_info;
    int32_t r_addend;
};
// In front of the contents of a section with SHF_COMPRESSED.
struct Elf32_Chdr {
    uint32_t ch_type, ch_size, ch_addralign;
};

// An attribute of a segment.
struct Elf32_PHattr {
    uint16_t pha_seg, pha_tag;
    uint32_t pha_val;
};

inline constexpr unsigned ELF_EHSIZE = 52, ELF_PHENTSIZE = 32, ELF_SHENTSIZE = 40, ELF_SYMSIZE = 16;
inline constexpr unsigned ELF_RELSIZE = 8, ELF_RELASIZE = 12, ELF_PHATTRSIZE = 8;
inline constexpr unsigned ELF_CHDRSIZE = 12, ELFCOMPRESS_ZLIB = 1;
static_assert(sizeof(Elf32_Ehdr) == ELF_EHSIZE && sizeof(Elf32_Phdr) == ELF_PHENTSIZE);
static_assert(sizeof(Elf32_Shdr) == ELF_SHENTSIZE && sizeof(Elf32_Sym) == ELF_SYMSIZE);
static_assert(sizeof(Elf32_PHattr) == ELF_PHATTRSIZE && sizeof(Elf32_Chdr) == ELF_CHDRSIZE);
static_assert(sizeof(Elf32_Rel) == ELF_RELSIZE && sizeof(Elf32_Rela) == ELF_RELASIZE);

enum : unsigned { EI_CLASS = 4, EI_DATA = 5, EI_VERSION = 6, EI_OSABI = 7 };
enum : unsigned { ET_NONE = 0, ET_REL = 1, ET_EXEC = 2, ET_DYN = 3, ET_CORE = 4 };
inline constexpr unsigned EM_ARM = 0x28;

// ARM's e_flags.
inline constexpr unsigned EF_ARM_EABIMASK = 0xFF000000u, EF_ARM_EABI_VER5 = 0x05000000u;

enum : unsigned {
    SHT_NULL = 0,
    SHT_PROGBITS = 1,
    SHT_SYMTAB = 2,
    SHT_STRTAB = 3,
    SHT_RELA = 4,
    SHT_HASH = 5,
    SHT_DYNAMIC = 6,
    SHT_NOTE = 7,
    SHT_NOBITS = 8,
    SHT_REL = 9,
    SHT_SHLIB = 10,
    SHT_DYNSYM = 11,
    SHT_INIT_ARRAY = 14,
    SHT_FINI_ARRAY = 15,
    SHT_PREINIT_ARRAY = 16,
    SHT_GROUP = 17,
    SHT_SYMTAB_SHNDX = 18,
    SHT_GNU_verdef = 0x6FFFFFFD,
    SHT_GNU_verneed = 0x6FFFFFFE,
    SHT_GNU_versym = 0x6FFFFFFF,
    SHT_ARM_EXIDX = 0x70000001,
    SHT_ATTRIBUTES = 0x70000003,
    SHT_QV_SH_FLAGS = 0x7F000005,
    SHT_QV_SYM_ALIAS = 0x7F000006,
    SHT_QV_SH_PAGE = 0x7F000007
};

enum : unsigned {
    SHF_WRITE = 0x1,
    SHF_ALLOC = 0x2,
    SHF_EXECINSTR = 0x4,
    SHF_MERGE = 0x10,
    SHF_STRINGS = 0x20,
    SHF_INFO_LINK = 0x40,
    SHF_LINK_ORDER = 0x80,
    SHF_GROUP = 0x200,
    SHF_TLS = 0x400,
    SHF_COMPRESSED = 0x800
};

enum : unsigned {
    SHN_UNDEF = 0,
    SHN_LORESERVE = 0xFF00,
    SHN_ABS = 0xFFF1,
    SHN_COMMON = 0xFFF2,
    SHN_XINDEX = 0xFFFF
};

enum : unsigned { STB_LOCAL = 0, STB_GLOBAL = 1, STB_WEAK = 2 };
enum : unsigned {
    STT_NOTYPE = 0,
    STT_OBJECT = 1,
    STT_FUNC = 2,
    STT_SECTION = 3,
    STT_FILE = 4,
    STT_COMMON = 5,
    STT_TLS = 6
};

inline constexpr unsigned GRP_COMDAT = 1;

enum : unsigned {
    PT_NULL = 0,
    PT_LOAD = 1,
    PT_DYNAMIC = 2,
    PT_INTERP = 3,
    PT_NOTE = 4,
    PT_PHDR = 6,
    PT_TLS = 7,
    PT_GNU_STACK = 0x6474E551
};
enum : unsigned { PF_X = 1, PF_W = 2, PF_R = 4 };

// The extended flag word of a section.
enum : unsigned {
    QV_SHF_NONE = 0,
    QV_SHF_INVALID = 1,
    QV_SHF_RETAIN = 2,
    QV_SHF_BOUND = 4,
    QV_SHF_RETAINREFS = 8,
    QV_SHF_NOINIT = 16
};

// Intermediate code of the compiler, beside the code made of it.
inline constexpr const char* ELF_ICODE_SECTION_NAME = ".icode";

inline constexpr const char* ELF_SYMALIAS_SECTION_NAME = ".QV.symbol.alias";

// The kinds of extended section attribute.
enum : int { QV_SH_ATTR_FLAGS = 0, QV_SH_ATTR_PAGE = 1, QV_SH_ATTR_KINDS = 2 };

} // namespace OFE
