// Which output sections may share a program header.
#include "ELFLNK/object/load_segment.h"

#include <gtest/gtest.h>

#include <vector>

#include "ELFLNK/locator/locator.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/space.h"
#include "ELFLNK/target/target.h"
#include "OPTIONGEN/option_obj.h"

namespace {

constexpr uint32_t CODE = PA_ALLOCATED | PA_READ | PA_EXEC | PA_HAS_DATA;
constexpr uint32_t ZERO = PA_ALLOCATED | PA_READ;

class SEGMENT_TEST : public testing::Test {
  protected:
    SEGMENT_TEST() {
        if (global_opts == nullptr) global_opts = new option_obj(true);
        Target->finalize_options();
    }

    /// A placed output section.
    static COLLECTION* outsect(uint64_t run, uint64_t load, uint64_t size, uint32_t attrs,
                               uint32_t align = 1) {
        auto* made = new COLLECTION("o", COLLECTION_OUTSECT);
        made->set_attrs(attrs);
        made->set_min_align(align);
        place(made, LOCATOR_KIND::RUN, run, size);
        place(made, LOCATOR_KIND::LOAD, load, size);
        root_collection->add_outsect(made);
        return made;
    }

  private:
    static void place(COLLECTION* object, LOCATOR_KIND kind, uint64_t start, uint64_t size) {
        auto* locator = new LOCATOR(kind, object);
        locator->set_extent(start, start + size);
        locator->set_flag(LF_PLACED | LF_COMPLETE);
        object->add_locator(locator);
    }
};

} // namespace

TEST_F(SEGMENT_TEST, it_covers_what_joins_it) {
    LOAD_SEGMENT segment("s");
    COLLECTION* first = outsect(0x100, 0x1100, 0x10, CODE);
    EXPECT_TRUE(segment.can_combine(first));
    segment.add_member(first);
    segment.add_member(outsect(0x114, 0x1114, 0x10, CODE));
    EXPECT_EQ(segment.run_address(), 0x100u);
    EXPECT_EQ(segment.load_address(), 0x1100u);
    EXPECT_EQ(segment.size(), 0x24u);
    EXPECT_EQ(segment.init_size(), 0x24u);
    segment.add_member(outsect(0x124, 0x1124, 0x10, ZERO));
    EXPECT_EQ(segment.size(), 0x34u);
    EXPECT_EQ(segment.init_size(), 0x24u);
    EXPECT_EQ(segment.flags(), 5u);
}

TEST_F(SEGMENT_TEST, a_member_below_the_others_gives_the_addresses) {
    LOAD_SEGMENT segment("s");
    segment.add_member(outsect(0x200, 0x1200, 0x10, CODE));
    segment.add_member(outsect(0x100, 0x1100, 0x10, CODE));
    EXPECT_EQ(segment.run_address(), 0x100u);
    EXPECT_EQ(segment.load_address(), 0x1100u);
    EXPECT_EQ(segment.size(), 0x110u);
}

TEST_F(SEGMENT_TEST, each_rule_keeps_a_section_out) {
    // The segment: code at run 0x100, load 0x1100, 0x10 long.
    struct {
        const char* rule;
        uint64_t run, load;
        uint32_t attrs, align;
        bool joins;
    } cases[] = {
        {"next to it", 0x110, 0x1110, CODE, 1, true},
        {"the largest gap", 0x117, 0x1117, CODE, 1, true},
        {"a larger gap", 0x118, 0x1118, CODE, 1, false},
        {"an overlap", 0x10F, 0x110F, CODE, 1, false},
        {"another distance of load and run", 0x110, 0x1111, CODE, 1, false},
        {"writable", 0x110, 0x1110, CODE | PA_WRITE, 1, false},
        {"thread-local", 0x110, 0x1110, CODE | PA_TLS, 1, false},
        {"read-only in ROM", 0x110, 0x1110, CODE | PA_READONLY, 1, false},
        {"bound", 0x110, 0x1110, CODE | PA_BOUND, 1, false},
        {"a run image", 0x110, 0x1110, CODE | PA_RUN_IMAGE, 1, false},
        {"an alignment that the start has", 0x110, 0x1110, CODE, 0x100, true},
        {"an alignment that the start lacks", 0x110, 0x1110, CODE, 0x200, false},
    };
    for (const auto& c : cases) {
        LOAD_SEGMENT segment("s");
        segment.add_member(outsect(0x100, 0x1100, 0x10, CODE));
        EXPECT_EQ(segment.can_combine(outsect(c.run, c.load, 4, c.attrs, c.align)), c.joins)
            << c.rule;
    }
}

TEST_F(SEGMENT_TEST, data_does_not_follow_a_tail_without_data) {
    LOAD_SEGMENT segment("s");
    segment.add_member(outsect(0x100, 0x100, 0x10, CODE));
    segment.add_member(outsect(0x110, 0x110, 0x10, ZERO));
    EXPECT_FALSE(segment.can_combine(outsect(0x120, 0x120, 0x10, CODE)));
    EXPECT_TRUE(segment.can_combine(outsect(0x120, 0x120, 0x10, ZERO)));
}

TEST_F(SEGMENT_TEST, thread_local_sections_keep_to_themselves) {
    LOAD_SEGMENT segment("s");
    segment.add_member(outsect(0x100, 0x100, 0x10, CODE));
    segment.set_attr(PA_TLS);
    EXPECT_TRUE(segment.can_combine(outsect(0x400, 0x800, 4, CODE | PA_TLS)));
    EXPECT_FALSE(segment.can_combine(outsect(0x110, 0x110, 4, CODE)));
}

TEST_F(SEGMENT_TEST, sections_of_a_group_join_in_load_order_and_what_cannot_goes_to_the_root) {
    LOAD_SEGMENT segment("s");
    auto* group = new COLLECTION("g", COLLECTION_GROUP);
    COLLECTION* second = outsect(0x110, 0x110, 0x10, CODE);
    COLLECTION* first = outsect(0x100, 0x100, 0x10, CODE);
    COLLECTION* apart = outsect(0x800, 0x800, 0x10, CODE);
    for (COLLECTION* o : {apart, second, first}) group->add_member(o, false);
    // What the group's members hold isn't summed up here: their extents are their locators'.
    static_cast<COLLECTION&>(segment).add_member(group, true);
    testing::internal::CaptureStderr();
    segment.update_upon_placement();
    fflush(stderr);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("badly formed load segment \"s\""),
              std::string::npos);
    EXPECT_EQ(std::vector<LINKER_OBJECT*>(segment.members().begin(), segment.members().end()),
              (std::vector<LINKER_OBJECT*>{first, second}));
    EXPECT_EQ(apart->parent(), root_collection);
    EXPECT_EQ(segment.size(), 0x20u);
}
