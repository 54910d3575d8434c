// A specification that took nothing is most often a mistake: its sections went to a narrower one,
// or its pattern matches nothing.
#include "ELFLNK/collect/empty_specs.h"

#include <string>
#include <string_view>
#include <unordered_set>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/filter/filter.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/object/section_spec.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"

namespace {

/// The names of all sections that were taken, with the names that they are subsections of: of a
/// literal name that is not among them no taker has to be asked.
class TAKEN_NAMES {
  public:
    explicit TAKEN_NAMES(const std::vector<SECTION_SPEC*>& takers) {
        for (const SECTION_SPEC* taker : takers)
            for (LINKER_OBJECT* member : taker->members())
                if (const SECTION* section = as_section(member))
                    insert(section->original_section_name());
    }

    bool may_match(const FILTER* filter) const {
        if (filter == nullptr) return true;
        for (; filter->get_kind() == FILTER::OR && filter->right() != nullptr;
             filter = filter->right())
            if (may_match(filter->left())) return true;
        if (filter->get_kind() != FILTER::PATTERN) return true;
        const char* name = filter->get_pattern();
        return FILTER::has_wildcards(name) || Target->abi()->section_name_is_reserved(name) ||
               names_.contains(name);
    }

  private:
    void insert(std::string_view name) {
        const std::string_view delimiters = Target->abi()->legal_subsection_delimiters();
        names_.insert(name);
        for (size_t end = name.find_first_of(delimiters); end != std::string_view::npos;
             end = name.find_first_of(delimiters, end + 1))
            names_.insert(name.substr(0, end));
    }

    std::unordered_set<std::string_view> names_;
};

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

/// The type stands at the output section.
bool is_of_vector(const SECTION_SPEC* spec) {
    const COLLECTION* outsect = spec->containing_outsect();
    return spec->has_attr(PA_VECT_INIT) || (outsect != nullptr && outsect->has_attr(PA_VECT_INIT));
}

void report_empty_spec(const SECTION_SPEC* spec, const std::vector<SECTION_SPEC*>& takers,
                       const TAKEN_NAMES& names) {
    const bool ask = names.may_match(spec->section_filter());
    for (size_t i = 0; ask && i < takers.size(); ++i) {
        const SECTION_SPEC* taker = takers[i];
        if (!took_sections_of(taker, spec)) continue;
        DIAG_REPORT_AT(&spec->source_position(), elnk_duplicate_sspec,
                       position_text(taker->source_position()));
        return;
    }
    if (is_of_vector(spec))
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
    if (empty.empty()) return;
    const TAKEN_NAMES names(takers);
    for (SECTION_SPEC* spec : empty)
        if (!Target->ignore_empty_section_spec(spec)) report_empty_spec(spec, takers, names);
}
