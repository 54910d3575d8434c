// What a segment contains, how large that makes it, and where it and its contents lie in the file.
#include "OBJEDIT04/elf/segments/elf_segment.h"

#include <algorithm>

#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/elf_section.h"
#include "OBJEDIT04/elf/elf_section_table.h"
#include "OBJEDIT04/elf/segments/elf_segment_table.h"
#include "OBJEDIT04/machine/machine_db.h"
#include "UTIL/data_map.h"
#include "UTIL/savestr.h"

namespace OFE {

ELF_SEGMENT::ELF_SEGMENT(ELF_SEGMENT_TABLE* table, unsigned short id)
    : OF_STATE_MACHINE(table->ofile()), table_(table), id_(id) {}

ELF_SEGMENT::~ELF_SEGMENT() = default;

ELF_FILE* ELF_SEGMENT::elf_file() const {
    return static_cast<ELF_FILE*>(ofile());
}
Elf32_Phdr& ELF_SEGMENT::header() const {
    return *table_->segment_header(id_);
}

bool ELF_SEGMENT::contains_file_header() const {
    return std::any_of(objects_.begin(), objects_.end(),
                       [](const SEG_OBJECT& o) { return o.type == SEG_OBJECT_FILE_HEADER; });
}

int ELF_SEGMENT::add_seg_object(SEG_OBJECT_TYPE type, unsigned id) {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    switch (type) {
    case SEG_OBJECT_SEGMENT: {
        if (p_type() != PT_LOAD) {
            ofile()->set_error(OF_ERROR_ILLEGAL,
                               "illegal attempt to add a segment to a non-PT_LOAD segment");
            return -1;
        }
        ELF_SEGMENT* member = table_->segment(static_cast<unsigned short>(id));
        if (!member || member == this) return -1;
        if (member->p_type() == PT_PHDR) table_->set_phdr_in_load_segment(true);
        member->contained_ = true;
        break;
    }
    case SEG_OBJECT_SECTION: {
        ELF_SECTION* section = elf_file()->elf_section_table()->elf_section(id);
        if (!section) return -1;
        section->set_in_segment(true);
        break;
    }
    case SEG_OBJECT_FILE_HEADER:
        elf_file()->set_elf_header_in_segment(true);
        break;
    }
    objects_.push_back({type, id});
    has_objects_ = true;
    table_->section_map_valid_ = false;
    raw_data_.reset();
    return 0;
}

int ELF_SEGMENT::delete_seg_object(unsigned index) {
    if (max_state(OF_STATE_OPEN) != 0 || index >= objects_.size()) return -1;
    objects_.erase(objects_.begin() + index);
    table_->section_map_valid_ = false;
    return 0;
}

// A deleted section shows as the placeholder in its slot.
int ELF_SEGMENT::purge_deleted_seg_objects() {
    ELF_SECTION_TABLE* sections = elf_file()->elf_section_table();
    std::erase_if(objects_, [&](const SEG_OBJECT& o) {
        if (o.type == SEG_OBJECT_SECTION)
            return sections->is_deleted(o.id) || o.id >= sections->scnnum();
        return o.type == SEG_OBJECT_SEGMENT &&
               table_->is_deleted(static_cast<unsigned short>(o.id));
    });
    table_->section_map_valid_ = false;
    return 0;
}

DATA_MAP* ELF_SEGMENT::raw_data() {
    if (!raw_data_ && !has_objects_) raw_data_ = std::make_unique<DATA_MAP>();
    return raw_data_.get();
}

void ELF_SEGMENT::add_section_size(ELF_SECTION* section, uint64_t& filesz, uint64_t& memsz) {
    Elf32_Phdr& h = header();
    uint64_t sz = section->file_bytes_size();
    if (h.p_type != PT_LOAD && h.p_type != PT_TLS) {
        filesz += sz;
        return;
    }
    if (h.p_type == PT_LOAD && section->run_addr() < h.p_vaddr) {
        ofile()->set_error(OF_ERROR_CORRUPT,
                           "program segment contains a section whose vaddr (0x%08x) is less than "
                           "the program segments "
                           "(0x%08x)",
                           section->run_addr(), h.p_vaddr);
        section->set_run_addr(h.p_vaddr);
    }
    uint64_t d = uint64_t{section->run_addr() - h.p_vaddr} * elf_file()->unit_bytes();
    if (sz) filesz = std::max(filesz, d + sz);
    memsz = std::max(memsz, d + section->size_in_bytes());
}

void ELF_SEGMENT::add_segment_size(ELF_SEGMENT* member, uint64_t& filesz, uint64_t& memsz) {
    Elf32_Phdr& h = header();
    Elf32_Phdr& m = member->header();
    if (h.p_type != PT_LOAD && h.p_type != PT_TLS) {
        filesz += m.p_filesz;
        memsz += m.p_memsz;
        return;
    }
    if (h.p_type == PT_LOAD && m.p_vaddr < h.p_vaddr) {
        ofile()->set_error(OF_ERROR_CORRUPT,
                           "program segment contains a segment whose vaddr (0x%08x) is less than "
                           "the program segments "
                           "(0x%08x)",
                           m.p_vaddr, h.p_vaddr);
        m.p_vaddr = h.p_vaddr;
    }
    uint64_t d = uint64_t{m.p_vaddr - h.p_vaddr} * elf_file()->unit_bytes();
    if (m.p_filesz) filesz = std::max(filesz, d + m.p_filesz);
    memsz = std::max(memsz, d + m.p_memsz);
}

int ELF_SEGMENT::calculate_size() {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    Elf32_Phdr& h = header();
    if (!has_objects_) {
        if (h.p_type == PT_PHDR) {
            h.p_filesz = table_->table_size();
            h.p_memsz = contained_ ? h.p_filesz : 0;
        } else if (raw_data_) {
            h.p_filesz = static_cast<unsigned>(raw_data_->size());
        }
        return 0;
    }
    uint64_t filesz = 0, memsz = 0;
    for (const SEG_OBJECT& o : objects_) {
        switch (o.type) {
        case SEG_OBJECT_FILE_HEADER:
            if (h.p_type == PT_LOAD) {
                filesz = std::max<uint64_t>(filesz, elf_file()->header().e_ehsize);
                memsz = std::max<uint64_t>(memsz, elf_file()->header().e_ehsize);
            } else {
                filesz += elf_file()->header().e_ehsize;
            }
            break;
        case SEG_OBJECT_SECTION:
            add_section_size(elf_file()->elf_section_table()->elf_section(o.id), filesz, memsz);
            break;
        case SEG_OBJECT_SEGMENT:
            add_segment_size(table_->segment(static_cast<unsigned short>(o.id)), filesz, memsz);
            break;
        }
    }
    if (filesz > 0xFFFFFFFFu || memsz > 0xFFFFFFFFu) {
        ofile()->set_error(OF_ERROR_TRUNCATED, "the size of segment %u does not fit", id_);
        return -1;
    }
    h.p_filesz = static_cast<unsigned>(filesz);
    h.p_memsz = static_cast<unsigned>(memsz);
    return 0;
}

uint64_t ELF_SEGMENT::format_segment(uint64_t offset) {
    if (max_state(OF_STATE_LOCKED) != 0) return offset;
    Elf32_Phdr& h = header();
    if (h.p_type == PT_GNU_STACK) return offset;
    unsigned align = h.p_align;
    if (h.p_type == PT_LOAD) align = std::max(align, table_->min_load_align());
    offset = ELF_FILE::aligned_offset(offset, h.p_vaddr * elf_file()->unit_bytes(), align);
    offset = ELF_FILE::aligned_offset(offset, 0, 4);
    h.p_offset = static_cast<unsigned>(offset);
    bool load = h.p_type == PT_LOAD;
    unsigned at = h.p_offset, unit = elf_file()->unit_bytes();
    for (const SEG_OBJECT& o : objects_) {
        switch (o.type) {
        case SEG_OBJECT_FILE_HEADER:
            if (!load) at += elf_file()->header().e_ehsize;
            break;
        case SEG_OBJECT_SECTION: {
            ELF_SECTION* s = elf_file()->elf_section_table()->elf_section(o.id);
            if (load) {
                s->header().sh_offset = h.p_offset + (s->run_addr() - h.p_vaddr) * unit;
            } else {
                if (!contained_) s->header().sh_offset = at;
                at += s->file_bytes_size();
            }
            break;
        }
        case SEG_OBJECT_SEGMENT: {
            Elf32_Phdr& m = table_->segment(static_cast<unsigned short>(o.id))->header();
            m.p_offset = load ? h.p_offset + (m.p_vaddr - h.p_vaddr) * unit : at;
            if (!load) at += m.p_filesz;
            break;
        }
        }
    }
    if (!has_objects_ && h.p_type == PT_PHDR)
        table_->set_file_offset(ELF_FILE::align_file_offset(h.p_offset, 0, 4));
    return offset + h.p_filesz;
}

int ELF_SEGMENT::progress_to_state(OF_STATE target) {
    return target == OF_STATE_SAVED ? save() : 0;
}

// Bytes that belong to no object are looked at where they were saved.
int ELF_SEGMENT::revert_to_state(OF_STATE target) {
    if (target != OF_STATE_OPEN || has_objects_ || !raw_data_) return 0;
    const Elf32_Phdr& h = header();
    if (h.p_filesz && ofile()->in_image(h.p_offset, h.p_filesz))
        raw_data_->set_view({ofile()->image().data + h.p_offset, h.p_filesz});
    return 0;
}

int ELF_SEGMENT::save() {
    if (has_objects_ || p_type() == PT_PHDR || !raw_data_) return 0;
    return ofile()->put_file_data(*raw_data_, header().p_offset);
}

const char* ELF_SEGMENT::p_type_name(unsigned type) {
    const char* name = nullptr;
    if (ofile()->machine_db()->elf_p_type_name(this, type, name) && name) return name;
    static constexpr const char* NAMES[] = {"PT_NULL", "PT_LOAD",  "PT_DYNAMIC", "PT_INTERP",
                                            "PT_NOTE", "PT_SHLIB", "PT_PHDR",    "PT_TLS"};
    if (type <= PT_TLS) return NAMES[type];
    if (type == PT_GNU_STACK) return "PT_GNU_STACK";
    return savestrf("PT_UNKNOWN (0x%x)", type);
}

const char* ELF_SEGMENT::p_flag_name(unsigned flag) {
    const char* name = nullptr;
    if (ofile()->machine_db()->elf_p_flag_name(this, flag, name) && name) return name;
    switch (flag) {
    case PF_R:
        return "PF_R";
    case PF_W:
        return "PF_W";
    case PF_X:
        return "PF_X";
    default:
        return savestrf("0x%x", flag);
    }
}

std::string ELF_SEGMENT::p_flags_str() {
    std::string text;
    for (unsigned flag = 1; flag; flag <<= 1) {
        if (!(header().p_flags & flag)) continue;
        if (!text.empty()) text += "|";
        text += p_flag_name(flag);
    }
    return text;
}

} // namespace OFE
