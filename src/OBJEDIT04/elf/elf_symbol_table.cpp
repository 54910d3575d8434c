// Reading symbols in place, and encoding a table at lock: the null symbol, locals, all others.
#include "OBJEDIT04/elf/elf_symbol_table.h"

#include <cstring>

#include "OBJEDIT04/elf/elf32_rw.h"
#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/elf_group_table.h"
#include "OBJEDIT04/elf/elf_reloc.h"
#include "OBJEDIT04/elf/elf_section.h"
#include "OBJEDIT04/elf/elf_section_table.h"
#include "OBJEDIT04/elf/elf_string_table.h"
#include "OBJEDIT04/elf/elf_symalias_table.h"
#include "OBJEDIT04/elf/elf_symbol.h"
#include "OBJEDIT04/machine/machine_db.h"
#include "UTIL/data_map.h"

namespace OFE {

ELF_SYMBOL_TABLE::ELF_SYMBOL_TABLE(ELF_SECTION* section)
    : OF_SYMBOL_TABLE(section->ofile()), section_(section) {
    if (section->sh_entsize() >= ELF_SYMSIZE) entsize_ = section->sh_entsize();
    take_raw();
}

ELF_SYMBOL_TABLE::~ELF_SYMBOL_TABLE() = default;

ELF_FILE* ELF_SYMBOL_TABLE::elf_file() const {
    return static_cast<ELF_FILE*>(ofile());
}
const char* ELF_SYMBOL_TABLE::name() const {
    return section_->name();
}
OF_SECTION_TABLE* ELF_SYMBOL_TABLE::section_table() const {
    return elf_file()->section_table();
}
ELF_SYMBOL* ELF_SYMBOL_TABLE::elf_symbol(unsigned id) {
    return static_cast<ELF_SYMBOL*>(symbol(id));
}

// Takes the entries, the strings and the extended indices as they stand in the file.
void ELF_SYMBOL_TABLE::take_raw() {
    OF_BYTES entries = section_->bytes();
    if (!ofile()->is_input() || entries.size < entsize_) return;
    raw_ = entries.data;
    raw_count_ = symnum_ = static_cast<unsigned>(entries.size / entsize_);
    big_ = elf_file()->big();
    ELF_SECTION_TABLE* sections = elf_file()->elf_section_table();
    Elf32_Shdr h;
    if (sections->raw_header(section_->sh_link(), h) && h.sh_type == SHT_STRTAB &&
        ofile()->in_image(h.sh_offset, h.sh_size)) {
        names_ = reinterpret_cast<const char*>(ofile()->image().data) + h.sh_offset;
        names_limit_ = terminated_size(names_, h.sh_size);
    }
    unsigned shndx = sections->lookup_sym_section_by_type(section_->id(), SHT_SYMTAB_SHNDX);
    if (shndx && sections->raw_header(shndx, h) && ofile()->in_image(h.sh_offset, h.sh_size)) {
        raw_shndx_ = ofile()->image().data + h.sh_offset;
        raw_shndx_count_ = h.sh_size / 4;
    }
    unsigned versym = section_->sh_type() == SHT_DYNSYM
                          ? sections->lookup_sym_section_by_type(section_->id(), SHT_GNU_versym)
                          : 0;
    if (versym && sections->raw_header(versym, h) && ofile()->in_image(h.sh_offset, h.sh_size)) {
        raw_versym_ = ofile()->image().data + h.sh_offset;
        raw_versym_count_ = h.sh_size / 2;
    }
}

namespace {

bool is_binding(const Elf32_Sym& sym) {
    return sym.st_info >> 4 <= STB_WEAK;
}
bool has_alignment(const Elf32_Sym& sym) {
    return sym.st_shndx != SHN_COMMON || (sym.st_value & (sym.st_value - 1)) == 0;
}
// Nothing later could make sense of other values.
bool is_sensible(const Elf32_Sym& sym) {
    return is_binding(sym) && has_alignment(sym);
}

} // namespace

bool ELF_SYMBOL_TABLE::read_record(unsigned id, Elf32_Sym& sym, unsigned& ext_shndx) {
    load_Elf32_Sym(raw_ + size_t{id} * entsize_, sym, !is_host_order(big_));
    ext_shndx = 0;
    if (!is_sensible(sym)) report_record(id, sym);
    unsigned section = sym.st_shndx;
    if (section == SHN_XINDEX) {
        if (id < raw_shndx_count_) ext_shndx = read_u32(raw_shndx_ + size_t{id} * 4, big_);
        section = ext_shndx;
        if (section == 0) section = OF_DELETED;
    } else if (section >= SHN_LORESERVE) {
        return true;
    }
    if (section < elf_file()->elf_section_table()->scnnum()) return true;
    ofile()->set_error(OF_ERROR_CORRUPT,
                       "symbol %u in \"%s\" refers to section %u, which does not exist", id, name(),
                       section);
    sym.st_shndx = SHN_UNDEF;
    ext_shndx = 0;
    return false;
}

void ELF_SYMBOL_TABLE::report_record(unsigned id, const Elf32_Sym& sym) {
    if (!is_binding(sym))
        ofile()->set_error(OF_ERROR_CORRUPT, "the binding of symbol %u in \"%s\" is 0x%x", id,
                           name(), sym.st_info >> 4);
    if (!has_alignment(sym))
        ofile()->set_error(OF_ERROR_CORRUPT,
                           "the alignment of the common symbol %u in \"%s\" is 0x%x, which is not "
                           "a power of 2",
                           id, name(), sym.st_value);
}

const char* ELF_SYMBOL_TABLE::string_at(unsigned offset, unsigned id) {
    if (offset < names_limit_) return names_ + offset;
    if (offset != 0)
        ofile()->set_error(OF_ERROR_CORRUPT,
                           "the name of symbol %u in \"%s\" is outside of the string table", id,
                           name());
    return "";
}

OF_SYMBOL* ELF_SYMBOL_TABLE::alloc_symbol(unsigned id) {
    auto* s = new ELF_SYMBOL(this, id);
    s->record().st_other = static_cast<uint8_t>(default_visibility_);
    return s;
}

OF_SYMBOL* ELF_SYMBOL_TABLE::load_symbol_into_mem(unsigned id) {
    if (!raw_ || id >= raw_count_) return nullptr;
    auto* s = new ELF_SYMBOL(this, id);
    unsigned ext_shndx;
    read_record(id, s->record(), ext_shndx);
    s->set_ext_shndx(ext_shndx);
    if (id < raw_versym_count_) s->set_version_index(read_u16(raw_versym_ + size_t{id} * 2, big_));
    s->set_name_view(string_at(s->record().st_name, id));
    if (s->kind() == OF_SYM_KIND_NONE)
        ofile()->set_error(OF_ERROR_CORRUPT,
                           "symbol %u in \"%s\" has the unknown special section index 0x%x", id,
                           name(), s->record().st_shndx);
    return s;
}

// The null symbol stands first in a new table.
OF_SYMBOL* ELF_SYMBOL_TABLE::new_symbol() {
    if (symnum_ == 0) {
        OF_SYMBOL* null = OF_SYMBOL_TABLE::new_symbol();
        if (!null) return nullptr;
        static_cast<ELF_SYMBOL*>(null)->set_null();
    }
    return OF_SYMBOL_TABLE::new_symbol();
}

OF_SYMBOL* ELF_SYMBOL_TABLE::new_symbol_like(const OF_RAW_SYMBOL& model) {
    auto* s = static_cast<ELF_SYMBOL*>(new_symbol());
    if (!s) return nullptr;
    s->set_name_view(model.name);
    Elf32_Sym& record = s->record();
    record.st_size = model.size;
    record.st_info = ELF_SYMBOL::info_of(model.binding, model.type);
    record.st_other = static_cast<uint8_t>((record.st_other & ~3u) | (model.visibility & 3));
    if (model.kind != OF_SYM_KIND_DEFINED) s->set_kind(model.kind);
    return s;
}

bool ELF_SYMBOL_TABLE::raw_symbol(unsigned id, OF_RAW_SYMBOL& out) {
    if (id >= symnum_) return false;
    out.id = id;
    if (OF_SYMBOL* s = loaded_symbol(id)) {
        out.name = s->name();
        out.value = s->value();
        out.size = s->size();
        out.section_id = s->refs_section() ? s->section_id() : OF_RAW_SYMBOL::NO_SECTION;
        out.kind = s->kind();
        out.binding = s->binding();
        out.type = s->type();
        out.visibility = static_cast<unsigned char>(s->visibility());
        return true;
    }
    if (!raw_ || id >= raw_count_) return false;
    Elf32_Sym sym;
    unsigned ext_shndx;
    read_record(id, sym, ext_shndx);
    out.name = string_at(sym.st_name, id);
    out.value = sym.st_value;
    out.size = sym.st_size;
    out.kind = ELF_SYMBOL::kind_of(sym.st_shndx);
    bool defined = out.kind == OF_SYM_KIND_DEFINED;
    out.section_id = !defined                     ? OF_RAW_SYMBOL::NO_SECTION
                     : sym.st_shndx == SHN_XINDEX ? ext_shndx
                                                  : sym.st_shndx;
    // The machine may know special indices of its own; loading a symbol reports one nobody knows.
    if (out.kind == OF_SYM_KIND_NONE) out.kind = symbol(id)->kind();
    out.binding = ELF_SYMBOL::binding_of(sym.st_info);
    out.type = ELF_SYMBOL::type_of(sym.st_info);
    out.visibility = sym.st_other & 3;
    return true;
}

unsigned ELF_SYMBOL_TABLE::first_global() const {
    unsigned info = section_->sh_info();
    return info < symnum_ ? info : symnum_;
}

// What was read is told by its strings; only an object can have another name than the file says.
bool ELF_SYMBOL_TABLE::may_have_name(const char* name) const {
    if (!names_) return symnum_ != 0;
    if (changed_)
        for (OF_SYMBOL* s : symbols_)
            if (s && std::strcmp(s->name(), name) == 0) return true;
    return memmem(names_, names_limit_, name, std::strlen(name) + 1) != nullptr;
}

ELF_STRING_TABLE* ELF_SYMBOL_TABLE::string_table() {
    ELF_SECTION_TABLE* sections = elf_file()->elf_section_table();
    unsigned link = section_->sh_link();
    ELF_SECTION* s = link ? sections->elf_section(link) : nullptr;
    if (!s && own_state() == OF_STATE_OPEN && sections->own_state() == OF_STATE_OPEN) {
        s = static_cast<ELF_SECTION*>(
            sections->new_section(section_->sh_type() == SHT_DYNSYM ? ".dynstr" : ".strtab"));
        if (s) section_->set_sh_link(s->id());
    }
    return s ? s->string_table_api() : nullptr;
}

ELF_SECTION* ELF_SYMBOL_TABLE::shndx_table() {
    ELF_SECTION_TABLE* sections = elf_file()->elf_section_table();
    unsigned i = sections->lookup_sym_section_by_type(section_->id(), SHT_SYMTAB_SHNDX);
    return i ? sections->elf_section(i) : nullptr;
}

ELF_SECTION* ELF_SYMBOL_TABLE::versym_table() {
    ELF_SECTION_TABLE* sections = elf_file()->elf_section_table();
    unsigned i = section_->sh_type() == SHT_DYNSYM
                     ? sections->lookup_sym_section_by_type(section_->id(), SHT_GNU_versym)
                     : 0;
    return i ? sections->elf_section(i) : nullptr;
}

int ELF_SYMBOL_TABLE::clear() {
    if (OF_SYMBOL_TABLE::clear() != 0) return -1;
    raw_ = raw_shndx_ = raw_versym_ = nullptr;
    raw_count_ = raw_shndx_count_ = raw_versym_count_ = 0;
    return 0;
}

int ELF_SYMBOL_TABLE::update_section_refs(const RECORD_MAP<unsigned>& map) {
    if (max_state(OF_STATE_LOCKED) != 0 || load_all_symbols_into_mem() != 0) return -1;
    for (OF_SYMBOL* s : symbols_) {
        if (!s->refs_section()) continue;
        unsigned id = s->section_id();
        unsigned to = id < map.size() ? map[id] : OF_DELETED;
        if (to != id) s->set_section_id(to == OF_DELETED ? 0 : to);
    }
    return 0;
}

int ELF_SYMBOL_TABLE::patch_symbol_refs() {
    if (max_state(OF_STATE_LOCKED) != 0) return -1;
    if (!translations_pending_) return 0;
    ELF_SECTION_TABLE* sections = elf_file()->elf_section_table();
    unsigned self = section_->id();
    Elf32_Shdr h;
    for (unsigned i = 1; i < sections->scnnum(); ++i) {
        if (sections->is_deleted(i) || !sections->raw_header(i, h) || h.sh_link != self) continue;
        if (h.sh_type == SHT_REL || h.sh_type == SHT_RELA)
            sections->elf_section(i)->reloc_table_api()->update_symbol_refs(translations_);
        else if (h.sh_type == SHT_GROUP)
            sections->elf_section(i)->group_table_api()->update_symbol_refs(translations_);
    }
    if (section_->sh_type() == SHT_SYMTAB)
        if (ELF_SYMALIAS_TABLE* aliases = elf_file()->symalias_table(false))
            aliases->update_symbol_refs(translations_);
    return OF_SYMBOL_TABLE::patch_symbol_refs();
}

int ELF_SYMBOL_TABLE::progress_to_state(OF_STATE target) {
    return target == OF_STATE_LOCKED ? lock_symbol_table() : 0;
}

// The encoded entries in memory are the symbols themselves from now on.
int ELF_SYMBOL_TABLE::revert_to_state(OF_STATE) {
    return 0;
}

int ELF_SYMBOL_TABLE::lock_symbol_table() {
    if (max_state(OF_STATE_OPEN) != 0 || load_all_symbols_into_mem() != 0) return -1;
    ofile()->machine_db()->elf_lock_symbol_table(this);
    if (purge_deleted_symbols() != 0 || lock_symbol_ordering() != 0) return -1;
    raw_ = raw_shndx_ = raw_versym_ = nullptr;
    names_ = nullptr;
    raw_count_ = raw_shndx_count_ = raw_versym_count_ = names_limit_ = 0;
    entsize_ = ELF_SYMSIZE;
    section_->set_sh_entsize(ELF_SYMSIZE);
    return write_records();
}

int ELF_SYMBOL_TABLE::lock_symbol_ordering() {
    auto is_null = [](OF_SYMBOL* s) { return static_cast<ELF_SYMBOL*>(s)->is_null(); };
    std::vector<OF_SYMBOL*> ordered;
    ordered.reserve(symnum_ + 1);
    if (symnum_ == 0 || !is_null(symbols_[0])) {
        if (symnum_ != 0) ofile()->set_error(OF_ERROR_INTERNAL, "symbol 0 is not a NULL symbol");
        auto* null = new ELF_SYMBOL(this, OF_DELETED);
        ordered.push_back(null);
    } else {
        ordered.push_back(symbols_[0]);
    }
    size_t first = ordered[0]->id() == OF_DELETED ? 0 : 1;
    std::vector<OF_SYMBOL*> others;
    for (size_t i = first; i < symbols_.size(); ++i)
        if (!is_null(symbols_[i]))
            (symbols_[i]->binding() == OF_SYM_BINDING_LOCAL ? ordered : others)
                .push_back(symbols_[i]);
    section_->set_sh_info(static_cast<unsigned>(ordered.size()));
    ordered.insert(ordered.end(), others.begin(), others.end());
    bool changed = ordered.size() != symbols_.size();
    RECORD_MAP<unsigned> map(symnum_, OF_DELETED);
    for (unsigned i = 0; i < ordered.size(); ++i) {
        unsigned old = ordered[i]->id();
        changed |= old != i;
        if (old < map.size()) map[old] = i;
    }
    for (size_t i = first; i < symbols_.size(); ++i)
        if (map[i] == OF_DELETED) delete symbols_[i];
    if (changed) replace_symbols(std::move(ordered), std::move(map));
    return 0;
}

// All records at once, and the extended indices beside them when the file has that many sections.
int ELF_SYMBOL_TABLE::write_records() {
    ELF_STRING_TABLE* strings = string_table();
    if (!strings) return -1;
    bool swap = elf_file()->swap();
    DATA_MAP& map = section_->raw_data();
    map.set_zeros(size_t{symnum_} * ELF_SYMSIZE);
    uint8_t* p = map.writable();
    bool extended = false;
    for (OF_SYMBOL* symbol : symbols_) {
        auto* s = static_cast<ELF_SYMBOL*>(symbol);
        s->record().st_name = strings->add_string(s->name());
        extended |= s->record().st_shndx == SHN_XINDEX;
        store_Elf32_Sym(p, s->record(), swap);
        p += ELF_SYMSIZE;
    }
    if (ELF_SECTION* versions = versym_table()) {
        DATA_MAP& halves = versions->raw_data();
        halves.set_zeros(size_t{symnum_} * 2);
        uint8_t* v = symnum_ ? halves.writable() : nullptr;
        for (OF_SYMBOL* symbol : symbols_) {
            write_u16(v, static_cast<uint16_t>(static_cast<ELF_SYMBOL*>(symbol)->version_index()),
                      elf_file()->big());
            v += 2;
        }
        versions->header().sh_size = symnum_ * 2;
    }
    ELF_SECTION* indices = shndx_table();
    if (!indices) {
        if (!extended) return 0;
        ofile()->set_error(OF_ERROR_INTERNAL,
                           "no section for the extended section indices of \"%s\"", name());
        return -1;
    }
    DATA_MAP& words = indices->raw_data();
    words.set_zeros(extended ? size_t{symnum_} * 4 : 0);
    if (!extended) {
        indices->header().sh_size = 0;
        return 0;
    }
    uint8_t* w = words.writable();
    for (unsigned i = 0; i < symnum_; ++i)
        write_u32(w + size_t{i} * 4, static_cast<ELF_SYMBOL*>(symbols_[i])->ext_shndx(),
                  elf_file()->big());
    indices->header().sh_size = symnum_ * 4;
    return 0;
}

} // namespace OFE
