// Fill patterns in the raw data of an output section. The pattern is anchored to addresses, so
// that neighbouring fills of one value run on seamlessly.
#include "ELFLNK/object/fill_data.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "ELFLNK/memmap/fill_spec.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"

namespace {

/// The value in the byte order of the target.
std::array<uint8_t, 8> pattern_of(const FILL_SPEC* fill, uint32_t bytes, bool big) {
    std::array<uint8_t, 8> pattern{};
    for (uint32_t i = 0; i < bytes; ++i) {
        const uint32_t shift = 8 * (big ? bytes - 1 - i : i);
        pattern[i] = static_cast<uint8_t>(fill->value() >> shift);
    }
    return pattern;
}

constexpr uint32_t CHUNK = 4096;

} // namespace

void fill_data(OFE::OF_SECTION* section, uint32_t offset, uint32_t length, FILL_SPEC* fill) {
    if (!section->initialized()) return; // nothing of it goes into the file
    if (fill == nullptr) fill = FILL_SPEC::default_fill();
    const uint32_t unit_bytes = std::max(section->unit_size() / 8, 1U);
    const uint32_t bytes = fill->pattern_bytes();
    const bool big = section->ofile()->machine_endian() == OFE::OF_ENDIAN_BIG;
    const auto pattern = pattern_of(fill, bytes, big);

    uint64_t at = uint64_t{offset} * unit_bytes;
    uint64_t left = uint64_t{length} * unit_bytes;
    const uint64_t phase = (uint64_t{section->run_addr()} * unit_bytes + at) % bytes;

    // Whole patterns fit a chunk, so each chunk starts in the phase of the first.
    std::vector<uint8_t> chunk(std::min<uint64_t>(left, uint64_t{CHUNK} / bytes * bytes));
    for (std::size_t i = 0; i < chunk.size(); ++i) chunk[i] = pattern[(phase + i) % bytes];
    while (left != 0) {
        const auto now = static_cast<unsigned>(std::min<uint64_t>(left, chunk.size()));
        if (section->write_to_raw_data(chunk.data(), now, static_cast<unsigned>(at)) != 0) return;
        at += now;
        left -= now;
    }
}
