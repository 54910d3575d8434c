// The lists of files: what comes in, in which order, and how it is found again.
#include "ELFLNK/file/file_manager.h"

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/command/command.h"
#include "ELFLNK/file/archive_file.h"
#include "ELFLNK/file/command_file.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/file/scan_item.h"
#include "ELFLNK/target/target.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/filename.h"
#include "UTIL/hash.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>

FILE_MANAGER::FILE_MANAGER() = default;
FILE_MANAGER::~FILE_MANAGER() = default;

size_t FILE_MANAGER::FILE_KEY_HASH::operator()(const FILE_KEY& key) const {
    return hash_mix(hash64(key.device), key.inode + 1);
}

void FILE_MANAGER::init() {
    Target->setup_env_paths();
    first_env_dir_ = 0;
    default_ext_ = ".obj";
}

INPUT_FILE* FILE_MANAGER::process_file(const char* name, const SOURCE_POSITION* position,
                                       bool in_front) {
    INPUT_FILE named(name, position);
    return process_file(named.identify(), in_front);
}

INPUT_FILE* FILE_MANAGER::process_file(INPUT_FILE* file, bool in_front) {
    if (file == nullptr) return nullptr;
    if (is_parsing_archive_group() && !file->is_archive_file()) {
        DIAG_REPORT_AT(file->position(), elnk_non_archive_in_group_archive);
        return nullptr;
    }
    if (file->is_object_file()) return process_object(file, in_front);
    if (file->is_archive_file()) return process_archive(file, in_front);
    if (COMMAND_FILE* command_file = file->as_command_file()) {
        file->get_stat_info();
        command_files_on_disk_.push_back({file->stat_info().device, file->stat_info().inode});
        cmdfile_command(command_file);
        return file;
    }
    file->close();
    return file;
}

/// An object that is in the link already adds nothing.
INPUT_FILE* FILE_MANAGER::process_object(INPUT_FILE* file, bool in_front) {
    if (INPUT_FILE* same = find_same_file(file)) {
        file->close();
        delete file;
        return same;
    }
    add_input_file(file, in_front);
    add_scan_item(new OBJ_SCAN_ITEM(file->as_object_file()), in_front);
    return file;
}

/// An archive that is in the link already is scanned once more, in its new place.
INPUT_FILE* FILE_MANAGER::process_archive(INPUT_FILE* file, bool in_front) {
    if (INPUT_FILE* same = find_same_file(file)) {
        file->close();
        delete file;
        file = same;
    }
    add_input_file(file, in_front);
    if (is_parsing_archive_group() && !global_opts->isopt(OPT_priority))
        open_group_->add_file(file->as_archive_file());
    else
        add_scan_item(new AR_SCAN_ITEM(file->as_archive_file()), in_front);
    return file;
}

INPUT_FILE* FILE_MANAGER::find_same_file(INPUT_FILE* file) const {
    file->get_stat_info();
    const STAT_INFO& info = file->stat_info();
    if (!info.known) return nullptr;
    const auto found = files_on_disk_.find({info.device, info.inode});
    return found == files_on_disk_.end() ? nullptr : found->second;
}

void FILE_MANAGER::add_input_file(INPUT_FILE* file, bool in_front) {
    input_files_.insert(in_front ? input_files_.begin() : input_files_.end(), file);
    if (OBJ_FILE* object = file->as_object_file()) register_object_file(object, in_front);
    file->get_stat_info();
    const STAT_INFO& info = file->stat_info();
    if (info.known) files_on_disk_.insert({{info.device, info.inode}, file});
    inputs_by_name_.insert({file->name(), file});
    inputs_by_basename_.insert({fn_basename(file->name()), file});
}

void FILE_MANAGER::add_scan_item(SCAN_ITEM* item, bool in_front) {
    scan_items_.insert(in_front ? scan_items_.begin() : scan_items_.end(), item);
}

void FILE_MANAGER::register_object_file(OBJ_FILE* file, bool in_front) {
    if (!file->is_object_file()) DIAG_REPORT(elnk_file_not_obj, file->name());
    if (!object_map_.insert({file->object_file(), file}).second) return;
    object_files_.insert(in_front ? object_files_.begin() : object_files_.end(), file);
    std::vector<OBJ_FILE*>& namesakes = by_basename_[file->base_name()];
    namesakes.insert(in_front ? namesakes.begin() : namesakes.end(), file);
    file->set_unique_name();
    if (namesakes.size() == 2) { // the first one was known by its base name up to now
        for (OBJ_FILE* other : namesakes) {
            other->unique_name_ = nullptr;
            other->set_unique_name();
        }
    }
}

void FILE_MANAGER::unregister_object_file(OBJ_FILE* file) {
    std::erase(object_files_, file);
    std::erase(by_basename_[file->base_name()], file);
    object_map_.erase(file->object_file());
}

void FILE_MANAGER::start_archive_group() {
    if (is_parsing_archive_group()) {
        DIAG_REPORT(elnk_start_group_duplicate);
        return;
    }
    open_group_ = new AR_GROUP_SCAN_ITEM;
}

void FILE_MANAGER::end_archive_group() {
    if (!is_parsing_archive_group()) {
        DIAG_REPORT(elnk_end_group_unmatched);
        return;
    }
    if (open_group_->items().empty())
        delete open_group_;
    else
        add_scan_item(open_group_, false);
    open_group_ = nullptr;
}

INPUT_FILE* FILE_MANAGER::lookup_file_by_name(const char* path) {
    const auto found = inputs_by_name_.find(path);
    if (found != inputs_by_name_.end()) return found->second;
    struct stat info;
    if (stat(path, &info) != 0) return nullptr;
    const auto same = files_on_disk_.find({uint64_t(info.st_dev), uint64_t(info.st_ino)});
    return same == files_on_disk_.end() ? nullptr : same->second;
}

bool FILE_MANAGER::is_read(const char* path) const {
    struct stat info;
    if (stat(path, &info) != 0) return false;
    const FILE_KEY key{uint64_t(info.st_dev), uint64_t(info.st_ino)};
    return files_on_disk_.find(key) != files_on_disk_.end() ||
           std::find(command_files_on_disk_.begin(), command_files_on_disk_.end(), key) !=
               command_files_on_disk_.end();
}

INPUT_FILE* FILE_MANAGER::lookup_file_by_basename(const char* name) {
    const auto found = inputs_by_basename_.find(name);
    return found == inputs_by_basename_.end() ? nullptr : found->second;
}

void FILE_MANAGER::find_obj_files_by_basename(const char* name, std::vector<OBJ_FILE*>& list) {
    const auto found = by_basename_.find(name);
    if (found != by_basename_.end())
        list.insert(list.end(), found->second.begin(), found->second.end());
}

OBJ_FILE* FILE_MANAGER::lookup_object_by_name(const char* name) {
    const auto found = by_basename_.find(fn_basename(name));
    if (found == by_basename_.end()) return nullptr;
    for (OBJ_FILE* file : found->second)
        if (strcmp(file->unique_name(), name) == 0 || strcmp(file->name(), name) == 0) return file;
    return fn_basename(name) == name && !found->second.empty() ? found->second.front() : nullptr;
}

OBJ_FILE* FILE_MANAGER::lookup_OF_FILE(const OFE::OBJECT_FILE* object) const {
    const auto found = object_map_.find(object);
    return found == object_map_.end() ? nullptr : found->second;
}

unsigned FILE_MANAGER::basename_count(const char* base_name) const {
    const auto found = by_basename_.find(base_name);
    return found == by_basename_.end() ? 0 : unsigned(found->second.size());
}

void FILE_MANAGER::dump() const {
    for (const std::string& dir : search_dirs_) printf("search directory: %s\n", dir.c_str());
    for (const INPUT_FILE* file : input_files_)
        printf("%u: %s %s\n", file->file_id(), file->name(),
               file->is_archive_file() ? "(archive)" : "(object)");
}
