// The order of placement: the comparison, the buckets, and the graph of constraints.
#include <algorithm>
#include <random>

#include "ELFLNK/placement/order/priority_dag.h"
#include "placement_fixture.h"

using ORDER_TEST = PLACEMENT_TEST;

TEST_F(ORDER_TEST, the_comparison_step_by_step) {
    add_range("A", 0, 0x1000);
    add_range("B", 0x10000, 0x1000);
    struct SIDE {
        uint64_t size;
        std::vector<const char*> ranges;
        bool specific;
    };
    struct CASE {
        const char* rule;
        SIDE first, second;
    };
    const CASE cases[] = {
        {"specific before all", {4, {}, true}, {0x800, {"A"}, false}},
        {"one range before many", {4, {"A"}, false}, {0x800, {"A", "B"}, false}},
        {"with space before without", {4, {"A", "B"}, false}, {0x800, {}, false}},
        {"scarcer relative to size", {0x800, {"A", "B"}, false}, {0x100, {"A", "B"}, false}},
        {"larger first", {8, {}, false}, {4, {}, false}},
        {"empty last", {4, {"A"}, false}, {0, {"A"}, false}},
    };
    for (const CASE& c : cases) {
        auto make = [](const char* name, const SIDE& side) {
            LOCATOR* locator = object(name, side.size);
            if (side.specific) locator->add_specific(0x10);
            locator->add_ranges(side.ranges);
            return locator;
        };
        LOCATOR* first = make("z", c.first);
        LOCATOR* second = make("a", c.second);
        EXPECT_LT(LOCATOR::locator_priority_cmp(first, second), 0) << c.rule;
        EXPECT_GT(LOCATOR::locator_priority_cmp(second, first), 0) << c.rule;
    }
    LOCATOR* a = object("a", 4);
    LOCATOR* b = object("b", 4);
    EXPECT_TRUE(LOCATOR::locator_priority_less(a, b)) << "then by name";
    LOCATOR* same = object("a", 4);
    EXPECT_TRUE(LOCATOR::locator_priority_less(a, same)) << "then by object id";
}

TEST_F(ORDER_TEST, buckets_stand_in_their_order) {
    add_range("A", 0, 0x1000);
    LOCATOR* last = object("last", 0x40);
    last->set_flag(LF_LAST);
    LOCATOR* virt = object("virtual", 0x80);
    virt->set_flag(LF_VIRTUAL);
    LOCATOR* fixed = object("fixed", 1);
    fixed->add_specific(0x100);
    LOCATOR_LIST list{virt, last, object("small", 4), object("large", 8), fixed};
    sort_worklist(list, true);
    EXPECT_EQ(names(list), "fixed large small last virtual ");
    LOCATOR_LIST none;
    sort_worklist(none, true);
    EXPECT_TRUE(none.empty());
}

TEST_F(ORDER_TEST, the_higher_priority_is_placed_earlier) {
    add_range("A", 0, 0x1000);
    LOCATOR_LIST list;
    for (uint32_t n : {1, 2, 3}) {
        LOCATOR* locator = object(savestrf("p%u", n), 0x100 - n);
        locator->add_ranges({"A"});
        locator->add_priority(n);
        list.push_back(locator);
    }
    sort_worklist(list, false);
    EXPECT_EQ(names(list).substr(0, 3), "p1 ") << "without constraints by size";
    EXPECT_EQ(reported([&] { sort_worklist(list, true); }), "");
    EXPECT_EQ(names(list), "p3 p2 p1 ");
}

TEST_F(ORDER_TEST, a_priority_that_cannot_be_honored_is_told) {
    add_range("ROM", 0, 0x1000);
    add_range("RAM", 0x10000, 0x1000);
    COLLECTION* data = collection("data", COLLECTION_GROUP, {{"x", 8, 4}});
    LOCATOR* run = locate(data, LOCATOR_KIND::RUN);
    run->add_ranges({"RAM"});
    run->add_priority(1);
    auto* load = new LOCATOR(LOCATOR_KIND::LOAD, data);
    load->add_ranges({"ROM"});
    load->add_priority(9);
    data->add_locator(load);
    data->set_attr(PA_HAS_DATA);
    LOCATOR_LIST list{load, run};
    std::string text = reported([&] { sort_worklist(list, true); });
    EXPECT_EQ(list.front(), run);
    EXPECT_NE(text.find("load priority of 9 for \"data\" not honored"), text.npos) << text;
}

TEST_F(ORDER_TEST, objects_bound_to_one_range_come_before_those_with_a_choice) {
    add_range("A", 0, 0x100);
    add_range("B", 0x1000, 0x100);
    LOCATOR* flexible = object("flexible", 0x80);
    flexible->add_ranges({"A", "B"});
    LOCATOR* bound = object("bound", 0x90);
    bound->add_ranges({"A"});
    LOCATOR_LIST list{flexible, bound};
    place_worklist(list);
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(bound->address(), 0U);
    EXPECT_EQ(flexible->address(), 0x1000U);
}

TEST_F(ORDER_TEST, paths_are_those_that_a_search_finds) {
    ORDER_CONTEXT context;
    std::mt19937 random(3);
    for (int round = 0; round < 20; ++round) {
        constexpr uint32_t COUNT = 90;
        std::vector<ORDER_KEY> keys;
        for (uint32_t i = 0; i < COUNT; ++i)
            keys.push_back(context.key_of(object("n", i, 1, LOCATOR_KIND::RUN)));
        PLACEMENT_PRIORITY_DAG graph(context, keys);
        std::vector<std::vector<bool>> reach(COUNT, std::vector<bool>(COUNT));
        for (int i = 0; i < 300; ++i) {
            uint32_t from = static_cast<uint32_t>(random() % COUNT);
            uint32_t to = static_cast<uint32_t>(random() % COUNT);
            if (from == to || reach[to][from]) continue;
            graph.add_edge(from, to);
            for (uint32_t a = 0; a < COUNT; ++a)
                for (uint32_t b = 0; b < COUNT; ++b)
                    if ((a == from || reach[a][from]) && (b == to || reach[to][b]))
                        reach[a][b] = true;
        }
        for (uint32_t a = 0; a < COUNT; ++a)
            for (uint32_t b = 0; b < COUNT; ++b) ASSERT_EQ(graph.path_exists(a, b), reach[a][b]);
        std::vector<ORDER_KEY> order =
            graph.order_placement_worklist(graph.find_single_root_node());
        ASSERT_EQ(order.size(), COUNT);
    }
}

TEST_F(ORDER_TEST, the_watched_order_is_that_of_sorting_anew_while_an_object_has_no_wish) {
    add_range("A", 0, 0x100000);
    add_range("B", 0x1000000, 0x100000);
    std::mt19937 random(11);
    for (int round = 0; round < 30; ++round) {
        LOCATOR_LIST list;
        for (int i = 0; i < 25; ++i) {
            LOCATOR* locator = object(savestrf("o%d", i), 4 + random() % 64 * 4);
            if (random() % 3 != 0) locator->add_ranges({random() % 2 == 0 ? "A" : "B"});
            if (random() % 8 == 0) locator->add_priority(1 + static_cast<uint32_t>(random() % 3));
            list.push_back(locator);
        }
        COLLECTION* data = collection("data", COLLECTION_GROUP, {{"x", 8 + random() % 256, 4}});
        LOCATOR* run = locate(data, LOCATOR_KIND::RUN);
        run->add_ranges({"B"});
        auto* load = new LOCATOR(LOCATOR_KIND::LOAD, data);
        load->add_ranges({"A"});
        data->add_locator(load);
        list.push_back(load);
        list.push_back(run);
        std::shuffle(list.begin(), list.end(), random);

        LOCATOR_LIST watched = list;
        ORDER_WATCH watch;
        reported([&] { sort_worklist(watched, true, &watch); });
        ASSERT_TRUE(watch.may_stand());
        std::string one_by_one;
        for (bool sort = true; !list.empty();) {
            if (sort) reported([&] { sort_worklist(list, true); });
            sort = std::ranges::any_of(list, [](LOCATOR* l) { return !l->placement_specified(); });
            one_by_one += std::string(list.front()->object()->name()) + " ";
            list.erase(list.begin());
        }
        ASSERT_EQ(names(watched), one_by_one) << round;
    }
}

TEST_F(ORDER_TEST, the_order_no_longer_stands_when_somebody_may_lose_a_range) {
    MEMORY_RANGE* a = add_range("A", 0, 0x100);
    LOCATOR_LIST list;
    for (uint64_t size : {0x60, 0x50, 0x10}) {
        LOCATOR* locator = object("o", size);
        locator->add_ranges({"A"});
        list.push_back(locator);
    }
    ORDER_WATCH watch;
    sort_worklist(list, true, &watch);
    EXPECT_TRUE(watch.stands_after(list[0]));
    ASSERT_TRUE(list[0]->insert_into_range(a));
    EXPECT_TRUE(watch.stands_after(list[0]));
    ASSERT_TRUE(list[1]->insert_into_range(a));
    EXPECT_FALSE(watch.stands_after(list[1])) << "less room than the largest counted on";
    LOCATOR* other = object("flexible", 4);
    add_range("B", 0x1000, 0x100);
    other->add_ranges({"A", "B"});
    list.push_back(other);
    sort_worklist(list, true, &watch);
    EXPECT_FALSE(watch.may_stand()) << "sets of ranges that overlap in part";
}
