// AR_FILE: a Unix archive, read in place.
//
// An archive is the magic and a sequence of members, each with a 60-byte text header at an even
// offset. Two members are special: "/" is the symbol directory, and the long-name table is "//" (a
// member's name field is "/" and an offset) or
// "<filenames>/" (the name field holds the name's start and the owner id the offset). Nothing is
// read that isn't asked for: the symbol directory is a view into the archive, and the member list
// is made by create_toc(). All offsets and sizes are checked against the archive's bytes; faults go
// to a handler, so that the reader can be run on any bytes.
//
// The same class writes archives (ar_writer.cpp): members come and go in the list, then the whole
// archive is written anew beside what it was read from.
#pragma once

#include "OBJEDIT04/ofe/of_types.h"

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
    AR_BAD_ARCHIVE,   ///< not an archive, or one of a kind that is refused
    AR_BAD_HEADER,    ///< a member header is cut short or corrupt
    AR_BAD_NAME,      ///< a long name that the table doesn't have
    AR_BAD_SYMTAB,    ///< the symbol directory is cut short or corrupt
    AR_CANNOT_CREATE, ///< the new archive, or the copy of the old one, cannot be made
    AR_CANNOT_WRITE,  ///< writing failed
    AR_BAD_MEMBER     ///< a member cannot be read, or is too large for its header
};

using AR_ERROR_HANDLER = void (*)(AR_FILE*, AR_ERROR_CODE, const char*);

/// A member. Its name is a view into the archive.
struct AR_MEMBER {
    std::string_view name; ///< after long-name resolution
    int64_t date = 0;
    uint64_t size = 0;          ///< bytes of contents
    uint64_t offset = 0;        ///< file offset of the contents
    uint64_t header_offset = 0; ///< file offset of the header: offset less 60
    const char* file = nullptr; ///< for writing: the file on disk that replaces the contents
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
    /// A member as an object file that is not yet read; its properties are settled.
    OFE::OF_FILE_HANDLE open_member(const AR_MEMBER& member) const;
    /// The object format of a member's contents.
    OFE::OF_FORMAT member_format(const AR_MEMBER& member) const;

    // ---- writing; each is false after an error

    /// Adds a file under its base name, behind the others or in the place of the member of that
    /// name. The file is read when the archive is written.
    bool add_member(const char* path);
    bool delete_member(std::string_view name);
    /// Writes all members with a symbol directory over their global symbols; `abi` says in which
    /// form long names go. What was there before stays until the new archive is complete.
    bool write_archive(AR_ABI abi);
    /// Puts back what write_archive() found, after a failure.
    void cleanup();

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

    struct OUTPUT;
    bool open_new_ar(OUTPUT& out);
    void calc_long_names(OUTPUT& out) const;
    bool build_symbol_table(OUTPUT& out);
    bool write_symbol_table(OUTPUT& out);
    bool write_name_table(OUTPUT& out);
    bool write_member(OUTPUT& out, size_t index);
    bool write_header(OUTPUT& out, const char* name, int64_t date, uint64_t owner, uint64_t size);
    bool copy_file(OUTPUT& out, std::span<const uint8_t> contents);

    std::string name_;
    std::span<const uint8_t> bytes_;
    AR_ERROR_HANDLER handler_;
    AR_ABI abi_ = AR_ABI_UNKNOWN;
    uint64_t first_member_ = 0;
    bool has_directory_ = false;
    std::string_view long_names_;
    std::vector<AR_SYMBOL> symbols_;
    std::vector<AR_MEMBER> members_;
    std::string temporary_; ///< where the old archive went while the new one is written
    bool writing_ = false;  ///< a new archive stands there that is not complete
};
