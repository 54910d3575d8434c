// References come and go; what the root no longer leads to is found, rings too.
#include "ELFLNK/refgraph/reference_graph.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

#include "ELFLNK/object/section.h"
#include "ELFLNK/refgraph/graph_writer.h"
#include "OBJEDIT04/ofe/raw_records.h"

namespace {

using LIST = std::vector<LINKER_OBJECT*>;

struct GRAPH : testing::Test {
    SECTION root{"root"}, a{"a"}, b{"b"}, c{"c"}, d{"d"};
    REFERENCE_GRAPH graph{&root, true};
};

TEST_F(GRAPH, an_object_does_not_refer_to_itself_nor_to_nothing) {
    graph.add_reference(&root, &a);
    graph.add_reference(&a, &a, {"a", 4});
    graph.add_reference(&a, nullptr);
    EXPECT_EQ(graph.references().size(), 1u);
    EXPECT_EQ(graph.all_references_from_object(&a), LIST());
    EXPECT_EQ(graph.references_to_object(&a), LIST{&root});
}

TEST_F(GRAPH, in_degree_counts_objects_not_references) {
    graph.add_reference(&root, &a);
    graph.add_reference(&a, &b, {"x", 0});
    graph.add_reference(&a, &b, {"y", 8});
    graph.add_reference(&root, &b);
    EXPECT_EQ(graph.in_degree(&b), 2u);
    EXPECT_EQ(graph.in_degree(&root), 0u);
    EXPECT_EQ(graph.in_degree(&d), 0u); // not in the graph
    EXPECT_FALSE(graph.object_in_graph(&d));
    graph.remove_reference(&a, &b);
    graph.remove_reference(&b, &a);
    graph.remove_reference(&d, &a);
    EXPECT_EQ(graph.references_to_object(&b), LIST{&root});
    graph.remove_reference(&root, &b);
    EXPECT_TRUE(graph.is_removable(&b));
    EXPECT_EQ(graph.references().size(), graph.relocs().size());
}

TEST_F(GRAPH, what_a_lost_ring_holds_is_lost) {
    graph.add_reference(&root, &a);
    graph.add_reference(&a, &b);
    graph.add_reference(&b, &c);
    graph.add_reference(&c, &b);
    graph.add_reference(&c, &d);
    EXPECT_EQ(graph.unreferenced_objects(), LIST());
    graph.remove_reference(&a, &b);
    EXPECT_EQ(graph.unreferenced_objects(), (LIST{&b, &c, &d}));
    for (LINKER_OBJECT* object : {&b, &c, &d}) graph.remove_object(object);
    EXPECT_EQ(graph.unreferenced_objects(), LIST());
    EXPECT_EQ(graph.references_to_object(&d), LIST());
}

// Against the plain definition: closed under following references.
TEST(reference_graph, agrees_with_the_closure_on_random_graphs) {
    std::mt19937 random(7);
    std::vector<std::unique_ptr<SECTION>> objects;
    for (int i = 0; i < 40; ++i) objects.push_back(std::make_unique<SECTION>("s"));
    for (int round = 0; round < 200; ++round) {
        REFERENCE_GRAPH graph(objects[0].get(), false);
        std::set<std::pair<int, int>> edges;
        for (int i = 0; i < 60; ++i) {
            const int from = int(random() % 40), to = int(random() % 40);
            graph.add_reference(objects[size_t(from)].get(), objects[size_t(to)].get());
            edges.insert({from, to});
            if (random() % 4 != 0) continue;
            graph.remove_reference(objects[size_t(from)].get(), objects[size_t(to)].get());
            edges.erase({from, to});
        }
        std::set<int> reached{0};
        for (size_t before = 0; before != reached.size();) {
            before = reached.size();
            for (const auto& [from, to] : edges)
                if (reached.count(from) != 0) reached.insert(to);
        }
        std::set<LINKER_OBJECT*> expected;
        for (int i = 0; i < 40; ++i)
            if (reached.count(i) == 0 && graph.object_in_graph(objects[size_t(i)].get()))
                expected.insert(objects[size_t(i)].get());
        const LIST lost = graph.unreferenced_objects();
        ASSERT_EQ(std::set<LINKER_OBJECT*>(lost.begin(), lost.end()), expected) << round;
    }
}

TEST(graph_writer, a_function_names_a_place_better_than_an_object_and_that_than_all_else) {
    const auto sym = [](OFE::OF_SYM_TYPE type) {
        OFE::OF_RAW_SYMBOL s;
        s.type = type;
        return s;
    };
    const auto function = sym(OFE::OF_SYM_TYPE_FUNCTION), object = sym(OFE::OF_SYM_TYPE_OBJECT),
               none = sym(OFE::OF_SYM_TYPE_NONE), section = sym(OFE::OF_SYM_TYPE_SECTION);
    EXPECT_TRUE(GRAPH_WRITER::sym_has_higher_priority(function, object));
    EXPECT_TRUE(GRAPH_WRITER::sym_has_higher_priority(object, none));
    EXPECT_FALSE(GRAPH_WRITER::sym_has_higher_priority(object, function));
    EXPECT_FALSE(GRAPH_WRITER::sym_has_higher_priority(none, section));
    EXPECT_FALSE(GRAPH_WRITER::sym_has_higher_priority(section, none));
}

TEST_F(GRAPH, only_two_formats_have_writers) {
    EXPECT_STREQ(GRAPH_WRITER::get_graph_writer("TEXT", graph)->file_extension(), "txt");
    EXPECT_STREQ(GRAPH_WRITER::get_graph_writer("JSON", graph)->file_extension(), "json");
    EXPECT_EQ(GRAPH_WRITER::get_graph_writer("XML", graph), nullptr);
}

} // namespace
