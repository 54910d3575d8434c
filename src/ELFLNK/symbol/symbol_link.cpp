// The resolution passes, run when all files are in: definitions in link order with every conflict
// settled, then each undefined symbol pointed at its definition, or at the one undefined symbol
// that stands for its name.
#include <cctype>
#include <cstring>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/expr/expr_mgr.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/symbol/demangle.h"
#include "ELFLNK/symbol/internal_symbols.h"
#include "ELFLNK/symbol/symbol_file.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/raw_records.h"

using OFE::OF_SYMBOL;

namespace {

bool is_weak(const OF_SYMBOL* s) {
    return s->binding() == OFE::OF_SYM_BINDING_WEAK;
}
bool is_section_def(const OF_SYMBOL* s) {
    return s->kind() == OFE::OF_SYM_KIND_DEFINED;
}
bool is_absolute(const OF_SYMBOL* s) {
    return s->kind() == OFE::OF_SYM_KIND_ABSOLUTE;
}
bool is_common(const OF_SYMBOL* s) {
    return s->kind() == OFE::OF_SYM_KIND_COMMON;
}
bool is_def(const OF_SYMBOL* s) {
    return is_section_def(s) || is_absolute(s) || is_common(s);
}

// A link-time type id: "__TID_" at the head of the source-level name, behind an optional "__CPR"
// and digits.
bool names_type_id(const char* name) {
    if (std::strncmp(name, "__CPR", 5) == 0) {
        name += 5;
        while (std::isdigit(static_cast<unsigned char>(*name))) ++name;
    }
    return std::strncmp(name, "__TID_", 6) == 0;
}

} // namespace

void SYMBOL_TABLE::link_def(OF_SYMBOL* sym) {
    const uint32_t id = id_of(sym);
    OF_SYMBOL* existing = records_[id].def;
    if (existing == sym) return;
    if (!existing) {
        records_[id].def = sym;
        ++def_count_;
        return;
    }
    OF_SYMBOL* winner = check_redefinition(existing, sym);
    OF_SYMBOL* loser = winner == sym ? existing : sym;
    records_[id].def = winner;
    loser->set_resolved_by(winner);
    // The value of a common symbol is its alignment, and each file may count on the one it gave.
    if (is_common(winner) && is_common(loser) && loser->value() > winner->value())
        winner->set_value(loser->value());
}

OF_SYMBOL* SYMBOL_TABLE::check_redefinition(OF_SYMBOL* E, OF_SYMBOL* N) {
    if (is_def(E) && is_def(N) && (is_weak(E) || is_weak(N)))
        return is_weak(E) && !is_weak(N) ? N : E;
    if (is_common(E) && is_common(N)) return N->size() > E->size() ? N : E;
    if (is_absolute(E) && is_absolute(N) && E->value() == N->value()) return E;
    if (E->ofile()->format() == OFE::OF_FORMAT_ELF) {
        const bool e_imported = is_imported_def(E);
        if (e_imported != is_imported_def(N)) return e_imported ? N : E;
    }
    if (is_section_def(E) && is_section_def(N)) {
        const bool e_in_comdat = is_defined_in_comdat(E);
        if (e_in_comdat != is_defined_in_comdat(N)) return e_in_comdat ? N : E;
    }
    const bool e_linker_made = is_linker_symbol(E);
    if (e_linker_made != is_linker_symbol(N)) {
        get_expr_mgr()->report_redefinition(e_linker_made ? E : N, e_linker_made ? N : E);
        return e_linker_made ? E : N;
    }
    if (Target->abi()->is_muldef_ok(N)) return E;
    DIAG_REPORT(elnk_sym_redef, diag_sym_name(N->name()), symbol_file_name(E), symbol_file_name(N));
    return E;
}

void SYMBOL_TABLE::link_undef(OF_SYMBOL* sym) {
    const uint32_t id = id_of(sym);
    if (OF_SYMBOL* def = def_of(mapped_id(id))) {
        check_tls_mismatch(def, sym);
        if (def != sym) sym->set_resolved_by(def);
        reconcile_visibility(def, sym);
        erase_undef(id);
        return;
    }
    if (assign_rtti_id(sym)) return;
    RECORD& r = records_[id];
    if (!(r.flags & IN_UNDEFS)) {
        DIAG_REPORT(elnk_sym_undef_not_found, sym->name());
        return;
    }
    if (!r.undef) {
        set_undef(id, sym);
    } else if (r.undef != sym) {
        OF_SYMBOL* representative = r.undef;
        sym->set_resolved_by(representative);
        reconcile_visibility(representative, sym);
        check_tls_mismatch(representative, sym);
    }
}

bool SYMBOL_TABLE::link_raw_undef(uint32_t id, const OFE::OF_RAW_SYMBOL& ref) {
    RECORD& r = records_[id];
    if (r.import != IMPORT_STATE::NONE) return false;
    OF_SYMBOL* def = def_of(mapped_id(id));
    OF_SYMBOL* target = def ? def : r.undef;
    if (!target || (!def && names_type_id(Target->abi()->hll_name(ref.name)))) return false;
    // What needs a message or a change of visibility is settled with an object in hand.
    if ((target->type() == OFE::OF_SYM_TYPE_TLS) != (ref.type == OFE::OF_SYM_TYPE_TLS))
        return false;
    if (ref.visibility != OFE::OF_VIS_DEFAULT) return false;
    if (def) erase_undef(id);
    return true;
}

// Makes the symbol an absolute one with the next type id. No input has to define such a name.
bool SYMBOL_TABLE::assign_rtti_id(OF_SYMBOL* sym) {
    if (sym->kind() != OFE::OF_SYM_KIND_UNDEFINED || sym->resolved_by()) return false;
    if (!names_type_id(Target->abi()->hll_name(sym->name()))) return false;
    OF_SYMBOL* id_symbol = create_internal_abs_symbol(sym->name(), next_rtti_id_++);
    add_symbol(id_symbol, false);
    sym->set_resolved_by(id_symbol);
    return true;
}

// One is thread-local and the other is not. An undefined symbol without a type leaves the question
// open.
void SYMBOL_TABLE::check_tls_mismatch(OF_SYMBOL* a, OF_SYMBOL* b) {
    const auto is_tls = [](OF_SYMBOL* s) { return s->type() == OFE::OF_SYM_TYPE_TLS; };
    const auto is_open = [](OF_SYMBOL* s) {
        return s->kind() == OFE::OF_SYM_KIND_UNDEFINED && s->type() == OFE::OF_SYM_TYPE_NONE;
    };
    if (a == b || is_tls(a) == is_tls(b) || is_open(a) || is_open(b)) return;
    const auto kind_name = [&](OF_SYMBOL* s) { return is_tls(s) ? "TLS" : "non-TLS"; };
    DIAG_REPORT(elnk_tls_sym_mismatch, kind_name(b), diag_sym_name(b->name()), symbol_file_name(b),
                kind_name(a), a->kind() == OFE::OF_SYM_KIND_UNDEFINED ? "reference" : "definition",
                symbol_file_name(a));
}
