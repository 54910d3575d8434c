// The table's rules on symbols of object files that are built in memory.
#include "ELFLNK/symbol/symbol_table.h"

#include <gtest/gtest.h>

#include <cstring>

#include "DIAG/diagnostic.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "OPTIONGEN/option_obj.h"

using namespace OFE;

namespace {

OBJECT_FILE* new_file(const char* name) {
    OBJECT_FILE* object =
        new_OBJECT_FILE(OF_FORMAT_ELF, OF_FORMAT_VER_ELF1, OF_MACHINE_ARM, nullptr, name);
    object->section_table()->new_section("");
    file_manager.register_object_file(new OBJ_FILE(name, object), false);
    return object;
}

// One letter per kind: d defined in a section, a absolute, c common, u undefined; upper case is
// weak.
OF_SYMBOL* new_symbol(OBJECT_FILE* file, const char* name, char kind, unsigned number = 0) {
    OF_SYMBOL* sym = file->symbol_table()->new_symbol();
    sym->set_name_view(name);
    switch (std::tolower(kind)) {
    case 'd':
        sym->set_section(file->section_table()->new_section(".data"));
        break;
    case 'a':
        sym->set_kind(OF_SYM_KIND_ABSOLUTE);
        break;
    case 'c':
        sym->set_kind(OF_SYM_KIND_COMMON);
        break;
    default:
        sym->set_kind(OF_SYM_KIND_UNDEFINED);
        break;
    }
    if (std::tolower(kind) == 'c')
        sym->set_size(number);
    else
        sym->set_value(number);
    sym->set_binding(std::isupper(kind) ? OF_SYM_BINDING_WEAK : OF_SYM_BINDING_GLOBAL);
    return sym;
}

class symbol_table : public testing::Test {
  protected:
    void SetUp() override {
        global_opts = new option_obj(true);
        Target->finalize_options();
        first = new_file("first.o");
        second = new_file("second.o");
    }
    OBJECT_FILE* first = nullptr;
    OBJECT_FILE* second = nullptr;
    SYMBOL_TABLE table;
};

struct REDEFINITION {
    const char* rule;
    char first_kind;
    unsigned first_number;
    char second_kind;
    unsigned second_number;
    bool second_wins;
    bool is_error;
};

constexpr REDEFINITION REDEFINITIONS[] = {
    {"two weak keep the first", 'D', 0, 'D', 0, false, false},
    {"a weak one yields", 'D', 0, 'd', 0, true, false},
    {"a weak newcomer loses", 'd', 0, 'D', 0, false, false},
    {"a weak absolute yields to a common", 'A', 1, 'c', 4, true, false},
    {"the larger common wins", 'c', 4, 'c', 8, true, false},
    {"whatever the order", 'c', 8, 'c', 4, false, false},
    {"equal commons keep the first", 'c', 4, 'c', 4, false, false},
    {"equal absolutes", 'a', 5, 'a', 5, false, false},
    {"different absolutes", 'a', 5, 'a', 6, false, true},
    {"two strong", 'd', 0, 'd', 0, false, true},
    {"a common and a strong one", 'c', 4, 'd', 0, false, true},
    {"an absolute and a strong one", 'a', 4, 'd', 0, false, true},
};

} // namespace

TEST_F(symbol_table, redefinitions_are_settled_by_the_first_rule_that_decides) {
    for (const REDEFINITION& r : REDEFINITIONS) {
        OF_SYMBOL* e = new_symbol(first, r.rule, r.first_kind, r.first_number);
        OF_SYMBOL* n = new_symbol(second, r.rule, r.second_kind, r.second_number);
        const unsigned errors = DIAGNOSTIC::error_count_m;
        table.link_def(e);
        table.link_def(n);
        OF_SYMBOL* winner = r.second_wins ? n : e;
        EXPECT_EQ(table.lookup_def(r.rule), winner) << r.rule;
        EXPECT_EQ((r.second_wins ? e : n)->resolved_by_final(), winner) << r.rule;
        EXPECT_EQ(DIAGNOSTIC::error_count_m - errors, r.is_error ? 1u : 0u) << r.rule;
    }
}

TEST_F(symbol_table, a_linker_symbol_stays_against_any_strong_definition) {
    OF_SYMBOL* input = new_symbol(first, "x", 'd');
    OF_SYMBOL* made = new_symbol(second, "x", 'a', 1);
    table.update_linker_symbol(made, nullptr);
    EXPECT_EQ(table.check_redefinition(input, made), made);
    EXPECT_EQ(table.check_redefinition(made, input), made);
}

TEST_F(symbol_table, a_strong_reference_stays_ahead_of_a_weak_one) {
    OF_SYMBOL* weak = new_symbol(first, "x", 'U');
    OF_SYMBOL* strong = new_symbol(second, "x", 'u');
    OF_SYMBOL* later = new_symbol(second, "x", 'u');
    table.add_symbol(weak, false);
    EXPECT_FALSE(table.need_def("x"));
    EXPECT_TRUE(table.undef_matters(table.find_id("x"), false));
    EXPECT_FALSE(table.undef_matters(table.find_id("x"), true));
    table.add_symbol(strong, false);
    table.add_symbol(later, false);
    table.add_symbol(weak, false);
    OF_SYMBOL* out = nullptr;
    EXPECT_TRUE(table.need_def("x", &out));
    EXPECT_EQ(out, strong);
    EXPECT_EQ(table.take_needs(), std::vector<uint32_t>{table.find_id("x")});
}

TEST_F(symbol_table, a_definition_ends_the_need_and_the_first_one_stays) {
    OF_SYMBOL* def = new_symbol(first, "x", 'd');
    table.add_undef_name("x");
    EXPECT_TRUE(table.need_def("x"));
    table.add_symbol(def, false);
    table.add_symbol(new_symbol(second, "x", 'd'), false);
    EXPECT_FALSE(table.need_def("x"));
    EXPECT_EQ(table.lookup_def("x"), def);
    table.add_symbol(new_symbol(second, "x", 'u'), false);
    EXPECT_FALSE(table.is_undef_name("x"));
}

TEST_F(symbol_table, undefined_symbols_of_a_name_form_a_chain_to_one) {
    OF_SYMBOL* a = new_symbol(first, "x", 'u');
    OF_SYMBOL* b = new_symbol(second, "x", 'u');
    table.add_symbol(a, false);
    table.add_symbol(b, false);
    table.link_undef(a);
    table.link_undef(b);
    EXPECT_EQ(b->resolved_by_final(), a);
    EXPECT_EQ(a->resolved_by(), nullptr);
    ASSERT_EQ(table.sorted_undefs().size(), 1u);
    EXPECT_EQ(table.sorted_undefs()[0].second, a);
}

TEST_F(symbol_table, a_mapped_reference_is_served_by_the_other_name) {
    table.add_mapping_entry(nullptr, "ref", "def");
    OF_SYMBOL* ref = new_symbol(first, "ref", 'u');
    OF_SYMBOL* def = new_symbol(second, "def", 'd');
    table.add_symbol(ref, false);
    EXPECT_TRUE(table.need_def("def"));
    EXPECT_FALSE(table.need_def("ref"));
    table.add_symbol(def, false);
    EXPECT_FALSE(table.need_def("def"));
    table.link_undef(ref);
    EXPECT_EQ(ref->resolved_by_final(), def);
    EXPECT_STREQ(table.mapped_to("ref"), "def");
    EXPECT_STREQ(table.mapped_to("other"), "other");
}

TEST_F(symbol_table, a_replacement_takes_every_place_of_a_symbol) {
    OF_SYMBOL* old = new_symbol(first, "x", 'd');
    OF_SYMBOL* replacement = new_symbol(second, "x", 'd');
    table.add_entry_symbol(old);
    table.add_symbol(old, false);
    table.update_linker_symbol(old, nullptr);
    table.update_symbol(old, replacement);
    EXPECT_EQ(table.lookup_def("x"), replacement);
    EXPECT_EQ(table.entry_symbols(), std::vector<OF_SYMBOL*>{replacement});
    EXPECT_TRUE(table.is_linker_symbol(replacement));
    EXPECT_FALSE(table.is_linker_symbol(old));
    EXPECT_EQ(SYMBOL_TABLE::resolution(old), replacement);
    EXPECT_EQ(SYMBOL_TABLE::resolution(nullptr), nullptr);
}

TEST_F(symbol_table, walks_go_in_name_order) {
    for (const char* name : {"b", "a", "ab", "_", "B"})
        table.add_symbol(new_symbol(first, name, 'd'), false);
    std::string order;
    for (OF_SYMBOL* sym : table.sorted_defs()) order += std::string(sym->name()) + " ";
    EXPECT_EQ(order, "B _ a ab b ");
    table.clear_defs();
    EXPECT_TRUE(table.sorted_defs().empty());
}
