// Finds the first specification that takes a section, without trying each one.
//
// Files are settled once per file and specification. Literal section names, and their subsections,
// are found by hash. Only patterns with wildcards, reserved names and specifications without a
// section list are tried one by one, and only those in front of the best literal hit.
#pragma once

#include <bitset>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

class FILTER;
class OBJ_FILE;
class SECTION_SPEC;

class SPEC_MATCHER {
  public:
    /// The list, in the order in which its specifications compete, must outlive the matcher.
    explicit SPEC_MATCHER(const std::vector<SECTION_SPEC*>& specs);

    /// First specification that accepts a section of that name and file; null if none does.
    SECTION_SPEC* find(const char* name, OBJ_FILE* file);

  private:
    static constexpr uint32_t NONE = ~0U;

    /// The specifications with one literal name, and the first of them that takes the current file.
    struct LITERAL {
        std::vector<uint32_t> specs;
        uint32_t first = NONE;
        uint64_t generation = 0;
    };

    void group_by_files();
    void index_filter(const FILTER* filter, uint32_t spec);
    void enter_file(OBJ_FILE* file);
    bool takes_file(uint32_t spec) const { return class_takes_file_[class_of_[spec]] != 0; }
    uint32_t first_literal(std::string_view name);
    uint32_t first_of(std::string_view literal);

    const std::vector<SECTION_SPEC*>& specs_;
    std::bitset<256> is_delimiter_; // by character
    std::unordered_map<std::string_view, LITERAL> literals_;
    std::vector<uint32_t> tried_; // positions, ascending

    OBJ_FILE* file_ = nullptr;
    uint64_t generation_ = 0; // counts the changes of file_
    // Specifications that name the same files are one class, settled by its first one.
    std::vector<uint32_t> class_of_;
    std::vector<uint32_t> first_of_class_;
    std::vector<char> class_takes_file_;
    std::vector<uint32_t> tried_in_file_;
};
