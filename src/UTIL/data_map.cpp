// Access to raw bytes. The view is data_/size_; where the map owns its bytes these follow buffer_.
#include "UTIL/data_map.h"

#include "UTIL/file_handle_manager.h"

#include <algorithm>

DATA_MAP::DATA_MAP(const DATA_MAP& other) {
    *this = other;
}

DATA_MAP& DATA_MAP::operator=(const DATA_MAP& other) {
    if (this == &other) return *this;
    buffer_ = other.buffer_;
    take_state(other);
    return *this;
}

DATA_MAP::DATA_MAP(DATA_MAP&& other) noexcept {
    *this = std::move(other);
}

DATA_MAP& DATA_MAP::operator=(DATA_MAP&& other) noexcept {
    if (this == &other) return *this;
    buffer_ = std::move(other.buffer_);
    take_state(other);
    other.clear();
    return *this;
}

// Everything but the buffer, which is here by now.
void DATA_MAP::take_state(const DATA_MAP& other) {
    endian_ = other.endian_;
    pending_ = other.pending_;
    owned_ = other.owned_;
    failed_ = other.failed_;
    pos_ = other.pos_;
    file_ = other.file_;
    file_offset_ = other.file_offset_;
    file_size_ = other.file_size_;
    data_ = owned_ ? buffer_.data() : other.data_;
    size_ = other.size_;
}

void DATA_MAP::drop_source() {
    pending_ = false;
    owned_ = false;
    failed_ = false;
    data_ = nullptr;
    size_ = 0;
    pos_ = 0;
    file_ = nullptr;
    file_offset_ = 0;
    file_size_ = 0;
}

void DATA_MAP::clear() {
    drop_source();
    buffer_ = {};
}

void DATA_MAP::set_view(std::span<const uint8_t> view) {
    clear();
    data_ = view.data();
    size_ = view.size();
}

void DATA_MAP::set_file(FHM_FILE* file, uint64_t offset, uint64_t size) {
    clear();
    file_ = file;
    file_offset_ = offset;
    file_size_ = size;
    pending_ = file != nullptr;
}

void DATA_MAP::set_zeros(size_t size) {
    drop_source();
    owned_ = true;
    buffer_.assign(size, 0);
    data_ = buffer_.data();
    size_ = size;
}

void DATA_MAP::set_copy(std::span<const uint8_t> bytes) {
    std::vector<uint8_t> copy(bytes.begin(), bytes.end());
    drop_source();
    owned_ = true;
    buffer_ = std::move(copy);
    data_ = buffer_.data();
    size_ = buffer_.size();
}

void DATA_MAP::resolve_file() const {
    pending_ = false;
    const std::span<const uint8_t> whole = file_->contents();
    if (file_offset_ >= whole.size()) return;
    data_ = whole.data() + file_offset_;
    size_ = std::min<uint64_t>(file_size_, whole.size() - file_offset_);
}

void DATA_MAP::make_owned() {
    if (owned_) return;
    resolve();
    buffer_.assign(data_, data_ + size_);
    owned_ = true;
    file_ = nullptr;
    data_ = buffer_.data();
}

uint8_t* DATA_MAP::room(uint64_t offset, uint64_t size) {
    make_owned();
    if (offset + size > buffer_.size()) {
        buffer_.resize(offset + size);
        data_ = buffer_.data();
        size_ = buffer_.size();
    }
    return buffer_.data() + offset;
}

void DATA_MAP::resize(size_t size) {
    make_owned();
    buffer_.resize(size);
    data_ = buffer_.data();
    size_ = size;
}

void DATA_MAP::reserve(size_t size) {
    make_owned();
    buffer_.reserve(size);
    data_ = buffer_.data();
}

void DATA_MAP::remove_data(uint64_t offset, uint64_t size) {
    make_owned();
    if (offset >= size_) return;
    const uint64_t count = std::min<uint64_t>(size, size_ - offset);
    const auto from = buffer_.begin() + static_cast<ptrdiff_t>(offset);
    buffer_.erase(from, from + static_cast<ptrdiff_t>(count));
    data_ = buffer_.data();
    size_ = buffer_.size();
}

void DATA_MAP::insert_data(uint64_t offset, uint64_t size) {
    make_owned();
    const uint64_t at = std::min<uint64_t>(offset, size_);
    buffer_.insert(buffer_.begin() + static_cast<ptrdiff_t>(at), size, 0);
    data_ = buffer_.data();
    size_ = buffer_.size();
}

std::span<const uint8_t> DATA_MAP::bytes(uint64_t offset, uint64_t size) const {
    resolve();
    if (offset > size_ || size > size_ - offset) return {};
    return {data_ + offset, size};
}

const char* DATA_MAP::c_string(uint64_t offset) const {
    resolve();
    if (offset >= size_ || std::memchr(data_ + offset, 0, size_ - offset) == nullptr)
        return nullptr;
    return reinterpret_cast<const char*>(data_ + offset);
}

uint64_t DATA_MAP::load(const uint8_t* from, unsigned width, ENDIAN endian) {
    uint64_t value = 0;
    if (endian == BIG)
        for (unsigned i = 0; i < width; i++) value = value << 8 | from[i];
    else
        for (unsigned i = width; i-- > 0;) value = value << 8 | from[i];
    return value;
}

void DATA_MAP::store(uint8_t* to, uint64_t value, unsigned width, ENDIAN endian) {
    for (unsigned i = 0; i < width; i++) {
        to[endian == BIG ? width - 1 - i : i] = static_cast<uint8_t>(value);
        value >>= 8;
    }
}

uint64_t DATA_MAP::get_uint(uint64_t offset, unsigned width) const {
    resolve();
    if (offset > size_ || width > size_ - offset) {
        failed_ = true;
        return 0;
    }
    return load(data_ + offset, width, endian_);
}

uint64_t DATA_MAP::read_uint(unsigned width) {
    const uint64_t value = get_uint(pos_, width);
    pos_ += width;
    return value;
}

std::span<const uint8_t> DATA_MAP::read_bytes(uint64_t size) {
    resolve();
    if (pos_ > size_ || size > size_ - pos_) {
        failed_ = true;
        return {};
    }
    const std::span<const uint8_t> view(data_ + pos_, size);
    pos_ += size;
    return view;
}

bool DATA_MAP::read(void* to, size_t size) {
    const std::span<const uint8_t> view = read_bytes(size);
    if (view.size() != size) {
        std::memset(to, 0, size);
        return false;
    }
    if (size != 0) std::memcpy(to, view.data(), size);
    return true;
}

std::string_view DATA_MAP::read_string() {
    const char* text = c_string(pos_);
    if (text == nullptr) {
        failed_ = true;
        return {};
    }
    const std::string_view view(text);
    pos_ += view.size() + 1;
    return view;
}

uint64_t DATA_MAP::read_uleb128() {
    uint64_t value = 0;
    for (unsigned shift = 0;; shift += 7) {
        const uint8_t byte = read8();
        if (failed_) return 0;
        if (shift < 64) value |= static_cast<uint64_t>(byte & 0x7F) << shift;
        if ((byte & 0x80) == 0) return value;
    }
}

int64_t DATA_MAP::read_sleb128() {
    uint64_t value = 0;
    for (unsigned shift = 0;;) {
        const uint8_t byte = read8();
        if (failed_) return 0;
        if (shift < 64) value |= static_cast<uint64_t>(byte & 0x7F) << shift;
        shift += 7;
        if ((byte & 0x80) == 0) {
            if ((byte & 0x40) != 0 && shift < 64) value |= ~uint64_t{0} << shift;
            return static_cast<int64_t>(value);
        }
    }
}

void DATA_MAP::put_uint(uint64_t offset, uint64_t value, unsigned width) {
    store(room(offset, width), value, width, endian_);
}

void DATA_MAP::put(uint64_t offset, const void* from, size_t size) {
    if (size != 0) std::memmove(room(offset, size), from, size);
}

void DATA_MAP::write_uint(uint64_t value, unsigned width) {
    put_uint(pos_, value, width);
    pos_ += width;
}

void DATA_MAP::write(const void* from, size_t size) {
    put(pos_, from, size);
    pos_ += size;
}

void DATA_MAP::write_string(std::string_view text) {
    write(text.data(), text.size());
    write8(0);
}

void DATA_MAP::write_fill(uint8_t value, uint64_t count) {
    if (count != 0) std::memset(room(pos_, count), value, count);
    pos_ += count;
}

void DATA_MAP::write_uleb128(uint64_t value) {
    do {
        const auto low = static_cast<uint8_t>(value & 0x7F);
        value >>= 7;
        write8(value != 0 ? low | 0x80 : low);
    } while (value != 0);
}

void DATA_MAP::write_uleb128_padded(uint64_t value, unsigned width) {
    for (unsigned i = 1; i <= width; i++) {
        const auto low = static_cast<uint8_t>(value & 0x7F);
        value >>= 7;
        write8(i < width ? low | 0x80 : low);
    }
}

void DATA_MAP::write_sleb128(int64_t value) {
    for (bool more = true; more;) {
        const auto low = static_cast<uint8_t>(value & 0x7F);
        value >>= 7;
        more = !((value == 0 && (low & 0x40) == 0) || (value == -1 && (low & 0x40) != 0));
        write8(more ? low | 0x80 : low);
    }
}
