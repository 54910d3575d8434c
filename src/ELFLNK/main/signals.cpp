// Signals end the process: quietly if the user asked for it, with a crash report if the linker is
// at fault.
//
// Handlers run on the only thread, print directly and never return to the interrupted code.
#include "ELFLNK/main/main.h"

#include "ELFLNK/write/write.h"

#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

struct CRASH {
    int signal;
    const char* reason;
};

constexpr CRASH crashes[] = {
    {SIGILL, "executed an illegal instruction"},
    {SIGTRAP, "received a TRAP signal"},
    {SIGABRT, "had an internal inconsistency and aborted"},
    {SIGBUS, "experienced a bus alignment fault"},
    {SIGFPE, "received a floating point exception"},
    {SIGSEGV, "experienced a segmentation fault"},
    {SIGXCPU, "exceeded the CPU time limit"},
    {SIGXFSZ, "exceeded the file size limit"},
    {SIGSYS, "experienced a bad system call"},
};

constexpr int handled_signals[] = {SIGILL, SIGABRT, SIGFPE, SIGSEGV, SIGTERM, SIGINT,
                                   SIGHUP, SIGTRAP, SIGBUS, SIGSYS,  SIGXCPU, SIGXFSZ};

void (*crash_callback)(int) = nullptr;

const char* crash_reason(int sig) {
    for (const CRASH& crash : crashes)
        if (crash.signal == sig) return crash.reason;
    return "experienced a fatal internal fault";
}

[[noreturn]] void end_process() {
    remove_unfinished_output();
    _Exit(2);
}

} // namespace

void install_common_handlers(void (*handler)(int), void (*callback)(int)) {
    crash_callback = callback;
    // A stack that has come to its end has no room for a handler, and such an end is a bad access.
    constexpr size_t STACK_SIZE = 64 * 1024;
    alignas(std::max_align_t) static char stack[STACK_SIZE];
    stack_t other = {};
    other.ss_sp = stack;
    other.ss_size = STACK_SIZE;
    sigaltstack(&other, nullptr);
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    for (const int sig : handled_signals) {
        action.sa_flags = SA_RESTART | (sig == SIGSEGV || sig == SIGBUS ? SA_ONSTACK : 0);
        sigaction(sig, &action, nullptr);
    }
}

void signal_handler(int sig) {
    const char* name = program_name();
    if (sig == SIGHUP || sig == SIGINT) {
        fprintf(stderr, "[%s forced exit]\n", name);
        end_process();
    }
    if (sig == SIGTERM) {
        fprintf(stderr, "[%s received a terminate signal]\n", name);
        end_process();
    }
    // A second fault while this one is reported ends the process at once.
    for (const int handled : handled_signals) signal(handled, SIG_DFL);
    fprintf(stderr, "\nINTERNAL ERROR: %s %s\n", name, crash_reason(sig));
    fprintf(stderr, "\n");
    fflush(nullptr);
    print_support_message();
    fflush(nullptr);
    if (crash_callback != nullptr) crash_callback(sig);
    end_process();
}

void print_support_message() {
    fprintf(stderr,
            "This is a defect in the %s. Customer support may be able to suggest a way\n"
            "around it, and the newest version may have it fixed. Please report it where\n"
            "you got this tool.\n"
            "We need to see this ENTIRE error message and a complete, reproducible\n"
            "test case including ALL of the command-line options.\n",
            tool_name());
    if (strstr(tool_name(), "C/C++ Parser") != nullptr ||
        strstr(tool_name(), "C/C++ Optimizer") != nullptr ||
        strstr(tool_name(), "C/C++ Codegen") != nullptr)
        fprintf(stderr, "Include the .pp file created by option --preproc_with_comment\n\n");
    else if (strcmp(tool_name(), "Linker") == 0)
        fprintf(stderr, "Include all of the object files, libraries, and linker command files\n"
                        "used to link the program.\n\n");
    else
        fprintf(stderr, "\n");
}
