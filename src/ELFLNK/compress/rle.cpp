// Run length encoding; compression_alg.h draws the stream.
#include "ELFLNK/compress/compression_alg.h"
#include "UTIL/data_map.h"

#include <algorithm>
#include <array>

static const size_t shortest_run = 4; // of a byte other than the delimiter, written as a run
static const size_t longest_run = 0xFFFFFF;

// The rarest byte value, the lowest of those that are equally rare.
static uint8_t find_delimiter(std::span<const uint8_t> data) {
    std::array<size_t, 256> count{};
    for (const uint8_t byte : data) ++count[byte];
    return static_cast<uint8_t>(std::min_element(count.begin(), count.end()) - count.begin());
}

// A run of at least four, in the shortest of the three forms that holds it.
static void write_run(DATA_MAP& out, uint8_t delimiter, uint8_t value, size_t length) {
    out.write8(delimiter);
    if (length >= 0x100) out.write8(0);
    if (length >= 0x10000) {
        out.write8(0);
        out.write8(static_cast<uint8_t>(length >> 16));
    }
    if (length >= 0x100) out.write8(static_cast<uint8_t>(length >> 8));
    out.write8(static_cast<uint8_t>(length));
    out.write8(value);
}

static void write_short_run(DATA_MAP& out, uint8_t delimiter, uint8_t value, size_t length) {
    if (length == 0) return;
    if (value != delimiter) return out.write_fill(value, length);
    out.write8(delimiter);
    out.write8(static_cast<uint8_t>(length));
}

void COMPRESSION_RLE::compress(DATA_MAP& in, DATA_MAP& out) const {
    const auto data = in.read_bytes(in.left());
    if (data.empty()) return;
    const uint8_t delimiter = find_delimiter(data);
    out.write8(delimiter);
    for (auto at = data.begin(); at != data.end();) {
        const uint8_t value = *at;
        const auto end = std::find_if(at, data.end(), [=](uint8_t b) { return b != value; });
        auto length = static_cast<size_t>(end - at);
        for (; length >= shortest_run; length -= std::min(length, longest_run))
            write_run(out, delimiter, value, std::min(length, longest_run));
        write_short_run(out, delimiter, value, length);
        at = end;
    }
    out.write8(delimiter);
    out.write_fill(0, 3);
}

// The length that follows a delimiter and a 0; 0 for the end of the stream.
static size_t read_long_length(DATA_MAP& in) {
    size_t length = in.read8();
    if (length == 0) {
        length = in.read8();
        if (length == 0) return 0;
        length = length << 8 | in.read8();
    }
    return length << 8 | in.read8();
}

bool COMPRESSION_RLE::decompress(DATA_MAP& in, DATA_MAP& out) const {
    if (in.at_end()) return true;
    const uint8_t delimiter = in.read8();
    while (!in.at_end()) {
        uint8_t value = in.read8();
        size_t length = 1;
        if (value == delimiter) {
            length = in.read8();
            if (length == 0) {
                length = read_long_length(in);
                if (length == 0) return !in.failed();
            }
            if (length >= shortest_run) value = in.read8();
        }
        if (in.failed()) return false;
        out.write_fill(value, length);
    }
    return false;
}
