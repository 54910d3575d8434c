#include "DIAG/disp_filter.h"

#include <gtest/gtest.h>

namespace {

class DispFilter : public testing::Test {
  protected:
    DispFilter() {
        flags_.add("entry", "entry point", true);
        flags_.add("modules", "module view", false);
        flags_.add("secret", "not for users", true, true);
    }
    std::string states() const {
        std::string text;
        for (const auto& [name, flag] : flags_.flags())
            if (flag.on) text += name + " ";
        return text;
    }
    STRFLAGS flags_;
    DISP_FILTER filter_{"--mapfile_contents", flags_};
};

TEST_F(DispFilter, attributes_apply_in_order) {
    const struct {
        const char *value, *on;
    } cases[] = {{"none", ""},
                 {"none,entry", "entry "},
                 {"all", "entry modules secret "},
                 {"all,noentry", "modules secret "},
                 {"entry,none", ""},
                 {"none,modules,noentry", "modules "}};
    for (const auto& c : cases) {
        EXPECT_TRUE(filter_.process_option_arguments(c.value));
        EXPECT_EQ(states(), c.on) << c.value;
    }
}

TEST_F(DispFilter, unknown_attributes_are_kept_for_the_report) {
    EXPECT_FALSE(filter_.process_option_arguments("nofoo,entry,bar,"));
    EXPECT_EQ(filter_.bad_attrs(), (std::vector<std::string>{"foo", "bar", ""}));
    EXPECT_EQ(states(), "entry secret ");
}

TEST_F(DispFilter, an_attribute_that_is_not_in_the_set_reads_as_off) {
    EXPECT_FALSE(flags_.is_on("veneers"));
    EXPECT_TRUE(flags_.is_on("entry"));
}

TEST_F(DispFilter, help_is_asked_for_by_an_empty_value_or_listflags) {
    EXPECT_TRUE(DISP_FILTER::help_requested(""));
    EXPECT_TRUE(DISP_FILTER::help_requested("listflags"));
    EXPECT_FALSE(DISP_FILTER::help_requested("all"));
    testing::internal::CaptureStdout();
    filter_.process_option_arguments("listflags");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "entry,modules,secret\n");
}

TEST_F(DispFilter, the_help_shows_what_is_not_hidden) {
    testing::internal::CaptureStdout();
    EXPECT_TRUE(filter_.process_option_arguments(""));
    const std::string help = testing::internal::GetCapturedStdout();
    EXPECT_NE(help.find("     entry: entry point             (default: on)\n"), std::string::npos)
        << help;
    EXPECT_NE(help.find("   modules: module view             (default: off)\n"), std::string::npos)
        << help;
    EXPECT_EQ(help.find("secret"), std::string::npos);
    EXPECT_NE(help.find("--mapfile_contents=entry,nomodules\n"), std::string::npos);
}

} // namespace
