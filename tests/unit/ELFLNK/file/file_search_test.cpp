// Where a name is looked for, and in which order.
#include "ELFLNK/file/file_manager.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

namespace fs = std::filesystem;

namespace {

/// A directory of its own, which is the current one.
class FILE_SEARCH : public testing::Test {
  protected:
    void SetUp() override {
        root_ = fs::temp_directory_path() / ("qv_file_search_" + std::to_string(getpid()));
        fs::create_directories(root_);
        before_ = fs::current_path();
        fs::current_path(root_);
        files_.set_default_ext(".obj");
    }
    void TearDown() override {
        fs::current_path(before_);
        fs::remove_all(root_);
    }
    static void make(const char* path) {
        if (fs::path(path).has_parent_path()) fs::create_directories(fs::path(path).parent_path());
        fclose(fopen(path, "w"));
    }
    std::string find(const char* name, bool search) {
        const char* path = files_.find_specific_file(name, search, false);
        return path == nullptr ? "(none)" : path;
    }
    std::vector<std::string> match(const char* pattern, bool search) {
        std::vector<std::string> list;
        files_.find_matching_files(pattern, list, search);
        return list;
    }

    FILE_MANAGER files_;
    fs::path root_;
    fs::path before_;
};

TEST_F(FILE_SEARCH, directories_of_the_command_line_go_before_those_of_the_environment) {
    files_.add_env_dir("env1");
    files_.add_env_dir("env2");
    files_.add_default_dir("opt1");
    files_.add_default_dir("opt2");
    EXPECT_EQ(files_.search_dirs(), (std::vector<std::string>{"opt1", "opt2", "env1", "env2"}));
    make("env2/lib.a");
    EXPECT_EQ(find("lib.a", true), "env2/lib.a");
    make("env1/lib.a");
    EXPECT_EQ(find("lib.a", true), "env1/lib.a");
    make("opt2/lib.a");
    EXPECT_EQ(find("lib.a", true), "opt2/lib.a");
    EXPECT_EQ(find("lib.a", false), "(none)");
    make("lib.a");
    EXPECT_EQ(find("lib.a", true), "opt2/lib.a");
    EXPECT_EQ(find("lib.a", false), "lib.a");
}

TEST_F(FILE_SEARCH, only_a_name_without_a_period_gets_the_extension) {
    make("main.obj");
    make("lib.v2.obj");
    make("dir/main.obj");
    files_.add_default_dir("dir");
    EXPECT_EQ(find("main", false), "main.obj");
    EXPECT_EQ(find("main", true), "dir/main.obj");
    EXPECT_EQ(find("lib.v2", false), "(none)");
    make("main");
    EXPECT_EQ(find("main", false), "main");
    EXPECT_EQ(find("", false), "(none)");
}

TEST_F(FILE_SEARCH, a_name_with_a_path_is_not_looked_for) {
    make("dir/sub/x.o");
    files_.add_default_dir("dir");
    EXPECT_EQ(find("sub/x.o", true), "(none)");
    EXPECT_EQ(find("./x.o", true), "(none)");
    EXPECT_EQ(find("dir/sub/x.o", true), "dir/sub/x.o");
    EXPECT_EQ(find((root_ / "dir/sub/x.o").c_str(), true), (root_ / "dir/sub/x.o").string());
}

TEST_F(FILE_SEARCH, a_directory_is_not_a_file) {
    make("d/x.o");
    EXPECT_EQ(find("d", false), "(none)");
}

TEST_F(FILE_SEARCH, a_pattern_matches_in_the_current_directory_and_on_demand_in_the_search_path) {
    make("a1.o");
    make("dir/a2.o");
    make("dir/b.o");
    files_.add_default_dir("dir");
    EXPECT_EQ(match("a*.o", false), (std::vector<std::string>{"a1.o"}));
    EXPECT_EQ(match("a?.o", true), (std::vector<std::string>{"dir/a2.o", "a1.o"}));
    EXPECT_EQ(match("dir/*2.o", false), (std::vector<std::string>{"dir/a2.o"}));
    EXPECT_TRUE(match("*.c", true).empty());
}

TEST_F(FILE_SEARCH, a_file_named_in_a_file_is_found_next_to_it_first) {
    make("inc/common.cmd");
    make("dir/common.cmd");
    files_.add_default_dir("dir");
    EXPECT_STREQ(files_.find_include_file("common.cmd", "inc/main.cmd", true), "inc/common.cmd");
    EXPECT_STREQ(files_.find_include_file("common.cmd", "main.cmd", true), "dir/common.cmd");
    EXPECT_EQ(files_.find_include_file("common.cmd", "main.cmd", false), nullptr);
}

} // namespace
