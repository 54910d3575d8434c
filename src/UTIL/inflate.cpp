#include "UTIL/inflate.h"

#include <algorithm>
#include <array>

namespace {

constexpr unsigned MAX_BITS = 15, FAST_BITS = 9;

/// The stream as bits, lowest first; behind its end come zeros, and ok() turns false.
class BIT_READER {
  public:
    explicit BIT_READER(std::span<const uint8_t> in) : in_(in) {}

    /// At least 16 of the next bits.
    unsigned peek() {
        while (held_ <= 24) {
            if (at_ < in_.size()) bits_ |= uint64_t{in_[at_]} << held_;
            ++at_;
            held_ += 8;
        }
        return static_cast<unsigned>(bits_);
    }
    void skip(unsigned count) {
        bits_ >>= count;
        held_ -= count;
    }
    unsigned take(unsigned count) {
        const unsigned value = peek() & ((1U << count) - 1);
        skip(count);
        return value;
    }
    /// What is left behind the current byte.
    std::span<const uint8_t> rest() {
        at_ -= held_ / 8;
        bits_ = held_ = 0;
        return at_ <= in_.size() ? in_.subspan(at_) : std::span<const uint8_t>();
    }
    void advance(size_t bytes) { at_ += bytes; }
    bool ok() const { return at_ - held_ / 8 <= in_.size(); }

  private:
    std::span<const uint8_t> in_;
    size_t at_ = 0;
    uint64_t bits_ = 0;
    unsigned held_ = 0;
};

/// A prefix code, given by the lengths of its words: short words come from a table by the next
/// bits, long ones are counted through length by length.
class PREFIX_CODE {
  public:
    static constexpr unsigned NONE = ~0U;

    /// False if there are more words of a length than can exist.
    bool set(std::span<const uint8_t> lengths) {
        count_.fill(0);
        for (uint8_t n : lengths) ++count_[n];
        count_[0] = 0;
        int left = 1;
        std::array<uint16_t, MAX_BITS + 2> first{};
        for (unsigned n = 1; n <= MAX_BITS; ++n) {
            left = 2 * left - count_[n];
            if (left < 0) return false;
            first[n + 1] = static_cast<uint16_t>(first[n] + count_[n]);
        }
        for (unsigned symbol = 0; symbol < lengths.size(); ++symbol)
            if (lengths[symbol] != 0)
                symbols_[first[lengths[symbol]]++] = static_cast<uint16_t>(symbol);
        for (unsigned bits = 0; bits < fast_.size(); ++bits) fast_[bits] = find(bits, FAST_BITS);
        return true;
    }

    /// The symbol of the next word; NONE for bits that are no word.
    unsigned take(BIT_READER& in) const {
        const unsigned bits = in.peek();
        WORD word = fast_[bits & (fast_.size() - 1)];
        if (word.length == 0) word = find(bits, MAX_BITS);
        if (word.length == 0) return NONE;
        in.skip(word.length);
        return word.symbol;
    }

  private:
    struct WORD {
        uint16_t symbol = 0;
        uint16_t length = 0; // 0: none
    };

    WORD find(unsigned bits, unsigned limit) const {
        unsigned code = 0, first = 0, index = 0;
        for (unsigned n = 1; n <= limit; ++n, bits >>= 1) {
            code |= bits & 1;
            if (code < first + count_[n])
                return {symbols_[index + code - first], static_cast<uint16_t>(n)};
            index += count_[n];
            first = (first + count_[n]) << 1;
            code <<= 1;
        }
        return {};
    }

    std::array<uint16_t, MAX_BITS + 1> count_{};
    std::array<uint16_t, 288> symbols_{};
    std::array<WORD, 1U << FAST_BITS> fast_{};
};

struct RANGE_CODE {
    uint16_t base;
    uint8_t extra; // bits that are added to it
};

constexpr RANGE_CODE LENGTHS[] = {
    {3, 0},  {4, 0},  {5, 0},  {6, 0},   {7, 0},   {8, 0},   {9, 0},   {10, 0},  {11, 1}, {13, 1},
    {15, 1}, {17, 1}, {19, 2}, {23, 2},  {27, 2},  {31, 2},  {35, 3},  {43, 3},  {51, 3}, {59, 3},
    {67, 4}, {83, 4}, {99, 4}, {115, 4}, {131, 5}, {163, 5}, {195, 5}, {227, 5}, {258, 0}};
constexpr RANGE_CODE DISTANCES[] = {{1, 0},     {2, 0},     {3, 0},      {4, 0},      {5, 1},
                                    {7, 1},     {9, 2},     {13, 2},     {17, 3},     {25, 3},
                                    {33, 4},    {49, 4},    {65, 5},     {97, 5},     {129, 6},
                                    {193, 6},   {257, 7},   {385, 7},    {513, 8},    {769, 8},
                                    {1025, 9},  {1537, 9},  {2049, 10},  {3073, 10},  {4097, 11},
                                    {6145, 11}, {8193, 12}, {12289, 12}, {16385, 13}, {24577, 13}};

class INFLATER {
  public:
    INFLATER(std::span<const uint8_t> in, std::span<uint8_t> out) : in_(in), out_(out) {}

    /// All blocks; true if they fill the output.
    bool run() {
        bool last = false;
        while (!last) {
            last = in_.take(1) != 0;
            const unsigned kind = in_.take(2);
            if (kind == 3 || !(kind == 0 ? stored() : codes(kind == 2) && block()) || !in_.ok())
                return false;
        }
        return at_ == out_.size();
    }
    std::span<const uint8_t> rest() { return in_.rest(); }

  private:
    bool stored() {
        const std::span<const uint8_t> rest = in_.rest();
        if (rest.size() < 4) return false;
        const size_t size = rest[0] | rest[1] << 8;
        const size_t check = rest[2] | rest[3] << 8;
        if ((size ^ check) != 0xFFFF || size > rest.size() - 4 || size > out_.size() - at_)
            return false;
        std::copy_n(rest.begin() + 4, size, out_.begin() + static_cast<ptrdiff_t>(at_));
        at_ += size;
        in_.advance(size + 4);
        return true;
    }

    /// The codes of a block: its own, or those that every reader knows.
    bool codes(bool own) {
        std::array<uint8_t, 288 + 32> lengths{};
        if (own) return own_codes(lengths);
        std::fill_n(lengths.begin(), 144, uint8_t{8});
        std::fill_n(lengths.begin() + 144, 112, uint8_t{9});
        std::fill_n(lengths.begin() + 256, 24, uint8_t{7});
        std::fill_n(lengths.begin() + 280, 8, uint8_t{8});
        std::fill_n(lengths.begin() + 288, 30, uint8_t{5});
        const std::span<const uint8_t> all = lengths;
        return literals_.set(all.first(288)) && distances_.set(all.subspan(288, 30));
    }

    bool own_codes(std::span<uint8_t> lengths) {
        constexpr uint8_t ORDER[] = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                     11, 4,  12, 3, 13, 2, 14, 1, 15};
        const unsigned literals = in_.take(5) + 257, distances = in_.take(5) + 1;
        const unsigned all = literals + distances, given = in_.take(4) + 4;
        if (literals > 286 || distances > 30) return false;
        for (unsigned i = 0; i < given; ++i) lengths[ORDER[i]] = static_cast<uint8_t>(in_.take(3));
        if (!distances_.set(lengths.first(19))) return false; // for now, the code of the lengths
        std::fill_n(lengths.begin(), 19, uint8_t{0});
        for (unsigned i = 0; i < all;) {
            const unsigned symbol = distances_.take(in_);
            unsigned repeat = 1;
            uint8_t value = static_cast<uint8_t>(symbol);
            if (symbol > 18 || (symbol == 16 && i == 0)) return false;
            if (symbol == 16) repeat = 3 + in_.take(2), value = lengths[i - 1];
            if (symbol >= 17) repeat = symbol == 17 ? 3 + in_.take(3) : 11 + in_.take(7), value = 0;
            if (repeat > all - i) return false;
            while (repeat-- != 0) lengths[i++] = value;
        }
        return literals_.set(lengths.first(literals)) &&
               distances_.set(lengths.subspan(literals, distances));
    }

    bool block() {
        while (in_.ok()) {
            const unsigned symbol = literals_.take(in_);
            if (symbol == 256) return true;
            if (symbol < 256) {
                if (at_ == out_.size()) return false;
                out_[at_++] = static_cast<uint8_t>(symbol);
            } else if (!copy(symbol - 257)) {
                return false;
            }
        }
        return false;
    }

    bool copy(unsigned length_symbol) {
        if (length_symbol >= std::size(LENGTHS)) return false;
        const RANGE_CODE& l = LENGTHS[length_symbol];
        const size_t length = l.base + in_.take(l.extra);
        const unsigned symbol = distances_.take(in_);
        if (symbol >= std::size(DISTANCES)) return false;
        const RANGE_CODE& d = DISTANCES[symbol];
        const size_t distance = d.base + in_.take(d.extra);
        if (distance > at_ || length > out_.size() - at_) return false;
        for (size_t end = at_ + length; at_ < end; ++at_) out_[at_] = out_[at_ - distance];
        return true;
    }

    BIT_READER in_;
    std::span<uint8_t> out_;
    size_t at_ = 0;
    PREFIX_CODE literals_, distances_;
};

uint32_t adler32(std::span<const uint8_t> bytes) {
    constexpr uint32_t PRIME = 65521;
    uint32_t a = 1, b = 0;
    while (!bytes.empty()) {
        const size_t n = std::min<size_t>(bytes.size(), 5552); // so many that b can't overflow
        for (uint8_t byte : bytes.first(n)) a += byte, b += a;
        a %= PRIME, b %= PRIME;
        bytes = bytes.subspan(n);
    }
    return b << 16 | a;
}

} // namespace

bool inflate_zlib(std::span<const uint8_t> packed, std::span<uint8_t> out) {
    if (packed.size() < 2 || (packed[0] & 0xF) != 8 || (packed[1] & 0x20) != 0 ||
        (packed[0] << 8 | packed[1]) % 31 != 0)
        return false;
    INFLATER inflater(packed.subspan(2), out);
    if (!inflater.run()) return false;
    const std::span<const uint8_t> check = inflater.rest();
    if (check.size() < 4) return false;
    const uint32_t want =
        uint32_t{check[0]} << 24 | uint32_t{check[1]} << 16 | uint32_t{check[2]} << 8 | check[3];
    return adler32(out) == want;
}
