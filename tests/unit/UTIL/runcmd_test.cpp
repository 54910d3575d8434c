#include "UTIL/runcmd.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace {

int run_sh(const std::string& script, const char* command_file_option = nullptr) {
    argv_list tool("sh", command_file_option);
    tool.add("-c");
    tool.add(script.c_str());
    return tool.execute(true);
}

TEST(RunCommand, the_result_is_the_tools_exit_status) {
    EXPECT_EQ(run_sh("exit 0"), 0);
    EXPECT_EQ(run_sh("exit 37"), 37);
}

TEST(RunCommand, a_tool_killed_by_a_signal_is_abnormal) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(run_sh("kill -9 $$"), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "abnormal termination of sh\n");
}

TEST(RunCommand, a_tool_that_is_not_there_is_reported) {
    testing::internal::CaptureStderr();
    EXPECT_NE(run_command("no-such-tool-anywhere", nullptr, 0, nullptr, 0, true, nullptr), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "exec() error spawning no-such-tool-anywhere: No such file or directory\n");
}

// The tool is a script that writes its arguments down: one argument that begins with the option
// means a command file.
TEST(RunCommand, only_a_command_line_of_1023_characters_goes_by_file) {
    const std::filesystem::path dir =
        std::filesystem::temp_directory_path() / ("qvrun" + std::to_string(getpid()));
    std::filesystem::create_directory(dir);
    const std::string tool = dir / "tool";
    std::ofstream(tool) << "#!/bin/sh\ncase \"$1\" in @*) exit 5;; *) exit 6;; esac\n";
    std::filesystem::permissions(tool, std::filesystem::perms::owner_all);
    for (const size_t length : {1021, 1022}) { // a blank is added to each argument
        argv_list args(tool.c_str(), "@");
        args.add(std::string(length, 'x').c_str());
        EXPECT_EQ(args.execute(true), length + 1 >= 1023 ? 5 : 6) << length;
    }
    argv_list none(tool.c_str());
    none.add(std::string(5000, 'x').c_str());
    EXPECT_EQ(none.execute(true), 6) << "a tool without such an option gets its arguments";
    std::filesystem::remove_all(dir);
}

TEST(RunCommand, the_search_path_is_the_directory_of_the_program) {
    set_execution_path_to_search_path("qvlink");
    EXPECT_EQ(run_search_path(), nullptr);
    const struct {
        const char *argv0, *dir;
    } cases[] = {
        {"/opt/bin/qvlink", "/opt/bin"}, {"/ld", "/"}, {"C:\\ld", "C:\\"}, {"./x//ld", "./x"}};
    for (const auto& c : cases) {
        set_execution_path_to_search_path(c.argv0);
        EXPECT_STREQ(run_search_path(), c.dir);
    }
}

TEST(ArgvList, arguments_are_added_and_removed) {
    argv_list args("tool");
    args.add("a");
    args.addf("--x=%d", 3);
    args.add("c");
    args.del(0);
    EXPECT_EQ(args.count(), 2);
    EXPECT_STREQ(args.getarg(0), "--x=3");
    EXPECT_EQ(args.getarg(2), nullptr);
    testing::internal::CaptureStdout();
    args.dump("<%s> ", "run");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "<run> tool \"--x=3\" c\n");
}

} // namespace
