// ARM's relocation types, architecture facts and names. What a file says of its architecture stands
// in its build attributes; what the linker decides (the highest version among all inputs) overrides
// it.
#include "OBJEDIT04/machine/arm_machine_db.h"

#include <cstring>

#include "OBJEDIT04/attributes/build_attr_table.h"
#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/machine/reloc_type.h"
#include "OBJEDIT04/ofe/of_section.h"

namespace OFE {

namespace {

constexpr unsigned TAG_CPU_ARCH = 6;
constexpr unsigned TAG_CPU_ARCH_PROFILE = 7;
constexpr unsigned TAG_QV_ISA = 258;
constexpr unsigned TAG_QV_CPU_ARCH_PROFILE = 266;
constexpr unsigned TAG_QV_BE_ENC = 268;
constexpr unsigned char ELFOSABI_ARM_GNU = 0x40;

constexpr OF_RELOC_TYPE_ROW ELF_TYPES[] = {
#define RELOC_ARM(id, name, elf, number, ...) {"R_ARM_" #elf, number, id},
#define RELOC_ARM_MAP(elf, number, tmpl) {"R_ARM_" #elf, number, tmpl},
#include "OBJEDIT04/machine/relocations.def"
    {nullptr, OFR_END_OF_ROWS, OFR_NOT_SUPPORTED},
};

constexpr const char* ISA_NAMES[] = {
    "unknown",
    "ARM v4",
    "ARM v4T",
    "ARM v5T",
    "ARM v5TE",
    "ARM v5TEJ",
    "ARM v6",
    "ARM v6KZ",
    "ARM v6T2",
    "ARM v6K",
    "ARM v7",
    "ARM v6-M",
    "ARM v6S-M",
    "ARM v7E-M",
    "ARM v8",
    "ARM v8-R",
    "ARM v8-M.baseline",
    "ARM v8-M.mainline",
};

struct NAME_PAIR {
    const char* from;
    const char* to;
};
constexpr NAME_PAIR SPECIAL_NAMES[] = {
    {".gnu.version", ".ARM_versym"},
    {".gnu.version_d", ".ARM_verdef"},
    {".gnu.version_r", ".ARM_verneed"},
    {"__QV_build_attributes", ".ARM.attributes"},
};

struct NUMBER_NAME {
    unsigned number;
    const char* name;
};
constexpr NUMBER_NAME SH_TYPES[] = {
    {0x70000001, "SHT_ARM_EXIDX"},
    {0x70000002, "SHT_ARM_PREEMPTMAP"},
    {0x70000003, "SHT_ARM_ATTRIBUTES"},
};
constexpr NUMBER_NAME P_TYPES[] = {{0x70000001, "PT_ARM_EXIDX"}};
constexpr NUMBER_NAME P_FLAGS[] = {
    {0x10000000, "PF_ARM_SB"}, {0x20000000, "PF_ARM_PI"}, {0x40000000, "PF_ARM_ABS"}};
constexpr NUMBER_NAME SH_FLAGS[] = {{0x20000000, "SHF_ARM_PURECODE"}};
constexpr NUMBER_NAME E_FLAGS[] = {
    {ARM_MACHINE_DB::EF_ARM_BE8, "EF_ARM_BE8"},
    {ARM_MACHINE_DB::EF_ARM_ABI_FLOAT_HARD, "EF_ARM_ABI_FLOAT_HARD"},
    {ARM_MACHINE_DB::EF_ARM_ABI_FLOAT_SOFT, "EF_ARM_ABI_FLOAT_SOFT"},
};

template <size_t N>
bool name_in(const NUMBER_NAME (&names)[N], unsigned number, const char*& name) {
    for (const NUMBER_NAME& row : names)
        if (row.number == number) {
            name = row.name;
            return true;
        }
    name = nullptr;
    return false;
}

} // namespace

ARM_MACHINE_DB* ARM_MACHINE_DB::of(OBJECT_FILE* file) {
    OF_MACHINE_DB* db = file ? file->machine_db() : nullptr;
    return db && db->machine() == OF_MACHINE_ARM ? static_cast<ARM_MACHINE_DB*>(db) : nullptr;
}

OF_ENDIAN ARM_MACHINE_DB::of_section_endian(OF_SECTION*) {
    return file_->machine_endian();
}

bool ARM_MACHINE_DB::of_supports_build_attributes(OBJECT_FILE*, bool& supported) {
    supported = true;
    return true;
}

void ARM_MACHINE_DB::rel_build_type_table(OF_MACHINE_RELTYPES& types, OF_FORMAT format) {
    if (format == OF_FORMAT_ELF) types.add_rows(ELF_TYPES);
}

void ARM_MACHINE_DB::set_target2_relative(bool relative) {
    constexpr unsigned R_ARM_TARGET2 = 41;
    shared_machine_reltypes(OF_MACHINE_ARM, OF_FORMAT_ELF)
        .set_template(R_ARM_TARGET2, relative ? OFR_PCRLONG : OFR_ARM_TARGET2);
}

bool ARM_MACHINE_DB::elf_special_section_name(ELF_SECTION_TABLE*, const char* name,
                                              const char*& special) {
    for (const NAME_PAIR& pair : SPECIAL_NAMES)
        if (strcmp(pair.from, name) == 0) {
            special = pair.to;
            return true;
        }
    special = nullptr;
    return false;
}

bool ARM_MACHINE_DB::elf_gnu_symver(ELF_FILE*, bool& gnu) {
    gnu = true;
    return true;
}

bool ARM_MACHINE_DB::elf_set_gnu_symver(ELF_FILE* file, bool gnu) {
    if (file->max_state(OF_STATE_LOCKED) != 0) return false;
    file->header().e_ident[EI_OSABI] = gnu ? ELFOSABI_ARM_GNU : 0;
    return true;
}

bool ARM_MACHINE_DB::elf_ei_osabi_name(ELF_FILE*, unsigned char osabi, bool brief,
                                       const char*& name) {
    name = osabi != ELFOSABI_ARM_GNU ? nullptr : brief ? "ARM" : "ELFOSABI_ARM";
    return name != nullptr;
}

bool ARM_MACHINE_DB::elf_e_flag_name(ELF_FILE*, unsigned flag, bool, const char*& name) {
    return name_in(E_FLAGS, flag, name);
}
bool ARM_MACHINE_DB::elf_p_type_name(ELF_SEGMENT*, unsigned type, const char*& name) {
    return name_in(P_TYPES, type, name);
}
bool ARM_MACHINE_DB::elf_p_flag_name(ELF_SEGMENT*, unsigned flag, const char*& name) {
    return name_in(P_FLAGS, flag, name);
}
bool ARM_MACHINE_DB::elf_sh_type_name(ELF_SECTION*, unsigned type, const char*& name) {
    return name_in(SH_TYPES, type, name);
}
bool ARM_MACHINE_DB::elf_sh_flag_name(ELF_SECTION*, unsigned flag, const char*& name) {
    return name_in(SH_FLAGS, flag, name);
}

unsigned ARM_MACHINE_DB::find_isa_version() {
    if (isa_version_ != 0) return isa_version_;
    if (found_version_ < 0) {
        OFBA_ATTR* attr = file_->qv_battr(TAG_QV_ISA);
        if (!attr) attr = file_->abi_battr(TAG_CPU_ARCH);
        found_version_ = attr ? static_cast<int>(attr->val.uval & 0xFFFF) : 0;
    }
    return static_cast<unsigned>(found_version_);
}

unsigned ARM_MACHINE_DB::find_isa_profile() {
    if (isa_profile_ != 0) return isa_profile_;
    if (found_profile_ < 0) {
        OFBA_ATTR* attr = file_->qv_battr(TAG_QV_CPU_ARCH_PROFILE);
        if (!attr) attr = file_->abi_battr(TAG_CPU_ARCH_PROFILE);
        found_profile_ = attr ? static_cast<int>(attr->val.uval & 0xFFFF) : 0;
    }
    return static_cast<unsigned>(found_profile_);
}

void ARM_MACHINE_DB::set_isa_version(unsigned version, bool forced) {
    if (forced || isa_rank(version) > isa_rank(find_isa_version())) isa_version_ = version;
}

void ARM_MACHINE_DB::set_isa_profile(unsigned profile, bool forced) {
    if (forced || find_isa_profile() == 0) isa_profile_ = profile;
}

const char* ARM_MACHINE_DB::isa_version_name(unsigned version) {
    return version < std::size(ISA_NAMES) ? ISA_NAMES[version] : "unknown";
}

unsigned ARM_MACHINE_DB::isa_rank(unsigned version) {
    constexpr unsigned FIRST = 10;
    constexpr unsigned RANKS[] = {12, 10, 11, 13}; // v7, v6-M, v6S-M, v7E-M
    return version >= FIRST && version - FIRST < std::size(RANKS) ? RANKS[version - FIRST]
                                                                  : version;
}

unsigned ARM_MACHINE_DB::eabi_version() {
    return file_->flags() >> 24;
}

unsigned ARM_MACHINE_DB::be_enc() {
    if (file_->flags() & EF_ARM_BE8) return 1;
    if (be_enc_ != 0) return be_enc_;
    return file_->qv_battr_uval(TAG_QV_BE_ENC);
}

void ARM_MACHINE_DB::set_be_enc(unsigned enc) {
    be_enc_ = enc;
    if (OFBA_VENDOR_SCN* vendor = file_->qv_battr_vendor_section())
        if (OFBA_ATTR_LIST* list = vendor->file_list()) list->set_uval(TAG_QV_BE_ENC, enc);
    file_->set_flags(enc == 1 ? file_->flags() | EF_ARM_BE8 : file_->flags() & ~EF_ARM_BE8);
}

} // namespace OFE
