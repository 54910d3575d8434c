// OBJ_FILE: an object file of the link, given by itself or loaded from an archive.
#pragma once

#include "ELFLNK/file/input_file.h"

#include <string_view>

namespace OFE {
class OBJECT_FILE;
}

class OBJ_FILE : public INPUT_FILE {
  public:
    /// Takes over what `file` holds; `object` is owned from now on.
    OBJ_FILE(const INPUT_FILE& file, OFE::OBJECT_FILE* object);
    /// A file that the linker makes itself.
    OBJ_FILE(const char* name, OFE::OBJECT_FILE* object);
    ~OBJ_FILE() override;

    bool is_object_file() const override { return true; }
    virtual bool has_dynamic_linkage() const;
    virtual bool is_shared_object_file() const;
    virtual bool is_exe_object_file() const;
    /// True if the file's sections are copied into the output, false if it is only bound to at run
    /// time.
    bool is_static_linking_object() const;
    /// True for the output file or the file of the objects that the linker makes.
    bool is_linker_generated() const { return linker_generated_; }

    OFE::OBJECT_FILE* object_file() const { return object_; }
    /// The archive that the file is a member of, or null, and the member's name there, or null.
    ARCHIVE_FILE* archive() const { return archive_; }
    const char* member_name() const { return member_name_; }
    void set_archive_member(ARCHIVE_FILE* archive, std::string_view member_name);

    /// The name by which the file is known by itself: a member's name, else the path.
    const char* file_name() const { return member_name_ != nullptr ? member_name_ : name(); }
    /// The base name of file_name(), by which files are compared.
    const char* base_name() const { return base_name_; }
    /// The name in reports: the base name, or the full path where two files share a base name.
    const char* unique_name() const;
    void set_unique_name();

  private:
    friend class FILE_MANAGER;
    OFE::OBJECT_FILE* object_;
    ARCHIVE_FILE* archive_ = nullptr;
    const char* member_name_ = nullptr;
    const char* base_name_;
    const char* unique_name_ = nullptr;
    bool linker_generated_ = false;
};
