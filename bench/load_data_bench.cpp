// How much the shapes of compression and CRC bring, as ratios within one run: copies found through
// queues of places against trying every place, check values by eight bytes at a step against one.
// Results must be equal, or the program fails.
#include "ELFLNK/compress/compression_alg.h"
#include "ELFLNK/crc/crc_engine.h"
#include "UTIL/data_map.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <random>
#include <vector>

namespace {

using BYTES = std::vector<uint8_t>;

// CPU seconds of a call, the best of three.
template <class CALL>
double seconds(CALL call) {
    double best = 1e9;
    for (int i = 0; i < 3; ++i) {
        const clock_t start = clock();
        call();
        best = std::min(best, static_cast<double>(clock() - start) / CLOCKS_PER_SEC);
    }
    return best;
}

// Text, tables of words with few different values, pointers, runs, noise: in stretches of up to 4
// kB.
BYTES firmware_data(size_t size) {
    std::mt19937 random(1);
    BYTES data;
    while (data.size() < size) {
        const size_t stretch = 64 + random() % 4032;
        const auto kind = random() % 5;
        const auto base = static_cast<uint32_t>(random());
        for (size_t i = 0; i < stretch && data.size() < size; ++i) switch (kind) {
            case 0:
                data.push_back(
                    static_cast<uint8_t>("sensor value out of range: %d\n\0"[(i * 7 + base) % 31]));
                break;
            case 1:
                data.push_back(static_cast<uint8_t>((base + random() % 4) >> (i % 4 * 8)));
                break;
            case 2:
                data.push_back(static_cast<uint8_t>((0x08000000 + (base % 4096 + i / 4 % 17) * 4) >>
                                                    (i % 4 * 8)));
                break;
            case 3:
                data.push_back(static_cast<uint8_t>(base));
                break;
            default:
                data.push_back(static_cast<uint8_t>(random()));
            }
    }
    return data;
}

// The stream as its description has it: every place is tried for every copy.
BYTES exhaustive_lzss(const BYTES& data) {
    BYTES stream;
    size_t flags = 0, items = 0;
    const auto begin_item = [&](bool literal) {
        if (items % 8 == 0) flags = stream.size(), stream.push_back(0);
        if (literal) stream[flags] |= static_cast<uint8_t>(1 << items % 8);
        ++items;
    };
    for (size_t at = 0; at < data.size();) {
        size_t best = 0, back = 0;
        for (size_t from = at - std::min<size_t>(at, 4095); from < at; ++from) {
            size_t n = 0;
            while (n < 32785 && at + n < data.size() && data[from + n] == data[at + n]) ++n;
            if (n > best) best = n, back = at - from;
            if (n == 32785) break;
        }
        if (best < 3) {
            begin_item(true);
            stream.push_back(data[at++]);
            continue;
        }
        begin_item(false);
        stream.push_back(static_cast<uint8_t>((back - 1) >> 4));
        stream.push_back(
            static_cast<uint8_t>(((back - 1) & 15) << 4 | std::min<size_t>(best - 3, 15)));
        if (best >= 18 && best < 146) stream.push_back(static_cast<uint8_t>(best - 18));
        if (best >= 146) {
            stream.push_back(static_cast<uint8_t>(((best - 18) & 127) | 128));
            stream.push_back(static_cast<uint8_t>((best - 18) >> 7));
        }
        at += best;
    }
    begin_item(false);
    stream.insert(stream.end(), {0xFF, 0xF0});
    return stream;
}

bool compare_lzss() {
    const BYTES data = firmware_data(1 << 20);
    BYTES slow;
    DATA_MAP fast;
    const double exhaustive = seconds([&] { slow = exhaustive_lzss(data); });
    const double queues = seconds([&] {
        DATA_MAP in{std::span(data)};
        fast.clear();
        COMPRESSION_LZSS().compress(in, fast);
    });
    printf("lzss: 1 MB to %zu bytes; every place tried: 1, queues: %.4f (%.0f times as fast)\n",
           slow.size(), queues / exhaustive, exhaustive / queues);
    return std::ranges::equal(fast.bytes(), slow);
}

// The usual loop: one table, one byte at a step. The register is at the top of 64 bits, or at the
// bottom if reflected.
uint64_t crc_by_bytes(const CRC::algorithm_t& a, const BYTES& data) {
    const unsigned shift = a.refin ? 0 : 64 - a.order;
    std::vector<uint64_t> table(256);
    for (unsigned i = 0; i < 256; ++i) {
        uint64_t value = a.refin ? i : uint64_t{i} << 56;
        const uint64_t polynomial =
            a.refin ? CRC::reflect(a.polynomial, a.order) : a.polynomial << shift;
        for (int bit = 0; bit < 8; ++bit)
            value = a.refin ? value >> 1 ^ (value & 1 ? polynomial : 0)
                            : value << 1 ^ (value >> 63 ? polynomial : 0);
        table[i] = value;
    }
    uint64_t crc = a.crcinit << shift;
    for (const uint8_t byte : data)
        crc = a.refin ? crc >> 8 ^ table[(crc & 255) ^ byte] : crc << 8 ^ table[crc >> 56 ^ byte];
    return crc >> shift ^ a.crcxor;
}

bool compare_crc(const CRC::algorithm_t& algorithm) {
    const BYTES data = firmware_data(16 << 20);
    uint64_t slow = 0, fast = 0;
    const double one = seconds([&] { slow = crc_by_bytes(algorithm, data); });
    const double eight = seconds([&] {
        CRC crc(algorithm);
        crc.read_data(data);
        fast = crc.finalize();
    });
    printf("%s: 16 MB; byte by byte: 1, by eight: %.3f (%.1f times as fast)\n",
           algorithm.name.data(), eight / one, one / eight);
    return slow == fast;
}

} // namespace

int main() {
    const CRC::algorithm_t algorithms[] = {
        {"CRC32", 32, 0x04C11DB7, 1, 0xFFFFFFFF, 1, 1, 0xFFFFFFFF, 1},
        {"CRC16_CCITT", 16, 0x1021, 1, 0xFFFF, 0, 0, 0, 1},
        {"CRC64_ISO", 64, 0x1B, 1, 0, 0, 0, 0, 1},
    };
    bool equal = compare_lzss();
    for (const auto& algorithm : algorithms) equal = compare_crc(algorithm) && equal;
    if (!equal) puts("results differ");
    return equal ? 0 : 1;
}
