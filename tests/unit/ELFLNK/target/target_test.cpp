// The target's tables, and what its convention says of names.
#include "ELFLNK/target/arm/arm_arch_types.h"
#include "ELFLNK/target/arm/arm_eabi.h"
#include "ELFLNK/target/arm/arm_target.h"
#include "ELFLNK/target/init_order.h"
#include "OBJEDIT04/attributes/build_attr_table.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OPTIONGEN/option_obj.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace {

TEST(InitOrder, numbered_entries_come_first_in_ascending_order) {
    std::vector<std::string> names = {
        ".init_array:b.o",   ".init_array.00200.x", ".init_array:a.o",       ".init_array.00100.x",
        ".init_array.5:c.o", ".init_array.100",     ".init_array.00100:last"};
    std::stable_sort(names.begin(), names.end(), init_precedes);
    EXPECT_EQ(names,
              (std::vector<std::string>{".init_array.5:c.o", ".init_array.00100.x",
                                        ".init_array.00100:last", ".init_array.00200.x",
                                        ".init_array:b.o", ".init_array:a.o", ".init_array.100"}));
}

TEST(InitOrder, a_number_stands_between_separators) {
    const struct {
        const char* name;
        int64_t priority; // -1: none
    } cases[] = {{".init_array.100", -1},
                 {".init_array.100.", 100},
                 {".init_array.100$x", 100},
                 {".init_array.1a.", -1},
                 {".a..7:", 7},
                 {"12.", -1},
                 {":3:4:", 3},
                 {"", -1},
                 {".", -1}};
    for (const auto& c : cases) {
        const auto priority = init_priority(c.name);
        EXPECT_EQ(priority ? static_cast<int64_t>(*priority) : -1, c.priority) << c.name;
    }
    EXPECT_EQ(init_priority(".99999999999999999999999."), ~uint64_t{0});
}

TEST(ArmArchTypes, names_give_version_and_profile) {
    const struct {
        const char* name;
        unsigned value, version, profile;
        bool v5e, v6, v7;
    } cases[] = {{"4", 61, 2, 0, false, false, false},   {"5E", 62, 4, 0, true, false, false},
                 {"6", 63, 6, 0, true, true, false},     {"6m0", 64, 11, 'M', true, true, false},
                 {"7A8", 65, 10, 'A', true, true, true}, {"7m4", 67, 13, 'M', true, true, true},
                 {"7R5", 69, 0, 0, true, true, true},    {"8", 10, 0, 0, true, true, true},
                 {nullptr, 0, 0, 0, false, false, false}};
    for (const auto& c : cases) {
        ARM_ARCH_TYPES arch;
        arch.set(c.name);
        EXPECT_EQ(arch.value(), c.value);
        EXPECT_EQ(arch.isa_version(), c.version);
        EXPECT_EQ(arch.profile(), c.profile);
        EXPECT_EQ(arch.is_v5e_or_higher(), c.v5e);
        EXPECT_EQ(arch.is_v6_or_higher(), c.v6);
        EXPECT_EQ(arch.is_v7_or_higher(), c.v7);
    }
    ARM_ARCH_TYPES past;
    past.set(70u);
    EXPECT_FALSE(past.is_v5e_or_higher());
}

class Convention : public testing::Test {
  protected:
    Convention() { global_opts = new option_obj(true); }
    ARM_EABI abi_;
};

TEST_F(Convention, a_base_name_ends_at_the_subsection) {
    const struct {
        const char *name, *base;
    } cases[] = {{".text:main", ".text"},
                 {".text.main", ".text.main"},
                 {".text", ".text"},
                 {":odd:x", ":odd"},
                 {".debug_info:x.o", ".debug_info"},
                 {".debug.line", ".debug"},
                 {".rel.text", ".rel"},
                 {".QV.section.flags:1", ".QV.section.flags"}};
    for (const auto& c : cases) EXPECT_EQ(abi_.section_base_name(c.name), c.base) << c.name;
}

TEST_F(Convention, names_of_the_object_format_are_reserved) {
    for (const char* name :
         {".debug_str", ".rela.dyn", ".symtab", ".comment", "__QV_ICODE", ".gnu.version_r"})
        EXPECT_TRUE(abi_.section_name_is_reserved(name)) << name;
    for (const char* name : {".text", ".re", ".symtab2", ".icode", ".gnu.version.x", ""})
        EXPECT_FALSE(abi_.section_name_is_reserved(name)) << name;
}

TEST_F(Convention, some_contents_belong_to_the_linker) {
    EXPECT_TRUE(abi_.linker_controls_section_contents(".ARM.exidx"));
    EXPECT_STREQ(abi_.linker_controlled_section_diag_name(".ARM.exidx"), "EXIDX");
    EXPECT_FALSE(abi_.linker_controls_section_contents(".cinit"));
    EXPECT_FALSE(abi_.section_cannot_be_copied(".cinit"));
    global_opts->setopt(OPT_rom_model);
    EXPECT_TRUE(abi_.linker_controls_section_contents(".cinit"));
    EXPECT_TRUE(abi_.section_cannot_be_copied(".cinit"));
    EXPECT_TRUE(abi_.section_cannot_be_copied(".stack"));
    EXPECT_FALSE(abi_.section_cannot_be_copied(".text"));
}

TEST_F(Convention, it_may_be_asked_only_once_options_are_final) {
    ARM_TARGET target;
    EXPECT_EXIT(target.abi(), testing::ExitedWithCode(1), "options not finalized yet");
    target.finalize_options();
    EXPECT_STREQ(target.abi()->stack_end_symbol_name(), "__STACK_END");
    EXPECT_EQ(target.abi()->default_stack_size(), 0x800u);
}

TEST_F(Convention, the_entry_point_needs_a_c_model_or_a_name) {
    ARM_TARGET target;
    EXPECT_EQ(target.entry_point_name(), nullptr);
    global_opts->setopt(OPT_ram_model);
    EXPECT_STREQ(target.entry_point_name(), "_c_int00");
    global_opts->setopt(OPT_no_entry_point);
    EXPECT_EQ(target.entry_point_name(), nullptr);
    global_opts->clearopt(OPT_no_entry_point);
    global_opts->setopt(OPT_entry_point, "Reset");
    EXPECT_STREQ(target.entry_point_name(), "Reset");
}

TEST_F(Convention, a_shared_library_needs_a_platform) {
    global_opts->setopt(OPT_shared);
    ARM_TARGET target;
    testing::internal::CaptureStderr();
    target.finalize_options();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "warning: --shared option should be specified along with --platform; --shared\n   "
              "ignored\n");
    EXPECT_FALSE(global_opts->isopt(OPT_shared));
}

TEST_F(Convention, options_that_exclude_each_other_are_reported) {
    global_opts->setopt(OPT_hide, "a");
    global_opts->setopt(OPT_make_global, "b");
    ARM_TARGET target;
    testing::internal::CaptureStderr();
    target.finalize_options();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "error: --hide option conflicts with previous option --make_global\n");
}

TEST_F(Convention, macros_follow_the_silicon_version) {
    global_opts->setopt(OPT_silicon_version, "7M4");
    ARM_TARGET target;
    std::vector<std::string> macros;
    target.target_enter_predefined_macros(macros);
    EXPECT_EQ(macros, (std::vector<std::string>{"__ALPINE__=1", "__QV_ARM__=1", "__QV_ARM_V7__=1",
                                                "__QV_ARM_V7M__=1", "__QV_ARM_V7M4__=1"}));
}

// References to conversions of objects that this vendor's compiler made before it named them apart.
TEST(ArmTarget, old_objects_with_a_coprocessor_mean_the_conversions_for_it) {
    const struct {
        const char* producer;
        unsigned major, minor, patch, fp;
        const char* name;
        const char* after;
    } cases[] = {{"QV", 4, 5, 2, 3, "__aeabi_l2f", "__aeabi_l2f_QV_VFP"},
                 {"QV", 4, 4, 9, 3, "__aeabi_d2ulz", "__aeabi_d2ulz_QV_VFP"},
                 {"QV", 4, 5, 3, 3, "__aeabi_l2f", "__aeabi_l2f"},
                 {"QV", 5, 0, 0, 3, "__aeabi_l2f", "__aeabi_l2f"},
                 {"QV", 4, 5, 2, 0, "__aeabi_l2f", "__aeabi_l2f"},
                 {"QV", 4, 5, 2, 3, "__aeabi_fadd", "__aeabi_fadd"},
                 {"other", 4, 5, 2, 3, "__aeabi_l2f", "__aeabi_l2f"}};
    for (const auto& c : cases) {
        const std::unique_ptr<OFE::OBJECT_FILE> file(OFE::new_OBJECT_FILE(
            OFE::OF_FORMAT_ELF, OFE::OF_FORMAT_VER_ELF1, OFE::OF_MACHINE_ARM, nullptr, "a.o"));
        file->set_producer(c.producer, c.major, c.minor, c.patch);
        file->abi_battr_create(10)->val.uval = c.fp;
        OFE::OF_SYMBOL* symbol = file->symbol_table()->new_symbol();
        symbol->set_name(c.name);
        EXPECT_EQ(Target->wants_update_symbol(c.name), std::string(c.name) != "__aeabi_fadd");
        Target->update_symbol(symbol);
        EXPECT_STREQ(symbol->name(), c.after) << c.producer << c.patch << c.fp;
    }
}

} // namespace
