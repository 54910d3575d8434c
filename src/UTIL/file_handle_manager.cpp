// Opening, evicting and reopening files. See the header for the idea; what holds between calls:
// handles_[f->handle_index_] is f exactly if f->fp_ is set, and files_[f->file_index_] is f for
// every open or evicted file that has an index.
#include "UTIL/file_handle_manager.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_set>

namespace {

// What a pipe or a device may give: some devices never end.
constexpr size_t LONGEST_STREAM = size_t{1} << 30;

} // namespace

FHM_FILE::FHM_FILE(FILE_HANDLE_MANAGER* manager, const char* name, const char* mode)
    : manager_(manager),
      name_(name),
      mode_(mode),
      writable_(std::strpbrk(mode, "wa+") != nullptr) {}

FHM_FILE::~FHM_FILE() {
    if (!keep_mapping_)
        for (const MAPPING& mapping : mappings_) munmap(mapping.data, mapping.size);
}

FILE* FHM_FILE::fp() {
    if (fp_ == nullptr) {
        if (!manager_->open_FILE(this)) return nullptr;
        if (has_position_) {
            std::fsetpos(fp_, &fpos_);
            std::fseek(fp_, position_, SEEK_SET);
        }
        reopen_count_++;
    }
    manager_->stamp(this);
    return fp_;
}

int FHM_FILE::evict() {
    if (fp_ == nullptr || handle_index_ < 0) return -1;
    position_ = std::ftell(fp_);
    has_position_ = position_ >= 0 && std::fgetpos(fp_, &fpos_) == 0;
    const int result = std::fclose(fp_);
    fp_ = nullptr;
    manager_->handles_[handle_index_] = nullptr;
    handle_index_ = -1;
    return result;
}

// Maps what the descriptor shows; a file that cannot be mapped (a pipe) is read instead.
bool FHM_FILE::map_descriptor(int fd) {
    struct stat info {};
    if (fstat(fd, &info) != 0) return false;
    if (S_ISDIR(info.st_mode)) {
        errno = EISDIR;
        return false;
    }
    const auto size = static_cast<size_t>(info.st_size);
    if (S_ISREG(info.st_mode) && size == 0) {
        contents_ = {};
        return true;
    }
    if (S_ISREG(info.st_mode)) {
        void* data = mmap(nullptr, size, PROT_READ, writable_ ? MAP_SHARED : MAP_PRIVATE, fd, 0);
        if (data == MAP_FAILED) return false;
        mappings_.push_back({static_cast<uint8_t*>(data), size});
        contents_ = {mappings_.back().data, size};
        return true;
    }
    std::vector<uint8_t> bytes;
    uint8_t block[16384];
    ssize_t got;
    while ((got = read(fd, block, sizeof block)) > 0) {
        bytes.insert(bytes.end(), block, block + got);
        if (bytes.size() <= LONGEST_STREAM) continue;
        errno = EFBIG;
        return false;
    }
    if (got < 0) return false;
    read_copy_ = std::make_unique<uint8_t[]>(bytes.size() + 1);
    std::copy(bytes.begin(), bytes.end(), read_copy_.get());
    contents_ = {read_copy_.get(), bytes.size()};
    return true;
}

std::span<const uint8_t> FHM_FILE::contents() {
    if (mapped_ && !writable_) return contents_;
    if (fp_ != nullptr && writable_) std::fflush(fp_);
    if (mapped_) {
        struct stat info {};
        if (stat(name(), &info) == 0 && static_cast<size_t>(info.st_size) == contents_.size())
            return contents_;
    }
    const int fd = open(name(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return contents_;
    mapped_ = map_descriptor(fd) || mapped_;
    const int saved = errno;
    close(fd);
    errno = saved;
    return contents_;
}

bool FHM_FILE::has_contents() {
    contents();
    return mapped_;
}

FILE_HANDLE_MANAGER& FILE_HANDLE_MANAGER::FHM() {
    static auto* const manager = new FILE_HANDLE_MANAGER; // outlives the statics of other units
    return *manager;
}

FILE_HANDLE_MANAGER::FILE_HANDLE_MANAGER()
    : files_(INITIAL_FILE_CAPACITY),
      stdin_(make_standard("(stdin)", "r", stdin)),
      stdout_(make_standard("(stdout)", "w", stdout)),
      stderr_(make_standard("(stderr)", "w", stderr)) {}

FILE_HANDLE_MANAGER::~FILE_HANDLE_MANAGER() {
    for (FHM_FILE* file : std::vector<FHM_FILE*>(files_.begin(), files_.begin() + file_count_))
        if (file != nullptr) close(file);
    delete stdin_;
    delete stdout_;
    delete stderr_;
}

FHM_FILE* FILE_HANDLE_MANAGER::make_standard(const char* name, const char* mode, FILE* fp) {
    auto* file = new FHM_FILE(this, name, mode);
    file->fp_ = fp;
    file->persistent_ = true;
    return file;
}

FHM_FILE* FILE_HANDLE_MANAGER::enter(FHM_FILE* file) {
    if (file_count_ == file_capacity() && fragmented_) defragment();
    if (file_count_ == file_capacity()) files_.resize(files_.size() * 2);
    file->file_index_ = file_count_;
    files_[static_cast<size_t>(file_count_++)] = file;
    return file;
}

// Closes the gaps of the file table.
void FILE_HANDLE_MANAGER::defragment() {
    int to = 0;
    for (int from = 0; from < file_count_; from++) {
        FHM_FILE* file = files_[static_cast<size_t>(from)];
        if (file == nullptr) continue;
        file->file_index_ = to;
        files_[static_cast<size_t>(to++)] = file;
    }
    std::fill(files_.begin() + to, files_.begin() + file_count_, nullptr);
    file_count_ = to;
    fragmented_ = false;
}

FHM_FILE* FILE_HANDLE_MANAGER::open(const char* name, const char* mode) {
    auto* file = new FHM_FILE(this, name, mode);
    if (!open_FILE(file)) {
        const int saved = errno;
        delete file;
        errno = saved;
        return nullptr;
    }
    (file->is_writable() ? written_ : read_).push_back(file->name_);
    return enter(file);
}

FHM_FILE* FILE_HANDLE_MANAGER::open_input(const char* name) {
    const int fd = ::open(name, O_RDONLY | O_CLOEXEC);
    if (fd < 0) return nullptr;
    auto* file = new FHM_FILE(this, name, "rb");
    file->mapped_ = file->map_descriptor(fd);
    file->keep_mapping_ = true;
    const int saved = errno;
    ::close(fd);
    if (!file->mapped_) {
        delete file;
        errno = saved;
        return nullptr;
    }
    file->open_order_ = access_counter_;
    stamp(file);
    read_.push_back(file->name_);
    return enter(file);
}

std::vector<std::string> FILE_HANDLE_MANAGER::inputs_read() const {
    std::unordered_set<std::string_view> known(written_.begin(), written_.end());
    std::vector<std::string> names;
    for (const std::string& name : read_)
        if (known.insert(name).second) names.push_back(name);
    return names;
}

int FILE_HANDLE_MANAGER::find_free_handle() const {
    for (int i = 0; i < HANDLE_CAPACITY; i++) {
        const int slot = (next_handle_slot_ + i) % HANDLE_CAPACITY;
        if (handles_[slot] == nullptr) return slot;
    }
    return -1;
}

bool FILE_HANDLE_MANAGER::open_FILE(FHM_FILE* file) {
    int slot = find_free_handle();
    if (slot < 0 && evict_file_handle() == 0) slot = find_free_handle();
    if (slot < 0) {
        errno = EMFILE;
        return false;
    }
    FILE* fp = std::fopen(file->name(), file->mode_);
    while (fp == nullptr && errno == ENFILE) {
        if (evict_file_handle() != 0) return false;
        fp = std::fopen(file->name(), file->mode_);
    }
    if (fp == nullptr) return false;
    file->fp_ = fp;
    file->handle_index_ = slot;
    handles_[slot] = file;
    next_handle_slot_ = (slot + 1) % HANDLE_CAPACITY;
    file->open_order_ = access_counter_;
    stamp(file);
    file->mode_ = detect_reopen_mode(file->mode_);
    return true;
}

// The mode in which a file is opened again: as before, but never so that what was written is lost.
const char* FILE_HANDLE_MANAGER::detect_reopen_mode(const char* mode) {
    static constexpr const char* MODES[][2] = {
        {"r", "r"},     {"rb", "rb"},   {"a", "a"},     {"ab", "ab"},   {"r+", "r+"},
        {"w", "r+"},    {"w+", "r+"},   {"r+b", "r+b"}, {"rb+", "r+b"}, {"wb", "r+b"},
        {"w+b", "r+b"}, {"wb+", "r+b"}, {"a+", "a+"},   {"a+b", "a+b"}, {"ab+", "a+b"},
    };
    for (const auto& [before, again] : MODES)
        if (std::strcmp(before, mode) == 0) return again;
    return "r";
}

int FILE_HANDLE_MANAGER::evict_file_handle() {
    FHM_FILE* oldest = nullptr;
    for (FHM_FILE* file : handles_)
        if (file != nullptr && !file->persistent_ &&
            (oldest == nullptr || file->access_ < oldest->access_))
            oldest = file;
    if (oldest == nullptr) return -1;
    oldest->evict();
    return 0;
}

int FILE_HANDLE_MANAGER::close(FHM_FILE* file) {
    if (file == nullptr || file == stdin_ || file == stdout_ || file == stderr_) return 0;
    int result = 0;
    if (file->fp_ != nullptr) {
        result = std::fclose(file->fp_);
        handles_[file->handle_index_] = nullptr;
    }
    files_[static_cast<size_t>(file->file_index_)] = nullptr;
    fragmented_ = true;
    delete file;
    return result;
}

int FILE_HANDLE_MANAGER::open_handle_count() const {
    return static_cast<int>(std::count_if(std::begin(handles_), std::end(handles_),
                                          [](const FHM_FILE* f) { return f != nullptr; }));
}

void FILE_HANDLE_MANAGER::stats(FILE* to) const {
    std::vector<const FHM_FILE*> list;
    for (int i = 0; i < file_count_; i++)
        if (const FHM_FILE* file = files_[static_cast<size_t>(i)]; file != nullptr)
            list.push_back(file);
    const auto compar_access = [](const FHM_FILE* a, const FHM_FILE* b) {
        return a->access_ < b->access_;
    };
    const auto compar_open = [](const FHM_FILE* a, const FHM_FILE* b) {
        return a->open_order_ < b->open_order_;
    };
    std::stable_sort(list.begin(), list.end(), compar_access);
    std::fputs("files by last access:\n", to);
    for (const FHM_FILE* file : list) std::fprintf(to, "    %s\n", file->name());
    std::stable_sort(list.begin(), list.end(), compar_open);
    std::fputs("files by opening:\n", to);
    for (const FHM_FILE* file : list)
        std::fprintf(to, "    %s was reopened %ld times\n", file->name(), file->reopen_count());
}
