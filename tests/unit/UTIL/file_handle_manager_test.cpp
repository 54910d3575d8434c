#include "UTIL/file_handle_manager.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

class FileHandles : public testing::Test {
  protected:
    void SetUp() override {
        std::string name = (std::filesystem::temp_directory_path() / "qvfhmXXXXXX").string();
        dir_ = mkdtemp(name.data());
    }
    void TearDown() override { std::filesystem::remove_all(dir_); }

    std::string path(int i) const { return dir_ + "/f" + std::to_string(i); }
    std::string write(int i, const std::string& text) const {
        std::ofstream(path(i)) << text;
        return path(i);
    }

    std::string dir_;
    FILE_HANDLE_MANAGER fhm_;
};

TEST_F(FileHandles, the_thirteenth_file_evicts_the_least_recently_used) {
    std::vector<FHM_FILE*> files;
    for (int i = 0; i < 13; i++) {
        files.push_back(fhm_.open(write(i, "0123456789").c_str(), "rb"));
        ASSERT_NE(files.back(), nullptr);
        std::fgetc(files.back()->fp());
        if (i == 11) files[0]->fp(); // so that file 1 is the oldest
    }
    EXPECT_TRUE(files[0]->is_open());
    EXPECT_FALSE(files[1]->is_open());
    EXPECT_EQ(fhm_.open_handle_count(), 12);
    EXPECT_EQ(std::fgetc(files[1]->fp()), '1') << "opened again where it was left";
    EXPECT_EQ(files[1]->reopen_count(), 1);
    EXPECT_EQ(fhm_.open_handle_count(), 12);
}

TEST_F(FileHandles, persistent_files_stay_and_a_further_open_fails) {
    for (int i = 0; i < 12; i++) fhm_.open(write(i, "x").c_str(), "r")->set_persistent(true);
    EXPECT_EQ(fhm_.open(write(12, "x").c_str(), "r"), nullptr);
    EXPECT_EQ(fhm_.file_count(), 12);
}

TEST_F(FileHandles, a_written_file_is_opened_again_without_losing_its_text) {
    FHM_FILE* file = fhm_.open(path(0).c_str(), "w");
    ASSERT_NE(file, nullptr);
    std::fputs("abc", file->fp());
    EXPECT_EQ(file->evict(), 0);
    EXPECT_FALSE(file->is_open());
    EXPECT_EQ(file->evict(), -1) << "there is no handle to give up";
    std::fputs("def", file->fp());
    EXPECT_EQ(fhm_.close(file), 0);
    std::ifstream in(path(0));
    std::string text;
    in >> text;
    EXPECT_EQ(text, "abcdef");
}

TEST_F(FileHandles, a_full_table_with_gaps_is_closed_up_before_it_grows) {
    write(0, "x");
    std::vector<FHM_FILE*> files;
    for (int i = 0; i < FILE_HANDLE_MANAGER::INITIAL_FILE_CAPACITY; i++)
        files.push_back(fhm_.open_input(path(0).c_str()));
    fhm_.close(files[10]);
    fhm_.open_input(path(0).c_str());
    EXPECT_EQ(fhm_.file_capacity(), 1024);
    EXPECT_EQ(fhm_.file_count(), 1024);
    fhm_.open_input(path(0).c_str());
    EXPECT_EQ(fhm_.file_capacity(), 2048);
    EXPECT_EQ(fhm_.close(files[1000]), 0) << "its index moved with it";
}

TEST_F(FileHandles, the_standard_streams_are_never_closed) {
    EXPECT_EQ(fhm_.close(fhm_.std_out()), 0);
    EXPECT_EQ(fhm_.std_out()->fp(), stdout);
    EXPECT_EQ(fhm_.std_out()->evict(), -1);
    EXPECT_STREQ(fhm_.std_err()->name(), "(stderr)");
}

TEST_F(FileHandles, an_input_is_read_in_place_without_a_handle) {
    FHM_FILE* file = fhm_.open_input(write(0, "hello").c_str());
    ASSERT_NE(file, nullptr);
    EXPECT_FALSE(file->is_open());
    EXPECT_EQ(std::string(file->contents().begin(), file->contents().end()), "hello");
    EXPECT_EQ(file->contents().data(), file->contents().data());
    FHM_FILE* empty = fhm_.open_input(write(1, "").c_str());
    ASSERT_NE(empty, nullptr);
    EXPECT_TRUE(empty->contents().empty());
    EXPECT_TRUE(empty->has_contents());
}

TEST_F(FileHandles, what_cannot_be_read_is_no_input) {
    EXPECT_EQ(fhm_.open_input(path(7).c_str()), nullptr);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(fhm_.open_input(dir_.c_str()), nullptr);
    EXPECT_EQ(errno, EISDIR);
    EXPECT_EQ(fhm_.open("", "r"), nullptr);
    EXPECT_EQ(fhm_.file_count(), 0);
}

TEST_F(FileHandles, contents_of_an_output_follow_its_growth) {
    FHM_FILE* file = fhm_.open(path(0).c_str(), "wb+");
    std::fputs("abc", file->fp());
    EXPECT_EQ(file->contents().size(), 3u);
    std::fputs("de", file->fp());
    EXPECT_EQ(file->contents().size(), 5u);
    EXPECT_EQ(file->contents()[4], 'e');
}

} // namespace
