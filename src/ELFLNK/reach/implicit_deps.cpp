// Implicit dependences: sections that are kept exactly when what they speak of is kept. They run
// the other way from the relocations that reveal them, so one raw walk over the sections that may
// hold such relocations finds them all.
#include <algorithm>
#include <string_view>

#include "ELFLNK/reach/for_each_reloc.h"
#include "ELFLNK/reach/registrar.h"
#include "OBJEDIT04/elf/elf_types.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "UTIL/narrow.h"
#include "UTIL/trace.h"

using OFE::OF_RAW_RELOC;
using OFE::OF_RAW_SECTION;

namespace {

/// The debug section that a debug section of this name is kept with, or an empty text: an index
/// with the unit that it indexes, and a unit of DWARF 5, which names code by a number alone, with
/// the table of the addresses.
std::string_view tied_to(std::string_view name) {
    if (name.starts_with(".debug_info")) return ".debug_addr";
    for (std::string_view prefix : {".debug_aranges", ".debug_pubnames", ".debug_pubtypes"})
        if (name.starts_with(prefix)) return ".debug_info";
    return {};
}

} // namespace

void SECTION_LISTS::add(KEY key, KEY item) {
    const auto file = static_cast<size_t>(key >> 32), id = static_cast<size_t>(key & 0xFFFFFFFF);
    if (file >= last_.size()) last_.resize(file + 1);
    if (id >= last_[file].size()) last_[file].resize(id + 1, NO_LINK);
    uint32_t& last = last_[file][id];
    if (last != NO_LINK && links_[last].item == item) return;
    const auto link = narrow<uint32_t>(links_.size());
    links_.push_back({item, last == NO_LINK ? link : links_[last].next});
    if (last != NO_LINK) links_[last].next = link;
    last = link;
}

// In the order of file and section ids, which is that of the dependents of a section.
void REGISTRAR::find_implicit_deps() {
    trace_load.printf("\nFINDING IMPLICIT DEPENDENCES:\n");
    std::vector<FILE_STATE*> files = order_;
    std::sort(files.begin(), files.end(), [](const FILE_STATE* a, const FILE_STATE* b) {
        return a->object->file_id() < b->object->file_id();
    });
    OF_RAW_SECTION section;
    for (FILE_STATE* file : files) {
        if (!has_retainrefs_ && !file->has_debug_data) continue;
        met_by_.assign(file->symbols ? file->symbols->first_global() : 0, 0);
        for (unsigned id = 1; id < file->bits.size(); ++id) {
            // A root needs no tie.
            if (file->bits[id] & (REQUIRED | ABSENT)) continue;
            if (!(file->bits[id] & DEBUG_DATA) && !has_retainrefs_) continue;
            if (!file->sections->raw_section(id, section)) continue;
            if (file->bits[id] & DEBUG_DATA) add_debug_deps(*file, section);
            if (has_retainrefs_) add_metadata_deps(*file, section);
        }
    }
}

// The relocations of debug data are many and lead to few symbols: a local one is looked at once a
// section. What walk_section will have to follow is listed along the way.
void REGISTRAR::add_debug_deps(FILE_STATE& file, const OF_RAW_SECTION& section) {
    const KEY holder = key_of(file, section.id);
    const std::string_view tie = tied_to(section.name);
    bool is_listed = !records_references_ && !relocs_stay_;
    for_each_symbol_reloc(file, section.id, [&](const OF_RAW_RELOC& reloc) {
        if (reloc.sym_id < met_by_.size()) {
            if (met_by_[reloc.sym_id] == section.id) return;
            met_by_[reloc.sym_id] = section.id;
        }
        TARGET_REF target;
        target.section_id = local_section(file, reloc.sym_id);
        const bool is_local = target.has_section();
        if (is_local)
            target.file = &file;
        else
            target = target_of(file, reloc.sym_id);
        add_debug_dep(target, holder, tie);
        if (!debug_keeps(target)) return;
        if (is_local && !(file.bits[target.section_id] & OMDATA))
            debug_refs_.add(holder, key_of(file, target.section_id));
        else
            is_listed = false;
    });
    if (is_listed) file.bits[section.id] |= REFS_LISTED;
}

void REGISTRAR::add_debug_dep(const TARGET_REF& target, KEY holder, std::string_view tie) {
    if (!target.file) return;
    if (!target.has_section()) {
        if (target.sym &&
            (target.kind == OFE::OF_SYM_KIND_COMMON || target.kind == OFE::OF_SYM_KIND_ABSOLUTE))
            symbol_deps_.add(key_of(target.sym), holder);
        return;
    }
    if (target.is_absent()) return;
    if (target.file->bits[target.section_id] & DEBUG_DATA) {
        OF_RAW_SECTION other;
        if (tie.empty() || !target.file->sections->raw_section(target.section_id, other) ||
            !std::string_view(other.name).starts_with(tie))
            return;
    }
    section_deps_.add(key_of(*target.file, target.section_id), holder);
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
            section_deps_.add(key_of(*target.file, target.section_id), key_of(file, section.id));
    });
}
