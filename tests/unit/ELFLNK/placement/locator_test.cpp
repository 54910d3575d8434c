// The wishes of locators: conflicts, merging, matching, and rounding.
#include "placement_fixture.h"

using LOCATOR_TEST = PLACEMENT_TEST;

TEST_F(LOCATOR_TEST, a_conflicting_wish_is_reported_and_the_new_value_stands) {
    struct CASE {
        void (*first)(LOCATOR*);
        void (*second)(LOCATOR*);
        bool conflict;
    };
    auto specific = [](LOCATOR* l) { l->add_specific(0x100); };
    auto ranges = [](LOCATOR* l) { l->add_ranges({"RAM"}); };
    auto attrs = [](LOCATOR* l) { l->add_attrs(3); };
    auto high = [](LOCATOR* l) { l->set_flag(LF_HIGHEST); };
    auto nothing = [](LOCATOR*) {};
    const CASE cases[] = {
        {nothing, specific, false}, {ranges, specific, true}, {attrs, specific, true},
        {high, specific, true},     {specific, ranges, true}, {attrs, ranges, true},
        {high, ranges, false},      {ranges, attrs, true},    {high, attrs, false},
        {specific, attrs, true},
    };
    for (const CASE& c : cases) {
        LOCATOR* locator = object("a", 4);
        unsigned before = DIAGNOSTIC::error_count_m;
        c.first(locator);
        std::string text = reported([&] { c.second(locator); });
        EXPECT_EQ(DIAGNOSTIC::error_count_m - before, c.conflict ? 1U : 0U) << &c - cases;
        EXPECT_EQ(text.find("conflicting placement methods") != text.npos, c.conflict);
    }
    LOCATOR* locator = object("b", 4);
    locator->add_ranges({"RAM"});
    reported([&] { locator->add_specific(0x40); });
    EXPECT_EQ(locator->specific_address(), 0x40U);
    EXPECT_TRUE(locator->has_flag(LF_SPECIFIC));
}

TEST_F(LOCATOR_TEST, an_empty_list_of_ranges_is_no_wish) {
    LOCATOR* locator = object("a", 4);
    locator->add_ranges({});
    EXPECT_FALSE(locator->placement_specified());
}

TEST_F(LOCATOR_TEST, of_two_alignments_the_larger_counts_and_no_power_of_two_is_dropped) {
    LOCATOR* locator = object("a", 4);
    locator->add_align(16);
    std::string text = reported([&] { locator->add_align(8); });
    EXPECT_NE(text.find("using maximum specified alignment"), text.npos);
    EXPECT_EQ(locator->alignment(), 16U);
    text = reported([&] { locator->add_align(48); });
    EXPECT_NE(text.find("power of 2 required"), text.npos);
    EXPECT_EQ(locator->alignment(), 16U);
    locator->add_min_align(1);
    locator->add_min_align(24);
    EXPECT_EQ(locator->alignment(), 16U);
    locator->add_min_align(32);
    EXPECT_EQ(locator->alignment(), 32U);
}

TEST_F(LOCATOR_TEST, the_last_blocking_stands) {
    LOCATOR* locator = object("a", 4);
    locator->add_block(0x100);
    reported([&] { locator->add_block(0x80); });
    EXPECT_EQ(locator->blocking(), 0x80U);
    locator->add_min_block(0x40);
    EXPECT_EQ(locator->blocking(), 0x80U);
}

TEST_F(LOCATOR_TEST, merge_takes_wishes_over_and_split_only_for_collections) {
    LOCATOR common(LOCATOR_KIND::BOTH);
    common.add_palign(0x20);
    common.set_flag(LF_ORDERED | LF_OVERLAY | LF_UNION | LF_SPLIT);
    LOCATOR run(LOCATOR_KIND::RUN);
    run.add_ranges({"RAM", "CCM"});
    run.add_priority(3);

    LOCATOR* of_collection = locate(collection("g", COLLECTION_GROUP, {}), LOCATOR_KIND::RUN);
    of_collection->merge(&common);
    EXPECT_TRUE(of_collection->has_flag(LF_SPLIT));
    EXPECT_TRUE(of_collection->has_flag(LF_ORDERED));
    of_collection->merge(&run);
    EXPECT_EQ(of_collection->alignment(), 0x20U);
    EXPECT_EQ(of_collection->priority(), 3U);
    EXPECT_EQ(of_collection->range_names().size(), 2U);
    EXPECT_TRUE(of_collection->has_flag(LF_PALIGN) && of_collection->has_flag(LF_UNION));
    EXPECT_TRUE(of_collection->has_flag(LF_SPLIT)) << "either side has it";
    EXPECT_FALSE(of_collection->has_flag(LF_ORDERED)) << "copied from the other side";

    LOCATOR* of_leaf = object("a", 4);
    of_leaf->merge(&common);
    EXPECT_FALSE(of_leaf->has_flag(LF_SPLIT));
}

TEST_F(LOCATOR_TEST, matching_is_by_page_then_address_or_name_and_attributes) {
    MEMORY_RANGE* rom = add_range("ROM", 0, 0x100, 0xD);
    MEMORY_RANGE* ram = add_range("RAM", 0x1000, 0x100, 0xF);
    LOCATOR* locator = object("a", 4);
    EXPECT_TRUE(locator->match(rom) && locator->match(ram));
    locator->add_ranges({"RAM", "OTHER"});
    EXPECT_FALSE(locator->match(rom));
    EXPECT_TRUE(locator->match(ram));
    locator = object("b", 4);
    locator->add_attrs(MEMORY_RANGE::ATTR_W);
    EXPECT_FALSE(locator->match(rom));
    EXPECT_TRUE(locator->match(ram));
    locator = object("c", 4);
    locator->add_specific(0x10FF);
    EXPECT_FALSE(locator->match(rom));
    EXPECT_TRUE(locator->match(ram));
    locator = object("d", 4);
    locator->add_page(1);
    EXPECT_FALSE(locator->match(rom) || locator->match(ram));
}

TEST_F(LOCATOR_TEST, available_space_counts_ranges_with_room_only) {
    add_range("A", 0, 0x100);
    add_range("B", 0x1000, 0x40);
    LOCATOR* locator = object("a", 0x80);
    locator->add_attrs(MEMORY_RANGE::ATTR_R);
    EXPECT_EQ(locator->estimate_available_space(), 0x100U);
    EXPECT_TRUE(locator->must_use_single_range());
    LOCATOR* small = object("b", 0x20);
    small->add_ranges({"A", "B"});
    EXPECT_EQ(small->estimate_available_space(), 0x140U);
    EXPECT_TRUE(small->can_use_many_ranges());
    EXPECT_EQ(small->available_space_in_contention(locator), 0x100U);
    LOCATOR* free = object("c", 4);
    EXPECT_EQ(free->estimate_available_space(), 0U);
    EXPECT_TRUE(free->competes_for_range_vs(small));
}

TEST_F(LOCATOR_TEST, the_hull_of_a_locator_is_that_of_its_ranges) {
    add_range("A", 0x100, 0x100);
    add_range("B", 0x1000, 0x40);
    uint64_t min;
    uint64_t max;
    LOCATOR::get_min_max(nullptr, min, max);
    EXPECT_EQ(min, 0x100U);
    EXPECT_EQ(max, 0x1040U);
    LOCATOR* locator = object("a", 4);
    locator->add_specific(0x1010);
    LOCATOR::get_min_max(locator, min, max);
    EXPECT_EQ(min, 0x1010U);
    EXPECT_EQ(max, 0x1040U);
    LOCATOR* lost = object("b", 4);
    lost->add_ranges({"NONE"});
    LOCATOR::get_min_max(lost, min, max);
    EXPECT_EQ(min, 0U);
    EXPECT_EQ(max, ~uint64_t{0});
}

TEST_F(LOCATOR_TEST, rounding_upward_and_downward) {
    LOCATOR* locator = object("a", 4);
    EXPECT_EQ(locator->align(0x11), 0x11U);
    EXPECT_EQ(locator->align(0x11, 8), 0x18U);
    locator->add_align(0x10);
    EXPECT_EQ(locator->align(0x11), 0x20U);
    EXPECT_EQ(locator->align_down(0x2F, 4), 0x20U);
    locator->add_block(0x40);
    struct CASE {
        uint64_t addr, size, up;
    };
    for (const CASE& c : {CASE{0x10, 0x30, 0x10}, CASE{0x10, 0x31, 0x40}, CASE{0x10, 0x40, 0x40},
                          CASE{0x40, 0x40, 0x40}, CASE{0x40, 0x90, 0x40}})
        EXPECT_EQ(locator->block(c.addr, c.size), c.up) << c.addr << " " << c.size;
    // Downward, what crosses a multiple of the alignment ends on it.
    EXPECT_EQ(locator->align_down(0x1C, 8), 0x18U);
    EXPECT_EQ(locator->align_down(0x18, 8), 0x18U);
    EXPECT_EQ(locator->align_down(0x11, 8), 0x11U);
    EXPECT_EQ(locator->align_down(0x1C, 0x20), 0x10U);
}

TEST_F(LOCATOR_TEST, analysis_drops_what_cannot_be_had) {
    LOCATOR* locator = locate(collection("g", COLLECTION_GROUP, {{"a", 4, 1}}));
    locator->add_specific(0x100);
    locator->add_priority(7);
    locator->set_flag(LF_SPLIT | LF_HIGHEST);
    std::string text = reported([&] { locator->analyze(); });
    EXPECT_NE(text.find("priority of 7 ignored for \"g\""), text.npos) << text;
    EXPECT_NE(text.find("split placement (>>) ignored for \"g\""), text.npos);
    EXPECT_NE(text.find("HIGH placement ignored for \"g\""), text.npos);
    EXPECT_FALSE(locator->has_flag(LF_SPLIT | LF_HIGHEST | LF_PRIORITY));

    LOCATOR* silent = locate(collection("v", COLLECTION_GROUP, {{"a", 4, 1}}));
    silent->set_flag(LF_VIRTUAL | LF_SPLIT | LF_HIGHEST);
    silent->add_priority(7);
    EXPECT_EQ(reported([&] { silent->analyze(); }), "");
    EXPECT_FALSE(silent->has_flag(LF_SPLIT | LF_HIGHEST | LF_PRIORITY));
}

TEST_F(LOCATOR_TEST, the_dump_names_what_applies_in_order) {
    LOCATOR* locator = object("a", 4);
    locator->add_ranges({"A", "B"});
    locator->add_align(8);
    locator->add_priority(2);
    locator->set_flag(LF_SPLIT | LF_ORDERED);
    EXPECT_EQ(locator->text(), "<BOTH> ranges=(A,B) priority=2 align=0x8 split=true ordered=true");
}
