// The answers of a machine that nothing is known about, and the factory.
#include "OBJEDIT04/machine/machine_db.h"

#include "OBJEDIT04/attributes/build_attr_tag.h"
#include "OBJEDIT04/elf/segments/elf_seg_attr.h"
#include "OBJEDIT04/machine/arm_machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"

namespace OFE {

namespace {

constexpr unsigned TAG_RTS_VENDOR = 4;

bool unknown(const char*& name) {
    name = nullptr;
    return false;
}

} // namespace

std::unique_ptr<OF_MACHINE_DB> OF_MACHINE_DB::machine_db(OBJECT_FILE* file, OF_MACHINE machine) {
    if (machine == OF_MACHINE_ARM) return std::make_unique<ARM_MACHINE_DB>(file);
    return std::make_unique<OF_MACHINE_DB>(file);
}

unsigned OF_MACHINE_DB::rts_vendor() const {
    return file_ ? file_->qv_battr_uval(TAG_RTS_VENDOR) : 0;
}

OF_ENDIAN OF_MACHINE_DB::of_section_endian(OF_SECTION* section) {
    return section->ofile()->machine_endian();
}

bool OF_MACHINE_DB::is_bound(OF_SECTION*) {
    return false;
}
bool OF_MACHINE_DB::is_readonly(OF_SECTION*) {
    return false;
}
bool OF_MACHINE_DB::is_noinit(OF_SECTION* section) {
    return (section->ext_flags() & QV_SHF_NOINIT) != 0;
}

void OF_MACHINE_DB::set_noinit(OF_SECTION* section, bool noinit) {
    if (section->max_state(OF_STATE_OPEN) != 0) return;
    unsigned others = section->ext_flags() & ~QV_SHF_NOINIT;
    section->set_ext_flags(noinit ? others | QV_SHF_NOINIT : others);
}

bool OF_MACHINE_DB::of_supports_build_attributes(OBJECT_FILE*, bool& supported) {
    supported = false;
    return false;
}

bool OF_MACHINE_DB::of_tag_value(const OFBA_TAG* tag, OFBA_AVAL value, const char*& text) {
    text = !tag->known ? "(unknown)" : tag->kind == OFBA_AVAL_TEXT ? value.str : nullptr;
    return text != nullptr;
}

bool OF_MACHINE_DB::elf_ei_osabi_name(ELF_FILE*, unsigned char, bool, const char*& name) {
    return unknown(name);
}
bool OF_MACHINE_DB::elf_special_section_name(ELF_SECTION_TABLE*, const char*,
                                             const char*& special) {
    return unknown(special);
}
bool OF_MACHINE_DB::elf_gnu_symver(ELF_FILE*, bool& gnu) {
    gnu = false;
    return false;
}
bool OF_MACHINE_DB::elf_set_gnu_symver(ELF_FILE*, bool) {
    return false;
}
bool OF_MACHINE_DB::elf_e_flag_name(ELF_FILE*, unsigned, bool, const char*& name) {
    return unknown(name);
}
bool OF_MACHINE_DB::elf_p_type_name(ELF_SEGMENT*, unsigned, const char*& name) {
    return unknown(name);
}
bool OF_MACHINE_DB::elf_p_flag_name(ELF_SEGMENT*, unsigned, const char*& name) {
    return unknown(name);
}
bool OF_MACHINE_DB::elf_sh_type_name(ELF_SECTION*, unsigned, const char*& name) {
    return unknown(name);
}
bool OF_MACHINE_DB::elf_sh_flag_name(ELF_SECTION*, unsigned, const char*& name) {
    return unknown(name);
}
bool OF_MACHINE_DB::elf_qv_sh_flag_name(ELF_SECTION*, unsigned, const char*& name) {
    return unknown(name);
}
bool OF_MACHINE_DB::elf_sym_kind_name(ELF_SYMBOL*, const char*& name) {
    return unknown(name);
}

void OF_MACHINE_DB::elf_build_phattrtag_db(std::vector<PHATTR_TAG>& tags) {
    tags = {{PHA_NULL, "PHA_NULL", false},
            {PHA_BOUND, "PHA_BOUND", false},
            {PHA_READONLY, "PHA_READONLY", false},
            {PHA_PAGE, "PHA_PAGE", true}};
}

const char* OF_MACHINE_DB::elf_qv_sh_attr_name(int kind) const {
    return kind == 0 ? ".QV.section.flags" : kind == 1 ? ".QV.section.page" : nullptr;
}

} // namespace OFE
