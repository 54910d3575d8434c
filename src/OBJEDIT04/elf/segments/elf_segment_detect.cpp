// What the segments of a file that was read contain: whatever lies inside a segment's range of the
// file, or of memory where it has no bytes. Only the ranges tell, so that a section is taken by the
// first loaded segment that encloses it, and once more per type of the other segments (a section of
// thread-local data stands in a PT_LOAD and in a PT_TLS).
#include <algorithm>
#include <vector>

#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/elf_section.h"
#include "OBJEDIT04/elf/elf_section_table.h"
#include "OBJEDIT04/elf/segments/elf_seg_attr.h"
#include "OBJEDIT04/elf/segments/elf_segment.h"
#include "OBJEDIT04/elf/segments/elf_segment_table.h"
#include "OBJEDIT04/elf/segments/segment_contents.h"
#include "UTIL/data_map.h"

namespace OFE {

namespace {

// Types beyond these share the last place; files have fewer.
constexpr size_t MAX_TYPES = 16;

EXTENT file_extent(const Elf32_Phdr& h, unsigned id) {
    return {h.p_offset, h.p_filesz, id};
}
EXTENT memory_extent(const Elf32_Phdr& h, unsigned id) {
    return {h.p_vaddr, h.p_memsz, id};
}

// Thread-local data without bytes takes no room in memory, whatever its address; its segment holds
// nothing else.
bool may_hold(unsigned type, const Elf32_Shdr& s) {
    const bool tls = s.sh_flags & SHF_TLS;
    return type == PT_TLS ? tls : !(type == PT_LOAD && tls && s.sh_type == SHT_NOBITS);
}

} // namespace

void ELF_SEGMENT_TABLE::make_segments() {
    if (made_) return;
    made_ = true;
    segments_.reserve(segnum());
    for (unsigned short i = 0; i < segnum(); ++i)
        segments_.push_back(std::make_unique<ELF_SEGMENT>(this, i));
    if (!ofile()->is_input()) return;
    for (unsigned short i = 0; i < segnum(); ++i)
        if (headers_[i]->p_type == PT_LOAD && headers_[i]->p_offset == 0)
            segments_[i]->add_seg_object(SEG_OBJECT_FILE_HEADER, 0);
    detect_segments();
    detect_sections();
    for (unsigned short i = 0; i < segnum(); ++i) {
        const Elf32_Phdr& h = *headers_[i];
        if (!segments_[i]->has_objects() && h.p_filesz && ofile()->in_image(h.p_offset, h.p_filesz))
            ofile()->get_file_data(*segments_[i]->raw_data(), h.p_offset, h.p_filesz);
    }
}

// Other segments within the loaded ones. One without bytes that starts in the middle of a loaded
// segment's bytes has its address there, whatever its header says.
void ELF_SEGMENT_TABLE::detect_segments() {
    std::vector<EXTENT> load_bytes, load_memory, with_bytes, without, starts;
    for (unsigned short i = 0; i < segnum(); ++i) {
        const Elf32_Phdr& h = *headers_[i];
        if (h.p_type == PT_LOAD) {
            load_bytes.push_back(file_extent(h, i));
            load_memory.push_back(memory_extent(h, i));
        } else if (h.p_filesz != 0) {
            with_bytes.push_back(file_extent(h, i));
        } else if (h.p_memsz != 0) {
            without.push_back(memory_extent(h, i));
            starts.push_back({h.p_offset, 0, i});
        }
    }
    std::vector<unsigned> holder(segnum(), NO_EXTENT);
    auto enter = [&](const std::vector<EXTENT>& members, const std::vector<unsigned>& found) {
        for (size_t i = 0; i < members.size(); ++i) holder[members[i].id] = found[i];
    };
    enter(with_bytes, enclosing_extents(load_bytes, with_bytes));
    enter(without, enclosing_extents(load_memory, without));
    const std::vector<unsigned> at = enclosing_extents(load_bytes, starts);
    for (size_t i = 0; i < starts.size(); ++i) {
        if (holder[starts[i].id] != NO_EXTENT || at[i] == NO_EXTENT) continue;
        const Elf32_Phdr& load = *headers_[at[i]];
        Elf32_Phdr& h = *headers_[starts[i].id];
        h.p_vaddr = load.p_vaddr + (h.p_offset - load.p_offset) / elf_file()->unit_bytes();
    }
    for (unsigned short i = 0; i < segnum(); ++i) {
        if (holder[i] == NO_EXTENT) continue;
        segments_[holder[i]]->take_detected(SEG_OBJECT_SEGMENT, i);
        segments_[i]->contained_ = true;
        if (headers_[i]->p_type == PT_PHDR) phdr_in_load_ = true;
    }
}

void ELF_SEGMENT_TABLE::detect_sections() {
    std::vector<unsigned> types{PT_LOAD};
    std::vector<std::vector<EXTENT>> bytes(MAX_TYPES), memory(MAX_TYPES);
    for (unsigned short i = 0; i < segnum(); ++i) {
        const Elf32_Phdr& h = *headers_[i];
        if (h.p_offset == 0 && h.p_type != PT_LOAD) continue;
        size_t type = std::find(types.begin(), types.end(), h.p_type) - types.begin();
        if (type == types.size() && type < MAX_TYPES) types.push_back(h.p_type);
        type = std::min(type, MAX_TYPES - 1);
        bytes[type].push_back(file_extent(h, i));
        memory[type].push_back(memory_extent(h, i));
    }
    ELF_SECTION_TABLE* sections = elf_file()->elf_section_table();
    std::vector<EXTENT> with_bytes, without;
    Elf32_Shdr s;
    for (unsigned i = 1; i < sections->scnnum(); ++i) {
        if (!sections->raw_header(i, s) || s.sh_type == SHT_NULL || s.sh_size == 0 ||
            sections->is_deleted(i) || !(s.sh_flags & SHF_ALLOC))
            continue;
        if (s.sh_type != SHT_NOBITS)
            with_bytes.push_back({s.sh_offset, s.sh_size, i});
        else
            without.push_back({s.sh_addr, s.sh_size, i});
    }
    std::vector<unsigned> pages(segnum(), 0);
    if (ELF_SEG_ATTR_TABLE* attributes = attribute_table())
        for (const ELF_SEG_ATTR& a : attributes->attrs())
            if (a.tag == PHA_PAGE && a.seg < pages.size()) pages[a.seg] = a.value;
    for (size_t type = 0; type < types.size(); ++type) {
        std::vector<unsigned> holder(sections->scnnum(), NO_EXTENT);
        std::vector<unsigned> found = enclosing_extents(bytes[type], with_bytes);
        for (size_t i = 0; i < found.size(); ++i) holder[with_bytes[i].id] = found[i];
        found = enclosing_extents(memory[type], without);
        for (size_t i = 0; i < found.size(); ++i)
            if (found[i] != NO_EXTENT &&
                sections->elf_section(without[i].id)->page() == pages[found[i]])
                holder[without[i].id] = found[i];
        for (unsigned i = 1; i < holder.size(); ++i) {
            if (holder[i] == NO_EXTENT || !sections->raw_header(i, s) || !may_hold(types[type], s))
                continue;
            segments_[holder[i]]->take_detected(SEG_OBJECT_SECTION, i);
            if (types[type] == PT_LOAD) sections->elf_section(i)->set_in_segment(true);
        }
    }
}

} // namespace OFE
