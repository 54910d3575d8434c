// Many links in little time: a process that is started once, with all that a sanitizer does at its
// start, and forks for each link. A job is one line on standard input,
//
//     SECONDS <tab> DIRECTORY <tab> FILE <tab> ARGUMENT <tab> ARGUMENT ...
//
// and is answered by one line: "exit STATUS", "signal NUMBER" or "timeout". The link runs in the
// directory; what it says goes to the file.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <iostream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "ELFLNK/main/main.h"

namespace {

std::vector<std::string> split(const std::string& line) {
    std::vector<std::string> words(1);
    for (char c : line)
        if (c == '\t')
            words.emplace_back();
        else
            words.back() += c;
    return words;
}

[[noreturn]] void run(const std::vector<std::string>& job) {
    const int out = open(job[2].c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    const int nothing = open("/dev/null", O_RDONLY);
    if (chdir(job[1].c_str()) != 0 || out < 0 || nothing < 0 || dup2(nothing, 0) < 0 ||
        dup2(out, 1) < 0 || dup2(out, 2) < 0)
        _exit(98);
    std::vector<char*> argv{const_cast<char*>("qvlink")};
    for (size_t i = 3; i < job.size(); ++i) argv.push_back(const_cast<char*>(job[i].c_str()));
    const int argc = static_cast<int>(argv.size());
    argv.push_back(nullptr);
    exit(linker_main(argc, argv.data()));
}

// What the child ends with; it is killed when its time is over.
std::string wait_for(pid_t child, int seconds) {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGCHLD);
    const timespec limit{seconds, 0};
    int status = 0;
    bool late = false;
    while (waitpid(child, &status, WNOHANG) == 0)
        if (sigtimedwait(&set, nullptr, &limit) != SIGCHLD) {
            late = true;
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            break;
        }
    if (late) return "timeout";
    return WIFEXITED(status) ? "exit " + std::to_string(WEXITSTATUS(status))
                             : "signal " + std::to_string(WTERMSIG(status));
}

} // namespace

int main() {
    sigset_t set, before;
    sigemptyset(&set);
    sigaddset(&set, SIGCHLD);
    sigprocmask(SIG_BLOCK, &set, &before);
    for (std::string line; std::getline(std::cin, line);) {
        const std::vector<std::string> job = split(line);
        if (job.size() < 3) return 1;
        const pid_t child = fork();
        if (child < 0) return 1;
        if (child == 0) {
            sigprocmask(SIG_SETMASK, &before, nullptr);
            run(job);
        }
        std::puts(wait_for(child, std::atoi(job[0].c_str())).c_str());
        std::fflush(stdout);
    }
    return 0;
}
