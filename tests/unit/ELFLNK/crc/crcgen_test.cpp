// CRC algorithms: published check values, agreement with arithmetic bit by bit, the orders of
// bytes.
#include "ELFLNK/crc/crcgen.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

static DATA_MAP text_map(const char* text) {
    DATA_MAP map;
    map.set_copy({reinterpret_cast<const uint8_t*>(text), std::strlen(text)});
    return map;
}

static uint64_t crc_of(const char* algorithm, const DATA_MAP& map) {
    CRCGEN generator;
    generator.set_config(static_cast<unsigned>(CRCGEN::find_crc_config(algorithm)));
    return generator.gen_crc(map);
}

// The values that catalogues of CRC algorithms give for the nine digits "123456789".
TEST(crcgen, check_values_of_published_algorithms) {
    const struct {
        const char* algorithm;
        uint64_t check;
    } cases[] = {{"CRC32", 0xCBF43926},      {"CRC16_CCITT", 0x29B1}, {"CRC16_802_15_4", 0x31C3},
                 {"CRC16_ALT", 0xFEE8},      {"CRC8_PRIME", 0xF4},    {"ARC", 0xBB3D},
                 {"CRC32_PRIME", 0x89A1897F}};
    for (const auto& c : cases)
        EXPECT_EQ(crc_of(c.algorithm, text_map("123456789")), c.check) << c.algorithm;
    EXPECT_EQ(crc_of("CRC32", text_map("abc")), 0x352441C2u);
}

// One bit at a time, as textbooks have it: what every table must come to.
static uint64_t bit_by_bit(const CRC::algorithm_t& a, const std::vector<uint8_t>& data) {
    const uint64_t topbit = uint64_t{1} << (a.order - 1);
    uint64_t crc = a.crcinit;
    for (const uint8_t byte : data)
        for (int bit = 0; bit < 8; ++bit) {
            const unsigned in = (byte >> (a.refin ? bit : 7 - bit)) & 1;
            const bool top = (crc & topbit) != 0;
            crc = a.fast ? (crc << 1) ^ (top != (in != 0) ? a.polynomial : 0)
                         : ((crc << 1) | in) ^ (top ? a.polynomial : 0);
        }
    if (a.refout) crc = CRC::reflect(crc, a.order);
    return (crc ^ a.crcxor) & (topbit | (topbit - 1));
}

TEST(crcgen, every_width_and_reflection_agrees_with_bit_arithmetic) {
    const CRC::algorithm_t algorithms[] = {{"w8", 8, 0x07, 1, 0x5A, 0, 0, 0, 1},
                                           {"w8r", 8, 0x9B, 1, 0xFF, 1, 1, 0x55, 1},
                                           {"w16", 16, 0x8005, 1, 0xFFFF, 0, 0, 0, 1},
                                           {"w16r", 16, 0x8408, 1, 0, 1, 1, 0, 1},
                                           {"w16rn", 16, 0x1021, 1, 0x1D0F, 1, 0, 0, 1},
                                           {"w16slow", 16, 0x1021, 1, 0, 0, 0, 0, 0},
                                           {"w24", 24, 0x5D6DCB, 1, 0xABCDEF, 0, 0, 0, 1},
                                           {"w32slow", 32, 0x04C11DB7, 1, 0, 0, 0, 0, 0},
                                           {"w40", 40, 0x0004820009, 1, 0, 0, 1, 1, 1},
                                           {"w64", 64, 0x1B, 1, 0, 0, 0, 0, 1},
                                           {"w64r", 64, 0x1B, 1, ~0ull, 1, 1, ~0ull, 1}};
    std::vector<uint8_t> data;
    for (unsigned size = 0; size < 40; ++size) {
        for (const auto& a : algorithms) {
            CRC crc(a);
            // In two pieces, so that the loop of eight starts at any place.
            crc.read_data(std::span(data).first(size / 3));
            crc.read_data(std::span(data).subspan(size / 3));
            EXPECT_EQ(crc.finalize(), bit_by_bit(a, data)) << a.name << " over " << size;
        }
        data.push_back(static_cast<uint8_t>(size * 73 + 41));
    }
}

TEST(crcgen, word_pairs_enter_from_their_highest_byte_and_are_padded) {
    for (const auto endian : {DATA_MAP::LITTLE, DATA_MAP::BIG}) {
        DATA_MAP nine = text_map("\1\2\3\4\5\6\7\10\11");
        nine.set_endian(endian);
        const uint8_t little[] = {8, 7, 6, 5, 4, 3, 2, 1, 0, 0, 0, 0, 0, 0, 0, 9};
        const uint8_t big[] = {5, 6, 7, 8, 1, 2, 3, 4, 0, 0, 0, 0, 9, 0, 0, 0};
        CRC crc({"t", 64, 0x1B, 1, 0, 0, 0, 0, 1});
        crc.read_data(endian == DATA_MAP::LITTLE ? little : big);
        const uint64_t value = crc.finalize();
        EXPECT_EQ(crc_of("TRINITY_CRC64_ISO", nine), (value << 32) | (value >> 32));
    }
}

TEST(crcgen, reading_starts_at_the_position_and_goes_over_many_blocks) {
    DATA_MAP map = text_map("xx123456789");
    map.set_pos(2);
    EXPECT_EQ(crc_of("CRC32", map), 0xCBF43926u);
    DATA_MAP zeros;
    zeros.set_zeros(5000);
    zeros.put8(4999, 1);
    DATA_MAP tail;
    tail.set_zeros(8);
    tail.put8(7, 1);
    EXPECT_EQ(crc_of("TRINITY_CRC64_ISO", zeros), crc_of("TRINITY_CRC64_ISO", tail));
}

TEST(crcgen, names_are_exact_and_an_empty_buffer_has_the_initial_value) {
    EXPECT_EQ(CRCGEN::find_crc_config("CRC32"), 9);
    EXPECT_EQ(CRCGEN::find_crc_config("crc32"), -1);
    EXPECT_STREQ(CRCGEN::find_crc_name(12), "CRC24_FLEXRAY");
    EXPECT_EQ(data_map_crc(DATA_MAP(), CRCGEN()), 0xFFFFFFFFu);
}

TEST(crcgen, parameters_that_make_no_sense_give_zero) {
    const CRC::algorithm_t bad[] = {{"odd", 12, 1, 1, 0, 0, 0, 0, 1},
                                    {"wide", 72, 1, 1, 0, 0, 0, 0, 1},
                                    {"polynomial", 8, 0x107, 1, 0, 0, 0, 0, 1},
                                    {"init", 8, 7, 1, 0x100, 0, 0, 0, 1},
                                    {"xor", 8, 7, 1, 0, 0, 0, 0x100, 1}};
    for (const auto& algorithm : bad) {
        CRCGEN generator;
        generator.set_config({algorithm, default_data_manager});
        EXPECT_EQ(generator.gen_crc(text_map("123456789")), 0u) << algorithm.name;
    }
}
