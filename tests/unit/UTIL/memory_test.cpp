#include "UTIL/bit_map.h"
#include "UTIL/hash.h"
#include "UTIL/mzone.h"
#include "UTIL/narrow.h"
#include "UTIL/oalloc.h"
#include "UTIL/savestr.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

namespace {

struct POOLED : OALLOC<POOLED> {
    uint64_t words[5];
};
struct BIGGER : POOLED {
    uint64_t more[4];
};

TEST(Oalloc, a_deleted_object_is_given_out_next) {
    auto* a = new POOLED;
    auto* b = new POOLED;
    EXPECT_NE(a, b);
    delete a;
    EXPECT_EQ(new POOLED, a);
    EXPECT_EQ(POOLED::live_count(), 2);
    EXPECT_NE(std::string(POOLED::pool_name()).find("POOLED"), std::string::npos);
}

TEST(Oalloc, the_pool_starts_with_32_objects_and_about_doubles) {
    std::vector<POOLED*> objects;
    for (int i = 0; i < 32; i++) objects.push_back(new POOLED);
    EXPECT_EQ(POOLED::pool_size(), 32 * sizeof(POOLED));
    objects.push_back(new POOLED);
    EXPECT_EQ(POOLED::pool_size(), (32 + 33) * sizeof(POOLED));
    for (POOLED* object : objects) delete object;
    EXPECT_EQ(POOLED::live_count(), 0);
}

TEST(Oalloc, a_derived_class_of_another_size_is_no_pool_object) {
    delete new BIGGER;
    EXPECT_EQ(POOLED::live_count(), 0);
}

TEST(Mzone, memory_is_zeroed_aligned_and_apart) {
    MZONE zone(64);
    std::set<char*> seen;
    for (size_t size : {1, 7, 8, 9, 40, 3, 64, 200, 5}) {
        auto* p = static_cast<char*>(zone.alloc(size));
        EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % 8, 0u);
        for (size_t i = 0; i < size; i++) {
            EXPECT_EQ(p[i], 0);
            EXPECT_TRUE(seen.insert(p + i).second);
            p[i] = 'x';
        }
    }
    EXPECT_EQ(zone.allocated(), 337u);
}

TEST(Mzone, reset_deletes_objects_and_zeroes_again) {
    static int destroyed;
    destroyed = 0;
    struct WITH_DESTRUCTOR {
        ~WITH_DESTRUCTOR() { destroyed++; }
    };
    MZONE zone(32);
    zone.make<WITH_DESTRUCTOR>();
    std::memset(zone.alloc(100), 'x', 100);
    zone.make<WITH_DESTRUCTOR>();
    zone.reset();
    EXPECT_EQ(destroyed, 2);
    EXPECT_EQ(zone.allocated(), 0u);
    const char* again = static_cast<char*>(zone.alloc(32));
    EXPECT_EQ(std::string(again, 32), std::string(32, '\0'));
    EXPECT_GE(zone.high_water(), 100u);
}

TEST(Savestr, equal_texts_share_one_copy) {
    std::string text = "first";
    const char* kept = savestr(text);
    text[0] = 'F';
    EXPECT_STREQ(kept, "first");
    EXPECT_EQ(savestr("first"), kept);
    EXPECT_EQ(savestrf("%s%c", "firs", 't'), kept);
    EXPECT_EQ(savestr(static_cast<const char*>(nullptr)), nullptr);
    std::vector<const char*> many;
    for (int i = 0; i < 5000; i++) many.push_back(savestrf("name%d", i));
    for (int i = 0; i < 5000; i++) EXPECT_EQ(savestrf("name%d", i), many[static_cast<size_t>(i)]);
}

TEST(Hash, names_that_differ_in_one_character_differ) {
    std::unordered_set<uint64_t> seen;
    for (int i = 0; i < 20000; i++) seen.insert(hash64("_ZN4unit8functionEv" + std::to_string(i)));
    EXPECT_EQ(seen.size(), 20000u);
    EXPECT_NE(hash64("a"), hash64(std::string_view("a\0", 2)));
    EXPECT_NE(hash64(""), hash64(std::string_view("\0", 1)));
}

TEST(Narrow, a_value_that_does_not_fit_ends_the_process) {
    EXPECT_EQ(narrow<uint32_t>(uint64_t{0xFFFFFFFF}), 0xFFFFFFFFu);
    EXPECT_TRUE(fits<int8_t>(-128) && !fits<int8_t>(128) && !fits<uint32_t>(-1));
    EXPECT_DEATH(narrow<uint32_t>(uint64_t{1} << 32), "0x100000000 does not fit into 4 bytes");
}

TEST(Narrow, bounds_do_not_wrap) {
    EXPECT_TRUE(in_bounds(10, 0, 10));
    EXPECT_FALSE(in_bounds(10, 1, 10));
    EXPECT_FALSE(in_bounds(5, ~uint64_t{0}, 10));
    EXPECT_EQ(align_up(17, 8), 24u);
    EXPECT_EQ(align_up(17, 0), 17u);
}

TEST(BitMap, bits_beyond_the_end_read_as_clear) {
    BIT_MAP map;
    EXPECT_FALSE(map.test(1000));
    EXPECT_TRUE(map.set(130));
    EXPECT_FALSE(map.set(130));
    map.set(3);
    EXPECT_EQ(map.count(), 2u);
    EXPECT_EQ(map.find_next(0), 3u);
    EXPECT_EQ(map.find_next(4), 130u);
    EXPECT_EQ(map.find_next(131), BIT_MAP::NONE);
    map.clear(130);
    map.clear(99999);
    EXPECT_FALSE(map.test(130));
    BIT_MAP other(10);
    other.set(200);
    EXPECT_FALSE(map.intersects(other));
    EXPECT_TRUE(map.unite(other));
    EXPECT_FALSE(map.unite(other));
    EXPECT_TRUE(map.test(200) && map.test(3));
}

} // namespace
