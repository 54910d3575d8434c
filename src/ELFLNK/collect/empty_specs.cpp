// A specification that took nothing is most often a mistake: its sections went to a narrower one,
// or its pattern matches nothing.
#include "ELFLNK/collect/empty_specs.h"

#include <string>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/filter/filter.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/object/section_spec.h"
#include "ELFLNK/target/target.h"

namespace {

/// One of the sections of `taker` also matches `spec`. Members stand in file order, so the file is
/// looked at once per file.
bool took_sections_of(const SECTION_SPEC* taker, const SECTION_SPEC* spec) {
    if (!spec->accepts_without_section_filter()) return false;
    const OBJ_FILE* file = nullptr;
    bool takes_file = false;
    bool first = true;
    for (LINKER_OBJECT* member : taker->members()) {
        const SECTION* section = as_section(member);
        if (section == nullptr) continue;
        if (first || section->orig_infile() != file) {
            file = section->orig_infile();
            takes_file = spec->match_file(section->orig_infile());
            first = false;
        }
        if (takes_file && (spec->section_filter() == nullptr ||
                           spec->section_filter()->match(section->original_section_name())))
            return true;
    }
    return false;
}

std::string position_text(const SOURCE_POSITION& pos) {
    return std::string("\"") + pos.file() + "\", line " + std::to_string(pos.line());
}

void report_empty_spec(const SECTION_SPEC* spec, const std::vector<SECTION_SPEC*>& takers) {
    for (const SECTION_SPEC* taker : takers) {
        if (!took_sections_of(taker, spec)) continue;
        DIAG_REPORT_AT(&spec->source_position(), elnk_duplicate_sspec,
                       position_text(taker->source_position()));
        return;
    }
    if (spec->has_attr(PA_VECT_INIT))
        DIAG_REPORT_AT(&spec->source_position(), elnk_vect_init, spec->name());
    else
        DIAG_REPORT_AT(&spec->source_position(), elnk_no_matching_section);
}

} // namespace

void report_empty_specs(const std::vector<SECTION_SPEC*>& specs) {
    std::vector<SECTION_SPEC*> takers;
    std::vector<SECTION_SPEC*> empty;
    for (SECTION_SPEC* spec : specs)
        if (!spec->is_default()) (spec->members().empty() ? empty : takers).push_back(spec);
    for (SECTION_SPEC* spec : empty)
        if (!Target->ignore_empty_section_spec(spec)) report_empty_spec(spec, takers);
}
