// Reading an archive: headers, long names, the symbol directory.
#include "ELFLNK/archive/ar_file.h"

#include "OBJEDIT04/ofe/object_file.h"
#include "UTIL/file_handle_manager.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

constexpr std::string_view MAGIC = "!<arch>\n";
constexpr std::string_view THIN_MAGIC = "!<thin>\n";
constexpr std::string_view END_MARK = "`\n";
constexpr size_t MESSAGE_SIZE = 4096;
constexpr size_t SHORT_NAME_SIZE = 15;

// The fields of a member header.
constexpr size_t NAME_AT = 0, NAME_SIZE = 16;
constexpr size_t DATE_AT = 16, DATE_SIZE = 12;
constexpr size_t OWNER_AT = 28, OWNER_SIZE = 6;
constexpr size_t SIZE_AT = 48, SIZE_SIZE = 10;
constexpr size_t MARK_AT = 58;

std::string_view without_trailing_spaces(std::string_view text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

/// A decimal field, padded with spaces; false if it holds anything else or nothing.
bool decimal(std::string_view field, uint64_t& value) {
    field = without_trailing_spaces(field);
    field.remove_prefix(std::min(field.find_first_not_of(' '), field.size()));
    if (field.empty()) return false;
    value = 0;
    for (const char c : field) {
        if (c < '0' || c > '9') return false;
        value = value * 10 + uint64_t(c - '0'); // 12 digits at most
    }
    return true;
}

uint32_t big_endian(const uint8_t* at) {
    return uint32_t(at[0]) << 24 | uint32_t(at[1]) << 16 | uint32_t(at[2]) << 8 | at[3];
}

} // namespace

AR_FILE::AR_FILE(const char* name, std::span<const uint8_t> bytes, AR_ERROR_HANDLER handler)
    : name_(name), bytes_(bytes), handler_(handler) {}

AR_FILE::AR_FILE(const char* name, FHM_FILE* file, AR_ERROR_HANDLER handler)
    : AR_FILE(name, file->contents(), handler) {}

bool AR_FILE::error(AR_ERROR_CODE code, const char* format, ...) {
    static char message[MESSAGE_SIZE];
    va_list args;
    va_start(args, format);
    vsnprintf(message, sizeof message, format, args);
    va_end(args);
    if (handler_ != nullptr) handler_(this, code, message);
    return false;
}

bool AR_FILE::is_archive(std::span<const uint8_t> bytes) {
    const std::string_view start(reinterpret_cast<const char*>(bytes.data()),
                                 std::min(bytes.size(), MAGIC_SIZE));
    return start == MAGIC || start == THIN_MAGIC;
}

bool AR_FILE::read_headers(bool with_symbols) {
    if (!is_archive()) return error(AR_BAD_ARCHIVE, "Not an archive: '%s'", name());
    if (bytes_[2] == uint8_t(THIN_MAGIC[2]))
        return error(AR_BAD_ARCHIVE,
                     "'%s' is a thin archive, which names its members but does not hold them; "
                     "make it again without thin mode",
                     name());
    first_member_ = MAGIC_SIZE;
    abi_ = AR_ABI_NONE;
    HEADER header;
    READ read = read_member_header(first_member_, header);
    if (read == READ_OK && header.special == SYMBOL_DIRECTORY) {
        has_directory_ = true;
        if (with_symbols && !read_symbol_table(header.member)) return false;
        first_member_ = next_header(header.member);
        read = read_member_header(first_member_, header);
    }
    if (read == READ_OK && (header.special == NAMES_FILENAMES || header.special == NAMES_SLASHES)) {
        abi_ = header.special == NAMES_SLASHES ? AR_ABI_SLASHES : AR_ABI_FILENAMES;
        const std::span<const uint8_t> table = contents(header.member);
        long_names_ = {reinterpret_cast<const char*>(table.data()), table.size()};
        first_member_ = next_header(header.member);
        return true;
    }
    return read != READ_BAD;
}

AR_FILE::READ AR_FILE::read_member_header(uint64_t offset, HEADER& header) {
    header = HEADER();
    if (offset >= bytes_.size()) return READ_END;
    if (bytes_.size() - offset < HEADER_SIZE) {
        // A padding byte behind the last member is no header.
        const std::span<const uint8_t> rest = bytes_.subspan(offset);
        if (std::all_of(rest.begin(), rest.end(), [](uint8_t c) { return c == '\n' || c == 0; }))
            return READ_END;
        error(AR_BAD_HEADER, "Cannot read member header: '%s'", name());
        return READ_BAD;
    }
    const std::string_view text(reinterpret_cast<const char*>(bytes_.data()) + offset, HEADER_SIZE);
    AR_MEMBER& member = header.member;
    member.header_offset = offset;
    member.offset = offset + HEADER_SIZE;
    uint64_t size = 0;
    const bool well_formed = text.substr(MARK_AT) == END_MARK &&
                             decimal(text.substr(SIZE_AT, SIZE_SIZE), size) &&
                             size <= bytes_.size() - member.offset;
    member.size = size;
    uint64_t date = 0;
    const bool dated = decimal(text.substr(DATE_AT, DATE_SIZE), date);
    const bool owned = decimal(text.substr(OWNER_AT, OWNER_SIZE), header.owner);
    member.date = int64_t(date);
    const bool named = well_formed && fix_member_name(header, text.substr(NAME_AT, NAME_SIZE));
    if (!well_formed || (header.special == ORDINARY && (!dated || !owned))) {
        error(AR_BAD_HEADER, "Corrupt member header: '%s'", name());
        return READ_BAD;
    }
    return named ? READ_OK : READ_BAD;
}

/// Finds a member's name, from its header alone or in the long-name table.
bool AR_FILE::fix_member_name(HEADER& header, std::string_view field) {
    std::string_view name = without_trailing_spaces(field);
    if (name == "/") header.special = SYMBOL_DIRECTORY;
    if (name == "<filenames>/") header.special = NAMES_FILENAMES;
    if (name == "//") header.special = NAMES_SLASHES;
    header.member.name = name;
    if (header.special != ORDINARY) return true;
    uint64_t offset = 0;
    if (abi_ == AR_ABI_SLASHES && name.size() > 1 && name[0] == '/' &&
        decimal(name.substr(1), offset)) {
        if (long_name(offset, header.member.name)) return true;
        return error(AR_BAD_NAME, "Corrupt member name: '%.*s'", int(name.size()), name.data());
    }
    if (name.ends_with('/')) name.remove_suffix(1);
    header.member.name = name;
    if (abi_ == AR_ABI_FILENAMES && header.owner != 0) {
        if (long_name(header.owner, header.member.name) &&
            header.member.name.substr(0, SHORT_NAME_SIZE) == name.substr(0, SHORT_NAME_SIZE))
            return true;
        header.member.name = name;
        return error(AR_BAD_NAME, "Corrupt member name: '%.*s'", int(name.size()), name.data());
    }
    return true;
}

/// The name that starts at an offset of the long-name table and ends at a slash or line end.
bool AR_FILE::long_name(uint64_t offset, std::string_view& name) const {
    if (offset >= long_names_.size()) return false;
    const std::string_view rest = long_names_.substr(offset);
    name = rest.substr(0, rest.find_first_of(std::string_view("/\n\0", 3)));
    return true;
}

bool AR_FILE::read_symbol_table(const AR_MEMBER& member) {
    const std::span<const uint8_t> data = contents(member);
    constexpr size_t WORD = 4;
    if (data.size() < WORD) return error(AR_BAD_SYMTAB, "Cannot read symbol table: '%s'", name());
    const size_t count = big_endian(data.data());
    // Every entry takes an offset and at least the zero that ends its name.
    if (count > (data.size() - WORD) / (WORD + 1))
        return error(AR_BAD_SYMTAB, "Cannot read symbol table: '%s'", name());
    const uint8_t* offsets = data.data() + WORD;
    std::string_view names(reinterpret_cast<const char*>(offsets) + count * WORD,
                           data.size() - WORD - count * WORD);
    symbols_.reserve(count);
    for (size_t i = 0; i < count; i++) {
        const size_t end = names.find('\0');
        if (end == names.npos)
            return error(AR_BAD_SYMTAB, "Cannot read symbol table: '%s'", name());
        symbols_.push_back({names.substr(0, end), big_endian(offsets + i * WORD)});
        names.remove_prefix(end + 1);
    }
    return true;
}

bool AR_FILE::create_toc() {
    members_.clear();
    HEADER header;
    READ read = READ_END;
    for (uint64_t offset = first_member_ == 0 ? MAGIC_SIZE : first_member_;
         (read = read_member_header(offset, header)) == READ_OK;
         offset = next_header(header.member))
        if (header.special == ORDINARY) members_.push_back(header.member);
    return read == READ_END;
}

const AR_MEMBER* AR_FILE::find_member(std::string_view name) const {
    for (const AR_MEMBER& member : members_)
        if (member.name == name) return &member;
    return nullptr;
}

const AR_MEMBER* AR_FILE::member_at(uint64_t header_offset) const {
    // Members were read in the order of their offsets.
    const auto found = std::lower_bound(
        members_.begin(), members_.end(), header_offset,
        [](const AR_MEMBER& member, uint64_t offset) { return member.header_offset < offset; });
    return found != members_.end() && found->header_offset == header_offset ? &*found : nullptr;
}

bool AR_FILE::member_at(uint64_t header_offset, AR_MEMBER& member) const {
    const AR_MEMBER* found = member_at(header_offset);
    if (found != nullptr) member = *found;
    return found != nullptr;
}

std::span<const uint8_t> AR_FILE::contents(const AR_MEMBER& member) const {
    if (member.offset > bytes_.size() || member.size > bytes_.size() - member.offset) return {};
    return bytes_.subspan(member.offset, member.size);
}

OFE::OF_FILE_HANDLE AR_FILE::open_member(const AR_MEMBER& member) const {
    const std::span<const uint8_t> data = contents(member);
    OFE::OF_FILE_HANDLE handle;
    handle.bytes = data.data();
    handle.size = data.size() <= UINT32_MAX ? static_cast<unsigned>(data.size()) : 0;
    handle.name = name();
    if (handle.size != 0) OFE::determine_file_properties(handle);
    return handle;
}

OFE::OF_FORMAT AR_FILE::member_format(const AR_MEMBER& member) const {
    const OFE::OF_FILE_HANDLE handle = open_member(member);
    return handle.size != 0 ? handle.format : OFE::OF_FORMAT_UNKNOWN;
}
