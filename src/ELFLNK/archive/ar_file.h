// AR_FILE: a Unix archive, read in place.
//
// An archive is the magic and a sequence of members, each with a 60-byte text header at an even
// offset. Two members are special: "/" is the symbol directory, and the long-name table is "//" (a
// member's name field is "/" and an offset) or
// "<filenames>/" (the name field holds the name's start and the owner id the offset). Nothing is
// read that isn't asked for: the symbol directory is a view into the archive, and the member list
// is made by create_toc(). All offsets and sizes are checked against the archive's bytes; faults go
// to a handler, so that the reader can be run on any bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class AR_FILE;
class FHM_FILE;

/// The kind of long-name table.
enum AR_ABI { AR_ABI_UNKNOWN = 0, AR_ABI_NONE = 1, AR_ABI_FILENAMES = 2, AR_ABI_SLASHES = 3 };

enum AR_ERROR_CODE {
    AR_NO_ERROR = 0,
    AR_BAD_ARCHIVE, ///< not an archive, or one of a kind that is refused
    AR_BAD_HEADER,  ///< a member header is cut short or corrupt
    AR_BAD_NAME,    ///< a long name that the table doesn't have
    AR_BAD_SYMTAB   ///< the symbol directory is cut short or corrupt
};

using AR_ERROR_HANDLER = void (*)(AR_FILE*, AR_ERROR_CODE, const char*);

/// A member. Its name is a view into the archive.
struct AR_MEMBER {
    std::string_view name; ///< after long-name resolution
    int64_t date = 0;
    uint64_t size = 0;          ///< bytes of contents
    uint64_t offset = 0;        ///< file offset of the contents
    uint64_t header_offset = 0; ///< file offset of the header: offset less 60
};

/// An entry of the symbol directory.
struct AR_SYMBOL {
    std::string_view name;
    uint32_t header_offset; ///< file offset of the header of the member that defines the symbol
    uint32_t name_id =
        0; ///< a slot for whoever interns the name: it is looked up once, not per pass
};

class AR_FILE {
  public:
    static constexpr size_t HEADER_SIZE = 60;
    static constexpr size_t MAGIC_SIZE = 8;

    /// Over bytes that outlive the object. `name` is copied.
    AR_FILE(const char* name, std::span<const uint8_t> bytes, AR_ERROR_HANDLER handler);
    /// Over a file's contents.
    AR_FILE(const char* name, FHM_FILE* file, AR_ERROR_HANDLER handler);
    AR_FILE(const AR_FILE&) = delete;

    const char* name() const { return name_.c_str(); }
    std::span<const uint8_t> bytes() const { return bytes_; }

    /// True if the bytes begin with an archive's magic; of a thin archive too, which read_headers()
    /// refuses.
    bool is_archive() const { return is_archive(bytes_); }
    static bool is_archive(std::span<const uint8_t> bytes);
    /// Reads the special members; with `with_symbols` the directory too. False after an error.
    bool read_headers(bool with_symbols);
    /// Reads all member headers. False after an error; the members up to there are kept.
    bool create_toc();

    AR_ABI abi() const { return abi_; }
    bool has_symbol_directory() const { return has_directory_; }
    /// The symbol directory, in its order; valid as long as the archive's bytes.
    std::vector<AR_SYMBOL>& symbols() { return symbols_; }
    /// The members in file order, special ones left out (create_toc()).
    const std::vector<AR_MEMBER>& members() const { return members_; }
    /// The first member of that name, or null (create_toc()).
    const AR_MEMBER* find_member(std::string_view name) const;
    /// The member whose header starts at that file offset, or null (create_toc()).
    const AR_MEMBER* member_at(uint64_t header_offset) const;
    /// The same by value; false if there is none.
    bool member_at(uint64_t header_offset, AR_MEMBER& member) const;
    /// A member's contents.
    std::span<const uint8_t> contents(const AR_MEMBER& member) const;

  private:
    enum SPECIAL { ORDINARY, SYMBOL_DIRECTORY, NAMES_FILENAMES, NAMES_SLASHES };
    enum READ { READ_OK, READ_END, READ_BAD };
    struct HEADER {
        AR_MEMBER member;
        SPECIAL special = ORDINARY;
        uint64_t owner = 0;
    };
    READ read_member_header(uint64_t offset, HEADER& header);
    bool fix_member_name(HEADER& header, std::string_view field);
    bool long_name(uint64_t offset, std::string_view& name) const;
    bool read_symbol_table(const AR_MEMBER& member);
    uint64_t next_header(const AR_MEMBER& member) const {
        return member.offset + member.size + (member.size & 1);
    }
    [[gnu::format(printf, 3, 4)]] bool error(AR_ERROR_CODE code, const char* format, ...);

    std::string name_;
    std::span<const uint8_t> bytes_;
    AR_ERROR_HANDLER handler_;
    AR_ABI abi_ = AR_ABI_UNKNOWN;
    uint64_t first_member_ = 0;
    bool has_directory_ = false;
    std::string_view long_names_;
    std::vector<AR_SYMBOL> symbols_;
    std::vector<AR_MEMBER> members_;
};
