// The SECTIONS directive: output sections, GROUPs and UNIONs, and how their wishes become locators.
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/parse_lcf/lcf_errors.h"
#include "ELFLNK/parse_lcf/lcf_parser.h"
#include "ELFLNK/parse_lcf/placement_properties.h"
#include "ELFLNK/table/copy_table_db.h"
#include "UTIL/savestr.h"

namespace {

// Running numbers of GROUPs and UNIONs without a name.
unsigned unnamed_groups = 0;
unsigned unnamed_unions = 0;

LOCATOR* merged_locator(LOCATOR_KIND kind, COLLECTION* section, const LOCATOR& common,
                        const LOCATOR* own) {
    auto* locator = new LOCATOR(kind, section);
    locator->merge(&common);
    if (own != nullptr) locator->merge(own);
    if (common.is_ordered())
        locator->set_flag(LF_ORDERED); // merging takes it from the last one alone
    return locator;
}

} // namespace

void LCF_PARSER::sections_directive() {
    sections_seen_m = true;
    latch_ = false;
    lex();
    output_section_list(root_collection);
    latch_ = false;
}

void LCF_PARSER::output_section_list(COLLECTION* parent) {
    if (!lex_skip_required('{')) return;
    while (!at_end('}')) {
        if (keyword_cs("GROUP") || keyword_cs("UNION")) {
            group_or_union(parent);
        } else if (code() == TOK_NAME) {
            output_section(parent);
        } else {
            LCF_ERROR(elnk_syn_bad_oscn, text());
            lex();
        }
    }
    lex_skip_required('}');
}

void LCF_PARSER::output_section(COLLECTION* parent) {
    latch_ = false;
    SOURCE_POSITION pos = token().position();
    auto* section = new COLLECTION(savestr(text()), COLLECTION_OUTSECT, &pos);
    section->set_user_specified();
    section->set_order_number(next_seq_id());
    root_collection->add_outsect(section);
    PLACEMENT_PROPERTIES props(section);
    lex();
    lex_skip_optional(':');
    optional_address(props);
    section_properties(section, props);
    if (section->members().size() >= 2) props.common.set_flag(LF_ORDERED);
    parent->add_member(section, true);
    consolidate_placement_properties(section, props);
}

void LCF_PARSER::group_or_union(COLLECTION* parent) {
    if (!enter_nesting()) {
        LCF_ERROR(elnk_syn_bad_oscn, text());
        lex();
        return;
    }
    latch_ = false;
    SOURCE_POSITION pos = token().position();
    bool is_union = keyword_cs("UNION");
    const char* name = group_or_union_name(is_union);
    auto* group = new COLLECTION(name, is_union ? COLLECTION_UNION : COLLECTION_GROUP, &pos);
    group->set_user_specified();
    PLACEMENT_PROPERTIES props(group);
    lex_skip_optional(':');
    optional_address(props);
    section_properties(group, props);
    lex_skip_optional(':');
    output_section_list(group);
    optional_fill(group);
    section_properties(group, props);
    if (is_union)
        props.common.set_flag(LF_OVERLAY | LF_UNION);
    else if (group->members().size() >= 2)
        props.common.set_flag(LF_ORDERED);
    parent->add_member(group, true);
    consolidate_placement_properties(group, props);
    global_copy_table_db->enforce_table_restrictions(group);
    leave_nesting();
}

const char* LCF_PARSER::group_or_union_name(bool is_union) {
    lex();
    if (code() == '(') {
        lex();
        const char* name = nullptr;
        if (lex_required(TOK_NAME)) {
            name = savestr(text());
            lex();
        }
        lex_skip_required(')');
        if (name != nullptr) return name;
    }
    return is_union ? savestrf("UNION_%d", ++unnamed_unions)
                    : savestrf("GROUP_%d", ++unnamed_groups);
}

// A member of a GROUP or UNION always has a run and a load locator; a section of the top level
// without a run address has a single one for both.
void LCF_PARSER::consolidate_placement_properties(COLLECTION* section,
                                                  const PLACEMENT_PROPERTIES& props) {
    COLLECTION* parent = section->parent();
    bool is_inner = parent != nullptr && parent != root_collection;
    if (is_inner || props.run.placement_specified())
        section->add_locator(merged_locator(LOCATOR_KIND::RUN, section, props.common, &props.run));
    if (is_inner || props.load.placement_specified()) {
        LOCATOR_KIND kind =
            section->run_locator() != nullptr ? LOCATOR_KIND::LOAD : LOCATOR_KIND::BOTH;
        section->add_locator(merged_locator(kind, section, props.common, &props.load));
    }
    if (section->run_locator() == nullptr)
        section->add_locator(merged_locator(LOCATOR_KIND::BOTH, section, props.common, nullptr));
}
