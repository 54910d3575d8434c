// Fill values: widths, digits and texts.
#include "ELFLNK/memmap/fill_spec.h"

#include <gtest/gtest.h>

#include <string>

#include "OPTIONGEN/option_obj.h"

TEST(fill_spec, width_follows_radix_and_digits) {
    struct {
        uint64_t value;
        uint32_t radix, digits, bits;
    } cases[] = {{0xFF, 16, 2, 8}, {0xFF, 16, 8, 32}, {0377, 8, 3, 9}, {1, 2, 5, 5},
                 {255, 10, 3, 8},  {256, 10, 3, 9},   {0, 10, 1, 0},   {7, 1, 9, 0}};
    for (const auto& c : cases)
        EXPECT_EQ(FILL_SPEC::bits_in_value(c.value, c.radix, c.digits), c.bits) << c.value;
}

TEST(fill_spec, text_is_in_the_radix_as_written) {
    EXPECT_STREQ(FILL_SPEC(0xAB, 16, 4).str(), "00ab");
    EXPECT_STREQ(FILL_SPEC(010, 8, 3).str(), "0010");
    EXPECT_STREQ(FILL_SPEC(1234, 10, 4).str(), "1234");
}

TEST(fill_spec, digits_round_up_but_for_decimal) {
    FILL_SPEC fill(1000, 10, 4); // 10 bits
    EXPECT_EQ(fill.digits(0), 3u);
    EXPECT_EQ(fill.digits(16), 3u);
    EXPECT_EQ(fill.digits(8), 4u);
    EXPECT_EQ(fill.digits(2), 10u);
    EXPECT_EQ(FILL_SPEC(0xFFF, 16, 3).digits(12), 4u); // 12 bits: 3.35 digits of 3.58 bits
}

TEST(fill_spec, a_value_wider_than_the_target_takes_is_cut_with_a_warning) {
    if (global_opts == nullptr) global_opts = new option_obj(true);
    FILL_SPEC narrow(0x1, 16, 1);
    narrow.check_fill_width(nullptr);
    EXPECT_EQ(narrow.width(), 8u);
    FILL_SPEC odd(0x123, 16, 3);
    odd.check_fill_width(nullptr);
    EXPECT_EQ(odd.width(), 16u);

    FILL_SPEC wide(0x123456789A, 16, 10);
    testing::internal::CaptureStderr();
    wide.check_fill_width(nullptr);
    fflush(stderr);
    std::string text = testing::internal::GetCapturedStderr();
    EXPECT_NE(text.find("fill value truncated to 4 bytes:  3456789a"), std::string::npos) << text;
    EXPECT_EQ(wide.value(), 0x3456789Au);
    EXPECT_EQ(wide.width(), 32u);
}
