// Identification: what does a file hold?
#include "ELFLNK/file/input_file.h"

#include "DIAG/elnk_msgs.h"
#include "DIAG/gen_msgs.h"
#include "ELFLNK/autolib/libspec_file.h"
#include "ELFLNK/file/archive_file.h"
#include "ELFLNK/file/command_file.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "UTIL/file_handle_manager.h"
#include "UTIL/savestr.h"

#include <cerrno>
#include <cstring>
#include <memory>
#include <sys/stat.h>

namespace {

/// Intermediate code of LLVM; its first byte is that of a text.
bool is_bitcode(std::span<const uint8_t> all) {
    return all.size() >= 4 && memcmp(all.data(), "BC\xC0\xDE", 4) == 0;
}

} // namespace

unsigned INPUT_FILE::next_file_id_m = 0;

INPUT_FILE::INPUT_FILE(const char* name, const SOURCE_POSITION* position)
    : name_(savestr(name)), position_(position), file_id_(next_file_id_m++) {}

INPUT_FILE::INPUT_FILE(const char* name, FHM_FILE* file, const SOURCE_POSITION* position)
    : INPUT_FILE(name, position) {
    file_ = file;
}

OBJ_FILE* INPUT_FILE::as_object_file() {
    return is_object_file() ? static_cast<OBJ_FILE*>(this) : nullptr;
}

COMMAND_FILE* INPUT_FILE::as_command_file() {
    return is_command_file() ? static_cast<COMMAND_FILE*>(this) : nullptr;
}

ARCHIVE_FILE* INPUT_FILE::as_archive_file() {
    return is_archive_file() ? static_cast<ARCHIVE_FILE*>(this) : nullptr;
}

bool INPUT_FILE::open() {
    if (file_ != nullptr) return true;
    errno = 0;
    file_ = fhm_open_input(name_);
    if (file_ != nullptr && file_->has_contents()) return true;
    DIAG_REPORT_AT(&position_, gen_bad_file_open, name_, strerror(errno != 0 ? errno : EIO));
    return false;
}

void INPUT_FILE::close() {
    if (file_ != nullptr) fhm_close(file_);
    file_ = nullptr;
}

INPUT_FILE* INPUT_FILE::identify() {
    if (!open()) return nullptr;
    if (ARCHIVE_FILE* archive = identify_as_ar()) return archive;
    if (OBJ_FILE* object = identify_member_as_obj(0, 0, name_)) return object;
    if (COMMAND_FILE* text = identify_as_ascii()) return text;
    DIAG::elnk_unrecognized_file message(__FILE__, __LINE__, name_);
    message.set_src(&position_);
    if (DIAGNOSTIC::verbose_m && is_bitcode(file_->contents()))
        message.set_hint("; it is what clang makes with -flto: compile without");
    message.report();
    return nullptr;
}

ARCHIVE_FILE* INPUT_FILE::identify_as_ar() {
    if (!AR_FILE::is_archive(file_->contents())) return nullptr;
    auto archive = std::make_unique<AR_FILE>(name_, file_, ar_error_handler);
    if (archive->read_headers(true)) archive->create_toc();
    if (ARCHIVE_FILE* index = identify_as_libspec(archive)) return index;
    return new ARCHIVE_FILE(*this, std::move(archive));
}

/// An archive with the marker of an index library is one; takes the archive over.
ARCHIVE_FILE* INPUT_FILE::identify_as_libspec(std::unique_ptr<AR_FILE>& archive) {
    if (archive->find_member(LIBSPEC_FILE::MARKER) == nullptr) return nullptr;
    return new LIBSPEC_FILE(*this, std::move(archive));
}

OBJ_FILE* INPUT_FILE::identify_member_as_obj(uint64_t offset, uint64_t size,
                                             const char* object_name) {
    const std::span<const uint8_t> all = file_->contents();
    if (size == 0) size = all.size() - (offset <= all.size() ? offset : all.size());
    if (offset > all.size() || size > all.size() - offset) return nullptr;
    if (offset > UINT32_MAX || size > UINT32_MAX) return nullptr;
    OFE::OF_FILE_HANDLE handle;
    handle.file = file_;
    handle.name = object_name;
    handle.offset = unsigned(offset);
    handle.size = unsigned(size);
    OFE::OBJECT_FILE* object =
        size == 0 ? nullptr : OFE::new_OBJECT_FILE(handle, ofile_error_handler);
    if (object == nullptr) return nullptr;
    auto* file = new OBJ_FILE(*this, object);
    Target->check_linker_compatibility(file);
    return file;
}

COMMAND_FILE* INPUT_FILE::identify_as_ascii() {
    const std::span<const uint8_t> all = file_->contents();
    constexpr uint8_t LAST_TEXT_BYTE = 126;
    if (all.empty() || all[0] == 0 || all[0] > LAST_TEXT_BYTE || is_bitcode(all)) return nullptr;
    return new COMMAND_FILE(*this);
}

void INPUT_FILE::get_stat_info() {
    struct stat info;
    if (stat_.known || stat(name_, &info) != 0) return;
    stat_ = {true, uint64_t(info.st_dev), uint64_t(info.st_ino)};
}

bool INPUT_FILE::is_same_file(const INPUT_FILE* other) const {
    return stat_.known && other->stat_.known && stat_.device == other->stat_.device &&
           stat_.inode == other->stat_.inode;
}
