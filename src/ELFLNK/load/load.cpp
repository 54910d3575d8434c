// The load phase from end to end: see load().
#include "ELFLNK/load/load.h"
#include "ELFLNK/compress/compress_db.h"

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/build/link_kind.h"
#include "ELFLNK/expr/expr_mgr.h"
#include "ELFLNK/file/archive_file.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/file/scan_item.h"
#include "ELFLNK/load/alias_tracker.h"
#include "ELFLNK/load/archive_scan.h"
#include "ELFLNK/load/comdat.h"
#include "ELFLNK/load/link_symbols.h"
#include "ELFLNK/reach/registrar.h"
#include "ELFLNK/retain/specialization.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/trace.h"

namespace {

constexpr const char* RTS_LIBRARY = "libc.a";
constexpr const char* AUTO_RTS = "automatic RTS selection:  ";

void add_target_entry_names() {
    if (const char* entry = Target->entry_point_name()) {
        global_symbols.add_entry_name(entry);
        if (is_c_runtime_model()) global_symbols.add_rts_trigger(entry);
    }
    for (const char* name : Target->auto_rts_triggers()) {
        global_symbols.add_entry_name(name);
        global_symbols.add_rts_trigger(name);
    }
    global_compress_db->add_decompression_routine_names();
}

void scan_item(SCAN_ITEM* item) {
    const bool is_priority = global_opts->isopt(OPT_priority);
    if (item->is_obj()) {
        OBJ_FILE* file = item->obj_scan_item_api()->file();
        if (file->is_static_linking_object()) scan_static_linking_file(file);
    } else if (item->is_archive()) {
        ARCHIVE_FILE* archive = item->ar_scan_item_api()->file();
        build_ar_def_table(archive);
        if (!is_priority) scan_archive(archive);
    } else if (item->is_ar_group()) {
        AR_GROUP_SCAN_ITEM* group = item->ar_group_scan_item_api();
        for (SCAN_ITEM* member : group->items())
            build_ar_def_table(member->ar_scan_item_api()->file());
        if (!is_priority) reread_group(group);
    } else {
        DIAG_REPORT(elnk_invalid_scan_item_type, "AR_SCAN_ITEM, OBJ_SCAN_ITEM, AR_GROUP_SCAN_ITEM");
    }
}

// Archives that the order of the command line could not serve.
void search_archives_again() {
    if (global_opts->isopt(OPT_priority))
        priority_archive_search();
    else if (global_opts->isopt(OPT_reread_libs))
        reread_archives(file_manager.scan_items());
}

// The run-time library comes in by itself when a name that calls for it is still wanted.
void select_runtime_library() {
    if (global_opts->isopt(OPT_disable_auto_rts)) return;
    bool is_wanted = false;
    for (const char* trigger : global_symbols.rts_triggers())
        is_wanted |= global_symbols.need_def(trigger);
    if (!is_wanted) return;
    const char* path = file_manager.find_specific_file(RTS_LIBRARY, true, false);
    if (!path) {
        DIAG_REPORT(elnk_rtslib_missing, AUTO_RTS, RTS_LIBRARY);
    } else if (DIAGNOSTIC::error_count_m != 0) {
        DIAG_REPORT(elnk_autorts_disabled);
    } else {
        DIAG_REPORT(elnk_report_autorts, AUTO_RTS, RTS_LIBRARY);
        INPUT_FILE* library = file_manager.process_file(path, nullptr, false);
        ARCHIVE_FILE* archive = library ? library->as_archive_file() : nullptr;
        if (!archive) return;
        build_ar_def_table(archive);
        if (!global_opts->isopt(OPT_priority)) scan_archive(archive);
        search_archives_again();
    }
}

void scan_dynamic_file(OBJ_FILE* file) {
    if (!file->has_dynamic_linkage()) {
        DIAG_REPORT(elnk_not_linked, file->name());
    } else if (file->object_file()->format() != OFE::OF_FORMAT_ELF) {
        DIAG_REPORT(elnk_bad_file_type, file->name());
    } else if (is_partial_link()) {
        DIAG_REPORT(elnk_opt_infmt_conflict, "--relocatable (-r)", "dynamic", file->name());
    } else if (Target->abi()->legal_dynamic_object(file)) {
        OFE::OF_SYMBOL_TABLE* symbols = file->object_file()->dynamic_symbol_table();
        for (unsigned id = 0; symbols && id < symbols->symnum(); id = symbols->next_symbol_id(id)) {
            OFE::OF_SYMBOL* sym = symbols->symbol(id);
            if (sym && global_symbols.is_exported_by_shared_object(sym))
                global_symbols.add_import_symbol(sym);
        }
    }
}

void scan_dynamic_files() {
    for (SCAN_ITEM* item : file_manager.scan_items()) {
        if (!item->is_obj()) continue;
        OBJ_FILE* file = item->obj_scan_item_api()->file();
        if (!file->is_static_linking_object()) scan_dynamic_file(file);
    }
}

// Which files take part: command line order, then the archives that it could not serve, then the
// run-time library.
void scan_all_files() {
    for (size_t i = 0; i < file_manager.scan_items().size(); ++i)
        scan_item(file_manager.scan_items()[i]);
    search_archives_again();
    if (!is_partial_link_by_options()) select_runtime_library();
    scan_dynamic_files();
    if (file_manager.object_files().empty()) DIAG_REPORT(elnk_no_files);
}

} // namespace

bool load() {
    trace_load.push("\n\nLOAD PHASE:\n");
    add_target_entry_names();
    scan_all_files();
    // Every object file of the link is known; none is added below.
    Target->check_advice();
    if (global_opts->isopt(OPT_scan_libraries)) report_multiple_definitions();
    clear_ar_def_table();
    Target->update_upon_scanning();
    for_each_kept_comdat(
        [](OFE::OF_GROUP_TABLE* group) { Target->abi()->demote_exported_comdat_class(group); });
    clear_comdat_map();
    // Comdat groups are settled: what a file still defines takes part.
    get_expr_mgr()->evaluate_all_sym_assignments(false);
    link_global_definitions();
    link_global_references();
    // Every undefined symbol points at its definition, or at the one symbol that stands for its
    // name.
    SPECIALIZATION_MANAGER::instantiate_specializations();
    REGISTRAR registrar;
    registrar.register_objects();
    Target->update_upon_load();
    alias_section_tracker.clear();
    // What is reached has its linker object; the set of sections and symbols of the inputs is
    // final.
    trace_load.pop();
    return true;
}
