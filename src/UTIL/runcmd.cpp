// Running a tool: fork, exec in the child, wait in the parent. The tool is tried in the linker's
// own directory first, then on the PATH. A child that cannot run the tool says so on standard error
// and exits with 127.
#include "UTIL/runcmd.h"

#include "UTIL/filename.h"
#include "UTIL/savestr.h"
#include "UTIL/strformat.h"

#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const char* search_path;

constexpr size_t MAX_COMMAND_LINE = 1023;
constexpr int CANNOT_EXECUTE = 127;

/// The length that counts against the limit: each argument and a blank, without the first dashes.
size_t command_line_length(const std::vector<std::string>& args) {
    size_t length = 0;
    unsigned dashes = 4;
    for (const std::string& arg : args) {
        length += arg.size() + 1;
        if (dashes != 0 && !arg.empty() && arg[0] == '-') {
            length--;
            dashes--;
        }
    }
    return length;
}

bool write_command_file(const std::string& path, const std::vector<std::string>& args,
                        bool report) {
    FILE* file = std::fopen(path.c_str(), "w");
    if (file == nullptr) {
        if (report)
            std::fprintf(stderr, "Cannot open temporary command file '%s': %s\n", path.c_str(),
                         std::strerror(errno));
        return false;
    }
    bool good = true;
    for (const std::string& arg : args) good = std::fprintf(file, "%s\n", arg.c_str()) >= 0 && good;
    good = std::fclose(file) == 0 && good;
    if (!good && report)
        std::fprintf(stderr, "Cannot write to temporary command file '%s': %s\n", path.c_str(),
                     std::strerror(errno));
    return good;
}

[[noreturn]] void execute_tool(const char* name, const std::vector<std::string>& args,
                               bool report) {
    std::vector<char*> argv;
    argv.push_back(const_cast<char*>(name));
    for (const std::string& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    if (search_path != nullptr && std::strchr(name, '/') == nullptr) {
        execv(fn_build(search_path, name).c_str(), argv.data());
        if (errno != ENOENT && report)
            std::fprintf(stderr, "-- Cannot execute '%s/%s'\n", search_path, name);
    }
    execvp(name, argv.data());
    if (report) std::fprintf(stderr, "exec() error spawning %s: %s\n", name, std::strerror(errno));
    std::fflush(stderr);
    _exit(CANNOT_EXECUTE);
}

int report_wait_failure(int error) {
    switch (error) {
    case EINTR:
        std::fputs("ERROR: wait() interrupted by a signal\n", stderr);
        break;
    case EINVAL:
        std::fputs("ERROR: wait() options not valid\n", stderr);
        break;
    case ECHILD:
        std::fputs("ERROR: Child process is missing!\n", stderr);
        break;
    default:
        std::fputs("ERROR: Unknown wait() error\n", stderr);
        break;
    }
    return -1;
}

double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

int run_and_wait(const char* name, const std::vector<std::string>& args, bool report,
                 timing_info* timing) {
    std::fflush(nullptr);
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child < 0) {
        if (report)
            std::fprintf(stderr, "exec() error spawning %s: %s\n", name, std::strerror(errno));
        return -1;
    }
    if (child == 0) execute_tool(name, args, report);
    int status = 0;
    rusage usage{};
    if (wait4(child, &status, 0, &usage) < 0) return report_wait_failure(errno);
    if (timing != nullptr) {
        timing->user = seconds(usage.ru_utime);
        timing->system = seconds(usage.ru_stime);
        timing->elapsed =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }
    if (WIFSIGNALED(status)) {
        if (report) std::fprintf(stderr, "abnormal termination of %s\n", name);
        return -1;
    }
    return WEXITSTATUS(status);
}

std::string quoted_if_needed(const std::string& arg) {
    return arg.empty() || arg.find_first_of(" -~+[]{};&|:=") != arg.npos ? "\"" + arg + "\"" : arg;
}

void echo_command(const char* name, const std::vector<std::string>& args) {
    std::string line = name;
    for (const std::string& arg : args) line += " " + quoted_if_needed(arg);
    std::printf("%s\n", line.c_str());
}

} // namespace

const char* run_search_path() {
    return search_path;
}

void set_execution_path_to_search_path(const char* argv0) {
    if (argv0 == nullptr) return;
    std::string dir(argv0);
    const size_t slash = dir.find_last_of("/\\");
    if (slash == dir.npos) return;
    dir.resize(slash + 1);
    while (dir.size() > 1 && (dir.back() == '/' || dir.back() == '\\') &&
           dir[dir.size() - 2] != ':')
        dir.pop_back();
    search_path = savestr(dir);
}

int run_command(const char* name, const char* const* argv, int argc,
                const char* command_file_option, int verbosity, bool report_errors,
                timing_info* timing) {
    std::vector<std::string> args(argv, argv + argc);
    std::string command_file;
    if (command_file_option != nullptr && *command_file_option != '\0' &&
        command_line_length(args) >= MAX_COMMAND_LINE) {
        command_file = fn_tmpnam();
        if (!write_command_file(command_file, args, report_errors)) {
            if (!command_file.empty()) unlink(command_file.c_str());
            return -1;
        }
        args = {command_file_option + command_file};
    }
    if (verbosity > 0) echo_command(name, args);
    const int status = run_and_wait(name, args, report_errors, timing);
    if (!command_file.empty() && verbosity <= 1) unlink(command_file.c_str());
    return status;
}

void argv_list::addf(const char* format, ...) {
    va_list args;
    va_start(args, format);
    args_.push_back(vstrformat(format, args));
    va_end(args);
}

void argv_list::del(int index) {
    if (index >= 0 && index < count()) args_.erase(args_.begin() + index);
}

const char* argv_list::getarg(int index) const {
    return index >= 0 && index < count() ? args_[static_cast<size_t>(index)].c_str() : nullptr;
}

int argv_list::execute(bool report_errors, timing_info* timing) const {
    std::vector<const char*> argv;
    for (const std::string& arg : args_) argv.push_back(arg.c_str());
    return run_command(name_.c_str(), argv.data(), count(), command_file_option_.c_str(),
                       verbosity_, report_errors, timing);
}

void argv_list::dump(const char* format, ...) const {
    va_list args;
    va_start(args, format);
    std::vprintf(format, args);
    va_end(args);
    echo_command(name_.c_str(), args_);
}
