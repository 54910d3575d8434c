// originate() and build(): the steps in their order, and those that are short.
#include "ELFLNK/build/build.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <unordered_set>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/build/build_state.h"
#include "ELFLNK/build/object_walk.h"
#include "ELFLNK/crc/crc_table.h"
#include "ELFLNK/exidx/exidx.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/symver/symver_table.h"
#include "ELFLNK/table/copy_table_db.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "ELFLNK/write/outsym_attr_manager.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_group_table.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OPTIONGEN/option_obj.h"
#include "OPTIONGEN/register_option.h"
#include "UTIL/filename.h"
#include "UTIL/trace.h"

using namespace OFE;

namespace {

register_option debug_ifile("debug:internal_file");

std::vector<LINKER_OBJECT*> leaves;
bool debug_in_group = false;
std::unordered_set<OF_SYMBOL*> group_signatures;

// What decides the place of a leaf, worked out once. Input sections come file by file, a file's
// debug sections last; then the others by their place in the output.
struct LEAF_KEY {
    LINKER_OBJECT* object;
    uint64_t rank;   // the kind of object, the file
    uint64_t number; // of the input section in its file, or of the output section
    uint64_t offset; // in the output section
};

LEAF_KEY leaf_key(LINKER_OBJECT* object) {
    SECTION* section = as_section(object);
    const uint64_t kind = (object->is_ecc_section() ? 2 : 0) + (section ? 0 : 1);
    if (OF_SECTION* input = section ? section->OF_SECTION_api() : nullptr) {
        const uint64_t file = uint64_t{input->ofile()->file_id()} + 1;
        return {object, kind << 62 | file << 1 | section->is_debug(), input->id(), 0};
    }
    OF_SECTION* output = object->output_OF_SECTION();
    if (!output) return {object, kind << 62, 0, 0};
    return {object, kind << 62, uint64_t{output->id()} + 1,
            object->run_address() - object->outsect_object()->run_address()};
}

bool leaf_less(const LEAF_KEY& a, const LEAF_KEY& b) {
    if (a.rank != b.rank) return a.rank < b.rank;
    if (a.number != b.number) return a.number < b.number;
    if (a.offset != b.offset) return a.offset < b.offset;
    return LINKER_OBJECT::less_than_obj_id(a.object, b.object);
}

void list_leaves() {
    std::vector<LINKER_OBJECT*> found;
    root_collection->flatten(found, &LINKER_OBJECT::is_leaf);
    std::vector<LEAF_KEY> keys;
    keys.reserve(found.size());
    visit_objects(found, [&](LINKER_OBJECT* object) { keys.push_back(leaf_key(object)); });
    std::sort(keys.begin(), keys.end(), leaf_less);
    leaves.clear();
    leaves.reserve(keys.size());
    for (const LEAF_KEY& key : keys) leaves.push_back(key.object);
}

void finalize_leaf(LINKER_OBJECT* object) {
    LINKER_OBJECT* outsect = object->outsect_object();
    if (!outsect) {
        if (!object->finalized()) object->finalize_internal(nullptr, 0);
    } else {
        OF_SECTION* output = outsect->output_OF_SECTION();
        if (!output) DIAG_REPORT(elnk_no_outfile_section, outsect->name());
        if (!outsect->output_updated()) DIAG_REPORT(elnk_outsect_not_finalized, outsect->name());
        if (!object->finalized())
            object->finalize_internal(
                output, static_cast<uint32_t>(object->run_address() - outsect->run_address()));
    }
    object->set_finalized(true);
    SECTION* section = as_section(object);
    if (!section || debug_in_group || !section->is_debug()) return;
    if (OF_SECTION* input = section->OF_SECTION_api()) debug_in_group = input->group() != nullptr;
}

void finalize_objects() {
    trace_build.printf("\nFINALIZE OBJECTS\n");
    visit_objects(leaves, finalize_leaf);
}

OF_GROUP_TABLE* new_output_group(OF_GROUP_TABLE* input) {
    trace_build.printf("create group table %s\n", input->name());
    OF_GROUP_TABLE* group = output_OF_FILE()->section_table()->new_group(input->name());
    if (input->comdat_flag()) group->set_comdat_flag();
    if (OF_SYMBOL* symbol = input->symbol()) {
        OF_SYMBOL* final = symbol->resolved_by_final();
        if (final->ofile() != output_OF_FILE())
            if (OF_SYMBOL* copied = output_of_local(symbol->ofile(), symbol->id())) final = copied;
        // A signature that stands in the group section itself is in no section of the link.
        if (final->ofile() != output_OF_FILE()) {
            final = output_OF_FILE()->symbol_table()->new_symbol();
            final->set_name_view(input->signature_name());
            final->set_section(group->section_api());
            final->set_binding(OF_SYM_BINDING_LOCAL);
        }
        group->set_symbol(final);
        group_signatures.insert(final);
    }
    return group;
}

void copy_group_members() {
    trace_build.printf("\nCOPY GROUP MEMBERS\n");
    std::map<OF_GROUP_TABLE*, OF_GROUP_TABLE*> groups; // of the current input file
    OBJECT_FILE* file = nullptr;
    for (LINKER_OBJECT* object : leaves) {
        SECTION* section = as_section(object);
        OF_SECTION* input = section ? section->OF_SECTION_api() : nullptr;
        OF_SECTION* output = object->output_OF_SECTION();
        if (!input || !output || !input->group()) continue;
        if (input->ofile() != file) {
            groups.clear();
            file = input->ofile();
        }
        OF_GROUP_TABLE*& group = groups[input->group()];
        if (!group) group = new_output_group(input->group());
        if (output->group() != group) group->add_member(output);
    }
}

void set_entry_point() {
    OF_SYMBOL* symbol = SYMBOL_TABLE::resolution(Target->entry_point_symbol());
    OBJECT_FILE* out = output_OF_FILE();
    if (is_elf_partial_link()) {
        if (symbol && global_opts->isopt(OPT_entry_point))
            DIAG_REPORT(elnk_sym_opt_demoted, "-e", "-u", symbol->name(), "-e",
                        OBJECT_FILE::file_type_name(out->file_type()));
        return;
    }
    if (symbol) {
        out->set_entry_point(
            static_cast<unsigned>(Target->abi()->entry_point_value(symbol->value())));
        return;
    }
    if (!is_partial_link() && !is_shared_output() && !global_opts->isopt(OPT_rom) &&
        !global_opts->isopt(OPT_no_entry_point))
        DIAG_REPORT(elnk_entry_pt_zero);
    out->set_entry_point(0);
}

// --debug:internal_file ends the link with the file of what the linker makes itself.
[[noreturn]] void write_internal_file() {
    const std::string name = fn_tmpnam();
    OBJ_FILE* file = file_manager.internal_file();
    if (name.empty() || file->object_file()->save_obj(name.c_str()) != 0)
        DIAG_REPORT(elnk_open_outfile, name.c_str());
    printf("Linker internal file written to \"%s\"\n", name.c_str());
    exit(0);
}

bool has_program_headers() {
    OBJECT_FILE* out = output_OF_FILE();
    if (out->format() != OF_FORMAT_ELF || is_elf_partial_link()) return false;
    return out->file_type() == OF_FILE_TYPE_EXECUTABLE || out->file_type() == OF_FILE_TYPE_SHARED;
}

} // namespace

void originate() {
    trace_orig.printf("\n\nORIGINATE LINKER-GENERATED OBJECTS\n");
    Target->abi()->default_allocation();
    Target->abi()->define_link_time_constants();
    symver_table.check_support();
    Target->abi()->dynamic_object_originate();
    global_copy_table_db->originate();
    global_crc_table_db->originate();
    trace_orig.printf("\n\nROOT COLLECTION (AFTER ORIGINATE):\n\n");
}

void build() {
    trace_build.push("\n\nBUILD PHASE:\n");
    if (!output_OF_FILE()) return; // no object file was read
    if (debug_ifile != 0) write_internal_file();
    install_releng_hooks();
    create_outfile_components(false);
    // The output's sections and symbols are complete.
    list_leaves();
    finalize_objects();
    report_readonly_violations();
    if (is_partial_link()) copy_group_members();
    EXIDX::update_sh_links();
    set_entry_point();
    if (has_program_headers()) create_program_headers();
    Target->finalize_output_file();
    outsym_attr_manager.build_symbol_attr_lists();
    trace_build.pop();
}

const std::vector<LINKER_OBJECT*>& leaf_objects() {
    return leaves;
}

bool debug_section_in_group() {
    return debug_in_group;
}

bool is_group_signature(OF_SYMBOL* symbol) {
    return group_signatures.contains(symbol);
}

bool scn_in_comdat_group(OF_SECTION* section) {
    return section->group() && section->group()->comdat_flag();
}
