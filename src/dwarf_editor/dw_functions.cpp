// The subprograms of the debug entries: which code belongs to which function. Entries are walked in
// order without building a tree; a name may stand in another entry, the declaration or the abstract
// instance, which is looked up by its offset at the end.
#include "dwarf_editor/dw_source.h"

#include <algorithm>
#include <unordered_map>

#include "OBJEDIT04/ofe/object_file.h"
#include "dwarf_editor/dw_data.h"

namespace DWE {

namespace {

constexpr unsigned DW_TAG_compile_unit = 0x11, DW_TAG_subprogram = 0x2e;
constexpr unsigned DW_UT_compile = 1, DW_UT_partial = 3;
enum ATTRIBUTE : unsigned {
    DW_AT_name = 0x03,
    DW_AT_low_pc = 0x11,
    DW_AT_high_pc = 0x12,
    DW_AT_language = 0x13,
    DW_AT_abstract_origin = 0x31,
    DW_AT_external = 0x3f,
    DW_AT_specification = 0x47,
    DW_AT_linkage_name = 0x6e,
    DW_AT_str_offsets_base = 0x72,
    DW_AT_addr_base = 0x73,
    DW_AT_QV_symbol_name = 0x2001,
    DW_AT_QV_asm = 0x200c
};

// What a form is in the entry: how many bytes, and what they mean.
enum KIND : uint8_t {
    UNKNOWN,
    FIXED, // `size` bytes of a number
    ADDRESS,
    TEXT, // in place
    STRP, // offset into .debug_str
    LINE_STRP,
    STRX,  // index of `size` bytes into .debug_str_offsets; size 0: ULEB
    ADDRX, // index into .debug_addr
    REF,   // `size` bytes from the unit's start; size 0: ULEB
    REF_ADDR,
    BLOCK, // `size` bytes of length, then the block; size 0: ULEB
    ULEB,
    SLEB,
    NOTHING,
    INDIRECT
};
struct FORM_ROW {
    KIND kind;
    uint8_t size;
};
constexpr FORM_ROW FORMS[] = {
    {UNKNOWN, 0}, {ADDRESS, 4},   {UNKNOWN, 0},  {BLOCK, 2},   {BLOCK, 4}, // 0x00
    {FIXED, 2},   {FIXED, 4},     {FIXED, 8},    {TEXT, 0},    {BLOCK, 0}, // 0x05
    {BLOCK, 1},   {FIXED, 1},     {FIXED, 1},    {SLEB, 0},    {STRP, 4},  // 0x0a
    {ULEB, 0},    {REF_ADDR, 4},  {REF, 1},      {REF, 2},     {REF, 4},   // 0x0f
    {REF, 8},     {REF, 0},       {INDIRECT, 0}, {FIXED, 4},   {BLOCK, 0}, // 0x14
    {NOTHING, 0}, {STRX, 0},      {ADDRX, 0},    {FIXED, 4},   {FIXED, 4}, // 0x19
    {FIXED, 16},  {LINE_STRP, 4}, {FIXED, 8},    {NOTHING, 0}, {ULEB, 0},  // 0x1e
    {ULEB, 0},    {FIXED, 8},     {STRX, 1},     {STRX, 2},    {STRX, 3},  // 0x23
    {STRX, 4},    {ADDRX, 1},     {ADDRX, 2},    {ADDRX, 3},   {ADDRX, 4}, // 0x28
};
static_assert(std::size(FORMS) == 0x2d);
constexpr unsigned DW_FORM_implicit_const = 0x21;

struct ATTR_SPEC {
    unsigned id, form;
    int64_t constant;
};
struct ABBREV {
    unsigned tag = 0;
    std::vector<ATTR_SPEC> attrs;
};
using ABBREVS = std::unordered_map<uint64_t, ABBREV>;

ABBREVS read_abbrevs(const DW_DATA& data, size_t offset) {
    ABBREVS abbrevs;
    DW_READER r(data, offset, data.size());
    for (uint64_t code = r.uleb(); code != 0 && r.ok(); code = r.uleb()) {
        ABBREV abbrev;
        abbrev.tag = static_cast<unsigned>(r.uleb());
        r.u8(); // whether it has children
        for (;;) {
            ATTR_SPEC spec{static_cast<unsigned>(r.uleb()), static_cast<unsigned>(r.uleb()), 0};
            if (spec.form == DW_FORM_implicit_const) spec.constant = r.sleb();
            if (!r.ok() || (spec.id == 0 && spec.form == 0)) break;
            abbrev.attrs.push_back(spec);
        }
        abbrevs.emplace(code, std::move(abbrev));
    }
    return abbrevs;
}

struct VALUE {
    KIND kind = UNKNOWN;
    uint64_t number = 0;
    DW_ADDRESS address;
    std::string_view text;
};

struct SUBPROGRAM {
    size_t offset = 0; // of the entry
    size_t origin = 0; // of the entry that has the name; 0: none
    std::string_view name;
    std::string_view symbol_name;  // of the object file, as compilers of our own give it
    std::string_view linkage_name; // the same, as others do
    DW_ADDRESS low;
    uint64_t length = 0;
    bool assembly = false;
    bool external = false;
};

class INFO_READER {
  public:
    explicit INFO_READER(OFE::OBJECT_FILE* file)
        : info_(file, ".debug_info"),
          abbrev_(file, ".debug_abbrev"),
          str_(file, ".debug_str"),
          line_str_(file, ".debug_line_str"),
          str_offsets_(file, ".debug_str_offsets"),
          addr_(file, ".debug_addr") {}

    std::vector<DW_FUNCTION> run();
    const std::vector<unsigned>& languages() const { return languages_; }

  private:
    void read_unit(DW_READER& r);
    VALUE read_value(DW_READER& r, unsigned form, int64_t constant);
    void note(SUBPROGRAM& entry, unsigned attr, const VALUE& value);
    SUBPROGRAM completed(SUBPROGRAM entry) const;
    const ABBREVS& abbrevs_at(size_t offset);

    DW_DATA info_, abbrev_, str_, line_str_, str_offsets_, addr_;
    ABBREVS abbrevs_;
    size_t abbrevs_offset_ = ~size_t{0};
    std::vector<SUBPROGRAM> found_; // by offset
    std::vector<unsigned> languages_;
    size_t unit_ = 0; // where the unit begins
    uint64_t str_offsets_base_ = 8, addr_base_ = 8;
};

const ABBREVS& INFO_READER::abbrevs_at(size_t offset) {
    if (offset != abbrevs_offset_) abbrevs_ = read_abbrevs(abbrev_, offset);
    abbrevs_offset_ = offset;
    return abbrevs_;
}

VALUE INFO_READER::read_value(DW_READER& r, unsigned form, int64_t constant) {
    if (form == DW_FORM_implicit_const) return {FIXED, static_cast<uint64_t>(constant), {}, {}};
    VALUE v;
    if (form >= std::size(FORMS)) {
        r.skip(~uint64_t{0});
        return v;
    }
    const KIND kind = FORMS[form].kind; // no structured binding: clang 14 captures none
    const unsigned size = FORMS[form].size;
    v.kind = kind;
    auto index = [&] { return size == 0 ? r.uleb() : r.number(size); };
    switch (kind) {
    case UNKNOWN:
        r.skip(~uint64_t{0}); // of unknown length: nothing after it can be read
        break;
    case FIXED:
        size <= 8 ? void(v.number = r.number(size)) : r.skip(size);
        break;
    case ADDRESS:
        v.address = r.address();
        break;
    case TEXT:
        v.text = r.text();
        break;
    case STRP:
        v.text = str_.text_at(r.offset());
        break;
    case LINE_STRP:
        v.text = line_str_.text_at(r.offset());
        break;
    case STRX:
        v.text = str_.text_at(str_offsets_.address_at(str_offsets_base_ + 4 * index()).value);
        break;
    case ADDRX:
        v.address = addr_.address_at(addr_base_ + 4 * index());
        v.kind = ADDRESS;
        break;
    case REF:
        v.number = unit_ + index();
        break;
    case REF_ADDR:
        v.number = r.offset();
        v.kind = REF;
        break;
    case BLOCK:
        r.skip(index());
        break;
    case ULEB:
        v.number = r.uleb();
        v.kind = FIXED;
        break;
    case SLEB:
        v.number = static_cast<uint64_t>(r.sleb());
        v.kind = FIXED;
        break;
    case NOTHING:
        v.number = 1;
        break;
    case INDIRECT: {
        uint64_t actual = r.uleb();
        bool nested = actual >= std::size(FORMS) || FORMS[actual].kind == INDIRECT;
        return read_value(r, nested ? 0 : static_cast<unsigned>(actual), 0);
    }
    }
    return v;
}

void INFO_READER::note(SUBPROGRAM& entry, unsigned attr, const VALUE& value) {
    switch (attr) {
    case DW_AT_name:
        entry.name = value.text;
        break;
    case DW_AT_low_pc:
        entry.low = value.address;
        break;
    case DW_AT_high_pc: // an address, or a length
        entry.length = value.kind == ADDRESS ? value.address.value - entry.low.value : value.number;
        break;
    case DW_AT_specification:
    case DW_AT_abstract_origin:
        if (value.kind == REF) entry.origin = static_cast<size_t>(value.number);
        break;
    case DW_AT_external:
        entry.external = value.number != 0;
        break;
    case DW_AT_linkage_name:
        entry.linkage_name = value.text;
        break;
    case DW_AT_QV_symbol_name:
        entry.symbol_name = value.text;
        break;
    case DW_AT_QV_asm:
        entry.assembly = value.number != 0;
        break;
    default:
        break;
    }
}

void INFO_READER::read_unit(DW_READER& r) {
    unsigned version = r.u16();
    if (version < 2 || version > 5) return;
    unsigned type = version >= 5 ? r.u8() : DW_UT_compile;
    unsigned address_size = version >= 5 ? r.u8() : 4;
    const ABBREVS& abbrevs = abbrevs_at(r.offset());
    if (version < 5) address_size = r.u8();
    if (address_size != 4 || (type != DW_UT_compile && type != DW_UT_partial)) return;
    str_offsets_base_ = addr_base_ = 8;
    while (!r.at_end()) {
        SUBPROGRAM entry;
        entry.offset = r.pos();
        uint64_t code = r.uleb();
        if (code == 0) continue;
        auto abbrev = abbrevs.find(code);
        if (abbrev == abbrevs.end()) return;
        for (const ATTR_SPEC& spec : abbrev->second.attrs) {
            VALUE value = read_value(r, spec.form, spec.constant);
            if (spec.id == DW_AT_str_offsets_base) str_offsets_base_ = value.number;
            if (spec.id == DW_AT_addr_base) addr_base_ = value.number;
            if (abbrev->second.tag == DW_TAG_subprogram) note(entry, spec.id, value);
            if (abbrev->second.tag == DW_TAG_compile_unit && spec.id == DW_AT_language && r.ok())
                languages_.push_back(static_cast<unsigned>(value.number));
        }
        if (r.ok() && abbrev->second.tag == DW_TAG_subprogram) found_.push_back(entry);
    }
}

/// Takes from the declaration or the abstract instance what the entry leaves to it.
SUBPROGRAM INFO_READER::completed(SUBPROGRAM entry) const {
    auto take = [](std::string_view& to, std::string_view from) {
        if (to.empty()) to = from;
    };
    for (unsigned steps = 0; entry.origin != 0 && steps < 4; ++steps) {
        auto next = std::lower_bound(found_.begin(), found_.end(), entry.origin,
                                     [](const SUBPROGRAM& s, size_t o) { return s.offset < o; });
        if (next == found_.end() || next->offset != entry.origin) break;
        take(entry.name, next->name);
        take(entry.symbol_name, next->symbol_name);
        take(entry.linkage_name, next->linkage_name);
        entry.external |= next->external;
        entry.origin = next->origin;
    }
    take(entry.symbol_name, entry.linkage_name);
    take(entry.symbol_name, entry.name);
    return entry;
}

std::vector<DW_FUNCTION> INFO_READER::run() {
    for (DW_READER units(info_, 0, info_.size()); !units.at_end();) {
        unit_ = units.pos();
        uint32_t length = units.u32();
        size_t begin = units.pos();
        if (length > units.end() - begin) break; // damaged, or of the 64-bit format
        DW_READER unit(info_, begin, begin + length);
        read_unit(unit);
        units.skip(length);
    }
    std::vector<DW_FUNCTION> functions;
    for (const SUBPROGRAM& own : found_) {
        const SUBPROGRAM entry = completed(own);
        uint64_t high = entry.low.value + entry.length;
        if (entry.low.section_id == DW_ADDRESS::NO_SECTION || entry.name.empty() ||
            high > UINT32_MAX)
            continue;
        functions.push_back({entry.low.section_id, entry.low.value, static_cast<uint32_t>(high),
                             entry.name, entry.assembly, entry.symbol_name, entry.external});
    }
    return functions;
}

} // namespace

std::vector<DW_FUNCTION> read_dw_functions(OFE::OBJECT_FILE* file) {
    return INFO_READER(file).run();
}

std::vector<unsigned> read_dw_languages(OFE::OBJECT_FILE* file) {
    INFO_READER reader(file);
    reader.run();
    return reader.languages();
}

DW_SOURCE_MAP::DW_SOURCE_MAP(OFE::OBJECT_FILE* file)
    : lines_(read_dw_lines(DW_DATA(file, ".debug_line"), DW_DATA(file, ".debug_str"),
                           DW_DATA(file, ".debug_line_str"))),
      functions_(read_dw_functions(file)) {}

const DW_LINE* DW_SOURCE_MAP::line_at(unsigned section_id, uint32_t offset) const {
    auto after = std::upper_bound(
        lines_.rows.begin(), lines_.rows.end(), std::pair(section_id, offset),
        [](auto at, const DW_LINE& row) { return at < std::pair(row.section_id, row.offset); });
    if (after == lines_.rows.begin()) return nullptr;
    auto row = std::prev(after); // of several at one address the last: the others cover nothing
    return row->section_id == section_id && row->line != 0 ? &*row : nullptr;
}

const DW_FUNCTION* DW_SOURCE_MAP::function_at(unsigned section_id, uint32_t offset) const {
    const DW_FUNCTION* best = nullptr;
    for (const DW_FUNCTION& f : functions_)
        if (f.section_id == section_id && f.low <= offset && offset < f.high &&
            (!best || f.high - f.low < best->high - best->low))
            best = &f;
    return best;
}

} // namespace DWE
