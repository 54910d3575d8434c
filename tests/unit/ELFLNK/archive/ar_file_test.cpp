// Archives are built in memory, well-formed and broken.
#include "ELFLNK/archive/ar_file.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

std::vector<std::string> errors;
std::vector<AR_ERROR_CODE> codes;

void note_error(AR_FILE*, AR_ERROR_CODE code, const char* text) {
    codes.push_back(code);
    errors.emplace_back(text);
}

/// A member with its header; `size` overrides what the header says.
std::string member(const std::string& field, const std::string& contents, long owner = 0,
                   long size = -1) {
    char header[61];
    snprintf(header, sizeof header, "%-16s%-12d%-6ld%-6d%-8o%-10ld`\n", field.c_str(), 0, owner, 0,
             0644u, size < 0 ? long(contents.size()) : size);
    return header + contents + (contents.size() % 2 != 0 ? "\n" : "");
}

std::string word(uint32_t value) {
    return {char(value >> 24), char(value >> 16), char(value >> 8), char(value)};
}

const std::string MAGIC = "!<arch>\n";

/// An archive over a text, read as far as the linker reads it.
struct Archive {
    std::string bytes;
    AR_FILE file;
    bool headers = false;
    bool toc = false;

    explicit Archive(std::string text)
        : bytes(std::move(text)),
          file("lib.a", {reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()},
               note_error) {
        errors.clear();
        codes.clear();
        headers = file.read_headers(true);
        toc = headers && file.create_toc();
    }
    std::vector<std::string> names() const {
        std::vector<std::string> list;
        for (const AR_MEMBER& m : file.members()) list.emplace_back(m.name);
        return list;
    }
    std::string contents(const char* name) const {
        const AR_MEMBER* found = file.find_member(name);
        if (found == nullptr) return "(none)";
        const auto view = file.contents(*found);
        return {view.begin(), view.end()};
    }
};

using names = std::vector<std::string>;

TEST(ar_file, short_names_and_odd_sizes) {
    Archive ar(MAGIC + member("a.o/", "odd") + member("fifteen_chars.o/", "even") +
               member("b.o/", ""));
    EXPECT_TRUE(ar.toc);
    EXPECT_EQ(ar.names(), (names{"a.o", "fifteen_chars.o", "b.o"}));
    EXPECT_EQ(ar.contents("a.o"), "odd");
    EXPECT_EQ(ar.contents("fifteen_chars.o"), "even");
    EXPECT_EQ(ar.contents("b.o"), "");
    EXPECT_EQ(ar.file.abi(), AR_ABI_NONE);
    EXPECT_FALSE(ar.file.has_symbol_directory());
    EXPECT_TRUE(errors.empty());
}

TEST(ar_file, long_names_by_offset_in_the_slash_table) {
    const std::string table = "a_name_of_more_than_15.o/\nanother_long_name.o/\n";
    Archive ar(MAGIC + member("//", table) + member("/0", "x") + member("/26", "y") +
               member("c.o/", "z"));
    EXPECT_EQ(ar.names(), (names{"a_name_of_more_than_15.o", "another_long_name.o", "c.o"}));
    EXPECT_EQ(ar.file.abi(), AR_ABI_SLASHES);
    EXPECT_EQ(ar.contents("another_long_name.o"), "y");
}

TEST(ar_file, long_names_by_owner_in_the_filenames_table) {
    const std::string table = "\na_name_of_more_than_15.o/\nanother_long_name.o/\n";
    Archive ar(MAGIC + member("<filenames>/", table) + member("a_name_of_more_", "x", 1) +
               member("another_long_na", "y", 27) + member("c.o/", "z"));
    EXPECT_EQ(ar.names(), (names{"a_name_of_more_than_15.o", "another_long_name.o", "c.o"}));
    EXPECT_EQ(ar.file.abi(), AR_ABI_FILENAMES);
}

TEST(ar_file, the_symbol_directory_leads_to_members) {
    const std::string first = member("a.o/", "AAAA");
    const std::string symbol_names = std::string("f\0g\0f\0", 6);
    const uint32_t a = 8 + 60 + 4 + 12 + 6;
    const uint32_t b = a + uint32_t(first.size());
    const std::string directory = word(3) + word(a) + word(b) + word(b) + symbol_names;
    Archive ar(MAGIC + member("/", directory) + first + member("b.o/", "BBBB"));
    ASSERT_TRUE(ar.toc);
    ASSERT_EQ(ar.file.symbols().size(), 3u);
    EXPECT_EQ(ar.file.symbols()[0].name, "f");
    EXPECT_EQ(ar.file.symbols()[1].name, "g");
    EXPECT_EQ(ar.file.symbols()[2].name, "f");
    EXPECT_EQ(ar.file.member_at(ar.file.symbols()[0].header_offset)->name, "a.o");
    EXPECT_EQ(ar.file.member_at(ar.file.symbols()[2].header_offset)->name, "b.o");
    EXPECT_EQ(ar.file.member_at(a + 2), nullptr);
    EXPECT_EQ(ar.file.member_at(8), nullptr); // the directory is no member
}

struct BROKEN {
    const char* what;
    std::string bytes;
    AR_ERROR_CODE code;
    const char* message;
    size_t members_kept;
};

class BROKEN_ARCHIVE : public testing::TestWithParam<BROKEN> {};

TEST_P(BROKEN_ARCHIVE, is_reported_once_and_keeps_what_was_read) {
    Archive ar(GetParam().bytes);
    EXPECT_FALSE(ar.toc);
    ASSERT_EQ(errors.size(), 1u) << GetParam().what;
    EXPECT_EQ(codes[0], GetParam().code);
    EXPECT_EQ(errors[0].substr(0, std::string(GetParam().message).size()), GetParam().message);
    EXPECT_EQ(ar.file.members().size(), GetParam().members_kept);
}

std::string with(std::string text, size_t at, const char* replacement) {
    return text.replace(at, std::string(replacement).size(), replacement);
}

INSTANTIATE_TEST_SUITE_P(
    , BROKEN_ARCHIVE,
    testing::Values(
        BROKEN{"thin", "!<thin>\n" + member("a.o/", "", 0, 4), AR_BAD_ARCHIVE,
               "'lib.a' is a thin archive", 0},
        BROKEN{"header cut", MAGIC + member("a.o/", "AA") + member("b.o/", "").substr(0, 30),
               AR_BAD_HEADER, "Cannot read member header: 'lib.a'", 1},
        BROKEN{"contents cut", MAGIC + member("a.o/", "AA") + member("b.o/", "BB", 0, 3),
               AR_BAD_HEADER, "Corrupt member header: 'lib.a'", 1},
        BROKEN{"end mark", MAGIC + member("a.o/", "AA") + with(member("b.o/", "BB"), 58, "xx"),
               AR_BAD_HEADER, "Corrupt member header: 'lib.a'", 1},
        BROKEN{"size", MAGIC + with(member("a.o/", "AA"), 48, "2x"), AR_BAD_HEADER,
               "Corrupt member header: 'lib.a'", 0},
        BROKEN{"size blank", MAGIC + with(member("a.o/", "AA"), 48, "          "), AR_BAD_HEADER,
               "Corrupt member header: 'lib.a'", 0},
        BROKEN{"date", MAGIC + with(member("a.o/", "AA"), 16, "x"), AR_BAD_HEADER,
               "Corrupt member header: 'lib.a'", 0},
        BROKEN{"offset at the table's end",
               MAGIC + member("//", "long_name_of_member.o/\n") + member("/24", "x"), AR_BAD_NAME,
               "Corrupt member name: '/24'", 0},
        BROKEN{"names that differ",
               MAGIC + member("<filenames>/", "\na_name_of_more_than_15.o/\n") +
                   member("b_name_of_more_", "x", 1),
               AR_BAD_NAME, "Corrupt member name: 'b_name_of_more_'", 0},
        BROKEN{"more symbols than bytes", MAGIC + member("/", word(0x40000000) + "abcd"),
               AR_BAD_SYMTAB, "Cannot read symbol table: 'lib.a'", 0},
        BROKEN{"no count", MAGIC + member("/", "ab"), AR_BAD_SYMTAB,
               "Cannot read symbol table: 'lib.a'", 0},
        BROKEN{"a name without end", MAGIC + member("/", word(1) + word(8) + "fgh"), AR_BAD_SYMTAB,
               "Cannot read symbol table: 'lib.a'", 0}));

TEST(ar_file, any_prefix_of_an_archive_is_read_without_harm) {
    const std::string table = "a_name_of_more_than_15.o/\n";
    const std::string whole = MAGIC + member("/", word(1) + word(0x96) + std::string("fn\0\0", 4)) +
                              member("//", table) + member("/0", "abc") + member("b.o/", "defg");
    ASSERT_TRUE(Archive(whole).toc);
    for (size_t size = MAGIC.size() + 1; size < whole.size(); size++) {
        Archive ar(whole.substr(0, size));
        EXPECT_LE(ar.file.members().size(), 2u);
        EXPECT_EQ(ar.toc, errors.empty()) << size;
        for (const AR_MEMBER& m : ar.file.members()) EXPECT_EQ(ar.file.contents(m).size(), m.size);
    }
}

TEST(ar_file, is_known_by_its_magic) {
    const auto bytes = [](const char* text, size_t size) {
        return std::span<const uint8_t>(reinterpret_cast<const uint8_t*>(text), size);
    };
    EXPECT_TRUE(AR_FILE::is_archive(bytes("!<arch>\n", 8)));
    EXPECT_TRUE(AR_FILE::is_archive(bytes("!<thin>\n", 8)));
    EXPECT_FALSE(AR_FILE::is_archive(bytes("!<arch>\n", 7)));
    EXPECT_FALSE(AR_FILE::is_archive(bytes("", 0)));
    EXPECT_FALSE(AR_FILE::is_archive(bytes("\177ELF\1\1\1\0", 8)));
}

} // namespace
