// Implicit dependences: sections that are kept exactly when what they speak of is kept. They run
// the other way from the relocations that reveal them, so one raw walk over the sections that may
// hold such relocations finds them all.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "ELFLNK/reach/for_each_reloc.h"
#include "ELFLNK/reach/registrar.h"
#include "OBJEDIT04/elf/elf_types.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "UTIL/trace.h"

using OFE::OF_RAW_RELOC;
using OFE::OF_RAW_SECTION;

namespace {

bool is_debug_index(const char* name) {
    for (std::string_view prefix : {".debug_aranges", ".debug_pubnames", ".debug_pubtypes"})
        if (std::strncmp(name, prefix.data(), prefix.size()) == 0) return true;
    return false;
}

} // namespace

void IMPLICIT_DEP_TABLE::add_dependent(KEY key, KEY dependent) {
    // Neighbouring relocations mostly lead to one section.
    if (!deps_.empty() && deps_.back().key == key && deps_.back().dependent == dependent) return;
    deps_.push_back({key, dependent});
}

void IMPLICIT_DEP_TABLE::finish() {
    std::sort(deps_.begin(), deps_.end());
    deps_.erase(std::unique(deps_.begin(), deps_.end()), deps_.end());
}

std::pair<const IMPLICIT_DEP_TABLE::DEP*, const IMPLICIT_DEP_TABLE::DEP*>
IMPLICIT_DEP_TABLE::dependents(KEY key) const {
    const auto [from, to] =
        std::equal_range(deps_.begin(), deps_.end(), DEP{key, 0},
                         [](const DEP& a, const DEP& b) { return a.key < b.key; });
    return {deps_.data() + (from - deps_.begin()), deps_.data() + (to - deps_.begin())};
}

void REGISTRAR::find_implicit_deps() {
    trace_load.printf("\nFINDING IMPLICIT DEPENDENCES:\n");
    OF_RAW_SECTION section;
    for (FILE_STATE* file : order_) {
        for (unsigned id = 1; id < file->bits.size(); ++id) {
            // A root needs no tie.
            if (file->bits[id] & (REQUIRED | ABSENT)) continue;
            if (!(file->bits[id] & DEBUG_DATA) && !has_retainrefs_) continue;
            if (!file->sections->raw_section(id, section)) continue;
            if (file->bits[id] & DEBUG_DATA) add_debug_deps(*file, section);
            if (has_retainrefs_) add_metadata_deps(*file, section);
        }
    }
    section_deps_.finish();
    symbol_deps_.finish();
}

void REGISTRAR::add_debug_deps(FILE_STATE& file, const OF_RAW_SECTION& section) {
    const KEY holder = key_of(file, section.id);
    const bool is_index = is_debug_index(section.name);
    OF_RAW_SECTION other;
    for_each_symbol_reloc(file, section.id, [&](const OF_RAW_RELOC& reloc) {
        const TARGET_REF target = target_of(file, reloc.sym_id);
        if (!target.file) return;
        if (!target.has_section()) {
            if (target.sym && (target.kind == OFE::OF_SYM_KIND_COMMON ||
                               target.kind == OFE::OF_SYM_KIND_ABSOLUTE))
                symbol_deps_.add_dependent(key_of(target.sym), holder);
            return;
        }
        if (target.is_absent()) return;
        if (target.file->bits[target.section_id] & DEBUG_DATA) {
            // An index section is kept with the unit that it indexes; other ties among debug
            // sections don't count here.
            if (!is_index || !target.file->sections->raw_section(target.section_id, other) ||
                std::strncmp(other.name, ".debug_info", 11) != 0)
                return;
        }
        section_deps_.add_dependent(key_of(*target.file, target.section_id), holder);
    });
}

// A section with the extended flag RETAINREFS pulls in everything that refers to it.
void REGISTRAR::add_metadata_deps(FILE_STATE& file, const OF_RAW_SECTION& section) {
    if (file.object->format() != OFE::OF_FORMAT_ELF || !(section.flags & OFE::SHF_ALLOC)) return;
    OF_RAW_SECTION other;
    for_each_symbol_reloc(file, section.id, [&](const OF_RAW_RELOC& reloc) {
        const TARGET_REF target = target_of(file, reloc.sym_id);
        if (!target.file || !target.has_section() || target.is_absent()) return;
        if (target.file->object->format() != OFE::OF_FORMAT_ELF) return;
        if (!target.file->sections->raw_section(target.section_id, other)) return;
        if (other.ext_flags & OFE::QV_SHF_RETAINREFS)
            section_deps_.add_dependent(key_of(*target.file, target.section_id),
                                        key_of(file, section.id));
    });
}
