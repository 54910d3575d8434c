// Where the bytes come from and go to. An input is the mapped contents of its file and is never
// copied. An output is sized once all offsets are final, filled with zeros by the system, mapped,
// and written by copying into the mapping; where a file cannot be mapped (a device, a full file
// system is found out before), positioned writes do the same.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "DIAG/user_msg_api.h"
#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/machine/machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "UTIL/data_map.h"
#include "UTIL/file_handle_manager.h"

namespace OFE {

namespace {

constexpr unsigned EM_ARM_NUMBER = 0x28;

long pftell(FILE* fp) {
    if (!fp) {
        USER_MSG::get_umsg_obj()->apperror("pftell called with a NULL FILE pointer");
        return -1;
    }
    long at = std::ftell(fp);
    if (at < 0)
        USER_MSG::get_umsg_obj()->apperror("call to pftell failed:  %s", std::strerror(errno));
    return at;
}

int pfseek(FILE* fp, long offset) {
    if (!fp) {
        USER_MSG::get_umsg_obj()->apperror("pfseek called with a NULL FILE pointer");
        return -1;
    }
    int result = std::fseek(fp, offset, SEEK_SET);
    if (result != 0)
        USER_MSG::get_umsg_obj()->apperror("call to pfseek failed:  %s", std::strerror(errno));
    return result;
}

bool is_same_file(const char* a, const char* b) {
    struct stat x, y;
    return stat(a, &x) == 0 && stat(b, &y) == 0 && x.st_dev == y.st_dev && x.st_ino == y.st_ino &&
           S_ISREG(x.st_mode);
}

// The bytes of the object that a handle names; false: the handle leaves its file.
bool handle_bytes(const OF_FILE_HANDLE& handle, OF_BYTES& out) {
    if (handle.bytes) {
        out = {handle.bytes, handle.size};
        return true;
    }
    auto contents = handle.file->contents();
    if (handle.offset > contents.size()) return false;
    size_t left = contents.size() - handle.offset;
    if (handle.size > left) return false;
    out = {contents.data() + handle.offset, handle.size ? handle.size : left};
    return true;
}

OF_MACHINE machine_of_target_id(unsigned id) {
    return id == 0x97 ? OF_MACHINE_ARM : OF_MACHINE_NONE;
}

// The three versions of QV-COFF by their first word; true when this byte order fits.
bool match_qvcoff(OF_FILE_HANDLE& handle, const OF_BYTES& b, bool big, unsigned low, unsigned high,
                  OF_FORMAT_VER ver) {
    unsigned word = read_u16(b.data, big);
    if (word < low || word > high) return false;
    handle.format = OF_FORMAT_QVCOFF;
    handle.format_version = ver;
    handle.endian = big ? OF_ENDIAN_BIG : OF_ENDIAN_LITTLE;
    unsigned id = ver == OF_FORMAT_VER_QVCOFF0 ? word
                  : b.size >= 22               ? read_u16(b.data + 20, big)
                                               : 0;
    handle.machine = machine_of_target_id(id);
    return true;
}

} // namespace

void determine_file_properties(OF_FILE_HANDLE& handle) {
    if (!handle.file && !handle.bytes) return;
    if (handle.file && !handle.offset && handle.file->is_open()) {
        long at = pftell(handle.file->fp());
        if (at > 0) handle.offset = static_cast<unsigned>(at);
    }
    handle.format = OF_FORMAT_UNKNOWN;
    OF_BYTES b;
    if (!handle_bytes(handle, b)) return;
    if (!handle.size && b.size <= 0xFFFFFFFFu) handle.size = static_cast<unsigned>(b.size);
    if (b.size >= 24 && std::memcmp(b.data, "\177ELF", 4) == 0) {
        bool big = b.data[5] != 1;
        handle.format = OF_FORMAT_ELF;
        handle.endian = big ? OF_ENDIAN_BIG : OF_ENDIAN_LITTLE;
        handle.format_version =
            read_u32(b.data + 20, big) == 1 ? OF_FORMAT_VER_ELF1 : OF_FORMAT_VER_UNKNOWN;
        unsigned machine = read_u16(b.data + 18, big);
        handle.machine = machine == EM_ARM_NUMBER
                             ? OF_MACHINE_ARM
                             : static_cast<OF_MACHINE>(OF_MACHINE_OTHER + machine);
        return;
    }
    if (b.size < 2) return;
    struct ROW {
        unsigned low, high;
        OF_FORMAT_VER version;
    };
    static constexpr ROW ROWS[] = {{0xC2, 0xC2, OF_FORMAT_VER_QVCOFF2},
                                   {0xC1, 0xC1, OF_FORMAT_VER_QVCOFF1},
                                   {0x90, 0xA3, OF_FORMAT_VER_QVCOFF0}};
    for (const ROW& row : ROWS)
        for (bool big : {false, true})
            if (match_qvcoff(handle, b, big, row.low, row.high, row.version)) return;
}

OBJECT_FILE* new_OBJECT_FILE(OF_FILE_HANDLE handle, OF_ERROR_HANDLER handler) {
    bool input = handle.file || handle.bytes;
    if (input) determine_file_properties(handle);
    if (handle.format != OF_FORMAT_ELF) {
        if (handle.file && handle.close_on_destroy) fhm_close(handle.file);
        return nullptr;
    }
    OBJECT_FILE* file = new ELF_FILE(handle, nullptr);
    file->set_error_handler(handler);
    if (file->error_code() != OF_ERROR_NONE && handler)
        handler(file, file->error_code(), file->error_text());
    if (input && file->load(handle) != 0) {
        delete file;
        return nullptr;
    }
    file->machine_db()->of_process_new_ofile();
    return file;
}

OBJECT_FILE* new_OBJECT_FILE(OF_FORMAT format, OF_FORMAT_VER version, OF_MACHINE machine,
                             OF_ERROR_HANDLER handler, const char* name) {
    OF_FILE_HANDLE handle;
    handle.format = format;
    handle.format_version = version;
    handle.machine = machine;
    handle.endian = host_endian();
    handle.name = name;
    return new_OBJECT_FILE(handle, handler);
}

OBJECT_FILE* new_OBJECT_FILE(const char* name, OF_FILE_TYPE type, OBJECT_FILE* model) {
    OBJECT_FILE* file = new_OBJECT_FILE(model->format(), model->format_version(), model->machine(),
                                        model->error_handler(), name);
    if (!file) return nullptr;
    file->set_file_type(type);
    file->set_machine_endian(model->machine_endian());
    return file;
}

OBJECT_FILE* new_OBJECT_FILE(const char* name, OF_ERROR_HANDLER handler) {
    OF_FILE_HANDLE handle;
    handle.file = fhm_open_input(name);
    handle.name = name;
    handle.close_on_destroy = handle.file != nullptr;
    return new_OBJECT_FILE(handle, handler);
}

OBJECT_FILE* new_OBJECT_FILE(FHM_FILE* file, unsigned size, const char* name,
                             OF_ERROR_HANDLER handler) {
    OF_FILE_HANDLE handle;
    handle.file = file;
    handle.size = size;
    handle.name = name;
    if (file && file->is_open()) {
        long at = pftell(file->fp());
        handle.offset = at > 0 ? static_cast<unsigned>(at) : 0;
    }
    if (!size && handle.offset) {
        USER_MSG::get_umsg_obj()->error("a file size must be specified when reading an archive "
                                        "member; OBJECT_FILE not created");
        return nullptr;
    }
    return new_OBJECT_FILE(handle, handler);
}

OBJECT_FILE* new_OBJECT_FILE(const void* bytes, unsigned size, const char* name,
                             OF_ERROR_HANDLER handler) {
    OF_FILE_HANDLE handle;
    handle.bytes = static_cast<const uint8_t*>(bytes);
    handle.size = size;
    handle.name = name;
    return new_OBJECT_FILE(handle, handler);
}

int OBJECT_FILE::take_input(const OF_FILE_HANDLE& handle) {
    const char* name = handle_.name;
    handle_ = handle;
    handle_.name = name;
    image_ = {};
    if (!handle.bytes && (!handle.file || !handle.file->has_contents())) {
        set_error(OF_ERROR_ACCESS, "the file cannot be read");
        return -1;
    }
    OF_BYTES b;
    if (!handle_bytes(handle, b)) {
        set_error(OF_ERROR_CORRUPT, "the object at offset 0x%x of size 0x%x leaves its file",
                  handle.offset, handle.size);
        return -1;
    }
    if (b.size > 0xFFFFFFFFu) {
        set_error(OF_ERROR_FORMAT, "the file is larger than an object file can be");
        return -1;
    }
    image_ = b;
    return 0;
}

int OBJECT_FILE::load_obj(const char* name) {
    FHM_FILE* file = fhm_open_input(name);
    if (!file) return -1;
    OF_FILE_HANDLE handle;
    handle.file = file;
    handle.name = name;
    handle.close_on_destroy = true;
    determine_file_properties(handle);
    return load(handle);
}

int OBJECT_FILE::load_obj(FHM_FILE* file) {
    if (!file) return -1;
    OF_FILE_HANDLE handle;
    handle.file = file;
    handle.name = file->name();
    determine_file_properties(handle);
    return load(handle);
}

// A file that is saved over itself leaves its old bytes to those who look at them: the new ones are
// another file of that name.
int OBJECT_FILE::save_obj(const char* name) {
    if (handle_.file && is_same_file(name, handle_.file->name())) std::remove(name);
    FHM_FILE* file = fhm_open(name, "wb+");
    if (!file) {
        set_error(OF_ERROR_ACCESS, "failed to open \"%s\" for writing", name);
        return -1;
    }
    OF_FILE_HANDLE handle = handle_;
    handle.file = file;
    handle.name = name;
    long at = pftell(file->fp());
    handle.offset = at > 0 ? static_cast<unsigned>(at) : 0;
    handle.size = 0;
    handle.close_on_destroy = true;
    int result = save(handle);
    if (result < 0) set_error(OF_ERROR_ACCESS, "an error occurred while writing \"%s\"", name);
    return result;
}

int OBJECT_FILE::save_obj(FHM_FILE* file) {
    if (!file) return -1;
    OF_FILE_HANDLE handle = handle_;
    handle.file = file;
    handle.name = file->name();
    long at = pftell(file->fp());
    handle.offset = at > 0 ? static_cast<unsigned>(at) : 0;
    handle.size = 0;
    handle.close_on_destroy = false;
    int result = save(handle);
    if (result < 0)
        set_error(OF_ERROR_ACCESS, "an error occurred while writing \"%s\"", file->name());
    return result;
}

// The previous file is closed last: sections that were never touched are copied out of its mapping.
int OBJECT_FILE::save(OF_FILE_HANDLE handle) {
    if (handle.file && handle.file == handle_.file && is_input() && !image_copy_) {
        set_error(OF_ERROR_ACCESS, "a file cannot be saved to where it is read from");
        return -1;
    }
    if (set_state(OF_STATE_FORMATTED) != 0) return -1;
    FHM_FILE* previous = handle_.close_on_destroy ? handle_.file : nullptr;
    unmap_output();
    handle_.file = handle.file;
    set_name(handle.name);
    handle_.offset = handle.offset;
    handle_.close_on_destroy = handle.close_on_destroy;
    write_failed_ = false;
    int result = prepare_output();
    if (result == 0) {
        zero_init_ = true;
        result = set_state(OF_STATE_SAVED);
        if (write_failed_) result = -1;
    }
    if (previous && previous != handle_.file) {
        fhm_close(previous);
        if (result == 0) image_ = {};
    }
    return result == 0 ? 0 : -1;
}

// Gives the output its size, all zeros, and maps it. What already lies behind the offset is
// overwritten.
int OBJECT_FILE::prepare_output() {
    FILE* fp = handle_.file ? handle_.file->fp() : nullptr;
    if (!fp || pfseek(fp, static_cast<long>(handle_.offset)) != 0) return -1;
    std::fflush(fp);
    int fd = fileno(fp);
    struct stat st;
    if (handle_.size == 0 || fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) return 0;
    off_t start = handle_.offset, end = start + static_cast<off_t>(handle_.size);
    if (st.st_size > start && ftruncate(fd, start) != 0) return -1;
    int error = posix_fallocate(fd, 0, end);
    if (error == ENOSPC || error == EFBIG) {
        set_error(OF_ERROR_ACCESS, "no room for 0x%x bytes: %s", handle_.size,
                  std::strerror(error));
        return -1;
    }
    if (error != 0 && ftruncate(fd, end) != 0) return -1;
    if (error != 0)
        return 0; // no blocks are set aside: a mapped write could fail where nobody can see it
    void* map = mmap(nullptr, static_cast<size_t>(end), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    if (map == MAP_FAILED) return 0;
    output_map_ = static_cast<uint8_t*>(map);
    output_map_size_ = static_cast<size_t>(end);
    return 0;
}

void OBJECT_FILE::unmap_output() {
    if (output_map_) munmap(output_map_, output_map_size_);
    output_map_ = nullptr;
    output_map_size_ = 0;
}

uint8_t* OBJECT_FILE::output_bytes(unsigned offset, size_t size) {
    uint64_t start = uint64_t{handle_.offset} + offset;
    if (!output_map_ || start > output_map_size_ || size > output_map_size_ - start) return nullptr;
    return output_map_ + start;
}

int OBJECT_FILE::put_file_bytes(const void* bytes, size_t size, unsigned offset) {
    if (!handle_.file) {
        set_error(OF_ERROR_INTERNAL, "illegal call to OBJECT_FILE::put_file_data() when a valid "
                                     "output file pointer is not present");
        return -1;
    }
    if (size == 0) return 0;
    if (uint8_t* to = output_bytes(offset, size)) {
        std::memmove(to, bytes, size);
        return 0;
    }
    if (write_in_pieces(static_cast<const uint8_t*>(bytes), size,
                        uint64_t{handle_.offset} + offset))
        return 0;
    // One report is enough: while the file is being saved the states go on, and save() fails at its
    // end.
    if (!write_failed_)
        set_error(OF_ERROR_ACCESS, "cannot write 0x%zx bytes: %s", size, std::strerror(errno));
    write_failed_ = true;
    return own_state() < OF_STATE_SAVED ? 0 : -1;
}

bool OBJECT_FILE::write_in_pieces(const uint8_t* bytes, size_t size, uint64_t offset) {
    FILE* fp = handle_.file->fp();
    while (fp && size) {
        ssize_t done = pwrite(fileno(fp), bytes, size, static_cast<off_t>(offset));
        if (done < 0 && errno == EINTR) continue;
        if (done <= 0) return false;
        bytes += done;
        size -= static_cast<size_t>(done);
        offset += static_cast<uint64_t>(done);
    }
    return fp != nullptr;
}

int OBJECT_FILE::put_file_data(DATA_MAP& map, unsigned offset) {
    auto bytes = map.bytes();
    if (put_file_bytes(bytes.data(), bytes.size(), offset) != 0) return -1;
    if (!bytes.empty()) map.set_file(handle_.file, uint64_t{handle_.offset} + offset, bytes.size());
    return 0;
}

int OBJECT_FILE::get_file_data(DATA_MAP& map, unsigned offset, unsigned size) {
    if (max_state(OF_STATE_OPEN) != 0) return -1;
    if (!is_input()) {
        set_error(OF_ERROR_INTERNAL, "illegal call to OBJECT_FILE::get_file_data() when the "
                                     "OBJECT_FILE object was not read from an input "
                                     "file");
        return -1;
    }
    if (!in_image(offset, size)) {
        set_error(OF_ERROR_CORRUPT, "0x%x bytes at offset 0x%x are beyond the end of the file",
                  size, offset);
        return -1;
    }
    map.set_view({image_.data + offset, size});
    return 0;
}

// What was saved is kept in memory, since the file itself may be where it is saved again.
int OBJECT_FILE::reopen_for_editing() {
    if (min_state(OF_STATE_SAVED) != 0) return -1;
    unmap_output();
    if (handle_.file) {
        handle_.file->evict();
        auto contents = handle_.file->contents();
        if (handle_.offset > contents.size() || handle_.size > contents.size() - handle_.offset)
            return -1;
        auto copy = std::make_unique_for_overwrite<uint8_t[]>(handle_.size);
        std::memcpy(copy.get(), contents.data() + handle_.offset, handle_.size);
        image_copy_ = std::move(copy);
        image_ = {image_copy_.get(), handle_.size};
    }
    zero_init_ = false;
    return reset_state(OF_STATE_OPEN);
}

} // namespace OFE
