// The symbol lists of the map: the global symbols of the output by name and by address, and what
// each file defines.
#include <algorithm>
#include <cstring>

#include "ELFLNK/build/build.h"
#include "ELFLNK/file/archive_file.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/mapfile/map_file.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "ELFLNK/write/outsym_attr_manager.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "UTIL/filename.h"
#include "UTIL/text_table.h"

namespace {

using OFE::OF_SYMBOL;
using SYMBOLS = std::vector<OF_SYMBOL*>;

int three_way(uint64_t a, uint64_t b) {
    return a < b ? -1 : a > b;
}

bool is_undefined(const OF_SYMBOL* sym) {
    return sym->kind() == OFE::OF_SYM_KIND_UNDEFINED;
}

// All symbols of the output that aren't local and keep name and binding.
SYMBOLS global_symbols_of_output() {
    SYMBOLS list;
    OFE::OF_SYMBOL_TABLE* table = output_OF_FILE()->symbol_table();
    if (table == nullptr) return list;
    const auto& changed = outsym_attr_manager.changed_symbols();
    for (unsigned id = 0; id < table->symnum(); id = table->next_symbol_id(id)) {
        if (table->is_deleted(id)) continue;
        OF_SYMBOL* sym = table->symbol(id);
        if (sym == nullptr || sym->binding() == OFE::OF_SYM_BINDING_LOCAL ||
            sym->binding() == OFE::OF_SYM_BINDING_NONE)
            continue;
        if (changed.empty() || changed.find(sym) == changed.end()) list.push_back(sym);
    }
    return list;
}

bool is_shown_definition(const OF_SYMBOL* sym) {
    if (sym->kind() != OFE::OF_SYM_KIND_DEFINED) return false;
    const OFE::OF_SECTION* section = sym->section();
    if (section == nullptr) return true;
    const char* name = section->name();
    return strncmp(name, ".debug", 6) != 0 && strcmp(name, OFE::OF_DELETED_SECTION_NAME) != 0;
}

void print_file_title(const OBJ_FILE* file) {
    if (file == file_manager.internal_file())
        mputs("<linker>\n\n");
    else if (file->archive() != nullptr)
        mprintf("%s : %s\n\n", std::string(fn_basename(file->archive()->name())).c_str(),
                file->member_name());
    else
        mprintf("%s\n\n", file->base_name());
}

} // namespace

const char* versym_name(const OF_SYMBOL* symbol) {
    return symbol != nullptr ? symbol->name() : "";
}

int symname_cmp(const OF_SYMBOL* a, const OF_SYMBOL* b) {
    return strcmp(versym_name(a), versym_name(b));
}

bool symname_less(const OF_SYMBOL* a, const OF_SYMBOL* b) {
    return symname_cmp(a, b) < 0;
}

int symval_cmp(const OF_SYMBOL* a, const OF_SYMBOL* b) {
    if (is_undefined(a) != is_undefined(b)) return is_undefined(a) ? 1 : -1;
    int by_value = three_way(a->value(), b->value());
    return by_value != 0 ? by_value : symname_cmp(a, b);
}

bool symval_less(const OF_SYMBOL* a, const OF_SYMBOL* b) {
    return symval_cmp(a, b) < 0;
}

bool symval_less_page(const OF_SYMBOL* a, const OF_SYMBOL* b) {
    if (is_undefined(a) != is_undefined(b)) return is_undefined(b);
    if (a->refs_section() != b->refs_section()) return a->refs_section();
    if (a->refs_section()) {
        int by_page = three_way(a->section()->page(), b->section()->page());
        if (by_page != 0) return by_page < 0;
    }
    return symval_cmp(a, b) < 0;
}

namespace {

// Where a symbol of an input file ended up; one that the output has no symbol for counts from its
// section.
uint64_t run_value(OF_SYMBOL* symbol) {
    const OF_SYMBOL* final = symbol->resolved_by_final();
    const SECTION* section =
        final->refs_section() ? root_collection->lookup_OF_SECTION(final->section()) : nullptr;
    return section != nullptr ? section->run_address() + final->value() : final->value();
}

// Symbols whose binding or visibility the output changes; nothing for none.
void map_list(const char* title, const char* what, SYMBOLS list) {
    if (list.empty()) return;
    std::stable_sort(list.begin(), list.end(), symname_less);
    mprintf("\n\n%s: \n\n", title);
    mprintf("\n[%d %s]\n", Target->generate_map_symlist(list, false), what);
}

} // namespace

uint64_t input_symbol_load_address(OF_SYMBOL* symbol) {
    uint64_t value = run_value(symbol);
    if (!symbol->refs_section()) return value;
    const SECTION* section = root_collection->lookup_OF_SECTION(symbol->section());
    return section != nullptr ? value + section->load_address() - section->run_address() : value;
}

void map_global_symbols() {
    SYMBOLS list = global_symbols_of_output();
    if (mdisp_flags().is_on("sym_name")) {
        mputs("\n\nGLOBAL SYMBOLS: SORTED ALPHABETICALLY BY Name \n\n");
        if (list.empty()) {
            mputs("\n[0 symbols]\n");
        } else {
            std::stable_sort(list.begin(), list.end(), symname_less);
            Target->generate_map_symlist(list, false);
        }
    }
    if (mdisp_flags().is_on("sym_runaddr")) {
        mputs("\n\nGLOBAL SYMBOLS: SORTED BY Symbol Address \n\n");
        bool pages = Target->abi()->supports_memory_pages();
        std::stable_sort(list.begin(), list.end(), pages ? symval_less_page : symval_less);
        mprintf("\n[%d symbols]\n", Target->generate_map_symlist(list, false));
    }
    const bool hidden = mdisp_flags().is_on("hidden_sym");
    const bool localized = mdisp_flags().is_on("localized_sym");
    if (hidden) map_list("HIDDEN SYMBOLS", "hidden symbols", outsym_attr_manager.hidden_symbols());
    if (localized)
        map_list("LOCALIZED SYMBOLS", "localized symbols", outsym_attr_manager.localized_symbols());
    if (hidden || localized)
        map_list("COMDAT SYMBOLS NOT HIDDEN OR LOCALIZED", "comdat symbols not hidden or localized",
                 outsym_attr_manager.comdat_symbols());
}

void map_symbol_definitions() {
    const std::string rule(80, '=');
    mprintf("\n\nSYMBOL DEFINITIONS BY INPUT FILE \n\n%s\n\n", rule.c_str());
    for (OBJ_FILE* file : file_manager.object_files()) {
        print_file_title(file);
        SYMBOLS defined;
        OFE::OF_SYMBOL_TABLE* table = file->object_file()->symbol_table();
        for (unsigned id = 0; table != nullptr && id < table->symnum();
             id = table->next_symbol_id(id)) {
            OF_SYMBOL* sym = table->is_deleted(id) ? nullptr : table->symbol(id);
            if (sym != nullptr && is_shown_definition(sym)) defined.push_back(sym);
        }
        std::stable_sort(defined.begin(), defined.end(), symname_less);
        Target->generate_map_symdef_info(defined, file);
        mprintf("\n\n%s\n\n", rule.c_str());
    }
}

// Leaves out symbols of debug and cross reference sections; the result is the number of the others.
int TARGET::generate_map_symlist(const SYMBOLS& symbols, bool count_only) {
    auto is_listed = [this](OF_SYMBOL* sym) {
        return !sym->refs_section() || sym->section() == nullptr ||
               !abi()->section_is_pmdata(sym->section());
    };
    int count = 0;
    TEXT_TABLE table;
    bool pages = abi()->supports_memory_pages();
    bool load_addresses = mdisp_flags().is_on("load_addr");
    int address_col = pages ? 1 : 0;
    if (!count_only) {
        table.set_padding(2);
        table.set_col_align(0, TA_LEFT);
        table.set_min_size(2, address_col + 2);
        if (pages) table.set_string(0, 0, "page"), table.set_string(1, 0, "----");
        table.set_string(0, address_col, "address");
        table.set_string(1, address_col, "-------");
        table.set_string(0, address_col + 1, "name");
        table.set_string(1, address_col + 1, "----");
    }
    for (OF_SYMBOL* sym : symbols) {
        if (!is_listed(sym)) continue;
        int row = 2 + count++;
        if (count_only) continue;
        if (pages && sym->refs_section())
            table.set_text(row, 0, "%d", static_cast<int>(sym->section()->page()));
        else if (pages)
            table.set_string(row, 0, sym->kind() == OFE::OF_SYM_KIND_ABSOLUTE ? "abs" : "n/a");
        if (is_undefined(sym))
            table.set_string(row, address_col, "UNDEFED");
        else
            table.set_text(row, address_col, "%08x", sym->value());
        table.set_string(row, address_col + 1, versym_name(sym));
        if (!load_addresses) continue;
        OF_SYMBOL* input = lookup_input_symbol_from_output(sym);
        uint64_t load = input != nullptr ? input_symbol_load_address(input) : sym->value();
        if (load != sym->value())
            table.set_text(row, address_col + 2, "%08lx", static_cast<unsigned long>(load));
    }
    if (!count_only) mprint_table(table);
    return count;
}

void TARGET::generate_map_symval_heading(TEXT_TABLE& table, int row, int col) {
    table.set_string(row, col, "Run/Load");
    table.set_string(row + 1, col, "Value");
    table.set_string(row + 2, col, "--------");
}

void TARGET::generate_map_symval_info(TEXT_TABLE& table, int& row, int col, OF_SYMBOL* symbol) {
    auto value = static_cast<uint32_t>(run_value(symbol));
    table.set_text(row, col, "%08x", value);
    auto load = static_cast<uint32_t>(input_symbol_load_address(symbol));
    if (load != value) table.set_text(++row, col, " %08x", load);
}

void TARGET::generate_map_symdef_info(const SYMBOLS& symbols, OBJ_FILE*) {
    if (symbols.empty()) {
        mputs("<< No Symbols Defined >>");
        return;
    }
    TEXT_TABLE table;
    table.set_padding(2);
    table.set_col_align(2, TA_FREE);
    generate_map_symval_heading(table, 0, 0);
    table.set_string(1, 1, "Binding");
    table.set_string(1, 2, "Name (Section)");
    table.set_string(2, 1, "--------");
    table.set_string(2, 2, "---------------");
    int row = 3;
    for (OF_SYMBOL* sym : symbols) {
        table.set_string(row, 1, OFE::OBJECT_FILE::sym_binding_name(sym->binding()));
        if (sym->section() != nullptr)
            table.set_text(row, 2, "%s (%s)", versym_name(sym), sym->section()->name());
        else
            table.set_string(row, 2, versym_name(sym));
        generate_map_symval_info(table, row, 0, sym);
        ++row;
    }
    mprint_table(table);
}

// The attributes of --mapfile_contents that this target knows. set_ascii_defaults() settles their
// states.
void TARGET::init_mapfile_filter() {
    enum WHEN { ALWAYS, WITH_TRAMPOLINES, WITH_ELF };
    static constexpr struct {
        const char* name;
        const char* description;
        WHEN when;
    } attributes[] = {
        {"entry", "entry point", ALWAYS},
        {"memory", "memory ranges", ALWAYS},
        {"sections", "sections", ALWAYS},
        {"copytables", "copy tables", ALWAYS},
        {"crctables", "CRC tables", ALWAYS},
        {"sym_name", "symbols sorted by name", ALWAYS},
        {"sym_runaddr", "symbols sorted by run address", ALWAYS},
        {"sym_defs", "defined symbols per file", ALWAYS},
        {"load_addr", "display load addresses", ALWAYS},
        {"hidden_sym", "hidden symbols", ALWAYS},
        {"localized_sym", "localized symbols", ALWAYS},
        {"modules", "module view", ALWAYS},
        {"trampolines", "trampolines", WITH_TRAMPOLINES},
        {"segments", "ELF segments", WITH_ELF},
        {"plt", "Procedure Linkage Table entries", WITH_ELF},
        {"dynsym_name", "dynamic symbols sorted by name", WITH_ELF},
        {"impexp_name", "imported and exported symbols sorted by name", WITH_ELF},
        {"got", "Global Offset Table (GOT) entries ", WITH_ELF},
    };
    for (const auto& a : attributes) {
        if (a.when == WITH_TRAMPOLINES && !linker_generates_trampolines()) continue;
        if (a.when == WITH_ELF && !ELF_supported()) continue;
        mdisp_flags().add(a.name, a.description, true);
    }
    mdisp_flags().set_ascii_defaults();
}
