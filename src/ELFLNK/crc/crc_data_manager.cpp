// The orders of bytes that CRC algorithms read; crc_data_manager.h has the idea.
#include "ELFLNK/crc/crc_data_manager.h"

#include <algorithm>

std::span<const uint8_t> CRC_DATA_MANAGER::take(size_t size) {
    const auto bytes = data_.first(std::min(size, data_.size()));
    data_ = data_.subspan(bytes.size());
    return bytes;
}

std::span<const uint8_t> TRINITY_CRC_DATA_MANAGER::read() {
    const auto bytes = take(staged_.size());
    const size_t padded = (bytes.size() + 7) / 8 * 8;
    std::fill(std::copy(bytes.begin(), bytes.end(), staged_.begin()), staged_.begin() + padded,
              uint8_t{0});
    for (uint8_t* pair = staged_.data(); pair != staged_.data() + padded; pair += 8) {
        const uint64_t first = DATA_MAP::load(pair, 4, endian_);
        const uint64_t second = DATA_MAP::load(pair + 4, 4, endian_);
        DATA_MAP::store(pair, (second << 32) | first, 8, DATA_MAP::BIG);
    }
    return std::span(staged_).first(padded);
}

std::unique_ptr<CRC_DATA_MANAGER> default_data_manager(const DATA_MAP& map) {
    return std::make_unique<CRC_DATA_MANAGER>(map);
}

std::unique_ptr<CRC_DATA_MANAGER> trinity_crc64_iso_data_manager(const DATA_MAP& map) {
    return std::make_unique<TRINITY_CRC_DATA_MANAGER>(map);
}
