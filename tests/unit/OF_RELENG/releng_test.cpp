// Relocations applied in an executable that is built in memory: operands, modes, weak references,
// limits, messages.
#include "OF_RELENG/releng.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "DIAG/diagnostic.h"
#include "OBJEDIT04/machine/arm_machine_db.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_reloc.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OF_RELENG/arm/arm_fields.h"

using namespace OFE;

namespace {

constexpr unsigned V4T = 2, V5TE = 4, V7 = 10;
constexpr uint32_t TEXT = 0x8000;

class Releng : public ::testing::Test {
  protected:
    void SetUp() override {
        DIAGNOSTIC::wrap_enabled_m = false;
        make(OF_ENDIAN_LITTLE, V7);
    }

    void make(OF_ENDIAN endian, unsigned isa) {
        OF_RELENG::forget_symbols();
        file_.reset(
            new_OBJECT_FILE(OF_FORMAT_ELF, OF_FORMAT_VER_ELF1, OF_MACHINE_ARM, nullptr, "out.elf"));
        ASSERT_TRUE(file_);
        file_->set_file_type(OF_FILE_TYPE_EXECUTABLE);
        file_->set_machine_endian(endian);
        ARM_MACHINE_DB::of(file_.get())->set_isa_version(isa);
        big_ = endian == OF_ENDIAN_BIG;
        text_ = new_section(".text", TEXT);
    }

    OF_SECTION* new_section(const char* name, uint32_t address) {
        OF_SECTION* section = file_->section_table()->new_section(name);
        section->set_run_addr(address);
        return section;
    }

    OF_SYMBOL* symbol(const char* name, uint32_t value, OF_SYM_TYPE type = OF_SYM_TYPE_NONE,
                      OF_SYM_BINDING binding = OF_SYM_BINDING_GLOBAL) {
        OF_SYMBOL* made = file_->symbol_table()->new_symbol();
        made->set_name(name);
        made->set_binding(binding);
        made->set_type(type);
        made->set_section(text_);
        made->set_value(value);
        return made;
    }

    OF_SYMBOL* undefined(const char* name, OF_SYM_BINDING binding) {
        OF_SYMBOL* made = symbol(name, 0, OF_SYM_TYPE_NONE, binding);
        made->set_kind(OF_SYM_KIND_UNDEFINED);
        return made;
    }

    void mapping(const char* name, uint32_t address) {
        symbol(name, address, OF_SYM_TYPE_NONE, OF_SYM_BINDING_LOCAL);
    }

    // One instruction at the start of the section, one relocation of it, relocated at the section's
    // address.
    uint32_t relocate(OF_SECTION* section, OF_RELOC_ID id, uint32_t code, OF_SYMBOL* target) {
        return apply(section, id, code, target, false, 0);
    }
    uint32_t relocate_rela(OF_SECTION* section, OF_RELOC_ID id, uint32_t code, OF_SYMBOL* target,
                           int addend) {
        return apply(section, id, code, target, true, addend);
    }

    uint32_t apply(OF_SECTION* section, OF_RELOC_ID id, uint32_t code, OF_SYMBOL* target, bool rela,
                   int addend) {
        const OF_RELOC_TEMPLATE& tmpl = *reloc_template(id);
        thumb32_ = id >= OFR_ARM_PC24 && std::string(tmpl.name).find("THM") != std::string::npos &&
                   tmpl.container_size == 32;
        unsigned bytes = tmpl.container_bytes();
        section->write_to_raw_data(std::vector<uint8_t>(bytes).data(), bytes, 0);
        uint8_t* p = section->writable_bytes(0, bytes);
        if (bytes == 4)
            thumb32_ ? put_thumb32(p, big_, code) : put_arm(p, big_, code);
        else if (bytes == 2)
            write_u16(p, static_cast<uint16_t>(code), big_);
        else if (bytes == 1)
            p[0] = static_cast<uint8_t>(code);
        OF_RELOC* rel = section->new_reloc(rela);
        rel->set_type(file_->reloc_type(id));
        rel->set_scnrel_offset(0);
        rel->set_symbol(target);
        if (rela) rel->set_addend(addend);
        OF_RELENG engine(section);
        FILE* messages = open_memstream(&text_of_messages_, &size_of_messages_);
        DIAGNOSTIC::fp_m = messages;
        engine.relocate(section->run_addr());
        DIAGNOSTIC::fp_m = nullptr;
        fclose(messages);
        messages_ = text_of_messages_;
        free(text_of_messages_);
        has_error_ = engine.has_error();
        p = section->writable_bytes(0, bytes);
        if (bytes == 2) return read_u16(p, big_);
        if (bytes == 1) return p[0];
        return thumb32_ ? get_thumb32(p, big_) : get_arm(p, big_);
    }

    std::unique_ptr<OBJECT_FILE> file_;
    OF_SECTION* text_ = nullptr;
    bool big_ = false;
    bool thumb32_ = false;
    bool has_error_ = false;
    char* text_of_messages_ = nullptr;
    size_t size_of_messages_ = 0;
    std::string messages_;
};

struct VALUE_ROW {
    OF_RELOC_ID id;
    uint32_t code;
    uint32_t symbol;
    OF_SYM_TYPE type;
    uint32_t result;
};

// All at address 0x8000.
constexpr VALUE_ROW VALUES[] = {
    {OFR_RELLONG, 4, 0x20000100, OF_SYM_TYPE_OBJECT, 0x20000104},
    {OFR_RELLONG, 0, 0x9001, OF_SYM_TYPE_FUNCTION, 0x9001},
    {OFR_RELLONG, 2, 0x9001, OF_SYM_TYPE_FUNCTION, 0x9003},
    {OFR_PCRLONG, 0, 0x7000, OF_SYM_TYPE_OBJECT, 0xFFFFF000},
    {OFR_RELWORD, 1, 0x1234, OF_SYM_TYPE_OBJECT, 0x1235},
    {OFR_ARM_ABS8, 1, 0x7E, OF_SYM_TYPE_OBJECT, 0x7F},
    {OFR_ARM_PREL31, 0x80000004, 0x7000, OF_SYM_TYPE_OBJECT, 0xFFFFF004},
    {OFR_ARM_TARGET1, 0, 0x9001, OF_SYM_TYPE_FUNCTION, 0x9001},
    {OFR_ARM_TARGET2, 8, 0x9000, OF_SYM_TYPE_OBJECT, 0x9008},
    {OFR_ARM_JUMP24, 0xEAFFFFFE, 0x9000, OF_SYM_TYPE_NONE, 0xEA0003FE},
    {OFR_ARM_THM_CALL, 0xF7FFFFFE, 0x9001, OF_SYM_TYPE_FUNCTION, 0xF000FFFE},
    {OFR_ARM_THM_JUMP24, 0xF7FFBFFE, 0x9001, OF_SYM_TYPE_FUNCTION, 0xF000BFFE},
    {OFR_ARM_THM_JUMP11, 0xE7FE, 0x8010, OF_SYM_TYPE_NONE, 0xE006},
    {OFR_ARM_THM_JUMP8, 0xD1FE, 0x8010, OF_SYM_TYPE_NONE, 0xD106},
    {OFR_ARM_MOVW_ABS_NC, 0xE3000004, 0x12345678, OF_SYM_TYPE_OBJECT, 0xE305067C},
    {OFR_ARM_MOVW_ABS_NC, 0xE30F0FFC, 0x12345678, OF_SYM_TYPE_OBJECT, 0xE3050674}, // addend -4
    {OFR_ARM_MOVT_ABS, 0xE3400004, 0x1234FFFE, OF_SYM_TYPE_OBJECT,
     0xE3410235}, // carry into the upper half
    {OFR_ARM_MOVT_ABS, 0xE34F0FFC, 0x12350000, OF_SYM_TYPE_OBJECT, 0xE3410234}, // addend -4: borrow
    {OFR_ARM_THM_MOVW_ABS_NC, 0xF2400000, 0x12349001, OF_SYM_TYPE_FUNCTION, 0xF2490001},
    {OFR_ARM_THM_MOVT_ABS, 0xF2C00000, 0x12345678, OF_SYM_TYPE_OBJECT, 0xF2C12034},
    {OFR_ARM_MOVW_PREL_NC, 0xE3000000, 0x8234, OF_SYM_TYPE_OBJECT, 0xE3000234},
    {OFR_ARM_MOVT_PREL, 0xE3400000, 0x00018000, OF_SYM_TYPE_OBJECT, 0xE3400001},
};

TEST_F(Releng, stores_what_the_formula_gives) {
    for (OF_ENDIAN endian : {OF_ENDIAN_LITTLE, OF_ENDIAN_BIG})
        for (const VALUE_ROW& row : VALUES) {
            make(endian, V7);
            uint32_t got = relocate(text_, row.id, row.code, symbol("s", row.symbol, row.type));
            EXPECT_EQ(got, row.result) << reloc_template(row.id)->name << " " << std::hex << got;
            EXPECT_EQ(messages_, "");
        }
}

TEST_F(Releng, changes_nothing_for_a_marker) {
    for (OF_RELOC_ID id : {OFR_NONE, OFR_ARM_V4BX}) {
        make(OF_ENDIAN_LITTLE, V7);
        const uint8_t code[4] = {0x1E, 0xFF, 0x2F, 0xE1};
        text_->write_to_raw_data(code, sizeof code, 0);
        relocate(text_, id, 0, symbol("s", 0x9000));
        EXPECT_EQ(get_arm(text_->writable_bytes(0, 4), false), 0xE12FFF1Eu);
        EXPECT_EQ(messages_, "");
    }
}

TEST_F(Releng, takes_the_addend_of_a_rela_entry_and_not_the_field) {
    OF_SYMBOL* s = symbol("s", 0x9000);
    EXPECT_EQ(relocate_rela(text_, OFR_RELLONG, 0x1111, s, -8), 0x8FF8u);
    make(OF_ENDIAN_LITTLE, V7);
    s = symbol("s", 0x9000);
    EXPECT_EQ(relocate_rela(text_, OFR_ARM_JUMP24, 0xEA000000, s, -8), 0xEA0003FEu);
    make(OF_ENDIAN_LITTLE, V7);
    s = symbol("s", 0x12350000, OF_SYM_TYPE_OBJECT);
    EXPECT_EQ(relocate_rela(text_, OFR_ARM_MOVT_ABS, 0xE3400000, s, -4), 0xE3410234u);
}

TEST_F(Releng, leaves_the_thumb_bit_out_of_debug_sections) {
    OF_SECTION* debug = new_section(".debug_info", 0);
    EXPECT_EQ(relocate(debug, OFR_RELLONG, 0, symbol("f", 0x9001, OF_SYM_TYPE_FUNCTION)), 0x9000u);
}

// --- modes

TEST_F(Releng, turns_a_call_of_thumb_code_into_blx) {
    EXPECT_EQ(relocate(text_, OFR_ARM_CALL, 0xEBFFFFFE, symbol("f", 0x9001, OF_SYM_TYPE_FUNCTION)),
              0xFA0003FEu);
    make(OF_ENDIAN_LITTLE, V7); // a target at an odd halfword sets H
    EXPECT_EQ(relocate(text_, OFR_ARM_CALL, 0xEBFFFFFE, symbol("f", 0x9003, OF_SYM_TYPE_FUNCTION)),
              0xFB0003FEu);
}

TEST_F(Releng, turns_a_call_out_of_thumb_code_into_blx_to_the_word) {
    mapping("$a", 0x9000);
    OF_SYMBOL* f = symbol("f", 0x9000, OF_SYM_TYPE_FUNCTION);
    EXPECT_EQ(relocate(text_, OFR_ARM_THM_CALL, 0xF7FFFFFE, f), 0xF000EFFEu);
    make(OF_ENDIAN_LITTLE, V7); // from an odd halfword the offset is rounded up
    text_->set_run_addr(TEXT + 2);
    mapping("$a", 0x9000);
    f = symbol("f", 0x9000, OF_SYM_TYPE_FUNCTION);
    EXPECT_EQ(relocate(text_, OFR_ARM_THM_CALL, 0xF7FFFFFE, f), 0xF000EFFEu);
}

TEST_F(Releng, keeps_calls_within_a_mode) {
    mapping("$a", 0x9000);
    EXPECT_EQ(relocate(text_, OFR_ARM_CALL, 0xFAFFFFFE, symbol("f", 0x9000, OF_SYM_TYPE_FUNCTION)),
              0xEB0003FEu);
}

TEST_F(Releng, cannot_convert_before_v5t_nor_a_plain_branch) {
    make(OF_ENDIAN_LITTLE, V4T);
    EXPECT_EQ(relocate(text_, OFR_ARM_CALL, 0xEBFFFFFE, symbol("f", 0x9001, OF_SYM_TYPE_FUNCTION)),
              0xEB0003FEu);
    make(OF_ENDIAN_LITTLE, V7);
    EXPECT_EQ(
        relocate(text_, OFR_ARM_JUMP24, 0xEAFFFFFE, symbol("f", 0x9001, OF_SYM_TYPE_FUNCTION)),
        0xEA0003FEu);
}

TEST_F(Releng, uses_mapping_symbols_where_a_function_has_no_thumb_bit) {
    mapping("$t.1", 0x8800);
    EXPECT_EQ(relocate(text_, OFR_RELLONG, 0, symbol("f", 0x9000, OF_SYM_TYPE_FUNCTION)), 0x9001u);
}

// --- weak and missing symbols

struct WEAK_ROW {
    OF_RELOC_ID id;
    uint32_t code;
    unsigned isa;
    uint32_t result;
};
constexpr WEAK_ROW WEAK[] = {
    {OFR_ARM_CALL, 0xEBFFFFFE, V7, 0xE1A00000},
    {OFR_ARM_JUMP24, 0xEAFFFFFE, V5TE, 0xE1A00000},
    {OFR_ARM_THM_CALL, 0xF7FFFFFE, V7, 0xBF00BF00},
    {OFR_ARM_THM_CALL, 0xF7FFFFFE, V5TE, 0x46C046C0},
    {OFR_ARM_THM_JUMP24, 0xF7FFBFFE, V7, 0xBF00BF00},
    {OFR_ARM_THM_JUMP11, 0xE7FE, V7, 0xBF00},
    {OFR_ARM_THM_JUMP19, 0xF43FAFFE, V7, 0xBF00BF00},
    {OFR_RELLONG, 0, V7, 0},
    {OFR_RELLONG, 4, V7, 4},
    {OFR_PCRLONG, 4, V7, 4},
    {OFR_ARM_MOVW_ABS_NC, 0xE3001234, V7, 0xE3001234},
};

TEST_F(Releng, resolves_unresolved_weak_symbols_to_nops_the_place_or_zero) {
    for (OF_ENDIAN endian : {OF_ENDIAN_LITTLE, OF_ENDIAN_BIG})
        for (const WEAK_ROW& row : WEAK) {
            make(endian, row.isa);
            uint32_t got = relocate(text_, row.id, row.code, undefined("w", OF_SYM_BINDING_WEAK));
            EXPECT_EQ(got, row.result) << reloc_template(row.id)->name << " " << std::hex << got;
            EXPECT_EQ(messages_, "");
        }
}

// --- limits

struct LIMIT_ROW {
    OF_RELOC_ID id;
    uint32_t code;
    int64_t target; // the last address in reach
    int step;       // to the first one out of reach
};
// From 0x8000: targets of the largest and smallest offset that the field holds.
constexpr LIMIT_ROW LIMITS[] = {
    {OFR_ARM_CALL, 0xEBFFFFFE, 0x8008 + 0x1FFFFFC, 4},
    {OFR_ARM_THM_JUMP24, 0xF7FFBFFE, 0x8004 + 0xFFFFFE, 2},
    {OFR_ARM_THM_JUMP19, 0xF43FAFFE, 0x8004 + 0xFFFFE, 2},
    {OFR_ARM_THM_JUMP11, 0xE7FE, 0x8004 + 0x7FE, 2},
    {OFR_ARM_THM_JUMP11, 0xE7FE, 0x8004 - 0x800, -2},
    {OFR_ARM_THM_JUMP8, 0xD1FE, 0x8004 + 0xFE, 2},
    {OFR_ARM_THM_JUMP8, 0xD1FE, 0x8004 - 0x100, -2},
    {OFR_RELWORD, 0, 0xFFFF, 1},
    {OFR_ARM_ABS8, 0, 0xFF, 1},
    {OFR_ARM_PREL31, 0, 0x8000 + 0x3FFFFFFF, 1},
};

TEST_F(Releng, reports_the_first_value_out_of_reach_and_none_before) {
    for (const LIMIT_ROW& row : LIMITS) {
        make(OF_ENDIAN_LITTLE, V7);
        relocate(text_, row.id, row.code, symbol("s", static_cast<uint32_t>(row.target)));
        EXPECT_EQ(messages_, "") << reloc_template(row.id)->name;
        EXPECT_FALSE(has_error_);
        make(OF_ENDIAN_LITTLE, V7);
        relocate(text_, row.id, row.code,
                 symbol("s", static_cast<uint32_t>(row.target + row.step)));
        EXPECT_NE(messages_.find("too large to encode"), std::string::npos)
            << reloc_template(row.id)->name;
        EXPECT_TRUE(has_error_);
    }
}

TEST_F(Releng, reaches_less_with_a_thumb_call_before_v6t2) {
    make(OF_ENDIAN_LITTLE, V5TE);
    relocate(text_, OFR_ARM_THM_CALL, 0xF7FFFFFE,
             symbol("f", 0x8005 + 0x3FFFFE, OF_SYM_TYPE_FUNCTION));
    EXPECT_EQ(messages_, "");
    make(OF_ENDIAN_LITTLE, V5TE);
    relocate(text_, OFR_ARM_THM_CALL, 0xF7FFFFFE,
             symbol("f", 0x8005 + 0x400000, OF_SYM_TYPE_FUNCTION));
    EXPECT_NE(messages_.find("22-bit"), std::string::npos) << messages_;
}

TEST_F(Releng, reports_an_overflow_with_its_operands) {
    relocate(text_, OFR_ARM_THM_JUMP8, 0xD1FE, symbol("far", 0x8200));
    EXPECT_EQ(messages_, "warning: relocation to symbol \"far\" overflowed; the 9-bit relocated "
                         "address 0xfe is too large to "
                         "encode in the 8-bit signed PC-Relative field (type = 'R_ARM_THM_JUMP8' "
                         "(103), file = \"out.elf\", "
                         "offset = 0x00000000, section = \".text\")\n"
                         "warning: relocation operand A = 0xfffffffffffffffc\n"
                         "warning: relocation operand S = 0x8200\n"
                         "warning: relocation operand P = 0x8000\n");
}

TEST_F(Releng, shows_a_negative_value_in_whole_digits) {
    relocate(text_, OFR_ARM_THM_JUMP8, 0xD1FE, symbol("far", 0x7E00));
    EXPECT_NE(messages_.find("the 10-bit relocated address 0xefe is too large"), std::string::npos)
        << messages_;
}

TEST_F(Releng, reports_a_type_without_support_and_leaves_its_field) {
    EXPECT_EQ(relocate(text_, OFR_ARM_GOT_ABS, 0x12345678, symbol("s", 0x9000)), 0x12345678u);
    EXPECT_EQ(messages_, "warning: relocation type is not supported (type = 'R_ARM_GOT_ABS' (95), "
                         "file = \"out.elf\", "
                         "offset = 0x00000000, section = \".text\")\n");
}

TEST_F(Releng, reports_a_place_outside_the_section_and_goes_on) {
    OF_SYMBOL* target = symbol("s", 0x9000);
    const uint8_t zeros[6] = {};
    text_->write_to_raw_data(zeros, sizeof zeros, 0);
    for (unsigned offset : {3u, 6u, 0xFFFFFFFEu, 1u}) {
        OF_RELOC* rel = text_->new_reloc(false);
        rel->set_type(file_->reloc_type(OFR_RELLONG));
        rel->set_scnrel_offset(offset);
        rel->set_symbol(target);
    }
    char* text = nullptr;
    size_t size = 0;
    DIAGNOSTIC::fp_m = open_memstream(&text, &size);
    OF_RELENG engine(text_);
    engine.relocate(TEXT);
    fclose(DIAGNOSTIC::fp_m);
    DIAGNOSTIC::fp_m = nullptr;
    std::string messages = text;
    free(text);
    int count = 0;
    for (size_t at = 0; (at = messages.find("error: relocation lies outside its section", at)) !=
                        std::string::npos;
         ++at)
        ++count;
    EXPECT_EQ(count, 3) << messages;
    EXPECT_TRUE(engine.has_error());
    EXPECT_EQ(read_u32(text_->bytes().data + 1, false), 0x9000u);
}

TEST_F(Releng, splits_an_offset_over_a_group) {
    OF_SYMBOL* s = symbol("s", TEXT + 0x12345, OF_SYM_TYPE_OBJECT);
    EXPECT_EQ(relocate_rela(text_, OFR_ARM_ALU_PC_G0_NC, 0xE28F0000, s, 0), 0xE28F0B48u); // 0x12000
    make(OF_ENDIAN_LITTLE, V7);
    text_->set_run_addr(0x20000);
    s = symbol("s", 0x20000 - 0x12340, OF_SYM_TYPE_OBJECT);
    EXPECT_EQ(relocate_rela(text_, OFR_ARM_ALU_PC_G1, 0xE28F0000, s, 0),
              0xE24F0FD0u); // 0x340, subtracted
    EXPECT_EQ(messages_, "");
}

// --- relocation expressions

// One operation: what it pushes, as a constant, or the symbol's value.
struct EXPR_OP {
    OF_RELOC_ID id;
    int constant = 0;
};
struct EXPR_CASE {
    const char* what;
    std::vector<EXPR_OP> ops;
    uint32_t stored;
};

class Releng_expr : public Releng {
  protected:
    // Runs the operations at the start of the section; a store goes to 16 bits at bit 8 of a word.
    uint32_t run(const std::vector<EXPR_OP>& ops, uint32_t word = 0xFFFFFFFF) {
        uint8_t bytes[4];
        put_arm(bytes, big_, word);
        text_->write_to_raw_data(bytes, 4, 0);
        OF_RELENG engine(text_);
        engine.set_bytes(text_->writable_bytes(0, 4), 4);
        engine.set_run_addr(TEXT);
        FILE* messages = open_memstream(&text_of_messages_, &size_of_messages_);
        DIAGNOSTIC::fp_m = messages;
        OF_SYMBOL* s = symbol("s", 0x120);
        RELOC_SYMBOL target;
        target.input = target.final = s;
        target.value = 0x120;
        target.known = true;
        for (const EXPR_OP& op : ops) {
            OF_RELOC_TYPE type{reloc_template(op.id)->name, 0, op.id, reloc_template(op.id)};
            RELOC_SITE site;
            site.type = &type;
            site.rel = type.rel_template;
            site.addend = op.constant;
            site.symbol = type.has_symbol() ? &target : nullptr;
            site.field_size = 16;
            site.field_offset = 8;
            site.container_size = 32;
            engine.process_reloc(site);
        }
        DIAGNOSTIC::fp_m = nullptr;
        fclose(messages);
        messages_ = text_of_messages_;
        free(text_of_messages_);
        return get_arm(text_->writable_bytes(0, 4), big_);
    }
};

TEST_F(Releng_expr, combine_what_was_pushed_and_store_it_in_a_field) {
    auto two = [](int a, int b, OF_RELOC_ID op, OF_RELOC_ID store = OFRE_XSTFLD) {
        return std::vector<EXPR_OP>{{OFRE_PUSHSK, a}, {OFRE_PUSHSK, b}, {op}, {store}};
    };
    const EXPR_CASE CASES[] = {
        {"add", two(0x1200, 0x34, OFRE_ADD), 0x1234},
        {"subtract", two(3, 5, OFRE_SUB), 0xFFFE},
        {"multiply", two(-3, 5, OFRE_MPY), 0xFFF1},
        {"divide", two(-100, 7, OFRE_DIV), 0xFFF2},
        {"divide by nothing", two(100, 0, OFRE_DIV), 0},
        {"rest", two(-100, 7, OFRE_MOD), 0xFFFE},
        {"rest by nothing", two(100, 0, OFRE_MOD), 0},
        {"and", two(0x0FF0, 0x3C3C, OFRE_AND), 0x0C30},
        {"or", two(0x0FF0, 0x3003, OFRE_OR), 0x3FF3},
        {"exclusive or", two(0x0FF0, 0x00FF, OFRE_XOR), 0x0F0F},
        {"shift left", two(0x12, 4, OFRE_SL), 0x0120},
        {"shift right of a sign", two(-0x100, 4, OFRE_ASR), 0xFFF0},
        {"shift right by all bits", two(-1, 128, OFRE_SR), 0},
        {"shift right by more than all, of a sign", two(-1, 1000, OFRE_ASR), 0xFFFF},
        {"shift by less than nothing", two(1, -1, OFRE_SL), 0},
        {"shift right of a sign without it",
         {{OFRE_PUSHSK, -1}, {OFRE_PUSHSK, 116}, {OFRE_SR}, {OFRE_USTFLD}},
         0x0FFF},
        {"negate", {{OFRE_PUSHSK, 5}, {OFRE_NEG}, {OFRE_SSTFLD}}, 0xFFFB},
        {"complement", {{OFRE_PUSHSK, 5}, {OFRE_NOTB}, {OFRE_SSTFLD}}, 0xFFFA},
        {"a constant without a sign",
         {{OFRE_PUSHUK, -1}, {OFRE_PUSHSK, 16}, {OFRE_SR}, {OFRE_USTFLD}},
         0xFFFF},
        {"twice the top", {{OFRE_PUSHSK, 7}, {OFRE_DUP}, {OFRE_MPY}, {OFRE_USTFLD}}, 49},
        {"the symbol less the place",
         {{OFRE_PUSH}, {OFRE_PUSHPC}, {OFRE_SUB}, {OFRE_XSTFLD}},
         (0x120 - TEXT) & 0xFFFF},
        {"a field, without a sign",
         {{OFRE_ULDFLD}, {OFRE_PUSHSK, 1}, {OFRE_SR}, {OFRE_USTFLD}},
         0x7FFF},
        {"a field, with its sign",
         {{OFRE_SLDFLD}, {OFRE_PUSHSK, 1}, {OFRE_SUB}, {OFRE_SSTFLD}},
         0xFFFE},
        {"in wide steps",
         {{OFRE_PUSHSK, 0x7FFFFFFF},
          {OFRE_DUP},
          {OFRE_MPY},
          {OFRE_DUP},
          {OFRE_PUSHSK, 0x7FFFFFFF},
          {OFRE_DIV},
          {OFRE_DIV},
          {OFRE_PUSHSK, 20},
          {OFRE_SR},
          {OFRE_USTFLD}},
         0x7FF},
    };
    for (OF_ENDIAN endian : {OF_ENDIAN_LITTLE, OF_ENDIAN_BIG})
        for (const EXPR_CASE& c : CASES) {
            make(endian, V7);
            EXPECT_EQ(run(c.ops), 0xFF0000FF | c.stored << 8) << c.what;
            EXPECT_EQ(messages_, "") << c.what;
        }
}

TEST_F(Releng_expr,
       an_operation_without_operands_is_reported_and_nothing_is_stored_but_by_a_store) {
    EXPECT_EQ(run({{OFRE_PUSHSK, 1}, {OFRE_ADD}}), 0xFFFFFFFFu);
    EXPECT_EQ(messages_, "warning: insufficient operands available on the relocation expression "
                         "stack for relocation operation OFRE_ADD\n");
    for (OF_RELOC_ID id : {OFRE_NEG, OFRE_NOTB, OFRE_DUP, OFRE_XSTFLD}) {
        make(OF_ENDIAN_LITTLE, V7);
        run({{id}});
        EXPECT_NE(messages_.find(reloc_template(id)->name), std::string::npos) << messages_;
    }
}

TEST_F(Releng_expr, a_store_checks_its_field) {
    EXPECT_EQ(run({{OFRE_PUSHSK, 0x12345}, {OFRE_USTFLD}}), 0xFF2345FFu);
    EXPECT_EQ(
        messages_.substr(0, 98),
        "warning: relocation overflowed; the 17-bit relocated address 0x12345 is too large to "
        "encode in the");
}

// --- numbers that no file may use

TEST_F(Releng, obsolete_and_reserved_types_are_errors_and_leave_the_field) {
    const struct {
        unsigned number;
        const char* text;
    } CASES[] = {
        {14, "error: relocation type is obsolete, and no longer supported (type = 'R_ARM_THM_SWI8' "
             "(14), file = \"out.elf\", offset = 0x00000000, section = \".text\")\n"},
        {252, "error: Illegal use of a reserved relocation type, R_ARM_RREL32; input file "
              "\"out.elf\" is invalid\n"},
        {95, "warning: relocation type is not supported (type = 'R_ARM_GOT_ABS' (95), file = "
             "\"out.elf\", offset = 0x00000000, section = \".text\")\n"},
    };
    for (const auto& c : CASES) {
        make(OF_ENDIAN_LITTLE, V7);
        text_->write_to_raw_data("abcd", 4, 0);
        OF_RELOC* rel = text_->new_reloc(false);
        rel->set_type(file_->machine_reloc_type(c.number));
        rel->set_scnrel_offset(0);
        OF_RELENG engine(text_);
        FILE* messages = open_memstream(&text_of_messages_, &size_of_messages_);
        DIAGNOSTIC::fp_m = messages;
        engine.relocate(TEXT);
        DIAGNOSTIC::fp_m = nullptr;
        fclose(messages);
        EXPECT_STREQ(text_of_messages_, c.text);
        free(text_of_messages_);
        EXPECT_EQ(std::memcmp(text_->bytes().data, "abcd", 4), 0);
        EXPECT_TRUE(engine.has_error());
    }
}

} // namespace
