// The text dump shows everything that a file holds.
#include <gtest/gtest.h>

#include "../ofe_support.h"
#include "OBJEDIT04/attributes/build_attr_table.h"
#include "OBJEDIT04/elf/segments/elf_segment.h"
#include "OBJEDIT04/elf/segments/elf_segment_table.h"

using namespace OFE;
using namespace ofe_test;

namespace {

// Runs of blanks as one.
std::string squeezed(const BYTES& b) {
    std::string out;
    for (char c : b)
        if (c != ' ' || out.empty() || out.back() != ' ') out += c;
    return out;
}

std::string dump(OBJECT_FILE& file) {
    TEMP_FILE temp;
    EXPECT_EQ(file.save_text(temp.name()), 0);
    return squeezed(temp.bytes());
}

} // namespace

TEST(text_dump, names_sections_symbols_relocations_groups_and_attributes) {
    FILE_PTR f = sample(OF_ENDIAN_BIG);
    f->set_producer("QV", 4, 5, 3);
    f->abi_battr_create(6)->val.uval = 10;
    f = read_file(saved(*f));
    ASSERT_TRUE(f);
    const std::string text = dump(*f);
    for (const char* line : {
             "\n file input.o\n",
             "\n byte order big\n",
             "\n producer version 4.5.3\n",
             "\n e_machine EM_ARM\n",
             " .text.main 0x00000000 0x00000000 0x8 4 0x",
             " SHT_PROGBITS SHF_ALLOC|SHF_EXECINSTR",
             " once SHT_PROGBITS SHF_ALLOC|SHF_EXECINSTR|SHF_GROUP",
             " SHT_NOBITS SHF_WRITE|SHF_ALLOC",
             " main 0x00000001 0x0 defined global function .text.main",
             " com 0x00000004 0x10 common global object\n",
             "\nRELOCATIONS OF .text.main\n",
             " 0x00000000 R_ARM_THM_CALL ext\n",
             " 0x00000004 R_ARM_ABS32 buffer -4",
             "\n once once GRP_COMDAT .text.once",
             "\n vendor \"aeabi\"\n",
             " Tag_CPU_arch 10 ARM v7\n",
             " Tag_Producer_VMajor 5\n",
         })
        EXPECT_NE(text.find(line), std::string::npos) << line << "\n" << text;
    EXPECT_EQ(text.find("SEGMENTS"), std::string::npos);
    EXPECT_TRUE(errors.empty());
}

TEST(text_dump, shows_segments_and_only_what_the_flags_ask_for) {
    FILE_PTR f = new_file();
    f->set_file_type(OF_FILE_TYPE_EXECUTABLE);
    ELF_SECTION* text = add_section(*f, ".text", "abcd");
    text->set_run_addr(0x8000);
    ELF_SEGMENT* s = elf_api(f.get())->segment_table()->new_segment();
    s->header() = {PT_LOAD, 0, 0x8000, 0x8000, 0, 0, PF_R | PF_X, 4};
    s->add_seg_object(SEG_OBJECT_SECTION, text->id());
    ASSERT_EQ(f->set_state(OF_STATE_FORMATTED), 0);
    f->dispflags() = {};
    f->dispflags().file = f->dispflags().symbols = f->dispflags().sections = false;
    f->dispflags().strings = true;
    const std::string segments = dump(*f);
    EXPECT_NE(segments.find(" 0 PT_LOAD 0x34 0x8000 0x8000 0x4 0x4 0x4 PF_X|PF_R .text"),
              std::string::npos)
        << segments;
    EXPECT_NE(segments.find("STRINGS .shstrtab\n"), std::string::npos);
    EXPECT_NE(segments.find(" 0x1 .text"), std::string::npos) << segments;
    for (const char* title : {"OBJECT FILE", "SECTIONS", "SYMBOLS"})
        EXPECT_EQ(segments.find(title), std::string::npos);
}

TEST(text_dump, a_name_that_cannot_be_opened_is_an_error) {
    FILE_PTR f = new_file();
    EXPECT_EQ(f->save_text("/nowhere/dump"), -1);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].code, OF_ERROR_ACCESS);
    EXPECT_EQ(errors[0].text, "failed to open \"/nowhere/dump\" for writing");
}

TEST(names, what_has_no_name_shows_its_number) {
    FILE_PTR f = new_file();
    ELF_SECTION* s = add_section(*f, ".text", "abcd");
    ELF_FILE* elf = elf_api(f.get());
    EXPECT_STREQ(s->sh_type_name(SHT_GNU_verdef), "SHT_GNU_verdef");
    EXPECT_STREQ(s->sh_type_name(SHT_ATTRIBUTES), "SHT_ATTRIBUTES");
    EXPECT_STREQ(s->sh_type_name(0x70000001), "SHT_ARM_EXIDX");
    EXPECT_STREQ(s->sh_type_name(0x6abcdef0), "SHT_0x6abcdef0");
    EXPECT_STREQ(s->sh_flag_name(0x20000000), "SHF_ARM_PURECODE");
    EXPECT_STREQ(s->sh_flag_name(0x40000000), "SHF_0x40000000");
    EXPECT_STREQ(s->qv_sh_flag_name(QV_SHF_RETAINREFS), "QV_SHF_RETAINREFS");
    EXPECT_STREQ(s->qv_sh_flag_name(0x8000), "QV_SHF_0x00008000");
    EXPECT_STREQ(elf->ei_osabi_name(0), "ELFOSABI_NONE");
    EXPECT_STREQ(elf->ei_osabi_name(0x40), "ELFOSABI_ARM");
    EXPECT_STREQ(elf->ei_osabi_name(0x61), "ELFOSABI_0x61");
    EXPECT_STREQ(elf->e_flag_name(0x800000), "EF_ARM_BE8");
    EXPECT_STREQ(elf->e_flag_name(0x1), "EF_0x00000001");
}
