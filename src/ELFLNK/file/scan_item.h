// SCAN_ITEM: one step of the load phase's walk over the command line: an object, an archive, or a
// group of archives that are read again until nothing more is needed.
#pragma once

#include <vector>

class ARCHIVE_FILE;
class AR_GROUP_SCAN_ITEM;
class AR_SCAN_ITEM;
class OBJ_FILE;
class OBJ_SCAN_ITEM;

class SCAN_ITEM {
  public:
    virtual ~SCAN_ITEM() = default;
    virtual bool is_obj() const { return false; }
    virtual bool is_ar_group() const { return false; }
    virtual bool is_archive() const { return false; }
    /// This item as what it is; an internal error if it is something else.
    OBJ_SCAN_ITEM* obj_scan_item_api();
    AR_SCAN_ITEM* ar_scan_item_api();
    AR_GROUP_SCAN_ITEM* ar_group_scan_item_api();
};

class OBJ_SCAN_ITEM : public SCAN_ITEM {
  public:
    explicit OBJ_SCAN_ITEM(OBJ_FILE* file) : file_(file) {}
    bool is_obj() const override { return true; }
    OBJ_FILE* file() const { return file_; }

  private:
    OBJ_FILE* file_;
};

class AR_SCAN_ITEM : public SCAN_ITEM {
  public:
    explicit AR_SCAN_ITEM(ARCHIVE_FILE* file) : file_(file) {}
    bool is_archive() const override { return true; }
    ARCHIVE_FILE* file() const { return file_; }

  private:
    ARCHIVE_FILE* file_;
};

class AR_GROUP_SCAN_ITEM : public SCAN_ITEM {
  public:
    bool is_ar_group() const override { return true; }
    void add_file(ARCHIVE_FILE* file) { items_.push_back(new AR_SCAN_ITEM(file)); }
    const std::vector<SCAN_ITEM*>& items() const { return items_; }

  private:
    std::vector<SCAN_ITEM*> items_; ///< all of them archives
};
