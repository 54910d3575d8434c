// Members of an archive become object files when they are asked for, once each.
#include "ELFLNK/file/archive_file.h"

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/file/obj_file.h"
#include "UTIL/savestr.h"

ARCHIVE_FILE::ARCHIVE_FILE(const INPUT_FILE& file, std::unique_ptr<AR_FILE> archive)
    : INPUT_FILE(file), archive_(std::move(archive)), objects_(archive_->members().size()) {}

ARCHIVE_FILE::~ARCHIVE_FILE() = default;

const AR_MEMBER* ARCHIVE_FILE::member(unsigned header_offset) {
    return archive_->member_at(header_offset);
}

OBJ_FILE* ARCHIVE_FILE::loaded_member(unsigned header_offset) {
    const AR_MEMBER* found = archive_->member_at(header_offset);
    return found == nullptr ? nullptr : objects_[size_t(found - archive_->members().data())];
}

OBJ_FILE* ARCHIVE_FILE::load_member(unsigned header_offset) {
    const AR_MEMBER* found = member(header_offset);
    if (found == nullptr) {
        DIAG_REPORT_AT(position(), elnk_bad_ar_member, header_offset, name());
        return nullptr;
    }
    return load_member(found);
}

OBJ_FILE* ARCHIVE_FILE::load_member(const AR_MEMBER* member) {
    OBJ_FILE*& object = objects_[size_t(member - archive_->members().data())];
    if (object != nullptr) return object;
    const char* member_name = savestr(member->name);
    INPUT_FILE part(name(), file(), position());
    if (member->size > 0)
        object = part.identify_member_as_obj(member->offset, member->size, member_name);
    if (object == nullptr) {
        DIAG_REPORT_AT(position(), elnk_ar_member_not_obj, member_name, name());
        return nullptr;
    }
    object->set_archive_member(this, member->name);
    loaded_.push_back(object);
    return object;
}
