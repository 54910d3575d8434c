// A string table section over its pool.
#include "OBJEDIT04/elf/elf_string_table.h"

#include "OBJEDIT04/elf/elf_section.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "UTIL/data_map.h"

namespace OFE {

ELF_STRING_TABLE::ELF_STRING_TABLE(ELF_SECTION* section)
    : OF_STRING_TABLE(section->ofile()), section_(section) {
    OF_BYTES b = section->bytes();
    if (b.size) set_pool(b);
}

const char* ELF_STRING_TABLE::pool_name() const {
    return section_->name();
}

unsigned ELF_STRING_TABLE::add_string(const char* text) {
    return text && *text ? OF_STRING_TABLE_MANAGER::add_string(text) : 0;
}

// The section's bytes are the pool itself; an empty pool is the empty string alone.
int ELF_STRING_TABLE::progress_to_state(OF_STATE target) {
    if (target != OF_STATE_LOCKED) return 0;
    DATA_MAP& map = section_->raw_data();
    if (size() == 0)
        map.set_zeros(first_offset());
    else
        map.set_view({reinterpret_cast<const uint8_t*>(data()), size()});
    return 0;
}

int ELF_STRING_TABLE::revert_to_state(OF_STATE) {
    return 0;
}

} // namespace OFE
