// LIBSPEC_FILE: an index library, one name for a run-time library that comes in many builds.
//
// It is an archive with a marker member and, per build, an object without code whose build
// attributes describe that build; the member's name is the library's file name with ".libinfo"
// behind it. The first who asks for its contents makes it choose the build that fits the objects
// scanned so far; from then on it answers as the archive of that build, or as an empty one.
#pragma once

#include "ELFLNK/file/archive_file.h"

class LIBSPEC_FILE final : public ARCHIVE_FILE {
  public:
    static constexpr const char* MARKER = "__QV_$$LIBINFO";

    /// Takes over what `file` holds; the member list of `index` was read.
    LIBSPEC_FILE(const INPUT_FILE& file, std::unique_ptr<AR_FILE> index);
    ~LIBSPEC_FILE() override;

    bool is_libspec() const override { return true; }
    AR_FILE* AR_FILE_api() override;
    const std::vector<OBJ_FILE*>& loaded_members() override;
    OBJ_FILE* load_member(unsigned header_offset) override;
    OBJ_FILE* load_member(const AR_MEMBER* member) override;
    const AR_MEMBER* member(unsigned header_offset) override;
    const std::vector<AR_MEMBER>& members() override;
    OBJ_FILE* loaded_member(unsigned header_offset) override;

    /// Chooses the library and reads it; false after a message where there is none.
    bool resolve_ar();
    /// The name less a trailing ".libinfo"; lives to the end of the link. Null gives null.
    static const char* libinfo_lib(const char* name);

  private:
    ARCHIVE_FILE* resolved();
    const char* best_library(bool& examined_any);
    const char* find_library(const char* name) const;
    ARCHIVE_FILE* open_library(const char* path);
    bool leads_back_to(const INPUT_FILE* file) const;
    void make_dummy_ar();
    const char* index_name() const;

    bool tried_ = false;
    ARCHIVE_FILE* resolved_ = nullptr;
    const LIBSPEC_FILE* asked_by_ = nullptr; ///< the index library that chose this one, or null
};
