#include "UTIL/data_map.h"
#include "UTIL/file_handle_manager.h"
#include "UTIL/filename.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <unistd.h>

namespace {

constexpr uint8_t EIGHT[] = {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88};

TEST(DataMap, integers_follow_the_byte_order) {
    DATA_MAP little{EIGHT, DATA_MAP::LITTLE};
    DATA_MAP big{EIGHT, DATA_MAP::BIG};
    EXPECT_EQ(little.read16(), 0x2211);
    EXPECT_EQ(little.read32(), 0x66554433u);
    EXPECT_EQ(little.get64(0), 0x8877665544332211u);
    EXPECT_EQ(big.read8(), 0x11);
    EXPECT_EQ(big.get16(0), 0x1122);
    EXPECT_EQ(big.get32(4), 0x55667788u);
    EXPECT_EQ(big.get_uint(1, 3), 0x223344u);
}

TEST(DataMap, a_read_that_leaves_the_bytes_gives_0_and_fails) {
    const struct {
        uint64_t offset;
        unsigned width;
        bool inside;
    } cases[] = {{0, 8, true},
                 {7, 1, true},
                 {8, 1, false},
                 {7, 2, false},
                 {5, 4, false},
                 {4, 4, true},
                 {~uint64_t{0}, 4, false},
                 {~uint64_t{0} - 2, 4, false}};
    for (const auto& c : cases) {
        DATA_MAP map{EIGHT};
        const uint64_t value = map.get_uint(c.offset, c.width);
        EXPECT_EQ(map.failed(), !c.inside) << c.offset << "/" << c.width;
        EXPECT_EQ(value != 0, c.inside) << c.offset << "/" << c.width;
    }
}

TEST(DataMap, a_failure_stays_until_it_is_cleared) {
    DATA_MAP map{EIGHT};
    map.set_pos(6);
    map.read32();
    map.set_pos(0);
    EXPECT_EQ(map.read16(), 0x2211);
    EXPECT_TRUE(map.failed());
    map.clear_failure();
    map.read16();
    EXPECT_FALSE(map.failed());
}

TEST(DataMap, spans_and_strings_stay_inside) {
    const uint8_t bytes[] = {'a', 'b', 0, 'c', 'd'};
    DATA_MAP map{bytes};
    EXPECT_STREQ(map.c_string(0), "ab");
    EXPECT_EQ(map.c_string(3), nullptr) << "no NUL before the end";
    EXPECT_EQ(map.c_string(5), nullptr);
    EXPECT_EQ(map.bytes(2, 3).size(), 3u);
    EXPECT_TRUE(map.bytes(3, 3).empty());
    EXPECT_TRUE(map.bytes(1, ~uint64_t{0}).empty());
    EXPECT_EQ(map.read_string(), "ab");
    EXPECT_EQ(map.pos(), 3u);
    EXPECT_EQ(map.read_string(), "");
    EXPECT_TRUE(map.failed());
}

TEST(DataMap, writing_behind_the_end_grows_with_zeros) {
    DATA_MAP map{DATA_MAP::BIG};
    map.put16(6, 0xABCD);
    ASSERT_EQ(map.size(), 8u);
    EXPECT_EQ(map.get32(0), 0u);
    EXPECT_EQ(map.get8(6), 0xAB);
    map.set_pos(2);
    map.write32(0x01020304);
    EXPECT_EQ(map.get64(0), 0x000001020304ABCDu);
    EXPECT_EQ(map.pos(), 6u);
}

TEST(DataMap, the_first_write_turns_a_view_into_a_copy) {
    DATA_MAP map{EIGHT};
    EXPECT_EQ(map.data(), EIGHT);
    DATA_MAP other = map;
    map.put8(0, 0xFF);
    EXPECT_NE(map.data(), EIGHT);
    EXPECT_EQ(EIGHT[0], 0x11);
    EXPECT_EQ(other.get8(0), 0x11);
    DATA_MAP copy = map;
    map.put8(0, 0xEE);
    EXPECT_EQ(copy.get8(0), 0xFF) << "copies of a buffer are apart";
}

TEST(DataMap, leb128_round_trips) {
    const int64_t values[] = {0,   1,   63,  64,      127,       128,      -1,
                              -64, -65, 300, -123456, INT64_MAX, INT64_MIN};
    DATA_MAP map;
    for (int64_t v : values) {
        map.write_sleb128(v);
        map.write_uleb128(static_cast<uint64_t>(v));
    }
    map.write_uleb128_padded(5, 4);
    const size_t end = map.pos();
    map.set_pos(0);
    for (int64_t v : values) {
        EXPECT_EQ(map.read_sleb128(), v);
        EXPECT_EQ(map.read_uleb128(), static_cast<uint64_t>(v));
    }
    EXPECT_EQ(map.get8(end - 4), 0x85);
    EXPECT_EQ(map.read_uleb128(), 5u);
    EXPECT_EQ(map.pos(), end);
    EXPECT_FALSE(map.failed());
}

TEST(DataMap, an_endless_leb128_ends_with_the_bytes) {
    const uint8_t endless[] = {0x80, 0x80, 0x80};
    DATA_MAP map{endless};
    EXPECT_EQ(map.read_uleb128(), 0u);
    EXPECT_TRUE(map.failed());
}

TEST(DataMap, removing_and_inserting_move_what_follows) {
    DATA_MAP map{EIGHT, DATA_MAP::BIG};
    map.remove_data(2, 4);
    EXPECT_EQ(map.get32(0), 0x11227788u);
    map.insert_data(2, 1);
    EXPECT_EQ(map.get32(0), 0x11220077u);
    map.remove_data(3, 100);
    EXPECT_EQ(map.size(), 3u);
    map.remove_data(9, 1);
    EXPECT_EQ(map.size(), 3u);
}

TEST(DataMap, a_file_range_is_cut_at_the_files_end) {
    const std::string name = fn_tmpnam();
    FILE* out = std::fopen(name.c_str(), "wb");
    std::fwrite(EIGHT, 1, sizeof EIGHT, out);
    std::fclose(out);
    FHM_FILE* file = fhm_open_input(name.c_str());
    ASSERT_NE(file, nullptr);
    DATA_MAP map;
    map.set_file(file, 6, 100);
    EXPECT_EQ(map.size(), 2u);
    EXPECT_EQ(map.read16(), 0x8877);
    map.set_file(file, 9, 1);
    EXPECT_TRUE(map.empty());
    map.set_file(file, 0, 4);
    map.write8(1);
    EXPECT_TRUE(map.in_memory());
    EXPECT_EQ(file->contents()[0], 0x11) << "the file is not written";
    fhm_close(file);
    unlink(name.c_str());
}

} // namespace
