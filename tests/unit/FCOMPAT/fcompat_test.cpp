// Two files in memory are compared: what each rule says, and what it leaves in the baseline.
#include "FCOMPAT/fcompat.h"

#include <gtest/gtest.h>

#include "../OBJEDIT04/ofe_support.h"
#include "DIAG/fcompat_msgs.h"
#include "FCOMPAT/arm_fcompat.h"

using namespace OFE;
using namespace ofe_test;

namespace {

struct VALUE {
    const char* vendor;
    unsigned tag;
    unsigned uval;
    const char* str = "";
};
using VALUES = std::vector<VALUE>;
constexpr const char* ABI = "aeabi";

void set(OBJECT_FILE& file, const VALUE& value) {
    file.battr_create(value.vendor, value.tag)->val = {value.uval, value.str};
}

FILE_PTR file_with(const VALUES& values) {
    FILE_PTR file = new_file();
    for (const VALUE& value : values) set(*file, value);
    return file;
}

std::vector<std::string> texts(const FCOMPAT& checker) {
    std::vector<std::string> found;
    for (const auto& message : checker.errors())
        found.push_back(std::string(message->sev_str()) + ": " +
                        static_cast<const DIAG::MESSAGE_BASE&>(*message).text());
    return found;
}

// What is said of a file "new.o" against the baseline "base.o".
std::vector<std::string> compare(OBJECT_FILE& base, OBJECT_FILE& file, bool merge = true) {
    auto checker = FCOMPAT_FACTORY::get_fcompat(OF_MACHINE_ARM);
    checker->set_files(&base, "base.o", &file, "new.o");
    bool passed = checker->check_compatibility(merge);
    EXPECT_EQ(passed, checker->error_count() == 0);
    return texts(*checker);
}

using SAID = std::vector<std::string>;

std::string neq(const char* tag, const char* file, const char* base) {
    return std::string("error: file \"new.o\" has a ") + tag + " attribute value of \"" + file +
           "\" that is different than one previously seen (\"" + base +
           "\"); combining incompatible files";
}
std::string cpu(const char* tag, const char* file, const char* base) {
    return std::string("warning: file \"new.o\" has a ") + tag + " value of \"" + file +
           "\" while a previously seen file has a value of \"" + base + "\"";
}
const std::string NOT_HONORED =
    "error: file \"new.o\" does not preserve 8-byte alignment of 8-byte data, but other input "
    "files require this; incompatible files";
const std::string REQUIRED =
    "error: file \"new.o\" requires 8-byte alignment of 8-byte data, but not all input files "
    "preserve this; incompatible files";
std::string enums(const char* base, const char* file) {
    return std::string("warning: object files have incompatible enumeration types (\"base.o\" = ") +
           base + ", \"new.o\" = " + file + ")";
}
std::string fp(const char* file, const char* base) {
    return std::string("warning: file \"new.o\" was built for ") + file +
           " coprocessor support while a previously seen file was built for " + base +
           " coprocessor support";
}
std::string wchar(const char* base, const char* file) {
    return std::string("warning: object files have incompatible wchar_t types (\"base.o\" = ") +
           base + ", \"new.o\" = " + file + ")";
}

// One tag with an integer on each side: what is said, and the baseline's value afterwards.
struct UVAL_ROW {
    const char* vendor;
    unsigned tag;
    unsigned base;
    unsigned file;
    unsigned merged;
    SAID said;
};

class UvalRules : public ::testing::TestWithParam<UVAL_ROW> {};

// A second attribute keeps each list alive where the tag is absent.
TEST_P(UvalRules, compare_and_merge) {
    const UVAL_ROW& row = GetParam();
    auto make = [&row](unsigned value) {
        VALUES values = {{row.vendor, row.vendor == ABI ? 67u : 5u, 0, "x"}};
        if (value != 0) values.push_back({row.vendor, row.tag, value});
        return file_with(values);
    };
    FILE_PTR base = make(row.base), file = make(row.file);
    EXPECT_EQ(compare(*base, *file, false), row.said);
    EXPECT_EQ(base->battr_uval(row.vendor, row.tag), row.base) << "only a merge changes it";
    EXPECT_EQ(compare(*base, *file), row.said);
    EXPECT_EQ(base->battr_uval(row.vendor, row.tag), row.merged);
    EXPECT_EQ(file->battr_uval(row.vendor, row.tag), row.file);
}

const UVAL_ROW UVAL_ROWS[] = {
    // Equal, or one of the two doesn't say.
    {ABI, 7, 'M', 'M', 'M', {}},
    {ABI, 7, 0, 'M', 'M', {}},
    {ABI, 7, 'M', 0, 'M', {}},
    {ABI,
     7,
     'A',
     'M',
     'A',
     {neq("Tag_CPU_arch_profile", "Microcontroller profile", "Application profile")}},
    {ABI,
     17,
     1,
     2,
     1,
     {neq("Tag_ABI_PCS_GOT_use", "Imported data addressed by the GOT",
          "Imported data addressed directly")}},
    {ABI,
     38,
     1,
     2,
     1,
     {neq("Tag_ABI_FP_16bit_format", "VFPv3 alternative 16-bit FP numbers used",
          "IEEE 754 16-bit FP numbers used")}},
    {ABI, 38, 0, 2, 2, {}},
    // Configurations of the call standard.
    {ABI, 13, 0, 1, 0, {}},
    {ABI, 13, 1, 0, 1, {}},
    {ABI,
     13,
     1,
     2,
     1,
     {"warning: object files have incompatible PCS config attributes (\"base.o\" = \"Bare "
      "platform configuration\", \"new.o\" = \"Linux application configuration\")"}},
    // One value goes with all others.
    {ABI, 14, 3, 1, 1, {}},
    {ABI, 14, 1, 3, 1, {}},
    {ABI,
     14,
     0,
     1,
     0,
     {neq("Tag_ABI_PCS_R9_use", "R9 used as the static base",
          "R9 used as a callee-saved register")}},
    {ABI, 15, 3, 2, 2, {}},
    {ABI,
     15,
     0,
     2,
     0,
     {neq("Tag_ABI_PCS_RW_data", "RW static data addressed relative to the static base",
          "RW static data addressed absolutely")}},
    {ABI, 16, 2, 1, 1, {}},
    {ABI,
     16,
     0,
     1,
     0,
     {neq("Tag_ABI_PCS_RO_data", "RO static data addressed relative to the PC",
          "RO static data addressed absolutely")}},
    {ABI, 44, 1, 2, 2, {}},
    {ABI, 44, 2, 1, 2, {}},
    {ABI,
     44,
     0,
     2,
     0,
     {neq("Tag_DIV_use", "Integer division of the v7-A extension used",
          "Integer division used where the architecture has it")}},
    // wchar_t.
    {ABI, 18, 4, 0, 4, {}},
    {ABI, 18, 0, 2, 2, {}},
    {ABI, 18, 4, 2, 4, {wchar("--wchar_t=32", "--wchar_t=16")}},
    {ABI, 18, 2, 4, 2, {wchar("--wchar_t=16", "--wchar_t=32")}},
    // Enumerations.
    {ABI, 26, 0, 2, 2, {}},
    {ABI, 26, 1, 0, 1, {}},
    {ABI, 26, 2, 3, 2, {}},
    {ABI, 26, 3, 2, 3, {}},
    {ABI, 26, 1, 2, 1, {enums("packed", "32-bit")}},
    {ABI, 26, 3, 1, 3, {enums("32-bit", "packed")}},
    // Alignment, with the other tag absent on both sides.
    {ABI, 24, 0, 1, 0, {REQUIRED}},
    {ABI, 24, 1, 0, 1, {NOT_HONORED}},
    {ABI, 25, 1, 0, 0, {}},
    {ABI, 25, 0, 1, 0, {}},
    {ABI, 25, 4, 1, 1, {}},
    {ABI,
     29,
     0,
     1,
     0,
     {neq("Tag_ABI_WMMX_args", "WMMX arguments are passed in WMMX registers",
          "WMMX arguments are passed using the standard AAPCS variant")}},
    // Floating point.
    {ABI, 10, 0, 6, 6, {}},
    {ABI, 10, 6, 0, 6, {}},
    {ABI, 10, 3, 4, 4, {fp("VFPv3-D16", "VFPv3")}},
    {ABI, 10, 8, 1, 8, {fp("VFPv1", "ARM v8.1-A FP SP-D16")}},
    {ABI, 27, 1, 1, 1, {}},
    {ABI, 27, 0, 1, 3, {}},
    {ABI, 28, 1, 1, 1, {}},
    {ABI, 28, 3, 1, 1, {}},
    {ABI, 28, 0, 3, 0, {}},
    {ABI,
     28,
     0,
     1,
     0,
     {neq("Tag_ABI_VFP_args",
          "FP arguments are passed using the VFP register argument variant of the AAPCS",
          "FP arguments are passed using the standard AAPCS variant")}},
    {ABI,
     28,
     0,
     2,
     0,
     {"error: Vendor-specific FP calling conventions, as indicated by the Tag_ABI_VFP_args build "
      "attribute in \"new.o\", are not supported."}},
    {ABI,
     28,
     2,
     1,
     2,
     {"error: Vendor-specific FP calling conventions, as indicated by the Tag_ABI_VFP_args build "
      "attribute in \"base.o\", are not supported."}},
    // The architecture, by rank.
    {ABI, 6, 10, 11, 10, {}},
    {ABI, 6, 11, 10, 10, {}},
    {ABI, 6, 12, 11, 12, {}},
    {ABI, 6, 10, 13, 13, {}},
    {ABI, 6, 9, 11, 11, {}},
    {ABI, 6, 13, 17, 17, {}},
    {ABI, 6, 21, 17, 21, {}},
    {ABI, 6, 17, 22, 22, {}},
    // The larger, or the smaller, stays.
    {ABI, 8, 1, 0, 1, {}},
    {ABI, 9, 1, 3, 3, {}},
    {ABI, 11, 1, 2, 2, {}},
    {ABI, 12, 2, 1, 2, {}},
    {ABI, 19, 0, 1, 1, {}},
    {ABI, 20, 1, 2, 2, {}},
    {ABI, 21, 0, 1, 1, {}},
    {ABI, 22, 1, 0, 1, {}},
    {ABI, 23, 1, 3, 3, {}},
    {ABI, 30, 2, 4, 4, {}},
    {ABI, 31, 4, 2, 4, {}},
    {ABI, 34, 0, 1, 1, {}},
    {ABI, 36, 1, 0, 1, {}},
    {ABI, 42, 0, 1, 1, {}},
    {ABI, 46, 0, 1, 1, {}},
    {ABI, 48, 2, 1, 2, {}},
    {ABI, 50, 1, 2, 2, {}},
    {ABI, 52, 0, 2, 2, {}},
    {ABI, 66, 0, 1, 1, {}},
    {ABI, 68, 1, 2, 3, {}},
    {ABI, 72, 2, 1, 1, {}},
    {ABI, 74, 1, 0, 0, {}},
    {ABI, 76, 0, 1, 0, {}},
    // This vendor's.
    {"QV", 4, 0, 1, 1, {}},
    {"QV",
     4,
     1,
     2,
     1,
     {"fatal error: file \"new.o\" was built to be compatible with the Dinkumware RTS library, but "
      "a previously seen file was built to be compatible with the QV RTS library; combining "
      "incompatible files"}},
    {"QV", 6, 1, 0, 1, {}},
    {"QV", 6, 1, 2, 1, {neq("Tag_Exceptions", "2", "C++ Exceptions Supported")}},
    {"QV", 64, 1, 0, 0, {}},
    {"QV", 256, 3, 1, 3, {neq("Tag_ABI", "QV-ARM7 ABI", "ARM EABI")}},
    {"QV", 256, 0, 3, 3, {}},
    {"QV", 258, 11, 10, 10, {}},
    {"QV", 260, 1, 0, 0, {}},
    {"QV", 262, 0, 1, 1, {}},
    {"QV",
     266,
     'M',
     'R',
     'M',
     {neq("Tag_CPU_arch_profile", "Real-time profile", "Microcontroller profile")}},
    {"QV", 270, 2, 1, 1, {}},
    {"QV", 270, 1, 2, 1, {}},
    {"QV",
     270,
     0,
     1,
     0,
     {neq("Tag_Bitfield_layout", "Requires EABI Bitfield Layout",
          "Compatible with any Bitfield Layout")}},
    {"QV", 272, 1, 0, 0, {}},
    {"QV", 276, 0, 1, 1, {}},
    {"QV", 320, 2, 3, 5, {}},
    {"QV", 322, 0, 1, 1, {}},
    {"QV", 324, 1, 1, 1, {}},
    {"QV", 326, 1, 2, 2, {}},
};
INSTANTIATE_TEST_SUITE_P(Arm, UvalRules, ::testing::ValuesIn(UVAL_ROWS), [](const auto& row) {
    return std::string(row.param.vendor) + std::to_string(row.param.tag) + "_" +
           std::to_string(row.param.base) + "_" + std::to_string(row.param.file);
});

TEST(ArmFcompat, alignment_is_judged_by_both_tags) {
    struct ROW {
        unsigned base_needed, base_kept, file_needed, file_kept;
        SAID said;
        unsigned needed, kept;
    };
    const ROW rows[] = {
        {1, 1, 1, 1, {}, 1, 1},
        {0, 1, 1, 1, {}, 1, 1},
        {1, 1, 0, 0, {NOT_HONORED}, 1, 1},
        {0, 0, 1, 1, {REQUIRED}, 0, 0},
        {1, 1, 1, 0, {NOT_HONORED}, 1, 1},
        {1, 0, 1, 0, {NOT_HONORED, REQUIRED}, 1, 0},
        {2, 1, 0, 1, {}, 2, 1},         // 4 bytes
        {1, 4, 4, 4, {}, 4, 4},         // 16 bytes
        {1, 1, 4, 4, {REQUIRED}, 1, 1}, // 16 above 8
        {3, 3, 3, 3, {}, 3, 3},         // reserved
        {0, 1, 200, 200, {REQUIRED}, 0, 1},
    };
    for (const ROW& row : rows) {
        FILE_PTR base = file_with({{ABI, 24, row.base_needed}, {ABI, 25, row.base_kept}});
        FILE_PTR file = file_with({{ABI, 24, row.file_needed}, {ABI, 25, row.file_kept}});
        EXPECT_EQ(compare(*base, *file), row.said);
        EXPECT_EQ(base->abi_battr_uval(24), row.needed);
        EXPECT_EQ(base->abi_battr_uval(25), row.kept);
    }
}

TEST(ArmFcompat, processor_names_are_compared_without_case) {
    struct ROW {
        const char* base;
        const char* file;
        SAID said;
        const char* merged;
    };
    const ROW rows[] = {
        {"", "Cortex-M3", {}, "Cortex-M3"},
        {"Cortex-M3", "", {}, "Cortex-M3"},
        {"Cortex-M3", "CORTEX-m3", {}, "Cortex-M3"},
        {"7-M", "Cortex-M3", {"Cortex-M3"}, "7-M"},
    };
    for (unsigned tag : {4, 5})
        for (const ROW& row : rows) {
            FILE_PTR base = file_with({{ABI, 6, 10}, {ABI, tag, 0, row.base}});
            FILE_PTR file = file_with({{ABI, 6, 10}, {ABI, tag, 0, row.file}});
            SAID said;
            if (!row.said.empty())
                said.push_back(
                    cpu(tag == 4 ? "Tag_CPU_raw_name" : "Tag_CPU_name", row.file, row.base));
            EXPECT_EQ(compare(*base, *file), said);
            EXPECT_STREQ(base->abi_battr_str(tag), row.merged);
        }
}

TEST(ArmFcompat, a_toolset_that_a_file_demands_must_be_this_one) {
    FILE_PTR base = file_with({{ABI, 6, 10}});
    FILE_PTR file = file_with({{ABI, 32, 0, "acme"}});
    EXPECT_EQ(compare(*base, *file), SAID{});
    EXPECT_FALSE(base->abi_battr(32)) << "a flag of 0 demands nothing";
    file = file_with({{ABI, 32, 1, "QV"}});
    OFBA_ATTR_LIST* list = file->abi_battr_vendor_section()->file_list();
    list->new_attr(32)->val = {2, ""};
    EXPECT_EQ(compare(*base, *file), SAID{});
    EXPECT_EQ(compare(*base, *file), SAID{}) << "what is held is not added again";
    OFBA_ATTR_LIST* merged = base->abi_battr_vendor_section()->file_list();
    EXPECT_STREQ(merged->attr_tag(32, 0)->val.str, "QV");
    EXPECT_EQ(merged->attr_tag(32, 1)->val.uval, 2u);
    EXPECT_FALSE(merged->attr_tag(32, 2));
    file = file_with({{ABI, 32, 1, "acme"}});
    EXPECT_EQ(compare(*base, *file),
              SAID{"error: file \"new.o\" is not compatible with the QV toolset; it must be "
                   "processed using the acme toolset"});
}

TEST(ArmFcompat, argument_conventions_count_only_where_a_floating_point_interface_is_used) {
    auto make = [](unsigned args, unsigned unused) {
        return file_with({{ABI, 28, args}, {"QV", 274, unused}});
    };
    FILE_PTR base = make(0, 1), file = make(1, 0);
    EXPECT_EQ(compare(*base, *file), SAID{});
    EXPECT_EQ(base->abi_battr_uval(28), 1u);
    EXPECT_EQ(base->qv_battr_uval(274), 0u) << "from here on the output uses it";
    file = make(0, 1);
    EXPECT_EQ(compare(*base, *file), SAID{});
    base = make(1, 0);
    file = make(0, 0);
    EXPECT_EQ(compare(*base, *file).size(), 1u);
}

TEST(Fcompat, the_first_file_gives_its_attributes_to_the_output) {
    FILE_PTR output = new_file();
    FILE_PTR file = file_with({{ABI, 5, 0, "7-M"}, {ABI, 6, 10}, {ABI, 24, 1}, {ABI, 25, 1}});
    EXPECT_EQ(compare(*output, *file), SAID{});
    EXPECT_STREQ(output->abi_battr_str(5), "7-M");
    EXPECT_EQ(output->abi_battr_uval(24), 1u);
    EXPECT_FALSE(output->qv_battr_vendor_section());
    EXPECT_EQ(compare(*output, *new_file()), SAID{}) << "a file that says nothing is no matter";
}

TEST(Fcompat, one_subsection_that_is_missing_is_remarked) {
    FILE_PTR base = file_with({{ABI, 6, 10}, {"QV", 6, 1}});
    FILE_PTR file = file_with({{ABI, 6, 10}});
    EXPECT_EQ(compare(*base, *file),
              SAID{"remark: build attribute vendor section QV missing in \"new.o\": compatibility "
                   "cannot be determined"});
    EXPECT_EQ(compare(*file, *base, false),
              SAID{"remark: build attribute vendor section QV missing in \"base.o\": compatibility "
                   "cannot be determined"});
    EXPECT_EQ(compare(*file, *base), SAID{}) << "in a merge the output takes it over";
    EXPECT_EQ(file->qv_battr_uval(6), 1u);
}

TEST(Fcompat, attributes_of_sections_or_symbols_end_the_comparison) {
    auto said = [](const char* what) {
        return SAID{std::string("warning: file \"new.o\" contains ARM EABI ") + what +
                    " attributes which are not supported.  According to ARM document IHI 0045D, "
                    "these attributes are deprecated and optional.  Compatibility checking will "
                    "not be performed for this file; the user should verify compatibility."};
    };
    FILE_PTR base = file_with({{ABI, 6, 10}, {ABI, 7, 'A'}});
    for (int with : {1, 2, 3}) {
        FILE_PTR file = file_with({{ABI, 6, 13}, {ABI, 7, 'M'}});
        OFBA_VENDOR_SCN* scn = file->abi_battr_vendor_section();
        if (with & 1) scn->new_attrlist(Tag_Section);
        if (with & 2) scn->new_attrlist(Tag_Symbol);
        EXPECT_EQ(compare(*base, *file), said(with == 1   ? "section"
                                              : with == 2 ? "symbol"
                                                          : "section and symbol"));
        EXPECT_EQ(base->abi_battr_uval(6), 10u);
    }
}

TEST(Fcompat, byte_orders_and_machines_must_match_before_anything_else) {
    FILE_PTR base = file_with({{ABI, 7, 'A'}});
    FILE_PTR file = file_with({{ABI, 7, 'M'}});
    file->set_machine_endian(OF_ENDIAN_BIG);
    EXPECT_EQ(compare(*base, *file),
              SAID{"fatal error: object files have incompatible byte orderings (\"base.o\" = "
                   "little, \"new.o\" = big)"});
    FILE_PTR other(new_OBJECT_FILE(OF_FORMAT_ELF, OF_FORMAT_VER_ELF1,
                                   static_cast<OF_MACHINE>(OF_MACHINE_OTHER + 8), keep_error, "x"));
    const SAID said = compare(*base, *other);
    ASSERT_EQ(said.size(), 1u);
    EXPECT_EQ(said[0].find("fatal error: file \"new.o\" specifies machine \""), 0u) << said[0];
}

TEST(Fcompat, the_attributes_of_a_load_image_are_not_compared) {
    FILE_PTR base = file_with({{ABI, 7, 'A'}});
    FILE_PTR file = file_with({{ABI, 7, 'M'}});
    EXPECT_EQ(compare(*base, *file).size(), 1u);
    file->symbol_table()->new_symbol()->set_name(OBJECT_FILE::load_image_symbol_name());
    EXPECT_EQ(compare(*base, *file), SAID{});
    EXPECT_EQ(base->abi_battr_uval(7), unsigned{'A'});
    file->set_machine_endian(OF_ENDIAN_BIG);
    EXPECT_EQ(compare(*base, *file).size(), 1u);
}

TEST(Fcompat, versions_of_the_convention_must_match) {
    FILE_PTR base = new_file(), file = new_file();
    base->set_flags(0x05000000);
    file->set_flags(0x04000000);
    EXPECT_EQ(compare(*base, *file),
              SAID{"error: ABI version of \"base.o\" (5) is incompatible with \"new.o\" (4)"});
    file->set_flags(0x05000400);
    EXPECT_EQ(compare(*base, *file), SAID{});
}

TEST(Fcompat, a_limit_of_the_architecture_binds_where_there_is_one) {
    FILE_PTR base = new_file(), file = file_with({{ABI, 6, 13}});
    ARM_FCOMPAT checker;
    checker.set_files(base.get(), "base.o", file.get(), "new.o");
    EXPECT_TRUE(checker.check_compatibility(true));
    checker.set_isa_limit(10);
    checker.check_compatibility(true);
    EXPECT_EQ(texts(checker),
              SAID{"error: file \"new.o\" specifies ISA revision \"ARM v7E-M\", which is not "
                   "compatible with ISA revision \"ARM v7\" specified in a previous file or on "
                   "the command line"});
    checker.set_isa_limit(13);
    EXPECT_TRUE(checker.check_compatibility(true));
}

TEST(Fcompat, without_two_files_nothing_goes_together) {
    FILE_PTR base = new_file();
    ARM_FCOMPAT checker;
    checker.set_files(base.get(), nullptr, nullptr, nullptr);
    EXPECT_FALSE(checker.check_compatibility(true));
    EXPECT_EQ(checker.error_count(), 0u);
}

TEST(Fcompat, a_report_empties_the_queue_and_counts) {
    FILE_PTR base = file_with({{ABI, 7, 'A'}}), file = file_with({{ABI, 7, 'M'}});
    ARM_FCOMPAT checker;
    SOURCE_POSITION at("link.cmd", 7);
    checker.set_files(base.get(), nullptr, file.get(), nullptr, &at);
    EXPECT_FALSE(checker.check_compatibility(true));
    ASSERT_EQ(checker.error_count(), 1u);
    EXPECT_TRUE(at.is_equal(checker.errors()[0]->src()));
    const unsigned before = DIAGNOSTIC::error_count_m;
    checker.error_report();
    EXPECT_EQ(DIAGNOSTIC::error_count_m, before + 1);
    EXPECT_EQ(checker.error_count(), 0u);
}

// Rules that ARM's order doesn't use.
class OTHER_RULES : public FCOMPAT {
  public:
    using FCOMPAT::ba_exact_nonzero_custom_uval;
    using FCOMPAT::ba_exact_str;
    using FCOMPAT::ba_min_nonzero_uval;

    template <class RULE>
    unsigned apply(unsigned base_value, unsigned file_value, RULE rule) {
        FILE_PTR base = file_with({{ABI, 8, base_value}}), file = file_with({{ABI, 8, file_value}});
        FILE_PTR nothing = ofe_test::new_file();
        set_files(base.get(), "base.o", nothing.get(), "new.o");
        check_compatibility(true);
        rule(base->abi_battr_vendor_section()->file_list(),
             file->abi_battr_vendor_section()->file_list());
        return base->abi_battr_uval(8);
    }
};

TEST(Fcompat, rules_with_values_that_do_not_count) {
    OTHER_RULES r;
    auto least = [&r](auto* b, auto* f) { r.ba_min_nonzero_uval(8, b, f); };
    EXPECT_EQ(r.apply(0, 3, least), 3u);
    EXPECT_EQ(r.apply(5, 3, least), 3u);
    EXPECT_EQ(r.apply(5, 0, least), 5u);
    auto custom = [&r](auto* b, auto* f) { r.ba_exact_nonzero_custom_uval(8, b, f, 9); };
    EXPECT_EQ(r.apply(0, 3, custom), 3u);
    EXPECT_EQ(r.apply(9, 3, custom), 3u);
    EXPECT_EQ(r.apply(4, 9, custom), 4u);
    EXPECT_EQ(r.apply(4, 0, custom), 4u);
    EXPECT_EQ(r.error_count(), 0u);
    EXPECT_EQ(r.apply(1, 3, custom), 1u);
    EXPECT_EQ(r.error_count(), 1u);
}

TEST(Fcompat, texts_that_must_be_equal) {
    OTHER_RULES r;
    FILE_PTR base = file_with({{ABI, 67, 0, "2.09"}}), same = file_with({{ABI, 67, 0, "2.09"}});
    FILE_PTR other = file_with({{ABI, 67, 0, "2.10"}}), nothing = new_file();
    r.set_files(base.get(), "base.o", nothing.get(), "new.o");
    r.check_compatibility(true);
    auto list = [](FILE_PTR& file) { return file->abi_battr_vendor_section()->file_list(); };
    r.ba_exact_str(67, list(base), list(same));
    EXPECT_EQ(r.error_count(), 0u);
    r.ba_exact_str(67, list(base), list(other));
    EXPECT_EQ(texts(r), SAID{neq("Tag_conformance", "2.10", "2.09")});
}

} // namespace
