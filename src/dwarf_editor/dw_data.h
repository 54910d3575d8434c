// The bytes of one debug section of an input object, and a reader that never leaves them.
//
// In a relocatable object an address is a place in a section: the relocation of the field says
// which section, the field or the relocation how far into it. DW_DATA answers that for any field. A
// DW_READER that is asked for more than there is stops: ok() turns false, it yields zeros and empty
// strings, and at_end() is true. So damaged debug data is read to its damage and no further.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace OFE {
class OBJECT_FILE;
}

namespace DWE {

// A place in a section of the object; without a section a plain number.
struct DW_ADDRESS {
    static constexpr unsigned NO_SECTION = ~0u;
    unsigned section_id = NO_SECTION;
    uint32_t value = 0;
};

class DW_DATA {
  public:
    // The first section of that name, when it is there and not compressed.
    DW_DATA(OFE::OBJECT_FILE* file, const char* section_name);
    // Bytes that no relocation touches.
    DW_DATA(const uint8_t* bytes, size_t size, bool big) : bytes_(bytes), size_(size), big_(big) {}

    const uint8_t* bytes() const { return bytes_; }
    size_t size() const { return size_; }
    bool big() const { return big_; }
    // The field of 4 bytes at that offset; nothing outside the section.
    DW_ADDRESS address_at(size_t offset) const;
    // The text that begins there, without its end; empty outside the section or when it has no end.
    std::string_view text_at(size_t offset) const;

  private:
    struct FIELD {
        uint32_t offset;
        unsigned section_id;
        uint32_t value; // of the symbol, and the addend of a RELA entry
        bool rela;
    };
    void load_fields(OFE::OBJECT_FILE* file, unsigned section_id);

    const uint8_t* bytes_ = nullptr;
    size_t size_ = 0;
    bool big_ = false;
    std::vector<FIELD> fields_; // by offset
};

class DW_READER {
  public:
    DW_READER(const DW_DATA& data, size_t from, size_t to)
        : data_(&data), pos_(from), end_(to < data.size() ? to : data.size()) {
        if (pos_ > end_) stop();
    }

    bool ok() const { return ok_; }
    bool at_end() const { return pos_ >= end_; }
    size_t pos() const { return pos_; }
    size_t end() const { return end_; }
    void seek(size_t pos);
    void skip(uint64_t count);

    uint8_t u8() { return static_cast<uint8_t>(number(1)); }
    uint16_t u16() { return static_cast<uint16_t>(number(2)); }
    uint32_t u32() { return static_cast<uint32_t>(number(4)); }
    uint64_t number(unsigned bytes); // of 1 to 8 bytes
    uint64_t uleb();
    int64_t sleb();
    std::string_view text();
    // 4 bytes and what their relocation says.
    DW_ADDRESS address();
    uint32_t offset() { return address().value; } // into another debug section

  private:
    void stop() {
        ok_ = false;
        pos_ = end_;
    }

    const DW_DATA* data_;
    size_t pos_, end_;
    bool ok_ = true;
};

} // namespace DWE
