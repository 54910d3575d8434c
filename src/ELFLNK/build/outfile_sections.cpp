// One output section per output collection, with addresses, alignment, type and flags from the
// placed object.
#include "DIAG/elnk_msgs.h"
#include "DIAG/user_msg_api.h"
#include "ELFLNK/build/build.h"
#include "ELFLNK/build/build_state.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/elf/elf_section.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "UTIL/narrow.h"
#include "UTIL/trace.h"

namespace {

constexpr uint32_t QV_FLAG_EMPTY = 1; // says "no members"; no attribute of a section

OFE::OF_SECTION* new_output_section(LINKER_OBJECT* object) {
    OFE::OF_SECTION* section = output_OF_FILE()->section_table()->new_section(object->name());
    if (OFE::OF_SYMBOL* symbol = section->create_section_symbol()) symbol->set_final(true);
    section->set_ext_flags(object->qv_flags() & ~QV_FLAG_EMPTY);
    if (object->is_exidx() && section->ofile()->format() == OFE::OF_FORMAT_ELF)
        OFE::elf_api(section)->set_sh_type(OFE::SHT_ARM_EXIDX);
    object->set_output_OF_SECTION(section);
    trace_build.printf("--> output section %s\n", object->name());
    return section;
}

// The largest alignment that a section's header can hold when the placed one is too large.
unsigned storable_align(LINKER_OBJECT* object) {
    auto in_units = [](unsigned bits, unsigned unit) { return (bits + unit - 1) / unit; };
    if (object->has_attr(PA_EXEC))
        return in_units(Target->abi()->max_code_bit_align(), Target->code_unit_bit_size());
    if (object->has_attr(PA_HAS_DATA))
        return in_units(Target->abi()->max_data_bit_align(), Target->data_unit_bit_size());
    return 1;
}

void set_alignment(OFE::OF_SECTION* section, LINKER_OBJECT* object) {
    uint64_t align = object->alignment() ? object->alignment() : 1;
    if (align > section->max_align()) {
        if (is_partial_link())
            DIAG_REPORT(elnk_alignment_too_large_for_partial_link, align, section->name());
        align = storable_align(object);
    }
    section->set_align(narrow<unsigned>(align));
}

// In a file for a further link the next linker has to know what the first input section says of
// itself; it stands for all of them.
LINKER_OBJECT* first_member(LINKER_OBJECT* object) {
    while (COLLECTION* collection = as_collection(object)) {
        if (collection->members().empty()) return nullptr;
        object = collection->members().front();
    }
    return object;
}

// Thread-local sections give their attribute to no collection.
bool is_tls(LINKER_OBJECT* object) {
    if (object->has_attr(PA_TLS) || !is_partial_link()) return object->has_attr(PA_TLS);
    const LINKER_OBJECT* first = first_member(object);
    return first != nullptr && first->has_attr(PA_TLS);
}

// What is called and kept by its type: the index for unwinding, the tables of initialisers.
bool keeps_its_type(unsigned type) {
    return type == OFE::SHT_ARM_EXIDX || type == OFE::SHT_INIT_ARRAY ||
           type == OFE::SHT_FINI_ARRAY || type == OFE::SHT_PREINIT_ARRAY;
}

unsigned section_type(const OFE::ELF_SECTION* section, LINKER_OBJECT* object) {
    if (is_partial_link()) {
        if (keeps_its_type(section->sh_type())) return section->sh_type();
        SECTION* first = as_section(first_member(object));
        OFE::OF_SECTION* input = first != nullptr ? first->OF_SECTION_api() : nullptr;
        OFE::OF_RAW_SECTION header;
        if (input != nullptr && input->section_table()->raw_section(input->id(), header) &&
            keeps_its_type(header.type))
            return header.type;
    }
    return object->has_attr(PA_HAS_DATA) ? OFE::SHT_PROGBITS : OFE::SHT_NOBITS;
}

void set_type_and_flags(OFE::ELF_SECTION* section, LINKER_OBJECT* object) {
    section->set_sh_type(section_type(section, object));
    unsigned flags = 0;
    if (object->has_attr(PA_ALLOCATED) && !object->has_attr(PA_NOLOAD)) {
        flags |= OFE::SHF_ALLOC;
        if (object->has_attr(PA_WRITE)) flags |= OFE::SHF_WRITE;
    }
    if (object->has_attr(PA_EXEC)) flags |= OFE::SHF_EXECINSTR;
    if (is_tls(object)) flags |= OFE::SHF_TLS;
    section->set_sh_flags(flags);
}

// Headers hold 32-bit addresses: what lies above would silently end up somewhere else.
void check_addresses(LINKER_OBJECT* object) {
    constexpr uint64_t limit = uint64_t{1} << 32;
    uint64_t size = object->size();
    if (!object->has_attr(PA_ALLOCATED) || size == 0 || size > UINT32_MAX) return;
    for (uint64_t address : {object->run_address(), object->load_address()}) {
        if (address <= limit - size) continue;
        USER_MSG::get_umsg_obj()->error(
            &object->source_position(),
            "\"%s\", at %#lx with the size %#lx, lies outside of the 32-bit address space",
            object->name(), address, size);
        return;
    }
}

void update_section(OFE::OF_SECTION* section, LINKER_OBJECT* object) {
    check_addresses(object);
    auto run = narrow<uint32_t>(object->run_address() & 0xFFFFFFFF);
    auto load = narrow<uint32_t>(object->load_address() & 0xFFFFFFFF);
    trace_build.printf("--> update section %s: run=0x%08lx, load=0x%08lx, size=0x%lx\n",
                       section->name(), run, load, object->size());
    section->set_load_addr(load);
    section->set_run_addr(run);
    if (OFE::OF_SYMBOL* symbol = section->find_symbol()) {
        symbol->set_value(output_OF_FILE()->values_are_scnrel() ? 0 : run);
        symbol->set_final_value(true);
    }
    set_alignment(section, object);
    if (output_OF_FILE()->format() == OFE::OF_FORMAT_ELF)
        set_type_and_flags(OFE::elf_api(section), object);
    section->set_page(static_cast<unsigned>(object->run_page()));
    section->set_size(storable_size(object, 1));
    object->set_output_updated(true);
}

} // namespace

uint32_t storable_size(LINKER_OBJECT* object, unsigned unit_bytes) {
    uint64_t size = object->size();
    if (size <= UINT32_MAX / unit_bytes) return static_cast<uint32_t>(size * unit_bytes);
    USER_MSG::get_umsg_obj()->error(
        &object->source_position(),
        "the size of \"%s\", %#lx, is more than an output file can hold", object->name(), size);
    return 0;
}

void create_outfile_sections() {
    trace_build.printf("\nCREATE OUTFILE SECTIONS\n");
    for (LINKER_OBJECT* object : root_collection->outsects()) {
        OFE::OF_SECTION* section = object->output_OF_SECTION();
        if (!section) section = new_output_section(object);
        if (object->is_placed() && !object->output_updated()) update_section(section, object);
    }
}
