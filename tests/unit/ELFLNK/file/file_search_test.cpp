// Where a name is looked for, and in which order.
#include "DIAG/diagnostic.h"
#include "ELFLNK/file/file_manager.h"
#include "UTIL/runcmd.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
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

/// A script in the place of the tool that builds libraries. It notes its arguments, answers for
/// good.a and bad.a alone, and makes only the first.
constexpr const char* MKLIB = R"(#!/bin/sh
echo "$@" >> "$0.log"
case "$*" in
"--query=good.a" | "--query=bad.a") exit 0 ;;
"--quiet --pattern=good.a"*) echo made > "$(dirname "$0")/good.a"; exit 0 ;;
"--quiet --pattern=bad.a"*) exit 3 ;;
esac
exit 1
)";

class LIBRARY_BUILD : public FILE_SEARCH {
  protected:
    void SetUp() override {
        FILE_SEARCH::SetUp();
        fs::create_directories("lib");
        std::ofstream("lib/mklib") << MKLIB;
        fs::permissions("lib/mklib", fs::perms::owner_all);
        dir_ = (root_ / "lib").string();
    }
    std::string build(const std::string& name, bool search) {
        testing::internal::CaptureStderr();
        const char* path = files_.find_specific_file(name.c_str(), search, true);
        messages_ = testing::internal::GetCapturedStderr();
        return path == nullptr ? "(none)" : path;
    }
    std::string log() {
        std::ifstream file("lib/mklib.log");
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    std::string dir_;
    std::string messages_;
};

TEST_F(LIBRARY_BUILD, a_missing_library_is_built_next_to_the_tool) {
    DIAGNOSTIC::wrap_enabled_m = false;
    EXPECT_EQ(build(dir_ + "/good.a", false), dir_ + "/good.a");
    EXPECT_EQ(messages_, "warning: automatic library build: using library \"" + dir_ +
                             "/good.a\" for the first time, so it must be built.  This may take a "
                             "few minutes.\n");
    EXPECT_EQ(log(), "--query=good.a\n--quiet --pattern=good.a\n");
    EXPECT_EQ(build(dir_ + "/good.a", false), dir_ + "/good.a");
    EXPECT_EQ(messages_, "") << "what is there is not built again";
}

TEST_F(LIBRARY_BUILD, the_tool_is_asked_in_each_directory_and_may_decline_or_fail) {
    files_.add_default_dir((root_ / "nothing").c_str());
    files_.add_default_dir(dir_.c_str());
    EXPECT_EQ(build("unknown.a", true), "(none)");
    EXPECT_EQ(messages_, "");
    EXPECT_EQ(build("bad.a", true), "(none)");
    EXPECT_NE(messages_.find("automatic library build: "), std::string::npos);
    EXPECT_EQ(build("good.a", true), dir_ + "/good.a");
    EXPECT_EQ(log(), "--query=unknown.a\n--query=bad.a\n--quiet --pattern=bad.a\n--query=good.a\n"
                     "--quiet --pattern=good.a\n");
}

TEST_F(LIBRARY_BUILD, only_an_absolute_path_is_built) {
    EXPECT_EQ(build("lib/good.a", false), "(none)");
    EXPECT_EQ(build("good.a", true), "(none)");
    EXPECT_EQ(log(), "");
}

TEST_F(LIBRARY_BUILD, the_tool_hears_where_the_linker_lives) {
    set_execution_path_to_search_path("/opt/tools/bin/qvlink");
    EXPECT_EQ(build(dir_ + "/good.a", false), dir_ + "/good.a");
    EXPECT_EQ(log(),
              "--query=good.a\n--quiet --pattern=good.a --compiler_bin_dir=/opt/tools/bin\n");
}

} // namespace
