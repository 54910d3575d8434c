// An attributes section: a format byte; per vendor a size, a name and lists; per list a scope, a
// size and attributes, each a ULEB128 tag with an integer, a text, or both. Sizes count from their
// own list's or vendor's first byte and are cut to what is there.
#include "OBJEDIT04/attributes/file_attributes.h"

#include <algorithm>
#include <cstring>

#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"

namespace OFE {

namespace {

constexpr unsigned SHT_ATTRIBUTES = 0x70000003;
constexpr unsigned SCOPE_FILE = 1;
constexpr unsigned TAG_COMPATIBILITY = 32;

class READER {
  public:
    READER(std::span<const uint8_t> bytes, bool big) : bytes_(bytes), big_(big) {}

    bool at_end() const { return pos_ >= bytes_.size(); }

    uint32_t uleb() {
        uint32_t value = 0;
        for (unsigned shift = 0; pos_ < bytes_.size(); shift += 7) {
            uint8_t byte = bytes_[pos_++];
            if (shift < 32) value |= static_cast<uint32_t>(byte & 0x7F) << shift;
            if (!(byte & 0x80)) break;
        }
        return value;
    }

    const char* text() {
        const uint8_t* start = bytes_.data() + pos_;
        const void* nul = memchr(start, 0, bytes_.size() - pos_);
        if (!nul) {
            pos_ = bytes_.size();
            return "";
        }
        pos_ = static_cast<size_t>(static_cast<const uint8_t*>(nul) - bytes_.data()) + 1;
        return reinterpret_cast<const char*>(start);
    }

    // The rest of a block that began at `start` and whose next four bytes are its size; moves past
    // the block. Empty for a size that cannot be.
    READER block(size_t start) {
        if (bytes_.size() - pos_ < 4) {
            pos_ = bytes_.size();
            return {{}, big_};
        }
        size_t size = read_u32(bytes_.data() + pos_, big_);
        pos_ += 4;
        if (size < pos_ - start || size > bytes_.size() - start) {
            pos_ = bytes_.size();
            return {{}, big_};
        }
        READER inside(bytes_.subspan(pos_, start + size - pos_), big_);
        pos_ = start + size;
        return inside;
    }

    size_t pos() const { return pos_; }

  private:
    std::span<const uint8_t> bytes_;
    size_t pos_ = 0;
    bool big_;
};

// What follows a tag: an integer, a text, or one after the other.
struct KIND {
    bool integer;
    bool text;
};

KIND kind_of(bool aeabi, unsigned tag) {
    if (tag == TAG_COMPATIBILITY) return {true, true};
    if (aeabi && tag < TAG_COMPATIBILITY) return {tag > 5, tag <= 5};
    return {(tag & 1) == 0, (tag & 1) != 0};
}

std::optional<uint32_t> find_in_list(READER list, bool aeabi, unsigned wanted) {
    while (!list.at_end()) {
        unsigned tag = list.uleb();
        KIND kind = kind_of(aeabi, tag);
        uint32_t value = kind.integer ? list.uleb() : 0;
        if (kind.text) list.text();
        if (tag == wanted) return value;
    }
    return std::nullopt;
}

} // namespace

std::optional<uint32_t> file_attribute(std::span<const uint8_t> section, bool big,
                                       const char* vendor, unsigned tag) {
    if (section.empty()) return std::nullopt;
    READER vendors(section.subspan(1), big);
    while (!vendors.at_end()) {
        READER lists = vendors.block(vendors.pos());
        if (lists.at_end() || strcmp(lists.text(), vendor) != 0) continue;
        while (!lists.at_end()) {
            size_t start = lists.pos();
            unsigned scope = lists.uleb();
            READER list = lists.block(start);
            if (scope != SCOPE_FILE) continue;
            if (auto value = find_in_list(list, strcmp(vendor, OFBA_VENDOR_AEABI) == 0, tag))
                return value;
        }
    }
    return std::nullopt;
}

std::optional<uint32_t> file_attribute(OBJECT_FILE* file, const char* vendor, unsigned tag) {
    OF_SECTION_TABLE* table = file->section_table();
    if (!table) return std::nullopt;
    OF_RAW_SECTION raw;
    for (unsigned id = table->scnnum(); id-- > 1;) { // attributes come last as a rule
        if (!table->raw_section(id, raw) || raw.deleted || raw.type != SHT_ATTRIBUTES) continue;
        OF_SECTION* section = table->section(id);
        if (!section) continue;
        OF_BYTES bytes = section->bytes();
        return file_attribute({bytes.data, bytes.size}, file->machine_endian() == OF_ENDIAN_BIG,
                              vendor, tag);
    }
    return std::nullopt;
}

} // namespace OFE
