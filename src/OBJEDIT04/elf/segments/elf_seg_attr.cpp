// Reading and writing the attributes of segments. What names no segment of the file is left out
// with a warning.
#include "OBJEDIT04/elf/segments/elf_seg_attr.h"

#include <algorithm>

#include "OBJEDIT04/elf/elf32_rw.h"
#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/elf_section.h"
#include "OBJEDIT04/elf/elf_section_table.h"
#include "OBJEDIT04/elf/segments/elf_segment.h"
#include "OBJEDIT04/elf/segments/elf_segment_table.h"
#include "OBJEDIT04/machine/machine_db.h"
#include "UTIL/data_map.h"
#include "UTIL/savestr.h"
#include "UTIL/text_table.h"

namespace OFE {

uint32_t ELF_SEG_ATTR::val() const {
    const PHATTR_TAG* info = table->tag_info(tag);
    if (!info || info->has_value) return value;
    table->ofile()->set_error(OF_ERROR_ILLEGAL,
                              "invalid access to val field of a %s seg_attr entry", info->name);
    return 0;
}

ELF_SEG_ATTR_TABLE::ELF_SEG_ATTR_TABLE(ELF_SECTION* section)
    : OF_STATE_MACHINE(section->ofile()), section_(section) {
    ofile()->machine_db()->elf_build_phattrtag_db(tags_);
    if (ofile()->is_input()) load();
}

void ELF_SEG_ATTR_TABLE::load() {
    auto* file = static_cast<ELF_FILE*>(ofile());
    const OF_BYTES b = section_->bytes();
    for (size_t at = 0; at + ELF_PHATTRSIZE <= b.size; at += ELF_PHATTRSIZE) {
        Elf32_PHattr record;
        load_Elf32_PHattr(b.data + at, record, file->swap());
        if (record.pha_tag == PHA_NULL) break;
        if (record.pha_seg >= file->segment_table()->segnum()) {
            ofile()->set_error(
                OF_ERROR_WARNING,
                "section \"%s\" has an attribute of segment %u, which does not exist",
                section_->name(), record.pha_seg);
            continue;
        }
        attrs_.push_back({this, record.pha_seg, record.pha_tag, record.pha_val});
    }
}

bool ELF_SEG_ATTR_TABLE::is_empty() const {
    return std::none_of(attrs_.begin(), attrs_.end(),
                        [](const ELF_SEG_ATTR& a) { return !a.deleted && a.tag != PHA_NULL; });
}

ELF_SEG_ATTR* ELF_SEG_ATTR_TABLE::new_seg_attr(unsigned short seg) {
    if (max_state(OF_STATE_OPEN) != 0) return nullptr;
    attrs_.push_back({this, seg});
    return &attrs_.back();
}

ELF_SEG_ATTR* ELF_SEG_ATTR_TABLE::seg_attr_tag(unsigned short seg, unsigned tag) {
    for (ELF_SEG_ATTR& a : attrs_)
        if (a.seg == seg && a.tag == tag && !a.deleted) return &a;
    return nullptr;
}

void ELF_SEG_ATTR_TABLE::delete_attrs_of(unsigned short seg) {
    for (ELF_SEG_ATTR& a : attrs_) a.deleted |= a.seg == seg;
}

void ELF_SEG_ATTR_TABLE::update_segment_refs(const RECORD_MAP<unsigned short>& map) {
    for (ELF_SEG_ATTR& a : attrs_) {
        if (a.deleted) continue;
        const unsigned short to = a.seg < map.size() ? map[a.seg] : ELF_SEGMENT_DELETED;
        a.deleted = to == ELF_SEGMENT_DELETED;
        a.seg = to;
    }
}

const PHATTR_TAG* ELF_SEG_ATTR_TABLE::tag_info(unsigned tag) const {
    auto at = std::find_if(tags_.begin(), tags_.end(),
                           [tag](const PHATTR_TAG& t) { return t.number == tag; });
    return at == tags_.end() ? nullptr : &*at;
}

const char* ELF_SEG_ATTR_TABLE::tag_name(unsigned tag) const {
    const PHATTR_TAG* info = tag_info(tag);
    return info ? info->name : savestrf("PHA_0x%lx", static_cast<unsigned long>(tag));
}

int ELF_SEG_ATTR_TABLE::progress_to_state(OF_STATE target) {
    return target == OF_STATE_LOCKED ? lock_seg_attr_table() : 0;
}

// What stands behind the end goes with the bytes, which are written anew at the next lock.
int ELF_SEG_ATTR_TABLE::revert_to_state(OF_STATE) {
    return 0;
}

int ELF_SEG_ATTR_TABLE::lock_seg_attr_table() {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    std::erase_if(attrs_, [](const ELF_SEG_ATTR& a) { return a.deleted || a.tag == PHA_NULL; });
    const bool swap = static_cast<ELF_FILE*>(ofile())->swap();
    const size_t count = attrs_.empty() ? 0 : attrs_.size() + 1; // with the one that ends them
    DATA_MAP& map = section_->raw_data();
    map.set_zeros(count * ELF_PHATTRSIZE);
    uint8_t* p = count ? map.writable() : nullptr;
    for (ELF_SEG_ATTR& a : attrs_) {
        const PHATTR_TAG* info = tag_info(a.tag);
        if (info && !info->has_value) a.value = 0;
        store_Elf32_PHattr(p, {a.seg, a.tag, a.value}, swap);
        p += ELF_PHATTRSIZE;
    }
    return 0;
}

void ELF_SEG_ATTR_TABLE::generate_text_info(TEXT_TABLE& table) const {
    for (const ELF_SEG_ATTR& a : attrs_) {
        if (a.deleted || a.tag == PHA_NULL) continue;
        const PHATTR_TAG* info = tag_info(a.tag);
        const int row = table.append_rows();
        table.set_text(row, 0, "%u", a.seg);
        table.set_string(row, 1, tag_name(a.tag));
        if (!info || info->has_value) table.set_text(row, 2, "0x%x", a.value);
    }
}

ELF_SEG_ATTR_TABLE* ELF_SEG_ATTR_DB::table() {
    ELF_SECTION_TABLE* sections = file_->elf_section_table();
    if (!searched_) {
        searched_ = true;
        const unsigned id = sections->lookup_section_by_name(ELF_SEG_ATTR_SECTION_NAME);
        section_ = id ? sections->elf_section(id) : nullptr;
    }
    if (!section_ && !file_->is_input() && file_->own_state() == OF_STATE_OPEN) {
        section_ = static_cast<ELF_SECTION*>(sections->new_section(ELF_SEG_ATTR_SECTION_NAME));
        if (section_) section_->set_allocated(false);
    }
    return section_ ? section_->seg_attr_table_api() : nullptr;
}

int ELF_SEG_ATTR_DB::drop() {
    ELF_SEGMENT_TABLE* segments = file_->segment_table();
    int result = 0;
    if (ELF_SEGMENT* s = segments->segment_type(file_->machine_db()->seg_attr_p_type(), 0))
        result |= segments->delete_segment(s->id());
    if (section_) result |= file_->elf_section_table()->delete_section(section_->id());
    return result;
}

// --- a segment's view

ELF_SEG_ATTR* ELF_SEGMENT::new_seg_attr() {
    ELF_SEG_ATTR_TABLE* attributes = table_->attribute_table();
    return attributes ? attributes->new_seg_attr(id_) : nullptr;
}

ELF_SEG_ATTR* ELF_SEGMENT::seg_attr_tag(unsigned tag) {
    ELF_SEG_ATTR_TABLE* attributes = table_->attribute_table();
    return attributes ? attributes->seg_attr_tag(id_, tag) : nullptr;
}

unsigned ELF_SEGMENT::page() {
    ELF_SEG_ATTR* attr = seg_attr_tag(PHA_PAGE);
    return attr ? attr->value : 0;
}

} // namespace OFE
