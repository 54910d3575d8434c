// The streams of load images: bytes as the start-up code expects them, at all limits of the
// formats.
#include "ELFLNK/compress/compression_alg.h"

#include "UTIL/data_map.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>

using BYTES = std::vector<uint8_t>;

static BYTES packed(const COMPRESSION_ALG& algorithm, const BYTES& bytes) {
    DATA_MAP in{std::span(bytes)}, out;
    algorithm.compress(in, out);
    return {out.bytes().begin(), out.bytes().end()};
}

static BYTES text(const char* characters) {
    return {characters, characters + std::strlen(characters)};
}

static BYTES joined(const BYTES& a, const BYTES& b) {
    BYTES all = a;
    all.insert(all.end(), b.begin(), b.end());
    return all;
}

// The longest copy and, of those, the one farthest back, found by trying every place.
static std::pair<size_t, size_t> exhaustive_match(const BYTES& data, size_t position) {
    std::pair<size_t, size_t> best{0, 0};
    for (size_t from = position - std::min<size_t>(position, 4095); from < position; ++from) {
        size_t length = 0;
        while (length < 32785 && position + length < data.size() &&
               data[from + length] == data[position + length])
            ++length;
        if (length > best.first) best = {length, position - from};
        if (length == 32785) break;
    }
    return best;
}

// The stream, written group by group from its description.
static BYTES plain_lzss(const BYTES& data) {
    BYTES stream, items;
    unsigned flags = 0, count = 0;
    const auto close_item = [&](bool literal) {
        flags |= literal ? 1u << count : 0;
        if (++count < 8) return;
        stream.push_back(static_cast<uint8_t>(flags));
        stream.insert(stream.end(), items.begin(), items.end());
        flags = count = 0;
        items.clear();
    };
    for (size_t position = 0; position < data.size();) {
        const auto [length, offset] = exhaustive_match(data, position);
        if (length < 3) {
            items.push_back(data[position++]);
            close_item(true);
            continue;
        }
        items.push_back(static_cast<uint8_t>((offset - 1) >> 4));
        items.push_back(
            static_cast<uint8_t>(((offset - 1) & 15) << 4 | std::min<size_t>(length - 3, 15)));
        if (length >= 18 && length < 146) items.push_back(static_cast<uint8_t>(length - 18));
        if (length >= 146) {
            items.push_back(static_cast<uint8_t>(((length - 18) & 127) | 128));
            items.push_back(static_cast<uint8_t>((length - 18) >> 7));
        }
        position += length;
        close_item(false);
    }
    items.push_back(0xFF);
    items.push_back(0xF0);
    count = 7; // whatever the group holds, it ends here
    close_item(false);
    return stream;
}

TEST(compression, streams_of_a_few_bytes) {
    const struct {
        BYTES data, rle, lzss;
    } cases[] = {
        {{}, {}, {}},
        {text("abc"), {0, 'a', 'b', 'c', 0, 0, 0, 0}, {7, 'a', 'b', 'c', 0xFF, 0xF0}},
        {{'x'}, {0, 'x', 0, 0, 0, 0}, {1, 'x', 0xFF, 0xF0}},
        {text("aaa"), {0, 'a', 'a', 'a', 0, 0, 0, 0}, {7, 'a', 'a', 'a', 0xFF, 0xF0}},
        {text("aaaaa"), {0, 0, 5, 'a', 0, 0, 0, 0}, {1, 'a', 0, 1, 0xFF, 0xF0}},
        // Nine items: the end stands in a group of its own.
        {text("abcdefgh"),
         {0, 'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h', 0, 0, 0, 0},
         {0xFF, 'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h', 0, 0xFF, 0xF0}},
        {text("abcabcabcX"),
         {0, 'a', 'b', 'c', 'a', 'b', 'c', 'a', 'b', 'c', 'X', 0, 0, 0, 0},
         {0x17, 'a', 'b', 'c', 0, 0x23, 'X', 0xFF, 0xF0}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(packed(COMPRESSION_RLE(), c.data), c.rle);
        EXPECT_EQ(packed(COMPRESSION_LZSS(), c.data), c.lzss);
    }
}

TEST(compression, run_lengths_take_the_shortest_form) {
    const struct {
        size_t length;
        BYTES form; // between the delimiter that opens the stream and the end
    } cases[] = {
        {3, {7, 7, 7}},
        {4, {0, 4, 7}},
        {255, {0, 255, 7}},
        {256, {0, 0, 1, 0, 7}},
        {65535, {0, 0, 255, 255, 7}},
        {65536, {0, 0, 0, 1, 0, 0, 7}},
        {70000, {0, 0, 0, 1, 0x11, 0x70, 7}},
        {0xFFFFFF, {0, 0, 0, 255, 255, 255, 7}},
        {0x1000000, {0, 0, 0, 255, 255, 255, 7, 7}},
        {0x1000003, {0, 0, 0, 255, 255, 255, 7, 0, 4, 7}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(packed(COMPRESSION_RLE(), BYTES(c.length, 7)),
                  joined(joined({0}, c.form), {0, 0, 0, 0}))
            << c.length;
}

TEST(compression, the_delimiter_is_the_rarest_byte_and_is_written_as_a_count) {
    BYTES data;
    for (int round = 0; round < 2; ++round)
        for (int byte = 0; byte < 256; ++byte)
            if (byte != 9 || round == 0) data.push_back(static_cast<uint8_t>(byte));
    const BYTES stream = packed(COMPRESSION_RLE(), data);
    EXPECT_EQ(stream[0], 9);
    EXPECT_EQ(BYTES(stream.begin() + 9, stream.begin() + 14), (BYTES{8, 9, 1, 10, 11}));
    EXPECT_EQ(stream.size(), data.size() + 1 + 1 + 4);
}

// Shapes of firmware data: text, tables of words, runs, noise.
static BYTES mixed(std::mt19937& random, size_t size) {
    BYTES data;
    const auto pick = [&](size_t n) { return random() % n; };
    while (data.size() < size) {
        const size_t stretch = 1 + pick(pick(4) ? 60 : 6000);
        const auto kind = pick(4);
        const auto byte = static_cast<uint8_t>(random());
        for (size_t i = 0; i < stretch && data.size() < size; ++i)
            data.push_back(kind == 0            ? byte
                           : kind == 1          ? static_cast<uint8_t>(random())
                           : kind == 2          ? static_cast<uint8_t>("the quick "[pick(10)])
                           : data.size() > 4200 ? data[data.size() - 1 - pick(2) - 4090]
                                                : static_cast<uint8_t>(i * 3));
    }
    return data;
}

TEST(compression, copies_are_those_that_trying_every_place_finds) {
    std::mt19937 random(11);
    for (const size_t size : {4u, 17u, 100u, 5000u, 20000u, 70000u}) {
        const BYTES data = mixed(random, size);
        EXPECT_EQ(packed(COMPRESSION_LZSS(), data), plain_lzss(data)) << size;
    }
}

TEST(compression, copies_at_the_limits_of_length_and_distance) {
    std::mt19937 random(5);
    const auto noise = [&](size_t size) {
        BYTES bytes(size);
        for (auto& byte : bytes) byte = static_cast<uint8_t>(random());
        return bytes;
    };
    for (const size_t length : {3u, 17u, 18u, 145u, 146u, 32784u, 32785u, 32786u, 70000u}) {
        const BYTES data = joined(BYTES(length + 1, 'r'), {'s'});
        EXPECT_EQ(packed(COMPRESSION_LZSS(), data), plain_lzss(data)) << "run of " << length;
    }
    for (const size_t distance : {4094u, 4095u, 4096u}) {
        const BYTES block = noise(100);
        const BYTES data = joined(joined(block, noise(distance - 100)), block);
        const BYTES stream = packed(COMPRESSION_LZSS(), data);
        EXPECT_EQ(stream, plain_lzss(data)) << distance;
        EXPECT_EQ(stream.size() < data.size() + data.size() / 8, distance < 4096) << distance;
    }
}

TEST(compression, what_is_unpacked_is_what_was_packed) {
    std::mt19937 random(3);
    for (const auto& algorithm : COMPRESSION_FACTORY::compression_list(8))
        for (int round = 0; round < 60; ++round) {
            const BYTES data = mixed(random, random() % (round % 10 ? 700 : 40000));
            DATA_MAP map{std::span(data)};
            EXPECT_TRUE(algorithm->test_algorithm(map)) << algorithm->name() << data.size();
        }
    EXPECT_TRUE(COMPRESSION_FACTORY::compression_list(16).empty());
}

TEST(compression, a_stream_cut_anywhere_is_refused) {
    std::mt19937 random(8);
    const BYTES data = mixed(random, 300);
    for (const auto& algorithm : COMPRESSION_FACTORY::compression_list(8)) {
        const BYTES stream = packed(*algorithm, data);
        for (size_t size = 1; size < stream.size(); ++size) {
            DATA_MAP in{std::span(stream).first(size)}, out;
            EXPECT_FALSE(algorithm->decompress(in, out)) << algorithm->name() << size;
        }
    }
}
