// The line number programs: a state machine whose rows say which source line an address comes from.
#include "dwarf_editor/dw_source.h"

#include <algorithm>

#include "dwarf_editor/dw_data.h"

namespace DWE {

namespace {

enum STANDARD_OPCODE : uint8_t {
    DW_LNS_copy = 1,
    DW_LNS_advance_pc,
    DW_LNS_advance_line,
    DW_LNS_set_file,
    DW_LNS_set_column,
    DW_LNS_negate_stmt,
    DW_LNS_set_basic_block,
    DW_LNS_const_add_pc,
    DW_LNS_fixed_advance_pc,
    DW_LNS_set_prologue_end,
    DW_LNS_set_epilogue_begin,
    DW_LNS_set_isa
};
enum EXTENDED_OPCODE : uint8_t { DW_LNE_end_sequence = 1, DW_LNE_set_address, DW_LNE_define_file };
enum CONTENT : unsigned { DW_LNCT_path = 1, DW_LNCT_directory_index = 2 };
enum FORM : unsigned {
    DW_FORM_block2 = 0x03,
    DW_FORM_block4 = 0x04,
    DW_FORM_data2 = 0x05,
    DW_FORM_data4 = 0x06,
    DW_FORM_data8 = 0x07,
    DW_FORM_string = 0x08,
    DW_FORM_block = 0x09,
    DW_FORM_block1 = 0x0a,
    DW_FORM_data1 = 0x0b,
    DW_FORM_strp = 0x0e,
    DW_FORM_udata = 0x0f,
    DW_FORM_data16 = 0x1e,
    DW_FORM_line_strp = 0x1f
};

class LINE_PROGRAM {
  public:
    LINE_PROGRAM(DW_READER& reader, const DW_DATA& str, const DW_DATA& line_str, DW_LINES& out)
        : r_(reader), str_(str), line_str_(line_str), out_(out) {}

    void run() {
        if (!read_header()) return;
        while (!r_.at_end()) step();
    }

  private:
    struct ENTRY {
        std::string_view path;
        uint64_t directory = 0;
    };

    bool read_header();
    void read_tables_2_to_4();
    std::vector<ENTRY> read_entries_5();
    void read_value_5(unsigned content, unsigned form, ENTRY& entry);
    void add_file(const ENTRY& entry);
    void step();
    void extended();
    void standard(uint8_t opcode);
    void advance(uint64_t operations) {
        address_.value += static_cast<uint32_t>(operations) * min_length_;
    }
    void emit(uint32_t line) {
        if (address_.section_id == DW_ADDRESS::NO_SECTION) return;
        bool known = file_ >= first_file_ && file_ - first_file_ < files_;
        if (!known && line != 0) return;
        out_.rows.push_back({address_.section_id, address_.value,
                             known ? file_base_ + static_cast<uint32_t>(file_ - first_file_) : 0,
                             line, column_});
    }
    void reset() {
        address_ = {};
        file_ = 1;
        line_ = 1;
        column_ = 0;
    }

    DW_READER& r_;
    const DW_DATA& str_;
    const DW_DATA& line_str_;
    DW_LINES& out_;

    unsigned version_ = 0, first_file_ = 1;
    uint8_t min_length_ = 1, line_range_ = 1, opcode_base_ = 1;
    int8_t line_base_ = 0;
    std::vector<uint8_t> operands_; // of the standard opcodes, from opcode 1
    std::vector<std::string_view> directories_;
    uint32_t file_base_ = 0; // of this program among all files
    uint64_t files_ = 0;

    DW_ADDRESS address_;
    uint64_t file_ = 1;
    uint32_t line_ = 1, column_ = 0;
};

bool LINE_PROGRAM::read_header() {
    version_ = r_.u16();
    if (version_ < 2 || version_ > 5) return false;
    if (version_ >= 5 && (r_.u8() != 4 || r_.u8() != 0)) return false; // address, segment selector
    size_t length = r_.u32();
    size_t program = r_.pos() + length;
    min_length_ = r_.u8();
    if (version_ >= 4) r_.u8(); // operations in an instruction
    r_.u8();                    // whether rows are statements at first
    line_base_ = static_cast<int8_t>(r_.u8());
    line_range_ = r_.u8();
    opcode_base_ = r_.u8();
    if (!r_.ok() || line_range_ == 0 || opcode_base_ == 0) return false;
    for (unsigned i = 1; i < opcode_base_; ++i) operands_.push_back(r_.u8());
    file_base_ = static_cast<uint32_t>(out_.files.size());
    if (version_ < 5) {
        read_tables_2_to_4();
    } else {
        first_file_ = 0;
        for (const ENTRY& entry : read_entries_5()) directories_.push_back(entry.path);
        for (const ENTRY& entry : read_entries_5()) add_file(entry);
    }
    r_.seek(program);
    return r_.ok();
}

void LINE_PROGRAM::read_tables_2_to_4() {
    directories_.push_back({}); // 0: where the compiler ran
    for (std::string_view name = r_.text(); !name.empty(); name = r_.text())
        directories_.push_back(name);
    for (std::string_view name = r_.text(); !name.empty(); name = r_.text()) {
        uint64_t directory = r_.uleb();
        r_.uleb(); // time
        r_.uleb(); // size
        add_file({name, directory});
    }
}

std::vector<LINE_PROGRAM::ENTRY> LINE_PROGRAM::read_entries_5() {
    std::vector<std::pair<unsigned, unsigned>> format(r_.u8());
    for (auto& [content, form] : format) {
        content = static_cast<unsigned>(r_.uleb());
        form = static_cast<unsigned>(r_.uleb());
    }
    std::vector<ENTRY> entries;
    if (format.empty()) return entries;
    for (uint64_t count = r_.uleb(); count > 0 && r_.ok() && !r_.at_end(); --count) {
        ENTRY entry;
        for (auto [content, form] : format) read_value_5(content, form, entry);
        if (r_.ok()) entries.push_back(entry);
    }
    return entries;
}

void LINE_PROGRAM::read_value_5(unsigned content, unsigned form, ENTRY& entry) {
    std::string_view text;
    uint64_t number = 0;
    switch (form) {
    case DW_FORM_string:
        text = r_.text();
        break;
    case DW_FORM_line_strp:
        text = line_str_.text_at(r_.offset());
        break;
    case DW_FORM_strp:
        text = str_.text_at(r_.offset());
        break;
    case DW_FORM_udata:
        number = r_.uleb();
        break;
    case DW_FORM_data1:
        number = r_.u8();
        break;
    case DW_FORM_data2:
        number = r_.u16();
        break;
    case DW_FORM_data4:
        number = r_.u32();
        break;
    case DW_FORM_data8:
        number = r_.number(8);
        break;
    case DW_FORM_data16:
        r_.skip(16);
        break;
    case DW_FORM_block:
        r_.skip(r_.uleb());
        break;
    case DW_FORM_block1:
        r_.skip(r_.u8());
        break;
    case DW_FORM_block2:
        r_.skip(r_.u16());
        break;
    case DW_FORM_block4:
        r_.skip(r_.u32());
        break;
    default:
        r_.skip(~uint64_t{0}); // of unknown length: nothing after it can be read
        break;
    }
    if (content == DW_LNCT_path) entry.path = text;
    if (content == DW_LNCT_directory_index) entry.directory = number;
}

// Names are as the compiler was given them: what lies in its own directory has no directory.
void LINE_PROGRAM::add_file(const ENTRY& entry) {
    std::string name;
    bool absolute = !entry.path.empty() && entry.path.front() == '/';
    if (!absolute && entry.directory > 0 && entry.directory < directories_.size())
        (name = directories_[static_cast<size_t>(entry.directory)]) += '/';
    out_.files.push_back(name.append(entry.path));
    ++files_;
}

void LINE_PROGRAM::step() {
    uint8_t opcode = r_.u8();
    if (opcode == 0) return extended();
    if (opcode < opcode_base_) return standard(opcode);
    unsigned adjusted = opcode - opcode_base_;
    advance(adjusted / line_range_);
    line_ += static_cast<uint32_t>(line_base_ + static_cast<int>(adjusted % line_range_));
    emit(line_);
}

void LINE_PROGRAM::extended() {
    uint64_t length = r_.uleb();
    size_t at = r_.pos();
    if (length == 0 || length > r_.end() - at) return r_.skip(~uint64_t{0});
    switch (r_.u8()) {
    case DW_LNE_end_sequence:
        emit(0);
        reset();
        break;
    case DW_LNE_set_address:
        if (length == 5) address_ = r_.address();
        break;
    case DW_LNE_define_file: {
        std::string_view name = r_.text();
        add_file({name, r_.uleb()});
        break;
    }
    default:
        break;
    }
    r_.seek(at + static_cast<size_t>(length));
}

void LINE_PROGRAM::standard(uint8_t opcode) {
    switch (opcode) {
    case DW_LNS_copy:
        emit(line_);
        break;
    case DW_LNS_advance_pc:
        advance(r_.uleb());
        break;
    case DW_LNS_advance_line:
        line_ += static_cast<uint32_t>(r_.sleb());
        break;
    case DW_LNS_set_file:
        file_ = r_.uleb();
        break;
    case DW_LNS_set_column:
        column_ = static_cast<uint32_t>(r_.uleb());
        break;
    case DW_LNS_const_add_pc:
        advance((255u - opcode_base_) / line_range_);
        break;
    case DW_LNS_fixed_advance_pc:
        address_.value += r_.u16();
        break;
    default: // takes operands that say nothing about the row
        for (unsigned i = 0; i < operands_[opcode - 1u]; ++i) r_.uleb();
        break;
    }
}

} // namespace

DW_LINES read_dw_lines(const DW_DATA& line, const DW_DATA& str, const DW_DATA& line_str) {
    DW_LINES lines;
    for (DW_READER units(line, 0, line.size()); !units.at_end();) {
        uint32_t length = units.u32();
        size_t begin = units.pos();
        if (length > units.end() - begin) break; // damaged, or of the 64-bit format
        DW_READER unit(line, begin, begin + length);
        LINE_PROGRAM(unit, str, line_str, lines).run();
        units.skip(length);
    }
    if (lines.files.empty()) lines.files.emplace_back();
    std::stable_sort(lines.rows.begin(), lines.rows.end(), [](const DW_LINE& a, const DW_LINE& b) {
        if (a.section_id != b.section_id) return a.section_id < b.section_id;
        if (a.offset != b.offset) return a.offset < b.offset;
        return a.line == 0 && b.line != 0; // where one stretch ends and another begins, it begins
    });
    return lines;
}

} // namespace DWE
