// The map file's frame: the buffer, the order of its parts, and the short parts at its beginning.
#include "ELFLNK/mapfile/map_file.h"

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <ctime>
#include <string>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/build/build.h"
#include "ELFLNK/compress/compress_db.h"
#include "ELFLNK/crc/crc_table.h"
#include "ELFLNK/main/main.h"
#include "ELFLNK/memmap/fill_spec.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/object/load_segment.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/table/copy_table_db.h"
#include "ELFLNK/target/target.h"
#include "ELFLNK/write/report_file.h"
#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/segments/elf_seg_attr.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/file_handle_manager.h"
#include "UTIL/strformat.h"
#include "UTIL/text_table.h"

namespace {

constexpr const char* asterisks = "***************************************"; // 39

// What is off unless asked for; all else is on.
constexpr const char* off_by_default[] = {"sym_defs", "load_addr"};

std::string& buffer() {
    static std::string text;
    return text;
}

void map_banner() {
    mprintf("%s%s\n", asterisks, asterisks);
    mprintf("%31s %-31s\n", isa_and_tool_name(), strformat("Unix %s", version_short()).c_str());
    mprintf("%s%s\n", asterisks, asterisks);
    mprintf(">> Linked %s\n", build_time_text().c_str());
    mprintf("OUTPUT FILE NAME:   <%s>\n", output_OF_FILE()->display_name());
}

void map_copy_tables() {
    global_copy_table_db->generate_map_file();
    global_compress_db->generate_map_file();
}

void map_crc_tables() {
    global_crc_table_db->generate_map_file();
}

void map_entry_point() {
    OFE::OF_SYMBOL* entry = SYMBOL_TABLE::resolution(Target->entry_point_symbol());
    mputs("ENTRY POINT SYMBOL: ");
    if (entry != nullptr)
        mprintf("\"%s\"  address: %08x\n\n\n", entry->name(), entry->value());
    else
        mputs("0\n\n\n");
}

void map_memory_range(const MEMORY_RANGE* range) {
    static constexpr struct {
        uint32_t bit;
        char letter;
    } attrs[] = {{MEMORY_RANGE::ATTR_R, 'R'},
                 {MEMORY_RANGE::ATTR_W, 'W'},
                 {MEMORY_RANGE::ATTR_I, 'I'},
                 {MEMORY_RANGE::ATTR_X, 'X'}};
    unsigned long unused = range->unused();
    mprintf("  %-21.21s %08lx   %08lx  %08lx  %08lx  ", range->name(),
            static_cast<unsigned long>(range->origin()),
            static_cast<unsigned long>(range->length()),
            static_cast<unsigned long>(range->length()) - unused, unused);
    for (const auto& attr : attrs)
        mprintf("%c", (range->attrs() & attr.bit) != 0 ? attr.letter : ' ');
    if (range->fill() != nullptr)
        mprintf("  %s ", range->fill()->str());
    else if (global_opts->isopt(OPT_fill_value))
        mprintf(" (%s)", FILL_SPEC::default_fill()->str());
    mputs("\n");
}

// Ranges that are hidden are no part of the user's memory. Without pages other than 0 pages aren't
// mentioned.
void map_memory() {
    std::vector<const MEMORY_RANGE*> shown;
    int last_page = 0;
    for (const MEMORY_RANGE* range : *memory_map) {
        if (range->is_hidden()) continue;
        shown.push_back(range);
        last_page = std::max(last_page, range->page());
    }
    if (shown.empty()) return;
    mputs("MEMORY CONFIGURATION\n\n");
    mputs("         name            origin    length      used     unused   attr    fill\n");
    Target->generate_map_mem_config_units_header();
    mputs("----------------------  --------  ---------  --------  --------  ----  --------\n");
    int page = -1;
    for (const MEMORY_RANGE* range : shown) { // the map's order goes by page
        if (last_page != 0 && range->page() != page)
            mprintf("%sPAGE %d:\n", range->page() != 0 ? "\n" : "", range->page());
        page = range->page();
        map_memory_range(range);
    }
    mputs("\n\n");
}

void map_segments() {
    std::vector<LINKER_OBJECT*> segments;
    root_collection->flatten(segments, &LINKER_OBJECT::is_load_segment);
    if (segments.empty()) return;
    std::sort(segments.begin(), segments.end(), LINKER_OBJECT::less_than_run_address);
    mputs("SEGMENT ALLOCATION MAP\n\n");
    mputs("run origin  load origin   length   init length attrs members\n");
    mputs("----------  ----------- ---------- ----------- ----- -------\n");
    for (LINKER_OBJECT* object : segments) {
        auto* segment = static_cast<LOAD_SEGMENT*>(object);
        mprintf("%08lx    %08lx    %08lx   %08lx    %3s\n",
                static_cast<unsigned long>(segment->run_address()),
                static_cast<unsigned long>(segment->load_address()),
                static_cast<unsigned long>(segment->size()),
                static_cast<unsigned long>(segment->init_size()), segment->rwx_string());
        for (LINKER_OBJECT* member : segment->members()) {
            unsigned long size = member->size();
            mprintf("  %08lx    %08lx    %08lx   %08lx    %3s %s\n",
                    static_cast<unsigned long>(member->run_address()),
                    static_cast<unsigned long>(member->load_address()), size,
                    member->has_attr(PA_HAS_DATA) ? size : 0, member->rwx_string(), member->name());
        }
    }
    mputs("\n\n");
}

// Rows only for a target whose segments have attributes.
void map_segment_attributes() {
    OFE::OBJECT_FILE* output = output_OF_FILE();
    if (output->format() != OFE::OF_FORMAT_ELF) return;
    OFE::ELF_SEG_ATTR_DB* attributes = OFE::elf_api(output)->seg_attr_db();
    OFE::ELF_SEG_ATTR_TABLE* rows = attributes != nullptr ? attributes->table() : nullptr;
    if (rows == nullptr || rows->is_empty()) return;
    TEXT_TABLE table;
    table.set_padding(2);
    rows->generate_text_info(table);
    mputs("\n\nSEGMENT ATTRIBUTES\n\n");
    mprint_table(table);
}

void take_contents_option() {
    for (unsigned i = 0; i < global_opts->getargcount(OPT_mapfile_contents); ++i)
        if (const char* value = global_opts->getstrarg(OPT_mapfile_contents, i))
            mdisp_filter().process_option_arguments(value);
    for (const std::string& attr : mdisp_filter().bad_attrs())
        DIAG_REPORT(elnk_bad_mf_dispflag, attr);
}

} // namespace

void MAPFILE_DISPFLAGS::set_ascii_defaults() {
    set_all(true);
    for (const char* name : off_by_default) set(name, false);
}

MAPFILE_DISPFLAGS& mdisp_flags() {
    static MAPFILE_DISPFLAGS flags;
    return flags;
}

DISP_FILTER& mdisp_filter() {
    static DISP_FILTER filter("--mapfile_contents", mdisp_flags());
    return filter;
}

void mprintf(const char* format, ...) {
    va_list args;
    va_start(args, format);
    vstrappend(buffer(), format, args);
    va_end(args);
}

void mputs(const char* text) {
    buffer() += text;
}

void mprint_table(const TEXT_TABLE& table) {
    table.print(buffer());
}

void generate_map_file() {
    static constexpr struct {
        const char* attribute;
        void (*part)();
    } parts[] = {
        {"entry", map_entry_point},     {"memory", map_memory},
        {"segments", map_segments},     {"sections", map_section_allocation},
        {"modules", map_modules},       {"copytables", map_copy_tables},
        {"crctables", map_crc_tables},  {"veneers", map_veneers},
        {"trampolines", map_far_calls},
    };
    const char* name = global_opts->getstrarg(OPT_map_file);
    FHM_FILE* file = open_report(name);
    if (file == nullptr) return;
    take_contents_option();
    buffer().clear();
    map_banner();
    for (const auto& part : parts)
        if (mdisp_flags().is_on(part.attribute)) part.part();
    Target->generate_map_file();
    map_segment_attributes();
    map_global_symbols();
    if (mdisp_flags().is_on("sym_defs")) map_symbol_definitions();
    bool written = fwrite(buffer().data(), 1, buffer().size(), file->fp()) == buffer().size();
    close_report(file, written, "map");
}
