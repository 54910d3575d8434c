// See the header. The directory is made for the links that ask for it only: debug entries of all
// files are read.
#include "ELFLNK/placement/order/preferred_order.h"

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/trace.h"
#include "dwarf_editor/dw_source.h"

bool FUNCTION_DIRECTORY::is_needed() {
    return global_opts->isopt(OPT_preferred_order);
}

void FUNCTION_DIRECTORY::build(OBJ_FILE* file) {
    trace_fdir.printf("Building Function Directory for %s\n", file->name());
    const DWE::DW_SOURCE_MAP map(file->object_file());
    for (const DWE::DW_FUNCTION& function : map.functions()) {
        const DWE::DW_LINE* line = map.line_at(function.section_id, function.low);
        std::string source = line != nullptr ? map.file_name(*line) : std::string();
        std::string name(function.link_name);
        trace_fdir.printf("Adding %s:%s\n", source.c_str(), name.c_str());
        entries_[std::move(name)].push_back(
            {function.external, std::move(source), file, function.section_id});
    }
}

namespace {

bool names_source(std::string_view file, std::string_view source) {
    if (file == source) return true;
    return source.size() > file.size() && source.ends_with(file) &&
           source[source.size() - file.size() - 1] == '/';
}

} // namespace

const FUNCTION_DIRECTORY::ENTRY* FUNCTION_DIRECTORY::lookup(const std::string& name,
                                                            std::string_view file) const {
    trace_fdir.printf("lookup: %s:%s\n", std::string(file).c_str(), name.c_str());
    if (auto found = entries_.find(name); found != entries_.end()) {
        for (const ENTRY& entry : found->second) {
            trace_fdir.printf("   try %s, %s\n", entry.source.c_str(), name.c_str());
            if (file.empty() ? !entry.global : !names_source(file, entry.source)) continue;
            trace_fdir.printf("   found\n");
            return &entry;
        }
    }
    trace_fdir.printf("   not found\n");
    return nullptr;
}

SECTION* PREFERRED_ORDER::section_of(const std::string& spec,
                                     const FUNCTION_DIRECTORY& directory) const {
    const size_t colon = spec.rfind(':');
    const bool has_file = colon != std::string::npos;
    const auto* entry = directory.lookup(has_file ? spec.substr(colon + 1) : spec,
                                         has_file ? spec.substr(0, colon) : std::string());
    if (entry == nullptr) {
        trace_order.printf("no info\n");
        return nullptr;
    }
    SECTION* section =
        root_collection->lookup_section(entry->file->object_file()->file_id(), entry->section_id);
    if (section == nullptr) trace_order.printf("not registered\n");
    return section;
}

void PREFERRED_ORDER::assign_function_priorities(const FUNCTION_DIRECTORY& directory) {
    trace_order.printf("Process Preferred Order Function List ... \n");
    for (const std::string& spec : specs_) {
        SECTION* section = section_of(spec, directory);
        if (section == nullptr) continue;
        if (section->preferred_priority() != 0) {
            DIAG_REPORT(elnk_redundant_pref_order_spec, spec);
            continue;
        }
        section->set_preferred_priority(++count_);
        trace_order.printf("setting priority of %s to %u\n", section->name(), count_);
    }
}

void assign_preferred_order() {
    if (!FUNCTION_DIRECTORY::is_needed()) return;
    FUNCTION_DIRECTORY directory;
    for (OBJ_FILE* file : file_manager.object_files()) directory.build(file);
    PREFERRED_ORDER order;
    for (unsigned n = 0; n < global_opts->getargcount(OPT_preferred_order); ++n)
        order.add_function(global_opts->getstrarg(OPT_preferred_order, n));
    order.assign_function_priorities(directory);
}
