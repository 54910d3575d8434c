#include "OPTIONGEN/register_option.h"

#include <gtest/gtest.h>

namespace {

register_option load("debug:load");
register_option load_too("debug:load");
register_option map("debug:map");
register_option fill("disable:fill");

TEST(register_option, a_list_sets_all_switches_of_its_keys) {
    process_debug_option("debug", "load=0x10,nosuchkey,map,,fill");
    EXPECT_EQ(int(load), 16);
    EXPECT_EQ(int(load_too), 16);
    EXPECT_EQ(int(map), 1);
    EXPECT_EQ(int(fill), 0);
    process_debug_option("disable", "fill=-2");
    EXPECT_EQ(int(fill), -2);
}

TEST(register_option, state_is_saved_and_restored) {
    process_debug_option("debug", "map=7");
    const std::vector<int> saved = register_option::get_state();
    register_option::reset_state();
    EXPECT_EQ(int(map), 0);
    register_option::set_state(saved);
    EXPECT_EQ(int(map), 7);
    EXPECT_EQ(register_option::get_option("debug:map"), &map);
    EXPECT_EQ(register_option::get_option("debug:nosuchkey"), nullptr);
}

} // namespace
