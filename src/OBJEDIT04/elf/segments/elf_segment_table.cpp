// The program headers by index: read, edited, ordered at lock, laid out at format, written.
#include "OBJEDIT04/elf/segments/elf_segment_table.h"

#include "OBJEDIT04/elf/elf32_rw.h"
#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/elf_section.h"
#include "OBJEDIT04/elf/elf_section_table.h"
#include "OBJEDIT04/elf/segments/elf_seg_attr.h"
#include "OBJEDIT04/elf/segments/elf_segment.h"
#include "UTIL/data_map.h"

namespace OFE {

ELF_SEGMENT_TABLE::ELF_SEGMENT_TABLE(ELF_FILE* file) : OF_STATE_MACHINE(file) {}
ELF_SEGMENT_TABLE::~ELF_SEGMENT_TABLE() = default;

ELF_FILE* ELF_SEGMENT_TABLE::elf_file() const {
    return static_cast<ELF_FILE*>(ofile());
}

int ELF_SEGMENT_TABLE::clear() {
    segments_.clear();
    headers_.clear();
    translations_.clear();
    deleted_.clear();
    section_map_valid_ = phdr_in_load_ = has_deleted_ = frozen_ = false;
    made_ = true;
    entsize_ = ELF_PHENTSIZE;
    file_offset_ = 0;
    return 0;
}

int ELF_SEGMENT_TABLE::load(unsigned offset, unsigned entsize, unsigned short count) {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    clear();
    if (count == 0) return 0;
    if (entsize < ELF_PHENTSIZE || !ofile()->in_image(offset, uint64_t{count} * entsize)) {
        ofile()->set_error(
            OF_ERROR_CORRUPT,
            "%u program headers of %u bytes at offset 0x%x are beyond the end of the file", count,
            entsize, offset);
        return -1;
    }
    const uint8_t* p = ofile()->image().data + offset;
    headers_.reserve(count);
    for (unsigned i = 0; i < count; ++i, p += entsize) {
        headers_.push_back(std::make_unique<Elf32_Phdr>());
        load_Elf32_Phdr(p, *headers_.back(), elf_file()->swap());
    }
    file_offset_ = offset;
    made_ = false;
    return 0;
}

ELF_SEGMENT* ELF_SEGMENT_TABLE::segment(unsigned short id) {
    if (id >= segnum()) return nullptr;
    make_segments();
    return segments_[id].get();
}

int ELF_SEGMENT_TABLE::load_all_segments_into_mem() {
    make_segments();
    return 0;
}

Elf32_Phdr* ELF_SEGMENT_TABLE::segment_header(unsigned short id) {
    return id < segnum() ? headers_[id].get() : nullptr;
}

ELF_SEGMENT* ELF_SEGMENT_TABLE::segment_addr(unsigned addr, unsigned short start) {
    for (unsigned short i = start; i < segnum(); ++i) {
        const Elf32_Phdr& h = *headers_[i];
        if (h.p_type == PT_LOAD && addr >= h.p_vaddr && addr - h.p_vaddr < h.p_memsz)
            return segment(i);
    }
    return nullptr;
}

ELF_SEGMENT* ELF_SEGMENT_TABLE::segment_type(unsigned type, unsigned short start) {
    for (unsigned short i = start; i < segnum(); ++i)
        if (headers_[i]->p_type == type && !is_deleted(i)) return segment(i);
    return nullptr;
}

ELF_SEGMENT* ELF_SEGMENT_TABLE::segment_offset_type(unsigned offset, unsigned type,
                                                    unsigned short start) {
    for (unsigned short i = start; i < segnum(); ++i)
        if (headers_[i]->p_type == type && headers_[i]->p_offset == offset && !is_deleted(i))
            return segment(i);
    return nullptr;
}

void ELF_SEGMENT_TABLE::map_sections() {
    if (section_map_valid_) return;
    load_all_segments_into_mem();
    segment_of_section_.assign(elf_file()->elf_section_table()->scnnum(), nullptr);
    for (unsigned short i = 0; i < segnum(); ++i) {
        if (headers_[i]->p_type != PT_LOAD || is_deleted(i)) continue;
        for (const SEG_OBJECT& o : segments_[i]->objects())
            if (o.type == SEG_OBJECT_SECTION && o.id < segment_of_section_.size() &&
                !segment_of_section_[o.id])
                segment_of_section_[o.id] = segments_[i].get();
    }
    section_map_valid_ = true;
}

ELF_SEGMENT* ELF_SEGMENT_TABLE::segment_section(OF_SECTION* section) {
    map_sections();
    return section->id() < segment_of_section_.size() ? segment_of_section_[section->id()]
                                                      : nullptr;
}

ELF_SEGMENT* ELF_SEGMENT_TABLE::new_segment() {
    if (max_state(OF_STATE_OPEN) != 0) return nullptr;
    if (frozen_)
        ofile()->set_error(OF_ERROR_WARNING, "size of program header table has been frozen; cannot "
                                             "add new segments after the PT_PHDR "
                                             "segment has been allocated");
    unsigned short id = segnum();
    if (id + 1 >= ELF_SEGMENT_DELETED) return nullptr; // the highest count stands for "more"
    make_segments();
    headers_.push_back(std::make_unique<Elf32_Phdr>());
    segments_.push_back(std::make_unique<ELF_SEGMENT>(this, id));
    section_map_valid_ = false;
    if (!translations_.empty()) translations_.push_back(id);
    return segments_.back().get();
}

int ELF_SEGMENT_TABLE::delete_empty_load_segments() {
    if (max_state(OF_STATE_OPEN) != 0 || load_all_segments_into_mem() != 0) return -1;
    int result = 0;
    for (unsigned short i = 0; i < segnum(); ++i)
        if (headers_[i]->p_type == PT_LOAD && segments_[i]->objects().empty())
            result |= delete_segment(i);
    return result;
}

int ELF_SEGMENT_TABLE::delete_segment(unsigned short id) {
    if (max_state(OF_STATE_OPEN) != 0 || id >= segnum()) return -1;
    if (deleted_.size() <= id) deleted_.resize(segnum());
    deleted_[id] = true;
    has_deleted_ = true;
    section_map_valid_ = false;
    if (ELF_SEG_ATTR_TABLE* attributes = attribute_table()) attributes->delete_attrs_of(id);
    return 0;
}

ELF_SEG_ATTR_TABLE* ELF_SEGMENT_TABLE::attribute_table() {
    ELF_SEG_ATTR_DB* db = elf_file()->seg_attr_db();
    return db ? db->table() : nullptr;
}

int ELF_SEGMENT_TABLE::purge_deleted_segments() {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    if (!has_deleted_) return 0;
    static bool running = false;
    const NO_REENTRY once(running, ofile());
    if (once.refused()) return -1;
    int result = load_all_segments_into_mem();
    purge_deleted_seg_objects();
    RECORD_MAP<unsigned short> map(segnum(), ELF_SEGMENT_DELETED);
    unsigned short kept = 0;
    for (unsigned short i = 0, n = segnum(); i < n; ++i) {
        if (is_deleted(i)) continue;
        map[i] = kept;
        if (kept != i) {
            segments_[kept] = std::move(segments_[i]);
            headers_[kept] = std::move(headers_[i]);
        }
        segments_[kept]->set_id(kept);
        ++kept;
    }
    segments_.resize(kept);
    headers_.resize(kept);
    deleted_.clear();
    has_deleted_ = false;
    result |= update_translations(map);
    result |= patch_segment_refs();
    return result;
}

int ELF_SEGMENT_TABLE::purge_deleted_seg_objects() {
    int result = 0;
    for (auto& s : segments_) result |= s->purge_deleted_seg_objects();
    return result;
}

int ELF_SEGMENT_TABLE::update_translations(const RECORD_MAP<unsigned short>& map) {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    compose_translations(translations_, map, ELF_SEGMENT_DELETED);
    section_map_valid_ = false;
    return 0;
}

int ELF_SEGMENT_TABLE::patch_segment_refs() {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    if (translations_.empty()) return 0;
    for (auto& s : segments_)
        for (SEG_OBJECT& o : s->objects_)
            if (o.type == SEG_OBJECT_SEGMENT && o.id < translations_.size())
                o.id = translations_[o.id];
    if (ELF_SEG_ATTR_TABLE* attributes = attribute_table())
        attributes->update_segment_refs(translations_);
    translations_.clear();
    return 0;
}

int ELF_SEGMENT_TABLE::update_section_refs(const RECORD_MAP<unsigned>& map) {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    for (auto& s : segments_) {
        for (SEG_OBJECT& o : s->objects_)
            if (o.type == SEG_OBJECT_SECTION) o.id = o.id < map.size() ? map[o.id] : OF_DELETED;
        std::erase_if(s->objects_, [](const SEG_OBJECT& o) { return o.id == OF_DELETED; });
    }
    section_map_valid_ = false;
    return 0;
}

int ELF_SEGMENT_TABLE::progress_to_state(OF_STATE target) {
    switch (target) {
    case OF_STATE_LOCKED:
        return lock_segment_table();
    case OF_STATE_FORMATTED: {
        int result = 0;
        for (auto& s : segments_) result |= s->set_state(OF_STATE_FORMATTED);
        return result;
    }
    case OF_STATE_SAVED:
        return save();
    default:
        return 0;
    }
}

int ELF_SEGMENT_TABLE::revert_to_state(OF_STATE target) {
    if (target != OF_STATE_OPEN) return 0;
    int result = 0;
    for (auto& s : segments_) result |= s->reset_state(OF_STATE_OPEN);
    return result;
}

int ELF_SEGMENT_TABLE::lock_segment_table() {
    if (max_state(OF_STATE_OPEN) != 0 || load_all_segments_into_mem() != 0) return -1;
    if (purge_deleted_seg_objects() != 0 || purge_deleted_segments() != 0 ||
        lock_segment_ordering() != 0)
        return -1;
    int result = 0;
    for (auto& s : segments_) result |= s->set_state(OF_STATE_LOCKED);
    return result;
}

int ELF_SEGMENT_TABLE::lock_segment_ordering() {
    auto class_of = [&](unsigned short i) {
        unsigned type = headers_[i]->p_type;
        return type == PT_PHDR ? 0 : type == PT_LOAD ? 1 : 2;
    };
    std::vector<unsigned short> order;
    for (int wanted = 0; wanted <= 2; ++wanted)
        for (unsigned short i = 0; i < segnum(); ++i)
            if (class_of(i) == wanted) order.push_back(i);
    RECORD_MAP<unsigned short> map(order.size());
    std::vector<std::unique_ptr<ELF_SEGMENT>> segments(order.size());
    std::vector<std::unique_ptr<Elf32_Phdr>> headers(order.size());
    for (unsigned short i = 0, n = segnum(); i < n; ++i) {
        map[order[i]] = i;
        segments[i] = std::move(segments_[order[i]]);
        headers[i] = std::move(headers_[order[i]]);
        segments[i]->set_id(i);
    }
    segments_ = std::move(segments);
    headers_ = std::move(headers);
    return update_translations(map) != 0 || patch_segment_refs() != 0 ? -1 : 0;
}

int ELF_SEGMENT_TABLE::calculate_segment_sizes() {
    int result = 0;
    for (bool contained : {true, false})
        for (auto& s : segments_)
            if (s->is_contained() == contained) result |= s->calculate_size();
    return result;
}

uint64_t ELF_SEGMENT_TABLE::format_segments(uint64_t offset) {
    if (max_state(OF_STATE_LOCKED) != 0 || segnum() == 0) return offset;
    if (segment_type(PT_PHDR, 0) && !phdr_in_load_)
        ofile()->set_error(OF_ERROR_WARNING, "a PT_PHDR segment exists, but it is not contained by "
                                             "a PT_LOAD segment; PT_PHDR segments "
                                             "are required to be allocated to memory ");
    calculate_segment_sizes();
    ELF_SEGMENT* first = nullptr;
    for (auto& s : segments_)
        if (!first && s->p_type() == PT_LOAD && s->contains_file_header()) first = s.get();
    if (first) offset = first->format_segment(offset);
    for (auto& s : segments_)
        if (s->p_type() == PT_LOAD && s.get() != first) offset = s->format_segment(offset);
    for (auto& s : segments_) {
        if (s->p_type() == PT_LOAD) continue;
        if (s->is_contained())
            s->format_segment(s->header().p_offset);
        else
            offset = s->format_segment(offset);
    }
    return offset;
}

int ELF_SEGMENT_TABLE::save() {
    if (segnum() == 0) return 0;
    std::vector<uint8_t> bytes(size_t{segnum()} * ELF_PHENTSIZE);
    for (unsigned short i = 0; i < segnum(); ++i)
        store_Elf32_Phdr(&bytes[size_t{i} * ELF_PHENTSIZE], *headers_[i], elf_file()->swap());
    int result = ofile()->put_file_bytes(bytes.data(), bytes.size(), file_offset_);
    for (auto& s : segments_) result |= s->set_state(OF_STATE_SAVED);
    return result;
}

} // namespace OFE
