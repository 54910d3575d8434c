#include "ELFLNK/target/arm/arm_eabi.h"

#include "ELFLNK/build/build.h"
#include "ELFLNK/build/link_kind.h"
#include "ELFLNK/expr/expression.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/parse_lcf/lcf_parser.h"
#include "ELFLNK/retain/retain_spec.h"
#include "ELFLNK/symbol/demangle.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/machine/arm_machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/data_map.h"

#include <cstring>

using OFE::ARM_MACHINE_DB;

namespace {

constexpr unsigned THUMB_BIT = 1;
constexpr uint64_t DEFAULT_RAM_ORIGIN = 0x20;
constexpr uint64_t ADDRESS_SPACE = 0x100000000;
constexpr uint32_t SHT_ARM_PREEMPTMAP = 0x70000002;

/// The constants of the C library that portable objects leave to the link. The second value is that
/// of the other run-time library vendor.
constexpr struct {
    const char* name;
    int32_t value;
    int32_t other_vendor_value;
} LINK_TIME_CONSTANTS[] = {
    {"__aeabi_EDOM", 33, 33},
    {"__aeabi_ERANGE", 34, 34},
    {"__aeabi_EILSEQ", 88, 88},
    {"__aeabi_MB_LEN_MAX", 8, 8},
    {"__aeabi_LC_COLLATE", 1, 1},
    {"__aeabi_LC_CTYPE", 2, 2},
    {"__aeabi_LC_MONETARY", 3, 3},
    {"__aeabi_LC_NUMERIC", 4, 4},
    {"__aeabi_LC_TIME", 5, 5},
    {"_aeabi_LC_ALL", 6, 6},
    {"__aeabi_SIG_DFL", -1, -1},
    {"__aeabi_SIG_ERR", -2, -2},
    {"__aeabi_SIG_IGN", -3, -3},
    {"__aeabi_SIGILL", 4, 4},
    {"__aeabi_SIGFPE", 8, 8},
    {"__aeabi_SIGSEGV", 11, 11},
    {"__aeabi_SIGTERM", 15, 15},
    {"__aeabi_IOFBF", 1, 0},
    {"__aeabi_IOLBF", 2, 1},
    {"__aeabi_IONBF", 4, 2},
    {"__aeabi_BUFSIZ", 256, 256},
    {"__aeabi_FOPEN_MAX", 10, 10},
    {"__aeabi_TMP_MAX", 65535, 65535},
    {"__aeabi_FILENAME_MAX", 256, 256},
    {"__aeabi_L_tmpnam", 16, 16},
    {"__aeabi_JMP_BUF_SIZE", 13, 13},
    {"__aeabi_CLOCKS_PER_SEC", 1000, 1000},
    {"__aeabi_SIGINT", 2, 2},
    {"__aeabi_SIGABRT", 6, 6},
};
constexpr unsigned OTHER_RTS_VENDOR = 2;

/// True if the code at `offset` of an input section is Thumb.
bool is_thumb_code(OFE::OF_SECTION* section, uint64_t offset) {
    ARM_MACHINE_DB* machine = ARM_MACHINE_DB::of(section->ofile());
    return machine != nullptr &&
           machine->section_mode_addr(section,
                                      static_cast<unsigned>(section->run_addr() + offset)) ==
               OFE::ARM_TYPES::SM_THUMB;
}

} // namespace

// --- default memory

void ARM_EABI::base_default_allocation() {
    if (!memory_map->empty()) return;
    default_memory_range("RAM", 0, DEFAULT_RAM_ORIGIN, ADDRESS_SPACE - DEFAULT_RAM_ORIGIN,
                         MEMORY_RANGE::ATTR_ALL);
    if (LCF_PARSER::sections_seen() || is_partial_link()) return;
    const auto make = [](const char* name) {
        root_collection->default_output_section(name, "RAM", 4, COLLECTION::NO_PAGE);
    };
    make(text_section_name());
    make(const_section_name());
    make(data_section_name());
    make(bss_section_name());
    if (global_opts->isopt(OPT_rom_model)) make(cinit_section_name());
    if (is_c_runtime_model()) make(pinit_section_name());
}

void ARM_EABI::default_allocation() {
    base_default_allocation();
    create_and_inherit_output_section(noinit_section_name(), bss_section_name());
    create_and_inherit_output_section(persistent_section_name(), data_section_name());
    COLLECTION* counters = create_and_inherit_output_section("__llvm_prf_cnts", bss_section_name());
    // In a file for a further link they would meet those of other such files, and of that link.
    if (counters == nullptr || is_partial_link()) return;
    assign_address("__start___llvm_prf_cnts", EXPR_OP_RUN_START, counters);
    assign_address("__stop___llvm_prf_cnts", EXPR_OP_RUN_END, counters);
}

void ARM_EABI::form_binit_table() {
    LINKER_OBJECT* outsect =
        is_final_executable_link() ? root_collection->find_outsect(binit_section_name()) : nullptr;
    for (const char* name : {binit_symbol_name(), binit_alt_symbol_name()})
        if (outsect != nullptr && outsect->size() != 0)
            assign_address(name, EXPR_OP_RUN_START, outsect);
        else
            bind_invalid(name);
}

void ARM_EABI::define_link_time_constants() {
    if (is_partial_link()) return;
    const bool other_vendor = Target->rts_vendor() == OTHER_RTS_VENDOR;
    for (const auto& constant : LINK_TIME_CONSTANTS) {
        if (!global_symbols.need_def(constant.name)) continue;
        OFE::OF_SECTION* section = create_constant_variable(constant.name)->OF_SECTION_api();
        const auto endian = static_cast<DATA_MAP::ENDIAN>(section->ofile()->machine_endian());
        uint8_t bytes[4];
        DATA_MAP::store(
            bytes,
            static_cast<uint32_t>(other_vendor ? constant.other_vendor_value : constant.value),
            sizeof bytes, endian);
        section->write_to_raw_data(bytes, sizeof bytes, 0);
    }
}

// --- symbols

void ARM_EABI::define_static_base_symbol(bool use_lowest) {
    if (is_partial_link() || static_base_symbol() != nullptr) return;
    LINKER_OBJECT* base = nullptr;
    for (LINKER_OBJECT* object : root_collection->members()) {
        if (!object->has_attr(PA_ALLOCATED) || !object->is_collection()) continue;
        if (use_lowest && !object->run_placement_is_complete()) continue; // has no address
        if (base == nullptr || (use_lowest && object->run_address() < base->run_address()))
            base = object;
        if (!use_lowest) break;
    }
    if (base != nullptr) assign_address(static_base_name(), EXPR_OP_RUN_START, base);
}

// A function symbol carries its instruction set in bit 0. Compilers and assemblers set it; where an
// input didn't, the mapping symbols of the section that defines the function tell.
void ARM_EABI::update_output_symbols() {
    OFE::OBJECT_FILE* output = output_OF_FILE();
    ARM_MACHINE_DB* machine = ARM_MACHINE_DB::of(output);
    if (machine == nullptr || output->format() != OFE::OF_FORMAT_ELF ||
        machine->eabi_version() == 0)
        return;
    OFE::OF_SYMBOL_TABLE* symbols = output->symbol_table();
    for (unsigned id = 0; symbols != nullptr && id < symbols->symnum(); id++) {
        OFE::OF_SYMBOL* symbol = symbols->symbol(id);
        if (symbol == nullptr || symbol->type() != OFE::OF_SYM_TYPE_FUNCTION ||
            symbol->kind() != OFE::OF_SYM_KIND_DEFINED ||
            symbol->binding() == OFE::OF_SYM_BINDING_LOCAL || (symbol->value() & THUMB_BIT) != 0)
            continue;
        OFE::OF_SYMBOL* input = lookup_input_symbol_from_output(symbol);
        if (input == nullptr || !input->refs_section()) continue;
        OFE::OF_SECTION* section = input->section();
        const unsigned offset = section->ofile()->values_are_scnrel()
                                    ? input->value()
                                    : input->value() - section->run_addr();
        if (is_thumb_code(section, offset)) symbol->set_value(symbol->value() | THUMB_BIT);
    }
}

uint64_t ARM_EABI::entry_point_value(uint64_t address) const {
    if ((address & THUMB_BIT) != 0) return address;
    OFE::OBJECT_FILE* out = output_OF_FILE();
    ARM_MACHINE_DB* machine = ARM_MACHINE_DB::of(out);
    auto place = static_cast<unsigned>(address);
    OFE::OF_SECTION* section =
        machine != nullptr ? out->section_table()->section_addr(place, 0) : nullptr;
    if (section == nullptr) return address;
    return machine->section_mode_addr(section, place) == OFE::ARM_TYPES::SM_THUMB
               ? address | THUMB_BIT
               : address;
}

bool ARM_EABI::is_static_guard(const char* name) const {
    return std::strncmp(name, "_ZGV", 4) == 0;
}

bool ARM_EABI::is_muldef_ok(OFE::OF_SYMBOL* symbol) const {
    const char* name = symbol->name();
    return name[0] == '_' && name[1] == 'Z' &&
           (is_static_guard(name) || decode_is_ia64_subobject(name));
}

// --- sections

void ARM_EABI::add_retain_specs() {
    for (const char* text : {"*(__llvm_prf_names)", "*(__llvm_covmap)", "__acle_se_*"})
        retain_manager.add_retain_specifier(text);
}

void ARM_EABI::append_reserved_prefixes(std::vector<std::string_view>& prefixes) const {
    prefixes.push_back(".ARM.");
}

bool ARM_EABI::section_is_omdata(const OFE::OF_RAW_SECTION& section,
                                 const OFE::OBJECT_FILE* file) const {
    return (section.type == SHT_ARM_PREEMPTMAP && file->format() == OFE::OF_FORMAT_ELF) ||
           ABI::section_is_omdata(section, file);
}
