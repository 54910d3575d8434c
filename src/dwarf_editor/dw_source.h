// Where a place of an input section is in the user's source: file, line, column and function, from
// the line table and the subprograms of DWARF 2 to 5 debug data.
//
// A DW_SOURCE_MAP is made for one object when the first message about it is shown, and reads its
// debug sections once. Damaged or unknown debug data gives fewer answers, never wrong reads.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace OFE {
class OBJECT_FILE;
}

namespace DWE {

class DW_DATA;

struct DW_LINE {
    unsigned section_id;
    uint32_t offset;
    uint32_t file; // index into DW_LINES::files
    uint32_t line; // 0: the code before ends here
    uint32_t column;
};

struct DW_LINES {
    std::vector<std::string> files;
    std::vector<DW_LINE> rows; // by section and offset
};

struct DW_FUNCTION {
    unsigned section_id;
    uint32_t low, high; // offsets; high is the first one after
    std::string_view name;
    bool assembly;
    std::string_view link_name; // the name itself where none is given
    bool external;
};

// All rows of the line programs, and all functions with code. `str` and `line_str` hold texts that
// the sections refer to.
DW_LINES read_dw_lines(const DW_DATA& line, const DW_DATA& str, const DW_DATA& line_str);
std::vector<DW_FUNCTION> read_dw_functions(OFE::OBJECT_FILE* file);
// The source language of each compilation unit that names one, as DW_LANG_ numbers.
std::vector<unsigned> read_dw_languages(OFE::OBJECT_FILE* file);

class DW_SOURCE_MAP {
  public:
    explicit DW_SOURCE_MAP(OFE::OBJECT_FILE* file);

    // The row that the place belongs to: the last one at or below it. Null: none.
    const DW_LINE* line_at(unsigned section_id, uint32_t offset) const;
    const std::string& file_name(const DW_LINE& row) const { return lines_.files[row.file]; }
    const std::vector<DW_FUNCTION>& functions() const { return functions_; }
    // The innermost function around the place. Null: none.
    const DW_FUNCTION* function_at(unsigned section_id, uint32_t offset) const;

  private:
    DW_LINES lines_;
    std::vector<DW_FUNCTION> functions_;
};

} // namespace DWE
