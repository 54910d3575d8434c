// FILE_MANAGER: every file of the link.
//
// It owns the search path, the inputs in the order given, the scan items that the load phase walks,
// the object files in the order in which they were registered, and the output and internal object
// files. A name on the command line or in a command file becomes an identified input of the right
// class; a command file runs as soon as it is met, so that what it adds takes its place at the
// point where the file was named.
#pragma once

#include "ELFLNK/archive/ar_file.h"
#include "OBJEDIT04/ofe/of_types.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

class ARCHIVE_FILE;
class AR_GROUP_SCAN_ITEM;
class COMMAND_FILE;
class INPUT_FILE;
class OBJ_FILE;
class SCAN_ITEM;
class SOURCE_POSITION;
namespace OFE {
class OBJECT_FILE;
}

class FILE_MANAGER {
  public:
    FILE_MANAGER();
    ~FILE_MANAGER();
    FILE_MANAGER(const FILE_MANAGER&) = delete;

    /// Takes the search directories from the environment.
    void init();
    void set_default_ext(const char* extension) { default_ext_ = extension; }

    // The search path.
    /// A directory of the environment: behind all others.
    void add_env_dir(const char* dir);
    /// A directory of --search_path: behind its like, in front of those of the environment.
    void add_default_dir(const char* dir);
    const std::vector<std::string>& search_dirs() const { return search_dirs_; }

    // Names to files.
    /// Finds and processes a name or a pattern; `search`: in the search path, `in_front`: ahead of
    /// all other inputs.
    void add_file(const char* name, const SOURCE_POSITION* position, bool search, bool in_front);
    /// Identifies a found file and acts on it. The file it is in the link (which may have been
    /// there), or null.
    INPUT_FILE* process_file(const char* name, const SOURCE_POSITION* position, bool in_front);
    INPUT_FILE* process_file(INPUT_FILE* file, bool in_front);
    /// The path of a name, or null; `build`: a missing library may be built. The result lives to
    /// the end.
    const char* find_specific_file(const char* name, bool search, bool build);
    /// Appends the paths that match a pattern, in directory order; `search`: in the search path
    /// too.
    void find_matching_files(const char* pattern, std::vector<std::string>& list, bool search);
    /// The path of a file that another file names: next to `from` first, then in the search path;
    /// or null.
    const char* find_include_file(const char* name, const char* from, bool search);

    // The lists.
    void add_input_file(INPUT_FILE* file, bool in_front);
    void add_scan_item(SCAN_ITEM* item, bool in_front);
    void register_object_file(OBJ_FILE* file, bool in_front);
    void unregister_object_file(OBJ_FILE* file);
    const std::vector<SCAN_ITEM*>& scan_items() const { return scan_items_; }
    const std::vector<INPUT_FILE*>& input_files() const { return input_files_; }
    const std::vector<OBJ_FILE*>& object_files() const { return object_files_; }

    // The files that the linker makes.
    /// Creates the output and the internal file after the first object file of the link.
    void create_linker_files(OBJ_FILE* first);
    OBJ_FILE* output_file() const { return output_file_; }
    OBJ_FILE* internal_file() const { return internal_file_; }
    /// The first object file, which the output was modelled on.
    OBJ_FILE* baseline_file() const { return baseline_file_; }

    // Groups of archives.
    void start_archive_group();
    void end_archive_group();
    bool is_parsing_archive_group() const { return open_group_ != nullptr; }

    // Lookups.
    /// The input at that path: the same name, or the same file on disk.
    INPUT_FILE* lookup_file_by_name(const char* path);
    /// The first input whose base name this is.
    INPUT_FILE* lookup_file_by_basename(const char* name);
    /// Appends the object files whose base name this is, in the order of registration.
    void find_obj_files_by_basename(const char* name, std::vector<OBJ_FILE*>& list);
    /// The object file of that unique name, path or base name.
    OBJ_FILE* lookup_object_by_name(const char* name);
    OBJ_FILE* lookup_OF_FILE(const OFE::OBJECT_FILE* object) const;
    /// True if the file at that path is read by this link: an input or a command file.
    bool is_read(const char* path) const;
    /// How many object files were registered with this base name.
    unsigned basename_count(const char* base_name) const;

    /// Prints search path and inputs on standard output.
    void dump() const;

  private:
    void create_output_file(OFE::OBJECT_FILE* model);
    void create_internal_file(OFE::OBJECT_FILE* model);
    const char* try_path(const std::string& path, bool may_extend) const;
    const std::vector<std::string>& directory_list(const std::string& dir);
    void find_matching_files_in_dir(const std::string& dir, const char* pattern,
                                    std::vector<std::string>& list);
    INPUT_FILE* find_same_file(INPUT_FILE* file) const;
    INPUT_FILE* process_object(INPUT_FILE* file, bool in_front);
    INPUT_FILE* process_archive(INPUT_FILE* file, bool in_front);

    struct FILE_KEY {
        uint64_t device;
        uint64_t inode;
        bool operator==(const FILE_KEY&) const = default;
    };
    struct FILE_KEY_HASH {
        size_t operator()(const FILE_KEY& key) const;
    };

    std::string default_ext_;
    std::vector<std::string> search_dirs_;
    size_t first_env_dir_ = 0;
    std::vector<SCAN_ITEM*> scan_items_;
    std::vector<INPUT_FILE*> input_files_;
    std::vector<OBJ_FILE*> object_files_;
    OBJ_FILE* internal_file_ = nullptr;
    OBJ_FILE* output_file_ = nullptr;
    OBJ_FILE* baseline_file_ = nullptr;
    AR_GROUP_SCAN_ITEM* open_group_ = nullptr;
    std::unordered_map<const OFE::OBJECT_FILE*, OBJ_FILE*> object_map_;
    std::unordered_map<FILE_KEY, INPUT_FILE*, FILE_KEY_HASH> files_on_disk_;
    std::vector<FILE_KEY> command_files_on_disk_;
    std::unordered_map<std::string_view, INPUT_FILE*> inputs_by_name_;
    std::unordered_map<std::string_view, INPUT_FILE*> inputs_by_basename_; ///< the first of each
    std::unordered_map<std::string_view, std::vector<OBJ_FILE*>> by_basename_;
    std::unordered_map<std::string, std::vector<std::string>> directories_;
};

extern FILE_MANAGER file_manager;

/// The OFE object of the output file; null before the first object was scanned.
OFE::OBJECT_FILE* output_OF_FILE();
/// A new object file in the model's format, stamped with the build time and the linker's name and
/// version.
OFE::OBJECT_FILE* new_linker_generated_file(const char* name, OFE::OF_FILE_TYPE type,
                                            OFE::OBJECT_FILE* model);
/// The time of this link, in seconds since 1970: one value for all that is stamped.
long build_time();
/// Turns what an object file finds wrong into messages of the link.
void ofile_error_handler(OFE::OBJECT_FILE* object, OFE::OF_ERROR_CODE code, const char* text);
/// The same for archives.
void ar_error_handler(AR_FILE* archive, AR_ERROR_CODE code, const char* text);
