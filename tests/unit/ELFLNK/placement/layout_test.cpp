// Collections: order, overlay, padding of the end, second placements, split.
#include <algorithm>

#include "ELFLNK/object/load_segment.h"
#include "placement_fixture.h"

using LAYOUT_TEST = PLACEMENT_TEST;

TEST_F(LAYOUT_TEST, an_ordered_group_keeps_its_order_and_leaves_gaps_open) {
    add_range("RAM", 0x100, 0x100);
    COLLECTION* group = collection("g", COLLECTION_GROUP, {{"a", 2, 2}, {"b", 8, 8}, {"c", 2, 2}});
    LOCATOR* locator = locate(group);
    locator->set_flag(LF_ORDERED);
    locator->place_object();
    EXPECT_EQ(run_addresses(group), (ADDRESSES{0x100, 0x108, 0x110}));
    EXPECT_EQ(locator->address(), 0x100U);
    EXPECT_EQ(locator->end_address(), 0x112U);
    EXPECT_EQ(group->size(), 0x12U);
}

TEST_F(LAYOUT_TEST, members_that_may_move_go_by_size_and_fill_gaps) {
    MEMORY_RANGE* range = add_range("RAM", 0x102, 0x100);
    COLLECTION* group =
        collection("g", COLLECTION_GROUP, {{"a", 2, 2}, {"b", 8, 8}, {"c", 6, 2}, {"d", 1, 1}});
    group->set_min_align(1);
    LOCATOR* locator = locate(group);
    locator->place_object();
    // b first, at its alignment; c, a and d in front of it.
    EXPECT_EQ(run_addresses(group), (ADDRESSES{0x110, 0x108, 0x102, 0x112}));
    EXPECT_EQ(range->contents().size(), 1U);
    EXPECT_EQ(range->leaf_contents().size(), 4U);
}

TEST_F(LAYOUT_TEST, the_members_of_a_union_start_at_one_address) {
    add_range("RAM", 0x100, 0x100);
    COLLECTION* overlay =
        collection("u", COLLECTION_UNION, {{"a", 0x10, 4}, {"b", 0x24, 4}, {"c", 8, 8}});
    LOCATOR* locator = locate(overlay, LOCATOR_KIND::RUN);
    locator->set_flag(LF_OVERLAY | LF_UNION);
    ASSERT_TRUE(object("first", 6)->insert_into_range(*memory_map->begin()));
    locator->place_object();
    EXPECT_EQ(run_addresses(overlay), (ADDRESSES{0x108, 0x108, 0x108}));
    EXPECT_EQ(locator->end_address(), 0x12CU);
}

TEST_F(LAYOUT_TEST, palign_pads_the_end) {
    add_range("RAM", 0x100, 0x100);
    COLLECTION* group = collection("g", COLLECTION_GROUP, {{"a", 0x12, 2}});
    LOCATOR* locator = locate(group);
    locator->add_palign(0x20);
    locator->place_object();
    EXPECT_EQ(locator->end_address(), 0x120U);
    EXPECT_EQ(group->size(), 0x20U);
    EXPECT_TRUE(group->has_attr(PA_PADDED));
}

TEST_F(LAYOUT_TEST, power_of_two_raises_size_and_alignment) {
    add_range("RAM", 0x110, 0x200);
    COLLECTION* group = collection("g", COLLECTION_GROUP, {{"a", 0x30, 4}});
    LOCATOR* locator = locate(group);
    locator->add_p2align();
    locator->place_object();
    EXPECT_EQ(group->size(), 0x40U);
    EXPECT_EQ(locator->alignment(), 0x40U);
    EXPECT_EQ(locator->address(), 0x140U);
    EXPECT_EQ(locator->end_address(), 0x180U);
}

TEST_F(LAYOUT_TEST, the_load_image_copies_the_layout_of_the_run_image) {
    add_range("ROM", 0x103, 0x100);
    add_range("RAM", 0x1000, 0x100);
    COLLECTION* group = collection("g", COLLECTION_GROUP, {{"a", 2, 2}, {"b", 8, 8}, {"c", 2, 2}});
    LOCATOR* run = locate(group, LOCATOR_KIND::RUN);
    run->add_ranges({"RAM"});
    auto* load = new LOCATOR(LOCATOR_KIND::LOAD, group);
    load->add_ranges({"ROM"});
    group->add_locator(load);
    load->add_min_align(8);
    run->set_flag(LF_ORDERED);
    load->set_flag(LF_ORDERED);
    LOCATOR_LIST list{load, run};
    place_worklist(list);
    EXPECT_EQ(run_addresses(group), (ADDRESSES{0x1000, 0x1008, 0x1010}));
    EXPECT_EQ(load_addresses(group), (ADDRESSES{0x108, 0x110, 0x118}));
    EXPECT_EQ(load->end_address() - load->address(), 0x12U);
}

TEST_F(LAYOUT_TEST, a_high_group_ends_at_the_top_and_keeps_its_inner_layout) {
    add_range("RAM", 0x100, 0x100);
    COLLECTION* group = collection("g", COLLECTION_GROUP, {{"a", 2, 2}, {"b", 8, 8}, {"c", 4, 2}});
    LOCATOR* locator = locate(group);
    locator->set_flag(LF_ORDERED | LF_HIGHEST);
    locator->add_min_align(8);
    locator->place_object();
    EXPECT_EQ(locator->address(), 0x1E8U);
    EXPECT_EQ(run_addresses(group), (ADDRESSES{0x1E8, 0x1F0, 0x1F8}));
}

TEST_F(LAYOUT_TEST, a_group_that_fits_in_no_hole_leaves_nothing_behind) {
    MEMORY_RANGE* range = add_range("RAM", 0x100, 0x30);
    LOCATOR* wall = object("wall", 8);
    wall->add_specific(0x110);
    wall->place_object();
    COLLECTION* group = collection("g", COLLECTION_GROUP, {{"a", 0x10, 1}, {"b", 0x10, 8}});
    LOCATOR* locator = locate(group);
    locator->set_flag(LF_ORDERED);
    locator->add_ranges({"RAM"});
    EXPECT_FALSE(locator->insert_into_range(range));
    EXPECT_FALSE(locator->is_placed());
    for (const LOCATOR* sub : locator->sub_items()) EXPECT_FALSE(sub->is_placed());
    EXPECT_EQ(range->contents().size(), 1U);
}

TEST_F(LAYOUT_TEST, a_split_collection_spreads_over_holes_and_ranges) {
    MEMORY_RANGE* a = add_range("A", 0x100, 0x30);
    add_range("B", 0x1000, 0x40);
    LOCATOR* wall = object("wall", 0x10);
    wall->add_specific(0x110);
    wall->place_object();
    COLLECTION* group = collection("s", COLLECTION_OUTSECT,
                                   {{"p", 0x10, 1}, {"q", 0x10, 1}, {"r", 0x20, 1}, {"t", 8, 1}});
    LOCATOR* locator = locate(group);
    locator->set_flag(LF_SPLIT);
    locator->add_ranges({"A", "B"});
    locator->place_object();
    // By size: r has no hole in A; p and q take one each; t goes behind r.
    EXPECT_EQ(run_addresses(group), (ADDRESSES{0x100, 0x120, 0x1000, 0x1020}));
    EXPECT_TRUE(locator->is_complete());
    EXPECT_EQ(a->unused(), 0U);
}

TEST_F(LAYOUT_TEST, what_is_left_of_a_split_becomes_virtual_and_the_rest_stays) {
    add_range("A", 0x100, 0x20);
    COLLECTION* group =
        collection("s", COLLECTION_OUTSECT, {{"p", 0x18, 1}, {"q", 0x10, 1}, {"r", 8, 1}});
    LOCATOR* locator = locate(group);
    locator->set_flag(LF_SPLIT);
    locator->add_ranges({"A"});
    std::string text = reported([&] { locator->place_object(); });
    EXPECT_NE(text.find("fails for section \"s\""), text.npos) << text;
    EXPECT_EQ(run_addresses(group), (ADDRESSES{0x100, 0, 0x118}));
    EXPECT_TRUE(group->members().front()->run_locator()->range()->parent() == nullptr);
    EXPECT_FALSE(group->members().front()->run_locator()->placement_failed());
}

namespace {

/// A table whose size is known once everything else has its place.
class LATE : public SIZED {
  public:
    LATE(const char* name, uint64_t last_size) : SIZED(name, 0x40, 4), last_size_(last_size) {
        set_attr(PA_P2_PLACEMENT);
    }
    void update_before_placement(PLACEMENT_PHASE phase) override {
        if (phase == PLACEMENT_PHASE_2) set_size(last_size_);
    }

  private:
    uint64_t last_size_;
};

} // namespace

TEST_F(LAYOUT_TEST, a_load_segment_holds_back_what_phase_2_places) {
    const struct {
        bool holds_back;
        uint64_t last_size, room;
        bool placed;
        ADDRESSES addresses; // of the table and of two sections
    } cases[] = {{false, 8, 0x80, true, {0x100, 0x140, 0x150}},
                 {true, 8, 0x80, true, {0x118, 0x100, 0x110}},
                 {true, 0x60, 0x80, true, {0x118, 0x100, 0x110}},
                 {true, 0x80, 0x80, false, {}}};
    for (const auto& c : cases) {
        MEMORY_RANGE range("RAM", 0x100, c.room, MEMORY_RANGE::ATTR_ALL);
        auto* segment = new LOAD_SEGMENT("ER_RO");
        segment->set_attr(PA_ALLOCATED);
        segment->set_holds_back_p2(c.holds_back);
        // Once it has its place, a segment keeps output sections only.
        LINKER_OBJECT* const members[] = {new LATE("table", c.last_size), new SIZED("a", 0x10, 4),
                                          new SIZED("b", 8, 4)};
        for (LINKER_OBJECT* member : members) segment->COLLECTION::add_member(member);
        EXPECT_EQ(locate(segment)->insert_into_range(&range), c.placed);
        EXPECT_EQ(placement_state().phase, PLACEMENT_PHASE_1);
        ADDRESSES addresses;
        for (const LINKER_OBJECT* member : members)
            if (c.placed) addresses.push_back(member->run_address());
        EXPECT_EQ(addresses, c.addresses);
    }
}

TEST_F(LAYOUT_TEST, a_hundred_thousand_members_do_not_take_quadratic_time) {
    add_range("ROM", 0, 0x4000000);
    auto* section = new COLLECTION("big", COLLECTION_OUTSECT);
    section->set_attr(PA_ALLOCATED);
    for (unsigned i = 0; i < 100000; ++i)
        section->add_member(new SIZED("f", 2 + i % 64 * 2, i % 3 == 0 ? 4 : 2));
    LOCATOR* locator = locate(section);
    locator->place_object();
    EXPECT_TRUE(locator->is_complete());
    // They lie one behind the other, apart from gaps that alignment leaves.
    std::vector<LINKER_OBJECT*> members(section->members().begin(), section->members().end());
    std::sort(members.begin(), members.end(), LINKER_OBJECT::less_than_run_address);
    uint64_t end = 0;
    for (LINKER_OBJECT* member : members) {
        ASSERT_GE(member->run_address(), end);
        ASSERT_LT(member->run_address() - end, 4U);
        end = member->run_address() + member->size();
    }
    EXPECT_EQ(end, locator->end_address());
}
