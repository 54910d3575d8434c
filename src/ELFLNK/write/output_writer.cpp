// Writing beside the name and renaming. The path of the unfinished file is kept where a signal
// handler can reach it.
#include "ELFLNK/write/output_writer.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "ELFLNK/write/write.h"
#include "UTIL/file_handle_manager.h"

namespace {

char unfinished[4096]; // "": none

// Signals that end a process and that nobody else looks at.
void end_by_signal(int sig) {
    remove_unfinished_output();
    signal(sig, SIG_DFL);
    raise(sig);
}

void watch_ends_of_process() {
    atexit(remove_unfinished_output);
    for (int sig : {SIGPIPE, SIGQUIT, SIGALRM, SIGUSR1, SIGUSR2}) {
        auto before = signal(sig, end_by_signal);
        if (before != SIG_DFL) signal(sig, before);
    }
}

void set_unfinished(const char* path) {
    static bool watching = false;
    if (!watching) watch_ends_of_process();
    watching = true;
    if (strlen(path) < sizeof unfinished) strcpy(unfinished, path);
}

// No signal is handled while this lives: a file exists and is known to exist, or neither.
class SIGNALS_HELD {
  public:
    SIGNALS_HELD() {
        sigset_t all;
        sigfillset(&all);
        sigprocmask(SIG_SETMASK, &all, &before_);
    }
    ~SIGNALS_HELD() { sigprocmask(SIG_SETMASK, &before_, nullptr); }
    SIGNALS_HELD(const SIGNALS_HELD&) = delete;
    SIGNALS_HELD& operator=(const SIGNALS_HELD&) = delete;

  private:
    sigset_t before_;
};

mode_t creation_mask() {
    mode_t mask = umask(0);
    umask(mask);
    return mask;
}

} // namespace

void remove_unfinished_output() {
    if (unfinished[0] != '\0') unlink(unfinished);
    unfinished[0] = '\0';
}

OUTPUT_WRITER::~OUTPUT_WRITER() {
    close();
    if (!beside_.empty()) remove_unfinished_output();
}

bool OUTPUT_WRITER::open_beside() {
    std::string path = std::string(name_) + ".XXXXXX";
    SIGNALS_HELD held;
    int fd = mkstemp(path.data());
    if (fd < 0) return false;
    ::close(fd);
    beside_ = std::move(path);
    set_unfinished(beside_.c_str());
    return true;
}

FHM_FILE* OUTPUT_WRITER::open() {
    struct stat info;
    bool exists = stat(name_, &info) == 0;
    if (exists && access(name_, W_OK) != 0) return nullptr;
    if (exists && S_ISDIR(info.st_mode)) {
        errno = EISDIR;
        return nullptr;
    }
    bool may_replace = !exists || S_ISREG(info.st_mode);
    bool beside = may_replace && open_beside();
    if (!beside && !exists) set_unfinished(name_);
    return file_ = fhm_open(beside ? beside_.c_str() : name_, "wb+");
}

void OUTPUT_WRITER::close() {
    if (file_) fhm_close(file_);
    file_ = nullptr;
}

bool OUTPUT_WRITER::commit(bool executable) {
    const char* written = beside_.empty() ? name_ : beside_.c_str();
    bool good = fhm_close(file_) == 0;
    file_ = nullptr;
    struct stat info;
    if (good && stat(written, &info) == 0 && S_ISREG(info.st_mode))
        good = chmod(written, (executable ? 0777 : 0666) & ~creation_mask()) == 0;
    if (good && !beside_.empty()) good = rename(written, name_) == 0;
    if (good) unfinished[0] = '\0';
    if (good) beside_.clear();
    return good;
}

void OUTPUT_WRITER::discard() {
    close();
    if (!beside_.empty()) remove_unfinished_output();
    beside_.clear();
    struct stat info;
    if (stat(name_, &info) == 0 && S_ISREG(info.st_mode)) unlink(name_);
}
