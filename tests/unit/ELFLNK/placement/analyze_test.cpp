// Which locators an object ends up with, and which worklist they join.
#include "placement_fixture.h"

class ANALYZE_TEST : public PLACEMENT_TEST {
  protected:
    /// A user's output section with one member of 16 bytes.
    static COLLECTION* outsect(const char* name, uint32_t attrs) {
        COLLECTION* made = collection(name, COLLECTION_OUTSECT, {{"m", 16, 4}});
        made->set_attrs(PA_ALLOCATED | PA_READ | attrs);
        made->set_user_specified();
        root_collection->add_outsect(made);
        return made;
    }
    static LOCATOR* add(LINKER_OBJECT* object, LOCATOR_KIND kind, const char* range = nullptr) {
        auto* locator = new LOCATOR(kind, object);
        if (range != nullptr) locator->add_ranges({range});
        object->add_locator(locator);
        return locator;
    }
    static std::string analyze(LINKER_OBJECT* object) {
        for (LOCATOR_LIST& list : placement_state().worklist) list.clear();
        if (object->parent() == nullptr) root_collection->add_member(object);
        return reported([object] { analyze_object(object, nullptr, nullptr); });
    }
    static const LOCATOR_LIST& worklist(int phase = 0) { return placement_state().worklist[phase]; }
};

TEST_F(ANALYZE_TEST, a_section_without_a_wish_gets_one_locator_and_a_warning) {
    COLLECTION* section = outsect("s", PA_HAS_DATA);
    std::string text = analyze(section);
    EXPECT_NE(text.find("No placement specified for \"s\"; a default placement will be applied."),
              text.npos)
        << text;
    ASSERT_EQ(worklist().size(), 1U);
    EXPECT_TRUE(worklist()[0]->is_both());
    EXPECT_EQ(section->run_locator(), worklist()[0]);
}

TEST_F(ANALYZE_TEST, separate_addresses_give_two_locators) {
    COLLECTION* section = outsect("s", PA_HAS_DATA | PA_LOAD_PLACEMENT);
    add(section, LOCATOR_KIND::RUN, "RAM");
    add(section, LOCATOR_KIND::LOAD, "ROM");
    EXPECT_EQ(analyze(section), "");
    ASSERT_EQ(worklist().size(), 2U);
    EXPECT_TRUE(worklist()[0]->is_run());
    EXPECT_TRUE(worklist()[1]->is_load());
}

TEST_F(ANALYZE_TEST, an_uninitialized_section_has_no_load_address) {
    COLLECTION* section = outsect("s", PA_LOAD_PLACEMENT);
    add(section, LOCATOR_KIND::RUN, "RAM");
    add(section, LOCATOR_KIND::LOAD, "ROM");
    std::string text = analyze(section);
    EXPECT_NE(text.find("LOAD placement ignored for \"s\": object is uninitialized"), text.npos)
        << text;
    ASSERT_EQ(worklist().size(), 1U);
    EXPECT_TRUE(worklist()[0]->is_run());
}

TEST_F(ANALYZE_TEST, a_run_address_alone_is_also_the_load_address) {
    COLLECTION* section = outsect("s", PA_HAS_DATA);
    add(section, LOCATOR_KIND::RUN, "RAM");
    std::string text = analyze(section);
    EXPECT_NE(text.find("No LOAD placement specified for initialized object \"s\""), text.npos)
        << text;
    ASSERT_EQ(worklist().size(), 1U);
    EXPECT_TRUE(worklist()[0]->is_both());
}

TEST_F(ANALYZE_TEST, members_of_a_group_go_with_it) {
    auto* group = new COLLECTION("g", COLLECTION_GROUP);
    group->set_attrs(PA_ALLOCATED | PA_READ | PA_HAS_DATA);
    COLLECTION* first = outsect("first", PA_HAS_DATA);
    COLLECTION* second = outsect("second", PA_HAS_DATA);
    add(first, LOCATOR_KIND::RUN, "ELSEWHERE");
    group->add_member(first);
    group->add_member(second);
    LOCATOR* locator = add(group, LOCATOR_KIND::BOTH, "RAM");
    std::string text = analyze(group);
    EXPECT_NE(text.find("placement ignored for \"first\": object is placed as part of \"g\""),
              text.npos)
        << text;
    ASSERT_EQ(worklist().size(), 1U);
    EXPECT_EQ(worklist()[0], locator);
    EXPECT_FALSE(first->run_locator()->placement_specified());
}

TEST_F(ANALYZE_TEST, the_one_initialized_member_of_a_union_takes_over_its_load_address) {
    for (bool second_has_data : {false, true}) {
        auto* overlay = new COLLECTION("u", COLLECTION_UNION);
        overlay->set_attrs(PA_ALLOCATED | PA_READ | PA_HAS_DATA);
        COLLECTION* first = outsect("first", PA_HAS_DATA);
        COLLECTION* second = outsect("second", second_has_data ? PA_HAS_DATA : PA_NONE);
        overlay->add_member(first);
        overlay->add_member(second);
        add(overlay, LOCATOR_KIND::BOTH, "RAM")->set_flag(LF_OVERLAY | LF_UNION);
        std::string text = analyze(overlay);
        EXPECT_TRUE(overlay->run_locator()->is_run());
        if (second_has_data) {
            EXPECT_NE(text.find("LOAD placement required for initialized object \"first\""),
                      text.npos);
            EXPECT_NE(text.find("LOAD placement required for initialized object \"second\""),
                      text.npos);
            EXPECT_EQ(worklist().size(), 3U);
        } else {
            EXPECT_EQ(text, "");
            EXPECT_EQ(worklist().size(), 1U);
            EXPECT_TRUE(first->run_locator()->is_both());
            EXPECT_FALSE(first->run_locator()->is_overlay());
        }
    }
}

TEST_F(ANALYZE_TEST, what_takes_no_memory_is_virtual) {
    COLLECTION* debug = outsect(".debug_x", PA_HAS_DATA);
    debug->clear_attr(PA_ALLOCATED);
    debug->set_attr(PA_PMDATA | PA_P3_PLACEMENT);
    EXPECT_EQ(analyze(debug), "");
    ASSERT_EQ(worklist(2).size(), 1U);
    EXPECT_TRUE(worklist(2)[0]->is_virtual());
    EXPECT_TRUE(worklist(2)[0]->has_flag(LF_BEHIND_LAST));
    worklist(2)[0]->place_object();
    EXPECT_STREQ(debug->run_locator()->range()->name(), "VIRTUAL");
    EXPECT_EQ(debug->run_locator()->range()->length(), 16U);
}

TEST_F(ANALYZE_TEST, the_phase_is_that_of_the_object) {
    COLLECTION* table = outsect("t", PA_HAS_DATA | PA_P2_PLACEMENT);
    add(table, LOCATOR_KIND::BOTH, "ROM");
    analyze(table);
    EXPECT_TRUE(worklist(0).empty());
    EXPECT_EQ(worklist(1).size(), 1U);
    LOCATOR::remove_locator(table->run_locator());
    EXPECT_TRUE(worklist(1).empty());
}
