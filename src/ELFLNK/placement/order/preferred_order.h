// The order of functions that the user gives by --preferred_order=function or =file:function. The
// debug entries of the input files tell which section holds a function.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

class OBJ_FILE;
class SECTION;

/// Which section holds a function of a name; several files may have functions of one name.
class FUNCTION_DIRECTORY {
  public:
    struct ENTRY {
        bool global;
        std::string source;
        OBJ_FILE* file;
        unsigned section_id;
    };
    /// True with --preferred_order.
    static bool is_needed();
    /// Enters the functions that the file has debug entries of.
    void build(OBJ_FILE* file);
    /// The first function of that name in the source file, given with or without its folders; the
    /// first global one for an empty file. Null if there is none.
    const ENTRY* lookup(const std::string& name, std::string_view file) const;

  private:
    std::unordered_map<std::string, std::vector<ENTRY>> entries_;
};

/// Ranks of the sections that hold the functions named: 1 for the first.
class PREFERRED_ORDER {
  public:
    void add_function(const std::string& spec) { specs_.push_back(spec); }
    void assign_function_priorities(const FUNCTION_DIRECTORY& directory);

  private:
    SECTION* section_of(const std::string& spec, const FUNCTION_DIRECTORY& directory) const;

    std::vector<std::string> specs_;
    uint32_t count_ = 0;
};

/// Gives the sections their ranks as the options say; nothing without the option.
void assign_preferred_order();
