// Finding a debug section and the relocations of its fields; the reader's steps.
#include "dwarf_editor/dw_data.h"

#include <algorithm>
#include <cstring>

#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OBJEDIT04/ofe/raw_records.h"

using namespace OFE;

namespace DWE {

DW_DATA::DW_DATA(OBJECT_FILE* file, const char* section_name) {
    OF_SECTION_TABLE* table = file->section_table();
    OF_RAW_SECTION raw;
    for (unsigned id = 1; table && id < table->scnnum(); ++id) {
        if (!table->raw_section(id, raw) || strcmp(raw.name, section_name) != 0) continue;
        OF_SECTION* section = table->section(id);
        if (!section || !section->initialized()) return;
        OF_BYTES bytes = section->bytes();
        bytes_ = bytes.data;
        size_ = bytes.data ? bytes.size : 0;
        big_ = file->machine_endian() == OF_ENDIAN_BIG;
        load_fields(file, id);
        return;
    }
}

void DW_DATA::load_fields(OBJECT_FILE* file, unsigned section_id) {
    OF_SECTION_TABLE* table = file->section_table();
    for (unsigned t = 0, tables = table->raw_reloc_table_num(section_id); t < tables; ++t) {
        OF_RAW_RELOCS relocs = table->raw_relocs(section_id, t);
        OF_RAW_SYMBOL symbol;
        for (unsigned i = 0; i < relocs.size(); ++i) {
            OF_RAW_RELOC rel = relocs[i];
            if (!relocs.symbols() || !relocs.symbols()->raw_symbol(rel.sym_id, symbol)) continue;
            fields_.push_back({rel.offset, symbol.section_id,
                               symbol.value + static_cast<uint32_t>(rel.addend), relocs.rela()});
        }
    }
    std::stable_sort(fields_.begin(), fields_.end(),
                     [](const FIELD& a, const FIELD& b) { return a.offset < b.offset; });
}

DW_ADDRESS DW_DATA::address_at(size_t offset) const {
    if (size_ < 4 || offset > size_ - 4) return {};
    DW_ADDRESS address{DW_ADDRESS::NO_SECTION, read_u32(bytes_ + offset, big_)};
    auto field = std::lower_bound(fields_.begin(), fields_.end(), offset,
                                  [](const FIELD& f, size_t at) { return f.offset < at; });
    if (field == fields_.end() || field->offset != offset) return address;
    address.section_id = field->section_id;
    address.value = field->rela ? field->value : field->value + address.value;
    return address;
}

std::string_view DW_DATA::text_at(size_t offset) const {
    if (offset >= size_) return {};
    const void* end = memchr(bytes_ + offset, 0, size_ - offset);
    if (!end) return {};
    const char* begin = reinterpret_cast<const char*>(bytes_ + offset);
    return {begin, static_cast<size_t>(static_cast<const char*>(end) - begin)};
}

void DW_READER::seek(size_t pos) {
    if (pos > end_)
        stop();
    else
        pos_ = pos;
}

void DW_READER::skip(uint64_t count) {
    if (count > end_ - pos_)
        stop();
    else
        pos_ += static_cast<size_t>(count);
}

uint64_t DW_READER::number(unsigned bytes) {
    size_t at = pos_;
    skip(bytes);
    if (!ok_) return 0;
    uint64_t value = 0;
    for (unsigned i = 0; i < bytes; ++i)
        value = value << 8 | data_->bytes()[at + (data_->big() ? i : bytes - 1 - i)];
    return value;
}

uint64_t DW_READER::uleb() {
    uint64_t value = 0;
    for (unsigned shift = 0;; shift += 7) {
        uint8_t byte = u8();
        if (!ok_) return 0;
        if (shift < 64) value |= uint64_t{byte & 0x7Fu} << shift;
        if (!(byte & 0x80)) return value;
    }
}

int64_t DW_READER::sleb() {
    uint64_t value = 0;
    for (unsigned shift = 0;;) {
        uint8_t byte = u8();
        if (!ok_) return 0;
        if (shift < 64) value |= uint64_t{byte & 0x7Fu} << shift;
        shift += 7;
        if (byte & 0x80) continue;
        if (byte & 0x40 && shift < 64) value |= ~uint64_t{0} << shift;
        return static_cast<int64_t>(value);
    }
}

std::string_view DW_READER::text() {
    std::string_view found = data_->text_at(pos_);
    skip(found.size() + 1);
    return ok_ ? found : std::string_view();
}

DW_ADDRESS DW_READER::address() {
    size_t at = pos_;
    skip(4);
    return ok_ ? data_->address_at(at) : DW_ADDRESS{};
}

} // namespace DWE
