// Objects of old compilers use another layout of what the C++ run-time library shares with them.
// One report per link says so, for the first such object.
#include "ELFLNK/load/load.h"

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/main/main.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/elf_section_table.h"
#include "dwarf_editor/dw_source.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace {

// Debug information of a header that the library's own headers include.
constexpr const char* DEBUG_SECTION = "__QV_DW.debug_info.";
constexpr const char* LIBRARY_HEADER = "yvals.h";
constexpr unsigned DW_LANG_C_plus_plus = 4;

// "4.5.3" counts as 405; what is no number as 0.
unsigned version_number_of(const char* text) {
    auto digits = [&text] {
        unsigned value = 0;
        for (; std::isdigit(static_cast<unsigned char>(*text)); ++text)
            value = std::min(value * 10 + static_cast<unsigned>(*text - '0'), 1000000u);
        return value;
    };
    const unsigned major = digits();
    if (*text == '.') ++text;
    return major * 100 + digits();
}

bool has_library_header(OFE::ELF_SECTION_TABLE* sections) {
    if (!sections->names_contain(DEBUG_SECTION)) return false;
    for (unsigned i = 1; i < sections->scnnum(); ++i) {
        const char* name = sections->raw_name(i);
        if (std::strncmp(name, DEBUG_SECTION, std::strlen(DEBUG_SECTION)) == 0 &&
            std::strstr(name, LIBRARY_HEADER) != nullptr)
            return true;
    }
    return false;
}

bool is_cpp(OFE::OBJECT_FILE* object) {
    const std::vector<unsigned> languages = DWE::read_dw_languages(object);
    return std::find(languages.begin(), languages.end(), DW_LANG_C_plus_plus) != languages.end();
}

} // namespace

void check_dinkum_compatibility(OBJ_FILE* file) {
    static bool reported = false;
    const char* first = Target->first_version_without_dinkum();
    OFE::OBJECT_FILE* object = file->object_file();
    if (reported || first == nullptr || object->format() != OFE::OF_FORMAT_ELF) return;
    if (!has_library_header(OFE::elf_api(object)->elf_section_table())) return;
    const char* version = object->producer_version_str();
    const unsigned number = version_number_of(version);
    if (number >= version_number_of(::version_number()) || number >= version_number_of(first))
        return;
    if (!Target->dinkum_exported_symbols() && !is_cpp(object)) return;
    reported = true;
    DIAG_REPORT(elnk_incompatible_dinkum_file, first, file->name(), version);
}
