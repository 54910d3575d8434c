// The program headers: what is loaded and in no segment yet is gathered into load segments in order
// of load addresses, and each load segment's header is filled in.
#include <algorithm>
#include <cstdio>
#include <unordered_set>

#include "DIAG/user_msg_api.h"
#include "ELFLNK/build/build.h"
#include "ELFLNK/build/build_state.h"
#include "ELFLNK/object/load_segment.h"
#include "ELFLNK/object/meta_objects.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/segments/elf_segment.h"
#include "OBJEDIT04/elf/segments/elf_segment_table.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/narrow.h"
#include "UTIL/savestr.h"
#include "UTIL/trace.h"

using namespace OFE;

namespace {

unsigned generated_segments = 0;

// There are none within output sections, which hold nearly all objects.
std::vector<LOAD_SEGMENT*> load_segments() {
    std::vector<LINKER_OBJECT*> found;
    root_collection->flatten(found, &LINKER_OBJECT::is_load_segment, false);
    std::vector<LOAD_SEGMENT*> segments;
    for (LINKER_OBJECT* object : found) segments.push_back(static_cast<LOAD_SEGMENT*>(object));
    return segments;
}

void take_into_segment(std::vector<LOAD_SEGMENT*>& segments, LOAD_SEGMENT*& current,
                       LINKER_OBJECT* object) {
    if (!current || !current->can_combine(object)) {
        current = new LOAD_SEGMENT(savestrf("SEGMENT_%d", static_cast<int>(generated_segments++)));
        root_collection->add_member(current);
        segments.push_back(current);
    }
    current->add_member(object);
    current->raise_alignment(object->alignment());
    if (Target->is_seg_attrs_allowed())
        current->set_attr(object->attrs() & (PA_BOUND | PA_READONLY));
}

// New segments are appended, to the tree and to the list.
void gather_loaded_objects(std::vector<LOAD_SEGMENT*>& segments) {
    std::unordered_set<const LINKER_OBJECT*> in_segment;
    for (LOAD_SEGMENT* segment : segments)
        for (LINKER_OBJECT* member : segment->members()) in_segment.insert(member);

    std::vector<LINKER_OBJECT*> loaded;
    root_collection->flatten(
        loaded, [](const LINKER_OBJECT* o) { return const_cast<LINKER_OBJECT*>(o)->is_loaded(); },
        false);
    std::sort(loaded.begin(), loaded.end(), LINKER_OBJECT::less_than_load_address);
    LOAD_SEGMENT* current = nullptr;
    for (LINKER_OBJECT* object : loaded) {
        if (in_segment.count(object) || object->is_tls_segment() || object->is_load_segment())
            continue;
        if (global_opts->isopt(OPT_rom) && !object->has_seg_attrs()) continue;
        take_into_segment(segments, current, object);
    }
}

// What a member of a segment is to the program header: the file header, a segment, or a section.
void attach(ELF_SEGMENT* header, LINKER_OBJECT* object) {
    trace_build.printf(" + \"%s\" addr=0x%lx, size=0x%lx, %s\n", object->name(),
                       object->run_address(), object->size(),
                       object->has_attr(PA_HAS_DATA) ? "init" : "no init");
    if (object->is_elf_file_header()) {
        header->add_seg_object(SEG_OBJECT_FILE_HEADER, 0);
    } else if (object->is_load_segment()) {
        if (ELF_SEGMENT* inner = static_cast<LOAD_SEGMENT*>(object)->elf_segment())
            header->add_seg_object(SEG_OBJECT_SEGMENT, inner->id());
    } else if (object->is_elf_phdr_segment()) {
        header->add_seg_object(SEG_OBJECT_SEGMENT,
                               static_cast<ELF_PHDR_SEGMENT*>(object)->elf_segment()->id());
    } else if (OF_SECTION* section = object->output_OF_SECTION()) {
        header->add_seg_object(SEG_OBJECT_SECTION, section->id());
    } else if (COLLECTION* collection = as_collection(object)) {
        for (LINKER_OBJECT* member : collection->members()) attach(header, member);
    }
}

/// False if the table of program headers is full.
bool fill_in(LOAD_SEGMENT* segment) {
    if (!segment->elf_segment()) {
        ELF_SEGMENT* made = elf_api(output_OF_FILE())->segment_table()->new_segment();
        if (made == nullptr) return false;
        made->header().p_type = PT_LOAD;
        segment->set_elf_segment(made);
    }
    Elf32_Phdr& header = segment->elf_segment()->header();
    header.p_vaddr = static_cast<uint32_t>(segment->run_address());
    header.p_paddr = static_cast<uint32_t>(segment->load_address());
    header.p_flags = segment->flags();
    header.p_memsz = storable_size(segment, Target->code_unit_bit_size() / 8);
    header.p_align = segment->alignment() ? segment->alignment() : 1;
    if (Target->abi()->gabi_segment_mode())
        header.p_align = std::max<uint32_t>(header.p_align,
                                            static_cast<uint32_t>(Target->abi()->max_page_size()));
    trace_build.printf("--> PT_LOAD: %s addr=0x%lx, size=0x%lx/0x%lx, flags=%s\n", segment->name(),
                       segment->run_address(), segment->init_size(), segment->size(),
                       segment->rwx_string());
    return true;
}

} // namespace

void create_program_headers() {
    trace_build.printf("\nCREATE OUTFILE PROGRAM SEGMENTS\n");
    ABI* abi = Target->abi();
    ELF_SEGMENT_TABLE* table = elf_api(output_OF_FILE())->segment_table();
    if (abi->gabi_segment_mode() && abi->max_page_size() != 0)
        table->set_min_load_align(narrow<unsigned>(abi->max_page_size()));
    std::vector<LOAD_SEGMENT*> segments = load_segments();
    gather_loaded_objects(segments);
    if (!std::all_of(segments.begin(), segments.end(), fill_in)) {
        USER_MSG::get_umsg_obj()->error("the program has %u parts to load, more than the program "
                                        "headers of an output file can tell",
                                        static_cast<unsigned>(segments.size()));
        return;
    }
    for (LOAD_SEGMENT* segment : segments)
        for (LINKER_OBJECT* member : segment->members()) attach(segment->elf_segment(), member);
}
