// A specification that took nothing is most often a mistake: its sections went to a narrower one,
// or its pattern matches nothing.
#include "ELFLNK/collect/empty_specs.h"

#include <string>
#include <string_view>
#include <unordered_set>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/filter/filter.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/object/section_spec.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/elf/elf_types.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/raw_records.h"
#include "UTIL/savestr.h"
#include "UTIL/strformat.h"

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

/// Calls with each section of the file that would take memory, until that says true.
template <class TEST>
bool any_section(OBJ_FILE* file, TEST test) {
    OFE::OF_SECTION_TABLE* sections = file->object_file()->section_table();
    OFE::OF_RAW_SECTION section;
    for (unsigned id = 1; id < sections->scnnum(); ++id)
        if (sections->raw_section(id, section) && !section.deleted && section.size != 0 &&
            (section.flags & OFE::SHF_ALLOC) != 0 && test(section.name))
            return true;
    return false;
}

/// Why a specification may have nothing to take: its sections were thrown away, or have a longer
/// name.
std::string empty_spec_hint(const SECTION_SPEC* spec) {
    const FILTER* filter = spec->section_filter();
    const bool is_literal = filter != nullptr && filter->get_kind() == FILTER::PATTERN &&
                            !FILTER::has_wildcards(filter->get_pattern());
    const std::string beginning = is_literal ? std::string(filter->get_pattern()) + "." : "";
    const char* longer = nullptr;
    const char* dropped = nullptr;
    for (OBJ_FILE* file : file_manager.object_files()) {
        if (file->is_linker_generated() || !spec->match_file(file)) continue;
        const auto tells = [&](const char* name) {
            if (filter == nullptr || filter->match(name)) dropped = savestr(name);
            if (longer == nullptr && is_literal && std::string_view(name).starts_with(beginning))
                longer = savestr(name);
            return dropped != nullptr;
        };
        if (any_section(file, tells))
            return strformat("; \"%s\" has %s, to which nothing refers; --retain=*(%s) keeps it",
                             file->unique_name(), dropped, dropped);
    }
    if (longer == nullptr) return "";
    return strformat("; there is %s, which %s* would take", longer, filter->get_pattern());
}

void report_no_match(const SECTION_SPEC* spec) {
    constexpr unsigned MOST_HINTS = 20; // each looks at all sections
    static unsigned hints = 0;
    DIAG::elnk_no_matching_section message(__FILE__, __LINE__);
    message.set_src(&spec->source_position());
    if (DIAGNOSTIC::verbose_m && hints++ < MOST_HINTS) message.set_hint(empty_spec_hint(spec));
    message.report();
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
        report_no_match(spec);
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
