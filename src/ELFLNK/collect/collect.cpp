// The collection phase, step by step: which output section each input section joins.
//
// Specifications compete by how narrow they are, not by who comes first; what none takes gets an
// output section named after it.
#include "ELFLNK/collect/collect.h"

#include <algorithm>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/build/link_kind.h"
#include "ELFLNK/collect/empty_specs.h"
#include "ELFLNK/collect/spec_matcher.h"
#include "ELFLNK/compress/compress_db.h"
#include "ELFLNK/crc/crc_table.h"
#include "ELFLNK/exidx/exidx.h"
#include "ELFLNK/expr/expression.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/object/section_spec.h"
#include "ELFLNK/object/symbol_object.h"
#include "ELFLNK/retain/specialization.h"
#include "ELFLNK/table/copy_table_db.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OPTIONGEN/option_obj.h"
#include "OPTIONGEN/register_option.h"
#include "UTIL/savestr.h"
#include "UTIL/trace.h"

static register_option debug_collect("debug:collect");
static register_option debug_sspec("debug:sspec");

COLLECTION* create_default_collection(const char* name) {
    static int unnamed_count = 0;
    if (name == nullptr || *name == '\0') name = savestrf("<unnamed_%d>", unnamed_count++);
    trace_collect.printf("--> forming new collection %s\n", name);
    auto* outsect = new COLLECTION(name, COLLECTION_OUTSECT);
    root_collection->add_member(outsect, true);
    root_collection->add_outsect(outsect);
    return outsect;
}

namespace {

using SPEC_LIST = std::vector<SECTION_SPEC*>;

/// Output sections made for sections that no specification takes, by base name, each with the
/// specification that takes them.
class DEFAULT_COLLECTIONS {
  public:
    SECTION_SPEC* spec_for(const std::string& key) {
        SECTION_SPEC*& spec = specs_[key];
        if (spec == nullptr) {
            COLLECTION* outsect = create_default_collection(savestr(key));
            spec = outsect->set_default_spec();
        }
        return spec;
    }

  private:
    std::unordered_map<std::string, SECTION_SPEC*> specs_;
};

const char* file_name(const SECTION* section) {
    return section->orig_infile() != nullptr ? section->orig_infile()->name() : "";
}

std::vector<COLLECTION*> output_collections() {
    std::vector<COLLECTION*> list;
    for (LINKER_OBJECT* obj : root_collection->outsects())
        if (COLLECTION* outsect = as_collection(obj)) list.push_back(outsect);
    return list;
}

/// Every named output section collects its own name behind what its body says.
void add_default_specs() {
    for (COLLECTION* outsect : output_collections()) {
        if (outsect->name()[0] == '\0') continue;
        outsect->enforce_spec_restrictions();
        outsect->set_default_spec();
    }
}

void place_where_bound(COLLECTION* outsect, OFE::OF_SECTION* input) {
    const uint64_t run = input->run_addr();
    const uint64_t load = input->load_addr();
    const bool same = run == load;
    auto* locator = new LOCATOR(same ? LOCATOR_KIND::BOTH : LOCATOR_KIND::RUN, outsect);
    locator->add_specific(run);
    if (same) locator->add_page(static_cast<int>(input->page()));
    outsect->add_locator(locator);
    if (same) return;
    auto* load_locator = new LOCATOR(LOCATOR_KIND::LOAD, outsect);
    load_locator->add_specific(load);
    outsect->add_locator(load_locator);
}

void collect_bound_sections(const std::vector<SECTION*>& sections) {
    for (SECTION* section : sections) {
        if (!section->has_attr(PA_BOUND) || section->outsect_object() != nullptr) continue;
        COLLECTION* outsect = create_default_collection(section->original_section_name());
        outsect->set_made_by_collect();
        place_where_bound(outsect, section->OF_SECTION_api());
        trace_collect.printf("adding bound section %s from %s to collection %s\n",
                             section->original_section_name(), file_name(section), outsect->name());
        outsect->add_member(section, true);
        outsect->set_placement_attributes();
    }
}

SPEC_LIST list_specs() {
    std::vector<LINKER_OBJECT*> found;
    root_collection->flatten(found, &LINKER_OBJECT::is_section_spec);
    std::stable_sort(found.begin(), found.end(), SECTION_SPEC::less_order);
    SPEC_LIST specs;
    specs.reserve(found.size());
    for (LINKER_OBJECT* obj : found) specs.push_back(static_cast<SECTION_SPEC*>(obj));
    if (!global_opts->isopt(OPT_match_first_section_spec) ||
        !global_opts->not_off(OPT_match_first_section_spec))
        SECTION_SPEC::order_by_restrictiveness(specs);
    if (debug_sspec != 0)
        for (SECTION_SPEC* spec : specs) spec->dump();
    return specs;
}

bool is_grouped(OFE::OF_SECTION* input) {
    return input != nullptr && input->section_table()->raw_group(input->id()) != nullptr;
}

/// In a partial link a section that nobody asked for stays by itself.
bool keeps_to_itself(SECTION* section, const SECTION_SPEC* spec) {
    if (!is_partial_link()) return false;
    return is_grouped(section->OF_SECTION_api()) || (spec == nullptr && is_elf_partial_link());
}

void collect_by_itself(SECTION* section) {
    const bool full_name = is_elf_partial_link() && !section->has_attr(PA_PMDATA) &&
                           !global_opts->isopt(OPT_disable_filename_as_subsection);
    COLLECTION* outsect =
        create_default_collection(full_name ? section->name() : section->original_section_name());
    outsect->add_member(section, true);
    trace_collect.printf("adding uncollected section %s from %s to collection %s\n",
                         section->original_section_name(), file_name(section), outsect->name());
}

void collect_sections(const std::vector<SECTION*>& sections, const SPEC_LIST& specs,
                      DEFAULT_COLLECTIONS& defaults) {
    SPEC_MATCHER matcher(specs);
    const bool combine = combine_subsections();
    for (SECTION* section : sections) {
        if (section->outsect_object() != nullptr || section->is_exidx()) continue;
        const char* name = section->original_section_name();
        SECTION_SPEC* spec = matcher.find(name, section->orig_infile());
        if (spec != nullptr && section->has_attr(PA_P3_PLACEMENT)) {
            DIAG_REPORT(elnk_force_p3obj_default_collect, name);
            spec = nullptr;
        }
        if (keeps_to_itself(section, spec)) {
            collect_by_itself(section);
            continue;
        }
        if (spec == nullptr)
            spec = defaults.spec_for(combine ? Target->abi()->section_base_name(name) : name);
        spec->add_member(section, true);
        trace_collect.printf("adding section %s from %s to collection %s (spec: %s, line %d)\n",
                             name, file_name(section), spec->name(), spec->source_position().file(),
                             spec->source_position().line());
    }
}

void collect_common_blocks(const SPEC_LIST& specs, DEFAULT_COLLECTIONS& defaults) {
    for (const auto& entry : root_collection->symbol_objects()) {
        SYMBOL_OBJECT* block = entry.second;
        if (!block->is_common_block()) continue;
        auto at = std::find_if(specs.begin(), specs.end(), [block](const SECTION_SPEC* spec) {
            return spec->match_common_symbol(block->symbol());
        });
        SECTION_SPEC* spec =
            at != specs.end()
                ? *at
                : defaults.spec_for(Target->abi()->common_block_section_name(block->symbol()));
        spec->add_member(block, true);
        trace_collect.printf("adding common block %s to collection %s\n", block->name(),
                             spec->name());
    }
}

void walk_collections(COLLECTION* top, void (*visit)(COLLECTION*)) {
    visit(top);
    for (LINKER_OBJECT* member : top->members())
        if (COLLECTION* below = as_collection(member)) walk_collections(below, visit);
}

/// READONLY and BOUND are for links that make a ROM image.
void refuse_rom_attributes(COLLECTION* collection) {
    if (!collection->is_user_specified()) return;
    for (auto [bit, text] : {std::pair{PA_READONLY, "READONLY"}, std::pair{PA_BOUND, "BOUND"}}) {
        if (!collection->has_attr(bit)) continue;
        DIAG_REPORT_AT(&collection->source_position(), elnk_rom_type_flag_not_allowed, text,
                       collection->name());
        collection->clear_attr(bit);
    }
}

void report_unspecified_sections() {
    constexpr std::string_view RAMFUNC = ".QV.ramfunc";
    for (COLLECTION* outsect : output_collections()) {
        if (outsect->is_user_specified() || outsect->is_made_by_collect()) continue;
        outsect->set_placement_attributes();
        if (!outsect->has_attr(PA_ALLOCATED) || outsect->size() == 0) continue;
        if (outsect->name() == RAMFUNC)
            DIAG_REPORT(elnk_unspec_ramfunc_scn, outsect->name());
        else if (global_opts->isopt(OPT_warn_sections))
            DIAG_REPORT(elnk_unspec_output_scn, outsect->name());
    }
}

} // namespace

void collect() {
    trace_collect.printf("\n\nCOLLECTION PHASE:\n\n");
    add_default_specs();
    // Every output section that exists takes what bears its name.

    std::vector<SECTION*> sections;
    root_collection->list_sections(sections);
    collect_bound_sections(sections);
    const SPEC_LIST specs = list_specs();
    {
        DEFAULT_COLLECTIONS defaults;
        collect_sections(sections, specs, defaults);
        collect_common_blocks(specs, defaults);
    }
    EXIDX::add_exception_tables();
    report_empty_specs(specs);
    // Every section and common block that takes part hangs in the tree.

    root_collection->flatten_section_specs();
    if (!can_user_specify_rom_flags()) walk_collections(root_collection, refuse_rom_attributes);
    global_copy_table_db->restrict_table_outsect();
    Target->update_after_collection();
    SPECIALIZATION_MANAGER::update_before_compressed_sections_formed();
    root_collection->remove_unreferenced_objects();
    global_compress_db->update_after_collection();
    SPECIALIZATION_MANAGER::update_after_compressed_sections_formed();
    global_crc_table_db->restrict_table_outsect();
    root_collection->remove_unreferenced_objects();
    EXPRESSION::unreferenced_removed_m = true;
    root_collection->update_after_collection();
    report_unspecified_sections();
    // Attributes of the whole tree are settled.

    trace_collect.printf("\n\nROOT COLLECTION (AFTER COLLECT):\n\n");
    if (debug_collect != 0) root_collection->dump();
}
