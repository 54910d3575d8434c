// Copies of earlier bytes; compression_alg.h draws the stream.
//
// Which copy is written is part of the format: of all places up to 4095 bytes back, the one that
// gives the longest copy, and of those the one farthest back. To find it without comparing every
// place, positions in the window wait in queues by a hash of their next three bytes: a copy needs
// three. A queue is walked from its oldest position, so that only a longer copy replaces the best;
// the byte that would make it longer is looked at first.
#include "ELFLNK/compress/compression_alg.h"
#include "UTIL/data_map.h"

#include <algorithm>
#include <array>
#include <cstring>

static const size_t window = 4096; // places behind the position, the last of them the end mark
static const size_t shortest_copy = 3;
static const size_t short_limit = 17;     // longest length in the four bits of a pair
static const size_t byte_limit = 145;     // and with one byte more
static const size_t longest_copy = 32785; // and with two

namespace {

// A copy: its length, and how far back it comes from.
struct MATCH {
    size_t length = 0;
    size_t offset = 0;
};

// The positions of the window, queued by their next three bytes.
class MATCH_FINDER {
  public:
    explicit MATCH_FINDER(std::span<const uint8_t> data) : data_(data) { first_.fill(none); }

    MATCH find(size_t position) const;
    // Positions below `end` become places to copy from, as far as the window reaches.
    void advance(size_t end);

  private:
    static constexpr size_t none = ~size_t{0};
    static constexpr unsigned hash_bits = 13;

    size_t hash(size_t position) const {
        const uint8_t* p = &data_[position];
        return ((p[0] | p[1] << 8 | p[2] << 16) * 0x9E3779B1u) >> (32 - hash_bits);
    }
    size_t length(size_t from, size_t position, size_t limit) const;

    std::span<const uint8_t> data_;
    size_t end_ = 0;                                   // positions below are queued
    std::array<size_t, size_t{1} << hash_bits> first_; // oldest position of a queue
    std::array<size_t, size_t{1} << hash_bits> last_;
    std::array<size_t, window> next_; // by position modulo the window
};

// How many bytes at `from` and `position` are equal, up to `limit`.
size_t MATCH_FINDER::length(size_t from, size_t position, size_t limit) const {
    size_t equal = 0;
    for (uint64_t a, b; equal + 8 <= limit; equal += 8) {
        std::memcpy(&a, &data_[from + equal], 8);
        std::memcpy(&b, &data_[position + equal], 8);
        if (a != b) break;
    }
    while (equal < limit && data_[from + equal] == data_[position + equal]) ++equal;
    return equal;
}

MATCH MATCH_FINDER::find(size_t position) const {
    MATCH best;
    const size_t limit = std::min(longest_copy, data_.size() - position);
    if (limit < shortest_copy) return best;
    for (size_t from = first_[hash(position)]; from != none && best.length < limit;
         from = next_[from % window]) {
        if (data_[from + best.length] != data_[position + best.length]) continue;
        const size_t found = length(from, position, limit);
        if (found > best.length) best = {found, position - from};
    }
    return best;
}

void MATCH_FINDER::advance(size_t end) {
    for (const size_t last = std::min(end, data_.size() - std::min(data_.size(), size_t{2}));
         end_ < last; ++end_) {
        // The position that leaves the window is the oldest of its queue.
        if (end_ + 1 >= window) {
            const size_t old = end_ + 1 - window;
            first_[hash(old)] = next_[old % window];
        }
        const size_t queue = hash(end_);
        (first_[queue] == none ? first_[queue] : next_[last_[queue] % window]) = end_;
        last_[queue] = end_;
        next_[end_ % window] = none;
    }
}

// Items gather in groups of eight behind their flag byte.
class GROUP_WRITER {
  public:
    explicit GROUP_WRITER(std::vector<uint8_t>& stream) : stream_(stream) {}

    void literal(uint8_t byte) {
        begin_item(true);
        stream_.push_back(byte);
    }
    void pair(MATCH match);
    void end() {
        begin_item(false);
        stream_.insert(stream_.end(), {0xFF, 0xF0});
    }

  private:
    void begin_item(bool literal) {
        if (items_ % 8 == 0) {
            flags_ = stream_.size();
            stream_.push_back(0);
        }
        if (literal) stream_[flags_] |= static_cast<uint8_t>(1 << items_ % 8);
        ++items_;
    }

    std::vector<uint8_t>& stream_;
    size_t flags_ = 0; // place of the group's flag byte
    size_t items_ = 0;
};

void GROUP_WRITER::pair(MATCH match) {
    begin_item(false);
    const size_t back = match.offset - 1;
    const size_t nibble = match.length <= short_limit ? match.length - shortest_copy : 15;
    stream_.push_back(static_cast<uint8_t>(back >> 4));
    stream_.push_back(static_cast<uint8_t>((back & 15) << 4 | nibble));
    if (match.length <= short_limit) return;
    const size_t rest = match.length - short_limit - 1;
    if (match.length <= byte_limit) return stream_.push_back(static_cast<uint8_t>(rest));
    stream_.push_back(static_cast<uint8_t>((rest & 127) | 128));
    stream_.push_back(static_cast<uint8_t>(rest >> 7));
}

} // namespace

void COMPRESSION_LZSS::compress(DATA_MAP& in, DATA_MAP& out) const {
    const auto data = in.read_bytes(in.left());
    if (data.empty()) return;
    std::vector<uint8_t> stream;
    const auto finder = std::make_unique<MATCH_FINDER>(data);
    GROUP_WRITER writer(stream);
    for (size_t position = 0; position < data.size();) {
        finder->advance(position);
        const MATCH match = finder->find(position);
        if (match.length >= shortest_copy) {
            writer.pair(match);
            position += match.length;
        } else {
            writer.literal(data[position++]);
        }
    }
    writer.end();
    out.write(stream);
}

// The length of a copy, whose first four bits have been read.
static size_t read_length(DATA_MAP& in, size_t nibble) {
    if (nibble < 15) return nibble + shortest_copy;
    const size_t low = in.read8();
    return (low < 128 ? low : (size_t{in.read8()} << 7 | (low & 127))) + short_limit + 1;
}

bool COMPRESSION_LZSS::decompress(DATA_MAP& in, DATA_MAP& out) const {
    std::vector<uint8_t> bytes;
    bool complete = in.at_end(), good = true;
    while (!complete && good && !in.at_end()) {
        unsigned flags = in.read8();
        for (int item = 0; item < 8 && !complete && good; ++item, flags >>= 1) {
            const unsigned first = in.read8();
            if (flags & 1) {
                bytes.push_back(static_cast<uint8_t>(first));
            } else {
                const unsigned second = in.read8();
                const size_t offset = (first << 4) + (second >> 4) + 1;
                complete = offset == window;
                const size_t length = complete ? 0 : read_length(in, second & 15);
                good = complete || offset <= bytes.size();
                for (size_t i = 0; good && i < length; ++i)
                    bytes.push_back(bytes[bytes.size() - offset]);
            }
            good = good && !in.failed();
        }
    }
    out.write(bytes);
    return complete && good;
}
