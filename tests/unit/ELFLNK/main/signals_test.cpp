// A signal ends the process with status 2 and says why.
#include "ELFLNK/main/main.h"

#include <gtest/gtest.h>

#include <climits>
#include <csignal>
#include <cstdlib>

namespace {

struct SIGNAL_CASE {
    int signal;
    const char* message;
};

class SIGNALS : public testing::TestWithParam<SIGNAL_CASE> {};

TEST_P(SIGNALS, end_the_process_with_status_2) {
    const SIGNAL_CASE& expected = GetParam();
    const auto run = [&expected] {
        install_common_handlers(signal_handler, nullptr);
        raise(expected.signal);
        exit(0); // not reached
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(2), expected.message);
}

INSTANTIATE_TEST_SUITE_P(
    , SIGNALS,
    testing::Values(
        SIGNAL_CASE{SIGINT, "^.unknown forced exit.\n$"},
        SIGNAL_CASE{SIGHUP, "^.unknown forced exit.\n$"},
        SIGNAL_CASE{SIGTERM, "^.unknown received a terminate signal.\n$"},
        SIGNAL_CASE{SIGABRT,
                    "^\nINTERNAL ERROR: unknown had an internal inconsistency and aborted\n\n"},
        SIGNAL_CASE{SIGSEGV, "INTERNAL ERROR: unknown experienced a segmentation fault\n\n"},
        SIGNAL_CASE{SIGXFSZ, "INTERNAL ERROR: unknown exceeded the file size limit\n\n"},
        SIGNAL_CASE{SIGBUS,
                    "We need to see this ENTIRE error message and a complete, reproducible\n"
                    "test case including ALL of the command-line options.\n"
                    "Include all of the object files, libraries, and linker command files\n"
                    "used to link the program.\n\n"}));

int use_up_the_stack(int depth) {
    volatile char frame[4096];
    frame[0] = char(depth);
    return depth == INT_MAX ? 0 : use_up_the_stack(depth + 1) + frame[0];
}

TEST(signals, a_stack_without_room_is_reported_like_any_crash) {
    const auto run = [] {
        install_common_handlers(signal_handler, nullptr);
        exit(use_up_the_stack(0));
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(2), "experienced a segmentation fault");
}

TEST(signals, the_callback_of_a_crash_is_called_with_its_number) {
    const auto run = [] {
        install_common_handlers(signal_handler, [](int sig) { _Exit(sig == SIGFPE ? 77 : 78); });
        raise(SIGFPE);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(77), "received a floating point exception");
}

} // namespace
