// What is refused, and the words it is refused with; what damaged extra sections say.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "../ofe_support.h"
#include "DIAG/diagnostic.h"
#include "OBJEDIT04/elf/elf_scn_attr_table.h"
#include "OBJEDIT04/elf/elf_symalias_table.h"
#include "UTIL/data_map.h"

using namespace OFE;
using namespace ofe_test;

namespace {

// What somebody says through the diagnostics.
std::string said(const std::function<void()>& action) {
    char* text = nullptr;
    size_t size = 0;
    FILE* to = open_memstream(&text, &size);
    DIAGNOSTIC::wrap_enabled_m = false;
    DIAGNOSTIC::fp_m = to;
    action();
    DIAGNOSTIC::fp_m = nullptr;
    fclose(to);
    std::string result(text, size);
    free(text);
    return result;
}

struct REFUSAL {
    OF_ERROR_CODE code;
    const char* text;
    std::function<void(OBJECT_FILE&)> action;
};

OF_SYMBOL* main_of(OBJECT_FILE& f) {
    return f.symbol_table()->symbol_name("main", 0);
}

} // namespace

TEST(refusals, name_what_was_wrong) {
    const REFUSAL CASES[] = {
        {OF_ERROR_ILLEGAL, "invalid endian setting",
         [](OBJECT_FILE& f) { f.set_machine_endian(static_cast<OF_ENDIAN>(3)); }},
        {OF_ERROR_ILLEGAL, "invalid file type",
         [](OBJECT_FILE& f) { f.set_file_type(static_cast<OF_FILE_TYPE>(5)); }},
        {OF_ERROR_ILLEGAL, "only powers of 2 are valid alignment values",
         [](OBJECT_FILE& f) { f.section_table()->section(1)->set_align(12); }},
        {OF_ERROR_ILLEGAL,
         "To mark a symbol as being defined, you must use set_section_id() to set its section "
         "reference",
         [](OBJECT_FILE& f) { main_of(f)->set_kind(OF_SYM_KIND_DEFINED); }},
        {OF_ERROR_ILLEGAL, "Invalid symbol kind 5",
         [](OBJECT_FILE& f) { main_of(f)->set_kind(OF_SYM_KIND_DEBUG); }},
        {OF_ERROR_ILLEGAL, "Invalid symbol binding value 0x4",
         [](OBJECT_FILE& f) { main_of(f)->set_binding(static_cast<OF_SYM_BINDING>(4)); }},
        {OF_ERROR_ILLEGAL, "Invalid symbol type value 0x7",
         [](OBJECT_FILE& f) { main_of(f)->set_type(static_cast<OF_SYM_TYPE>(7)); }},
        {OF_ERROR_WARNING, "relocation template 900 not found; returning OFR_INVALID",
         [](OBJECT_FILE& f) { EXPECT_EQ(f.reloc_type(900), &OFR_INVALID); }},
        {OF_ERROR_INTERNAL,
         "illegal call to OBJECT_FILE::get_file_data() when the OBJECT_FILE object was not read "
         "from an input file",
         [](OBJECT_FILE& f) {
             DATA_MAP map;
             f.get_file_data(map, 0, 4);
         }},
        {OF_ERROR_INTERNAL,
         "illegal call to OBJECT_FILE::put_file_data() when a valid output file pointer is not "
         "present",
         [](OBJECT_FILE& f) { f.put_file_bytes("x", 1, 0); }},
        {OF_ERROR_ACCESS, "failed to open \"/nowhere/a.o\" for writing",
         [](OBJECT_FILE& f) { EXPECT_EQ(f.save_obj("/nowhere/a.o"), -1); }},
        {OF_ERROR_ILLEGAL,
         "this OBJECT_FILE object is currently in the open state, and must be in at least the "
         "saved state to perform the requested operation ",
         [](OBJECT_FILE& f) { f.section_table()->section(1)->set_direct_write(); }},
    };
    for (const REFUSAL& c : CASES) {
        FILE_PTR f = sample(OF_ENDIAN_LITTLE);
        c.action(*f);
        ASSERT_EQ(errors.size(), 1u) << c.text;
        EXPECT_EQ(errors[0].code, c.code) << c.text;
        EXPECT_EQ(errors[0].text, c.text);
    }
}

TEST(refusals, of_a_save_to_nowhere_are_silent_or_told) {
    FILE_PTR f = sample(OF_ENDIAN_LITTLE);
    EXPECT_EQ(f->save_obj(static_cast<FHM_FILE*>(nullptr)), -1);
    EXPECT_TRUE(errors.empty());
    EXPECT_EQ(f->load_obj(static_cast<FHM_FILE*>(nullptr)), -1);
    EXPECT_EQ(f->load_obj("/nowhere/a.o"), -1);
}

// A step that fails is told with the states it was between, after what made it fail.
TEST(refusals, a_step_that_fails_names_its_states) {
    FILE_PTR f = new_file();
    OF_SECTION* data = add_section(*f, ".data", "abcd");
    f->section_table()->new_group("lonely")->add_member(data); // has no signature
    EXPECT_EQ(f->set_state(OF_STATE_LOCKED), -1);
    ASSERT_GE(errors.size(), 2u);
    EXPECT_EQ(errors[0].code, OF_ERROR_CORRUPT);
    EXPECT_EQ(errors[0].text, "a symbol has not been specified for the group section lonely");
    EXPECT_EQ(errors.back().code, OF_ERROR_INTERNAL);
    EXPECT_EQ(errors.back().text,
              "an error was encountered while progressing an OBJECT_FILE object from the open to "
              "the locked state");
    EXPECT_EQ(f->own_state(), OF_STATE_OPEN);
}

TEST(refusals, a_first_symbol_that_is_none_gets_a_null_symbol_before_it) {
    BYTES b = saved(*sample(OF_ENDIAN_LITTLE));
    FILE_PTR f = read_file(b);
    OF_SECTION* symtab = f->section_table()->section_name(".symtab", 0);
    b[symtab->file_offset() + 4] = 9; // a value
    f = read_file(b);
    const unsigned symbols = f->symbol_table()->symnum();
    ASSERT_EQ(f->set_state(OF_STATE_LOCKED), 0);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].code, OF_ERROR_INTERNAL);
    EXPECT_EQ(errors[0].text, "symbol 0 is not a NULL symbol");
    EXPECT_EQ(f->symbol_table()->symnum(), symbols + 1);
    EXPECT_TRUE(elf_api(f->symbol_table()->symbol(0))->is_null());
}

TEST(refusals, a_direct_write_over_data_in_memory_is_illegal) {
    TEMP_FILE temp;
    FILE_PTR f = new_file();
    OF_SECTION* data = add_section(*f, ".data", "abcd");
    FHM_FILE* out = fhm_open(temp.name(), "wb+");
    ASSERT_EQ(f->save_obj(out), 0);
    data->raw_data().set_copy(std::span(reinterpret_cast<const uint8_t*>("efgh"), 4));
    EXPECT_EQ(data->set_direct_write(), -1);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].code, OF_ERROR_ILLEGAL);
    EXPECT_EQ(errors[0].text, std::string("illegal direct write to raw data for section .data in "
                                          "file ") +
                                  temp.name() + " ");
    fhm_close(out);
}

TEST(refusals, an_archive_member_has_a_size) {
    TEMP_FILE temp;
    const BYTES object = saved(*sample(OF_ENDIAN_LITTLE));
    FILE* fp = std::fopen(temp.name(), "wb");
    std::fwrite("12345678", 1, 8, fp);
    std::fwrite(object.data(), 1, object.size(), fp);
    std::fclose(fp);
    FHM_FILE* file = fhm_open(temp.name(), "rb");
    ASSERT_TRUE(file);
    std::fseek(file->fp(), 8, SEEK_SET);
    OBJECT_FILE* member = nullptr;
    EXPECT_EQ(said([&] { member = new_OBJECT_FILE(file, 0, "lib.a<a.o>", keep_error); }),
              "error: a file size must be specified when reading an archive member; OBJECT_FILE "
              "not created\n");
    EXPECT_EQ(member, nullptr);
    FILE_PTR sized(
        new_OBJECT_FILE(file, static_cast<unsigned>(object.size()), "lib.a<a.o>", keep_error));
    ASSERT_TRUE(sized);
    EXPECT_TRUE(main_of(*sized));
    sized.reset();
    fhm_close(file);
}

namespace {

// A saved file with a section of these bytes, which would be made anew under its own name.
BYTES with_section(const char* name, const BYTES& bytes) {
    FILE_PTR f = sample(OF_ENDIAN_LITTLE);
    auto* s = static_cast<ELF_SECTION*>(f->section_table()->new_section(".extra"));
    s->write_to_raw_data(bytes.data(), static_cast<unsigned>(bytes.size()), 0);
    std::string other(name);
    other[1] = 'X';
    s->set_name(other.c_str());
    s->set_sh_type(SHT_PROGBITS);
    BYTES b = saved(*f);
    auto at = std::search(b.begin(), b.end(), other.begin(), other.end());
    at[1] = static_cast<uint8_t>(name[1]);
    return b;
}

// A header of extended section attributes: version bytes, entries, size of an entry.
BYTES attributes(uint8_t version, uint8_t second, uint8_t optional, unsigned count, unsigned size,
                 BYTES values) {
    constexpr size_t header = 26;
    BYTES b(header + values.size());
    b[0] = version, b[1] = second, b[2] = optional;
    write_u32(&b[20], count, false);
    write_u16(&b[24], static_cast<uint16_t>(size), false);
    std::copy(values.begin(), values.end(), b.begin() + header);
    return b;
}

} // namespace

TEST(refusals, extended_section_attributes_of_another_format_are_ignored) {
    struct {
        BYTES bytes;
        const char* text; // null: taken
        unsigned value;   // of section 1
    } const CASES[] = {
        {attributes(1, 0, 0, 2, 1, {0, 2}), nullptr, 2},
        {attributes(1, 0, 0, 2, 2, {0, 0, 2, 1}), nullptr, 0x102},
        {{1, 0, 0},
         "Invalid QV extended section attributes format. All extended section attributes will be "
         "ignored. Tool chain update recommended.",
         0},
        {attributes(1, 0, 0, 0x40000000, 4, {}),
         "Invalid QV extended section attributes format. All extended section attributes will be "
         "ignored. Tool chain update recommended.",
         0},
        {attributes(2, 0, 0, 2, 1, {0, 2}),
         "Unrecognized QV extended section attributes format. All extended section attributes "
         "will be ignored. Linker update recommended.",
         0},
        {attributes(1, 1, 0, 2, 1, {0, 2}),
         "Unrecognized QV extended section attributes format. All extended section attributes "
         "will be ignored. Linker update recommended.",
         0},
        {attributes(0, 0, 0, 2, 1, {0, 2}),
         "Obsolete QV extended section attributes format. All extended section attributes will be "
         "ignored. Linker update recommended.",
         0},
        {attributes(1, 0, 1, 2, 1, {0, 2}),
         "Updated extended section attributes format. Some extended section attributes may be "
         "ignored. Linker update recommended.",
         2},
    };
    for (const auto& c : CASES) {
        const BYTES b = with_section(".QV.section.flags", c.bytes);
        OBJECT_FILE::tool_name_m = "Linker";
        FILE_PTR read = read_file(b);
        OBJECT_FILE::tool_name_m = "";
        ASSERT_TRUE(read);
        OF_RAW_SECTION raw;
        ASSERT_TRUE(read->section_table()->raw_section(1, raw));
        EXPECT_EQ(raw.ext_flags, c.value) << (c.text ? c.text : "taken");
        EXPECT_EQ(errors.size(), c.text ? 1u : 0u);
        if (c.text && !errors.empty()) {
            EXPECT_EQ(errors[0].code, OF_ERROR_WARNING);
            EXPECT_EQ(errors[0].text, c.text);
        }
    }
}

TEST(refusals, symbol_aliases_of_another_format_are_ignored) {
    const std::string ALL = "All symbol aliases will be ignored. ";
    auto update = [](const char* what) {
        return std::string("Updating your ") + what +
               " to the latest version should resolve this issue. \n";
    };
    auto table = [](uint8_t version, uint8_t second, uint8_t optional, uint16_t count,
                    const std::string& rest) {
        BYTES b{version, second, optional, 0, 0, 0};
        write_u16(&b[4], count, false);
        b.insert(b.end(), rest.begin(), rest.end());
        return b;
    };
    const std::string pairs("QV\0\1\0\0\0\2\0\0\0\3\0\0\0\3\0\0\0", 19);
    const std::string other("XY\0\1\0\0\0\2\0\0\0\3\0\0\0\3\0\0\0", 19);
    struct {
        BYTES bytes;
        std::string text; // after "The file "input.o""
        size_t aliases;
    } const CASES[] = {
        {table(1, 0, 0, 2, pairs), "", 1}, // the second pair has equal ids
        {{1, 0},
         " does not specify a valid extended symbol alias table format. " + ALL +
             update("tool chain"),
         0},
        {table(2, 0, 0, 2, pairs),
         " uses a new symbol alias table format version which is not "
         "supported by this tool version. " +
             ALL + update("linker"),
         0},
        {table(1, 7, 0, 2, pairs),
         " uses a new symbol alias table format version which is not "
         "supported by this tool version. " +
             ALL + update("linker"),
         0},
        {table(0, 0, 0, 2, pairs),
         " uses a symbol alias table format version which is no longer "
         "supported. " +
             ALL + update("assembler"),
         0},
        {table(1, 0, 1, 2, pairs), "", 1},
        {table(1, 0, 0, 3, pairs),
         " does not specify a valid symbol alias table format. " + ALL + update("tool chain"), 0},
        {table(1, 0, 0, 2, "QV"),
         " does not specify a valid symbol alias table format. " + ALL + update("tool chain"), 0},
        {table(1, 0, 0, 2, other),
         " has been processed by a non-QV vendor, and its symbol aliases "
         "may be invalid. All symbol aliases will be ignored.\n",
         0},
    };
    for (const auto& c : CASES) {
        FILE_PTR f = read_file(with_section(".QV.symbol.alias", c.bytes));
        ASSERT_TRUE(f);
        size_t aliases = 99;
        const std::string text = said([&] {
            ELF_SYMALIAS_TABLE* read = elf_api(f.get())->symalias_table(false);
            if (read) aliases = read->alias_map().size();
        });
        EXPECT_EQ(aliases, c.aliases) << c.text;
        // The remark is for those who ask for remarks.
        EXPECT_EQ(text, c.aliases ? "" : "warning: The file \"input.o\"" + c.text);
    }
}
