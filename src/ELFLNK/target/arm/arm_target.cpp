// The ARM target. The instruction set version of the output is the highest of what the user asks
// for and what the inputs were built for; all inputs are raised to it before anything depends on
// it, and code that is stored little-endian in a big-endian input is turned to the file's order, so
// that the link works on one byte order until the end.
#include "ELFLNK/target/arm/arm_target.h"

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/build/link_kind.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/mapfile/map_file.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/symbol/symbol_file.h"
#include "ELFLNK/target/arm/arm_eabi.h"
#include "FCOMPAT/fcompat.h"
#include "OBJEDIT04/attributes/build_attr_table.h"
#include "OBJEDIT04/machine/arm_machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OPTIONGEN/option_obj.h"

#include <algorithm>
#include <cstring>

using OFE::ARM_MACHINE_DB;

namespace {

constexpr unsigned ISA_V6 = 6;
constexpr unsigned ISA_WITH_THUMB2 = 8;
constexpr unsigned FIRST_EABI_VERSION = 4;
constexpr unsigned TAG_CPU_ARCH = 6;
constexpr unsigned BE_ENC_NONE = 0, BE_ENC_BE8 = 1, BE_ENC_BE32 = 2;

ARM_TARGET the_target;

unsigned isa_version_of(ARM_MACHINE_DB* machine) {
    return machine->isa_version() != 0 ? machine->isa_version() : machine->find_isa_version();
}

unsigned isa_profile_of(ARM_MACHINE_DB* machine) {
    return machine->isa_profile() != 0 ? machine->isa_profile() : machine->find_isa_profile();
}

ARM_MACHINE_DB* output_machine() {
    const OBJ_FILE* output = file_manager.output_file();
    return output != nullptr ? ARM_MACHINE_DB::of(output->object_file()) : nullptr;
}

} // namespace

TARGET* const Target = &the_target;

ARM_TARGET::ARM_TARGET() = default;
ARM_TARGET::~ARM_TARGET() = default;

ABI* ARM_TARGET::abi() {
    if (abi_ != nullptr) return abi_.get();
    if (!options_final_) DIAG_REPORT(elnk_opts_not_final);
    if (global_opts->isopt(OPT_platform)) DIAG_REPORT(elnk_bad_platform);
    abi_ = std::make_unique<ARM_EABI>();
    return abi_.get();
}

bool ARM_TARGET::linker_generates_trampolines() const {
    return global_opts->not_off(OPT_trampolines);
}

// --- options

// The version of a library's symbols can be its name only where symbols get versions.
void ARM_TARGET::check_symver_options() {
    constexpr option_id SONAME = OPT_symver_soname;
    const auto name = [](option_id id) { return option_obj::internal_option_string(id); };
    if (global_opts->isopt(SONAME) && !global_opts->isopt(OPT_shared)) {
        DIAG_REPORT(elnk_optcomb_required, name(SONAME), name(OPT_shared), name(SONAME));
        global_opts->clearopt(SONAME);
    }
    if (global_opts->isopt(OPT_shared) && !global_opts->isopt(OPT_platform)) {
        DIAG_REPORT(elnk_optcomb_required, name(OPT_shared), name(OPT_platform), name(OPT_shared));
        global_opts->clearopt(OPT_shared);
    }
    if (global_opts->isopt(SONAME) &&
        (global_opts->isopt(OPT_no_symver) || !global_opts->isopt(OPT_platform))) {
        DIAG_REPORT(elnk_sv_opt_no_versioning, name(SONAME));
        global_opts->clearopt(SONAME);
    }
    if (global_opts->isopt(SONAME) && global_opts->isopt(OPT_symver_script))
        DIAG_REPORT(elnk_symver_soname_opt_VERSION, name(SONAME));
}

void ARM_TARGET::finalize_options() {
    check_symver_options();
    if (global_opts->isopt(OPT_platform) && is_partial_link_by_options())
        DIAG_REPORT(elnk_bad_opt_partial, option_obj::internal_option_string(OPT_platform));
    if (global_opts->isvalue(OPT_dynamic, OPTV_dynamic_exe) &&
        global_opts->isopt(OPT_relocatable)) {
        DIAG_REPORT(elnk_bad_opt_dynamic_exe, option_obj::internal_option_string(OPT_relocatable));
        global_opts->clearopt(OPT_relocatable);
    }
    TARGET::finalize_options();
}

void ARM_TARGET::target_enter_predefined_macros(std::vector<std::string>& macros) const {
    static constexpr struct {
        const char* silicon;
        const char* macros[3];
    } ROWS[] = {
        {"4", {"__QV_ARM_V4__=1"}},
        {"5e", {"__QV_ARM_V5__=1"}},
        {"6", {"__QV_ARM_V6__=1"}},
        {"6M0", {"__QV_ARM_V6M0__=1"}},
        {"7A8", {"__QV_ARM_V7__=1", "__QV_ARM_V7A8__=1"}},
        {"7M3", {"__QV_ARM_V7__=1", "__QV_ARM_V7M__=1", "__QV_ARM_V7M3__=1"}},
        {"7M4", {"__QV_ARM_V7__=1", "__QV_ARM_V7M__=1", "__QV_ARM_V7M4__=1"}},
        {"7R4", {"__QV_ARM_V7__=1", "__QV_ARM_V7R4__=1"}},
        {"7R5", {"__QV_ARM_V7__=1", "__QV_ARM_V7R4__=1", "__QV_ARM_V7R5__=1"}},
    };
    macros.emplace_back("__ALPINE__=1");
    macros.emplace_back("__QV_ARM__=1");
    if (global_opts->isvalue(OPT_abi, OPTV_abi_eabi)) macros.emplace_back("__QV_EABI_SUPPORT__=1");
    const char* silicon = global_opts->getstrarg(OPT_silicon_version);
    if (silicon == nullptr) return;
    for (const auto& row : ROWS)
        if (std::strcmp(row.silicon, silicon) == 0)
            for (const char* macro : row.macros)
                if (macro != nullptr) macros.emplace_back(macro);
}

// --- input files

void ARM_TARGET::check_linker_compatibility(OBJ_FILE* file) {
    const OFE::OF_MACHINE machine = file->object_file()->machine();
    if (machine != OFE::OF_MACHINE_ARM)
        DIAG_REPORT(elnk_obj_incompat_isa, OFE::OBJECT_FILE::machine_name(OFE::OF_MACHINE_ARM),
                    file->name(), OFE::OBJECT_FILE::machine_name(machine));
}

FCOMPAT* ARM_TARGET::fcompat(OBJ_FILE* output, OBJ_FILE* file) {
    if (fcompat_ == nullptr) fcompat_ = FCOMPAT_FACTORY::get_fcompat(OFE::OF_MACHINE_ARM);
    const OBJ_FILE* baseline = file_manager.baseline_file();
    fcompat_->set_files(output->object_file(), baseline != nullptr ? baseline->name() : nullptr,
                        file->object_file(), file_diag_name(file));
    return fcompat_.get();
}

void ARM_TARGET::update_upon_scanning() {
    ARM_MACHINE_DB* output = output_machine();
    if (output == nullptr) return;
    const unsigned version = isa_version_of(output);
    const unsigned profile = isa_profile_of(output);
    for (OBJ_FILE* file : file_manager.object_files()) {
        ARM_MACHINE_DB* machine = ARM_MACHINE_DB::of(file->object_file());
        if (machine != nullptr &&
            ARM_MACHINE_DB::isa_rank(isa_version_of(machine)) < ARM_MACHINE_DB::isa_rank(version)) {
            machine->set_isa_version(version, true);
            machine->set_isa_profile(profile, true);
        }
        normalize_section_data(file);
    }
    be8_output_check();
}

void ARM_TARGET::normalize_section_data(OBJ_FILE* file) {
    ARM_MACHINE_DB* machine = ARM_MACHINE_DB::of(file->object_file());
    if (machine == nullptr || machine->be_enc() != BE_ENC_BE8) return;
    OFE::OF_SECTION_TABLE* table = file->object_file()->section_table();
    for (unsigned id = 0; id < table->scnnum(); id++)
        if (OFE::OF_SECTION* section = table->section(id); section != nullptr && section->exec())
            machine->swap_be8_code(section);
}

void ARM_TARGET::report_undef_symbol(OFE::OF_SYMBOL* symbol) {
    if (global_opts->isvalue(OPT_cinit_hold_wdt, OPTV_onoff_on) &&
        std::strcmp(symbol->name(), "WDTCTL_SYM") == 0)
        DIAG_REPORT(elnk_wdt_not_supported, symbol->name());
}

// --- the output

void ARM_TARGET::init_output_file(OFE::OBJECT_FILE* output, OFE::OBJECT_FILE* first) {
    if (output->format() == OFE::OF_FORMAT_ELF) init_output_ELF_file(output, first);
    ARM_MACHINE_DB* machine = ARM_MACHINE_DB::of(output);
    if (machine == nullptr) return;
    silicon_.set(global_opts->getstrarg(OPT_silicon_version));
    if (ARM_MACHINE_DB::isa_rank(silicon_.isa_version()) >
        ARM_MACHINE_DB::isa_rank(isa_version_of(machine))) {
        machine->set_isa_version(silicon_.isa_version());
        machine->set_isa_profile(silicon_.profile());
    }
}

void ARM_TARGET::init_output_ELF_file(OFE::OBJECT_FILE*, OFE::OBJECT_FILE* first) {
    ARM_MACHINE_DB* machine = ARM_MACHINE_DB::of(first);
    if (machine == nullptr) return;
    const unsigned version = machine->eabi_version();
    if (global_opts->isopt(OPT_abi) &&
        (version != 0) != global_opts->isvalue(OPT_abi, OPTV_abi_eabi))
        DIAG_REPORT(elnk_abi_obj_conflict, option_obj::internal_option_string(OPT_abi),
                    global_opts->getstrarg(OPT_abi), first->display_name(),
                    version != 0 ? "EABI" : "QVABI", version);
    if (version != 0 && version < FIRST_EABI_VERSION)
        DIAG_REPORT(elnk_abiver_not_supported, FIRST_EABI_VERSION, first->display_name(), version);
}

// Decides whether a big-endian output keeps its code little-endian.
void ARM_TARGET::be8_output_check() {
    const auto clear = [this](option_id id) {
        needs_be8_code_swap_ = false;
        const bool given = global_opts->isopt(id);
        global_opts->clearopt(id);
        return given;
    };
    ARM_MACHINE_DB* machine = output_machine();
    if (is_partial_link()) {
        if (clear(OPT_be8)) DIAG_REPORT(elnk_bad_opt_partial, "--be8");
    } else if (isa_version_of(machine) < ISA_V6) {
        if (clear(OPT_be8))
            DIAG_REPORT(elnk_be8_req_v6, "--be8", ARM_MACHINE_DB::isa_version_name(ISA_V6));
    } else if (file_manager.output_file()->object_file()->machine_endian() != OFE::OF_ENDIAN_BIG) {
        if (clear(OPT_be8)) DIAG_REPORT(elnk_be_opt_req_be, "--be8");
        if (clear(OPT_be32)) DIAG_REPORT(elnk_be_opt_req_be, "--be32");
    } else if (global_opts->isopt(OPT_be32)) {
        needs_be8_code_swap_ = false;
    }
}

// A section of data in the guise of code needs no mapping symbol in its own file; in the output it
// must not count as what lies before it.
void ARM_TARGET::mark_unmapped_sections() {
    for (OBJ_FILE* file : file_manager.object_files()) {
        ARM_MACHINE_DB* machine = ARM_MACHINE_DB::of(file->object_file());
        if (machine == nullptr) continue;
        OFE::OF_SECTION_TABLE* table = file->object_file()->section_table();
        for (unsigned id = 0; id < table->scnnum(); id++) {
            SECTION* object = root_collection->lookup_section(file->object_file()->file_id(), id);
            OFE::OF_SECTION* output = object != nullptr ? object->output_OF_SECTION() : nullptr;
            if (output == nullptr || machine->is_mapped_from_start(table->section(id))) continue;
            output_machine()->add_mapping(output, static_cast<unsigned>(object->run_address()),
                                          OFE::ARM_TYPES::SM_DATA);
        }
    }
}

void ARM_TARGET::finalize_section_data(OFE::OF_SECTION* section) {
    if (!needs_be8_code_swap_ || !swapped_sections_.insert(section).second) return;
    if (!unmapped_sections_marked_) mark_unmapped_sections();
    unmapped_sections_marked_ = true;
    output_machine()->swap_be8_code(section);
}

void ARM_TARGET::finalize_copied_data(OFE::OF_SECTION* input, uint8_t* bytes, uint32_t size) {
    if (needs_be8_code_swap_ && input->exec())
        static_cast<ARM_MACHINE_DB*>(input->ofile()->machine_db())
            ->swap_be8_code(input, bytes, size);
}

void ARM_TARGET::finalize_output_file() {
    ARM_MACHINE_DB* machine = output_machine();
    if (machine == nullptr) return;
    OFE::OBJECT_FILE* output = file_manager.output_file()->object_file();
    const OFE::OFBA_ATTR* arch = output->abi_battr(TAG_CPU_ARCH);
    if (arch != nullptr &&
        ARM_MACHINE_DB::isa_rank(arch->val.uval) < ARM_MACHINE_DB::isa_rank(silicon_.isa_version()))
        output->abi_battr_vendor_section()->file_list()->set_uval(TAG_CPU_ARCH,
                                                                  silicon_.isa_version());
    const bool big = output->machine_endian() == OFE::OF_ENDIAN_BIG;
    machine->set_be_enc(needs_be8_code_swap_ ? BE_ENC_BE8 : big ? BE_ENC_BE32 : BE_ENC_NONE);
}

void ARM_TARGET::set_target2_relative(bool relative) {
    ARM_MACHINE_DB::set_target2_relative(relative);
}

void ARM_TARGET::gen_mapping_symbol(OFE::OF_SECTION* section, OFE::ARM_TYPES::SECTION_MODE mode,
                                    uint32_t offset) {
    OFE::OF_SYMBOL* symbol = section->ofile()->symbol_table()->new_symbol();
    symbol->set_name_view(ARM_MACHINE_DB::mapping_sym_name(mode));
    symbol->set_section(section);
    symbol->set_value(offset);
    symbol->set_type(OFE::OF_SYM_TYPE_NONE);
    symbol->set_binding(OFE::OF_SYM_BINDING_LOCAL);
}

unsigned ARM_TARGET::thumb_nop() const {
    ARM_MACHINE_DB* machine = output_machine();
    return machine != nullptr && isa_version_of(machine) >= ISA_WITH_THUMB2 ? 0xBF00 : 0x46C0;
}

void ARM_TARGET::init_mapfile_filter() {
    mdisp_flags().add("veneers", "veneer functions", true);
    TARGET::init_mapfile_filter();
}
