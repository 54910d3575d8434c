// Build attributes as text: each with its name, its value and what the value means.
#include <cstdio>

#include "OBJEDIT04/attributes/build_attr_table.h"
#include "OBJEDIT04/machine/machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "UTIL/file_handle_manager.h"
#include "UTIL/text_table.h"

namespace OFE {

void OF_BUILD_ATTR_TABLE::save_text(FHM_FILE* to) {
    FILE* fp = to->fp();
    if (!fp) return;
    std::fprintf(fp, "\nBUILD ATTRIBUTES (format '%c')\n", format_);
    for (const auto& vendor : vendors_) vendor->save_text(to);
}

void OFBA_VENDOR_SCN::save_text(FHM_FILE* to) {
    std::fprintf(to->fp(), "\n vendor \"%s\"\n", name());
    for (const auto& list : lists_) list->save_text(to);
}

void OFBA_ATTR_LIST::save_text(FHM_FILE* to) {
    static constexpr const char* SCOPES[] = {"", "file", "sections", "symbols"};
    std::string ids;
    for (unsigned id : ids_) ids += " " + std::to_string(id);
    std::fprintf(to->fp(), "  of the %s%s\n", SCOPES[scope_], ids.c_str());
    TEXT_TABLE table;
    table.set_indent(3);
    table.set_padding(2);
    OF_MACHINE_DB* db = owner_->table()->ofile()->machine_db();
    for (const OFBA_ATTR& attr : attrs_) {
        const int row = table.append_rows();
        table.set_string(row, 0, attr.tag->name);
        if (attr.tag->kind != OFBA_AVAL_TEXT) table.set_text(row, 1, "%u", attr.val.uval);
        const char* text = nullptr;
        if (attr.tag->kind == OFBA_AVAL_INT_TEXT)
            text = attr.val.str;
        else
            db->of_tag_value(attr.tag, attr.val, text);
        if (text && table.text(row, 1) != text) table.set_string(row, 2, text);
    }
    table.print(to->fp());
    if (!opaque_.empty())
        std::fprintf(to->fp(), "   %zu bytes that cannot be told apart\n", opaque_.size());
}

} // namespace OFE
