// Thousands of open files behind a dozen real handles.
//
// fhm_open() gives each file a stable FHM_FILE. Behind it the manager opens and closes real FILE
// pointers, at most CAPACITY at one time: when all are taken the least recently used one gives way,
// its position is kept, and fp() opens it again there. Input files are better opened by
// fhm_open_input(): such a file is mapped whole, once, its descriptor is closed at once, and
// readers parse it in place; a FILE is opened only if somebody asks for one.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <vector>

class FILE_HANDLE_MANAGER;

class FHM_FILE {
  public:
    /// A valid FILE at the position where it was left, opened again if necessary; null if that
    /// fails.
    FILE* fp();

    const char* name() const { return name_.c_str(); }

    /// True while a real handle stands behind this file.
    bool is_open() const { return fp_ != nullptr; }

    /// A persistent file never gives way to another.
    void set_persistent(bool persistent) { persistent_ = persistent; }
    bool persistent() const { return persistent_; }

    /// Closes the real handle, keeping the position; fp() opens it again. What was written is on
    /// disk afterwards. Returns 0, or -1 if there is no handle or it is a standard stream.
    int evict();

    /// The whole file as bytes in memory, mapped on first use; stays valid until the file is
    /// closed, and for an input file until the process ends. A file open for writing is flushed and
    /// mapped anew if it has grown. Empty if the file is empty or cannot be read; has_contents()
    /// tells.
    std::span<const uint8_t> contents();

    /// True if contents() could read the file.
    bool has_contents();

    /// True if the file was opened by a mode that writes.
    bool is_writable() const { return writable_; }

    /// How often the file was opened again, for reports.
    long reopen_count() const { return reopen_count_; }

  private:
    friend class FILE_HANDLE_MANAGER;
    FHM_FILE(FILE_HANDLE_MANAGER* manager, const char* name, const char* mode);
    ~FHM_FILE();
    FHM_FILE(const FHM_FILE&) = delete;
    FHM_FILE& operator=(const FHM_FILE&) = delete;

    struct MAPPING {
        uint8_t* data;
        size_t size;
    };
    bool map_descriptor(int fd);

    FILE_HANDLE_MANAGER* manager_;
    FILE* fp_ = nullptr;
    std::string name_;
    const char* mode_;
    long position_ = 0;
    fpos_t fpos_{};
    bool persistent_ = false;
    bool has_position_ = false;
    bool writable_ = false;
    bool mapped_ = false;
    bool keep_mapping_ = false;
    long reopen_count_ = 0;
    uint64_t access_ = 0;
    uint64_t open_order_ = 0;
    int file_index_ = -1;
    int handle_index_ = -1;
    std::span<const uint8_t> contents_;
    std::vector<MAPPING> mappings_;
    std::unique_ptr<uint8_t[]> read_copy_; // where a file cannot be mapped (a pipe)
};

class FILE_HANDLE_MANAGER {
  public:
    static constexpr int HANDLE_CAPACITY = 12;
    static constexpr int INITIAL_FILE_CAPACITY = 1024;

    /// The one manager, made on first use.
    static FILE_HANDLE_MANAGER& FHM();

    /// A new file with a real handle, or null with errno set.
    FHM_FILE* open(const char* name, const char* mode);

    /// An input file: mapped whole, without a handle; null with errno set if it cannot be read.
    FHM_FILE* open_input(const char* name);

    /// Closes the file and deletes the object; the result of fclose(). The standard streams stay,
    /// with result 0.
    int close(FHM_FILE* file);

    FHM_FILE* std_in() { return stdin_; }
    FHM_FILE* std_out() { return stdout_; }
    FHM_FILE* std_err() { return stderr_; }

    /// The names of all files that were opened only to be read, each once, in that order. Files that
    /// this process has written are none of them.
    std::vector<std::string> inputs_read() const;

    /// The report of all open files, by access and by opening.
    void stats(FILE* to) const;

    int file_count() const { return file_count_; }
    int file_capacity() const { return static_cast<int>(files_.size()); }
    int open_handle_count() const;

    FILE_HANDLE_MANAGER();
    ~FILE_HANDLE_MANAGER();
    FILE_HANDLE_MANAGER(const FILE_HANDLE_MANAGER&) = delete;
    FILE_HANDLE_MANAGER& operator=(const FILE_HANDLE_MANAGER&) = delete;

  private:
    friend class FHM_FILE;
    FHM_FILE* enter(FHM_FILE* file);
    void defragment();
    int find_free_handle() const;
    bool open_FILE(FHM_FILE* file);
    int evict_file_handle();
    void stamp(FHM_FILE* file) { file->access_ = access_counter_++; }
    static const char* detect_reopen_mode(const char* mode);
    FHM_FILE* make_standard(const char* name, const char* mode, FILE* fp);

    std::vector<FHM_FILE*> files_;
    std::vector<std::string> read_;
    std::vector<std::string> written_;
    FHM_FILE* handles_[HANDLE_CAPACITY] = {};
    int file_count_ = 0;
    uint64_t access_counter_ = 0;
    int next_handle_slot_ = 0;
    bool fragmented_ = false;
    FHM_FILE* stdin_;
    FHM_FILE* stdout_;
    FHM_FILE* stderr_;
};

inline FHM_FILE* fhm_open(const char* name, const char* mode) {
    return FILE_HANDLE_MANAGER::FHM().open(name, mode);
}
inline FHM_FILE* fhm_open_input(const char* name) {
    return FILE_HANDLE_MANAGER::FHM().open_input(name);
}
inline int fhm_close(FHM_FILE* file) {
    return FILE_HANDLE_MANAGER::FHM().close(file);
}
inline FHM_FILE* fhm_stdin() {
    return FILE_HANDLE_MANAGER::FHM().std_in();
}
inline FHM_FILE* fhm_stdout() {
    return FILE_HANDLE_MANAGER::FHM().std_out();
}
inline FHM_FILE* fhm_stderr() {
    return FILE_HANDLE_MANAGER::FHM().std_err();
}
inline void fhm_stats(FILE* to) {
    FILE_HANDLE_MANAGER::FHM().stats(to);
}
