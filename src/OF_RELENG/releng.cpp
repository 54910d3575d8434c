// The walk over a section's relocations, the operands, the checks and the generic field.
#include "OF_RELENG/releng.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "DIAG/releng_msgs.h"
#include "OBJEDIT04/machine/machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_reloc.h"
#include "OBJEDIT04/ofe/of_reloc_table.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OF_RELENG/arm/arm_fields.h"
#include "OF_RELENG/machops.h"

namespace OFE {

RELENG_HOOKS* OF_RELENG::hooks_m = nullptr;

namespace {

bool is_deleted_section(OF_SECTION* section) {
    return strcmp(section->name(), OF_DELETED_SECTION_NAME) == 0;
}

RELOC_SYMBOL describe(OF_SYMBOL* input, RELENG_HOOKS* hooks) {
    RELOC_SYMBOL s;
    s.known = true;
    s.input = input;
    if (!input) return s;
    s.final = input->resolved_by_final();
    s.file = s.final->ofile();
    OF_SYM_KIND kind = s.final->kind();
    s.function = s.final->type() == OF_SYM_TYPE_FUNCTION;
    s.absolute = kind == OF_SYM_KIND_ABSOLUTE;
    s.unresolved = kind == OF_SYM_KIND_UNDEFINED;
    s.unresolved_weak = s.unresolved && s.final->binding() == OF_SYM_BINDING_WEAK;
    if (s.final->refs_section()) {
        s.gone = hooks && hooks->is_gone(s.final);
        if (!s.gone) s.section = s.final->section();
        s.gone = !s.section || is_deleted_section(s.section);
    } else {
        s.gone = kind == OF_SYM_KIND_COMMON;
    }
    uint32_t value = s.final->value();
    s.odd = value & 1;
    s.value = s.function ? value & ~1u : value;
    s.plain = !s.unresolved && (!s.function || s.odd);
    return s;
}

// What is known of the symbols of the table in use. Sections are relocated file by file, so one
// table at a time will do.
class RELOC_SYMBOLS {
  public:
    const RELOC_SYMBOL* of(OF_SYMBOL_TABLE* table, unsigned id, RELENG_HOOKS* hooks) {
        if (table != table_ || id >= symbols_.size()) {
            if (!table || id >= table->symnum()) return nullptr;
            symbols_.assign(table->symnum(), RELOC_SYMBOL());
            table_ = table;
        }
        RELOC_SYMBOL& s = symbols_[id];
        if (!s.known) {
            OF_SYMBOL* symbol =
                hooks && !table->loaded_symbol(id) ? hooks->stand_in(table, id) : nullptr;
            s = describe(symbol ? symbol : table->symbol(id), hooks);
        }
        return &s;
    }
    void forget() { table_ = nullptr; }

  private:
    OF_SYMBOL_TABLE* table_ = nullptr;
    std::vector<RELOC_SYMBOL> symbols_;
};

RELOC_SYMBOLS symbols_in_use;

// The relocation types of the file in use, by their number.
class RELOC_TYPES {
  public:
    const OF_RELOC_TYPE* of(OBJECT_FILE* file, unsigned number) {
        if (file != file_) types_.fill(nullptr);
        file_ = file;
        const OF_RELOC_TYPE*& type = types_[number & 0xFF];
        if (!type) type = file->machine_reloc_type(number);
        return type;
    }
    void forget() { file_ = nullptr; }

  private:
    OBJECT_FILE* file_ = nullptr;
    std::array<const OF_RELOC_TYPE*, 256> types_{};
};

RELOC_TYPES types_in_use;

} // namespace

void OF_RELENG::forget_symbols() {
    symbols_in_use.forget();
    types_in_use.forget();
}

OF_RELENG::OF_RELENG(OF_SECTION* section)
    : section_(section),
      output_(section),
      machops_(OF_RELENG_MACHOPS::of(section->ofile()->machine())),
      run_addr_(section->run_addr()),
      unit_bytes_(section->unit_size() < 8 ? 1 : section->unit_size() / 8),
      big_(section->ofile()->machine_db()->of_section_endian(section) == OF_ENDIAN_BIG),
      debug_(strncmp(section->name(), ".debug", 6) == 0) {}

void OF_RELENG::set_run_addr(uint32_t run_addr) {
    run_addr_ = run_addr;
}

// The bytes become the section's own in memory: they are about to change.
bool OF_RELENG::load_bytes() {
    if (bytes_) return true;
    if (!section_->initialized()) return false;
    size_ = section_->bytes().size;
    bytes_ = size_ ? section_->writable_bytes(0, static_cast<unsigned>(size_)) : nullptr;
    return bytes_ != nullptr;
}

bool OF_RELENG::fits(const RELOC_SITE& site) const {
    unsigned need = site.rel->container_bytes();
    return bytes_ && need <= size_ && site.offset <= size_ - need;
}

void OF_RELENG::relocate(uint32_t run_addr) {
    has_error_ = false;
    run_addr_ = run_addr;
    if (hooks_m) redirects_ = hooks_m->redirects(section_);
    OF_SECTION_TABLE* table = section_->section_table();
    unsigned raw_tables =
        section_->ofile()->is_input() ? table->raw_reloc_table_num(section_->id()) : 0;
    for (unsigned i = 0; i < raw_tables; ++i) relocate_raw(table->raw_relocs(section_->id(), i));
    if (raw_tables != 0) return;
    for (OF_RELOC* rel : section_->all_relocs()) process_reloc(rel);
}

// Straight from the mapped records.
void OF_RELENG::relocate_raw(const OF_RAW_RELOCS& relocs) {
    unsigned count = relocs.size();
    if (count == 0) return;
    load_bytes();
    OBJECT_FILE* file = section_->ofile();
    uint32_t base = file->values_are_scnrel() ? 0 : section_->run_addr();
    OF_SYMBOL_TABLE* symbols = relocs.symbols();
    RELOC_SITE site;
    RELOC_SYMBOL elsewhere;
    for (unsigned i = 0; i < count; ++i) {
        OF_RAW_RELOC raw = relocs[i];
        const OF_RELOC_TYPE* type = types_in_use.of(file, raw.type);
        site.type = type;
        site.rel = type->rel_template;
        site.offset = (raw.offset - base) * unit_bytes_;
        site.addend = raw.addend;
        site.symbol =
            type->has_symbol() ? symbols_in_use.of(symbols, raw.sym_id, hooks_m) : nullptr;
        site.rela = relocs.rela();
        if (const RELOC_REDIRECT* to = find_redirect(redirects_, *type, site.offset)) {
            elsewhere = describe(to->symbol, hooks_m);
            site.symbol = &elsewhere;
            site.rela = true;
            site.addend = to->addend;
        }
        process_reloc(site);
    }
}

const RELOC_REDIRECT* find_redirect(const std::vector<RELOC_REDIRECT>& redirects,
                                    const OF_RELOC_TYPE& type, uint32_t offset) {
    if (redirects.empty() || !type.rel_template || !type.rel_template->is(OFRT_CALL))
        return nullptr;
    auto at = std::lower_bound(redirects.begin(), redirects.end(), offset,
                               [](const RELOC_REDIRECT& r, uint32_t o) { return r.offset < o; });
    return at != redirects.end() && at->offset == offset ? &*at : nullptr;
}

RELOC_SITE OF_RELENG::site(OF_RELOC* rel) {
    load_bytes();
    RELOC_SITE site;
    site.type = rel->type();
    site.rel = site.type->rel_template;
    site.offset = rel->scnrel_offset() * unit_bytes_;
    site.rela = rel->has_addend();
    site.addend = rel->addend();
    if (site.rel && site.rel->is(OFRT_FIELD_OP)) {
        site.field_size = rel->field_size();
        site.field_offset = rel->field_offset();
        site.container_size = rel->container_size();
    }
    if (OF_SYMBOL* symbol = site.type->has_symbol() ? rel->symbol() : nullptr)
        site.symbol = symbols_in_use.of(symbol->symbol_table(), symbol->id(), hooks_m);
    return site;
}

void OF_RELENG::process_reloc(OF_RELOC* rel) {
    if (rel->is_deleted()) return;
    if (check_final_values_) rel->check_symrel_final_value();
    process_reloc(site(rel));
}

void OF_RELENG::process_reloc(const RELOC_SITE& site) {
    if (!site.rel) return unsupported(site);
    if (!machops_ || machops_->rel_apply_plain(*this, site) || machops_->rel_skip(site)) return;
    if (!fits(site)) {
        report_diag(site, DIAG::releng_bad_offset(__FILE__, __LINE__, relinfo(site)));
        return;
    }
    long value;
    if (calculate_relocated_value(site, value))
        rel_encode_and_pack(value, site);
    else if (site.rel->is(OFRT_EXPRESSION))
        expression(site);
    else
        unsupported(site);
}

void OF_RELENG::unsupported(const RELOC_SITE& site) {
    if (site.type->template_id == OFR_RESERVED && !site.rel) {
        std::string file = std::string("\"") + section_->ofile()->display_name() + "\" ";
        report_diag(site, DIAG::releng_bad_use_of_Reserved_reloc(__FILE__, __LINE__,
                                                                 site.type->name, file));
        return;
    }
    if (site.type->template_id == OFR_OBSOLETE && !site.rel)
        report_diag(site, DIAG::releng_rtype_obsolete(__FILE__, __LINE__, relinfo(site)));
    else
        report_diag(site, DIAG::releng_rtype_not_supported(__FILE__, __LINE__, relinfo(site)));
}

long OF_RELENG::calculate_relocated_value(OF_RELOC* rel) {
    RELOC_SITE s = site(rel);
    long value = 0;
    if (!s.rel || !fits(s) || calculate_relocated_value(s, value)) return value;
    s.rel->is(OFRT_EXPRESSION) ? process_reloc_expr(s, value) : unsupported(s);
    return value;
}

bool OF_RELENG::calculate_relocated_value(const RELOC_SITE& site, long& value) {
    return machops_ && machops_->rel_calculate_relocated_value(*this, site, value);
}

void OF_RELENG::rel_encode_and_pack(long value, const RELOC_SITE& site) {
    const OF_RELOC_TEMPLATE& rel = *site.rel;
    if (rel.is(OFRT_CHECK_SCALE)) check_for_scale_truncation(site, value);
    value >>= rel.scale;
    if (!rel.is(OFRT_NO_GENERIC_OVERFLOW)) check_for_overflow(site, value, rel.field_size);
    rel_pack(value, site);
}

void OF_RELENG::rel_pack(long value, const RELOC_SITE& site) {
    if (machops_->rel_pack(*this, site, value)) return;
    if (site.rel->container_size % 8 != 0) {
        report_diag(site, DIAG::releng_bad_container_size(
                              __FILE__, __LINE__, site.rel->container_size, 8u * unit_bytes_,
                              section_->name(), relinfo(site)));
        return;
    }
    put_field(*site.rel, place(site), big_, value);
}

long OF_RELENG::rel_unpack(const RELOC_SITE& site) {
    long value = 0;
    if (machops_->rel_unpack(*this, site, value)) return value;
    return get_field(*site.rel, place(site), big_);
}

void OF_RELENG::check_for_scale_truncation(const RELOC_SITE& site, long value) {
    unsigned scale = site.rel->scale;
    if (scale == 0 || (value & ((1L << scale) - 1)) == 0) return;
    report_diag(site,
                DIAG::releng_scale_truncation(__FILE__, __LINE__, scale, value, relinfo(site)));
}

bool OF_RELENG::check_for_overflow(const RELOC_SITE& site, long value, unsigned width) {
    uint32_t kind = machops_->rel_addend_kind(site);
    if (kind == OFRO_NONE || machops_->skip_check_for_overflow(site)) return false;
    if (site.symbol && site.symbol->unresolved) return false;
    bool is_signed = static_cast<unsigned long>((value >> (width - 1)) + 1) < 2;
    bool is_unsigned = value >> width == 0;
    if ((kind & OFRO_SIGNED && is_signed) || (kind & OFRO_UNSIGNED && is_unsigned)) return false;
    overflow_error(site, value, width);
    return true;
}

// --- operands

long OF_RELENG::opnd_P(const RELOC_SITE& site) const {
    return static_cast<long>((run_addr_ + site.offset / unit_bytes_) & site.rel->pc_mask);
}

long OF_RELENG::opnd_A(OF_RELOC* rel) {
    RELOC_SITE s = site(rel);
    return s.rel && (s.rela || fits(s)) ? opnd_A(s) : 0;
}

long OF_RELENG::opnd_A(const RELOC_SITE& site) {
    if (site.rela) return site.addend;
    long value = rel_unpack(site);
    if (machops_->rel_addend_is_plain(site)) return sign_extend(value, site.rel->field_size);
    return extend_signed_addends(site, value) * (1L << site.rel->scale);
}

long OF_RELENG::extend_signed_addends(const RELOC_SITE& site, long addend) const {
    if (!(machops_->rel_addend_kind(site) & OFRO_SIGNED)) return addend;
    return sign_extend(addend, site.rela ? 32 : site.rel->field_size);
}

long OF_RELENG::opnd_S(const RELOC_SITE& site) {
    const RELOC_SYMBOL* symbol = site.symbol;
    if (!site.rel->takes_symbol()) {
        report_diag(site, DIAG::releng_reloc_not_symrel(__FILE__, __LINE__, "S", relinfo(site)));
        return 0;
    }
    if (!symbol || !symbol->final) {
        report_diag(site, DIAG::releng_bad_reloc_sym(__FILE__, __LINE__, relinfo(site)));
        return 0;
    }
    if (!symbol->unresolved_weak && !symbol->gone) return static_cast<long>(symbol->value);
    if (site.rel->pcrel()) return opnd_P(site);
    return site.rel->is(OFRT_SBREL) ? opnd_B(site) : 0;
}

OF_SYMBOL* OF_RELENG::opnd_B_sym(const RELOC_SITE& site) {
    const RELOC_SYMBOL* symbol = site.symbol;
    if (!site.rel->takes_symbol()) {
        report_diag(site, DIAG::releng_reloc_not_symrel(__FILE__, __LINE__, "B", relinfo(site)));
        return nullptr;
    }
    if (!symbol || !symbol->final) {
        report_diag(site, DIAG::releng_bad_reloc_sym(__FILE__, __LINE__, relinfo(site)));
        return nullptr;
    }
    if (!symbol->section) return nullptr;
    if (OF_SYMBOL* base = symbol->section->static_base_symbol()) return base;
    std::string whose = std::string("symbol \"") + symbol->final->name() + "\" defined in ";
    report_diag(site, DIAG::releng_oscn_has_no_B(__FILE__, __LINE__, whose, symbol->section->name(),
                                                 symbol->section->name(), relinfo(site)));
    return nullptr;
}

long OF_RELENG::opnd_B(const RELOC_SITE& site) {
    OF_SYMBOL* base = opnd_B_sym(site);
    return base ? static_cast<long>(base->value()) : 0;
}

long OF_RELENG::calculate_sbrel_reloc(const RELOC_SITE& site) {
    OF_SYMBOL* base = opnd_B_sym(site);
    if (!base) return opnd_A(site);
    return opnd_S(site) + opnd_A(site) - static_cast<long>(base->value());
}

} // namespace OFE
