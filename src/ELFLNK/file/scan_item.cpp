// Asking a scan item for what it is not is a fault of the linker.
#include "ELFLNK/file/scan_item.h"

#include "DIAG/elnk_msgs.h"

OBJ_SCAN_ITEM* SCAN_ITEM::obj_scan_item_api() {
    if (!is_obj()) DIAG_REPORT(elnk_invalid_scan_item_type, "OBJ_SCAN_ITEM");
    return is_obj() ? static_cast<OBJ_SCAN_ITEM*>(this) : nullptr;
}

AR_SCAN_ITEM* SCAN_ITEM::ar_scan_item_api() {
    if (!is_archive()) DIAG_REPORT(elnk_invalid_scan_item_type, "AR_SCAN_ITEM");
    return is_archive() ? static_cast<AR_SCAN_ITEM*>(this) : nullptr;
}

AR_GROUP_SCAN_ITEM* SCAN_ITEM::ar_group_scan_item_api() {
    if (!is_ar_group()) DIAG_REPORT(elnk_invalid_scan_item_type, "AR_GROUP_SCAN_ITEM");
    return is_ar_group() ? static_cast<AR_GROUP_SCAN_ITEM*>(this) : nullptr;
}
