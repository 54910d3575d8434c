// OBJ_FILE: what kind of object it is, and the name that reports know it by.
#include "ELFLNK/file/obj_file.h"

#include "ELFLNK/file/archive_file.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/filename.h"
#include "UTIL/savestr.h"

OBJ_FILE::OBJ_FILE(const INPUT_FILE& file, OFE::OBJECT_FILE* object)
    : INPUT_FILE(file), object_(object), base_name_(fn_basename(name())) {}

OBJ_FILE::OBJ_FILE(const char* name, OFE::OBJECT_FILE* object)
    : INPUT_FILE(name, static_cast<const SOURCE_POSITION*>(nullptr)),
      object_(object),
      base_name_(fn_basename(this->name())),
      linker_generated_(true) {}

OBJ_FILE::~OBJ_FILE() {
    delete object_;
}

bool OBJ_FILE::has_dynamic_linkage() const {
    return object_->has_dynamic_linkage();
}

bool OBJ_FILE::is_shared_object_file() const {
    return object_->file_type() == OFE::OF_FILE_TYPE_SHARED;
}

bool OBJ_FILE::is_exe_object_file() const {
    return object_->file_type() == OFE::OF_FILE_TYPE_EXECUTABLE;
}

bool OBJ_FILE::is_static_linking_object() const {
    if (is_exe_object_file() && object_->format() == OFE::OF_FORMAT_ELF) return false;
    if (!has_dynamic_linkage()) return true;
    return Target->is_static_reloc_file(object_) && !global_opts->isopt(OPT_rom);
}

void OBJ_FILE::set_archive_member(ARCHIVE_FILE* archive, std::string_view member_name) {
    archive_ = archive;
    set_owner_file(archive);
    member_name_ = savestr(member_name);
    base_name_ = fn_basename(member_name_);
}

void OBJ_FILE::set_unique_name() {
    if (unique_name_ != nullptr) return;
    if (file_manager.basename_count(base_name_) < 2)
        unique_name_ = base_name_;
    else if (archive_ != nullptr)
        unique_name_ = savestrf("%s<%s>", archive_->name(), member_name_);
    else
        unique_name_ = name();
}

const char* OBJ_FILE::unique_name() const {
    return unique_name_ != nullptr ? unique_name_ : base_name_;
}
