// Archives are written, read back, and written again over themselves.
#include "ELFLNK/archive/ar_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "UTIL/file_handle_manager.h"

namespace fs = std::filesystem;

namespace {

std::vector<std::string> errors;

void note_error(AR_FILE*, AR_ERROR_CODE, const char* text) {
    errors.emplace_back(text);
}

class AR_WRITER : public testing::Test {
  protected:
    AR_WRITER() {
        char name[] = "/tmp/ar_writer.XXXXXX";
        dir_ = mkdtemp(name);
        errors.clear();
    }
    ~AR_WRITER() override { fs::remove_all(dir_); }

    std::string path(const std::string& name) const { return (dir_ / name).string(); }

    std::string file(const std::string& name, const std::string& contents) const {
        std::ofstream(path(name), std::ios::binary) << contents;
        return path(name);
    }

    // An object that defines the one, weakly the other, and refers to a third.
    std::string object(const std::string& name, const char* global, const char* weak) const {
        std::unique_ptr<OFE::OBJECT_FILE> obj(OFE::new_OBJECT_FILE(
            OFE::OF_FORMAT_ELF, OFE::OF_FORMAT_VER_ELF1, OFE::OF_MACHINE_ARM, nullptr, ""));
        obj->set_file_type(OFE::OF_FILE_TYPE_RELOCATABLE);
        const auto add = [&](const char* text, OFE::OF_SYM_BINDING binding, OFE::OF_SYM_KIND kind) {
            OFE::OF_SYMBOL* sym = obj->symbol_table()->new_symbol();
            sym->set_name(text);
            sym->set_binding(binding);
            sym->set_kind(kind);
        };
        add("local", OFE::OF_SYM_BINDING_LOCAL, OFE::OF_SYM_KIND_ABSOLUTE);
        add(global, OFE::OF_SYM_BINDING_GLOBAL, OFE::OF_SYM_KIND_ABSOLUTE);
        add(weak, OFE::OF_SYM_BINDING_WEAK, OFE::OF_SYM_KIND_ABSOLUTE);
        add("elsewhere", OFE::OF_SYM_BINDING_GLOBAL, OFE::OF_SYM_KIND_UNDEFINED);
        EXPECT_EQ(obj->save_obj(path(name).c_str()), 0);
        return path(name);
    }

    // The archive as a reader sees it: "member=contents" and "symbol>member" lines.
    std::vector<std::string> read(const std::string& archive) const {
        std::vector<std::string> lines;
        FHM_FILE* bytes = fhm_open_input(archive.c_str());
        AR_FILE ar(archive.c_str(), bytes, note_error);
        EXPECT_TRUE(ar.read_headers(true) && ar.create_toc());
        for (const AR_MEMBER& m : ar.members()) {
            const auto data = ar.contents(m);
            std::string text(data.begin(), data.end());
            if (text.starts_with("\177ELF")) text = "elf";
            lines.push_back(std::string(m.name) + "=" + text);
        }
        for (const AR_SYMBOL& s : ar.symbols()) {
            const AR_MEMBER* m = ar.member_at(s.header_offset);
            lines.push_back(std::string(s.name) + ">" + (m ? std::string(m->name) : "?"));
        }
        abi_read_ = ar.abi();
        return lines;
    }

    fs::path dir_;
    mutable AR_ABI abi_read_ = AR_ABI_UNKNOWN;
};

class AR_WRITER_FORM : public AR_WRITER, public testing::WithParamInterface<AR_ABI> {};

using lines = std::vector<std::string>;

TEST_P(AR_WRITER_FORM, what_is_written_is_read_back) {
    AR_FILE ar(path("lib.a").c_str(), std::span<const uint8_t>(), note_error);
    ASSERT_TRUE(ar.add_member(file("odd", "odd").c_str()));
    ASSERT_TRUE(ar.add_member(object("fifteen_chars.o", "one", "two").c_str()));
    ASSERT_TRUE(ar.add_member(object("sixteen_chars__.o", "three", "two").c_str()));
    ASSERT_TRUE(ar.add_member(file("sixteen_chars_too", "even").c_str()));
    ASSERT_TRUE(ar.write_archive(GetParam()));
    EXPECT_EQ(read(path("lib.a")),
              (lines{"odd=odd", "fifteen_chars.o=elf", "sixteen_chars__.o=elf",
                     "sixteen_chars_too=even", "one>fifteen_chars.o", "two>fifteen_chars.o",
                     "three>sixteen_chars__.o", "two>sixteen_chars__.o"}));
    EXPECT_EQ(abi_read_, GetParam());
    EXPECT_TRUE(errors.empty());
}

TEST_P(AR_WRITER_FORM, an_archive_is_written_over_itself) {
    {
        AR_FILE ar(path("lib.a").c_str(), std::span<const uint8_t>(), note_error);
        for (const char* name : {"first", "a_name_that_is_long.o", "last"})
            ASSERT_TRUE(ar.add_member(file(name, name).c_str()));
        ASSERT_TRUE(ar.write_archive(AR_ABI_SLASHES));
    }
    FHM_FILE* bytes = fhm_open_input(path("lib.a").c_str());
    AR_FILE ar(path("lib.a").c_str(), bytes, note_error);
    ASSERT_TRUE(ar.read_headers(true) && ar.create_toc());
    EXPECT_TRUE(ar.delete_member("first"));
    EXPECT_FALSE(ar.delete_member("first"));
    ASSERT_TRUE(ar.add_member(file("last", "new").c_str()));
    ASSERT_TRUE(ar.add_member(object("added.o", "one", "two").c_str()));
    ASSERT_TRUE(ar.write_archive(GetParam()));
    EXPECT_EQ(read(path("lib.a")), (lines{"a_name_that_is_long.o=a_name_that_is_long.o", "last=new",
                                          "added.o=elf", "one>added.o", "two>added.o"}));
    // Nothing but the archive and its sources is left.
    size_t count = 0;
    for (const auto& entry : fs::directory_iterator(dir_)) count += entry.is_regular_file();
    EXPECT_EQ(count, 5u);
}

INSTANTIATE_TEST_SUITE_P(, AR_WRITER_FORM, testing::Values(AR_ABI_SLASHES, AR_ABI_FILENAMES));

TEST_F(AR_WRITER, without_a_table_long_names_are_cut) {
    AR_FILE ar(path("lib.a").c_str(), std::span<const uint8_t>(), note_error);
    ASSERT_TRUE(ar.add_member(file("sixteen_chars_too", "x").c_str()));
    ASSERT_TRUE(ar.write_archive(AR_ABI_NONE));
    EXPECT_EQ(read(path("lib.a")), (lines{"sixteen_chars_t=x"}));
}

TEST_F(AR_WRITER, a_failure_puts_the_old_archive_back) {
    const std::string old = file("lib.a", "!<arch>\n");
    AR_FILE ar(old.c_str(), fhm_open_input(old.c_str()), note_error);
    ASSERT_TRUE(ar.add_member(file("gone", "x").c_str()));
    fs::remove(path("gone"));
    EXPECT_FALSE(ar.write_archive(AR_ABI_SLASHES));
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0], "Cannot read member file: '" + path("gone") + "'");
    EXPECT_EQ(fs::file_size(old), 8u);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir_), fs::directory_iterator()), 1);
    EXPECT_FALSE(ar.add_member(path("gone").c_str()));
}

TEST_F(AR_WRITER, what_does_not_fit_its_field_is_refused) {
    AR_FILE ar(path("lib.a").c_str(), std::span<const uint8_t>(), note_error);
    file("large", "");
    fs::resize_file(path("large"), 100'000'000);
    ASSERT_TRUE(ar.add_member(path("large").c_str()));
    EXPECT_FALSE(ar.write_archive(AR_ABI_SLASHES));
    EXPECT_EQ(errors, (lines{"Member file too large: 'large/'"}));
    EXPECT_FALSE(fs::exists(path("lib.a")));
}

TEST_F(AR_WRITER, an_archive_that_cannot_be_made) {
    AR_FILE ar(path("nowhere/lib.a").c_str(), std::span<const uint8_t>(), note_error);
    EXPECT_FALSE(ar.write_archive(AR_ABI_SLASHES));
    EXPECT_EQ(errors, (lines{"Cannot create archive: '" + path("nowhere/lib.a") + "'"}));
}

} // namespace
