// Program headers: order, sizes, offsets, and what is found in a file that was read.
#include <gtest/gtest.h>

#include "../ofe_support.h"
#include "OBJEDIT04/elf/segments/elf_segment.h"
#include "OBJEDIT04/elf/segments/elf_segment_table.h"
#include "UTIL/file_handle_manager.h"

using namespace OFE;
using namespace ofe_test;

namespace {

struct EXECUTABLE {
    FILE_PTR file = new_file();
    ELF_SEGMENT_TABLE* table = elf_api(file.get())->segment_table();

    EXECUTABLE() { file->set_file_type(OF_FILE_TYPE_EXECUTABLE); }
    ELF_SECTION* section(const char* name, unsigned addr, unsigned size) {
        ELF_SECTION* s = add_section(*file, name, "");
        s->set_run_addr(addr);
        if (s->initialized())
            s->write_to_raw_data(std::string(size, 'd').data(), size, 0);
        else
            s->set_size(size);
        return s;
    }
    ELF_SEGMENT* segment(unsigned type, unsigned vaddr, unsigned align) {
        ELF_SEGMENT* s = table->new_segment();
        s->header().p_type = type;
        s->header().p_vaddr = s->header().p_paddr = vaddr;
        s->header().p_align = align;
        return s;
    }
};

} // namespace

TEST(segments, a_load_segment_holds_its_sections_at_their_distance) {
    EXECUTABLE x;
    ELF_SECTION* text = x.section(".text", 0x8004, 0x10);
    ELF_SECTION* data = x.section(".data", 0x8020, 0x8);
    ELF_SECTION* bss = x.section(".bss", 0x8030, 0x100);
    ELF_SEGMENT* seg = x.segment(PT_LOAD, 0x8004, 0x1000);
    seg->header().p_paddr = 0x100;
    for (ELF_SECTION* s : {text, data, bss})
        ASSERT_EQ(seg->add_seg_object(SEG_OBJECT_SECTION, s->id()), 0);
    ASSERT_EQ(x.file->set_state(OF_STATE_FORMATTED), 0);
    const Elf32_Phdr& h = seg->header();
    EXPECT_EQ(h.p_offset % 0x1000, 4u);
    EXPECT_EQ(h.p_filesz, 0x24u); // up to the end of .data
    EXPECT_EQ(h.p_memsz, 0x12Cu); // and .bss behind it
    EXPECT_EQ(text->file_offset(), h.p_offset);
    EXPECT_EQ(data->file_offset(), h.p_offset + 0x1C);
    EXPECT_EQ(data->load_addr(), 0x11Cu);
    EXPECT_EQ(x.table->segment_section(bss), seg);
    EXPECT_TRUE(errors.empty());
}

TEST(segments, the_order_is_phdr_load_others_and_a_stack_segment_takes_no_room) {
    EXECUTABLE x;
    ELF_SECTION* note = x.section(".note", 0, 8);
    ELF_SEGMENT* stack = x.segment(PT_GNU_STACK, 0, 16);
    ELF_SEGMENT* other = x.segment(PT_NOTE, 0, 4);
    other->add_seg_object(SEG_OBJECT_SECTION, note->id());
    ELF_SEGMENT* load = x.segment(PT_LOAD, 0x8000, 4);
    ELF_SEGMENT* phdr = x.segment(PT_PHDR, 0x8034, 4);
    load->add_seg_object(SEG_OBJECT_FILE_HEADER, 0);
    load->add_seg_object(SEG_OBJECT_SEGMENT, phdr->id());
    ASSERT_EQ(x.file->set_state(OF_STATE_FORMATTED), 0);
    EXPECT_EQ(phdr->id(), 0u);
    EXPECT_EQ(load->id(), 1u);
    EXPECT_EQ(stack->id(), 2u);
    EXPECT_EQ(other->id(), 3u);
    EXPECT_EQ(load->header().p_offset, 0u);
    EXPECT_EQ(phdr->header().p_offset, 0x34u);
    EXPECT_EQ(x.table->file_offset(), 0x34u);
    EXPECT_EQ(phdr->header().p_filesz, 4u * 32);
    EXPECT_EQ(load->header().p_filesz, 0x34u + 4 * 32);
    EXPECT_EQ(stack->header().p_offset, 0u);
    EXPECT_EQ(other->header().p_offset, 0x34u + 4 * 32);
    EXPECT_EQ(note->file_offset(), other->header().p_offset);
}

TEST(segments, a_section_below_its_segment_is_an_error) {
    EXECUTABLE x;
    ELF_SECTION* low = x.section(".text", 0x100, 4);
    x.segment(PT_LOAD, 0x200, 4)->add_seg_object(SEG_OBJECT_SECTION, low->id());
    x.file->set_state(OF_STATE_FORMATTED);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(
        errors[0].text,
        "program segment contains a section whose vaddr (0x00000100) is less than the program "
        "segments (0x00000200)");
    EXPECT_EQ(low->run_addr(), 0x200u);
}

TEST(segments, empty_load_segments_go_and_ids_close_up) {
    EXECUTABLE x;
    ELF_SECTION* text = x.section(".text", 0x100, 4);
    x.segment(PT_LOAD, 0, 4);
    ELF_SEGMENT* kept = x.segment(PT_LOAD, 0x100, 4);
    kept->add_seg_object(SEG_OBJECT_SECTION, text->id());
    ASSERT_EQ(x.table->delete_empty_load_segments(), 0);
    ASSERT_EQ(x.table->purge_deleted_segments(), 0);
    EXPECT_EQ(x.table->segnum(), 1u);
    EXPECT_EQ(kept->id(), 0u);
    EXPECT_EQ(x.table->segment_addr(0x102, 0), nullptr); // no size yet
    EXPECT_EQ(x.table->segment_type(PT_LOAD, 0), kept);
}

TEST(segments, a_segment_after_the_freeze_warns_and_is_still_added) {
    EXECUTABLE x;
    x.table->freeze_segnum();
    EXPECT_NE(x.table->new_segment(), nullptr);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].code, OF_ERROR_WARNING);
    EXPECT_EQ(
        errors[0].text,
        "size of program header table has been frozen; cannot add new segments after the PT_PHDR "
        "segment has been allocated");
    EXPECT_EQ(x.table->segnum(), 1u);
    ELF_SEGMENT* note = x.segment(PT_NOTE, 0, 4);
    EXPECT_EQ(note->add_seg_object(SEG_OBJECT_SEGMENT, 0), -1);
    EXPECT_EQ(errors.back().text, "illegal attempt to add a segment to a non-PT_LOAD segment");
}

TEST(segments, what_a_read_file_contains_is_found_again) {
    EXECUTABLE x;
    ELF_SECTION* text = x.section(".text", 0x8000, 0x10);
    ELF_SECTION* bss = x.section(".bss", 0x8010, 0x20);
    ELF_SEGMENT* seg = x.segment(PT_LOAD, 0x8000, 4);
    seg->header().p_paddr = 0x40;
    seg->add_seg_object(SEG_OBJECT_SECTION, text->id());
    seg->add_seg_object(SEG_OBJECT_SECTION, bss->id());
    x.file->set_entry_point(0x8001);
    FILE_PTR f = read_file(saved(*x.file));
    ASSERT_TRUE(f);
    EXPECT_EQ(f->entry_point(), 0x8001u);
    ELF_SEGMENT* back = elf_api(f.get())->segment_table()->segment(0);
    ASSERT_TRUE(back);
    ASSERT_EQ(back->objects().size(), 2u);
    EXPECT_EQ(f->section_table()->section_name(".text", 0)->load_addr(), 0x40u);
    BYTES again = saved(*f);
    FILE_PTR g = read_file(again);
    ASSERT_TRUE(g);
    EXPECT_EQ(elf_api(g.get())->segment_table()->segment_header(0)->p_memsz, 0x30u);
    EXPECT_TRUE(errors.empty());
}
