// The relocation rows: complete, found by every key, and sane as a table.
#include "OBJEDIT04/machine/reloc_template.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>

#include "OBJEDIT04/machine/reloc_type.h"

using namespace OFE;

namespace {

TEST(RelocTemplates, of_arm_are_complete) {
    EXPECT_EQ(arm_reloc_templates().size(), 73u);
    EXPECT_EQ(common_reloc_templates().size(), 0x23u);
}

TEST(RelocTemplates, are_found_by_id_and_nothing_else_is) {
    for (auto rows : {common_reloc_templates(), arm_reloc_templates()})
        for (const OF_RELOC_TEMPLATE& row : rows) EXPECT_EQ(reloc_template(row.id), &row);
    for (uint32_t id : {0u, 1u, 0xFFu, 0x123u, 0x2FFu, 0x349u, 0xFFFFFFFFu})
        EXPECT_EQ(reloc_template(id), nullptr);
}

TEST(RelocTemplates, of_aligned_places_mask_the_two_low_bits) {
    std::set<uint32_t> masked;
    for (const OF_RELOC_TEMPLATE& row : arm_reloc_templates())
        if (row.pc_mask != 0xFFFFFFFF) {
            EXPECT_EQ(row.pc_mask, 0xFFFFFFFCu);
            masked.insert(row.id);
        }
    EXPECT_EQ(masked,
              (std::set<uint32_t>{OFR_ARM_THM_PC8, OFR_ARM_THM_ALU_PREL_11_0, OFR_ARM_THM_PC12}));
}

TEST(RelocTemplates, compute_with_the_place_exactly_where_they_are_relative_to_it) {
    for (const OF_RELOC_TEMPLATE& row : arm_reloc_templates()) {
        bool uses_place =
            row.value == OFRV_S_A_P || row.value == OFRV_S_A_P_T || row.value == OFRV_B_A_P;
        EXPECT_EQ(row.pcrel(), uses_place) << row.name;
        bool uses_base = row.value == OFRV_S_A_B || row.value == OFRV_S_A_B_T;
        EXPECT_EQ(row.is(OFRT_SBREL), uses_base) << row.name;
    }
}

struct TYPE_ROW {
    const char* name;
    uint32_t number;
    uint32_t id;
};
constexpr TYPE_ROW TYPES[] = {
    {"R_ARM_NONE", 0, OFR_NONE},
    {"R_ARM_ABS32", 2, OFR_RELLONG},
    {"R_ARM_REL32", 3, OFR_PCRLONG},
    {"R_ARM_ABS16", 5, OFR_RELWORD},
    {"R_ARM_THM_CALL", 10, OFR_ARM_THM_CALL},
    {"R_ARM_CALL", 28, OFR_ARM_CALL},
    {"R_ARM_V4BX", 40, OFR_ARM_V4BX},
    {"R_ARM_THM_JUMP8", 103, OFR_ARM_THM_JUMP8},
};

TEST(RelocTypes, of_elf_are_found_by_number_name_and_template) {
    OF_MACHINE_RELTYPES& types = shared_machine_reltypes(OF_MACHINE_ARM, OF_FORMAT_ELF);
    for (const TYPE_ROW& row : TYPES) {
        const OF_RELOC_TYPE* type = types.by_machine_number(row.number);
        EXPECT_STREQ(type->name, row.name);
        EXPECT_EQ(type->template_id, row.id);
        EXPECT_EQ(types.by_name(row.name), type);
        EXPECT_EQ(types.by_template(row.id), type);
    }
}

TEST(RelocTypes, that_no_row_names_are_made_on_the_spot_and_stay) {
    OF_MACHINE_RELTYPES& types = shared_machine_reltypes(OF_MACHINE_ARM, OF_FORMAT_ELF);
    const OF_RELOC_TYPE* type = types.by_machine_number(0xF0);
    EXPECT_STREQ(type->name, "R_0xf0");
    EXPECT_EQ(type->rel_template, nullptr);
    EXPECT_EQ(types.by_machine_number(0xF0), type);
    OF_MACHINE_RELTYPES coff(OF_FORMAT_QVCOFF);
    EXPECT_STREQ(coff.by_machine_number(0x12)->name, "R_0x0012");
    EXPECT_EQ(coff.by_template(OFR_RELLONG), nullptr);
}

} // namespace
