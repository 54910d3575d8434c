// --import, --export and visibility, for ELF output only: a name's state is applied to its symbols,
// and a definition and its references take the stricter visibility of the two.
#include "DIAG/elnk_msgs.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/symbol/symbol_file.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_symbol.h"

using OFE::OF_SYMBOL;

namespace {

bool output_is_elf() {
    const OBJ_FILE* output = file_manager.output_file();
    return output && output->object_file()->format() == OFE::OF_FORMAT_ELF;
}

// Internal, hidden, protected, default: from strict to free.
unsigned freedom(unsigned visibility) {
    return visibility == OFE::OF_VIS_DEFAULT ? 4 : visibility;
}

bool is_internal_file_symbol(const OF_SYMBOL* sym) {
    const OBJ_FILE* internal = file_manager.internal_file();
    return internal && sym->ofile() == internal->object_file();
}

} // namespace

void SYMBOL_TABLE::add_export_name(const char* name) {
    add_entry_name(name);
    records_[names_.find(name)].import = IMPORT_STATE::EXPORT_WANTED;
    ++import_name_count_;
}

void SYMBOL_TABLE::add_import_name(const char* name) {
    records_[intern_copy(name)].import = IMPORT_STATE::IMPORT_WANTED;
    ++import_name_count_;
}

bool SYMBOL_TABLE::import_required(const char* name) const {
    const RECORD* r = record(name);
    return r &&
           (r->import == IMPORT_STATE::IMPORT_WANTED || r->import == IMPORT_STATE::IMPORT_IN_FORCE);
}

void SYMBOL_TABLE::update_visibility(OF_SYMBOL* sym) {
    if (import_name_count_ == 0 || !output_is_elf() || sym->ofile()->format() != OFE::OF_FORMAT_ELF)
        return;
    RECORD& r = records_[id_of(sym)];
    if (r.import == IMPORT_STATE::IMPORT_WANTED || r.import == IMPORT_STATE::IMPORT_IN_FORCE) {
        const OFE::OF_SYM_KIND kind = sym->kind();
        if (kind == OFE::OF_SYM_KIND_DEFINED || kind == OFE::OF_SYM_KIND_COMMON ||
            kind == OFE::OF_SYM_KIND_ABSOLUTE) {
            r.import = IMPORT_STATE::IMPORT_REFUSED;
            DIAG_REPORT(elnk_import_ignored, diag_sym_name(sym->name()), symbol_file_name(sym));
        } else {
            sym->set_visibility(OFE::OF_VIS_DEFAULT);
            r.import = IMPORT_STATE::IMPORT_IN_FORCE;
        }
    } else if (r.import == IMPORT_STATE::EXPORT_WANTED) {
        const unsigned v = sym->visibility();
        if (sym->binding() == OFE::OF_SYM_BINDING_LOCAL || v == OFE::OF_VIS_INTERNAL ||
            v == OFE::OF_VIS_HIDDEN)
            sym->set_visibility(OFE::OF_VIS_PROTECTED);
    }
}

void SYMBOL_TABLE::reconcile_visibility(OF_SYMBOL* def, OF_SYMBOL* ref) {
    if (!output_is_elf()) return;
    update_visibility(def);
    update_visibility(ref);
    if (def == ref || is_internal_file_symbol(def) || is_internal_file_symbol(ref)) return;
    const unsigned d = def->visibility(), r = ref->visibility();
    if (d == r) return;
    if (freedom(d) < freedom(r))
        ref->set_visibility(d);
    else
        def->set_visibility(r);
}
