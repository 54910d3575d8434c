// The four states, their guards and the pending error.
#include <gtest/gtest.h>

#include "../ofe_support.h"
#include "UTIL/file_handle_manager.h"

using namespace OFE;
using namespace ofe_test;

TEST(of_state, a_new_empty_file_passes_through_all_states) {
    FILE_PTR f = new_file();
    for (OF_STATE s : {OF_STATE_LOCKED, OF_STATE_FORMATTED}) {
        EXPECT_EQ(f->set_state(s), 0);
        EXPECT_EQ(f->state(), s);
    }
    BYTES b = saved(*f);
    EXPECT_EQ(f->state(), OF_STATE_SAVED);
    EXPECT_TRUE(errors.empty());
    FILE_PTR back = read_file(b);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->machine(), OF_MACHINE_ARM);
}

TEST(of_state, the_guards_say_where_the_object_is_and_where_it_must_be) {
    FILE_PTR f = new_file();
    OF_SECTION* s = f->section_table()->new_section(".data");
    EXPECT_EQ(f->min_state(OF_STATE_SAVED), -1);
    EXPECT_EQ(errors.back().text,
              "this OBJECT_FILE object is currently in the open state, and must be in at least the "
              "saved state to perform the requested operation ");
    ASSERT_EQ(f->set_state(OF_STATE_FORMATTED), 0);
    EXPECT_EQ(s->set_size(4), -1);
    EXPECT_EQ(errors.back().code, OF_ERROR_ILLEGAL);
    EXPECT_EQ(errors.back().text,
              "this OBJECT_FILE object is currently in the formatted state, and must be in at most "
              "the open state to perform the requested operation ");
    EXPECT_EQ(f->set_state(OF_STATE_LOCKED), -1);
    EXPECT_EQ(errors.back().text,
              "this OBJECT_FILE object is currently in the formatted state, and cannot revert to "
              "the locked state to perform the requested operation ");
    EXPECT_EQ(f->section_table()->new_section(".text"), nullptr);
    EXPECT_STREQ(OF_STATE_MACHINE::state_name(static_cast<OF_STATE>(9)), "unknown");
}

TEST(of_state, a_write_beyond_the_formatted_size_is_cut_to_what_fits) {
    FILE_PTR f = new_file();
    OF_SECTION* s = add_section(*f, ".data", "01234567");
    ASSERT_EQ(f->set_state(OF_STATE_FORMATTED), 0);
    EXPECT_EQ(s->write_to_raw_data("ABCDEFGH", 8, 4), -1);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].code, OF_ERROR_ILLEGAL);
    EXPECT_EQ(
        errors[0].text,
        "writing 0x8 bytes to offset 0x4 in section \".data\" exceeds its formatted size (0x8)");
    OF_BYTES b = s->bytes();
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(b.data), b.size), "0123ABCD");
    EXPECT_EQ(s->write_to_raw_data("x", 1, 8), -1);
    EXPECT_EQ(s->bytes().size, 8u);
}

TEST(of_state, writing_to_a_section_without_bytes_warns) {
    FILE_PTR f = new_file();
    OF_SECTION* s = f->section_table()->new_section(".bss");
    s->write_to_raw_data("x", 1, 0);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].code, OF_ERROR_WARNING);
    EXPECT_EQ(errors[0].text,
              "accessing the raw data of section \".bss\" which is uninitialized according to its "
              "section attributes; changes to raw data may be lost");
}

TEST(of_error, what_is_pending_stands_against_a_lesser_error) {
    struct {
        OF_ERROR_CODE pending, next;
        bool replaced;
    } const CASES[] = {
        {OF_ERROR_ILLEGAL, OF_ERROR_ILLEGAL, false},
        {OF_ERROR_CORRUPT, OF_ERROR_INTERNAL, false},
        {OF_ERROR_WARNING, OF_ERROR_TRUNCATED, false},
        {OF_ERROR_WARNING, OF_ERROR_ILLEGAL, true},
        {OF_ERROR_TRUNCATED, OF_ERROR_DEVELOPMENT, true},
        {OF_ERROR_DEVELOPMENT, OF_ERROR_WARNING, false},
        {OF_ERROR_DEVELOPMENT, OF_ERROR_DEVELOPMENT, false},
        {OF_ERROR_DEVELOPMENT, OF_ERROR_ACCESS, true},
    };
    for (auto& c : CASES) {
        FILE_PTR f = new_file();
        f->set_error_handler(nullptr);
        f->set_error(c.pending, "first %d", 1);
        f->set_error(c.next, "second");
        EXPECT_STREQ(f->error_text(), c.replaced ? "second" : "first 1")
            << c.pending << " then " << c.next;
        EXPECT_EQ(f->error_code(), c.replaced ? c.next : c.pending);
    }
    EXPECT_STREQ(OBJECT_FILE::error_code_name(OF_ERROR_CORRUPT), "corrupted object file");
    EXPECT_STREQ(OBJECT_FILE::error_code_name(static_cast<OF_ERROR_CODE>(99)), "unknown error");
}

TEST(of_symbol, the_end_of_a_chain_that_loops_is_the_symbol_itself) {
    FILE_PTR f = new_file();
    OF_SYMBOL* s[4];
    for (OF_SYMBOL*& p : s) p = f->symbol_table()->new_symbol();
    s[0]->set_resolved_by(s[1]);
    s[1]->set_resolved_by(s[2]);
    EXPECT_EQ(s[0]->resolved_by_final(), s[2]);
    s[2]->set_resolved_by(s[0]);
    EXPECT_EQ(s[0]->resolved_by_final(), s[0]);
    s[2]->set_resolved_by(s[1]); // a loop that the first symbol is not part of
    EXPECT_EQ(s[0]->resolved_by_final(), s[0]);
    EXPECT_EQ(s[3]->resolved_by_final(), s[3]);
}

TEST(of_file, first_bytes_that_are_no_format_give_no_object) {
    errors.clear();
    EXPECT_FALSE(read_file({}));
    EXPECT_FALSE(read_file(BYTES(64, 'x')));
    BYTES member(4, 0);
    EXPECT_FALSE(read_file(member));
    EXPECT_TRUE(errors.empty());
}
