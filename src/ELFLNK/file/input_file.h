// INPUT_FILE: a named file of the link, before and after it is known what it holds.
//
// A temporary INPUT_FILE is made for a path; identify() looks at the contents and gives an object
// of the right class that takes over name, handle, position and id.
#pragma once

#include "DIAG/source_position.h"

#include <cstdint>
#include <memory>

class ARCHIVE_FILE;
class AR_FILE;
class COMMAND_FILE;
class FHM_FILE;
class OBJ_FILE;

/// What identifies a file on the disk.
struct STAT_INFO {
    bool known = false;
    uint64_t device = 0;
    uint64_t inode = 0;
};

class INPUT_FILE {
  public:
    INPUT_FILE(const char* name, const SOURCE_POSITION* position);
    /// Takes over name, handle, position and id.
    explicit INPUT_FILE(const INPUT_FILE& other) = default;
    virtual ~INPUT_FILE() = default;
    INPUT_FILE& operator=(const INPUT_FILE&) = delete;

    virtual bool is_object_file() const { return false; }
    virtual bool is_command_file() const { return false; }
    virtual bool is_archive_file() const { return false; }
    virtual bool is_libspec() const { return false; }
    /// The file as what it is; null if it is something else.
    OBJ_FILE* as_object_file();
    COMMAND_FILE* as_command_file();
    ARCHIVE_FILE* as_archive_file();

    /// The path by which the file was found; lives to the end of the process.
    const char* name() const { return name_; }
    FHM_FILE* file() const { return file_; }
    /// Where the file was asked for; its file name is empty on the command line.
    const SOURCE_POSITION* position() const { return &position_; }
    /// File ids follow the order of construction.
    unsigned file_id() const { return file_id_; }
    /// The archive that a member came from, or null.
    INPUT_FILE* owner_file() const { return owner_; }
    void set_owner_file(INPUT_FILE* owner) { owner_ = owner; }

    /// The file as an object of the right class, or null after an error.
    INPUT_FILE* identify();
    /// The object file in `size` bytes at `offset` (0, 0: the whole file) under that name, or null
    /// without a message.
    OBJ_FILE* identify_member_as_obj(uint64_t offset, uint64_t size, const char* object_name);

    void get_stat_info();
    const STAT_INFO& stat_info() const { return stat_; }
    /// True if both are known to be the same file on disk.
    bool is_same_file(const INPUT_FILE* other) const;
    /// Closes the handle; text and data that were read stay valid.
    void close();

    /// A part of a file that is open: the same handle, a new id.
    INPUT_FILE(const char* name, FHM_FILE* file, const SOURCE_POSITION* position);

  private:
    bool open();
    ARCHIVE_FILE* identify_as_ar();
    ARCHIVE_FILE* identify_as_libspec(std::unique_ptr<AR_FILE>& archive);
    COMMAND_FILE* identify_as_ascii();

    const char* name_;
    FHM_FILE* file_ = nullptr;
    SOURCE_POSITION position_;
    STAT_INFO stat_;
    unsigned file_id_;
    INPUT_FILE* owner_ = nullptr;

    static unsigned next_file_id_m;
};
