// Headers of the file and segments of tables as objects of the tree.
#include "ELFLNK/object/meta_objects.h"

#include <gtest/gtest.h>

#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/memory_range.h"
#include "ELFLNK/object/load_segment.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/elf/elf_file.h"
#include "OBJEDIT04/elf/elf_types.h"
#include "OBJEDIT04/elf/segments/elf_segment.h"
#include "OBJEDIT04/elf/segments/elf_segment_table.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OPTIONGEN/option_obj.h"

using namespace OFE;

namespace {

class META_TEST : public testing::Test {
  protected:
    META_TEST() {
        global_opts = new option_obj(true);
        global_opts->setopt(OPT_output_file, "/dev/null");
        Target->finalize_options();
        auto* input =
            new_OBJECT_FILE(OF_FORMAT_ELF, OF_FORMAT_VER_ELF1, OF_MACHINE_ARM, nullptr, "a.o");
        input->section_table()->new_section("");
        auto* file = new OBJ_FILE("a.o", input);
        file_manager.register_object_file(file, false);
        file_manager.create_linker_files(file);
        table_ = elf_api(output_OF_FILE())->segment_table();
    }
    static META_SECTION* section(const char* name, unsigned size) {
        OF_SECTION* made = output_OF_FILE()->section_table()->new_section(name);
        made->set_size(size);
        return new META_SECTION(name, made);
    }
    static std::string said(META_SEGMENT& segment, META_SECTION* assigned) {
        testing::internal::CaptureStderr();
        if (assigned != nullptr)
            segment.assign_section(assigned);
        else
            segment.finalize_internal(nullptr, 0);
        return testing::internal::GetCapturedStderr();
    }

    ELF_SEGMENT_TABLE* table_;
};

} // namespace

TEST_F(META_TEST, a_segment_takes_one_section_and_is_as_large) {
    META_SEGMENT dynamic("PT_DYNAMIC", PT_DYNAMIC, PF_R | PF_W);
    META_SEGMENT note("PT_NOTE", PT_NOTE, PF_R);
    EXPECT_EQ(dynamic.size(), 0u);
    EXPECT_FALSE(dynamic.has_attr(PA_ALLOCATED));
    EXPECT_TRUE(dynamic.has_all_attrs(PA_READ | PA_HAS_DATA));
    EXPECT_EQ(said(dynamic, nullptr),
              "error: segment \"PT_DYNAMIC\" requires a section to be included\n");
    META_SECTION* first = section(".dynamic", 0x40);
    META_SECTION* second = section(".note", 8);
    EXPECT_EQ(said(dynamic, first), "");
    EXPECT_EQ(first->segment(), &dynamic);
    EXPECT_EQ(dynamic.size(), 0x40u);
    EXPECT_EQ(said(dynamic, second),
              "error: section \".dynamic\" has already been assigned to segment \"PT_DYNAMIC\";\n"
              "   cannot assign section \".note\"\n");
    EXPECT_EQ(said(note, first),
              "error: section \".dynamic\" has already been assigned to segment \"PT_DYNAMIC\";\n"
              "   cannot assign it to segment \"PT_NOTE\"\n");
    EXPECT_EQ(note.size(), 0u);
    EXPECT_EQ(said(dynamic, nullptr), "");
    const ELF_SEGMENT* header = table_->segment_type(PT_DYNAMIC, 0);
    ASSERT_EQ(header, dynamic.elf_segment());
    ASSERT_EQ(header->objects().size(), 1u);
    EXPECT_EQ(header->objects()[0].id, first->output_OF_SECTION()->id());
    EXPECT_EQ(header->header().p_flags, PF_R | PF_W);
}

TEST_F(META_TEST, headers_of_the_file_join_a_load_segment) {
    ELF_FILE_HEADER file(elf_api(output_OF_FILE()));
    ELF_PHDR_SEGMENT headers(table_);
    META_SEGMENT dynamic("PT_DYNAMIC", PT_DYNAMIC, PF_R);
    EXPECT_EQ(file.size(), 52u);
    EXPECT_EQ(headers.size(), 2u * 32);
    for (LINKER_OBJECT* object : std::initializer_list<LINKER_OBJECT*>{&file, &headers})
        EXPECT_TRUE(object->is_loaded() && object->is_dynamic() && object->is_leaf());
    LOAD_SEGMENT segment("ER_RO");
    segment.COLLECTION::add_member(&file);
    segment.COLLECTION::add_member(&headers);
    LOCATOR locator(LOCATOR_KIND::BOTH, &segment);
    segment.add_locator(&locator);
    locator.set_flag(LF_ORDERED);
    MEMORY_RANGE range("ROM", 0x8000, 0x100, MEMORY_RANGE::ATTR_ALL);
    ASSERT_TRUE(locator.insert_into_range(&range));
    EXPECT_EQ(file.run_address(), 0x8000u);
    EXPECT_EQ(headers.run_address(), 0x8034u);
    headers.finalize_internal(nullptr, 0);
    EXPECT_EQ(table_->segment_type(PT_PHDR, 0)->header().p_vaddr, 0x8034u);
    // The room is taken: the table may not grow any more.
    testing::internal::CaptureStderr();
    table_->new_segment();
    EXPECT_NE(testing::internal::GetCapturedStderr().find("has been frozen"), std::string::npos);
}
