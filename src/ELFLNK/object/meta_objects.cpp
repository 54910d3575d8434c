// See the header. Where tables are no part of the program's memory, their program headers name no
// address.
#include "ELFLNK/object/meta_objects.h"

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/elf_types.h"
#include "OBJEDIT04/elf/segments/elf_segment.h"
#include "OBJEDIT04/elf/segments/elf_segment_table.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "UTIL/narrow.h"
#include "UTIL/pprint.h"

using namespace OFE;

namespace {

ELF_SEGMENT* new_segment(ELF_SEGMENT_TABLE* table, unsigned type, unsigned flags) {
    ELF_SEGMENT* segment = table->new_segment();
    segment->header().p_type = type;
    segment->header().p_flags = flags;
    return segment;
}

void set_addresses(ELF_SEGMENT* segment, const LINKER_OBJECT* object) {
    segment->header().p_vaddr = narrow<uint32_t>(object->run_address());
    segment->header().p_paddr = narrow<uint32_t>(object->load_address());
    segment->header().p_align = object->alignment() != 0 ? object->alignment() : 1;
}

void allocate_if_loadable(LINKER_OBJECT* object) {
    if (Target->abi()->need_loadable_metadata())
        object->set_attr(PA_ALLOCATED);
    else
        object->clear_attr(PA_ALLOCATED);
}

} // namespace

// ---- sections of tables and their segments -------------------------------------------------

META_SECTION::META_SECTION(const char* name, OF_SECTION* section) : LINKER_OBJECT(name) {
    allocate_if_loadable(this);
    root_collection->add_outsect(this);
    set_output_OF_SECTION(section);
}

uint64_t META_SECTION::size() {
    OF_SECTION* section = output_OF_SECTION();
    return section != nullptr ? section->size() : 0;
}

uint32_t META_SECTION::alignment() const {
    ABI* abi = Target->abi();
    return abi->need_loadable_metadata() ? abi->metadata_alignment() : 0;
}

void META_SECTION::finalize_internal(OF_SECTION* output, uint32_t) {
    if (output != nullptr && has_attr(PA_ALLOCATED))
        output->set_run_addr(narrow<unsigned>(run_address()));
}

META_SEGMENT::META_SEGMENT(const char* name, unsigned type, unsigned flags)
    : COLLECTION(name, COLLECTION_GROUP),
      elf_segment_(new_segment(elf_api(output_OF_FILE())->segment_table(), type, flags)) {
    set_attr(PA_READ | PA_HAS_DATA);
    allocate_if_loadable(this);
}

META_SECTION* META_SEGMENT::section() const {
    LINKER_OBJECT* first = members().empty() ? nullptr : members().front();
    return first != nullptr && first->is_meta_section() ? static_cast<META_SECTION*>(first)
                                                        : nullptr;
}

uint64_t META_SEGMENT::size() {
    META_SECTION* first = section();
    return first != nullptr ? first->size() : 0;
}

void META_SEGMENT::assign_section(META_SECTION* assigned) {
    if (const META_SECTION* first = section()) {
        DIAG_REPORT(elnk_meta_scn_exists, first->name(), name(), assigned->name());
    } else if (assigned->segment_ != nullptr) {
        DIAG_REPORT(elnk_meta_seg_exists, assigned->name(), assigned->segment_->name(), name());
    } else {
        assigned->segment_ = this;
        add_member(assigned);
    }
}

void META_SEGMENT::finalize_internal(OF_SECTION*, uint32_t) {
    const META_SECTION* first = section();
    if (first == nullptr) {
        DIAG_REPORT(elnk_meta_scn_required, name());
        return;
    }
    set_addresses(elf_segment_, first);
    if (const OF_SECTION* output = first->output_OF_SECTION())
        elf_segment_->add_seg_object(SEG_OBJECT_SECTION, output->id());
    set_finalized(true);
}

// ---- headers of the file -------------------------------------------------------------------

ELF_PHDR_SEGMENT::ELF_PHDR_SEGMENT(ELF_SEGMENT_TABLE* table)
    : LINKER_OBJECT("PT_PHDR"), table_(table), elf_segment_(new_segment(table, PT_PHDR, PF_R)) {}

uint64_t ELF_PHDR_SEGMENT::size() {
    return uint64_t{ELF_PHENTSIZE} * table_->segnum();
}

void ELF_PHDR_SEGMENT::update_before_placement(PLACEMENT_PHASE) {
    table_->freeze_segnum();
}

void ELF_PHDR_SEGMENT::finalize_internal(OF_SECTION*, uint32_t) {
    set_addresses(elf_segment_, this);
}

ELF_FILE_HEADER::ELF_FILE_HEADER(ELF_FILE*) : LINKER_OBJECT("ELF File Header") {}

uint64_t ELF_FILE_HEADER::size() {
    return ELF_EHSIZE;
}

void ELF_FILE_HEADER::finalize_internal(OF_SECTION*, uint32_t) {}

// ---- dump ----------------------------------------------------------------------------------

void META_SECTION::dump_header(PPRINT* out) {
    out->printf("META SECTION: %s\n", name());
}

void META_SEGMENT::dump_header(PPRINT* out) {
    out->printf("META SEGMENT: %s\n", name());
}

void ELF_PHDR_SEGMENT::dump_header(PPRINT* out) {
    out->printf("ELF PHDR SEGMENT: %s\n", name());
}

void ELF_FILE_HEADER::dump_header(PPRINT* out) {
    out->printf("ELF FILE HEADER: %s\n", name());
}
