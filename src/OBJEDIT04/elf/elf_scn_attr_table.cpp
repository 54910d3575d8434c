// Extended section attributes. Layout: version bytes, 16 reserved bytes, the entry count (4), the
// entry size (2), then one value per section from index 0. A section that cannot be understood is
// ignored with a warning.
#include "OBJEDIT04/elf/elf_scn_attr_table.h"

#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/elf_section.h"
#include "OBJEDIT04/elf/elf_section_table.h"
#include "OBJEDIT04/machine/machine_db.h"
#include "UTIL/data_map.h"

namespace OFE {

namespace {

constexpr unsigned VERSION = 1, COUNT_AT = 20, ENTSIZE_AT = 24, HEADER_SIZE = 26, TRAILER_SIZE = 16;

} // namespace

ELF_SCN_ATTR_TABLE::ELF_SCN_ATTR_TABLE(ELF_SECTION* section, int kind)
    : OF_STATE_MACHINE(section->ofile()), section_(section), kind_(kind) {}

int ELF_SCN_ATTR_TABLE::load() {
    if (loaded_ || !ofile()->is_input()) return 0;
    loaded_ = true;
    OF_BYTES b = section_->bytes();
    const char* tool = OBJECT_FILE::tool_name_m;
    auto invalid = [&] {
        ofile()->set_error(OF_ERROR_WARNING,
                           "Invalid QV extended section attributes format. All extended section "
                           "attributes will be ignored. Tool chain update recommended.");
        return -1;
    };
    if (b.size < 4) return invalid();
    if (b.data[0] > VERSION || b.data[1] != 0) {
        ofile()->set_error(OF_ERROR_WARNING,
                           "Unrecognized QV extended section attributes format. All extended "
                           "section attributes will "
                           "be ignored. %s update recommended.",
                           tool);
        return 0;
    }
    if (b.data[0] == 0) {
        ofile()->set_error(OF_ERROR_WARNING,
                           "Obsolete QV extended section attributes format. All extended section "
                           "attributes will be "
                           "ignored. %s update recommended.",
                           tool);
        return 0;
    }
    if (b.data[2] != 0)
        ofile()->set_error(
            OF_ERROR_WARNING,
            "Updated extended section attributes format. Some extended section attributes may be "
            "ignored. %s update recommended.",
            tool);
    if (b.size < HEADER_SIZE) return invalid();
    big_ = static_cast<ELF_FILE*>(ofile())->big();
    unsigned count = read_u32(b.data + COUNT_AT, big_),
             entsize = read_u16(b.data + ENTSIZE_AT, big_);
    if (uint64_t{count} * entsize > b.size - HEADER_SIZE || entsize > 4) return invalid();
    count_ = entsize ? count : 0;
    entsize_ = entsize;
    values_ = b.data + HEADER_SIZE;
    return 0;
}

unsigned ELF_SCN_ATTR_TABLE::value(unsigned section_id) const {
    if (section_id >= count_) return 0;
    const uint8_t* p = values_ + size_t{section_id} * entsize_;
    unsigned v = 0;
    for (unsigned i = 0; i < entsize_; ++i)
        v |= unsigned{p[i]} << (8 * (big_ ? entsize_ - 1 - i : i));
    return v;
}

int ELF_SCN_ATTR_TABLE::progress_to_state(OF_STATE target) {
    if (target == OF_STATE_LOCKED) return save();
    if (target == OF_STATE_FORMATTED)
        section_->raw_data().resize(section_->raw_data().size() + TRAILER_SIZE);
    return 0;
}

int ELF_SCN_ATTR_TABLE::revert_to_state(OF_STATE) {
    return 0;
}

int ELF_SCN_ATTR_TABLE::save() {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    auto* file = static_cast<ELF_FILE*>(ofile());
    ELF_SECTION_TABLE* sections = file->elf_section_table();
    unsigned count = 0, largest = 0;
    for (unsigned i = 0; i < sections->scnnum(); ++i) {
        unsigned v = sections->elf_section(i)->ext_attr(kind_);
        if (v == 0) continue;
        count = i + 1;
        if (v > largest) largest = v;
    }
    unsigned entsize = 0;
    for (unsigned v = largest; v; v >>= 8) ++entsize;
    count_ = 0; // what was read may no longer be where it was
    section_->set_sh_type(file->machine_db()->elf_qv_sh_attr_type(kind_));
    DATA_MAP& map = section_->raw_data();
    map.set_zeros(HEADER_SIZE + size_t{count} * entsize);
    uint8_t* p = map.writable();
    bool big = file->big();
    p[0] = VERSION;
    write_u32(p + COUNT_AT, count, big);
    write_u16(p + ENTSIZE_AT, static_cast<uint16_t>(entsize), big);
    p += HEADER_SIZE;
    for (unsigned i = 0; i < count; ++i, p += entsize) {
        unsigned v = sections->elf_section(i)->ext_attr(kind_);
        for (unsigned b = 0; b < entsize; ++b)
            p[big ? entsize - 1 - b : b] = static_cast<uint8_t>(v >> (8 * b));
    }
    return 0;
}

} // namespace OFE
