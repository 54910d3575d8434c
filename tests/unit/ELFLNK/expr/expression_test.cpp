#include "ELFLNK/expr/expression.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "DIAG/diagnostic.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/space.h"

namespace {

EXPRESSION* constant(int64_t value) {
    return new EXPRESSION(EXPR_OP_INT, value, nullptr);
}
EXPRESSION* symbol(const char* name) {
    return new EXPRESSION(EXPR_OP_SYMBOL, name, EXPR_BIND_STRONG, nullptr);
}
EXPRESSION* node(EXPR_OPCODE op, EXPRESSION* left, EXPRESSION* right = nullptr) {
    return new EXPRESSION(op, left, right, nullptr);
}

// What messages print while it lives.
class MESSAGES {
  public:
    MESSAGES() : file_(open_memstream(&text_, &size_)) { DIAGNOSTIC::fp_m = file_; }
    ~MESSAGES() {
        DIAGNOSTIC::fp_m = nullptr;
        fclose(file_);
        free(text_);
    }
    std::string text() {
        fflush(file_);
        return {text_, size_};
    }

  private:
    char* text_ = nullptr;
    size_t size_ = 0;
    FILE* file_;
};

struct BINARY {
    int64_t a;
    EXPR_OPCODE op;
    int64_t b;
    int64_t value;
};

constexpr int64_t least = INT64_MIN;

} // namespace

TEST(expression, binary_operators_are_signed_and_wrap) {
    const BINARY cases[] = {
        {3, EXPR_OP_ADD, 4, 7},      {3, EXPR_OP_SUB, 4, -1},    {INT64_MAX, EXPR_OP_ADD, 1, least},
        {3, EXPR_OP_MUL, -4, -12},   {-7, EXPR_OP_DIV, 2, -3},   {-7, EXPR_OP_MOD, 2, -1},
        {10, EXPR_OP_DIV, 0, 0},     {10, EXPR_OP_MOD, 0, 0},    {least, EXPR_OP_DIV, -1, least},
        {least, EXPR_OP_MOD, -1, 0}, {1, EXPR_OP_SHL, 12, 4096}, {-1, EXPR_OP_SHR, 1, -1},
        {1, EXPR_OP_SHL, 64, 0},     {-8, EXPR_OP_SHR, 70, -1},  {8, EXPR_OP_SHR, 70, 0},
        {12, EXPR_OP_AND, 10, 8},    {12, EXPR_OP_OR, 10, 14},   {12, EXPR_OP_XOR, 10, 6},
        {2, EXPR_OP_LAND, 4, 1},     {2, EXPR_OP_LAND, 0, 0},    {0, EXPR_OP_LOR, 0, 0},
        {0, EXPR_OP_LOR, 9, 1},      {1, EXPR_OP_EQ, 1, 1},      {1, EXPR_OP_NE, 1, 0},
        {-1, EXPR_OP_LT, 1, 1},      {1, EXPR_OP_LE, 1, 1},      {-1, EXPR_OP_GT, 1, 0},
        {1, EXPR_OP_GE, 2, 0},
    };
    MESSAGES messages;
    for (const BINARY& c : cases) {
        EXPRESSION* e = node(c.op, constant(c.a), constant(c.b));
        EXPECT_EQ(e->evaluate(nullptr), c.value) << e->get_string();
        EXPECT_EQ(e->status(), EXPR_EVALUATED);
    }
    EXPECT_EQ(messages.text(), "");
}

TEST(expression, unary_operators) {
    EXPECT_EQ(node(EXPR_OP_NEG, constant(5))->evaluate(nullptr), -5);
    EXPECT_EQ(node(EXPR_OP_NEG, constant(least))->evaluate(nullptr), least);
    EXPECT_EQ(node(EXPR_OP_COMPL, constant(0))->evaluate(nullptr), -1);
    EXPECT_EQ(node(EXPR_OP_NOT, constant(0))->evaluate(nullptr), 1);
    EXPECT_EQ(node(EXPR_OP_NOT, constant(7))->evaluate(nullptr), 0);
    EXPECT_EQ(node(EXPR_OP_PHY, constant(7))->evaluate(nullptr), 7);
    EXPECT_EQ(node(EXPR_OP_ALIGN, constant(3))->evaluate(nullptr), 3)
        << "without an object, the operand";
    EXPECT_EQ(EXPRESSION(EXPR_OP_NOP, nullptr).evaluate(nullptr), 0);
}

TEST(expression, placement_operators_need_an_object) {
    for (EXPR_OPCODE op : {EXPR_OP_DOT, EXPR_OP_RUN_START, EXPR_OP_LOAD_SIZE}) {
        MESSAGES messages;
        EXPRESSION* e = new EXPRESSION(op, nullptr);
        EXPECT_EQ(e->evaluate(nullptr), 0);
        EXPECT_EQ(e->status(), EXPR_FAILED);
        EXPECT_NE(messages.text().find("illegal expression"), std::string::npos) << e->opname();
    }
}

TEST(expression, a_missing_operand_is_an_illegal_expression) {
    MESSAGES messages;
    EXPRESSION* e = node(EXPR_OP_ADD, constant(1), nullptr);
    EXPECT_EQ(e->evaluate(nullptr), 0);
    EXPECT_TRUE(e->check_subtree_for_failure());
}

TEST(expression, an_object_without_a_place_fails_and_waits) {
    MESSAGES messages;
    auto* section = new COLLECTION(".expr_waits", COLLECTION_GROUP);
    EXPRESSION* e = new EXPRESSION(EXPR_OP_RUN_START, nullptr);
    EXPECT_EQ(e->evaluate(section), 0);
    EXPECT_EQ(e->status(), EXPR_FAILED);
    EXPECT_EQ(messages.text(), "");
}

TEST(expression, an_unknown_symbol_is_an_error_or_waits_silently) {
    MESSAGES messages;
    EXPRESSION* e = node(EXPR_OP_ADD, symbol("nobody_defines_this"), constant(1));
    EXPRESSION::silent_m = true;
    EXPECT_EQ(e->evaluate(nullptr), 1);
    EXPRESSION::silent_m = false;
    EXPECT_TRUE(e->reevaluation_required());
    EXPECT_EQ(messages.text(), "");
    EXPRESSION::suppress_order_of_eval_errors_m = true;
    e->evaluate(nullptr);
    EXPRESSION::suppress_order_of_eval_errors_m = false;
    EXPECT_TRUE(e->reevaluation_required());
    EXPECT_EQ(messages.text(), "");
    e->evaluate(nullptr);
    EXPECT_TRUE(e->check_subtree_for_failure());
    EXPECT_NE(messages.text().find("undefined symbol \"nobody_defines_this\" used in expression"),
              std::string::npos);
}

TEST(expression, align_must_be_a_power_of_two_in_a_dot_expression) {
    auto align = [](int64_t value) {
        return node(EXPR_OP_ASSIGN, new EXPRESSION(EXPR_OP_DOT, nullptr),
                    node(EXPR_OP_ALIGN, constant(value)));
    };
    DOT_EXPRESSION place(align(4), nullptr);
    for (int64_t good : {0, 1, 2, 8}) {
        MESSAGES messages;
        EXPECT_EQ(node(EXPR_OP_ALIGN, constant(good))->evaluate(&place), 0);
        EXPECT_EQ(messages.text(), "") << good;
    }
    MESSAGES messages;
    EXPECT_EQ(node(EXPR_OP_ALIGN, constant(3))->evaluate(&place), 0);
    EXPECT_NE(messages.text().find("illegal alignment value:  power of 2 required"),
              std::string::npos);
    SPACE other("<space>", 4);
    EXPECT_EQ(node(EXPR_OP_ALIGN, constant(4))->evaluate(&other), 0);
    EXPECT_NE(messages.text().find("illegal context for ALIGN operator"), std::string::npos);
}

TEST(expression, properties_of_memory_ranges) {
    memory_map->add(new MEMORY_RANGE("EXPR_RAM", 0x1000, 0x200));
    memory_map->add(new MEMORY_RANGE("EXPR_RAM", 0x8000, 0x10, MEMORY_RANGE::ATTR_ALL, 1));
    auto value = [](EXPR_OPCODE op, int64_t page) {
        return node(op, symbol("EXPR_RAM"), constant(page))->evaluate(nullptr);
    };
    EXPECT_EQ(value(EXPR_OP_MEM_START, 0), 0x1000);
    EXPECT_EQ(value(EXPR_OP_MEM_END, 0), 0x1200);
    EXPECT_EQ(value(EXPR_OP_MEM_SIZE, 0), 0x200);
    EXPECT_EQ(value(EXPR_OP_MEM_START, 1), 0x8000);
    MESSAGES messages;
    EXPECT_EQ(value(EXPR_OP_MEM_SIZE, 7), 0);
    EXPECT_NE(messages.text().find("MEM_SIZE(EXPR_RAM,7) has either invalid memory range or page."),
              std::string::npos);
}

TEST(expression, minusone_of_a_width) {
    EXPECT_EQ(EXPRESSION::minusone(0)->evaluate(nullptr), -1);
    EXPECT_EQ(EXPRESSION::minusone(32)->evaluate(nullptr), 0xFFFFFFFF);
    EXPECT_EQ(EXPRESSION::minusone(32)->get_string(), "0xffffffffffffffff & 0x1 << 0x20 - 0x1");
}

TEST(expression, text_and_names) {
    EXPRESSION* e = node(EXPR_OP_ASSIGN, symbol("a"),
                         node(EXPR_OP_ADD, node(EXPR_OP_NEG, symbol("b")), constant(16)));
    EXPECT_EQ(e->get_string(), "a = -(b) + 0x10");
    EXPECT_EQ(EXPRESSION(static_cast<EXPR_OPCODE>(77), nullptr).opname(), "<? 77>");
    EXPECT_EQ(EXPRESSION::opclass(77), 0u);
    EXPECT_EQ(EXPRESSION::opclass(EXPR_OP_LOAD_SIZE), 0x4au);
    EXPECT_EQ(EXPRESSION::opclass(EXPR_OP_ALIGN), 0x18u);
}

TEST(expression, dot_and_align_are_found_in_the_tree) {
    EXPRESSION* dot = new EXPRESSION(EXPR_OP_DOT, nullptr);
    EXPRESSION* plain = node(EXPR_OP_ASSIGN, symbol("a"), constant(1));
    EXPRESSION* with_dot = node(EXPR_OP_ASSIGN, symbol("a"), node(EXPR_OP_ADD, dot, constant(4)));
    EXPRESSION* to_dot = node(EXPR_OP_ASSIGN, dot, node(EXPR_OP_ALIGN, constant(16)));
    EXPECT_FALSE(plain->has_dot());
    EXPECT_TRUE(with_dot->has_dot());
    EXPECT_FALSE(with_dot->is_assign_to_dot());
    EXPECT_TRUE(to_dot->is_assign_to_dot());
    unsigned long align = 4;
    EXPECT_FALSE(plain->has_align(&align));
    EXPECT_TRUE(to_dot->has_align(&align));
    EXPECT_EQ(align, 16u);
    EXPECT_TRUE(with_dot->is_relocatable());
    EXPECT_FALSE(plain->is_relocatable());
    EXPECT_FALSE(with_dot->is_user_addr_op());
}

TEST(expression, references_are_those_of_the_right_side) {
    EXPRESSION* range = node(EXPR_OP_MEM_START, symbol("RAM"), constant(0));
    EXPRESSION* e = node(EXPR_OP_ASSIGN, symbol("a"),
                         node(EXPR_OP_ADD, symbol("b"), node(EXPR_OP_MUL, symbol("c"), range)));
    std::set<std::string> names;
    e->get_expr_refs(names);
    EXPECT_EQ(names, (std::set<std::string>{"b", "c"}));
}
