// Symbol aliases. Layout: version bytes, the number of aliases (2), a NUL-terminated vendor tag,
// then pairs of symbol ids. A section that cannot be understood is ignored with a warning.
#include "OBJEDIT04/elf/elf_symalias_table.h"

#include <cstring>

#include "DIAG/user_msg_api.h"
#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/elf_section.h"
#include "OBJEDIT04/elf/elf_symbol_table.h"
#include "OBJEDIT04/machine/machine_db.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "UTIL/data_map.h"

namespace OFE {

namespace {

constexpr unsigned VERSION = 1, COUNT_AT = 4, VENDOR_AT = 6, PAIR_SIZE = 8;
constexpr const char* VENDOR = "QV";

#define IGNORED "All symbol aliases will be ignored. "
#define UPDATE(what) "Updating your " what " to the latest version should resolve this issue. "

} // namespace

ELF_SYMALIAS_TABLE::ELF_SYMALIAS_TABLE(ELF_SECTION* section)
    : OF_STATE_MACHINE(section->ofile()), section_(section) {
    load();
}

int ELF_SYMALIAS_TABLE::load() {
    if (loaded_ || !ofile()->is_input()) return 0;
    loaded_ = true;
    OF_BYTES b = section_->bytes();
    const char* file = ofile()->display_name();
    USER_MSG* msg = USER_MSG::get_umsg_obj();
    if (b.size < 4) {
        msg->warning(
            0,
            "The file \"%s\" does not specify a valid extended symbol alias table format. " IGNORED
                UPDATE("tool chain"),
            file);
        return -1;
    }
    if (b.data[0] > VERSION || b.data[1] != 0) {
        msg->warning(0,
                     "The file \"%s\" uses a new symbol alias table format version which is not "
                     "supported by this tool version. " IGNORED UPDATE("linker"),
                     file);
        return 0;
    }
    if (b.data[0] == 0) {
        msg->warning(0,
                     "The file \"%s\" uses a symbol alias table format version which is no longer "
                     "supported. " IGNORED UPDATE("assembler"),
                     file);
        return 0;
    }
    if (b.data[2] != 0)
        msg->remark(
            "The file \"%s\" uses a symbol alias table format version which may contain optional "
            "data this tool cannot interpret. Some symbol aliases may be ignored. " UPDATE(
                "linker"),
            file);
    bool big = static_cast<ELF_FILE*>(ofile())->big();
    const char* vendor = reinterpret_cast<const char*>(b.data) + VENDOR_AT;
    const void* end = b.size > VENDOR_AT ? std::memchr(vendor, 0, b.size - VENDOR_AT) : nullptr;
    unsigned count = end ? read_u16(b.data + COUNT_AT, big) : 0;
    size_t at = end ? static_cast<size_t>(static_cast<const uint8_t*>(end) - b.data) + 1 : 0;
    if (!end || uint64_t{count} * PAIR_SIZE > b.size - at) {
        msg->warning(
            0,
            "The file \"%s\" does not specify a valid symbol alias table format. " IGNORED UPDATE(
                "tool chain"),
            file);
        return 0;
    }
    const char* owner = ofile()->vendor();
    if (std::strcmp(vendor, owner ? owner : VENDOR) != 0) {
        msg->warning(0,
                     "The file \"%s\" has been processed by a non-QV vendor, and its symbol "
                     "aliases may be invalid. All symbol aliases will be ignored.",
                     file);
        return 0;
    }
    for (unsigned i = 0; i < count; ++i, at += PAIR_SIZE)
        add_alias(read_u32(b.data + at, big), read_u32(b.data + at + 4, big));
    return 0;
}

void ELF_SYMALIAS_TABLE::add_alias(unsigned alias, unsigned target) {
    if (alias != target) aliases_.emplace_back(alias, target);
}

void ELF_SYMALIAS_TABLE::add_alias(const char* alias, const char* target) {
    OF_SYMBOL_TABLE* table = ofile()->symbol_table();
    OF_SYMBOL* a = table ? table->symbol_name(alias, 0) : nullptr;
    OF_SYMBOL* t = table ? table->symbol_name(target, 0) : nullptr;
    if (a && t) add_alias(a->id(), t->id());
}

int ELF_SYMALIAS_TABLE::update_symbol_refs(const RECORD_MAP<unsigned>& map) {
    std::vector<PAIR> kept;
    for (PAIR p : aliases_) {
        if (p.first >= map.size() || p.second >= map.size()) continue;
        p = {map[p.first], map[p.second]};
        if (p.first != OF_DELETED && p.second != OF_DELETED) kept.push_back(p);
    }
    aliases_ = std::move(kept);
    return 0;
}

int ELF_SYMALIAS_TABLE::progress_to_state(OF_STATE target) {
    return target == OF_STATE_LOCKED ? save() : 0;
}
int ELF_SYMALIAS_TABLE::revert_to_state(OF_STATE) {
    return 0;
}

int ELF_SYMALIAS_TABLE::save() {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    auto* file = static_cast<ELF_FILE*>(ofile());
    section_->set_sh_type(file->machine_db()->elf_symalias_type());
    section_->set_sh_entsize(PAIR_SIZE);
    size_t at = VENDOR_AT + std::strlen(VENDOR) + 1;
    DATA_MAP& map = section_->raw_data();
    map.set_zeros(at + aliases_.size() * PAIR_SIZE);
    uint8_t* p = map.writable();
    bool big = file->big();
    p[0] = VERSION;
    write_u16(p + COUNT_AT, static_cast<uint16_t>(aliases_.size()), big);
    std::memcpy(p + VENDOR_AT, VENDOR, std::strlen(VENDOR));
    for (const PAIR& a : aliases_) {
        write_u32(p + at, a.first, big);
        write_u32(p + at + 4, a.second, big);
        at += PAIR_SIZE;
    }
    return 0;
}

} // namespace OFE
