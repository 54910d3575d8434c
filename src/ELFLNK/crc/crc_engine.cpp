// The tables of the CRC engine and the loops that take data through them; crc_engine.h has the
// idea.
#include "ELFLNK/crc/crc_engine.h"

#include <bit>
#include <cstring>
#include <map>
#include <utility>

uint64_t CRC::reflect(uint64_t value, unsigned bits) {
    uint64_t reversed = 0;
    for (unsigned i = 0; i < bits; ++i, value >>= 1) reversed = (reversed << 1) | (value & 1);
    return reversed;
}

// The register after one bit of zero has entered at its low end.
static uint64_t shift_bit(uint64_t value, uint64_t topbit, uint64_t polynomial) {
    return (value << 1) ^ ((value & topbit) != 0 ? polynomial : 0);
}

// The first table: what a byte that leaves the register at its top leaves behind.
static uint64_t table_entry(const CRC::algorithm_t& algorithm, uint64_t topbit, unsigned index) {
    uint64_t value = algorithm.refin ? CRC::reflect(index, 8) : index;
    value <<= algorithm.order - 8;
    for (int bit = 0; bit < 8; ++bit) value = shift_bit(value, topbit, algorithm.polynomial);
    return algorithm.refin ? CRC::reflect(value, algorithm.order) : value << (64 - algorithm.order);
}

CRC::imputed_values_t CRC::compute_imputed_values(const algorithm_t& algorithm) {
    imputed_values_t v;
    v.topbit = uint64_t{1} << (algorithm.order - 1);
    v.mask = v.topbit | (v.topbit - 1);
    v.direct_init = algorithm.crcinit;
    if (!algorithm.direct)
        for (unsigned bit = 0; bit < algorithm.order; ++bit)
            v.direct_init = shift_bit(v.direct_init, v.topbit, algorithm.polynomial) & v.mask;
    auto& first = v.table[0];
    for (unsigned i = 0; i < 256; ++i) first[i] = table_entry(algorithm, v.topbit, i);
    for (unsigned k = 1; k < v.table.size(); ++k)
        for (unsigned i = 0; i < 256; ++i) {
            const uint64_t before = v.table[k - 1][i];
            v.table[k][i] = algorithm.refin ? (before >> 8) ^ first[before & 255]
                                            : (before << 8) ^ first[before >> 56];
        }
    return v;
}

const CRC::imputed_values_t& CRC::imputed_values(const algorithm_t& algorithm) {
    static std::map<algorithm_t, imputed_values_t> tablemap;
    auto found = tablemap.find(algorithm);
    if (found == tablemap.end())
        found = tablemap.emplace(algorithm, compute_imputed_values(algorithm)).first;
    return found->second;
}

CRC::CRC(const algorithm_t& algorithm)
    : algorithm_(algorithm),
      values_(imputed_values(algorithm)),
      shift_(algorithm.refin ? 0 : 64 - algorithm.order) {
    register_ = algorithm.refin ? reflect(values_.direct_init, algorithm.order)
                                : values_.direct_init << shift_;
}

// The bytes at `from` as a word, the first at the end of the word where bytes leave the register.
template <bool REFLECTED>
static uint64_t load_word(const uint8_t* from) {
    uint64_t word;
    std::memcpy(&word, from, sizeof word);
    return REFLECTED == (std::endian::native == std::endian::little) ? word
                                                                     : __builtin_bswap64(word);
}

// The register after eight bytes, which `word` holds XORed with the register.
template <bool REFLECTED, size_t... K>
static uint64_t eight_bytes(const std::array<std::array<uint64_t, 256>, 8>& t, uint64_t word,
                            std::index_sequence<K...>) {
    return (t[REFLECTED ? 7 - K : K][(word >> (8 * K)) & 255] ^ ...);
}

template <bool REFLECTED>
static uint64_t read_words(const std::array<std::array<uint64_t, 256>, 8>& t, uint64_t crc,
                           std::span<const uint8_t>& data) {
    for (; data.size() >= 8; data = data.subspan(8))
        crc = eight_bytes<REFLECTED>(t, crc ^ load_word<REFLECTED>(data.data()),
                                     std::make_index_sequence<8>());
    return crc;
}

void CRC::read_data(std::span<const uint8_t> data) {
    const auto& t = values_.table;
    uint64_t crc = register_;
    if (algorithm_.fast)
        crc = algorithm_.refin ? read_words<true>(t, crc, data) : read_words<false>(t, crc, data);
    for (const uint64_t byte : data) {
        if (algorithm_.fast)
            crc = algorithm_.refin ? (crc >> 8) ^ t[0][(crc & 255) ^ byte]
                                   : (crc << 8) ^ t[0][(crc >> 56) ^ byte];
        else
            crc = algorithm_.refin
                      ? ((byte << (algorithm_.order - 8)) | (crc >> 8)) ^ t[0][crc & 255]
                      : ((crc << 8) | (byte << shift_)) ^ t[0][crc >> 56];
    }
    register_ = crc;
}

uint64_t CRC::finalize() const {
    uint64_t value = register_ >> shift_;
    if (algorithm_.refout != algorithm_.refin) value = reflect(value, algorithm_.order);
    return (value ^ algorithm_.crcxor) & values_.mask;
}
