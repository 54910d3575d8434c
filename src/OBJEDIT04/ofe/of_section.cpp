// What sections of every format share: the name, the section symbol, the group and the writing of
// raw data.
#include "OBJEDIT04/ofe/of_section.h"

#include <algorithm>
#include <cstring>

#include "OBJEDIT04/machine/machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_reloc_table.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "UTIL/data_map.h"
#include "UTIL/savestr.h"

namespace OFE {

namespace {

bool all_zero(const uint8_t* p, size_t size) {
    return size == 0 || (p[0] == 0 && std::memcmp(p, p + 1, size - 1) == 0);
}

} // namespace

OF_SECTION::OF_SECTION(OF_SECTION_TABLE* table, unsigned id)
    : OF_STATE_MACHINE(table->ofile()), id_(id), table_(table) {}

OF_SECTION::~OF_SECTION() = default;

int OF_SECTION::set_name(const char* name) {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    name_ = name ? savestr(name) : "";
    return 0;
}

OF_SYMBOL* OF_SECTION::symbol() {
    if (!symbol_) symbol_ = find_symbol();
    if (!symbol_) symbol_ = create_section_symbol();
    return symbol_;
}

OF_SYMBOL* OF_SECTION::find_symbol() {
    if (symbol_) return symbol_;
    unsigned id = table_->section_symbol_id(id_);
    return id == OF_DELETED ? nullptr : ofile()->symbol_table()->symbol(id);
}

OF_SYMBOL* OF_SECTION::create_section_symbol() {
    OF_SYMBOL_TABLE* table = ofile()->symbol_table();
    OF_SYMBOL* s = table ? table->new_symbol() : nullptr;
    if (!s) return nullptr;
    s->set_name_view(name_);
    s->set_section(this);
    symbol_ = s;
    return s;
}

bool OF_SECTION::is_blocked() {
    return ofile()->machine_db()->is_blocked(this);
}

bool OF_SECTION::is_noinit() {
    return ofile()->machine_db()->is_noinit(this);
}

unsigned OF_SECTION::size_in_bytes() {
    return static_cast<unsigned>(uint64_t{size()} * unit_size() / 8);
}

OF_GROUP_TABLE* OF_SECTION::group_api() {
    return nullptr;
}

int OF_SECTION::set_group(OF_GROUP_TABLE* group) {
    group_ = group;
    return 0;
}

int OF_SECTION::clear_group() {
    group_ = nullptr;
    return 0;
}

OF_SECTION_ALL_RELOCS OF_SECTION::all_relocs() {
    return OF_SECTION_ALL_RELOCS(this);
}

void OF_SECTION::unload_relocs() {
    for (unsigned i = 0; i < reloc_table_num(); ++i)
        if (OF_RELOC_TABLE* table = reloc_table(i)) table->unload();
}

int OF_SECTION::clear_relocs() {
    int result = 0;
    for (unsigned i = 0; i < reloc_table_num(); ++i)
        if (OF_RELOC_TABLE* table = reloc_table(i)) result |= table->clear();
    return result;
}

bool OF_SECTION::any_reloc_at_offset(unsigned offset) {
    for (unsigned i = 0; i < reloc_table_num(); ++i) {
        OF_RELOC_TABLE* table = reloc_table(i);
        if (table && table->any_reloc_at_offset(offset)) return true;
    }
    return false;
}

OF_BYTES OF_SECTION::bytes() {
    if (!data_map_) return file_bytes();
    auto b = data_map_->bytes();
    return {b.data(), b.size()};
}

DATA_MAP& OF_SECTION::raw_data() {
    if (!data_map_) {
        bool big = ofile()->machine_db()->of_section_endian(this) == OF_ENDIAN_BIG;
        auto map = std::make_unique<DATA_MAP>(big ? DATA_MAP::BIG : DATA_MAP::LITTLE);
        OF_BYTES b = file_bytes();
        if (b.size) map->set_view({b.data, b.size});
        data_map_ = std::move(map);
    }
    return *data_map_;
}

void OF_SECTION::set_raw_data(std::unique_ptr<DATA_MAP> map) {
    data_map_ = std::move(map);
}

void OF_SECTION::drop_raw_data() {
    data_map_.reset();
}

bool OF_SECTION::is_write_required(const void* bytes, size_t size) const {
    return !ofile()->is_file_zero_init() || !all_zero(static_cast<const uint8_t*>(bytes), size);
}

bool OF_SECTION::check_raw_data_ABW(unsigned offset, unsigned& size) {
    unsigned limit = size_in_bytes();
    if (uint64_t{offset} + size <= limit) return true;
    ofile()->set_error(
        OF_ERROR_ILLEGAL,
        "writing 0x%x bytes to offset 0x%x in section \"%s\" exceeds its formatted size (0x%x)",
        size, offset, name_, limit);
    size = offset < limit ? limit - offset : 0;
    return false;
}

// The buffer of an output section has its full size from the first write on, so that its size never
// shrinks to what has been written so far.
uint8_t* OF_SECTION::writable_bytes(unsigned offset, unsigned size) {
    uint64_t end = uint64_t{offset} + size;
    unsigned full = size_in_bytes();
    if (state() > OF_STATE_OPEN && end > full) return nullptr;
    DATA_MAP& map = raw_data();
    if (map.size() < std::max<uint64_t>(end, full)) map.resize(std::max<uint64_t>(end, full));
    return map.writable() + offset;
}

uint8_t* OF_SECTION::raw_data_writable(size_t& size) {
    size = size_in_bytes();
    return writable_bytes(0, static_cast<unsigned>(size));
}

uint8_t* OF_SECTION::direct_bytes(unsigned offset, unsigned size) {
    if (own_state() < OF_STATE_SAVED || uint64_t{offset} + size > size_in_bytes()) return nullptr;
    return ofile()->output_bytes(file_offset() + offset, size);
}

int OF_SECTION::write_to_raw_data(const void* bytes, unsigned size, unsigned offset) {
    if (!initialized())
        ofile()->set_error(OF_ERROR_WARNING,
                           "accessing the raw data of section \"%s\" which is uninitialized "
                           "according to its section "
                           "attributes; changes to raw data may be lost",
                           name_);
    bool fits = state() <= OF_STATE_OPEN || check_raw_data_ABW(offset, size);
    if (size == 0) return fits ? 0 : -1;
    if (direct_write_) {
        if (!is_write_required(bytes, size)) return fits ? 0 : -1;
        if (ofile()->put_file_bytes(bytes, size, file_offset() + offset) != 0) return -1;
    } else {
        uint8_t* to = writable_bytes(offset, size);
        if (!to) return -1;
        std::memmove(to, bytes, size);
    }
    return fits ? 0 : -1;
}

int OF_SECTION::write_to_raw_data(DATA_MAP& from, unsigned offset) {
    auto b = from.bytes();
    if (b.size() > 0xFFFFFFFFu) return -1;
    return write_to_raw_data(b.data(), static_cast<unsigned>(b.size()), offset);
}

int OF_SECTION::validate_direct_write() {
    if (min_state(OF_STATE_SAVED) != 0) return -1;
    if (!data_map_ || (data_map_->empty() && !data_map_->file())) return 0;
    ofile()->set_error(OF_ERROR_ILLEGAL,
                       "illegal direct write to raw data for section %s in file %s ", name_,
                       ofile()->display_name());
    return -1;
}

int OF_SECTION::set_direct_write() {
    if (validate_direct_write() != 0) return -1;
    direct_write_ = true;
    return 0;
}

} // namespace OFE
