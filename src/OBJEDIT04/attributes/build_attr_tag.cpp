// Tags live for the whole process; a table is filled from the vendor-neutral rows below and from
// what the machine database adds.
#include "OBJEDIT04/attributes/build_attr_tag.h"

#include <cstring>
#include <string>

#include "OBJEDIT04/machine/machine_db.h"
#include "UTIL/savestr.h"

namespace OFE {

namespace {

using VENDOR_TAG_DB = std::map<std::string, OFBA_TAG_MAP, std::less<>>;
VENDOR_TAG_DB& vendor_tag_db() {
    static VENDOR_TAG_DB vendor_tag_db_m;
    return vendor_tag_db_m;
}

struct TAG_ROW {
    unsigned number;
    const char* name;
};
constexpr TAG_ROW SCOPE_ROWS[] = {
    {Tag_File, "Tag_File"}, {Tag_Section, "Tag_Section"}, {Tag_Symbol, "Tag_Symbol"}};

bool is(const char* vendor, const char* name) {
    return std::strcmp(vendor, name) == 0;
}

} // namespace

OFBA_AVAL_TYPE OFBA_TAG::arg_types() const {
    if (!is(vendor, OFBA_VENDOR_AEABI) && !is(vendor, OFBA_VENDOR_QV)) return OFBA_AVAL_NONE;
    return static_cast<OFBA_AVAL_TYPE>((number & 1) ^ 3);
}

bool OFBA_TAG::is_compatibility() const {
    if (!is(vendor, OFBA_VENDOR_AEABI) && !is(vendor, OFBA_VENDOR_QV)) return true;
    return (number & 64) == 0;
}

OFBA_TAG_MAP* OFBA_TAG_MAP::vendor_tags(std::string_view vendor, OF_MACHINE_DB* db) {
    VENDOR_TAG_DB& all = vendor_tag_db();
    if (auto found = all.find(vendor); found != all.end()) return &found->second;
    OFBA_TAG_MAP& made = all[std::string(vendor)];
    made.vendor_ = savestr(vendor);
    for (const TAG_ROW& row : SCOPE_ROWS) made.add(row.number, row.name, db);
    db->of_build_tag_hash(&made);
    return &made;
}

const OFBA_TAG* OFBA_TAG_MAP::find(unsigned number) const {
    if (number < DIRECT) return direct_[number];
    auto found = tags_.find(number);
    return found != tags_.end() ? &found->second : nullptr;
}

const OFBA_TAG* OFBA_TAG_MAP::tag_name(const char* name) const {
    for (const auto& [number, tag] : tags_)
        if (is(tag.name, name)) return &tag;
    return nullptr;
}

OFBA_TAG* OFBA_TAG_MAP::enter(unsigned number, const char* name, bool known, OF_MACHINE_DB* db) {
    OFBA_TAG& tag = tags_[number];
    tag = {number, name, vendor_, OFBA_AVAL_NONE, known};
    if (!db->ofba_arg_types(&tag, tag.kind)) tag.kind = tag.arg_types();
    if (number < DIRECT) direct_[number] = &tag;
    return &tag;
}

void OFBA_TAG_MAP::add(unsigned number, const char* name, OF_MACHINE_DB* db) {
    enter(number, name, true, db);
}

const OFBA_TAG* OFBA_TAG_MAP::create_tag(unsigned number, OF_MACHINE_DB* db) {
    if (const OFBA_TAG* tag = find(number)) return tag;
    return enter(number, savestrf("Tag_0x%x", number), false, db);
}

} // namespace OFE
