// What an object file answers from its build attributes.
#include "OBJEDIT04/attributes/build_attr_table.h"
#include "OBJEDIT04/machine/machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "UTIL/savestr.h"

namespace OFE {

namespace {

unsigned uval(const OFBA_ATTR* attr) {
    return attr ? attr->val.uval : 0;
}
const char* str(const OFBA_ATTR* attr) {
    return attr ? attr->val.str : "";
}

} // namespace

const char* OBJECT_FILE::qv_battr_vendor() {
    return OFBA_VENDOR_QV;
}
const char* OBJECT_FILE::abi_battr_vendor() const {
    return machine_db_->ofba_abi_scn_name();
}

OFBA_VENDOR_SCN* OBJECT_FILE::battr_vendor_section(const char* vendor) {
    if (!vendor || !build_attributes_exist()) return nullptr;
    OF_BUILD_ATTR_TABLE* table = build_attributes();
    return table ? table->vscn_name(vendor) : nullptr;
}

OFBA_ATTR* OBJECT_FILE::battr(const char* vendor, unsigned tag) {
    OFBA_VENDOR_SCN* scn = battr_vendor_section(vendor);
    return scn ? scn->attr_file_tag(tag) : nullptr;
}

OFBA_ATTR* OBJECT_FILE::battr_create(const char* vendor, unsigned tag) {
    OF_BUILD_ATTR_TABLE* table = vendor ? build_attributes() : nullptr;
    if (!table) return nullptr;
    OFBA_VENDOR_SCN* scn = table->vscn_name(vendor);
    if (!scn) scn = table->new_vscn(vendor);
    OFBA_ATTR_LIST* list = scn ? scn->file_list() : nullptr;
    if (scn && !list) list = scn->new_attrlist(Tag_File);
    if (!list) return nullptr;
    OFBA_ATTR* attr = list->attr_tag(tag);
    return attr ? attr : list->new_attr(tag);
}

unsigned OBJECT_FILE::battr_uval(const char* vendor, unsigned tag) {
    return uval(battr(vendor, tag));
}
const char* OBJECT_FILE::battr_str(const char* vendor, unsigned tag) {
    return str(battr(vendor, tag));
}

OFBA_ATTR* OBJECT_FILE::battr_symbol(const char* vendor, OF_SYMBOL* symbol, unsigned tag) {
    OFBA_VENDOR_SCN* scn = battr_vendor_section(vendor);
    return scn ? scn->attr_symbol_tag(tag, symbol) : nullptr;
}
unsigned OBJECT_FILE::battr_symbol_uval(const char* vendor, OF_SYMBOL* symbol, unsigned tag) {
    return uval(battr_symbol(vendor, symbol, tag));
}
const char* OBJECT_FILE::battr_symbol_str(const char* vendor, OF_SYMBOL* symbol, unsigned tag) {
    return str(battr_symbol(vendor, symbol, tag));
}

OFBA_ATTR* OBJECT_FILE::battr_section(const char* vendor, OF_SECTION* section, unsigned tag) {
    OFBA_VENDOR_SCN* scn = battr_vendor_section(vendor);
    return scn ? scn->attr_section_tag(tag, section) : nullptr;
}
unsigned OBJECT_FILE::battr_section_uval(const char* vendor, OF_SECTION* section, unsigned tag) {
    return uval(battr_section(vendor, section, tag));
}
const char* OBJECT_FILE::battr_section_str(const char* vendor, OF_SECTION* section, unsigned tag) {
    return str(battr_section(vendor, section, tag));
}

// Stored plus one, so that 0 is "not said".
bool OBJECT_FILE::producer_version(unsigned tag, unsigned& version) {
    unsigned stored = qv_battr_uval(tag);
    if (stored == 0) return false;
    version = stored - 1;
    return true;
}

const char* OBJECT_FILE::producer_version_str() {
    unsigned major = 0, minor = 0, patch = 0;
    if (!producer_major_version(major)) return "unknown";
    producer_minor_version(minor);
    if (!producer_patch_version(patch)) return savestrf("%u.%u.x", major, minor);
    return savestrf("%u.%u.%u", major, minor, patch);
}

int OBJECT_FILE::set_producer(const char* name, unsigned major, unsigned minor, unsigned patch) {
    OFBA_ATTR* attr = qv_battr_create(TAG_PRODUCER_NAME);
    if (!attr) return -1;
    OFBA_ATTR_LIST* list = qv_battr_vendor_section()->file_list();
    list->set_str(TAG_PRODUCER_NAME, name);
    list->set_uval(TAG_VMAJOR, major + 1);
    list->set_uval(TAG_VMINOR, minor + 1);
    list->set_uval(TAG_VPATCH, patch + 1);
    return 0;
}

} // namespace OFE
