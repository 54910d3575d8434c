// In which order the bytes of a section enter its CRC.
//
// Most algorithms take them as they lie in memory. Hardware that computes a CRC over memory words
// takes them in the order of its bus: the manager hands the engine the bytes in that order, and
// puts the result into the form in which the hardware shows it.
#pragma once

#include "UTIL/data_map.h"

#include <array>
#include <cstdint>
#include <memory>
#include <span>

/// Bytes in their order, from the map's position to its end.
class CRC_DATA_MANAGER {
  public:
    explicit CRC_DATA_MANAGER(const DATA_MAP& map) : data_(map.bytes().subspan(start(map))) {}
    virtual ~CRC_DATA_MANAGER() = default;

    /// The next bytes for the engine, at least one; valid until the next call.
    virtual std::span<const uint8_t> read() { return take(data_.size()); }
    bool end_of_buffer() const { return data_.empty(); }
    /// The value that goes into the record.
    virtual uint64_t update_crc(uint64_t value) const { return value; }

  protected:
    /// The next `size` bytes as they lie, fewer at the end.
    std::span<const uint8_t> take(size_t size);

  private:
    static size_t start(const DATA_MAP& map) { return map.size() - map.left(); }

    std::span<const uint8_t> data_; // what has not been read
};

/// Pairs of 32-bit words: the second before the first, each from its highest byte down; the end is
/// padded with zeros to a whole pair. The halves of the result change places.
class TRINITY_CRC_DATA_MANAGER : public CRC_DATA_MANAGER {
  public:
    explicit TRINITY_CRC_DATA_MANAGER(const DATA_MAP& map)
        : CRC_DATA_MANAGER(map), endian_(map.endian()) {}

    std::span<const uint8_t> read() override;
    uint64_t update_crc(uint64_t value) const override { return (value << 32) | (value >> 32); }

  private:
    DATA_MAP::ENDIAN endian_;
    std::array<uint8_t, 2048> staged_;
};

std::unique_ptr<CRC_DATA_MANAGER> default_data_manager(const DATA_MAP& map);
std::unique_ptr<CRC_DATA_MANAGER> trinity_crc64_iso_data_manager(const DATA_MAP& map);
