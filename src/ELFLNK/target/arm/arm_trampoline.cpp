// What ARM's instructions reach and enter, and the choice of the code that leads on.
#include "ELFLNK/target/arm/arm_trampoline.h"

#include <cstring>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/target/arm/arm_target.h"
#include "OBJEDIT04/attributes/build_attr_table.h"
#include "OBJEDIT04/machine/reloc_type.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OF_RELENG/arm/arm_fields.h"
#include "OF_RELENG/arm/arm_machops.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/savestr.h"

using namespace OFE;
using SECTION_MODE = ARM_TYPES::SECTION_MODE;

namespace {

constexpr unsigned PROFILE_M = 'M';
constexpr unsigned TAG_EMBEDDED_CONSTS = 272;
constexpr unsigned NO_EMBEDDED_CONSTS = 1;

ARM_MACHINE_DB* output_machine() {
    const OBJ_FILE* output = file_manager.output_file();
    return output != nullptr ? ARM_MACHINE_DB::of(output->object_file()) : nullptr;
}

bool is_thumb_only() {
    return arm_output_isa_version() == ISA_V6T2 || arm_output_isa_profile() == PROFILE_M;
}

/// Thumb-2 is part of the architecture: v6T2, v7, v7E-M, v8-M with its main extension.
bool has_thumb2() {
    switch (arm_output_isa_version()) {
    case 8:
    case 10:
    case 13:
    case 17:
        return true;
    default:
        return false;
    }
}

SECTION_MODE other_state(SECTION_MODE state) {
    return state == ARM_TYPES::SM_ARM ? ARM_TYPES::SM_THUMB : ARM_TYPES::SM_ARM;
}

bool is_code_state(SECTION_MODE state) {
    return state == ARM_TYPES::SM_ARM || state == ARM_TYPES::SM_THUMB;
}

/// The entry says by its own symbol that it is Thumb code.
bool is_thumb_function(const OF_SYMBOL* symbol) {
    return symbol != nullptr && symbol->type() == OF_SYM_TYPE_FUNCTION &&
           (symbol->value() & 1) != 0;
}

} // namespace

unsigned arm_output_isa_version() {
    ARM_MACHINE_DB* machine = output_machine();
    if (machine == nullptr) return 0;
    return machine->isa_version() != 0 ? machine->isa_version() : machine->find_isa_version();
}

unsigned arm_output_isa_profile() {
    ARM_MACHINE_DB* machine = output_machine();
    if (machine == nullptr) return 0;
    return machine->isa_profile() != 0 ? machine->isa_profile() : machine->find_isa_profile();
}

SECTION_MODE arm_branch_state(const OF_RELOC_TEMPLATE& rel) {
    switch (rel.id) {
    case OFR_ARM_PC24:
    case OFR_ARM_CALL:
    case OFR_ARM_JUMP24:
        return ARM_TYPES::SM_ARM;
    case OFR_ARM_THM_CALL:
    case OFR_ARM_THM_JUMP24:
    case OFR_ARM_THM_JUMP19:
        return ARM_TYPES::SM_THUMB;
    default:
        return ARM_TYPES::SM_UNKNOWN;
    }
}

bool arm_branch_may_become_blx(SECTION* section, const OF_RELOC_TEMPLATE& rel, uint32_t offset) {
    OF_SECTION* input = section->OF_SECTION_api();
    ARM_MACHINE_DB* machine = ARM_MACHINE_DB::of(input->ofile());
    const OF_BYTES bytes = input->bytes();
    if (machine == nullptr || bytes.size < 4 || offset > bytes.size - 4) return false;
    const bool big = machine->of_section_endian(input) == OF_ENDIAN_BIG;
    return ARM_RELENG_MACHOPS::blx_conversion_possible(machine->find_isa_version(), rel,
                                                       bytes.data + offset, big);
}

SECTION_MODE arm_state_at(SECTION* section, uint64_t offset) {
    OF_SECTION* input = section->OF_SECTION_api();
    ARM_MACHINE_DB* machine = input != nullptr ? ARM_MACHINE_DB::of(input->ofile()) : nullptr;
    if (machine == nullptr) return ARM_TYPES::SM_UNKNOWN;
    return machine->section_mode_addr(input, input->run_addr() + static_cast<uint32_t>(offset));
}

// ---- callees -------------------------------------------------------------------------------

ARM_TRAMP_CALLEE::ARM_TRAMP_CALLEE(SECTION* section, uint64_t offset)
    : TRAMP_CALLEE(section, offset) {
    if (section != nullptr) state_ = arm_state_at(section, offset);
}

TRAMPOLINE* ARM_TRAMP_CALLEE::new_trampoline(TRAMP_CALL_SITE* site) {
    TRAMPOLINE* trampoline = TRAMP_CALLEE::new_trampoline(site);
    static_cast<ARM_TRAMPOLINE*>(trampoline)
        ->set_jump_type(static_cast<const ARM_TRAMP_CALL_SITE*>(site)->jump_type());
    return trampoline;
}

// ---- calls ---------------------------------------------------------------------------------

TRAMP_CALL_SITE* new_ARM_TRAMP_CALL_SITE(SECTION* section, const OF_RELOC_TYPE* type,
                                         uint32_t offset) {
    if (type->rel_template == nullptr || !type->rel_template->is(OFRT_CALL)) return nullptr;
    const SECTION_MODE state = arm_branch_state(*type->rel_template);
    if (state == ARM_TYPES::SM_UNKNOWN) {
        DIAG_REPORT(elnk_bad_tramp_reloc, section->OF_SECTION_api()->ofile()->display_name(),
                    section->original_section_name(), uint64_t{offset});
        return nullptr;
    }
    return new ARM_TRAMP_CALL_SITE(section, type, offset, state);
}

ARM_TRAMP_CALL_SITE::ARM_TRAMP_CALL_SITE(SECTION* section, const OF_RELOC_TYPE* type,
                                         uint32_t offset, SECTION_MODE state)
    : TRAMP_CALL_SITE(section, type, offset),
      state_(state),
      may_become_blx_(arm_branch_may_become_blx(section, *type->rel_template, offset)) {}

void ARM_TRAMP_CALL_SITE::set_callee(TRAMP_CALLEE* callee) {
    TRAMP_CALL_SITE::set_callee(callee);
    ARM_TRAMP_CALLEE* to = arm_callee();
    const OF_SYMBOL* symbol = to->symbol();
    if (to->section() != nullptr && is_thumb_function(symbol)) to->set_state(ARM_TYPES::SM_THUMB);
    if (is_code_state(to->state())) return;
    if (is_thumb_only())
        to->set_state(ARM_TYPES::SM_THUMB);
    else if (to->section() != nullptr)
        to->set_state(state_);
    else if (symbol == nullptr)
        to->set_state(other_state(state_));
    else
        to->set_state((symbol->value() & 1) != 0 ? ARM_TYPES::SM_THUMB : ARM_TYPES::SM_ARM);
}

bool ARM_TRAMP_CALL_SITE::need_trampoline() {
    const bool changes_state =
        is_code_state(arm_callee()->state()) && arm_callee()->state() != state_;
    if (changes_state && !may_become_blx_) {
        jump_type_ = JUMP_ENT::VENEER;
        return true;
    }
    if (!TRAMP_CALL_SITE::need_trampoline()) {
        jump_type_ = 0;
        return false;
    }
    const bool to_thumb = arm_callee()->is_thumb();
    jump_type_ = state_ == ARM_TYPES::SM_ARM && to_thumb ? JUMP_ENT::VENEER : JUMP_ENT::FARCALL;
    return true;
}

bool ARM_TRAMP_CALL_SITE::tramp_is_compatible(const TRAMPOLINE* trampoline) const {
    return trampoline->jump_type_kind() == jump_type_;
}

// ---- trampolines ---------------------------------------------------------------------------

bool ARM_TRAMPOLINE::use_embedded_constants() {
    static const bool allowed = [] {
        OBJECT_FILE* output = file_manager.output_file()->object_file();
        const bool asked_not_to = output->qv_battr_vendor_section() != nullptr &&
                                  output->qv_battr_uval(TAG_EMBEDDED_CONSTS) == NO_EMBEDDED_CONSTS;
        return !asked_not_to && global_opts->not_off(OPT_embedded_constants);
    }();
    return allowed;
}

STUB_ID ARM_TRAMPOLINE::choose(bool near) const {
    return choose_stub(
        {jump_type_, arm_callee()->is_thumb(), has_thumb2(), near, use_embedded_constants()});
}

uint64_t ARM_TRAMPOLINE::size() {
    const STUB_ID code = code_ != STUB_COUNT ? code_ : choose(false);
    if (code == STUB_COUNT) DIAG_REPORT(elnk_bad_case);
    return stub_size(code);
}

void ARM_TRAMPOLINE::choose_code() {
    uint32_t branch = OFR_ARM_JUMP24;
    if (arm_callee()->is_thumb()) branch = has_thumb2() ? OFR_ARM_THM_JUMP24 : OFR_ARM_THM_JUMP11;
    code_ = choose(tramp_in_range(branch));
}

std::vector<JUMP_ENT::MARK> ARM_TRAMPOLINE::marks() const {
    std::vector<MARK> marks;
    uint32_t offset = 0;
    SECTION_MODE mode = ARM_TYPES::SM_UNKNOWN;
    for (const STUB_UNIT_ROW& unit : stub_units(code_)) {
        const SECTION_MODE own = unit.kind == STUB_UNIT_WORD  ? ARM_TYPES::SM_DATA
                                 : unit.kind == STUB_UNIT_ARM ? ARM_TYPES::SM_ARM
                                                              : ARM_TYPES::SM_THUMB;
        if (own != mode) marks.push_back({offset, ARM_MACHINE_DB::mapping_sym_name(own)});
        mode = own;
        offset += stub_unit_size(unit.kind);
    }
    return marks;
}

std::vector<JUMP_ENT::FIXUP> ARM_TRAMPOLINE::fixups() const {
    std::vector<FIXUP> fixups;
    uint32_t offset = 0;
    for (const STUB_UNIT_ROW& unit : stub_units(code_)) {
        if (unit.has_callee()) fixups.push_back({offset, unit.fixup});
        offset += stub_unit_size(unit.kind);
    }
    return fixups;
}

void ARM_TRAMPOLINE::generate_code(uint8_t* bytes, uint64_t address, bool big) const {
    uint64_t to = tramp_callee()->address();
    if (arm_callee()->is_thumb()) to |= 1;
    const auto nop = static_cast<uint16_t>(static_cast<ARM_TARGET*>(Target)->thumb_nop());
    encode_stub(code_, bytes, big, static_cast<uint32_t>(address), static_cast<uint32_t>(to), nop);
}

const char* ARM_TRAMPOLINE::entry_symbol_name() const {
    const bool farcall = jump_type_ == FARCALL;
    const bool thumb = arm_callee()->is_thumb();
    const bool long_form = stub_is_long(code_);
    return savestrf("$%s$%s%s%s$$%s", farcall ? "Tramp" : "Ven",
                    farcall ? (thumb ? "TT" : "AA") : (thumb ? "AT" : "TA"),
                    long_form ? "$L" : "$S", long_form ? "$PI" : "", callee()->name());
}
