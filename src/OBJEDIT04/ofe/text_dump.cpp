// The text dump of an object file: one table for each kind of thing it holds, for people to read.
#include <cstdio>
#include <cstring>

#include "OBJEDIT04/attributes/build_attr_table.h"
#include "OBJEDIT04/machine/reloc_type.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_group_table.h"
#include "OBJEDIT04/ofe/of_reloc.h"
#include "OBJEDIT04/ofe/of_reloc_table.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_string_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "UTIL/file_handle_manager.h"
#include "UTIL/text_table.h"

namespace OFE {

namespace {

constexpr int INDENT = 1, PADDING = 2;

void start_table(TEXT_TABLE& table, std::initializer_list<const char*> titles) {
    table.set_indent(INDENT);
    table.set_padding(PADDING);
    int col = 0;
    for (const char* title : titles) table.set_string(0, col++, title);
    table.set_row_as_border(1);
}

void print(FHM_FILE* to, const char* title, const TEXT_TABLE& table) {
    FILE* fp = to->fp();
    if (!fp) return;
    std::fprintf(fp, "\n%s\n\n", title);
    table.print(fp);
}

const char* name_of(OF_SECTION* section) {
    return section && *section->name() ? section->name() : "-";
}

} // namespace

int OBJECT_FILE::save_text(const char* name) {
    FHM_FILE* to = fhm_open(name, "w");
    if (!to) {
        set_error(OF_ERROR_ACCESS, "failed to open \"%s\" for writing", name);
        return -1;
    }
    int result = save_text(to);
    return fhm_close(to) == 0 ? result : -1;
}

int OBJECT_FILE::save_text(FHM_FILE* to) {
    if (!to || !to->fp()) return -1;
    if (dispflags_.file) {
        TEXT_TABLE info;
        info.set_indent(INDENT);
        info.set_padding(PADDING);
        generate_file_info(info);
        print(to, "OBJECT FILE", info);
    }
    OF_SECTION_TABLE* sections = section_table();
    if (dispflags_.sections) sections->save_text(to);
    save_text_extra(to);
    if (OF_SYMBOL_TABLE* symbols = dispflags_.symbols ? symbol_table() : nullptr)
        symbols->save_text(to);
    if (OF_SYMBOL_TABLE* symbols = dispflags_.symbols ? dynamic_symbol_table() : nullptr)
        symbols->save_text(to);
    if (dispflags_.relocs)
        for (unsigned i = 0; i < sections->scnnum(); ++i)
            for (unsigned k = 0; k < sections->raw_reloc_table_num(i); ++k)
                if (OF_RELOC_TABLE* table = sections->section(i)->reloc_table(k))
                    table->save_text(to);
    if (dispflags_.groups) {
        TEXT_TABLE groups;
        start_table(groups, {"group", "signature", "kind", "member"});
        const int titles = groups.nrows();
        for (unsigned i = 0; i < sections->scnnum(); ++i)
            if (OF_GROUP_TABLE* group = sections->section(i)->group_api())
                group->generate_text_info(groups);
        if (groups.nrows() > titles) print(to, "GROUPS", groups);
    }
    if (OF_BUILD_ATTR_TABLE* attributes =
            dispflags_.attributes && build_attributes_exist() ? build_attributes() : nullptr)
        attributes->save_text(to);
    return std::ferror(to->fp()) ? -1 : 0;
}

void OBJECT_FILE::generate_file_info(TEXT_TABLE& table) {
    auto row = [&](const char* name, const char* value) {
        const int at = table.append_rows();
        table.set_string(at, 0, name);
        table.set_string(at, 1, value);
        return at;
    };
    row("file", display_name());
    row("format", format_name(format()));
    row("format version", format_version_name(format_version()));
    row("type", file_type_name(file_type()));
    row("machine", machine_name(machine()));
    row("byte order", machine_endian() == OF_ENDIAN_BIG ? "big" : "little");
    table.set_text(row("entry point", ""), 1, "0x%08x", entry_point());
    row("producer", producer_name());
    row("producer version", producer_version_str());
    row("safe to execute", is_safe_to_execute() ? "yes" : "no");
}

// --- sections

void OF_SECTION_TABLE::save_text(FHM_FILE* to) {
    TEXT_TABLE table;
    generate_text_info(table);
    print(to, "SECTIONS", table);
}

void OF_SECTION_TABLE::generate_text_info(TEXT_TABLE& table) {
    start_table(table, {"id", "name", "run", "load", "size", "align", "offset", "group", "kind"});
    resolve_group_refs();
    for (unsigned i = 0; i < scnnum(); ++i) section(i)->generate_text_info(table);
}

void OF_SECTION::generate_text_info(TEXT_TABLE& table) {
    const int row = table.append_rows();
    table.set_text(row, 0, "%u", id_);
    table.set_string(row, 1, name_of(this));
    table.set_text(row, 2, "0x%08x", run_addr());
    table.set_text(row, 3, "0x%08x", load_addr());
    table.set_text(row, 4, "0x%x", size());
    table.set_text(row, 5, "%u", align());
    table.set_text(row, 6, "0x%x", file_offset());
    table.set_string(row, 7, group() ? group()->signature_name() : "");
    table.set_string(row, 8,
                     !allocated()     ? "not allocated"
                     : !initialized() ? "uninitialized"
                     : exec()         ? "code"
                                      : "data");
}

// --- symbols

void OF_SYMBOL_TABLE::save_text(FHM_FILE* to) {
    TEXT_TABLE table;
    start_table(
        table, {"id", "name", "value", "size", "kind", "binding", "type", "section", "visibility"});
    for (unsigned i = 0; i < symnum_; i = next_symbol_id(i))
        if (!is_deleted(i))
            if (OF_SYMBOL* s = symbol(i)) s->generate_text_info(table);
    print(to, (std::string("SYMBOLS ") + name()).c_str(), table);
}

void OF_SYMBOL::generate_text_info(TEXT_TABLE& table) {
    static constexpr const char* visibilities[] = {"", "internal", "hidden", "protected"};
    const int row = table.append_rows();
    table.set_text(row, 0, "%u", id_);
    table.set_string(row, 1, name_);
    table.set_text(row, 2, "0x%08x", value());
    table.set_text(row, 3, "0x%x", size());
    table.set_string(row, 4, OBJECT_FILE::sym_kind_name(kind()));
    table.set_string(row, 5, OBJECT_FILE::sym_binding_name(binding()));
    table.set_string(row, 6, OBJECT_FILE::sym_type_name(type()));
    table.set_string(row, 7, refs_section() ? name_of(section()) : "");
    table.set_string(row, 8, visibilities[visibility() & 3]);
}

// --- relocations

void OF_RELOC_TABLE::save_text(FHM_FILE* to) {
    TEXT_TABLE table;
    generate_text_info(table);
    print(to, (std::string("RELOCATIONS OF ") + name_of(section_relocated())).c_str(), table);
}

void OF_RELOC_TABLE::generate_text_info(TEXT_TABLE& table) {
    start_table(table, {"offset", "type", "symbol", "addend"});
    for (unsigned i = 0; i < relnum_; ++i)
        if (!is_deleted(i))
            if (OF_RELOC* r = reloc(i)) r->generate_text_info(table);
}

void OF_RELOC::generate_text_info(TEXT_TABLE& table) {
    const int row = table.append_rows();
    OF_SYMBOL* s = symbol();
    table.set_text(row, 0, "0x%08x", offset());
    table.set_string(row, 1, type()->name);
    table.set_string(row, 2,
                     !s                                 ? ""
                     : s->type() == OF_SYM_TYPE_SECTION ? name_of(s->section())
                                                        : s->name());
    if (has_addend()) table.set_text(row, 3, "%d", addend());
}

// --- groups and strings

void OF_GROUP_TABLE::generate_text_info(TEXT_TABLE& table) {
    for (unsigned i = 0; i < member_num(); ++i) {
        if (member_deleted(i)) continue;
        const int row = table.append_rows();
        table.set_string(row, 0, name());
        table.set_string(row, 1, signature_name());
        table.set_string(row, 2, comdat_flag_name());
        table.set_string(row, 3, name_of(member(i)));
    }
}

void OF_STRING_TABLE_MANAGER::save_text(FHM_FILE* to) {
    TEXT_TABLE table;
    start_table(table, {"offset", "text"});
    for (unsigned at = first_offset(); at < size();) {
        const char* text = get_string(at);
        if (!text) break;
        const int row = table.append_rows();
        table.set_text(row, 0, "0x%x", at);
        table.set_string(row, 1, text);
        at += static_cast<unsigned>(std::strlen(text)) + 1;
    }
    print(to, (std::string("STRINGS ") + pool_name()).c_str(), table);
}

} // namespace OFE
