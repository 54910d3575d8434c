// The texts of the layer's enumerations, one table each.
#include <cassert>
#include <cstring>

#include "OBJEDIT04/ofe/object_file.h"

namespace OFE {

namespace {

template <size_t N>
const char* text(const char* const (&table)[N], unsigned i, const char* otherwise) {
    return i < N && table[i] ? table[i] : otherwise;
}

struct MACHINE_NAME {
    const char* simple;
    const char* full;
};
constexpr MACHINE_NAME MACHINES[] = {
    {"NONE", "no machine"}, {"ARM", "ARM"},       {"MONO", "MONO"},   {"SHASTA", "SHASTA"},
    {"MODOC", "MODOC"},     {"LASSEN", "LASSEN"}, {"TAHOE", "TAHOE"}, {"LASSENP", "LASSENP"},
    {"PLUMAS", "PLUMAS"},   {"INYO", "INYO"},     {"KERN", "KERN"},   {"SIERRA", "SIERRA"}};
constexpr unsigned MACHINE_NUM = sizeof MACHINES / sizeof MACHINES[0];
static_assert(MACHINE_NUM == OF_MACHINE_SIERRA + 1);

} // namespace

const char* OBJECT_FILE::error_code_name(OF_ERROR_CODE code) {
    static constexpr const char* NAMES[] = {"no error",          "invalid object file format",
                                            "file access error", "corrupted object file",
                                            "warning",           "illegal operation",
                                            "value truncated",   "internal error",
                                            "development issue"};
    return text(NAMES, static_cast<unsigned>(code), "unknown error");
}

const char* OBJECT_FILE::format_name(OF_FORMAT f) {
    static constexpr const char* NAMES[] = {"UNKNOWN", "QV-COFF", "ELF"};
    return text(NAMES, static_cast<unsigned>(f), "UNKNOWN");
}

const char* OBJECT_FILE::format_version_name(OF_FORMAT_VER v) {
    static constexpr const char* NAMES[] = {nullptr, "0", "1", "2", "1"};
    return text(NAMES, static_cast<unsigned>(v), "unknown format version");
}

const char* OBJECT_FILE::file_type_name(OF_FILE_TYPE t) {
    static constexpr const char* NAMES[] = {nullptr, "relocatable file", "executable file",
                                            "shared object file", "core file"};
    return text(NAMES, static_cast<unsigned>(t), "unknown file type");
}

const char* OBJECT_FILE::machine_name(OF_MACHINE m) {
    return m < MACHINE_NUM ? MACHINES[m].full : "unknown machine";
}

const char* OBJECT_FILE::simple_machine_name(OF_MACHINE m) {
    assert(m >= OF_MACHINE_ARM && m < MACHINE_NUM);
    return MACHINES[m].simple;
}

OF_MACHINE OBJECT_FILE::of_machine_from_name(const char* name) {
    for (unsigned i = 1; name && i < MACHINE_NUM; ++i)
        if (std::strcmp(name, MACHINES[i].simple) == 0) return static_cast<OF_MACHINE>(i);
    return OF_MACHINE_NONE;
}

const char* OBJECT_FILE::sym_kind_name(OF_SYM_KIND k) {
    static constexpr const char* NAMES[] = {nullptr,    "undefined", "defined",
                                            "absolute", "common",    "debug"};
    return text(NAMES, static_cast<unsigned>(k), "unknown");
}

const char* OBJECT_FILE::sym_binding_name(OF_SYM_BINDING b) {
    static constexpr const char* NAMES[] = {nullptr, "local", "global", "weak"};
    return text(NAMES, static_cast<unsigned>(b), "unknown");
}

const char* OBJECT_FILE::sym_type_name(OF_SYM_TYPE t) {
    static constexpr const char* NAMES[] = {"none", "object", "function", "section",
                                            "file", "common", "tls"};
    return text(NAMES, static_cast<unsigned>(t), "unknown");
}

OF_ENDIAN host_endian() {
    const uint16_t probe = 1;
    return *reinterpret_cast<const uint8_t*>(&probe) == 1 ? OF_ENDIAN_LITTLE : OF_ENDIAN_BIG;
}

} // namespace OFE
