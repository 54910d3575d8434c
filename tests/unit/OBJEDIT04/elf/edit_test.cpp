// Editing: what may change in which state, groups and their relocations, files saved again and
// again.
#include <gtest/gtest.h>

#include <cstring>
#include <tuple>

#include "../ofe_support.h"
#include "OBJEDIT04/attributes/build_attr_table.h"
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

TEST(elf_edit, a_section_0_that_is_none_gets_a_null_section_before_it) {
    BYTES b = saved(*sample(OF_ENDIAN_LITTLE));
    const unsigned shoff = read_u32(&b[32], false);
    FILE_PTR f = read_file(b);
    const unsigned data = f->section_table()->section_name(".data", 0)->id();
    std::memcpy(&b[shoff], &b[shoff + 40 * data],
                40); // ".data" once more, in the place of section 0
    errors.clear();
    f = read_file(b);
    ASSERT_TRUE(f);
    EXPECT_TRUE(errors.empty());
    const unsigned sections = f->section_table()->scnnum();
    ASSERT_EQ(f->set_state(OF_STATE_LOCKED), 0);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].code, OF_ERROR_INTERNAL);
    EXPECT_EQ(errors[0].text, "section 0 is not a NULL section");
    FILE_PTR g = read_file(saved(*f));
    ASSERT_TRUE(g);
    EXPECT_EQ(g->section_table()->scnnum(), sections + 1);
    EXPECT_STREQ(g->section_table()->section(0)->name(), "");
    unsigned copies = 0;
    for (unsigned i = 0; i < g->section_table()->scnnum(); ++i) {
        OF_BYTES c = g->section_table()->section(i)->bytes();
        copies += std::string(reinterpret_cast<const char*>(c.data), c.size) == "abcdefgh";
    }
    EXPECT_EQ(copies, 2u);
    OF_SYMBOL* main = g->symbol_table()->symbol_name("main", 0);
    ASSERT_TRUE(main && main->section());
    EXPECT_STREQ(main->section()->name(), ".text.main");
}

// Values of symbols count from 0 in files of this vendor whose section symbols say so.
TEST(elf_edit, a_section_symbol_that_is_not_at_0_tells_how_values_count) {
    struct {
        const char* vendor;
        unsigned value;
        bool scnrel;
    } const CASES[] = {{"QV", 0, true}, {"QV", 0x100, false}, {"other", 0x100, true}};
    for (const auto& c : CASES) {
        FILE_PTR f = new_file();
        OF_SECTION* data = add_section(*f, ".data", "abcd");
        data->set_run_addr(0x100);
        data->symbol()->set_value(c.value);
        add_reloc(data, false, 2 + c.value, ABS32, data->symbol());
        f->battr_create(c.vendor, 4)->val.uval = 1;
        EXPECT_TRUE(f->values_are_scnrel());
        FILE_PTR g = read_file(saved(*f));
        ASSERT_TRUE(g);
        EXPECT_EQ(g->values_are_scnrel(), c.scnrel) << c.vendor << c.value;
        data = g->section_table()->section_name(".data", 0);
        EXPECT_EQ(data->reloc_table(0)->reloc(0)->scnrel_offset(), c.scnrel ? 2u + c.value : 2u);
    }
}

TEST(elf_edit, versions_of_dynamic_symbols_follow_them) {
    FILE_PTR f = new_file();
    OF_SECTION* data = add_section(*f, ".data", "abcd");
    ELF_SECTION* dynsym = add_section(*f, ".dynsym", "");
    ELF_SYMBOL_TABLE* table = dynsym->symbol_table_api();
    for (const auto& [name, binding, version] : {std::tuple{"global", OF_SYM_BINDING_GLOBAL, 3u},
                                                 {"local", OF_SYM_BINDING_LOCAL, 0u},
                                                 {"weak", OF_SYM_BINDING_WEAK, 0x8002u}}) {
        auto* s = static_cast<ELF_SYMBOL*>(table->new_symbol());
        s->set_name(name);
        s->set_section(data);
        s->set_binding(binding);
        s->set_version_index(version);
    }
    ELF_SECTION* versym = add_section(*f, ".gnu.version", "");
    versym->set_sh_link(dynsym->id());
    EXPECT_STREQ(versym->name(), ".ARM_versym");
    FILE_PTR g = read_file(saved(*f));
    ASSERT_TRUE(g);
    for (int round = 0; round < 2; ++round) {
        auto* read = static_cast<ELF_SYMBOL_TABLE*>(g->dynamic_symbol_table());
        ASSERT_TRUE(read);
        ASSERT_EQ(read->symnum(), 4u); // the null symbol and the local one come first
        EXPECT_EQ(read->versym_table()->size(), 8u);
        EXPECT_EQ(read->elf_symbol(1)->version_index(), 0u);
        EXPECT_EQ(read->elf_symbol(2)->version_index(), 3u);
        EXPECT_EQ(read->elf_symbol(3)->version_index(), 0x8002u);
        g = read_file(saved(*g));
        ASSERT_TRUE(g);
    }
    EXPECT_TRUE(errors.empty());
}

TEST(elf_edit, intermediate_code_is_a_section_of_that_name) {
    FILE_PTR f = new_file();
    add_section(*f, ".data", "abcd");
    EXPECT_FALSE(read_file(saved(*f))->is_icode_present());
    f = new_file();
    add_section(*f, ".icode", "!<icode>");
    EXPECT_TRUE(f->is_icode_present());
    EXPECT_EQ(f->icode_flag(), ICODE_PRESENT);
}

TEST(elf_edit, a_symbol_says_that_a_file_is_made_of_a_load_image) {
    FILE_PTR f = sample(OF_ENDIAN_LITTLE);
    EXPECT_FALSE(f->is_load_image_file());
    EXPECT_FALSE(read_file(saved(*f))->is_load_image_file());
    f = sample(OF_ENDIAN_LITTLE);
    add_symbol(*f, ".QV.load_image", f->section_table()->section_name(".data", 0), 0,
               OF_SYM_BINDING_LOCAL);
    EXPECT_TRUE(f->is_load_image_file());
    f = read_file(saved(*f));
    EXPECT_TRUE(f->is_load_image_file());
    f->set_load_image_index(f->symbol_table()->symbol_name(".QV.load_image", 0)->id() + 1);
    EXPECT_FALSE(f->is_load_image_file()); // looked for from there on
}

TEST(elf_edit, cleared_relocations_are_gone_from_the_section_and_from_the_file) {
    FILE_PTR f = read_file(saved(*sample(OF_ENDIAN_BIG)));
    OF_SECTION* data = f->section_table()->section_name(".data", 0);
    ASSERT_EQ(data->reloc_table(0)->relnum(), 2u);
    ASSERT_EQ(data->clear_relocs(), 0);
    EXPECT_EQ(data->all_relocs().begin(), data->all_relocs().end());
    EXPECT_EQ(f->section_table()->raw_relocs(data->id(), 0).size(), 0u);
    FILE_PTR g = read_file(saved(*f));
    EXPECT_EQ(g->section_table()->raw_relocs(data->id(), 0).size(), 0u);
}
