// The index of specifications: by literal name, the rest in order.
#include "ELFLNK/collect/spec_matcher.h"

#include <algorithm>
#include <map>
#include <string>
#include <tuple>

#include "ELFLNK/filter/filter.h"
#include "ELFLNK/object/section_spec.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"

SPEC_MATCHER::SPEC_MATCHER(const std::vector<SECTION_SPEC*>& specs) : specs_(specs) {
    for (const char c : std::string_view(Target->abi()->legal_subsection_delimiters()))
        is_delimiter_.set(static_cast<unsigned char>(c));
    group_by_files();
    for (uint32_t i = 0; i < specs.size(); ++i) {
        if (specs[i]->section_filter() != nullptr)
            index_filter(specs[i]->section_filter(), i);
        else if (specs[i]->accepts_without_section_filter())
            tried_.push_back(i);
    }
    std::sort(tried_.begin(), tried_.end());
    tried_.erase(std::unique(tried_.begin(), tried_.end()), tried_.end());
}

void SPEC_MATCHER::group_by_files() {
    auto key_of = [](const FILTER* filter) { return filter != nullptr ? filter->key() : ""; };
    using FILES = std::tuple<const INPUT_FILE*, std::string, std::string>;
    std::map<FILES, uint32_t> classes;
    for (uint32_t i = 0; i < specs_.size(); ++i) {
        const SECTION_SPEC* spec = specs_[i];
        const FILES files{spec->exact_file(), key_of(spec->file_filter()),
                          key_of(spec->member_filter())};
        const auto next = static_cast<uint32_t>(first_of_class_.size());
        const auto entry = classes.emplace(files, next).first;
        if (entry->second == next) first_of_class_.push_back(i);
        class_of_.push_back(entry->second);
    }
    class_takes_file_.assign(first_of_class_.size(), 0);
}

void SPEC_MATCHER::index_filter(const FILTER* filter, uint32_t spec) {
    for (; filter->get_kind() == FILTER::OR && filter->right() != nullptr; filter = filter->right())
        index_filter(filter->left(), spec);
    const char* pattern = filter->get_pattern();
    if (filter->get_kind() != FILTER::PATTERN || FILTER::has_wildcards(pattern)) {
        tried_.push_back(spec);
        return;
    }
    auto& list = literals_[pattern].specs;
    if (list.empty() || list.back() != spec) list.push_back(spec);
    // A reserved name takes every continuation of it, which no look-up of prefixes finds.
    if (Target->abi()->section_name_is_reserved(pattern)) tried_.push_back(spec);
}

void SPEC_MATCHER::enter_file(OBJ_FILE* file) {
    if (generation_ != 0 && file == file_) return;
    file_ = file;
    ++generation_;
    for (std::size_t c = 0; c < first_of_class_.size(); ++c)
        class_takes_file_[c] = specs_[first_of_class_[c]]->match_file(file);
    tried_in_file_.clear();
    for (uint32_t i : tried_)
        if (takes_file(i)) tried_in_file_.push_back(i);
}

uint32_t SPEC_MATCHER::first_of(std::string_view literal) {
    auto at = literals_.find(literal);
    if (at == literals_.end()) return NONE;
    LITERAL& entry = at->second;
    if (entry.generation == generation_) return entry.first;
    entry.generation = generation_;
    entry.first = NONE;
    for (uint32_t i : entry.specs) {
        if (!takes_file(i)) continue;
        entry.first = i;
        break;
    }
    return entry.first;
}

uint32_t SPEC_MATCHER::first_literal(std::string_view name) {
    uint32_t best = first_of(name);
    for (std::size_t end = 0; end < name.size(); ++end)
        if (is_delimiter_[static_cast<unsigned char>(name[end])])
            best = std::min(best, first_of(name.substr(0, end)));
    return best;
}

SECTION_SPEC* SPEC_MATCHER::find(const char* name, OBJ_FILE* file) {
    enter_file(file);
    uint32_t best = *name != '\0' ? first_literal(name) : NONE;
    for (uint32_t i : tried_in_file_) {
        if (i >= best) break;
        const SECTION_FILTER* filter = specs_[i]->section_filter();
        if (filter != nullptr && !filter->match(name)) continue;
        best = i;
        break;
    }
    return best == NONE ? nullptr : specs_[best];
}
