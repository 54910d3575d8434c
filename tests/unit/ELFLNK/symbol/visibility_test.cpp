// --import and --export against what the inputs hold, and the visibility of a name's symbols.
#include <gtest/gtest.h>

#include "DIAG/diagnostic.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OPTIONGEN/option_obj.h"

using namespace OFE;

namespace {

/// A link with an ELF output and one input.
class visibility : public testing::Test {
  protected:
    void SetUp() override {
        global_opts = new option_obj(true);
        global_opts->setopt(OPT_output_file, "/dev/null");
        Target->finalize_options();
        object_ =
            new_OBJECT_FILE(OF_FORMAT_ELF, OF_FORMAT_VER_ELF1, OF_MACHINE_ARM, nullptr, "a.o");
        object_->section_table()->new_section("");
        auto* file = new OBJ_FILE("a.o", object_);
        file_manager.register_object_file(file, false);
        file_manager.create_linker_files(file);
    }
    OF_SYMBOL* symbol(const char* name, bool defined, unsigned vis) {
        OF_SYMBOL* sym = object_->symbol_table()->new_symbol();
        sym->set_name_view(name);
        sym->set_binding(OF_SYM_BINDING_GLOBAL);
        if (defined)
            sym->set_section(object_->section_table()->new_section(".data"));
        else
            sym->set_kind(OF_SYM_KIND_UNDEFINED);
        sym->set_visibility(vis);
        return sym;
    }
    IMPORT_STATE state_of(const std::string& name) {
        for (const auto& [known, state] : table_.sorted_import_names())
            if (name == known) return state;
        return IMPORT_STATE::NONE;
    }
    std::string messages_of(auto&& action) {
        testing::internal::CaptureStderr();
        action();
        return testing::internal::GetCapturedStderr();
    }

    OBJECT_FILE* object_ = nullptr;
    SYMBOL_TABLE table_;
};

TEST_F(visibility, the_stricter_one_goes_on_both) {
    constexpr unsigned FROM_STRICT[] = {OF_VIS_INTERNAL, OF_VIS_HIDDEN, OF_VIS_PROTECTED,
                                        OF_VIS_DEFAULT};
    for (unsigned d = 0; d < 4; d++)
        for (unsigned r = 0; r < 4; r++) {
            table_.clear_defs();
            OF_SYMBOL* def = symbol("x", true, FROM_STRICT[d]);
            OF_SYMBOL* ref = symbol("x", false, FROM_STRICT[r]);
            table_.link_def(def);
            table_.add_symbol(ref, false);
            table_.link_undef(ref);
            EXPECT_EQ(def->visibility(), FROM_STRICT[std::min(d, r)]) << d << r;
            EXPECT_EQ(ref->visibility(), FROM_STRICT[std::min(d, r)]) << d << r;
        }
}

TEST_F(visibility, of_references_without_a_definition_too) {
    OF_SYMBOL* first = symbol("x", false, OF_VIS_DEFAULT);
    OF_SYMBOL* second = symbol("x", false, OF_VIS_HIDDEN);
    for (OF_SYMBOL* sym : {first, second}) table_.add_symbol(sym, false);
    for (OF_SYMBOL* sym : {first, second}) table_.link_undef(sym);
    EXPECT_EQ(first->visibility(), unsigned(OF_VIS_HIDDEN));
}

TEST_F(visibility, an_exported_name_is_at_least_protected) {
    const struct {
        unsigned before, after;
    } cases[] = {{OF_VIS_INTERNAL, OF_VIS_PROTECTED},
                 {OF_VIS_HIDDEN, OF_VIS_PROTECTED},
                 {OF_VIS_PROTECTED, OF_VIS_PROTECTED},
                 {OF_VIS_DEFAULT, OF_VIS_DEFAULT}};
    for (const auto& c : cases) {
        SYMBOL_TABLE table;
        table.add_export_name("x");
        EXPECT_TRUE(table.need_def("x")) << "a name that is exported has to be there";
        OF_SYMBOL* def = symbol("x", true, c.before);
        table.add_symbol(def, false);
        EXPECT_EQ(def->visibility(), c.after) << c.before;
    }
}

TEST_F(visibility, an_import_is_refused_by_a_definition_and_in_force_by_a_reference) {
    table_.add_import_name("defined");
    table_.add_import_name("wanted");
    table_.add_import_name("unknown");
    OF_SYMBOL* ref = symbol("wanted", false, OF_VIS_HIDDEN);
    OF_SYMBOL* ref_of_def = symbol("defined", false, OF_VIS_DEFAULT);
    OF_SYMBOL* def = symbol("defined", true, OF_VIS_DEFAULT);
    const std::string messages = messages_of([&] {
        for (OF_SYMBOL* sym : {ref, ref_of_def, def}) table_.add_symbol(sym, false);
        table_.link_def(def);
        table_.link_undef(ref_of_def);
    });
    EXPECT_EQ(messages,
              "warning: symbol \"defined\" is defined in \"a.o\"; --import option ignored\n");
    EXPECT_EQ(ref->visibility(), unsigned(OF_VIS_DEFAULT));
    EXPECT_EQ(state_of("defined"), IMPORT_STATE::IMPORT_REFUSED);
    EXPECT_EQ(state_of("wanted"), IMPORT_STATE::IMPORT_IN_FORCE);
    EXPECT_EQ(state_of("unknown"), IMPORT_STATE::IMPORT_WANTED);
    EXPECT_TRUE(table_.import_required("wanted"));
    EXPECT_TRUE(table_.import_required("unknown"));
    EXPECT_FALSE(table_.import_required("defined"));
}

} // namespace
