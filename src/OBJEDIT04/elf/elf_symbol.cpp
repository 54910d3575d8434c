// The fields of a symbol's record in the terms of the neutral model.
#include "OBJEDIT04/elf/elf_symbol.h"

#include "OBJEDIT04/elf/elf32_rw.h"
#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/elf_section.h"
#include "OBJEDIT04/elf/elf_symbol_table.h"
#include "OBJEDIT04/machine/machine_db.h"
#include "OBJEDIT04/ofe/of_section_table.h"

namespace OFE {

ELF_SYMBOL* elf_api(OF_SYMBOL* symbol) {
    if (!symbol || !elf_api(symbol->ofile())) return nullptr;
    return static_cast<ELF_SYMBOL*>(symbol);
}

ELF_SYMBOL::ELF_SYMBOL(ELF_SYMBOL_TABLE* table, unsigned id) : OF_SYMBOL(table, id) {}

ELF_SYMBOL_TABLE* ELF_SYMBOL::elf_table() const {
    return static_cast<ELF_SYMBOL_TABLE*>(symbol_table());
}

// A symbol can change until its table is laid out.
int ELF_SYMBOL::editable() const {
    OF_SYMBOL_TABLE* table = symbol_table();
    return table->own_state() == OF_STATE_OPEN ? 0 : table->max_state(OF_STATE_LOCKED);
}

int ELF_SYMBOL::patched() {
    symbol_table()->mark_changed();
    return symbol_table()->own_state() == OF_STATE_LOCKED ? patch_raw_data() : 0;
}

int ELF_SYMBOL::patch_raw_data() {
    uint8_t bytes[ELF_SYMSIZE];
    store_Elf32_Sym(bytes, sym_, elf_table()->elf_file()->swap());
    return elf_table()->elf_section()->write_to_raw_data(bytes, sizeof bytes, id() * ELF_SYMSIZE);
}

void ELF_SYMBOL::set_null() {
    set_name_view("");
    sym_ = {};
    ext_shndx_ = 0;
    version_ = 0;
    patched();
}

bool ELF_SYMBOL::is_null() const {
    return *name() == 0 && sym_.st_value == 0 && sym_.st_size == 0 && sym_.st_info == 0 &&
           sym_.st_other == 0 && sym_.st_shndx == 0;
}

int ELF_SYMBOL::set_value(unsigned value) {
    if (editable() != 0) return -1;
    sym_.st_value = value;
    return patched();
}

int ELF_SYMBOL::set_size(unsigned size) {
    if (editable() != 0) return -1;
    sym_.st_size = size;
    return patched();
}

OF_SECTION* ELF_SYMBOL::section() const {
    return refs_section() ? symbol_table()->section_table()->section(section_id()) : nullptr;
}

int ELF_SYMBOL::set_section(OF_SECTION* section) {
    if (!section || section->ofile() != ofile() || section->id() == OF_DELETED) return 0;
    return set_section_id(section->id());
}

int ELF_SYMBOL::set_section_id(unsigned id) {
    if (editable() != 0) return -1;
    bool extended = id >= SHN_LORESERVE;
    sym_.st_shndx = static_cast<uint16_t>(extended ? unsigned{SHN_XINDEX} : id);
    ext_shndx_ = extended ? id : 0;
    return patched();
}

OF_SYM_KIND ELF_SYMBOL::kind_of(unsigned shndx) {
    switch (shndx) {
    case SHN_UNDEF:
        return OF_SYM_KIND_UNDEFINED;
    case SHN_ABS:
        return OF_SYM_KIND_ABSOLUTE;
    case SHN_COMMON:
        return OF_SYM_KIND_COMMON;
    default:
        return shndx < SHN_LORESERVE || shndx == SHN_XINDEX ? OF_SYM_KIND_DEFINED
                                                            : OF_SYM_KIND_NONE;
    }
}

OF_SYM_KIND ELF_SYMBOL::kind() const {
    if (refs_section() || is_load_label()) return OF_SYM_KIND_DEFINED;
    if (sym_.st_shndx == SHN_UNDEF) return OF_SYM_KIND_UNDEFINED;
    OF_SYM_KIND kind;
    if (ofile()->machine_db()->elf_sym_kind(const_cast<ELF_SYMBOL*>(this), kind)) return kind;
    return kind_of(sym_.st_shndx);
}

int ELF_SYMBOL::set_kind(OF_SYM_KIND kind) {
    if (editable() != 0) return -1;
    unsigned shndx;
    switch (kind) {
    case OF_SYM_KIND_UNDEFINED:
        shndx = SHN_UNDEF;
        break;
    case OF_SYM_KIND_ABSOLUTE:
        shndx = SHN_ABS;
        break;
    case OF_SYM_KIND_COMMON:
        shndx = SHN_COMMON;
        break;
    case OF_SYM_KIND_DEFINED:
        ofile()->set_error(
            OF_ERROR_ILLEGAL,
            "To mark a symbol as being defined, you must use set_section_id() to set "
            "its section reference");
        return -1;
    default:
        ofile()->set_error(OF_ERROR_ILLEGAL, "Invalid symbol kind %x", static_cast<unsigned>(kind));
        return -1;
    }
    sym_.st_shndx = static_cast<uint16_t>(shndx);
    ext_shndx_ = 0;
    return patched();
}

int ELF_SYMBOL::set_near_common() {
    if (editable() != 0) return -1;
    sym_.st_shndx = static_cast<uint16_t>(ofile()->machine_db()->elf_near_common_shndx());
    ext_shndx_ = 0;
    return patched();
}

OF_SYM_BINDING ELF_SYMBOL::binding_of(unsigned st_info) {
    unsigned b = st_info >> 4;
    return b <= STB_WEAK ? static_cast<OF_SYM_BINDING>(b + 1) : OF_SYM_BINDING_NONE;
}

OF_SYM_TYPE ELF_SYMBOL::type_of(unsigned st_info) {
    unsigned t = st_info & 15;
    return t <= STT_TLS ? static_cast<OF_SYM_TYPE>(t) : OF_SYM_TYPE_NONE;
}

uint8_t ELF_SYMBOL::info_of(OF_SYM_BINDING binding, OF_SYM_TYPE type) {
    return static_cast<uint8_t>((binding - 1) << 4 | type);
}

OF_SYM_BINDING ELF_SYMBOL::binding() const {
    return binding_of(sym_.st_info);
}
OF_SYM_TYPE ELF_SYMBOL::type() const {
    return type_of(sym_.st_info);
}

int ELF_SYMBOL::set_binding(OF_SYM_BINDING binding) {
    if (editable() != 0) return -1;
    if (binding < OF_SYM_BINDING_LOCAL || binding > OF_SYM_BINDING_WEAK) {
        ofile()->set_error(OF_ERROR_ILLEGAL, "Invalid symbol binding value 0x%x",
                           static_cast<unsigned>(binding));
        return -1;
    }
    sym_.st_info = static_cast<uint8_t>((binding - 1) << 4 | (sym_.st_info & 15));
    return patched();
}

int ELF_SYMBOL::set_type(OF_SYM_TYPE type) {
    if (editable() != 0) return -1;
    if (type < OF_SYM_TYPE_NONE || type > OF_SYM_TYPE_TLS) {
        ofile()->set_error(OF_ERROR_ILLEGAL, "Invalid symbol type value 0x%x",
                           static_cast<unsigned>(type));
        return -1;
    }
    sym_.st_info = static_cast<uint8_t>((sym_.st_info & 0xF0) | type);
    return patched();
}

int ELF_SYMBOL::set_visibility(unsigned v) {
    return set_st_other((sym_.st_other & ~3u) | (v & 3));
}

int ELF_SYMBOL::set_st_other(unsigned v) {
    if (editable() != 0) return -1;
    sym_.st_other = static_cast<uint8_t>(v);
    return patched();
}

const char* ELF_SYMBOL::st_bind_name(unsigned v) {
    static constexpr const char* NAMES[] = {"STB_LOCAL", "STB_GLOBAL", "STB_WEAK"};
    return v <= STB_WEAK ? NAMES[v] : "STB_UNKNOWN";
}
const char* ELF_SYMBOL::st_type_name(unsigned v) {
    static constexpr const char* NAMES[] = {"STT_NOTYPE", "STT_OBJECT", "STT_FUNC", "STT_SECTION",
                                            "STT_FILE",   "STT_COMMON", "STT_TLS"};
    return v <= STT_TLS ? NAMES[v] : "STT_UNKNOWN";
}
const char* ELF_SYMBOL::st_visibility_name(unsigned v) {
    static constexpr const char* NAMES[] = {"STV_DEFAULT", "STV_INTERNAL", "STV_HIDDEN",
                                            "STV_PROTECTED"};
    return NAMES[v & 3];
}

} // namespace OFE
