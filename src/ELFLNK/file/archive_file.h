// ARCHIVE_FILE: an archive of the link and the members that were loaded from it.
#pragma once

#include "ELFLNK/archive/ar_file.h"
#include "ELFLNK/file/input_file.h"

#include <cstdint>
#include <memory>
#include <vector>

class ARCHIVE_FILE : public INPUT_FILE {
  public:
    /// Takes over what `file` holds.
    ARCHIVE_FILE(const INPUT_FILE& file, std::unique_ptr<AR_FILE> archive);
    ~ARCHIVE_FILE() override;

    bool is_archive_file() const override { return true; }
    virtual AR_FILE* AR_FILE_api() { return archive_.get(); }
    /// The members loaded so far, in the order of loading.
    virtual const std::vector<OBJ_FILE*>& loaded_members() { return loaded_; }
    /// Loads the member whose header starts at that file offset; null after an error. A member is
    /// loaded once: the second call gives the same object.
    virtual OBJ_FILE* load_member(unsigned header_offset);
    virtual OBJ_FILE* load_member(const AR_MEMBER* member);
    /// The member whose header starts at that file offset, or null.
    virtual const AR_MEMBER* member(unsigned header_offset);
    /// All members, in file order.
    virtual const std::vector<AR_MEMBER>& members() { return archive_->members(); }
    /// The loaded object of that member, or null.
    virtual OBJ_FILE* loaded_member(unsigned header_offset);

  private:
    std::unique_ptr<AR_FILE> archive_;
    std::vector<OBJ_FILE*> objects_; ///< by the member's place in members(), null where not loaded
    std::vector<OBJ_FILE*> loaded_;
};
