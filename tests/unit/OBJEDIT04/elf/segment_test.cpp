// Program headers: order, sizes, offsets, and what is found in a file that was read.
#include <gtest/gtest.h>

#include <random>

#include "../ofe_support.h"
#include "OBJEDIT04/elf/segments/elf_seg_attr.h"
#include "OBJEDIT04/elf/segments/elf_segment.h"
#include "OBJEDIT04/elf/segments/elf_segment_table.h"
#include "OBJEDIT04/elf/segments/segment_contents.h"
#include "UTIL/data_map.h"
#include "UTIL/file_handle_manager.h"
#include "UTIL/text_table.h"

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

TEST(segments, there_are_as_many_as_the_file_header_can_count) {
    constexpr unsigned MOST = 0xFFFE; // 0xFFFF says that the count stands elsewhere
    EXECUTABLE x;
    for (unsigned i = 0; i < MOST; i++) ASSERT_NE(x.table->new_segment(), nullptr);
    EXPECT_EQ(x.table->new_segment(), nullptr);
    EXPECT_EQ(x.table->segnum(), MOST);
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

// Against every pair looked at.
TEST(segments, the_first_range_that_encloses_another_is_found) {
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        const unsigned span = 1 + random() % 40;
        auto make = [&](unsigned count) {
            std::vector<EXTENT> made;
            for (unsigned i = 0; i < count; ++i)
                made.push_back({random() % span, random() % span, i});
            return made;
        };
        const std::vector<EXTENT> outer = make(random() % 12), inner = make(1 + random() % 12);
        const std::vector<unsigned> found = enclosing_extents(outer, inner);
        ASSERT_EQ(found.size(), inner.size());
        for (size_t i = 0; i < inner.size(); ++i) {
            unsigned expected = NO_EXTENT;
            for (const EXTENT& o : outer)
                if (expected == NO_EXTENT && o.start <= inner[i].start &&
                    inner[i].start + inner[i].size <= o.start + o.size)
                    expected = o.id;
            EXPECT_EQ(found[i], expected);
        }
    }
    EXPECT_EQ(enclosing_extents({{0, ~uint64_t{0}, 3}}, {{5, 6, 0}})[0], 3u);
}

// A loaded segment with code and data, a segment of thread-local data inside of it, and one that
// lies nowhere.
TEST(segments, contents_of_a_read_file_stand_in_the_first_loaded_segment_and_once_per_other_type) {
    EXECUTABLE x;
    ELF_SECTION* text = x.section(".text", 0x8000, 0x10);
    ELF_SECTION* tdata = x.section(".tdata", 0x8010, 0x8);
    ELF_SECTION* tbss = x.section(".tbss", 0x8018, 0x20);
    ELF_SECTION* bss = x.section(".bss", 0x8020, 0x10);
    ELF_SEGMENT* load = x.segment(PT_LOAD, 0x8000, 4);
    for (ELF_SECTION* s : {text, tdata, bss}) load->add_seg_object(SEG_OBJECT_SECTION, s->id());
    ELF_SEGMENT* tls = x.segment(PT_TLS, 0x8010, 4);
    for (ELF_SECTION* s : {tdata, tbss}) tls->add_seg_object(SEG_OBJECT_SECTION, s->id());
    load->add_seg_object(SEG_OBJECT_SEGMENT, tls->id());
    x.segment(PT_NOTE, 0x100, 4)->header().p_memsz = 4;
    const BYTES written = saved(*x.file);
    EXPECT_TRUE(errors.empty()) << errors[0].text;
    FILE_PTR f = read_file(written);
    ASSERT_TRUE(f);
    ELF_SEGMENT_TABLE* table = elf_api(f.get())->segment_table();
    auto objects = [&](unsigned short id) {
        std::string text_of;
        for (const SEG_OBJECT& o : table->segment(id)->objects())
            text_of += o.type == SEG_OBJECT_SECTION ? f->section_table()->section(o.id)->name()
                                                    : "segment " + std::to_string(o.id);
        return text_of;
    };
    EXPECT_EQ(objects(0), "segment 1.text.tdata.bss");
    EXPECT_EQ(objects(1), ".tdata.tbss");
    EXPECT_EQ(objects(2), "");
    EXPECT_TRUE(table->segment(1)->is_contained());
    EXPECT_FALSE(table->segment(2)->is_contained());
    FILE_PTR again = read_file(saved(*f));
    ASSERT_TRUE(again);
    for (unsigned short i = 0; i < 2; ++i) {
        const Elf32_Phdr& a = *table->segment_header(i);
        const Elf32_Phdr& b = *elf_api(again.get())->segment_table()->segment_header(i);
        EXPECT_EQ(a.p_filesz, b.p_filesz);
        EXPECT_EQ(a.p_memsz, b.p_memsz);
        EXPECT_EQ(a.p_vaddr, b.p_vaddr);
    }
}

TEST(segments, tens_of_thousands_of_segments_over_as_many_sections_are_sorted_out_at_once) {
    EXECUTABLE x;
    for (unsigned i = 0; i < 20000; ++i) x.section(".text", 0x8000 + 4 * i, 4);
    for (unsigned i = 0; i < 60000; ++i) {
        Elf32_Phdr& h = x.segment(i % 2 ? PT_LOAD : PT_NOTE, 0x8000, 4)->header();
        h.p_memsz = 0x20000;
    }
    BYTES b = saved(*x.file);
    // All of them over the whole file.
    const unsigned phoff = read_u32(&b[28], false), phnum = read_u16(&b[44], false);
    ASSERT_EQ(phnum, 60000u);
    for (unsigned i = 0; i < phnum; ++i) {
        write_u32(&b[phoff + 32 * i + 4], 4, false);
        write_u32(&b[phoff + 32 * i + 16], static_cast<uint32_t>(b.size()) - 4, false);
    }
    FILE_PTR f = read_file(b);
    ASSERT_TRUE(f);
    ELF_SEGMENT_TABLE* table = elf_api(f.get())->segment_table();
    EXPECT_EQ(table->segment(0)->objects().size(), 20000u + 30000u); // sections and segments
    EXPECT_EQ(table->segment(1)->objects().size(), 0u);
    EXPECT_EQ(table->segment(30000)->objects().size(), 20000u);
    EXPECT_EQ(table->segment_section(f->section_table()->section(7)), table->segment(0));
}

TEST(segments, a_file_that_would_be_too_large_is_refused_when_it_is_laid_out) {
    EXECUTABLE x;
    ELF_SECTION* low = x.section(".text", 0, 0x10);
    ELF_SECTION* high = x.section(".data", 0xFFFFFFE0, 0x10);
    ELF_SEGMENT* seg = x.segment(PT_LOAD, 0, 4);
    for (ELF_SECTION* s : {low, high}) seg->add_seg_object(SEG_OBJECT_SECTION, s->id());
    EXPECT_EQ(x.file->set_state(OF_STATE_FORMATTED), -1);
    ASSERT_FALSE(errors.empty());
    EXPECT_EQ(errors[0].code, OF_ERROR_ACCESS);
    EXPECT_EQ(errors[0].text.substr(0, 40), "the file would be larger than 4 GiB (0x1");
}

TEST(segments, a_program_header_segment_needs_a_loaded_one_around_it) {
    EXECUTABLE x;
    x.segment(PT_PHDR, 0x34, 4);
    EXPECT_EQ(x.file->set_state(OF_STATE_FORMATTED), 0);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].code, OF_ERROR_WARNING);
    EXPECT_EQ(errors[0].text,
              "a PT_PHDR segment exists, but it is not contained by a PT_LOAD segment; PT_PHDR "
              "segments are required to be allocated to memory ");
}

// Bytes that belong to no section are the segment's own.
TEST(segments, a_segment_without_objects_keeps_its_bytes) {
    EXECUTABLE x;
    x.section(".text", 0x8000, 4);
    ELF_SEGMENT* seg = x.segment(PT_LOAD, 0x1000, 0x10);
    seg->header().p_memsz = 32;
    seg->raw_data()->set_copy(std::span(reinterpret_cast<const uint8_t*>("raw segment data"), 16));
    const BYTES written = saved(*x.file);
    FILE_PTR f = read_file(written);
    ASSERT_TRUE(f);
    for (int round = 0; round < 2; ++round) {
        const Elf32_Phdr& h = *elf_api(f.get())->segment_table()->segment_header(0);
        EXPECT_EQ(h.p_filesz, 16u);
        EXPECT_EQ(h.p_memsz, 32u);
        EXPECT_EQ(h.p_offset % 0x10, 0u);
        const BYTES b = saved(*f);
        ASSERT_GE(b.size(), h.p_offset + 16);
        EXPECT_EQ(std::string(b.begin() + h.p_offset, b.begin() + h.p_offset + 16),
                  "raw segment data");
        f = read_file(b);
        ASSERT_TRUE(f);
    }
}

namespace {

// The code is in a segment that is bound to its place and not written; the machine's type for
// attributes is PT_NULL.
struct WITH_ATTRIBUTES : EXECUTABLE {
    ELF_SECTION* text = section(".text", 0x8000, 4);
    ELF_SECTION* data = section(".data", 0x9000, 4);
    ELF_SEGMENT* note = segment(PT_NOTE, 0, 4);
    ELF_SEGMENT* code = segment(PT_LOAD, 0x8000, 4);
    ELF_SEGMENT* other = segment(PT_LOAD, 0x9000, 4);

    WITH_ATTRIBUTES() {
        code->add_seg_object(SEG_OBJECT_SECTION, text->id());
        other->add_seg_object(SEG_OBJECT_SECTION, data->id());
        EXPECT_EQ(code->new_seg_attr(), nullptr); // nothing says that the file has attributes
        segment(PT_NULL, 0, 0);
        for (unsigned tag : {PHA_READONLY, PHA_PAGE, PHA_NULL, PHA_BOUND}) {
            ELF_SEG_ATTR* attr = code->new_seg_attr();
            attr->tag = static_cast<unsigned short>(tag);
            attr->value = 5;
        }
        other->new_seg_attr()->tag = PHA_BOUND;
        note->new_seg_attr()->tag = PHA_PAGE;
    }
};

} // namespace

TEST(segment_attributes, go_out_with_the_new_index_of_their_segment_and_come_back) {
    for (OF_ENDIAN endian : {OF_ENDIAN_LITTLE, OF_ENDIAN_BIG}) {
        WITH_ATTRIBUTES x;
        x.file->set_machine_endian(endian);
        ASSERT_EQ(x.table->delete_segment(x.note->id()), 0); // with its attribute
        FILE_PTR f = read_file(saved(*x.file));
        ASSERT_TRUE(f);
        EXPECT_TRUE(errors.empty()) << errors[0].text;
        ELF_FILE* elf = elf_api(f.get());
        ASSERT_TRUE(elf->has_seg_attr_db());
        ELF_SEG_ATTR_TABLE* attributes = elf->seg_attr_db()->table();
        ASSERT_TRUE(attributes);
        struct ROW {
            unsigned seg;
            const char* tag;
            uint32_t value;
        } const ROWS[] = {
            {0, "PHA_READONLY", 0}, {0, "PHA_PAGE", 5}, {0, "PHA_BOUND", 0}, {1, "PHA_BOUND", 0}};
        ASSERT_EQ(attributes->attrs().size(), std::size(ROWS)); // the one that ends them is none
        for (size_t i = 0; i < std::size(ROWS); ++i) {
            const ELF_SEG_ATTR& a = attributes->attrs()[i];
            EXPECT_EQ(a.seg, ROWS[i].seg);
            EXPECT_STREQ(attributes->tag_name(a.tag), ROWS[i].tag);
            EXPECT_EQ(a.value, ROWS[i].value);
        }
        EXPECT_EQ(attributes->section()->bytes().size, 5u * 8);
        EXPECT_STREQ(attributes->tag_name(9), "PHA_0x9");
        TEXT_TABLE table;
        std::string text;
        attributes->generate_text_info(table);
        table.set_padding(2);
        table.print(text);
        EXPECT_EQ(text, "0  PHA_READONLY\n0  PHA_PAGE      0x5\n0  PHA_BOUND\n1  PHA_BOUND\n");
        ELF_SECTION_TABLE* sections = elf->elf_section_table();
        auto section = [&](const char* name) {
            return static_cast<ELF_SECTION*>(sections->section_name(name, 0));
        };
        EXPECT_TRUE(section(".text")->is_in_rom());
        EXPECT_FALSE(section(".data")->is_in_rom());
        EXPECT_EQ(elf->segment_table()->segment(0)->page(), 5u);
        EXPECT_EQ(elf->segment_table()->segment(1)->page(), 0u);
        EXPECT_EQ(elf->segment_table()->segment(1)->seg_attr_tag(PHA_PAGE), nullptr);
    }
}

TEST(segment_attributes, only_some_tags_have_a_value) {
    WITH_ATTRIBUTES x;
    EXPECT_EQ(x.code->seg_attr_tag(PHA_PAGE)->val(), 5u);
    EXPECT_TRUE(errors.empty());
    EXPECT_EQ(x.code->seg_attr_tag(PHA_BOUND)->val(), 0u);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].code, OF_ERROR_ILLEGAL);
    EXPECT_EQ(errors[0].text, "invalid access to val field of a PHA_BOUND seg_attr entry");
}

TEST(segment_attributes, without_any_the_segment_for_them_goes) {
    EXECUTABLE x;
    ELF_SECTION* text = x.section(".text", 0x8000, 4);
    x.segment(PT_LOAD, 0x8000, 4)->add_seg_object(SEG_OBJECT_SECTION, text->id());
    x.segment(PT_NULL, 0, 0);
    ASSERT_TRUE(elf_api(x.file.get())->seg_attr_db()->table());
    FILE_PTR f = read_file(saved(*x.file));
    ASSERT_TRUE(f);
    EXPECT_EQ(elf_api(f.get())->segment_table()->segnum(), 1u);
    EXPECT_FALSE(elf_api(f.get())->has_seg_attr_db());
    EXPECT_EQ(f->section_table()->section_name(".QV.phattrs", 0), nullptr);
    EXPECT_TRUE(errors.empty());
}

TEST(segment_attributes, of_segments_that_do_not_exist_are_left_out) {
    WITH_ATTRIBUTES x;
    BYTES b = saved(*x.file);
    ELF_SECTION* section = elf_api(x.file.get())->seg_attr_db()->table()->section();
    write_u16(&b[section->file_offset()], 77, false);
    errors.clear();
    FILE_PTR f = read_file(b);
    ASSERT_TRUE(f);
    elf_api(f.get())->segment_table()->segment(0);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].code, OF_ERROR_WARNING);
    EXPECT_EQ(errors[0].text,
              "section \".QV.phattrs\" has an attribute of segment 77, which does not exist");
}
