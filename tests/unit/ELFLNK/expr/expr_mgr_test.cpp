#include "ELFLNK/expr/expr_mgr.h"

#include <gtest/gtest.h>

#include "ELFLNK/object/root_collection.h"

namespace {

EXPRESSION* symbol(const char* name) {
    return new EXPRESSION(EXPR_OP_SYMBOL, name, EXPR_BIND_STRONG, nullptr);
}
EXPRESSION* constant(int64_t value) {
    return new EXPRESSION(EXPR_OP_INT, value, nullptr);
}
EXPRESSION* assign(const char* name, EXPRESSION* value, uint32_t seq) {
    auto* expr = new EXPRESSION(EXPR_OP_ASSIGN, symbol(name), value, nullptr);
    expr->set_seq_id(seq);
    return expr;
}

} // namespace

TEST(expr_mgr, only_what_right_sides_name_is_referenced) {
    EXPR_MGR manager;
    EXPECT_FALSE(manager.is_refd("b"));
    manager.add_assignment(assign("a", symbol("b"), 1), root_collection, true);
    EXPECT_TRUE(manager.is_refd("b"));
    EXPECT_FALSE(manager.is_refd("a"));
    manager.add_refs(new EXPRESSION(EXPR_OP_ADD, symbol("c"), symbol("d"), nullptr));
    EXPECT_TRUE(manager.is_refd("c"));
    EXPECT_TRUE(manager.is_refd("d"));
}

TEST(expr_mgr, before_there_is_an_output_file_no_symbol_is_made) {
    EXPR_MGR manager;
    manager.add_assignment(assign("a", constant(1), 1), root_collection, true);
    ASSERT_EQ(manager.pending().size(), 1u);
    EXPECT_EQ(manager.pending()[0].symbol, nullptr);
    EXPECT_TRUE(manager.pending()[0].user);
}

TEST(expr_mgr, assignments_of_the_root_come_first_then_by_number) {
    EXPR_MGR manager;
    COLLECTION section("order", COLLECTION_GROUP);
    EXPRESSION* first = assign("s1", constant(1), 1);
    EXPRESSION* second = assign("r3", constant(1), 3);
    EXPRESSION* third = assign("r2", constant(1), 2);
    manager.add_assignment(first, &section, true);
    manager.add_assignment(second, root_collection, true);
    manager.add_assignment(third, root_collection, false);
    manager.check_for_redefs(true);
    ASSERT_EQ(manager.pending().size(), 3u);
    EXPECT_EQ(manager.pending()[0].expr, third);
    EXPECT_EQ(manager.pending()[1].expr, second);
    EXPECT_EQ(manager.pending()[2].expr, first);
    EXPECT_FALSE(third->is_user());
    manager.remove_assignment(second);
    EXPECT_EQ(manager.pending().size(), 2u);
}

TEST(expr_mgr, a_second_assignment_to_a_name_warns_once) {
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    EXPR_MGR manager;
    manager.add_assignment(assign("x", constant(1), 1), root_collection, true);
    manager.add_assignment(assign("x", constant(2), 2), root_collection, true);
    manager.check_for_redefs(true);
    manager.check_for_redefs(true);
    std::string text =
        testing::internal::GetCapturedStderr() + testing::internal::GetCapturedStdout();
    const std::string message = "absolute symbol \"x\" being redefined";
    size_t at = text.find(message);
    ASSERT_NE(at, std::string::npos);
    EXPECT_EQ(text.find(message, at + 1), std::string::npos);
}

TEST(expr_mgr, a_name_can_be_replaced_by_zero) {
    EXPR_MGR manager;
    EXPRESSION* expr =
        assign("a", new EXPRESSION(EXPR_OP_ADD, symbol("b"), symbol("a"), nullptr), 1);
    manager.replace_sym_with_zero(expr, "a");
    EXPECT_EQ(expr->get_string(), "a = b + 0x0");
}
