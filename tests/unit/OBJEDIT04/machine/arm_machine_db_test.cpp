// What the machine database says of a file built in memory: mapping symbols, architecture, byte
// order of code.
#include "OBJEDIT04/machine/arm_machine_db.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "OBJEDIT04/elf/elf_section.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"

using namespace OFE;

namespace {

class ArmMachineDb : public ::testing::Test {
  protected:
    void SetUp() override {
        file_.reset(
            new_OBJECT_FILE(OF_FORMAT_ELF, OF_FORMAT_VER_ELF1, OF_MACHINE_ARM, nullptr, "a.o"));
        file_->set_file_type(OF_FILE_TYPE_EXECUTABLE);
        db_ = ARM_MACHINE_DB::of(file_.get());
        text_ = file_->section_table()->new_section(".text");
        text_->set_run_addr(0x8000);
    }
    void symbol(const char* name, uint32_t value, OF_SYM_BINDING binding = OF_SYM_BINDING_LOCAL) {
        OF_SYMBOL* made = file_->symbol_table()->new_symbol();
        made->set_name(name);
        made->set_binding(binding);
        made->set_section(text_);
        made->set_value(value);
    }
    // A build attributes section that says tag = value for each pair of file scope in "aeabi".
    void attributes(std::vector<uint8_t> pairs) {
        std::vector<uint8_t> body = {1}; // scope
        put_size(body, 5 + pairs.size());
        body.insert(body.end(), pairs.begin(), pairs.end());
        std::vector<uint8_t> section = {'A'};
        put_size(section, 4 + 6 + body.size());
        for (char c : {'a', 'e', 'a', 'b', 'i', '\0'}) section.push_back(static_cast<uint8_t>(c));
        section.insert(section.end(), body.begin(), body.end());
        OF_SECTION* made = file_->section_table()->new_section(".ARM.attributes");
        elf_api(made)->set_sh_type(SHT_ATTRIBUTES);
        made->write_to_raw_data(section.data(), static_cast<unsigned>(section.size()), 0);
    }
    static void put_size(std::vector<uint8_t>& to, size_t size) {
        for (int i = 0; i < 4; ++i) to.push_back(static_cast<uint8_t>(size >> (8 * i)));
    }

    std::unique_ptr<OBJECT_FILE> file_;
    ARM_MACHINE_DB* db_ = nullptr;
    OF_SECTION* text_ = nullptr;
};

TEST_F(ArmMachineDb, knows_mapping_symbols_with_and_without_a_suffix) {
    EXPECT_EQ(ARM_MACHINE_DB::mapping_sym_mode("$a"), ARM_TYPES::SM_ARM);
    EXPECT_EQ(ARM_MACHINE_DB::mapping_sym_mode("$t.12"), ARM_TYPES::SM_THUMB);
    EXPECT_EQ(ARM_MACHINE_DB::mapping_sym_mode("$d."), ARM_TYPES::SM_DATA);
    for (const char* other : {"", "$", "$ab", "$x", "a", "$a1"})
        EXPECT_EQ(ARM_MACHINE_DB::mapping_sym_mode(other), ARM_TYPES::SM_UNKNOWN) << other;
}

TEST_F(ArmMachineDb, takes_the_last_mapping_symbol_at_or_below_an_address) {
    symbol("$d", 0x8020);
    symbol("$t", 0x8010);
    symbol("$a", 0x8000);
    symbol("$a", 0x8018, OF_SYM_BINDING_GLOBAL); // only locals count
    EXPECT_EQ(db_->section_mode_addr(text_, 0x8000), ARM_TYPES::SM_ARM);
    EXPECT_EQ(db_->section_mode_addr(text_, 0x800F), ARM_TYPES::SM_ARM);
    EXPECT_EQ(db_->section_mode_addr(text_, 0x801C), ARM_TYPES::SM_THUMB);
    EXPECT_EQ(db_->section_mode_addr(text_, 0x9000), ARM_TYPES::SM_DATA);
    symbol("$t", 0x8800); // added after the first question
    EXPECT_EQ(db_->section_mode_addr(text_, 0x9000), ARM_TYPES::SM_THUMB);
}

TEST_F(ArmMachineDb, falls_back_on_profile_and_use_of_instruction_sets) {
    EXPECT_EQ(db_->section_mode_addr(text_, 0x8000), ARM_TYPES::SM_ARM);
    OF_SECTION* data = file_->section_table()->new_section(".data");
    EXPECT_EQ(db_->section_mode_addr(data, 0), ARM_TYPES::SM_UNKNOWN);
    attributes({8, 0, 9, 2});
    EXPECT_EQ(db_->section_mode_addr(text_, 0x8000), ARM_TYPES::SM_THUMB);
    db_->set_isa_profile('M');
    EXPECT_EQ(db_->section_mode_addr(text_, 0x8000), ARM_TYPES::SM_THUMB);
}

TEST_F(ArmMachineDb, reads_the_architecture_from_the_attributes) {
    attributes({5, 'x', 0, 6, 13, 7, 'M', 67, 'y', 0, 8, 0});
    EXPECT_EQ(db_->find_isa_version(), 13u);
    EXPECT_EQ(db_->find_isa_profile(), unsigned{'M'});
    db_->set_isa_version(10, false);
    EXPECT_EQ(db_->find_isa_version(), 13u);
    db_->set_isa_version(14);
    EXPECT_EQ(db_->find_isa_version(), 14u);
}

TEST_F(ArmMachineDb, names_the_architectures) {
    EXPECT_STREQ(ARM_MACHINE_DB::isa_version_name(1), "ARM v4");
    EXPECT_STREQ(ARM_MACHINE_DB::isa_version_name(6), "ARM v6");
    EXPECT_STREQ(ARM_MACHINE_DB::isa_version_name(13), "ARM v7E-M");
    EXPECT_STREQ(ARM_MACHINE_DB::isa_version_name(17), "ARM v8-M.mainline");
    EXPECT_STREQ(ARM_MACHINE_DB::isa_version_name(0), "unknown");
    EXPECT_STREQ(ARM_MACHINE_DB::isa_version_name(99), "unknown");
}

TEST_F(ArmMachineDb, swaps_code_by_its_mode_and_twice_is_as_before) {
    const uint8_t code[10] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    text_->write_to_raw_data(code, sizeof code, 0);
    symbol("$a", 0x8000);
    symbol("$t", 0x8004);
    symbol("$d", 0x8008);
    db_->swap_be8_code(text_);
    const uint8_t swapped[10] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9};
    EXPECT_EQ(std::memcmp(text_->bytes().data, swapped, sizeof swapped), 0);
    db_->swap_be8_code(text_);
    EXPECT_EQ(std::memcmp(text_->bytes().data, code, sizeof code), 0);
}

TEST_F(ArmMachineDb, swaps_nothing_where_no_mapping_symbol_says_code) {
    const uint8_t code[8] = {0, 1, 2, 3, 4, 5, 6, 7};
    text_->write_to_raw_data(code, sizeof code, 0);
    db_->swap_be8_code(text_);
    EXPECT_EQ(std::memcmp(text_->bytes().data, code, sizeof code), 0);
    EXPECT_FALSE(db_->is_mapped_from_start(text_));
    symbol("$t", 0x8004);
    db_->swap_be8_code(text_);
    const uint8_t swapped[8] = {0, 1, 2, 3, 5, 4, 7, 6};
    EXPECT_EQ(std::memcmp(text_->bytes().data, swapped, sizeof swapped), 0);
    EXPECT_FALSE(db_->is_mapped_from_start(text_));
    symbol("$d", 0x8000);
    EXPECT_TRUE(db_->is_mapped_from_start(text_));
}

TEST_F(ArmMachineDb, keeps_the_code_byte_order_in_the_header) {
    file_->set_flags(0x05000000);
    EXPECT_EQ(db_->eabi_version(), 5u);
    db_->set_be_enc(1);
    EXPECT_EQ(file_->flags(), 0x05800000u);
    EXPECT_EQ(db_->be_enc(), 1u);
    db_->set_be_enc(2);
    EXPECT_EQ(file_->flags(), 0x05000000u);
    EXPECT_EQ(db_->be_enc(), 2u);
}

} // namespace
