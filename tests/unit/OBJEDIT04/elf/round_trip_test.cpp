// Files made in memory, written, read back, edited and written again, in both byte orders.
#include <gtest/gtest.h>

#include <cstring>

#include "../ofe_support.h"
#include "OBJEDIT04/elf/elf_reloc.h"
#include "UTIL/file_handle_manager.h"

using namespace OFE;
using namespace ofe_test;

namespace {

std::string text_of(OF_SECTION* s) {
    OF_BYTES b = s->bytes();
    return std::string(reinterpret_cast<const char*>(b.data), b.size);
}

// name kind binding section value, in table order
std::string symbols_of(OBJECT_FILE& f) {
    std::string out;
    OF_SYMBOL_TABLE* t = f.symbol_table();
    for (unsigned i = 1; i < t->symnum(); i = t->next_symbol_id(i)) {
        OF_RAW_SYMBOL s;
        EXPECT_TRUE(t->raw_symbol(i, s));
        out += std::string(s.name) + " " + OBJECT_FILE::sym_kind_name(s.kind) + " " +
               OBJECT_FILE::sym_binding_name(s.binding) + " " +
               (s.section_id == OF_RAW_SYMBOL::NO_SECTION
                    ? "-"
                    : f.section_table()->section(s.section_id)->name()) +
               " " + std::to_string(s.value) + "\n";
    }
    return out;
}

} // namespace

class round_trip : public testing::TestWithParam<OF_ENDIAN> {};
INSTANTIATE_TEST_SUITE_P(both_orders, round_trip, testing::Values(OF_ENDIAN_LITTLE, OF_ENDIAN_BIG));

TEST_P(round_trip, what_was_built_is_read_back) {
    FILE_PTR built = sample(GetParam());
    BYTES bytes = saved(*built);
    FILE_PTR f = read_file(bytes);
    ASSERT_TRUE(f);
    EXPECT_TRUE(errors.empty()) << errors[0].text;
    EXPECT_EQ(f->machine_endian(), GetParam());
    EXPECT_EQ(f->flags(), EF_ARM_EABI_VER5);
    EXPECT_EQ(f->file_type(), OF_FILE_TYPE_RELOCATABLE);
    EXPECT_EQ(symbols_of(*f), "buffer defined local .bss 8\n"
                              "main defined global .text.main 1\n"
                              "ext undefined global - 0\n"
                              "once defined weak .text.once 0\n"
                              "com common global - 4\n");
    EXPECT_EQ(f->symbol_table()->first_global(), 2u);
    EXPECT_EQ(text_of(f->section_table()->section_name(".data", 0)), "abcdefgh");
    EXPECT_EQ(f->section_table()->section_name(".bss", 0)->size(), 64u);
}

TEST_P(round_trip, groups_come_first_and_tables_last) {
    FILE_PTR f = read_file(saved(*sample(GetParam())));
    ASSERT_TRUE(f);
    std::string names;
    for (unsigned i = 0; i < f->section_table()->scnnum(); ++i)
        names += std::string(f->section_table()->section(i)->name()) + " ";
    EXPECT_EQ(names, " once .text.main .data .text.once .bss .symtab .rel.text.main .rela.data "
                     ".shstrtab .strtab ");
    OF_SECTION* once = f->section_table()->section_name(".text.once", 0);
    OF_GROUP_TABLE* group = f->section_table()->raw_group(once->id());
    ASSERT_TRUE(group);
    EXPECT_TRUE(group->comdat_flag());
    EXPECT_STREQ(group->signature_name(), "once");
    ASSERT_EQ(group->member_num(), 1u);
    EXPECT_EQ(group->member(0), once);
    EXPECT_EQ(f->section_table()->raw_group(f->section_table()->section_name(".data", 0)->id()),
              nullptr);
}

TEST_P(round_trip, raw_relocations_and_objects_say_the_same) {
    FILE_PTR f = read_file(saved(*sample(GetParam())));
    ASSERT_TRUE(f);
    OF_SECTION* data = f->section_table()->section_name(".data", 0);
    ASSERT_EQ(f->section_table()->raw_reloc_table_num(data->id()), 1u);
    OF_RAW_RELOCS raw = f->section_table()->raw_relocs(data->id(), 0);
    ASSERT_EQ(raw.size(), 2u);
    EXPECT_TRUE(raw.rela());
    EXPECT_EQ(raw[0].offset, 0u); // sorted by offset at lock
    EXPECT_EQ(raw[0].addend, 12);
    EXPECT_EQ(raw[1].addend, -4);
    unsigned i = 0;
    for (OF_RELOC* r : data->all_relocs()) {
        EXPECT_EQ(r->offset(), raw[i].offset);
        EXPECT_EQ(r->symbol()->id(), raw[i].sym_id);
        EXPECT_EQ(r->type()->machine_type, raw[i].type);
        EXPECT_EQ(r->addend(), raw[i].addend);
        ++i;
    }
    EXPECT_EQ(i, 2u);
    OF_RELOC_TABLE* table = data->reloc_table(0);
    EXPECT_EQ(table->reloc_offset_type(4, nullptr, 0), table->reloc(1));
    EXPECT_EQ(table->reloc_offset_type(4, f->machine_reloc_type(THM_CALL), 0), nullptr);
    EXPECT_TRUE(data->any_reloc_at_offset(4));
    EXPECT_FALSE(data->any_reloc_at_offset(5));
}

TEST_P(round_trip, a_read_file_written_again_is_the_same_file) {
    BYTES once = saved(*sample(GetParam()));
    FILE_PTR f = read_file(once);
    ASSERT_TRUE(f);
    BYTES twice = saved(*f);
    FILE_PTR g = read_file(twice);
    ASSERT_TRUE(g);
    EXPECT_EQ(symbols_of(*f), symbols_of(*g));
    EXPECT_EQ(saved(*g), twice);
    EXPECT_TRUE(errors.empty()) << errors[0].text;
}

TEST_P(round_trip, a_saved_file_is_reopened_edited_and_saved_again) {
    FILE_PTR f = sample(GetParam());
    TEMP_FILE first;
    FHM_FILE* out = fhm_open(first.name(), "wb+");
    ASSERT_EQ(f->save_obj(out), 0);
    ASSERT_EQ(f->reopen_for_editing(), 0);
    EXPECT_EQ(f->state(), OF_STATE_OPEN);
    OF_SYMBOL* local = f->symbol_table()->symbol_name("buffer", 0);
    ASSERT_TRUE(local);
    EXPECT_EQ(local->set_name("renamed"), 0);
    EXPECT_EQ(f->symbol_table()->delete_symbol(f->symbol_table()->symbol_name("com", 0)->id()), 0);
    BYTES b = saved(*f);
    fhm_close(out);
    FILE_PTR g = read_file(b);
    ASSERT_TRUE(g);
    EXPECT_EQ(symbols_of(*g), "renamed defined local .bss 8\n"
                              "main defined global .text.main 1\n"
                              "ext undefined global - 0\n"
                              "once defined weak .text.once 0\n");
    EXPECT_EQ(std::search(b.begin(), b.end(), "buffer", "buffer" + 6), b.end())
        << "an old name is left in the file";
    EXPECT_EQ(text_of(g->section_table()->section_name(".data", 0)), "abcdefgh");
    OF_SECTION* data = g->section_table()->section_name(".data", 0);
    EXPECT_STREQ(data->reloc_table(0)->reloc(1)->symbol()->name(), "renamed");
    EXPECT_TRUE(errors.empty()) << errors[0].text;
}

TEST(elf_delete, a_deleted_section_takes_its_relocations_and_leaves_a_placeholder) {
    FILE_PTR f = read_file(saved(*sample(OF_ENDIAN_LITTLE)));
    OF_SECTION_TABLE* t = f->section_table();
    unsigned data = t->section_name(".data", 0)->id(), rel = t->section_name(".rela.data", 0)->id();
    unsigned main_text = t->section_name(".text.main", 0)->id();
    OF_SYMBOL* buffer = f->symbol_table()->symbol_name("buffer", 0);
    EXPECT_EQ(t->purge_deleted_sections(), 0); // nothing is deleted: nothing changes
    EXPECT_TRUE(t->translations().empty());
    ASSERT_EQ(t->delete_section(data), 0);
    EXPECT_TRUE(t->is_deleted(data));
    EXPECT_TRUE(t->is_deleted(rel));
    EXPECT_STREQ(t->section(data)->name(), "__QV_deleted_section");
    OF_RAW_SECTION raw;
    ASSERT_TRUE(t->raw_section(data, raw));
    EXPECT_TRUE(raw.deleted);
    EXPECT_EQ(t->raw_reloc_table_num(data), 0u);
    EXPECT_EQ(t->raw_reloc_table_num(main_text), 1u);
    unsigned before = t->scnnum();
    ASSERT_EQ(t->purge_deleted_sections(), 0);
    EXPECT_EQ(t->scnnum(), before - 2);
    EXPECT_STREQ(buffer->section()->name(), ".bss");
    OF_SECTION* text = t->section_name(".text.main", 0);
    ASSERT_EQ(text->reloc_table_num(), 1u);
    EXPECT_STREQ(text->reloc_table(0)->reloc(0)->symbol()->name(), "ext");
    FILE_PTR g = read_file(saved(*f));
    ASSERT_TRUE(g);
    EXPECT_EQ(g->section_table()->section_name(".data", 0), nullptr);
    EXPECT_EQ(text_of(g->section_table()->section_name(".text.once", 0)),
              "once"); // at another place in the file
    EXPECT_TRUE(errors.empty()) << errors[0].text;
}

TEST(elf_symbols, a_symbol_put_in_the_middle_moves_the_references) {
    FILE_PTR f = read_file(saved(*sample(OF_ENDIAN_LITTLE)));
    OF_SECTION* data = f->section_table()->section_name(".data", 0);
    OF_SYMBOL* fresh = f->symbol_table()->new_symbol_at(1);
    ASSERT_TRUE(fresh);
    fresh->set_name("fresh");
    fresh->set_binding(OF_SYM_BINDING_LOCAL);
    fresh->set_kind(OF_SYM_KIND_ABSOLUTE);
    EXPECT_STREQ(data->reloc_table(0)->reloc(1)->symbol()->name(), "buffer");
    FILE_PTR g = read_file(saved(*f));
    ASSERT_TRUE(g);
    EXPECT_STREQ(g->symbol_table()->symbol(1)->name(), "fresh");
    EXPECT_STREQ(
        g->section_table()->section_name(".data", 0)->reloc_table(0)->reloc(1)->symbol()->name(),
        "buffer");
}

TEST(elf_sections, more_than_65279_sections_need_extended_indices) {
    constexpr unsigned COUNT = 65600;
    FILE_PTR f = new_file();
    for (unsigned i = 0; i < COUNT; ++i) f->section_table()->new_section(".data.x");
    OF_SECTION* last = f->section_table()->section(COUNT);
    add_symbol(*f, "far", last, 3, OF_SYM_BINDING_GLOBAL);
    BYTES b = saved(*f);
    ASSERT_GT(b.size(), 52u);
    EXPECT_EQ(read_u16(&b[48], false), 0u);      // e_shnum
    EXPECT_EQ(read_u16(&b[50], false), 0xFFFFu); // e_shstrndx
    FILE_PTR g = read_file(b);
    ASSERT_TRUE(g);
    EXPECT_EQ(g->section_table()->scnnum(), f->section_table()->scnnum());
    OF_SYMBOL* far = g->symbol_table()->symbol_name("far", 0);
    ASSERT_TRUE(far);
    EXPECT_EQ(far->section_id(), COUNT);
    EXPECT_EQ(far->kind(), OF_SYM_KIND_DEFINED);
    EXPECT_TRUE(errors.empty()) << errors[0].text;
}

TEST(elf_special, the_longest_prefix_decides) {
    struct {
        const char* name;
        const char* row; // null: none
    } const CASES[] = {{".text", ".text"},
                       {".text.main", ".text"},
                       {".rel.text", ".rel"},
                       {".rela.text", ".rela"},
                       {".rodata1", ".rodata1"},
                       {".rodata.str1.4", ".rodata"},
                       {".data1", ".data1"},
                       {".debug_info", ".debug"},
                       {".init_array.00100", ".init_array"},
                       {".initial", ".init"},
                       {".dynamic", ".dynamic"},
                       {"my_shndx", ".symtab_shndx"},
                       {".tex", nullptr},
                       {"text", nullptr},
                       {"", nullptr},
                       {".ARM.attributes", nullptr},
                       {".gnu.version", ".gnu.version"},
                       {".zzz", nullptr}};
    for (auto& c : CASES) {
        const ELF_SPECIAL_SECTION* row = ELF_SECTION_TABLE::special_section(c.name);
        EXPECT_STREQ(row ? row->name : nullptr, c.row) << c.name;
    }
}

TEST(elf_layout, file_offsets_are_congruent_to_addresses) {
    EXPECT_EQ(ELF_FILE::align_file_offset(0x1001, 0x2004, 0x1000), 0x1004u);
    EXPECT_EQ(ELF_FILE::align_file_offset(0x1004, 0x2004, 0x1000), 0x1004u);
    EXPECT_EQ(ELF_FILE::align_file_offset(0x1005, 0x2004, 0x1000), 0x2004u);
    EXPECT_EQ(ELF_FILE::align_file_offset(7, 3, 0), 7u);
}

TEST(elf_layout, an_empty_section_that_is_not_allocated_stands_nowhere) {
    FILE_PTR f = new_file();
    ELF_SECTION* a = add_section(*f, ".comment", "");
    ELF_SECTION* b = add_section(*f, ".debug_x", "");
    b->set_keeps_offset(true);
    ASSERT_EQ(f->set_state(OF_STATE_FORMATTED), 0);
    EXPECT_EQ(a->file_offset(), 0u);
    EXPECT_EQ(b->file_offset(), 52u);
}

TEST(elf_attributes, values_are_written_with_the_bytes_they_need) {
    OBJECT_FILE::tool_name_m = "Linker";
    FILE_PTR f = new_file();
    ELF_SECTION* s = add_section(*f, ".data", "x");
    add_section(*f, ".rodata", "y");
    s->set_ext_flags(QV_SHF_NOINIT | QV_SHF_RETAIN);
    FILE_PTR g = read_file(saved(*f));
    ASSERT_TRUE(g);
    EXPECT_TRUE(g->section_table()->has_ext_flags());
    OF_RAW_SECTION raw;
    ASSERT_TRUE(g->section_table()->raw_section(1, raw));
    EXPECT_EQ(raw.ext_flags, unsigned{QV_SHF_NOINIT | QV_SHF_RETAIN});
    EXPECT_EQ(g->section_table()->section(1)->ext_flags(), raw.ext_flags);
    EXPECT_EQ(g->section_table()->section(2)->ext_flags(), 0u);
    OF_SECTION* attrs = g->section_table()->section_name(".QV.section.flags", 0);
    ASSERT_TRUE(attrs);
    EXPECT_EQ(attrs->size(), 26u + 2); // up to the last section with a value
    FILE_PTR none = new_file();
    none->set_state(OF_STATE_LOCKED);
    OF_SECTION* empty = none->section_table()->section_name(".QV.section.flags", 0);
    ASSERT_TRUE(empty);
    EXPECT_EQ(empty->bytes().size, 26u);
    none->set_state(OF_STATE_FORMATTED);
    EXPECT_EQ(empty->bytes().size, 42u);
    OBJECT_FILE::tool_name_m = "";
}

TEST(elf_direct, direct_writes_go_to_their_place_in_the_file) {
    FILE_PTR f = new_file();
    OF_SECTION* s = f->section_table()->new_section(".data");
    s->set_size(16);
    TEMP_FILE temp;
    FHM_FILE* out = fhm_open(temp.name(), "wb+");
    EXPECT_EQ(s->set_direct_write(), -1); // not yet saved
    ASSERT_EQ(f->save_obj(out), 0);
    ASSERT_EQ(s->set_direct_write(), 0);
    EXPECT_EQ(s->write_to_raw_data("abcd", 4, 4), 0);
    EXPECT_EQ(s->write_to_raw_data("efgh", 4, 12), 0);
    if (uint8_t* p = s->direct_bytes(8, 1)) *p = '-';
    EXPECT_EQ(s->direct_bytes(16, 1), nullptr);
    unsigned at = s->file_offset();
    f.reset();
    fhm_close(out);
    BYTES b = temp.bytes();
    ASSERT_GE(b.size(), at + 16u);
    EXPECT_EQ(std::memcmp(&b[at], "\0\0\0\0abcd-\0\0\0efgh", 16), 0);
}

TEST(elf_save, a_file_that_cannot_be_mapped_is_written_in_pieces_and_a_full_one_is_reported) {
    FILE_PTR f = sample(OF_ENDIAN_LITTLE);
    EXPECT_EQ(f->save_obj("/dev/null"), 0);
    EXPECT_TRUE(errors.empty());
    FILE_PTR g = sample(OF_ENDIAN_LITTLE);
    EXPECT_EQ(g->save_obj("/dev/full"), -1);
    ASSERT_EQ(errors.size(), 2u);
    EXPECT_EQ(errors[0].code, OF_ERROR_ACCESS);
    EXPECT_EQ(errors[0].text, "cannot write 0x34 bytes: No space left on device");
    EXPECT_EQ(errors.back().text, "an error occurred while writing \"/dev/full\"");
    EXPECT_EQ(g->save_obj("/nowhere/out.o"), -1);
    EXPECT_EQ(errors.back().text, "failed to open \"/nowhere/out.o\" for writing");
}
