// Raw bytes with a position and a byte order: the one road by which file formats are read and
// written.
//
// The bytes are a view (of a mapped file, found on first access, or of memory that somebody else
// keeps) or a buffer of the map's own. Reading never copies. The first write turns a view into a
// buffer; a write behind the end lets it grow, with zeros in between. Every read is checked: one
// that leaves the bytes gives 0 and sets failed(), which stays set until clear_failure(), so that a
// reader can take a whole record and ask once.
#pragma once

#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

class FHM_FILE;

class DATA_MAP {
  public:
    /// Byte order; the numbers are those of OF_ENDIAN.
    enum ENDIAN { LITTLE = 1, BIG = 2 };

    DATA_MAP() = default;
    explicit DATA_MAP(ENDIAN endian) : endian_(endian) {}
    /// A view of memory that outlives the map.
    explicit DATA_MAP(std::span<const uint8_t> view, ENDIAN endian = LITTLE)
        : endian_(endian), data_(view.data()), size_(view.size()) {}

    DATA_MAP(const DATA_MAP& other);
    DATA_MAP& operator=(const DATA_MAP& other);
    DATA_MAP(DATA_MAP&& other) noexcept;
    DATA_MAP& operator=(DATA_MAP&& other) noexcept;
    ~DATA_MAP() = default;

    ENDIAN endian() const { return endian_; }
    void set_endian(ENDIAN endian) { endian_ = endian; }

    // --- what the map looks at; each sets the position to 0 and clears the failure mark

    /// A view of memory that outlives the map.
    void set_view(std::span<const uint8_t> view);
    /// `size` bytes at `offset` of a file, cut at the file's end; looked up on first access.
    void set_file(FHM_FILE* file, uint64_t offset, uint64_t size);
    /// A buffer of its own with `size` bytes of 0.
    void set_zeros(size_t size);
    /// A buffer of its own with a copy of `bytes`.
    void set_copy(std::span<const uint8_t> bytes);
    /// Empty, memory given back.
    void clear();

    // --- the bytes as a whole

    size_t size() const { return resolve(), size_; }
    bool empty() const { return size() == 0; }
    const uint8_t* data() const { return resolve(), data_; }
    std::span<const uint8_t> bytes() const {
        return resolve(), std::span<const uint8_t>(data_, size_);
    }
    /// `size` bytes at `offset`, or an empty span if they are not all there.
    std::span<const uint8_t> bytes(uint64_t offset, uint64_t size) const;
    /// The NUL-terminated string at `offset`, or null if there is none.
    const char* c_string(uint64_t offset) const;
    /// True if the bytes are the map's own buffer: in memory, not a view of a file.
    bool in_memory() const { return owned_; }
    /// The file whose range this map views, or null.
    FHM_FILE* file() const { return file_; }
    uint64_t file_offset() const { return file_offset_; }
    /// Writable access to the own buffer, made now if the bytes are a view.
    uint8_t* writable() { return make_owned(), buffer_.data(); }
    /// Sets the size; new bytes are 0.
    void resize(size_t size);
    void reserve(size_t size);
    /// Removes `size` bytes at `offset`; what follows moves down. The range is cut at the end.
    void remove_data(uint64_t offset, uint64_t size);
    /// Inserts `size` bytes of 0 at `offset` (at most the end); what follows moves up.
    void insert_data(uint64_t offset, uint64_t size);

    // --- position and failure

    uint64_t pos() const { return pos_; }
    void set_pos(uint64_t pos) { pos_ = pos; }
    void skip(uint64_t count) { pos_ += count; }
    /// Moves the position up to a multiple of `align`, a power of two.
    void align_pos(uint64_t align) { pos_ = (pos_ + align - 1) & ~(align - 1); }
    bool at_end() const { return pos_ >= size(); }
    /// Bytes from the position to the end.
    uint64_t left() const { return at_end() ? 0 : size_ - pos_; }
    bool failed() const { return failed_; }
    void clear_failure() { failed_ = false; }

    // --- typed reads at the position, which moves on

    uint8_t read8() { return static_cast<uint8_t>(read_uint(1)); }
    uint16_t read16() { return static_cast<uint16_t>(read_uint(2)); }
    uint32_t read32() { return static_cast<uint32_t>(read_uint(4)); }
    uint64_t read64() { return read_uint(8); }
    /// An unsigned integer of 1 to 8 bytes in the map's byte order.
    uint64_t read_uint(unsigned width);
    uint64_t read_uleb128();
    int64_t read_sleb128();
    /// Copies `size` bytes to `to`; on failure fills it with 0 and returns false.
    bool read(void* to, size_t size);
    /// A view of the next `size` bytes; empty on failure.
    std::span<const uint8_t> read_bytes(uint64_t size);
    /// The NUL-terminated string at the position, without copying; empty on failure.
    std::string_view read_string();

    // --- typed reads at an offset

    uint8_t get8(uint64_t offset) const { return static_cast<uint8_t>(get_uint(offset, 1)); }
    uint16_t get16(uint64_t offset) const { return static_cast<uint16_t>(get_uint(offset, 2)); }
    uint32_t get32(uint64_t offset) const { return static_cast<uint32_t>(get_uint(offset, 4)); }
    uint64_t get64(uint64_t offset) const { return get_uint(offset, 8); }
    uint64_t get_uint(uint64_t offset, unsigned width) const;

    // --- typed writes at the position, which moves on

    void write8(uint8_t value) { write_uint(value, 1); }
    void write16(uint16_t value) { write_uint(value, 2); }
    void write32(uint32_t value) { write_uint(value, 4); }
    void write64(uint64_t value) { write_uint(value, 8); }
    void write_uint(uint64_t value, unsigned width);
    void write_uleb128(uint64_t value);
    /// An unsigned LEB128 padded to exactly `width` bytes.
    void write_uleb128_padded(uint64_t value, unsigned width);
    void write_sleb128(int64_t value);
    void write(const void* from, size_t size);
    void write(std::span<const uint8_t> bytes) { write(bytes.data(), bytes.size()); }
    /// The text and its NUL.
    void write_string(std::string_view text);
    /// `count` bytes of `value`.
    void write_fill(uint8_t value, uint64_t count);

    // --- typed writes at an offset

    void put8(uint64_t offset, uint8_t value) { put_uint(offset, value, 1); }
    void put16(uint64_t offset, uint16_t value) { put_uint(offset, value, 2); }
    void put32(uint64_t offset, uint32_t value) { put_uint(offset, value, 4); }
    void put64(uint64_t offset, uint64_t value) { put_uint(offset, value, 8); }
    void put_uint(uint64_t offset, uint64_t value, unsigned width);
    void put(uint64_t offset, const void* from, size_t size);

    // --- integers at a pointer, for readers that have checked the bounds themselves

    static uint64_t load(const uint8_t* from, unsigned width, ENDIAN endian);
    static void store(uint8_t* to, uint64_t value, unsigned width, ENDIAN endian);

  private:
    void resolve() const {
        if (pending_) resolve_file();
    }
    void resolve_file() const;
    void make_owned();
    void take_state(const DATA_MAP& other);
    void drop_source();
    /// The place for `size` bytes at `offset` in the own buffer, which grows.
    uint8_t* room(uint64_t offset, uint64_t size);

    ENDIAN endian_ = LITTLE;
    mutable bool pending_ = false; // a file range that has not been looked up
    bool owned_ = false;
    mutable bool failed_ = false;
    mutable const uint8_t* data_ = nullptr;
    mutable size_t size_ = 0;
    uint64_t pos_ = 0;
    FHM_FILE* file_ = nullptr;
    uint64_t file_offset_ = 0;
    uint64_t file_size_ = 0;
    std::vector<uint8_t> buffer_;
};
