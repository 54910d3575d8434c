// Finds the first specification that takes a section, without trying each one.
//
// File and member filters are evaluated once per file: what is left is a list of candidate
// specifications. Among these, literal section names are found by hash of the name and of its
// prefixes up to a subsection delimiter; only patterns with wildcards and reserved names are
// tried one by one, and only those that stand before the best literal hit.
#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

class OBJ_FILE;
class SECTION;
class SECTION_SPEC;

class SPEC_MATCHER {
  public:
    explicit SPEC_MATCHER(const std::vector<SECTION_SPEC*>& specs);

    /// First specification, in the order given, that accepts the section; null if none does.
    SECTION_SPEC* find(SECTION* section);
    SECTION_SPEC* find(const char* name, OBJ_FILE* file);

  private:
    static constexpr uint32_t NONE = ~0U;

    void index_section_filter(uint32_t spec);
    void enter_file(OBJ_FILE* file);
    uint32_t first_literal(std::string_view name) const;
    bool file_accepts(uint32_t spec) const { return spec_in_file_[spec]; }

    const std::vector<SECTION_SPEC*>& specs_;
    std::unordered_map<std::string_view, std::vector<uint32_t>> by_literal_; // ascending positions
    std::vector<uint32_t> by_trial_;       // with a wildcard or reserved name: ascending positions
    std::vector<uint32_t> without_filter_; // no section list, but a file list that takes all
    std::string_view delimiters_;
    OBJ_FILE* file_ = nullptr;
    std::vector<bool> spec_in_file_;      // per specification: the current file passes
    std::vector<uint32_t> trial_in_file_; // by_trial_ and without_filter_ that pass, ascending
};
