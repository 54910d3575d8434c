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
#include "UTIL/filename.h"

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

// The file that the links in a name lead to; empty when there is none of that name, as of standard
// output that goes to a deleted file.
std::string behind_links(const char* name, const struct stat& info) {
    char* path = realpath(name, nullptr);
    std::string file = path != nullptr ? path : "";
    free(path);
    struct stat found;
    if (file.empty() || stat(file.c_str(), &found) != 0 || found.st_ino != info.st_ino ||
        found.st_dev != info.st_dev)
        return {};
    return file;
}

bool copy_file(const char* from, const char* to) {
    FILE* in = fopen(from, "rb");
    FILE* out = in != nullptr ? fopen(to, "wb") : nullptr;
    bool good = out != nullptr;
    char part[65536];
    for (size_t size; good && (size = fread(part, 1, sizeof part, in)) != 0;)
        good = fwrite(part, 1, size, out) == size;
    if (in != nullptr) good = ferror(in) == 0 && good;
    if (out != nullptr) good = fclose(out) == 0 && good;
    if (in != nullptr) fclose(in);
    return good;
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

bool OUTPUT_WRITER::open_beside(bool pipe) {
    SIGNALS_HELD held;
    std::string path = target_ + ".XXXXXX";
    if (pipe) {
        path = fn_tmpnam();
        if (path.empty()) return false;
    } else {
        int fd = mkstemp(path.data());
        if (fd < 0) return false;
        ::close(fd);
    }
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
    bool may_replace = !exists;
    if (exists && S_ISREG(info.st_mode)) {
        std::string file = behind_links(name_, info);
        may_replace = !file.empty();
        if (may_replace) target_ = std::move(file);
    }
    pipe_ = exists && S_ISFIFO(info.st_mode);
    bool beside = (may_replace || pipe_) && open_beside(pipe_);
    if (pipe_ && !beside) return nullptr;
    if (!beside && !exists) set_unfinished(name_);
    return file_ = fhm_open(beside ? beside_.c_str() : name_, "wb+");
}

void OUTPUT_WRITER::close() {
    if (file_) fhm_close(file_);
    file_ = nullptr;
}

// A file that somebody else put into a shared folder can be written, but not replaced.
bool OUTPUT_WRITER::put_in_place() const {
    if (!pipe_ && rename(beside_.c_str(), target_.c_str()) == 0) return true;
    return copy_file(beside_.c_str(), name_) && unlink(beside_.c_str()) == 0;
}

bool OUTPUT_WRITER::commit(bool executable) {
    const char* written = beside_.empty() ? name_ : beside_.c_str();
    bool good = fhm_close(file_) == 0;
    file_ = nullptr;
    struct stat info;
    // What is written in place may be somebody else's, and keeps its permissions then.
    if (good && stat(written, &info) == 0 && S_ISREG(info.st_mode))
        good =
            chmod(written, (executable ? 0777 : 0666) & ~creation_mask()) == 0 || beside_.empty();
    if (good && !beside_.empty()) good = put_in_place();
    if (good) unfinished[0] = '\0';
    if (good) beside_.clear();
    return good;
}

void OUTPUT_WRITER::discard() {
    close();
    if (!beside_.empty()) remove_unfinished_output();
    beside_.clear();
    struct stat info;
    if (stat(name_, &info) == 0 && S_ISREG(info.st_mode)) unlink(target_.c_str());
}
