// The vocabulary of the object file layer: the enumerations every format shares, the handle that
// says where an object file lives, and the vectors that translate old indices to new ones after a
// purge. Values are stored and compared as numbers by all parts of the layer, so they are fixed
// here once.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

class FHM_FILE;

namespace OFE {

enum OF_STATE : int {
    OF_STATE_OPEN = 0,
    OF_STATE_LOCKED = 1,
    OF_STATE_FORMATTED = 2,
    OF_STATE_SAVED = 3
};

enum OF_FORMAT : int { OF_FORMAT_UNKNOWN = 0, OF_FORMAT_QVCOFF = 1, OF_FORMAT_ELF = 2 };

enum OF_FORMAT_VER : int {
    OF_FORMAT_VER_UNKNOWN = 0,
    OF_FORMAT_VER_QVCOFF0 = 1,
    OF_FORMAT_VER_QVCOFF1 = 2,
    OF_FORMAT_VER_QVCOFF2 = 3,
    OF_FORMAT_VER_ELF1 = 4
};

enum OF_FILE_TYPE : int {
    OF_FILE_TYPE_NONE = 0,
    OF_FILE_TYPE_RELOCATABLE = 1,
    OF_FILE_TYPE_EXECUTABLE = 2,
    OF_FILE_TYPE_SHARED = 3,
    OF_FILE_TYPE_CORE = 4
};

// The same numbers as DATA_MAP::ENDIAN.
enum OF_ENDIAN : int { OF_ENDIAN_NONE = 0, OF_ENDIAN_LITTLE = 1, OF_ENDIAN_BIG = 2 };

// A machine number of a file that has no name here is held as OF_MACHINE_OTHER + e_machine.
enum OF_MACHINE : unsigned {
    OF_MACHINE_NONE = 0,
    OF_MACHINE_ARM = 1,
    OF_MACHINE_MONO = 2,
    OF_MACHINE_SHASTA = 3,
    OF_MACHINE_MODOC = 4,
    OF_MACHINE_LASSEN = 5,
    OF_MACHINE_TAHOE = 6,
    OF_MACHINE_LASSENP = 7,
    OF_MACHINE_PLUMAS = 8,
    OF_MACHINE_INYO = 9,
    OF_MACHINE_KERN = 10,
    OF_MACHINE_SIERRA = 11,
    OF_MACHINE_OTHER = 0x10000
};

enum OF_ERROR_CODE : int {
    OF_ERROR_NONE = 0,       // no error
    OF_ERROR_FORMAT = 1,     // invalid object file format
    OF_ERROR_ACCESS = 2,     // file access error
    OF_ERROR_CORRUPT = 3,    // corrupted object file
    OF_ERROR_WARNING = 4,    // warning
    OF_ERROR_ILLEGAL = 5,    // illegal operation
    OF_ERROR_TRUNCATED = 6,  // value truncated
    OF_ERROR_INTERNAL = 7,   // internal error
    OF_ERROR_DEVELOPMENT = 8 // development issue
};

enum OF_SYM_KIND : int {
    OF_SYM_KIND_NONE = 0,
    OF_SYM_KIND_UNDEFINED = 1,
    OF_SYM_KIND_DEFINED = 2,
    OF_SYM_KIND_ABSOLUTE = 3,
    OF_SYM_KIND_COMMON = 4,
    OF_SYM_KIND_DEBUG = 5
};

enum OF_SYM_BINDING : int {
    OF_SYM_BINDING_NONE = 0,
    OF_SYM_BINDING_LOCAL = 1,
    OF_SYM_BINDING_GLOBAL = 2,
    OF_SYM_BINDING_WEAK = 3
};

enum OF_SYM_TYPE : int {
    OF_SYM_TYPE_NONE = 0,
    OF_SYM_TYPE_OBJECT = 1,
    OF_SYM_TYPE_FUNCTION = 2,
    OF_SYM_TYPE_SECTION = 3,
    OF_SYM_TYPE_FILE = 4,
    OF_SYM_TYPE_COMMON = 5,
    OF_SYM_TYPE_TLS = 6
};

// Whether a file holds embedded intermediate code; found out on first need.
enum ICODE_FLAG : int { ICODE_UNKNOWN = -1, ICODE_ABSENT = 0, ICODE_PRESENT = 1 };

// Symbol visibility, the two low bits of an ELF symbol's st_other.
enum OF_VISIBILITY : unsigned {
    OF_VIS_DEFAULT = 0,
    OF_VIS_INTERNAL = 1,
    OF_VIS_HIDDEN = 2,
    OF_VIS_PROTECTED = 3
};

// Old index to new index; OF_DELETED for what is gone.
template <class T>
using RECORD_MAP = std::vector<T>;
inline constexpr unsigned OF_DELETED = 0xFFFFFFFFu;

/// What translations say after a further renumbering by map. Empty translations are the identity.
template <class T>
void compose_translations(RECORD_MAP<T>& translations, const RECORD_MAP<T>& map, T deleted) {
    if (translations.empty()) {
        translations = map;
        return;
    }
    for (T& t : translations)
        if (t != deleted) t = t < map.size() ? map[t] : deleted;
}

// The name of the section that stands in the place of a deleted one.
inline constexpr const char* OF_DELETED_SECTION_NAME = "__QV_deleted_section";

// Where an object file lives. Passed by value.
struct OF_FILE_HANDLE {
    FHM_FILE* file = nullptr;   // null: the object exists in memory only
    const char* name = nullptr; // the file or archive member; may be null
    OF_FORMAT format = OF_FORMAT_UNKNOWN;
    OF_FORMAT_VER format_version = OF_FORMAT_VER_UNKNOWN;
    OF_ENDIAN endian = OF_ENDIAN_NONE;
    OF_MACHINE machine = OF_MACHINE_NONE;
    unsigned offset = 0;           // bytes into the file; non-zero for an archive member
    unsigned size = 0;             // bytes; 0: up to the end of the file
    bool close_on_destroy = false; // the object owns `file`
    const uint8_t* bytes =
        nullptr; // the object's bytes, when they are in memory already (`size` of them)
};

// A view of bytes that stay where they are while the object lives.
struct OF_BYTES {
    const uint8_t* data = nullptr;
    size_t size = 0;
};

OF_ENDIAN host_endian();

// Reads a number of the given byte order at p; the caller has checked that the bytes are there.
inline bool is_host_order(bool big) {
    return big == (std::endian::native == std::endian::big);
}
inline uint16_t read_u16(const uint8_t* p, bool big) {
    uint16_t v;
    std::memcpy(&v, p, sizeof v);
    return is_host_order(big) ? v : __builtin_bswap16(v);
}
inline uint32_t read_u32(const uint8_t* p, bool big) {
    uint32_t v;
    std::memcpy(&v, p, sizeof v);
    return is_host_order(big) ? v : __builtin_bswap32(v);
}
inline void write_u16(uint8_t* p, uint16_t v, bool big) {
    if (!is_host_order(big)) v = __builtin_bswap16(v);
    std::memcpy(p, &v, sizeof v);
}
inline void write_u32(uint8_t* p, uint32_t v, bool big) {
    if (!is_host_order(big)) v = __builtin_bswap32(v);
    std::memcpy(p, &v, sizeof v);
}

} // namespace OFE
