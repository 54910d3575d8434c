// What relocations of every format share: the fields of the type's template and what the symbol
// says.
#include "OBJEDIT04/ofe/of_reloc.h"

#include "OBJEDIT04/machine/reloc_type.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_reloc_table.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_symbol.h"

namespace OFE {

OBJECT_FILE* OF_RELOC::ofile() const {
    return table_->ofile();
}

int OF_RELOC::delete_reloc() {
    return table_->delete_reloc(id_);
}

bool OF_RELOC::is_deleted() const {
    return table_->is_deleted(id_);
}

bool OF_RELOC::takes_symbol() const {
    return type()->has_symbol();
}

bool OF_RELOC::sym_is_unresolved() {
    if (!takes_symbol() || is_internal()) return false;
    OF_SYMBOL* s = symbol();
    return s && s->resolved_by_final()->kind() == OF_SYM_KIND_UNDEFINED;
}

bool OF_RELOC::sym_is_unresolved_weak() {
    return sym_is_unresolved() && symbol()->resolved_by_final()->binding() == OF_SYM_BINDING_WEAK;
}

bool OF_RELOC::sym_is_unallocated_common() {
    if (!takes_symbol() || is_internal()) return false;
    OF_SYMBOL* s = symbol();
    if (!s) return false;
    s = s->resolved_by_final();
    return s->kind() == OF_SYM_KIND_COMMON && !s->refs_section();
}

unsigned OF_RELOC::field_size() const {
    return type()->rel_template ? type()->rel_template->field_size : 0;
}
unsigned OF_RELOC::field_offset() const {
    return type()->rel_template ? type()->rel_template->field_offset : 0;
}
unsigned OF_RELOC::container_size() const {
    return type()->rel_template ? type()->rel_template->container_size : 0;
}
unsigned OF_RELOC::scale() const {
    return type()->rel_template ? type()->rel_template->scale : 0;
}
unsigned OF_RELOC::pc_mask() const {
    return type()->rel_template ? type()->rel_template->pc_mask : 0xFFFFFFFFu;
}

unsigned OF_RELOC::raw_data_offset() {
    OF_SECTION* s = table_->section_relocated();
    return s ? static_cast<unsigned>(uint64_t{scnrel_offset()} * s->unit_size() / 8) : offset();
}

} // namespace OFE
