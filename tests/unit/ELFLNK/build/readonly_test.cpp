// References of read-only sections: which may stay, and how the others are told.
#include <gtest/gtest.h>

#include "DIAG/diagnostic.h"
#include "ELFLNK/build/build.h"
#include "ELFLNK/build/build_state.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/elf/elf_types.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_reloc.h"
#include "OBJEDIT04/ofe/of_reloc_table.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OPTIONGEN/option_obj.h"

using namespace OFE;

namespace {

class readonly : public testing::Test {
  protected:
    void SetUp() override {
        global_opts = new option_obj(true);
        global_opts->setopt(OPT_output_file, "/dev/null");
        Target->finalize_options();
        input_ = new_OBJECT_FILE(OF_FORMAT_ELF, OF_FORMAT_VER_ELF1, OF_MACHINE_ARM, nullptr, "a.o");
        input_->section_table()->new_section("");
        auto* file = new OBJ_FILE("a.o", input_);
        file_manager.register_object_file(file, false);
        file_manager.create_linker_files(file);
        section_ = input_->section_table()->new_section(".rom");
        section_->set_const_data();
    }
    /// A relocation to a symbol that stands in the output, in a section with these flags if any.
    void reference(const char* name, OF_SYM_BINDING binding, const char* section, unsigned flags) {
        OF_SYMBOL* ends[2];
        OBJECT_FILE* files[2] = {input_, output_OF_FILE()};
        for (int i = 0; i < 2; i++) {
            ends[i] = files[i]->symbol_table()->new_symbol();
            ends[i]->set_name(name);
            ends[i]->set_binding(binding);
            ends[i]->set_kind(OF_SYM_KIND_UNDEFINED);
        }
        if (section != nullptr) {
            OF_SECTION* home = output_OF_FILE()->section_table()->new_section(section);
            home->set_ext_flags(flags);
            ends[1]->set_section(home);
        }
        ends[0]->set_resolved_by(ends[1]);
        OF_RELOC* rel = section_->new_reloc(false);
        rel->set_type(input_->machine_reloc_type(2));
        rel->set_symbol(ends[0]);
    }
    std::string report() {
        enforce_readonly_relocs(section_);
        testing::internal::CaptureStderr();
        report_readonly_violations();
        return testing::internal::GetCapturedStderr();
    }

    OBJECT_FILE* input_ = nullptr;
    OF_SECTION* section_ = nullptr;
};

TEST_F(readonly, what_is_bound_may_be_referred_to) {
    reference("bound", OF_SYM_BINDING_GLOBAL, ".bound", QV_SHF_BOUND);
    EXPECT_EQ(report(), "");
    EXPECT_EQ(DIAGNOSTIC::error_count_m, 0);
}

TEST_F(readonly, other_references_are_listed_by_name) {
    reference("weak", OF_SYM_BINDING_WEAK, nullptr, 0);
    reference("zz", OF_SYM_BINDING_GLOBAL, nullptr, 0);
    reference("free", OF_SYM_BINDING_GLOBAL, ".free", 0);
    reference("aa", OF_SYM_BINDING_GLOBAL, nullptr, 0);
    reference("aa", OF_SYM_BINDING_GLOBAL, nullptr, 0);
    EXPECT_EQ(report(), R"(
 unbound first referenced defined
 symbol         in           in
 ------- ---------------- -------
 free    a.o

error: symbols referenced in READONLY sections must have BOUND addresses

 undefined first referenced
   symbol         in
 --------- ----------------
 aa        a.o
 zz        a.o

error: symbols referenced in READONLY sections must be defined

 undefined first weak reference
   symbol           in
 --------- --------------------
 weak      a.o

warning: weak references to undefined symbols in READONLY sections are
   permanently resolved as zero
)");
    EXPECT_EQ(DIAGNOSTIC::error_count_m, 2);
}

TEST_F(readonly, a_suppressed_warning_has_no_table) {
    reference("weak", OF_SYM_BINDING_WEAK, nullptr, 0);
    DIAGNOSTIC::override_severity("10226", dc_SUPPRESSED);
    EXPECT_EQ(report(), "");
}

} // namespace
