// Membership, sizes, attributes and flattening of collections.
#include "ELFLNK/object/collection.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "ELFLNK/expr/expression.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/fill_spec.h"
#include "ELFLNK/memmap/memory_range.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/section_spec.h"
#include "ELFLNK/object/space.h"
#include "ELFLNK/target/target.h"
#include "OPTIONGEN/option_obj.h"

namespace {

class TREE_TEST : public testing::Test {
  protected:
    TREE_TEST() {
        if (global_opts == nullptr) global_opts = new option_obj(true);
        Target->finalize_options();
    }
    static SPACE* space(uint64_t size, uint32_t attrs = PA_ALLOCATED | PA_READ) {
        auto* made = new SPACE("s", size);
        made->set_attrs(attrs);
        return made;
    }
    static SPACE* aligned(uint64_t size, uint64_t align) {
        SPACE* made = space(size);
        auto* locator = new LOCATOR(LOCATOR_KIND::BOTH, made);
        locator->add_align(align);
        made->add_locator(locator);
        return made;
    }
    static COLLECTION* outsect(const char* name) {
        auto* made = new COLLECTION(name, COLLECTION_OUTSECT);
        root_collection->add_member(made);
        root_collection->add_outsect(made);
        return made;
    }
    static std::vector<LINKER_OBJECT*> list(const COLLECTION* of) {
        return {of->members().begin(), of->members().end()};
    }
};

using LIST = std::vector<LINKER_OBJECT*>;

} // namespace

// ---- members -------------------------------------------------------------------------------

TEST_F(TREE_TEST, members_keep_their_order_and_leave_from_anywhere) {
    COLLECTION c("c", COLLECTION_GROUP);
    LINKER_OBJECT* a = space(1);
    LINKER_OBJECT* b = space(2);
    LINKER_OBJECT* d = space(3);
    for (LINKER_OBJECT* obj : {a, b, d}) c.add_member(obj);
    c.remove_member(b);
    EXPECT_EQ(list(&c), (LIST{a, d}));
    EXPECT_EQ(b->parent(), nullptr);
    c.remove_member(b);
    EXPECT_EQ(c.size(), 4u);
    c.replace_member(b, a);
    EXPECT_EQ(list(&c), (LIST{b, d}));
    EXPECT_EQ(a->parent(), nullptr);
}

TEST_F(TREE_TEST, a_replacement_of_a_non_member_is_appended) {
    COLLECTION c("c", COLLECTION_GROUP);
    LINKER_OBJECT* a = space(1);
    LINKER_OBJECT* b = space(2);
    c.add_member(a);
    c.replace_member(b, space(3));
    EXPECT_EQ(list(&c), (LIST{a, b}));
}

TEST_F(TREE_TEST, a_locked_collection_takes_no_change) {
    COLLECTION c("table", COLLECTION_GROUP);
    LINKER_OBJECT* a = space(1);
    c.add_member(a);
    c.set_locked();
    c.remove_member(space(1));
    EXPECT_DEATH(c.remove_member(a), "Attempt[[:space:]]+to[[:space:]]+erase[[:space:]]+member");
    EXPECT_DEATH(c.add_member(space(1)), "Attempt[[:space:]]+to[[:space:]]+add[[:space:]]+member");
    EXPECT_DEATH(c.replace_member(space(1), a),
                 "Attempt[[:space:]]+to[[:space:]]+replace[[:space:]]+member");
}

TEST_F(TREE_TEST, members_of_a_specification_move_with_its_fill) {
    COLLECTION c("c", COLLECTION_OUTSECT);
    auto* spec = new SECTION_SPEC("spec");
    LINKER_OBJECT* a = space(1);
    LINKER_OBJECT* b = space(2);
    LINKER_OBJECT* last = space(3);
    spec->add_member(a);
    spec->add_member(b);
    spec->add_fill(new FILL_SPEC(0xFF, 16, 2));
    c.add_member(spec);
    c.add_member(last);
    c.transfer_sspec_members(spec, c.member_position(last));
    EXPECT_EQ(list(&c), (LIST{spec, a, b, last}));
    EXPECT_EQ(a->parent(), &c);
    EXPECT_EQ(b->fill(), spec->fill());
    EXPECT_TRUE(spec->members().empty());
}

TEST_F(TREE_TEST, a_second_fill_is_reported_and_the_first_stays) {
    SPACE* s = space(4);
    auto* first = new FILL_SPEC(1, 16, 2);
    s->add_fill(first);
    testing::internal::CaptureStderr();
    s->add_fill(new FILL_SPEC(2, 16, 2));
    fflush(stderr);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("fill value already specified"),
              std::string::npos);
    EXPECT_EQ(s->fill(), first);
    EXPECT_TRUE(s->has_attr(PA_HAS_DATA));
}

TEST_F(TREE_TEST, flatten_walks_depth_first_and_gives_each_object_once) {
    COLLECTION top("top", COLLECTION_LOGICAL);
    COLLECTION inner("inner", COLLECTION_GROUP);
    LINKER_OBJECT* a = space(1);
    LINKER_OBJECT* b = space(2);
    top.add_member(a);
    top.add_member(&inner);
    inner.add_member(b);
    LIST all;
    top.flatten(all);
    EXPECT_EQ(all, (LIST{a, &inner, b}));
    LIST spaces;
    top.flatten(spaces, &LINKER_OBJECT::is_space);
    EXPECT_EQ(spaces, (LIST{a, b}));
    EXPECT_EQ(top.find_first_member(&LINKER_OBJECT::is_collection), &inner);
    EXPECT_FALSE(top.has_member(&LINKER_OBJECT::is_section));
}

TEST_F(TREE_TEST, detached_objects_have_no_common_parent) {
    LINKER_OBJECT* a = space(1);
    LINKER_OBJECT* b = space(1);
    EXPECT_FALSE(a->has_common_parent(b));
    COLLECTION c("c", COLLECTION_GROUP);
    c.add_member(a);
    EXPECT_FALSE(a->has_common_parent(b));
    c.add_member(b);
    EXPECT_TRUE(a->has_common_parent(b));
}

// ---- sizes ---------------------------------------------------------------------------------

TEST_F(TREE_TEST, a_union_is_as_large_as_its_largest_member_with_pad) {
    COLLECTION u("u", COLLECTION_UNION);
    EXPECT_EQ(u.size(), 0u);
    u.add_member(aligned(0x10, 8));
    u.add_member(space(0x14));
    EXPECT_EQ(u.size(), 0x17u);
    EXPECT_EQ(u.est_size_min(), 0x14u);
}

TEST_F(TREE_TEST, a_group_is_the_sum_of_its_members_with_their_worst_pads) {
    COLLECTION g("g", COLLECTION_GROUP);
    g.add_member(aligned(0x10, 8));
    g.add_member(space(0x14));
    EXPECT_EQ(g.size(), 0x2Bu);
    EXPECT_EQ(g.est_size_min(), 0x24u);
}

TEST_F(TREE_TEST, an_unallocated_member_of_an_allocated_collection_adds_nothing) {
    COLLECTION g("g", COLLECTION_GROUP);
    g.add_member(space(0x10, PA_READ));
    EXPECT_EQ(g.size(), 0x10u);
    g.add_member(space(0x4));
    EXPECT_EQ(g.size(), 0x4u);
}

TEST_F(TREE_TEST, a_change_below_shows_in_all_sizes_above) {
    COLLECTION top("top", COLLECTION_GROUP);
    COLLECTION inner("inner", COLLECTION_GROUP);
    top.add_member(&inner);
    EXPECT_EQ(top.size(), 0u);
    SPACE* s = space(8);
    inner.add_member(s);
    EXPECT_EQ(top.size(), 8u);
    s->set_size(12);
    EXPECT_EQ(top.size(), 12u);
    inner.add_member(space(3));
    EXPECT_EQ(top.size(), 15u);
    inner.remove_member(s);
    EXPECT_EQ(top.size(), 3u);
    top.set_fixed_min_size(0x20);
    EXPECT_EQ(top.size(), 0x20u);
    EXPECT_EQ(top.est_size_min(), 0x20u);
}

TEST_F(TREE_TEST, sizes_after_any_order_of_changes_are_those_of_a_fresh_sum) {
    std::mt19937 random(5);
    COLLECTION top("top", COLLECTION_GROUP);
    COLLECTION a("a", COLLECTION_GROUP);
    COLLECTION b("b", COLLECTION_UNION);
    top.add_member(&a);
    top.add_member(&b);
    auto sum_of = [](const COLLECTION& of) {
        uint64_t sum = 0;
        for (LINKER_OBJECT* m : of.members())
            sum = of.is_union() ? std::max(sum, m->size()) : sum + m->size();
        return sum;
    };
    for (int i = 0; i < 2000; ++i) {
        COLLECTION& c = random() % 2 != 0 ? a : b;
        if (random() % 3 == 0 && !c.members().empty())
            c.erase_member(c.members_begin());
        else
            c.add_member(space(1 + random() % 30));
        if (random() % 2 != 0) continue;
        ASSERT_EQ(a.size(), sum_of(a)) << i;
        ASSERT_EQ(b.size(), sum_of(b)) << i;
        ASSERT_EQ(top.size(), sum_of(a) + sum_of(b)) << i;
    }
}

TEST_F(TREE_TEST, a_layout_gives_the_size_of_its_locator) {
    COLLECTION c("c", COLLECTION_OUTSECT);
    c.add_member(space(0x10));
    auto* run = new LOCATOR(LOCATOR_KIND::BOTH, &c);
    c.add_locator(run);
    EXPECT_EQ(c.layout_locator(), nullptr);
    EXPECT_EQ(c.size(), 0x10u);
    run->set_extent(0x100, 0x118);
    run->set_flag(LF_PLACED);
    c.update_upon_placement();
    EXPECT_EQ(c.layout_locator(), run);
    EXPECT_EQ(c.size(), 0x18u);
    run->set_flag(LF_SPLIT);
    c.flush_size();
    EXPECT_EQ(c.size(), 0x10u);
}

// ---- attributes ----------------------------------------------------------------------------

TEST_F(TREE_TEST, a_property_of_all_members_is_one_of_the_collection) {
    for (uint32_t bit : {PA_NOLOAD, PA_COPY, PA_DSECT, PA_BOUND, PA_READONLY}) {
        COLLECTION* all = outsect("all");
        all->add_member(space(4, PA_READ | bit));
        all->add_member(space(4, PA_READ | bit));
        all->set_attributes_from_members(false);
        EXPECT_TRUE(all->has_attr(bit)) << attr_name(bit);

        COLLECTION* some = outsect("some");
        some->add_member(space(4, PA_READ | bit));
        some->add_member(space(4, PA_READ));
        some->set_attributes_from_members(false);
        EXPECT_FALSE(some->has_attr(bit)) << attr_name(bit);

        COLLECTION* none = outsect("none");
        none->set_attributes_from_members(false);
        EXPECT_FALSE(none->has_attr(bit)) << attr_name(bit);
    }
}

TEST_F(TREE_TEST, sticky_attributes_are_not_merged_upward_and_stay) {
    COLLECTION* c = outsect("c");
    c->set_attr(PA_NOSPLIT | PA_WRITE);
    c->add_member(space(4, PA_ALLOCATED | PA_READ | PA_EXEC | PA_TLS));
    c->add_member(space(4, PA_ALLOCATED | PA_READ));
    c->set_attributes_from_members(true);
    EXPECT_TRUE(c->has_attr(PA_NOSPLIT));
    EXPECT_TRUE(c->has_attr(PA_EXEC));
    EXPECT_FALSE(c->has_attr(PA_TLS));
    EXPECT_FALSE(c->has_attr(PA_WRITE));
}

TEST_F(TREE_TEST, a_copy_section_is_not_allocated) {
    COLLECTION* c = outsect("c");
    c->set_attr(PA_COPY);
    c->add_member(space(4));
    c->set_placement_attributes();
    EXPECT_FALSE(c->has_attr(PA_ALLOCATED));
}

TEST_F(TREE_TEST, data_of_an_output_section_goes_down_into_all_of_it) {
    COLLECTION* c = outsect("c");
    LINKER_OBJECT* data = space(4, PA_ALLOCATED | PA_READ | PA_HAS_DATA);
    LINKER_OBJECT* bss = space(4, PA_ALLOCATED | PA_READ);
    LINKER_OBJECT* loose = space(4, PA_READ);
    for (LINKER_OBJECT* obj : {data, bss, loose}) c->add_member(obj);
    c->set_placement_attributes();
    EXPECT_TRUE(bss->has_attr(PA_HAS_DATA));
    EXPECT_TRUE(loose->has_attr(PA_ALLOCATED));
}

TEST_F(TREE_TEST, noinit_members_alone_make_a_noinit_section) {
    COLLECTION* c = outsect("c");
    c->add_member(space(4, PA_ALLOCATED | PA_NOINIT));
    c->set_attributes_from_members(true);
    EXPECT_TRUE(c->has_attr(PA_NOINIT));
}

TEST_F(TREE_TEST, a_mix_of_noinit_and_other_members_is_reported_once) {
    COLLECTION* c = outsect("mix");
    LINKER_OBJECT* noinit = space(4, PA_ALLOCATED | PA_NOINIT);
    c->add_member(noinit);
    c->add_member(space(4));
    auto run = [&] {
        testing::internal::CaptureStderr();
        c->set_attributes_from_members(true);
        fflush(stderr);
        return testing::internal::GetCapturedStderr();
    };
    EXPECT_NE(run().find("output section \"mix\" cannot mix noinit sections"), std::string::npos);
    EXPECT_FALSE(noinit->has_attr(PA_NOINIT));
    noinit->set_attr(PA_NOINIT);
    EXPECT_EQ(run(), "");
}

TEST_F(TREE_TEST, alignment_is_the_largest_of_members_locator_and_minimum) {
    COLLECTION* c = outsect("c");
    auto* inner = new COLLECTION("i", COLLECTION_GROUP);
    inner->set_min_align(16);
    c->add_member(inner);
    c->set_min_align(4);
    c->set_attributes_from_members(true);
    EXPECT_EQ(c->alignment(), 16u);
    auto* run = new LOCATOR(LOCATOR_KIND::BOTH, c);
    run->add_align(64);
    c->add_locator(run);
    c->set_attributes_from_members(true);
    EXPECT_EQ(c->alignment(), 64u);
}

// ---- addresses -----------------------------------------------------------------------------

TEST_F(TREE_TEST, only_what_stands_for_memory_or_is_copied_has_an_address) {
    struct {
        uint32_t attrs;
        bool has_address;
    } cases[] = {{PA_ALLOCATED, true}, {PA_HAS_DATA, true},          {PA_COPY, true},
                 {PA_DSECT, true},     {PA_COPY | PA_PMDATA, false}, {PA_READ, false}};
    for (const auto& c : cases) {
        SPACE* s = space(4, c.attrs);
        auto* run = new LOCATOR(LOCATOR_KIND::RUN, s);
        run->set_extent(0x100, 0x104);
        run->set_flag(LF_PLACED);
        s->add_locator(run);
        EXPECT_EQ(s->run_address(), c.has_address ? 0x100u : 0u) << c.attrs;
        EXPECT_EQ(s->load_address(), s->run_address());
    }
}

TEST_F(TREE_TEST, a_locator_of_both_kinds_replaces_the_load_locator) {
    SPACE* s = space(4);
    auto* load = new LOCATOR(LOCATOR_KIND::LOAD);
    auto* both = new LOCATOR(LOCATOR_KIND::BOTH);
    s->add_locator(load);
    EXPECT_EQ(s->load_locator(), load);
    s->add_locator(both);
    EXPECT_EQ(s->load_locator(), nullptr);
    EXPECT_EQ(s->run_locator(), both);
    EXPECT_EQ(both->object(), s);
    s->add_locator(nullptr);
    EXPECT_EQ(s->run_locator(), nullptr);
}

// ---- specifications dissolve ---------------------------------------------------------------

TEST_F(TREE_TEST, specifications_that_keep_no_order_dissolve) {
    COLLECTION* c = outsect("c");
    auto* one = new SECTION_SPEC("one");
    auto* none = new SECTION_SPEC("none");
    auto* many = new SECTION_SPEC("many");
    LINKER_OBJECT* a = space(1);
    one->add_member(a);
    many->add_member(space(2));
    many->add_member(space(3));
    for (SECTION_SPEC* spec : {one, none, many}) c->add_member(spec);
    c->flatten_section_specs();
    EXPECT_EQ(list(c), (LIST{a, many}));
    EXPECT_EQ(c->size(), 6u);
}

TEST_F(TREE_TEST, the_only_specification_dissolves_however_many_members_it_has) {
    COLLECTION* c = outsect("c");
    auto* spec = new SECTION_SPEC("spec");
    LINKER_OBJECT* a = space(1);
    LINKER_OBJECT* b = space(2);
    spec->add_member(a);
    spec->add_member(b);
    c->add_member(spec);
    c->flatten_section_specs();
    EXPECT_EQ(list(c), (LIST{a, b}));
}

TEST_F(TREE_TEST, a_group_of_the_user_is_not_dissolved) {
    COLLECTION top("top", COLLECTION_LOGICAL);
    auto* group = new COLLECTION("g", COLLECTION_GROUP);
    top.add_member(group);
    top.flatten_section_specs();
    EXPECT_EQ(list(&top), (LIST{group}));
}

TEST_F(TREE_TEST, consecutive_specifications_of_an_unordered_section_become_one_loose_collection) {
    COLLECTION* c = outsect("c");
    auto* run = new LOCATOR(LOCATOR_KIND::BOTH, c);
    run->set_flag(LF_UNORDERED);
    c->add_locator(run);
    auto spec = [](int members) {
        auto* made = new SECTION_SPEC("spec");
        for (int i = 0; i < members; ++i) made->add_member(space(1));
        return made;
    };
    LINKER_OBJECT* fixed = space(4);
    c->add_member(spec(1));
    c->add_member(spec(0));
    c->add_member(spec(2));
    c->add_member(fixed);
    c->add_member(spec(1));
    c->merge_consecutive_specs();
    std::string names;
    for (const LINKER_OBJECT* m : c->members()) names += std::string(m->name()) + " ";
    EXPECT_EQ(names, "c.1 spec s c.2 ");
    EXPECT_FALSE(c->is_unordered());
    EXPECT_EQ(c->size(), 8u);
}

// ---- split sections ------------------------------------------------------------------------

namespace {

class SPLIT_TEST : public TREE_TEST {
  protected:
    /// A split output section with members of 0x10 at the addresses, all of range.
    COLLECTION* split_at(const std::vector<uint64_t>& addresses) {
        COLLECTION* c = outsect("text");
        auto* run = new LOCATOR(LOCATOR_KIND::BOTH, c);
        run->set_flag(LF_SPLIT);
        c->add_locator(run);
        for (uint64_t address : addresses) {
            SPACE* s = space(0x10);
            auto* locator = new LOCATOR(LOCATOR_KIND::BOTH, s);
            locator->set_extent(address, address + 0x10);
            locator->set_flag(LF_PLACED | LF_COMPLETE);
            locator->set_range(&range_);
            range_.add_item(locator);
            s->add_locator(locator);
            run->edit_sub_items().push_back(locator);
            c->add_member(s);
        }
        return c;
    }
    MEMORY_RANGE range_{"R", 0, 0x1000};
};

} // namespace

TEST_F(SPLIT_TEST, pieces_that_follow_each_other_are_one_output_section) {
    COLLECTION* c = split_at({0x120, 0x100, 0x110});
    COLLECTION::split_outsects();
    ASSERT_EQ(c->members().size(), 1u);
    EXPECT_STREQ(c->members().front()->name(), "text");
    EXPECT_TRUE(c->members().front()->is_output_section());
    EXPECT_FALSE(c->is_output_section());
    EXPECT_STREQ(c->collection_kind_name(), "SPLIT CONTAINER");
}

TEST_F(SPLIT_TEST, pieces_apart_become_numbered_output_sections) {
    COLLECTION* c = split_at({0x300, 0x100, 0x110});
    COLLECTION::split_outsects();
    ASSERT_EQ(c->members().size(), 2u);
    const auto* first = static_cast<const COLLECTION*>(c->members().front());
    EXPECT_STREQ(first->name(), "text.1");
    EXPECT_EQ(first->members().size(), 2u);
    EXPECT_STREQ(c->members().back()->name(), "text.2");
    EXPECT_EQ(root_collection->find_outsect("text.2"), c->members().back());
    EXPECT_EQ(root_collection->find_outsect("text"), nullptr);
}

// ---- the root ------------------------------------------------------------------------------

TEST_F(TREE_TEST, output_sections_are_found_by_name_the_oldest_first) {
    COLLECTION* first = outsect("dup");
    COLLECTION* second = outsect("dup");
    EXPECT_EQ(root_collection->find_outsect("dup"), first);
    EXPECT_EQ(root_collection->find_other_outsect("dup", first), second);
    first->set_name("other");
    EXPECT_EQ(root_collection->find_outsect("dup"), second);
    EXPECT_EQ(root_collection->find_outsect("other"), first);
    root_collection->remove_outsect(second);
    EXPECT_EQ(root_collection->find_outsect("dup"), nullptr);
    EXPECT_EQ(root_collection->find_outsect(""), nullptr);
    EXPECT_EQ(root_collection->find_outsect(nullptr), nullptr);
}

TEST_F(TREE_TEST, an_emptied_collection_leaves_with_its_last_member_unless_the_user_named_it) {
    COLLECTION* made = outsect("made");
    COLLECTION* named = outsect("named");
    named->set_user_specified();
    LINKER_OBJECT* a = space(1);
    LINKER_OBJECT* b = space(1);
    made->add_member(a);
    named->add_member(b);
    root_collection->unregister_object(a);
    root_collection->unregister_object(b);
    EXPECT_EQ(made->parent(), nullptr);
    EXPECT_FALSE(made->is_output_section());
    EXPECT_EQ(named->parent(), root_collection);
    EXPECT_TRUE(named->is_output_section());
}

TEST_F(TREE_TEST, the_enclosing_collection_of_two_objects_is_the_nearest_of_both) {
    COLLECTION* top = outsect("top");
    auto* left = new COLLECTION("l", COLLECTION_GROUP);
    LINKER_OBJECT* a = space(1);
    LINKER_OBJECT* b = space(1);
    LINKER_OBJECT* apart = space(1);
    top->add_member(left);
    left->add_member(a);
    top->add_member(b);
    EXPECT_EQ(root_collection->find_enclosing_collection(a, b), top);
    EXPECT_EQ(root_collection->find_enclosing_collection(a, a), left);
    EXPECT_EQ(root_collection->find_enclosing_collection(a, apart), root_collection);
}

TEST_F(TREE_TEST, addresses_order_objects_and_ids_break_ties) {
    auto placed = [](uint64_t address, uint64_t size) {
        SPACE* s = space(size);
        auto* locator = new LOCATOR(LOCATOR_KIND::BOTH, s);
        locator->set_extent(address, address + size);
        locator->set_flag(LF_PLACED);
        s->add_locator(locator);
        return s;
    };
    SPACE* a = placed(0x20, 4);
    SPACE* b = placed(0x10, 8);
    SPACE* c = placed(0x10, 4);
    SPACE* twin = placed(0x10, 4);
    EXPECT_GT(LINKER_OBJECT::sort_by_run_address(a, b), 0);
    EXPECT_GT(LINKER_OBJECT::sort_by_run_address(b, c), 0);
    EXPECT_LT(LINKER_OBJECT::sort_by_run_address(c, twin), 0);
    EXPECT_TRUE(LINKER_OBJECT::less_than_load_address(b, c));
    SPACE* unplaced = space(1);
    EXPECT_TRUE(LINKER_OBJECT::less_than_load_address(a, unplaced));
    EXPECT_FALSE(LINKER_OBJECT::less_than_load_address(unplaced, b));
}

// ---- dot -----------------------------------------------------------------------------------

TEST_F(TREE_TEST, adding_to_dot_is_a_hole_of_that_size) {
    auto dot_plus = [](int64_t value) {
        return new EXPRESSION(EXPR_OP_ADD_ASSIGN, new EXPRESSION(EXPR_OP_DOT, nullptr),
                              new EXPRESSION(EXPR_OP_INT, value, nullptr), nullptr);
    };
    COLLECTION* c = outsect("c");
    c->set_user_specified();
    c->set_attr(PA_ALLOCATED);
    auto* dot = new DOT_EXPRESSION(dot_plus(0x10), nullptr);
    auto* run = new LOCATOR(LOCATOR_KIND::BOTH, dot);
    run->set_flag(LF_PLACED | LF_COMPLETE);
    dot->add_locator(run);
    c->add_member(dot);
    EXPECT_TRUE(c->has_assign_to_dot_expression());
    EXPECT_EQ(dot->size(), 0x10u);
    auto* nothing = new DOT_EXPRESSION(dot_plus(0), nullptr);
    auto* empty_run = new LOCATOR(LOCATOR_KIND::BOTH, nothing);
    empty_run->set_flag(LF_PLACED | LF_COMPLETE);
    nothing->add_locator(empty_run);
    c->add_member(nothing);
    EXPECT_EQ(c->size(), 0x10u);
    EXPECT_EQ(list(c), (LIST{dot}));
}

TEST_F(TREE_TEST, each_attribute_has_its_name) {
    EXPECT_STREQ(attr_name(0), "PA_NONE");
    EXPECT_STREQ(attr_name(0x20000), "PA_NOINIT");
    EXPECT_STREQ(attr_name(0x3), "PA_UNKNOWN");
    EXPECT_STREQ(attr_name(0x80000000), "PA_UNKNOWN");
}
