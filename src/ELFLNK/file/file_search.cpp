// From names to paths: the search path, the default extension, patterns, libraries that are built
// on demand.
#include "ELFLNK/file/file_manager.h"

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/file/hints.h"
#include "ELFLNK/filter/filter.h"
#include "UTIL/filename.h"
#include "UTIL/runcmd.h"
#include "UTIL/savestr.h"

#include <algorithm>
#include <dirent.h>
#include <sys/stat.h>

namespace {

bool exists(const char* path) {
    struct stat info;
    return stat(path, &info) == 0 && !S_ISDIR(info.st_mode);
}

/// Only a name without a directory is looked for in the search path.
bool is_searchable(std::string_view name) {
    return name.find('/') == name.npos;
}

/// Has the library's directory a tool that builds it? Does it.
bool build_library(const char* path) {
    if (!fn_is_absolute(path) || exists(path)) return false;
    std::string dir;
    std::string name;
    fn_split(path, dir, name);
    const std::string tool = fn_build(dir, "mklib");
    argv_list query(tool.c_str());
    query.addf("--query=%s", name.c_str());
    if (query.execute(false) != 0) return false;
    DIAG_REPORT(elnk_executing_mklib, "automatic library build: ", path);
    argv_list build(tool.c_str());
    build.add("--quiet");
    build.addf("--pattern=%s", name.c_str());
    if (run_search_path() != nullptr) build.addf("--compiler_bin_dir=%s", run_search_path());
    return build.execute(true) == 0 && exists(path);
}

} // namespace

void FILE_MANAGER::add_env_dir(const char* dir) {
    search_dirs_.emplace_back(dir);
}

void FILE_MANAGER::add_default_dir(const char* dir) {
    search_dirs_.insert(search_dirs_.begin() + std::ptrdiff_t(first_env_dir_), dir);
    first_env_dir_++;
}

void FILE_MANAGER::add_file(const char* name, const SOURCE_POSITION* position, bool search,
                            bool in_front) {
    if (name == nullptr || name[0] == '\0') return;
    if (FILTER::has_wildcards(name)) {
        std::vector<std::string> paths;
        find_matching_files(name, paths, search);
        if (paths.empty()) DIAG_REPORT_AT(position, elnk_pattern_match_failed, name);
        for (const std::string& path : paths) process_file(path.c_str(), position, in_front);
        return;
    }
    if (const char* path = find_specific_file(name, search, false)) {
        process_file(path, position, in_front);
        return;
    }
    DIAG::elnk_nofile missing(__FILE__, __LINE__, name);
    missing.set_src(position);
    if (DIAGNOSTIC::verbose_m) missing.set_hint(file_hint(name, search, position != nullptr));
    missing.report();
}

/// The path if there is such a file, as it stands or with the default extension.
const char* FILE_MANAGER::try_path(const std::string& path, bool may_extend) const {
    if (exists(path.c_str())) return savestr(path.c_str());
    if (!may_extend || default_ext_.empty()) return nullptr;
    const std::string extended = path + default_ext_;
    return exists(extended.c_str()) ? savestr(extended.c_str()) : nullptr;
}

const char* FILE_MANAGER::find_specific_file(const char* name, bool search, bool build) {
    if (name == nullptr || name[0] == '\0') return nullptr;
    const std::string_view text = name;
    const bool may_extend = text.find('.') == text.npos;
    const bool in_dirs = search && is_searchable(text);
    if (in_dirs) {
        for (const std::string& dir : search_dirs_)
            if (const char* path = try_path(fn_build(dir, name), may_extend)) return path;
    }
    if (const char* path = try_path(name, may_extend)) return path;
    if (!build) return nullptr;
    if (!in_dirs) return fn_is_absolute(text) && build_library(name) ? savestr(name) : nullptr;
    for (const std::string& dir : search_dirs_) {
        const std::string path = fn_build(dir, name);
        if (build_library(path.c_str())) return savestr(path.c_str());
    }
    return nullptr;
}

const char* FILE_MANAGER::find_include_file(const char* name, const char* from, bool search) {
    if (from != nullptr && !fn_is_absolute(name)) {
        std::string dir;
        std::string base;
        fn_split(from, dir, base);
        const std::string path = fn_build(dir, name);
        if (exists(path.c_str())) return savestr(path.c_str());
    }
    return find_specific_file(name, search, false);
}

void FILE_MANAGER::find_matching_files(const char* pattern, std::vector<std::string>& list,
                                       bool search) {
    if (search && is_searchable(pattern))
        for (const std::string& dir : search_dirs_) find_matching_files_in_dir(dir, pattern, list);
    find_matching_files_in_dir(".", pattern, list);
}

void FILE_MANAGER::find_matching_files_in_dir(const std::string& dir, const char* pattern,
                                              std::vector<std::string>& list) {
    // The directory part of a pattern is taken as it stands; only the name behind it is matched.
    std::string pattern_dir;
    std::string pattern_name;
    fn_split(pattern, pattern_dir, pattern_name);
    const std::string place = fn_is_absolute(pattern) ? pattern_dir
                              : pattern_dir.empty()   ? dir
                              : dir == "."            ? pattern_dir
                                                      : fn_build(dir, pattern_dir);
    const FILTER filter(pattern_name.c_str());
    for (const std::string& name : directory_list(place))
        if (filter.match(name.c_str())) list.push_back(place == "." ? name : fn_build(place, name));
}

/// The names in a directory, in directory order; read once.
const std::vector<std::string>& FILE_MANAGER::directory_list(const std::string& dir) {
    const auto [entry, is_new] = directories_.try_emplace(dir);
    if (!is_new) return entry->second;
    if (DIR* stream = opendir(dir.c_str())) {
        while (const dirent* item = readdir(stream))
            if (std::string_view(item->d_name) != "." && std::string_view(item->d_name) != "..")
                entry->second.emplace_back(item->d_name);
        closedir(stream);
    }
    return entry->second;
}
