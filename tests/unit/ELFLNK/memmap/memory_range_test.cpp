// Ranges: free space, trial copies, attribute words; the map: checks, searches, the table.
#include "ELFLNK/memmap/memory_range.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "DIAG/diagnostic.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/memmap/memory_map_table.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/object/space.h"
#include "UTIL/savestr.h"

namespace {

LOCATOR* item(uint64_t start, uint64_t end) {
    auto* object = new SPACE("x", end - start);
    auto* locator = new LOCATOR(LOCATOR_KIND::BOTH, object);
    object->add_locator(locator);
    locator->set_extent(start, end);
    return locator;
}

uint64_t sum_of_gaps(const MEMORY_RANGE& range) {
    uint64_t sum = 0;
    uint64_t cursor = range.origin();
    for (const LOCATOR* at : range.contents()) {
        if (at->address() > cursor) sum += at->address() - cursor;
        cursor = std::max(cursor, at->end_address());
    }
    return range.end() > cursor ? sum + range.end() - cursor : sum;
}

template <class WHAT>
std::string reported(WHAT what) {
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    what();
    fflush(nullptr);
    std::string text = testing::internal::GetCapturedStdout();
    text += testing::internal::GetCapturedStderr();
    for (char& c : text)
        if (c == '\n') c = ' ';
    return text;
}

bool says(const std::string& text, const std::string& message) {
    std::string squeezed;
    for (char c : text)
        if (c != ' ' || squeezed.empty() || squeezed.back() != ' ') squeezed += c;
    return squeezed.find(message) != std::string::npos;
}

} // namespace

TEST(memory_range, unused_is_the_sum_of_the_gaps) {
    MEMORY_RANGE range("R", 0x100, 0x100);
    EXPECT_EQ(range.unused(), 0x100u);
    LOCATOR* a = item(0x120, 0x130);
    range.add_item(a);
    EXPECT_EQ(range.unused(), 0xF0u);
    range.add_item(item(0x1F0, 0x200));
    EXPECT_EQ(range.unused(), 0xE0u);
    range.remove_item(a);
    EXPECT_EQ(range.unused(), 0xF0u);
}

TEST(memory_range, overlapped_space_counts_once) {
    MEMORY_RANGE range("R", 0, 0x100);
    range.add_item(item(0x10, 0x20));
    range.add_item(item(0x10, 0x30));
    range.add_item(item(0x18, 0x1C));
    EXPECT_EQ(range.unused(), 0xE0u);
}

TEST(memory_range, free_space_follows_any_order_of_changes) {
    std::mt19937 random(7);
    for (int round = 0; round < 30; ++round) {
        const bool overlaps = round % 2 == 1;
        MEMORY_RANGE range("R", 0x40, 0x400);
        std::vector<LOCATOR*> placed;
        for (int step = 0; step < 200; ++step) {
            if (placed.empty() || random() % 3 != 0) {
                uint64_t size = random() % 9;
                HOLE hole{0x40 + random() % 0x3F0, 0};
                if (!overlaps && !range.first_hole(hole.start, range.end(), size, 1, &hole))
                    continue;
                placed.push_back(item(hole.start, hole.start + size));
                range.add_item(placed.back());
            } else {
                std::size_t at = random() % placed.size();
                range.remove_item(placed[at]);
                placed.erase(placed.begin() + static_cast<long>(at));
            }
            ASSERT_EQ(range.unused(), sum_of_gaps(range)) << "round " << round << " step " << step;
        }
    }
}

TEST(memory_range, an_empty_item_inside_another_one_cuts_the_hole_that_the_other_leaves) {
    MEMORY_RANGE range("R", 0, 0x100);
    LOCATOR* big = item(0x10, 0x30);
    range.add_item(big);
    EXPECT_EQ(range.unused(), 0xE0u);
    range.add_item(item(0x20, 0x20));
    range.remove_item(big);
    HOLE hole;
    ASSERT_TRUE(range.first_hole(0, 0x100, 0x30, 1, &hole));
    EXPECT_EQ(hole.start, 0x20u);
}

TEST(memory_range, holes_lie_within_the_bounds_asked_for) {
    MEMORY_RANGE range("R", 0, 0x1000);
    range.add_item(item(0x100, 0x200));
    HOLE hole;
    ASSERT_TRUE(range.first_hole(0x180, 0x1000, 0x10, 1, &hole));
    EXPECT_EQ(hole, (HOLE{0x200, 0x1000}));
    ASSERT_TRUE(range.last_hole(0x20, 0x150, 0x10, &hole));
    EXPECT_EQ(hole, (HOLE{0x20, 0x100}));
    EXPECT_FALSE(range.last_hole(0xF8, 0x150, 0x10, &hole));
}

TEST(memory_range, a_reservation_takes_length_and_gives_it_back) {
    MEMORY_RANGE range("R", 0, 0x10);
    EXPECT_FALSE(range.reserve(0x11));
    EXPECT_TRUE(range.reserve(0x10));
    EXPECT_EQ(range.length(), 0u);
    range.unreserve();
    EXPECT_EQ(range.length(), 0x10u);
    EXPECT_EQ(range.reserved(), 0u);
}

TEST(memory_range, a_trial_copy_is_empty_and_names_its_bounds) {
    MEMORY_RANGE range("FLASH", 0x100, 0x100, MEMORY_RANGE::ATTR_R, 1);
    range.add_item(item(0x120, 0x130));
    MEMORY_RANGE trial(&range);
    MEMORY_RANGE deeper(&trial);
    deeper.set_subrange_endpoints(0x140, 0x180);
    EXPECT_TRUE(trial.contents().empty());
    EXPECT_EQ(trial.page(), 1);
    EXPECT_STREQ(deeper.debug_name(), "FLASH[0x140..0x180]");
    EXPECT_STREQ(range.debug_name(), "FLASH");
    EXPECT_EQ(deeper.root_range(), &range);
}

TEST(memory_range, leaves_are_output_sections_and_what_is_no_group) {
    auto* group = new COLLECTION("g", COLLECTION_GROUP);
    auto* whole = new LOCATOR(LOCATOR_KIND::BOTH, group);
    group->add_locator(whole);
    whole->set_extent(0x10, 0x30);
    LOCATOR* first = item(0x10, 0x20);
    LOCATOR* second = item(0x20, 0x30);
    whole->edit_sub_items().push_back(first);
    whole->edit_sub_items().push_back(second);
    MEMORY_RANGE range("R", 0, 0x100);
    range.add_item(whole);
    EXPECT_EQ(range.contents().size(), 1u);
    EXPECT_EQ(range.leaf_contents().size(), 2u);
    EXPECT_EQ(range.leaf_locator_for_address(0x24), second);
    EXPECT_EQ(range.locator_for_address(0x24), whole);
    EXPECT_EQ(range.locator_for_address(0x30), nullptr);
    range.remove_item(whole);
    EXPECT_TRUE(range.contents().empty());
    EXPECT_TRUE(range.leaf_contents().empty());
}

TEST(memory_range, attribute_words_are_capitals_each_once) {
    struct {
        const char* word;
        bool good;
        uint32_t bits;
    } cases[] = {{"RWXI", true, 0xF}, {"X", true, 0x8}, {"RI", true, 0x5}, {"RR", false, 0},
                 {"rw", false, 0},    {"", false, 0},   {"RWQ", false, 0}, {nullptr, false, 0}};
    for (const auto& c : cases) {
        uint32_t bits = 0;
        EXPECT_EQ(MEMORY_RANGE::encode_attr(c.word, &bits), c.good) << (c.word ? c.word : "null");
        EXPECT_EQ(bits, c.bits);
    }
    EXPECT_STREQ(MEMORY_RANGE::attr_name(0xF), "RWIX");
    EXPECT_STREQ(MEMORY_RANGE::attr_name(0x9), "RX");
    EXPECT_STREQ(MEMORY_RANGE::attr_name(0), "NONE");
}

TEST(memory_range, a_property_given_twice_is_reported_and_the_last_one_stands) {
    MEMORY_RANGE range("R", nullptr);
    range.add_origin(0x10, nullptr);
    std::string text = reported([&] { range.add_origin(0x20, nullptr); });
    EXPECT_TRUE(says(text, "origin already specified for memory range R")) << text;
    EXPECT_EQ(range.origin(), 0x20u);
}

TEST(memory_map, hidden_ranges_are_last_and_the_others_go_by_page_then_origin) {
    MEMORY_MAP map;
    map.add(new MEMORY_RANGE("V", 0, 0x10, MEMORY_RANGE::ATTR_HIDDEN));
    map.add(new MEMORY_RANGE("P1", 0, 0x10, MEMORY_RANGE::ATTR_ALL, 1));
    map.add(new MEMORY_RANGE("B", 0x20, 0x10));
    map.add(new MEMORY_RANGE("A", 0x10, 0x10));
    std::string order;
    for (const MEMORY_RANGE* range : map) order += std::string(range->name()) + " ";
    EXPECT_EQ(order, "A B P1 V ");
}

TEST(memory_map, faults_of_a_new_range_are_reported_and_it_enters_all_the_same) {
    struct {
        const char* name;
        uint64_t origin, length;
        int page;
        const char* message; // null: none
    } cases[] = {
        {"RAM", 0x300, 0x10, 0, "RAM memory range has already been specified"},
        {"RAM", 0x300, 0x10, 1, nullptr},
        {"T", 0x1FF, 0x10, 0, "T memory range overlaps existing memory range RAM"},
        {"T", 0x0, 0x101, 0, "T memory range overlaps existing memory range RAM"},
        {"T", 0x200, 0x10, 0, nullptr},
        {"T", 0x0, 0x100, 0, nullptr},
        {"T", 0x100, 0x100, 1, nullptr},
        {"T", 0x400, 0, 0, "length not specified for memory range T"},
    };
    for (const auto& c : cases) {
        MEMORY_MAP map;
        map.add(new MEMORY_RANGE("RAM", 0x100, 0x100));
        std::string text = reported([&] {
            map.add(new MEMORY_RANGE(c.name, c.origin, c.length, MEMORY_RANGE::ATTR_ALL, c.page));
        });
        if (c.message != nullptr)
            EXPECT_TRUE(says(text, c.message)) << text;
        else
            EXPECT_EQ(text, "") << c.origin;
        EXPECT_EQ(map.size(), 2u);
    }
}

TEST(memory_map, a_range_without_origin_is_reported) {
    MEMORY_MAP map;
    auto* range = new MEMORY_RANGE("R", nullptr);
    range->add_length(0x10, nullptr);
    std::string text = reported([&] { map.add(range); });
    EXPECT_TRUE(says(text, "origin not specified for memory range R")) << text;
}

TEST(memory_map, searches_take_the_first_range_in_map_order) {
    MEMORY_MAP map;
    auto* on_page_1 = new MEMORY_RANGE("R", 0, 0x100, MEMORY_RANGE::ATTR_ALL, 1);
    auto* on_page_0 = new MEMORY_RANGE("R", 0x100, 0x100);
    map.add(on_page_1);
    map.add(on_page_0);
    EXPECT_EQ(map.lookup_by_name("R"), on_page_0);
    EXPECT_EQ(map.lookup_by_name("R", 1), on_page_1);
    EXPECT_EQ(map.lookup_by_name("Q"), nullptr);
    EXPECT_TRUE(map.is_name_ambiguous("R"));
    EXPECT_EQ(map.lookup_by_addr(0x1FF, 0), on_page_0);
    EXPECT_EQ(map.lookup_by_addr(0x200, 0), nullptr);
    EXPECT_TRUE(map.fits_in_a_range(0x180, 0x80, 0));
    EXPECT_FALSE(map.fits_in_a_range(0x180, 0x81, 0));
    EXPECT_EQ(map.intersects(0xF0, 0x11, 0), on_page_0);
    EXPECT_EQ(map.intersects(0xF0, 0x10, 0), nullptr);
    EXPECT_EQ(map.intersects(0x200, 0x10, 0), nullptr);
}

namespace {

// The rules of a map as plain walks over all ranges.
struct PLAIN_MAP {
    std::vector<MEMORY_RANGE*> ranges;

    std::string faults(const MEMORY_RANGE* range) const {
        std::string text;
        for (const MEMORY_RANGE* other : ranges)
            if (other->page() == range->page() && std::string(other->name()) == range->name())
                text += std::string("name ") + range->name() + '\n';
        for (const MEMORY_RANGE* other : ranges)
            if (other->page() == range->page() &&
                (other->holds(range->origin()) || range->holds(other->origin())))
                text += std::string("overlap ") + range->name() + ' ' + other->name() + '\n';
        return text;
    }
    void add(MEMORY_RANGE* range) {
        ranges.push_back(range);
        std::stable_sort(ranges.begin(), ranges.end(), MEMORY_RANGE::less_order);
    }
    template <class TEST>
    MEMORY_RANGE* first(const TEST& test) const {
        auto at = std::find_if(ranges.begin(), ranges.end(), test);
        return at != ranges.end() ? *at : nullptr;
    }
};

/// What a map said, as PLAIN_MAP says it.
std::string plain_faults(const std::string& text) {
    static const std::string duplicate = " memory range has already been specified";
    static const std::string overlap = " memory range overlaps existing memory range ";
    std::string result;
    std::string squeezed;
    for (char c : text)
        if (c != ' ' || squeezed.empty() || squeezed.back() != ' ') squeezed += c;
    for (std::size_t at = squeezed.find("error: "); at != std::string::npos;) {
        const std::size_t next = squeezed.find("error: ", at + 1);
        std::string one = squeezed.substr(at + 7, next == std::string::npos ? next : next - at - 7);
        while (!one.empty() && one.back() == ' ') one.pop_back();
        if (std::size_t i = one.find(duplicate); i != std::string::npos)
            result += "name " + one.substr(0, i) + '\n';
        else if (i = one.find(overlap); i != std::string::npos)
            result += "overlap " + one.substr(0, i) + ' ' + one.substr(i + overlap.size()) + '\n';
        at = next;
    }
    return result;
}

} // namespace

TEST(memory_map, checks_and_searches_are_those_of_a_walk_over_all_ranges) {
    std::mt19937 random(11);
    DIAGNOSTIC::max_errors_m = ~0U;
    MEMORY_MAP map;
    PLAIN_MAP plain;
    static const char* const names[] = {"A", "B", "C", "D", "E", "F", "G", "H"};
    unsigned faulty = 0;
    for (unsigned step = 0; step < 700; ++step) {
        // Mostly narrow ranges in a wide space, some over half of it, some empty or at the top.
        uint64_t origin = (random() % 50000) * 0x10;
        uint64_t length = random() % 0x18;
        if (step % 50 == 49) length = 0x40000;
        if (step % 90 == 89) origin = ~uint64_t{0} - random() % 0x20;
        const int page = static_cast<int>(random() % 2);
        auto* range = new MEMORY_RANGE(savestrf("%s%u", names[random() % 8], step / 3), origin,
                                       length, MEMORY_RANGE::ATTR_ALL, page);
        std::string expected = plain.faults(range);
        const std::string text = plain_faults(reported([&] { map.add(range); }));
        ASSERT_EQ(text, expected) << step;
        faulty += !expected.empty();
        plain.add(range);

        const uint64_t address = (random() % 50000) * 0x10 + random() % 0x10;
        const uint64_t size = random() % 0x200;
        const char* name = plain.ranges[random() % plain.ranges.size()]->name();
        ASSERT_EQ(map.lookup_by_addr(address, page), plain.first([&](const MEMORY_RANGE* r) {
            return r->page() == page && r->holds(address);
        }));
        ASSERT_EQ(map.intersects(address, size, page), plain.first([&](const MEMORY_RANGE* r) {
            return r->page() == page && address + size > r->origin() && r->end() > address;
        }));
        ASSERT_EQ(map.lookup_by_name(name, page), plain.first([&](const MEMORY_RANGE* r) {
            return r->page() == page && std::string(r->name()) == name;
        }));
    }
    EXPECT_GT(faulty, 100u);
    EXPECT_TRUE(std::equal(map.begin(), map.end(), plain.ranges.begin(), plain.ranges.end()));
}

TEST(memory_map_table, holes_end_at_the_first_address_behind_them) {
    MEMORY_RANGE range("ROM", 0x0, 0x100, MEMORY_RANGE::ATTR_R | MEMORY_RANGE::ATTR_X);
    range.add_item(item(0x10, 0x30));
    MEMORY_MAP_TABLE table;
    table.add_headings();
    table.add_range(&range);
    auto row = [&](int n) {
        std::string text;
        for (int column = 0; column < table.ncols(); ++column)
            text += std::string(table.text(n, column)) + "|";
        return text;
    };
    EXPECT_EQ(row(0), "name/contents| origin|  end| length|attrs|fill|page|");
    EXPECT_EQ(row(2), "ROM|0x00000000  |0x000000ff  |0x100  |RX|<none>|0|");
    EXPECT_EQ(row(3), "  <empty>|0x00000000|0x00000010|0x10||||");
    EXPECT_EQ(row(4), "  x|0x00000010|0x0000002f|0x20||||");
    EXPECT_EQ(row(5), "  <empty>|0x00000030|0x00000100|0xd0||||");
}
