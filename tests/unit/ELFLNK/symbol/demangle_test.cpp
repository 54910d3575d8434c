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
