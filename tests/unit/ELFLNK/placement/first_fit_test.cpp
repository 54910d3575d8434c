// First fit within ranges, against fixed layouts and against a plain model on random sequences.
#include <random>

#include "placement_fixture.h"

using FIRST_FIT_TEST = PLACEMENT_TEST;

TEST_F(FIRST_FIT_TEST, objects_take_the_first_hole_upward_and_the_highest_downward) {
    MEMORY_RANGE* range = add_range("RAM", 0x100, 0x100);
    struct CASE {
        uint64_t size;
        uint32_t align;
        bool high;
        uint64_t at;
    };
    const CASE cases[] = {
        {0x10, 1, false, 0x100}, {0x02, 1, false, 0x110}, {0x20, 0x10, false, 0x120},
        {0x0E, 2, false, 0x112}, {0x10, 1, true, 0x1F0},  {0x08, 0x10, true, 0x1E0},
        {0x08, 1, true, 0x1E8},  {0x40, 1, false, 0x140}, {0x10, 1, false, 0x180},
    };
    for (const CASE& c : cases) {
        LOCATOR* locator = object("o", c.size, c.align);
        if (c.high) locator->set_flag(LF_HIGHEST);
        ASSERT_TRUE(locator->insert_into_range(range)) << &c - cases;
        EXPECT_EQ(locator->address(), c.at) << &c - cases;
        EXPECT_EQ(locator->end_address(), c.at + c.size);
        EXPECT_TRUE(locator->is_placed() && locator->is_complete());
        EXPECT_EQ(locator->range(), range);
    }
    LOCATOR* large = object("large", 0x60);
    EXPECT_FALSE(large->insert_into_range(range));
    EXPECT_FALSE(large->is_placed());
    EXPECT_EQ(range->contents().size(), std::size(cases));
}

TEST_F(FIRST_FIT_TEST, an_object_of_size_0_goes_to_the_start_and_takes_no_hole) {
    MEMORY_RANGE* range = add_range("RAM", 0x100, 0x20);
    ASSERT_TRUE(object("a", 0x10)->insert_into_range(range));
    LOCATOR* empty = object("empty", 0);
    ASSERT_TRUE(empty->insert_into_range(range));
    EXPECT_EQ(empty->address(), 0x100U);
    LOCATOR* rest = object("b", 0x10);
    ASSERT_TRUE(rest->insert_into_range(range));
    EXPECT_EQ(rest->address(), 0x110U);
    EXPECT_EQ(range->unused(), 0U);
}

TEST_F(FIRST_FIT_TEST, a_specific_address_overrides_alignment_with_a_warning) {
    MEMORY_RANGE* range = add_range("RAM", 0x100, 0x100);
    LOCATOR* locator = object("fixed", 0x10, 8);
    locator->add_specific(0x124);
    std::string text = reported([&] { EXPECT_TRUE(locator->insert_into_range(range)); });
    EXPECT_NE(text.find("specific address 0x124 overrides alignment of 8 for \"fixed\""), text.npos)
        << text;
    EXPECT_EQ(locator->address(), 0x124U);
    for (uint64_t taken : {0x120, 0x124, 0x130}) {
        LOCATOR* clash = object("clash", 0x10);
        clash->add_specific(taken);
        EXPECT_FALSE(clash->insert_into_range(range)) << taken;
    }
    LOCATOR* behind = object("behind", 0xCC);
    behind->add_specific(0x134);
    EXPECT_TRUE(behind->insert_into_range(range));
}

TEST_F(FIRST_FIT_TEST, a_block_is_not_crossed_by_what_fits_into_one) {
    MEMORY_RANGE* range = add_range("RAM", 0, 0x400);
    struct CASE {
        uint64_t size, at;
    };
    for (const CASE& c : {CASE{0xA0, 0}, CASE{0xA0, 0x100}, CASE{0x180, 0x200}, CASE{0x20, 0xA0}}) {
        LOCATOR* locator = object("o", c.size);
        locator->add_block(0x100);
        ASSERT_TRUE(locator->insert_into_range(range)) << c.size;
        EXPECT_EQ(locator->address(), c.at) << c.size;
    }
}

TEST_F(FIRST_FIT_TEST, last_goes_behind_everything) {
    MEMORY_RANGE* range = add_range("RAM", 0, 0x100);
    LOCATOR* middle = object("m", 0x10);
    middle->add_specific(0x80);
    ASSERT_TRUE(middle->insert_into_range(range));
    LOCATOR* last = object("last", 0x10);
    last->set_flag(LF_LAST);
    ASSERT_TRUE(last->insert_into_range(range));
    EXPECT_EQ(last->address(), 0x90U);
}

TEST_F(FIRST_FIT_TEST, limits_bound_the_search) {
    MEMORY_RANGE* range = add_range("RAM", 0, 0x100);
    LOCATOR* low = object("low", 0x10);
    low->set_min_address(0x40);
    ASSERT_TRUE(low->insert_into_range(range));
    EXPECT_EQ(low->address(), 0x40U);
    LOCATOR* high = object("high", 0x10);
    high->set_flag(LF_HIGHEST);
    high->set_max_address(0x80);
    ASSERT_TRUE(high->insert_into_range(range));
    EXPECT_EQ(high->address(), 0x70U);
    LOCATOR* squeezed = object("squeezed", 0x21);
    squeezed->set_min_address(0x50);
    squeezed->set_max_address(0x70);
    EXPECT_FALSE(squeezed->insert_into_range(range));
}

TEST_F(FIRST_FIT_TEST, uncommit_gives_the_space_back) {
    MEMORY_RANGE* range = add_range("RAM", 0, 0x100);
    LOCATOR* a = object("a", 0x80);
    ASSERT_TRUE(a->insert_into_range(range));
    a->uncommit();
    EXPECT_FALSE(a->is_placed());
    EXPECT_EQ(range->unused(), 0x100U);
    LOCATOR* b = object("b", 0x100);
    ASSERT_TRUE(b->insert_into_range(range));
    EXPECT_EQ(b->address(), 0U);
}

TEST_F(FIRST_FIT_TEST, the_search_by_index_finds_what_the_plain_walk_finds) {
    struct ITEM {
        uint64_t address, end;
    };
    std::mt19937 random(7);
    auto below = [&random](uint64_t n) { return random() % n; };
    for (int round = 0; round < 40; ++round) {
        constexpr uint64_t ORIGIN = 0x1002;
        constexpr uint64_t LENGTH = 0x800;
        auto* range = new MEMORY_RANGE("R", ORIGIN, LENGTH);
        std::vector<ITEM> items; // by address
        for (int i = 0; i < 120; ++i) {
            uint64_t size = 1 + below(40);
            uint32_t align = 1U << below(6);
            bool high = below(4) == 0;
            // The walk as it is told: holes between items in address order, first success wins.
            uint64_t at = 0;
            bool found = false;
            auto attempt = [&](uint64_t begin, uint64_t end) {
                uint64_t start = begin + (align - begin % align) % align;
                if (found || begin >= end || start > end || size > end - start) return;
                found = true;
                at = high ? std::max(start, (end - size) - (end - size) % align) : start;
            };
            if (high) {
                uint64_t start = ORIGIN + LENGTH;
                for (auto it = items.rbegin(); it != items.rend(); ++it) {
                    attempt(it->end, start);
                    start = it->address;
                }
                attempt(ORIGIN, start);
            } else {
                uint64_t start = ORIGIN;
                for (const ITEM& item : items) {
                    attempt(start, item.address);
                    start = item.end;
                }
                attempt(start, ORIGIN + LENGTH);
            }
            LOCATOR* locator = object("o", size, align);
            if (high) locator->set_flag(LF_HIGHEST);
            ASSERT_EQ(locator->insert_into_range(range), found) << round << " " << i;
            if (!found) continue;
            ASSERT_EQ(locator->address(), at) << round << " " << i;
            items.push_back({at, at + size});
            std::sort(items.begin(), items.end(),
                      [](const ITEM& a, const ITEM& b) { return a.address < b.address; });
        }
    }
}

TEST_F(FIRST_FIT_TEST, what_does_not_fit_is_reported_and_goes_into_a_virtual_range) {
    add_range("ROM", 0, 0x100);
    add_range("RAM", 0x1000, 0x20);
    LOCATOR* first = object("first", 0xF0);
    first->add_ranges({"ROM"});
    first->place_object();
    LOCATOR* lost = object("lost", 0x40);
    lost->add_ranges({"ROM", "RAM"});
    std::string text = reported([&] { lost->place_object(); });
    EXPECT_NE(text.find("program will not fit into available memory."), text.npos) << text;
    EXPECT_NE(text.find("fails for section \"lost\" size 0x40"), text.npos) << text;
    EXPECT_NE(text.find("ROM size: 0x100 unused: 0x10 max hole: 0x10"), text.npos) << text;
    EXPECT_NE(text.find("RAM size: 0x20 unused: 0x20 max hole: 0x20"), text.npos) << text;
    EXPECT_TRUE(lost->is_virtual() && lost->is_placed() && lost->placement_failed());
    EXPECT_EQ(lost->address(), 0U);
    EXPECT_TRUE(lost->range()->is_hidden());
    LOCATOR* after = object("after", 0x20);
    after->add_ranges({"ROM", "RAM"});
    after->place_object();
    EXPECT_EQ(after->address(), 0x1000U);
}

TEST_F(FIRST_FIT_TEST, a_specific_address_outside_the_map_makes_a_range) {
    add_range("ROM", 0, 0x100);
    add_range("HIGH", 0xF000, 0x100);
    LOCATOR* far = object("far", 0x10);
    far->add_specific(0x8000);
    std::string text = reported([&] { far->place_object(); });
    EXPECT_NE(text.find("specified address lies outside memory map"), text.npos) << text;
    EXPECT_EQ(far->address(), 0x8000U);
    EXPECT_STREQ(far->range()->name(), "DEFAULT");
    EXPECT_EQ(DIAGNOSTIC::error_count_m, 0U) << "HIGH is not overlapped";
}

TEST_F(FIRST_FIT_TEST, a_taken_specific_address_names_what_lies_there) {
    add_range("ROM", 0, 0x100);
    LOCATOR* first = object("first", 0x20);
    first->add_specific(0x40);
    first->place_object();
    LOCATOR* second = object("second", 0x20);
    second->add_specific(0x50);
    std::string text = reported([&] { second->place_object(); });
    EXPECT_NE(text.find(", overlaps with \"first\", size 0x20 (page 0)"), text.npos) << text;
    EXPECT_EQ(second->address(), 0x50U);
}

TEST_F(FIRST_FIT_TEST, no_range_with_the_attributes) {
    add_range("ROM", 0, 0x100, MEMORY_RANGE::ATTR_R);
    LOCATOR* lost = object("lost", 4);
    lost->add_attrs(MEMORY_RANGE::ATTR_W);
    std::string text = reported([&] { lost->place_object(); });
    EXPECT_NE(text.find("no valid memory range with matching attributes available for placement of "
                        "\"lost\""),
              text.npos)
        << text;
}
