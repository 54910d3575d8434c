#include "ELFLNK/symbol/demangle.h"

#include <gtest/gtest.h>

TEST(demangle, link_names_become_source_names) {
    EXPECT_EQ(decode_id("_ZN3foo3barEi"), "foo::bar(int)");
    EXPECT_EQ(decode_id("_ZTV3foo"), "vtable for foo");
}

TEST(demangle, what_is_not_encoded_stays) {
    for (const char* name : {"main", "", "_Z", "_ZN99foo", "Z3foov"})
        EXPECT_EQ(decode_id(name), name);
    EXPECT_EQ(decode_id("_ZN3foo3barE"), "foo::bar");
}

TEST(demangle, a_name_beyond_all_bounds_stays) {
    const std::string name = "_Z" + std::string(100000, 'P') + "i";
    EXPECT_EQ(decode_id(name.c_str()), name);
}

TEST(demangle, subobject_variants_of_constructors_and_destructors_are_known) {
    for (const char* name : {"_ZN1AC2Ev", "_ZN1AD2Ev", "_ZN1N1AC2ERKS0_", "_ZN1AIiEC2Ei",
                             "_ZN1AC2IiEET_", "_ZN1TIN1U1VEEC2Ev", "_ZN1AC2B5cxx11Ev"})
        EXPECT_TRUE(decode_is_ia64_subobject(name)) << name;
    for (const char* name :
         {"_ZN1AC1Ev", "_ZN1AD0Ev", "_ZN1A2C2Ev", "_ZN2C21fEv", "_Z1fv",
          "_ZN1TIXadL_ZN1AC2EvEEE1fEv", "_ZN1A", "_ZN", "main", "", "_ZN9999999999999999999999C2E"})
        EXPECT_FALSE(decode_is_ia64_subobject(name)) << name;
}

TEST(demangle, each_scheme_has_its_decoder) {
    EXPECT_EQ(decode_id("_Z1fi", MANGLE_VENDOR), "_Z1fi");
    set_name_decoder(MANGLE_VENDOR, [](const char* name) {
        return std::string(name) == "f__Fi" ? std::string("f(int)") : std::string();
    });
    EXPECT_EQ(decode_id("f__Fi", MANGLE_VENDOR), "f(int)");
    EXPECT_EQ(decode_id("g__Fi", MANGLE_VENDOR), "g__Fi");
    EXPECT_EQ(decode_id("f__Fi"), "f__Fi");
    set_name_decoder(MANGLE_VENDOR, nullptr);
    EXPECT_EQ(decode_id("f__Fi", MANGLE_VENDOR), "f__Fi");
    EXPECT_EQ(decode_id("f__Fi", 7), "f__Fi");
}
