// The build attributes section: what is read from bytes, what is written, and what bytes that lie
// do.
#include "OBJEDIT04/attributes/build_attr_table.h"

#include <gtest/gtest.h>

#include "../ofe_support.h"
#include "OBJEDIT04/machine/machine_db.h"

using namespace OFE;
using namespace ofe_test;

namespace {

using TEXT = std::string;

TEXT number(size_t n, bool big = false) {
    TEXT out(4, '\0');
    write_u32(reinterpret_cast<uint8_t*>(out.data()), static_cast<uint32_t>(n), big);
    return out;
}
TEXT list(char scope, const TEXT& body, bool big = false) {
    return TEXT(1, scope) + number(5 + body.size(), big) + body;
}
TEXT vendor(const TEXT& name, const TEXT& lists, bool big = false) {
    return number(5 + name.size() + lists.size(), big) + name + TEXT(1, '\0') + lists;
}
TEXT bytes_of(OF_SECTION* section) {
    OF_BYTES b = section->bytes();
    return {reinterpret_cast<const char*>(b.data), b.size};
}

// A file in memory with an attributes section of these bytes.
struct HOLDER {
    explicit HOLDER(const TEXT& bytes, OF_ENDIAN endian = OF_ENDIAN_LITTLE)
        : file(new_file(endian)) {
        section = add_section(*file, "__QV_build_attributes", bytes);
        table = file->build_attributes();
    }
    TEXT saved() {
        table->save();
        return bytes_of(section);
    }
    FILE_PTR file;
    ELF_SECTION* section;
    OF_BUILD_ATTR_TABLE* table;
};

const TEXT Z(1, '\0');

TEST(BuildAttributes, a_format_byte_alone_is_an_empty_table_and_stays_one) {
    HOLDER h("A");
    EXPECT_EQ(h.table->vscn_num(), 0u);
    EXPECT_EQ(h.saved(), "A");
}

TEST(BuildAttributes, values_are_read_by_the_kind_of_their_tag) {
    struct ROW {
        const char* what;
        const char* vendor;
        TEXT bytes;
        unsigned tag;
        unsigned uval;
        const char* str;
    };
    const ROW rows[] = {
        {"text below 6", "aeabi", TEXT("\5") + "7-M" + Z, 5, 0, "7-M"},
        {"integer from 6", "aeabi", "\6\15", 6, 13, ""},
        {"odd integer below 32", "aeabi", "\7M", 7, 'M', ""},
        {"integer and text", "aeabi", TEXT("\x20\1") + "gnu" + Z, 32, 1, "gnu"},
        {"even above 32", "aeabi", "\x22\1", 34, 1, ""},
        {"odd above 32", "aeabi", TEXT("\x43") + "2.09" + Z, 67, 0, "2.09"},
        {"two bytes of a number", "aeabi", "\x1E\x80\1", 30, 128, ""},
        {"even of this vendor", "QV", "\x82\2\12", 258, 10, ""},
        {"odd of this vendor", "QV", TEXT("\5") + "qv" + Z, 5, 0, "qv"},
    };
    for (const ROW& row : rows)
        for (bool big : {false, true}) {
            HOLDER h("A" + vendor(row.vendor, list(Tag_File, row.bytes, big), big),
                     big ? OF_ENDIAN_BIG : OF_ENDIAN_LITTLE);
            OFBA_ATTR* attr = h.file->battr(row.vendor, row.tag);
            ASSERT_TRUE(attr) << row.what;
            EXPECT_EQ(attr->val.uval, row.uval) << row.what;
            EXPECT_STREQ(attr->val.str, row.str) << row.what;
            EXPECT_EQ(h.saved(), "A" + vendor(row.vendor, list(Tag_File, row.bytes, big), big));
        }
}

TEST(BuildAttributes, a_load_tells_of_tags_that_should_have_been_understood) {
    auto result = [](const TEXT& attributes) {
        FILE_PTR file = new_file();
        ELF_SECTION* section = add_section(*file, "__QV_build_attributes",
                                           "A" + vendor("aeabi", list(Tag_File, attributes)));
        return section->build_attr_api()->load();
    };
    EXPECT_EQ(result("\6\12"), 0);
    EXPECT_EQ(result("\x28\1"), -1);   // 40: no tool may pass over it
    EXPECT_EQ(result("\xC0\1\1"), 0);  // 192: bit 6 says that any tool may
    EXPECT_EQ(result("\x80\1\1"), -1); // 128
    EXPECT_EQ(result("\6"), -1);       // no value
    EXPECT_EQ(result("\5no end"), -1); // no NUL
    EXPECT_EQ(HOLDER("A" + number(0)).table->vscn_num(), 0u);
}

TEST(BuildAttributes, unknown_tags_are_kept_by_number_and_saved_in_order) {
    HOLDER h("A" + vendor("aeabi", list(Tag_File, "\x5A\3\6\12\x4E\1")));
    OFBA_ATTR* attr = h.file->abi_battr(90);
    ASSERT_TRUE(attr);
    EXPECT_EQ(attr->val.uval, 3u);
    EXPECT_STREQ(attr->tag->name, "Tag_0x5a");
    EXPECT_FALSE(attr->tag->known);
    EXPECT_EQ(h.saved(), "A" + vendor("aeabi", list(Tag_File, "\6\12\x4E\1\x5A\3")));
}

TEST(BuildAttributes, empty_values_vanish_on_save) {
    HOLDER h("A" + vendor("aeabi",
                          list(Tag_File, TEXT("\5") + Z + "\6" + Z + "\x20" + Z + Z + "\x22\1")));
    EXPECT_TRUE(h.file->abi_battr(6));
    EXPECT_EQ(h.saved(), "A" + vendor("aeabi", list(Tag_File, "\x22\1")));
}

TEST(BuildAttributes, lists_of_vendors_that_nobody_knows_stay_as_they_came) {
    const TEXT bytes =
        "A" + vendor("acme", list(Tag_File, "\4\1\2\3")) + vendor("aeabi", list(Tag_File, "\6\12"));
    HOLDER h(bytes);
    EXPECT_EQ(h.file->abi_battr_uval(6), 10u);
    EXPECT_FALSE(h.file->battr("acme", 4));
    EXPECT_STREQ(h.file->vendor(), "acme");
    EXPECT_EQ(h.saved(), bytes);
}

TEST(BuildAttributes, a_malformed_part_is_skipped_and_the_rest_stays) {
    const TEXT good = vendor("QV", list(Tag_File, "\6\1"));
    const TEXT zero_list = TEXT("\1") + number(0) + "\6\12";
    const TEXT long_list = TEXT("\1") + number(200) + "\6\12";
    const TEXT odd_scope = list(9, "\6\12");
    for (const TEXT& bad : {vendor("aeabi", zero_list), vendor("aeabi", long_list),
                            vendor("aeabi", odd_scope), number(4), number(6) + "xx"}) {
        HOLDER h("A" + bad + good);
        EXPECT_EQ(h.file->qv_battr_uval(6), 1u);
        EXPECT_FALSE(h.file->abi_battr(6));
    }
    HOLDER h("A" + vendor("aeabi", odd_scope + list(Tag_File, "\6\12")));
    EXPECT_EQ(h.file->abi_battr_uval(6), 10u);
}

TEST(BuildAttributes, what_any_damaged_byte_leaves_is_written_well) {
    const TEXT good =
        "A" + vendor("aeabi", list(Tag_File, TEXT("\5") + "x" + Z + "\6\12\x20\1gnu" + Z) +
                                  list(Tag_Section, TEXT("\1\2") + Z + "\6\13"));
    for (size_t at = 0; at < good.size(); ++at)
        for (int value : {0, 1, 3, 5, 0x20, 0x7F, 0x80, 0xFF}) {
            TEXT bad = good;
            bad[at] = static_cast<char>(value);
            for (size_t size = 1; size <= bad.size(); ++size) {
                HOLDER h(bad.substr(0, size));
                const TEXT once = h.saved();
                EXPECT_EQ(HOLDER(once).saved(), once) << at << " " << value << " " << size;
            }
        }
}

TEST(BuildAttributes, scopes_of_sections_and_symbols_follow_what_they_name) {
    FILE_PTR file = new_file();
    ELF_SECTION* gone = add_section(*file, ".text.gone", "abcd");
    ELF_SECTION* kept = add_section(*file, ".text.kept", "abcd");
    OF_SYMBOL* lost = add_symbol(*file, "lost", kept, 0, OF_SYM_BINDING_GLOBAL);
    OF_SYMBOL* stays = add_symbol(*file, "stays", kept, 0, OF_SYM_BINDING_GLOBAL);
    OFBA_VENDOR_SCN* scn = file->build_attributes()->new_vscn("aeabi");
    OFBA_ATTR_LIST* sections = scn->new_attrlist(Tag_Section);
    sections->add_section(gone);
    sections->add_section(kept);
    sections->set_uval(6, 10);
    OFBA_ATTR_LIST* symbols = scn->new_attrlist(Tag_Symbol);
    symbols->add_symbol(lost);
    symbols->set_uval(6, 11);
    OFBA_ATTR_LIST* more = scn->new_attrlist(Tag_Symbol);
    more->add_symbol(lost);
    more->add_symbol(stays);
    more->set_uval(7, 'M');
    EXPECT_EQ(file->abi_battr_section_uval(gone, 6), 10u);
    EXPECT_EQ(file->abi_battr_symbol_uval(lost, 6), 11u);
    EXPECT_EQ(file->abi_battr_symbol_uval(stays, 6), 0u);

    file->section_table()->delete_section(gone->id());
    file->symbol_table()->delete_symbol(lost->id());
    file->section_table()->purge_deleted_sections();
    EXPECT_EQ(sections->ids(), std::vector<unsigned>{kept->id()});
    EXPECT_EQ(sections->section(0), kept);
    EXPECT_EQ(file->abi_battr_section_uval(kept, 6), 10u);
    ASSERT_EQ(scn->attrlist_num(), 2u); // the list without symbols is gone
    EXPECT_EQ(file->abi_battr_symbol_uval(stays, 7), unsigned{'M'});
    EXPECT_EQ(scn->attrlist(1)->symbol(0), stays);

    FILE_PTR again = read_file(saved(*file));
    OF_SECTION* read = again->section_table()->section_name(".text.kept", 0);
    EXPECT_EQ(again->abi_battr_section_uval(read, 6), 10u);
}

TEST(BuildAttributes, a_file_that_is_saved_keeps_them_changed_or_not) {
    FILE_PTR made = sample(OF_ENDIAN_BIG);
    EXPECT_FALSE(made->build_attributes_exist());
    made->abi_battr_create(6)->val.uval = 13;
    made->set_producer("qv", 4, 5, 3);
    FILE_PTR read = read_file(saved(*made));
    EXPECT_EQ(read->abi_battr_uval(6), 13u);
    EXPECT_STREQ(read->producer_name(), "qv");
    EXPECT_STREQ(read->producer_version_str(), "4.5.3");
    FILE_PTR untouched = read_file(saved(*read));
    EXPECT_EQ(untouched->abi_battr_uval(6), 13u);
    untouched->abi_battr_vendor_section()->file_list()->set_uval(6, 14);
    FILE_PTR changed = read_file(saved(*untouched));
    EXPECT_EQ(changed->abi_battr_uval(6), 14u);
    EXPECT_TRUE(errors.empty());
}

TEST(BuildAttributes, a_locked_table_takes_no_changes) {
    FILE_PTR file = sample(OF_ENDIAN_LITTLE);
    file->abi_battr_create(6)->val.uval = 10;
    OFBA_ATTR_LIST* list = file->abi_battr_vendor_section()->file_list();
    file->set_state(OF_STATE_LOCKED);
    EXPECT_EQ(list->set_uval(6, 11), -1);
    EXPECT_EQ(file->abi_battr_uval(6), 10u);
    EXPECT_EQ(errors.size(), 1u);
}

TEST(BuildAttributes, producer_versions_are_stored_plus_one) {
    FILE_PTR file = new_file();
    unsigned version = 99;
    EXPECT_STREQ(file->producer_version_str(), "unknown");
    EXPECT_FALSE(file->producer_major_version(version));
    file->set_producer("qv", 0, 2, 0);
    EXPECT_TRUE(file->producer_major_version(version));
    EXPECT_EQ(version, 0u);
    EXPECT_EQ(file->qv_battr_uval(10), 3u);
    file->qv_battr_vendor_section()->file_list()->set_uval(12, 0);
    EXPECT_STREQ(file->producer_version_str(), "0.2.x");
}

TEST(BuildAttributes, values_have_words) {
    FILE_PTR file = new_file();
    struct ROW {
        const char* vendor;
        unsigned tag;
        unsigned value;
        const char* text;
    };
    const ROW rows[] = {
        {"aeabi", 8, 1, "Some ARM instructions used"},
        {"aeabi", 9, 2, "Some Thumb2 instructions used"},
        {"aeabi", 18, 2, "Size of wchar_t is 2"},
        {"aeabi", 26, 2, "Enum containers are 32-bit"},
        {"aeabi", 6, 13, "ARM v7E-M"},
        {"aeabi", 6, 21, "ARM v8.1-M.mainline"},
        {"aeabi", 6, 77, "77"},
        {"aeabi", 90, 1, "(unknown)"},
        {"QV", 4, 2, "Dinkumware"},
        {"QV", 258, 10, "ARM v7"},
        {"QV", 264, 5, "5"},
        {"QV", 264, 6, "Some FPv4-SP-D16 instructions used"},
    };
    for (const ROW& row : rows) {
        const OFBA_TAG* tag = file->battr_create(row.vendor, row.tag)->tag;
        const char* text = nullptr;
        file->machine_db()->of_tag_value(tag, {row.value, ""}, text);
        EXPECT_STREQ(text, row.text) << row.vendor << " " << row.tag;
    }
    EXPECT_STREQ(file->abi_battr_vendor_section()->tag_name("Tag_DIV_use")->name, "Tag_DIV_use");
    EXPECT_EQ(file->abi_battr_vendor_section()->tag_name("Tag_DIV_use")->number, 44u);
}

} // namespace
