// Editing: what may change in which state, groups and their relocations, files saved again and
// again.
#include <gtest/gtest.h>

#include "../ofe_support.h"
#include "OBJEDIT04/elf/elf_reloc.h"
#include "UTIL/file_handle_manager.h"

using namespace OFE;
using namespace ofe_test;

TEST(elf_edit, a_symbol_changes_until_its_table_is_laid_out) {
    FILE_PTR f = sample(OF_ENDIAN_LITTLE);
    ASSERT_EQ(f->set_state(OF_STATE_LOCKED), 0);
    OF_SYMBOL* main = f->symbol_table()->symbol_name("main", 0);
    ASSERT_TRUE(main);
    EXPECT_EQ(main->set_value(0x1235), 0); // the encoded record follows
    OF_BYTES records = elf_api(f.get())->elf_symbol_table()->elf_section()->bytes();
    EXPECT_EQ(read_u32(records.data + main->id() * 16 + 4, false), 0x1235u);
    EXPECT_EQ(main->set_name("other"), -1);
    ASSERT_EQ(errors.size(), 1u);
    ASSERT_EQ(f->set_state(OF_STATE_FORMATTED), 0);
    BYTES b = saved(*f);
    ASSERT_EQ(f->symbol_table()->set_state(OF_STATE_SAVED), 0);
    errors.clear();
    EXPECT_EQ(main->set_value(7), -1);
    EXPECT_EQ(main->set_binding(OF_SYM_BINDING_WEAK), -1);
    EXPECT_EQ(main->value(), 0x1235u);
    ASSERT_EQ(errors.size(), 2u);
    EXPECT_EQ(errors[0].text,
              "this OBJECT_FILE object is currently in the saved state, and must be in at most the "
              "locked state to perform the requested operation ");
}

TEST(elf_edit, the_relocations_of_a_group_member_are_members) {
    FILE_PTR f = sample(OF_ENDIAN_BIG);
    OF_SECTION* once = f->section_table()->section_name(".text.once", 0);
    add_reloc(once, false, 0, ABS32, f->symbol_table()->symbol_name("main", 0));
    FILE_PTR g = read_file(saved(*f));
    ASSERT_TRUE(g);
    OF_SECTION* relocs = g->section_table()->section_name(".rel.text.once", 0);
    ASSERT_TRUE(relocs);
    OF_GROUP_TABLE* group = g->section_table()->raw_group(relocs->id());
    ASSERT_TRUE(group);
    EXPECT_STREQ(group->signature_name(), "once");
    EXPECT_EQ(group->member_num(), 2u);
    EXPECT_TRUE(errors.empty()) << errors[0].text;
}

TEST(elf_edit, a_deleted_member_leaves_its_group_and_an_empty_group_goes) {
    FILE_PTR f = read_file(saved(*sample(OF_ENDIAN_LITTLE)));
    OF_SECTION* once = f->section_table()->section_name(".text.once", 0);
    OF_GROUP_TABLE* group = f->section_table()->raw_group(once->id());
    ASSERT_TRUE(group);
    ASSERT_EQ(group->delete_member(0), 0);
    EXPECT_EQ(once->group(), nullptr);
    EXPECT_EQ(group->live_member_num(), 0u);
    FILE_PTR g = read_file(saved(*f));
    ASSERT_TRUE(g);
    EXPECT_EQ(g->section_table()->section_name("once", 0), nullptr);
    OF_RAW_SECTION raw;
    ASSERT_TRUE(g->section_table()->raw_section(
        g->section_table()->section_name(".text.once", 0)->id(), raw));
    EXPECT_EQ(raw.flags & SHF_GROUP, 0u);
}

TEST(elf_edit, links_of_types_that_nobody_knows_follow_their_sections) {
    FILE_PTR f = sample(OF_ENDIAN_LITTLE);
    ELF_SECTION* s = add_section(*f, ".companion", "x");
    s->set_sh_type(0x6FFF4C03);
    s->set_allocated(false);
    s->set_sh_link(elf_api(f.get())->symtab_index());
    FILE_PTR g = read_file(saved(*f));
    ASSERT_TRUE(g);
    OF_RAW_SECTION raw;
    ASSERT_TRUE(g->section_table()->raw_section(
        g->section_table()->section_name(".companion", 0)->id(), raw));
    EXPECT_STREQ(g->section_table()->section(raw.link)->name(), ".symtab");
}

TEST(elf_edit, what_was_changed_is_not_unloaded) {
    FILE_PTR f = read_file(saved(*sample(OF_ENDIAN_LITTLE)));
    OF_SYMBOL_TABLE* t = f->symbol_table();
    unsigned id = t->symbol_name("main", 0)->id();
    t->unload();
    EXPECT_EQ(t->loaded_symbol(id), nullptr);
    t->symbol(id)->set_value(0x99);
    t->unload();
    t->unload_symbol(id);
    EXPECT_EQ(t->symbol(id)->value(), 0x99u);
}

TEST(elf_edit, a_file_is_saved_over_itself_as_often_as_wanted) {
    BYTES once = saved(*sample(OF_ENDIAN_LITTLE));
    FILE_PTR f = read_file(once);
    TEMP_FILE temp;
    FHM_FILE* out = fhm_open(temp.name(), "wb+");
    ASSERT_EQ(f->save_obj(out), 0);
    for (int i = 0; i < 3; ++i) {
        OF_FILE_HANDLE handle = f->handle();
        ASSERT_EQ(f->reopen_for_editing(), 0);
        ASSERT_EQ(f->save(handle), 0);
        EXPECT_EQ(temp.bytes(), once);
    }
    f.reset();
    fhm_close(out);
    FILE_PTR by_name(new_OBJECT_FILE(temp.name(), keep_error));
    ASSERT_TRUE(by_name);
    EXPECT_EQ(by_name->save_obj(temp.name()), 0); // its name, too, is that of the file read
    by_name.reset();
    EXPECT_EQ(temp.bytes(), once);
    EXPECT_TRUE(errors.empty()) << errors[0].text;
}
