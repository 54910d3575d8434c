// The document's frame: its order, and the parts about files, symbols, calls and the outcome.
#include "ELFLNK/xmlinfo/xml_info.h"

#include <string>
#include <vector>

#include "DIAG/diagnostic.h"
#include "ELFLNK/build/build.h"
#include "ELFLNK/compress/compress_db.h"
#include "ELFLNK/crc/crc_table.h"
#include "ELFLNK/file/archive_file.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/main/main.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/table/copy_table_db.h"
#include "ELFLNK/target/target.h"
#include "ELFLNK/trampoline/call_site.h"
#include "ELFLNK/trampoline/callee.h"
#include "ELFLNK/trampoline/jump_ent.h"
#include "ELFLNK/write/report_file.h"
#include "ELFLNK/xmlinfo/xml_objects.h"
#include "ELFLNK/xmlinfo/xml_writer.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OPTIONGEN/option_obj.h"
#include "OPTIONGEN/register_option.h"
#include "UTIL/file_handle_manager.h"
#include "UTIL/filename.h"

using OFE::OF_SYMBOL;

namespace {

register_option debug_xml_tags("debug:xml_tags");

// ---- the link ------------------------------------------------------------------------------

void write_header() {
    write_xml_string(XML_banner, isa_tool_and_version_full());
    write_xml_string(XML_copyright, copyright_full());
    write_xml_int(XML_link_time, static_cast<uint64_t>(build_time()));
    write_xml_int(XML_link_errors, DIAGNOSTIC::error_count_m);
    if (const OFE::OBJECT_FILE* out = output_OF_FILE())
        write_xml_string(XML_output_file, out->display_name());
    const OF_SYMBOL* entry = SYMBOL_TABLE::resolution(Target->entry_point_symbol());
    if (entry == nullptr) return;
    write_xml_tag_begin(XML_entry_point);
    write_xml_string(XML_entry_name, entry->name());
    write_xml_int(XML_address, entry->value());
    write_xml_tag_end(XML_entry_point);
}

void write_title() {
    const char* title = "Link successful";
    if (DIAGNOSTIC::error_count_m > 0)
        title = xml_has_available_ranges()
                    ? "Link errors: red sections failed placement,available memory ranges in purple"
                    : "Link errors: red sections failed placement";
    write_xml_string(XML_title, title);
}

// ---- input files ---------------------------------------------------------------------------

XML_ID_SET file_ids;

void write_path(const char* name) {
    std::string dir, base;
    fn_split(name, dir, base);
    if (!dir.empty()) write_xml_string(XML_path, dir.c_str());
}

// An object that was named itself is in both lists of files.
void write_input_file(INPUT_FILE* file) {
    if (!file_ids.add(file->file_id())) return;
    write_xml_tag_begin_id(XML_input_file, xml_build_str("fl", 1, file->file_id()));
    const OBJ_FILE* object = file->as_object_file();
    const ARCHIVE_FILE* library = object != nullptr ? object->archive() : nullptr;
    const char* name = library != nullptr ? library->name() : file->name();
    write_path(name);
    if (object != nullptr) {
        write_xml_string(XML_kind, library != nullptr ? "archive" : "object");
        write_xml_string(XML_file, fn_basename(name));
        write_xml_string(XML_input_file_name,
                         library != nullptr ? object->member_name() : object->base_name());
    }
    write_xml_tag_end(XML_input_file);
}

void write_input_files() {
    file_ids.clear();
    write_xml_tag_begin(XML_input_file_list);
    for (INPUT_FILE* file : file_manager.input_files()) write_input_file(file);
    for (OBJ_FILE* file : file_manager.object_files())
        if (!file->is_linker_generated()) write_input_file(file);
    write_xml_tag_end(XML_input_file_list);
}

// ---- tables --------------------------------------------------------------------------------

void write_copy_tables() {
    global_copy_table_db->generate_xml_info();
    global_compress_db->generate_xml_info();
}

void write_crc_tables() {
    global_crc_table_db->generate_xml_info();
}

// ---- calls ---------------------------------------------------------------------------------

/// What veneers and far-call trampolines are called.
struct JUMP_TAGS {
    XML_TAG_ID list, entry, component_ref, address, call_site;
};

// Gives the number of calls.
size_t write_jump_entry(const JUMP_ENT* entry, const JUMP_TAGS& tags) {
    write_xml_tag_begin(tags.entry);
    write_xml_string(XML_callee_name, entry->callee()->name());
    write_xml_int(XML_callee_addr, entry->callee_address());
    write_xml_component_ref(tags.component_ref, entry);
    write_xml_int(tags.address, entry->run_address());
    write_xml_tag_begin(XML_caller_list);
    size_t calls = 0;
    for (const TRAMP_CALL_SITE* site = entry->first_caller(); site != nullptr;
         site = site->next_caller(), ++calls) {
        write_xml_tag_begin(tags.call_site);
        write_xml_int(XML_caller_address, site->address());
        write_xml_component_ref(XML_caller_object_component_ref, site->section());
        write_xml_tag_end(tags.call_site);
    }
    write_xml_tag_end(XML_caller_list);
    write_xml_tag_end(tags.entry);
    return calls;
}

size_t write_jump_list(const std::vector<JUMP_ENT*>& entries, const JUMP_TAGS& tags) {
    size_t calls = 0;
    write_xml_tag_begin(tags.list);
    for (const JUMP_ENT* entry : entries) calls += write_jump_entry(entry, tags);
    write_xml_tag_end(tags.list);
    return calls;
}

void write_veneers() {
    const std::vector<JUMP_ENT*> veneers = JUMP_ENT::all_of_kind(JUMP_ENT::VENEER);
    if (veneers.empty()) return;
    write_jump_list(veneers, {XML_veneer_list, XML_veneer, XML_veneer_object_component_ref,
                              XML_veneer_address, XML_veneer_call_site});
}

void write_far_calls() {
    const std::vector<JUMP_ENT*> far_calls = JUMP_ENT::all_of_kind(JUMP_ENT::FARCALL);
    if (far_calls.empty()) return;
    const size_t calls =
        write_jump_list(far_calls, {XML_far_call_trampoline_list, XML_far_call_trampoline,
                                    XML_trampoline_object_component_ref, XML_trampoline_address,
                                    XML_trampoline_call_site});
    write_xml_int(XML_trampoline_count, far_calls.size());
    write_xml_int(XML_trampoline_call_count, calls);
}

// ---- symbols -------------------------------------------------------------------------------

void write_symbol(OF_SYMBOL* symbol) {
    write_xml_tag_begin_id(XML_symbol, xml_build_str("sm", 1, symbol->id()));
    write_xml_string(XML_symbol_name, symbol->name());
    write_xml_int(XML_value, symbol->value());
    const OF_SYMBOL* input =
        symbol->refs_section() ? lookup_input_symbol_from_output(symbol) : nullptr;
    const SECTION* section =
        input != nullptr ? root_collection->lookup_OF_SECTION(input->section()) : nullptr;
    if (section != nullptr) write_xml_component_ref(XML_object_component_ref, section);
    write_xml_tag_end(XML_symbol);
}

std::vector<OF_SYMBOL*> symbols_but_local() {
    std::vector<OF_SYMBOL*> symbols;
    OFE::OBJECT_FILE* out = output_OF_FILE();
    OFE::OF_SYMBOL_TABLE* table = out != nullptr ? out->symbol_table() : nullptr;
    if (table == nullptr) return symbols;
    for (unsigned id = 0; id < table->symnum(); id = table->next_symbol_id(id)) {
        OF_SYMBOL* symbol = table->is_deleted(id) ? nullptr : table->symbol(id);
        if (symbol != nullptr && symbol->binding() != OFE::OF_SYM_BINDING_LOCAL &&
            symbol->binding() != OFE::OF_SYM_BINDING_NONE)
            symbols.push_back(symbol);
    }
    return symbols;
}

void write_symbols() {
    const std::vector<OF_SYMBOL*> symbols = symbols_but_local();
    if (symbols.empty()) return;
    write_xml_tag_begin(XML_symbol_table);
    for (OF_SYMBOL* symbol : symbols) write_symbol(symbol);
    write_xml_tag_end(XML_symbol_table);
}

} // namespace

bool xml_has_input_file(const INPUT_FILE* file) {
    return file_ids.has(file->file_id());
}

void generate_xml_info() {
    static constexpr void (*parts[])() = {
        write_header,
        write_input_files,
        write_xml_object_components,
        write_xml_logical_groups,
        write_xml_placement_map,
        write_copy_tables,
        write_crc_tables,
        write_veneers,
        write_far_calls,
        write_symbols,
        write_title,
    };
    assign_xml_tags();
    if (debug_xml_tags != 0) XMLTAG::dump_docs(stdout, DOC_TEXT, xml_tags());
    const char* name = global_opts->getstrarg(OPT_xml_link_info);
    FHM_FILE* file = open_report(name);
    if (file == nullptr) return;
    file->set_persistent(true);
    XMLGEN& generator = xml_gen();
    generator.start(file->fp());
    generator.text("<?xml version=\"1.0\" encoding=\"ISO-8859-1\" ?>\n");
    write_xml_tag_begin(XML_link_info);
    for (const auto& part : parts) part();
    write_xml_tag_end(XML_link_info);
    close_report(file, generator.flush(), "XML link information");
}
