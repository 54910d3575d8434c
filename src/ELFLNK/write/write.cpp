// The phase's steps. Changes of the symbol table that are asked for by options are made before the
// first byte is written, so that the file is written once.
#include "ELFLNK/write/write.h"

#include <cstdio>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/build/build.h"
#include "ELFLNK/build/object_walk.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/mapfile/map_file.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "ELFLNK/write/dependency_file.h"
#include "ELFLNK/write/make_static.h"
#include "ELFLNK/write/output_writer.h"
#include "ELFLNK/write/outsym_attr_manager.h"
#include "ELFLNK/write/strip.h"
#include "ELFLNK/xmlinfo/xml_info.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OPTIONGEN/option_obj.h"
#include "OPTIONGEN/register_option.h"
#include "UTIL/file_handle_manager.h"
#include "UTIL/trace.h"

using namespace OFE;

namespace {

register_option debug_ofd("debug:ofd");

// Sections from this size on are written in place, smaller ones are collected first.
constexpr uint64_t DIRECT_WRITE_SIZE = 16384;

const char* output_name() {
    OBJ_FILE* out = file_manager.output_file();
    if (out) return out->name();
    const char* name = global_opts->getstrarg(OPT_output_file);
    return name ? name : "a.out";
}

void print_section_sizes() {
    unsigned code = 0, constants = 0, data = 0;
    output_OF_FILE()->get_summary_section_sizes(code, constants, data);
    printf("FILE: %s\n", output_name());
    printf("CODE  size (bytes): %u\n", code);
    printf("CONST size (bytes): %u\n", constants);
    printf("DATA  size (bytes): %u\n", data);
    printf("\n");
}

void write_reports() {
    if (global_opts->isopt(OPT_xml_link_info)) generate_xml_info();
    if (global_opts->isopt(OPT_map_file)) generate_map_file();
    if (global_opts->isopt(OPT_section_sizes) && global_opts->not_off(OPT_section_sizes) &&
        output_OF_FILE())
        print_section_sizes();
}

void make_symbols_static() {
    trace_build.printf("hiding symbols\n");
    OF_SYMBOL_TABLE* table = output_OF_FILE()->symbol_table();
    for (unsigned id = 1, n = table->symnum(); id < n; id = table->next_symbol_id(id)) {
        OF_SYMBOL* symbol = table->symbol(id);
        if (!needs_make_static(symbol) || global_symbols.is_defined_in_comdat(symbol)) continue;
        trace_build.printf("hide_symbol: %s\n", symbol->name());
        OUTSYM_ATTR_MANAGER::localize(symbol);
    }
}

void apply_symbol_options() {
    outsym_attr_manager.update_symbol_attrs();
    if (global_opts->isopt(OPT_no_symtable)) strip_symbol_table();
    if (global_opts->isopt(OPT_make_static)) make_symbols_static();
}

// Data that changes as a whole when it is complete must be in memory till then.
bool collected_in_memory(LINKER_OBJECT* object, OF_SECTION* section) {
    return object->size() < DIRECT_WRITE_SIZE ||
           (section->exec() && output_OF_FILE()->machine_endian() == OF_ENDIAN_BIG);
}

void choose_write_modes() {
    for (LINKER_OBJECT* object : root_collection->outsects()) {
        OF_SECTION* section = object->output_OF_SECTION();
        if (!section || !section->initialized() ||
            (section->has_raw_data() && section->bytes().size != 0))
            continue;
        if (collected_in_memory(object, section) || section->set_direct_write() != 0)
            object->set_output_buffered(true);
    }
}

void write_leaf(LINKER_OBJECT* object) {
    if (object->data_written() || object->size() == 0) return;
    LINKER_OBJECT* outsect = object->outsect_object();
    OF_SECTION* output = outsect ? outsect->output_OF_SECTION() : nullptr;
    if (!output) return;
    auto offset = static_cast<uint32_t>(object->run_address() - outsect->run_address());
    trace_build.printf("copy object %u to %s at offset 0x%lx\n", object->id(), output->name(),
                       offset);
    object->write_data_internal(output, offset);
    object->set_data_written(true);
}

void write_leaves() {
    visit_objects(leaf_objects(), write_leaf);
}

// Sections that are in memory are complete: the target may turn their code into its final byte
// order.
void finalize_sections_in_memory() {
    for (LINKER_OBJECT* object : root_collection->outsects()) {
        OF_SECTION* section = object->output_OF_SECTION();
        if (section && section->initialized() && !section->is_direct_write())
            Target->finalize_section_data(section);
    }
}

void save_buffered_sections() {
    for (LINKER_OBJECT* object : root_collection->outsects())
        if (object->output_buffered()) object->output_OF_SECTION()->save();
}

// The usual way: the file is laid out and saved without its sections' data, which then goes to its
// place.
bool save_and_write_data(FHM_FILE* file) {
    if (output_OF_FILE()->save_obj(file) != 0) return false;
    trace_build.printf("\nWRITE DATA\n");
    choose_write_modes();
    write_leaves();
    finalize_sections_in_memory();
    save_buffered_sections();
    return true;
}

// Where symbols change: relocating needs them as they are, so all data is made in memory first.
bool edit_symbols_and_save(FHM_FILE* file) {
    trace_build.printf("\nWRITE DATA\n");
    write_leaves();
    finalize_sections_in_memory();
    trace_build.printf("\nPOSTPROCESS\n");
    apply_symbol_options();
    return output_OF_FILE()->save_obj(file) == 0;
}

// --tempfile: the file as it is before symbols change keeps a name of its own; what it holds is
// then edited and saved a second time.
bool save_before_edit(const char* name) {
    OUTPUT_WRITER writer(name);
    FHM_FILE* file = writer.open();
    if (!file) {
        DIAG_REPORT(elnk_open_outfile, name);
        return false;
    }
    trace_build.printf("\n--> Write object file to '%s'\n", name);
    if (save_and_write_data(file) && output_OF_FILE()->reopen_for_editing() == 0 &&
        writer.commit(false))
        return true;
    writer.discard();
    return false;
}

bool edit_symbols_and_save_again(FHM_FILE* file) {
    trace_build.printf("\nPOSTPROCESS\n");
    apply_symbol_options();
    return output_OF_FILE()->save_obj(file) == 0;
}

bool symbols_change() {
    return global_opts->isopt(OPT_no_symtable) || global_opts->isopt(OPT_make_static) ||
           outsym_attr_manager.has_changes();
}

// The text form of the output, with all that it can show: --ofd=file, or on standard output behind
// --debug:ofd.
void dump_output() {
    output_OF_FILE()->dispflags().strings = true;
    if (const char* name = global_opts->getstrarg(OPT_ofd); name != nullptr) {
        output_OF_FILE()->save_text(name);
    } else if (debug_ofd != 0) {
        printf("\n\nOUTPUT FILE DUMP:\n");
        output_OF_FILE()->save_text(fhm_stdout());
    }
}

void check_loadable() {
    OBJECT_FILE* out = output_OF_FILE();
    if (is_plain_partial_link()) return;
    bool program =
        out->file_type() == OF_FILE_TYPE_EXECUTABLE || out->file_type() == OF_FILE_TYPE_SHARED;
    if (!program || !out->is_safe_to_execute())
        DIAG_REPORT(elnk_outfile_not_loadable, output_name());
}

} // namespace

void write() {
    trace_build.push("\n\nWRITE PHASE:\n");
    write_reports();
    if (DIAGNOSTIC::error_count_m > 0) {
        DIAG_REPORT(elnk_outfile_not_built, output_name());
        return;
    }
    OBJECT_FILE* out = output_OF_FILE();
    if (!out) return;
    const char* first_name = global_opts->getstrarg(OPT_tempfile);
    bool saved = first_name == nullptr || save_before_edit(first_name);
    OUTPUT_WRITER writer(output_name());
    FHM_FILE* file = writer.open();
    if (!file) {
        DIAG_REPORT(elnk_open_outfile, output_name());
        return;
    }
    trace_build.printf("\n--> Write object file to '%s'\n", output_name());
    if (first_name != nullptr)
        saved = saved && edit_symbols_and_save_again(file);
    else
        saved = symbols_change() ? edit_symbols_and_save(file) : save_and_write_data(file);
    out->set_name(output_name()); // not that of the unfinished file
    if (DIAGNOSTIC::error_count_m > 0 || !saved) {
        DIAG_REPORT(elnk_outfile_not_built, output_name());
        writer.discard();
        return;
    }
    dump_output(); // reads sections from the file, which commit() closes
    if (!writer.commit(out->file_type() != OF_FILE_TYPE_RELOCATABLE)) {
        writer.discard();
        DIAG_REPORT(elnk_open_outfile, output_name());
        return;
    }
    check_loadable();
    Target->abi()->check_outfile();
    Target->abi()->write_auxillary_files();
    if (DIAGNOSTIC::error_count_m == 0 && !write_dependency_file(output_name())) {
        writer.discard();
        DIAG_REPORT(elnk_open_outfile, dependency_file());
    }
    trace_build.pop();
}
