// The index of specifications against the plain rule: try each in order; and the orders themselves.
#include "ELFLNK/collect/spec_matcher.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/filter/filter.h"
#include "ELFLNK/object/section_spec.h"
#include "ELFLNK/target/target.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/savestr.h"

namespace {

class SPEC_TEST : public testing::Test {
  protected:
    SPEC_TEST() {
        if (global_opts == nullptr) global_opts = new option_obj(true);
        Target->finalize_options();
    }

    /// A specification "file(names...)"; null for a part that isn't given.
    static SECTION_SPEC* spec(const char* name, const char* file,
                              const std::vector<const char*>& names) {
        static unsigned order = 0;
        auto* made = new SECTION_SPEC(name);
        made->set_order_number(++order);
        if (file != nullptr) made->add_file_name(savestr(file));
        for (const char* section : names) made->add_section_name(savestr(section));
        return made;
    }

    static std::string names(const std::vector<SECTION_SPEC*>& specs) {
        std::string text;
        for (const SECTION_SPEC* s : specs) text += std::string(s->name()) + " ";
        return text;
    }

    static std::string ordered(std::vector<SECTION_SPEC*> specs) {
        SECTION_SPEC::order_by_restrictiveness(specs);
        return names(specs);
    }

    /// The order as it is told: scan behind the one whose turn it is, for a narrower one.
    static std::vector<SECTION_SPEC*> scanned(std::vector<SECTION_SPEC*> slots) {
        std::vector<SECTION_SPEC*> result;
        for (std::size_t i = 0; i < slots.size();) {
            if (slots[i] == nullptr) {
                ++i;
                continue;
            }
            std::size_t best = i;
            for (std::size_t j = i + 1; j < slots.size(); ++j) {
                if (slots[j] == nullptr || slots[j]->section_filter() == nullptr) continue;
                if (slots[j]->is_default() != slots[best]->is_default()) break;
                if (slots[best]->section_filter() == nullptr ||
                    slots[best]->section_filter()->supersedes(slots[j]->section_filter()))
                    best = j;
            }
            result.push_back(slots[best]);
            slots[best] = nullptr;
            if (best == i) ++i;
        }
        return result;
    }

    static SECTION_SPEC* first_that_matches(const std::vector<SECTION_SPEC*>& specs,
                                            const char* name, OBJ_FILE* file) {
        for (SECTION_SPEC* s : specs)
            if (s->match_section(name, file)) return s;
        return nullptr;
    }
};

} // namespace

TEST_F(SPEC_TEST, the_index_finds_what_trying_each_in_order_finds) {
    const char* patterns[] = {".text", ".text:a", ".text*", ".data",  ".bss", "*",
                              ".t?xt", ".text.f", ".debug", "*.hot*", ".con", ".const"};
    const char* sections[] = {".text",   ".text:a",     ".text:a:b", ".text.f",  ".text.f:x",
                              ".data:z", ".bss",        ".textual",  ".debug_x", ".x.hot",
                              ".const",  ".const:.str", ".con",      "",         ":"};
    const char* file_patterns[] = {nullptr, "a.o", "*", "b*.o", "dir/a.o"};
    OBJ_FILE a("dir/a.o", nullptr);
    OBJ_FILE b("bb.o", nullptr);
    std::mt19937 random(11);
    for (int round = 0; round < 300; ++round) {
        std::vector<SECTION_SPEC*> specs;
        for (std::size_t n = random() % 12; n != 0; --n) {
            std::vector<const char*> list;
            for (std::size_t k = random() % 4; k != 0; --k)
                list.push_back(patterns[random() % std::size(patterns)]);
            specs.push_back(spec("s", file_patterns[random() % std::size(file_patterns)], list));
        }
        SPEC_MATCHER matcher(specs);
        for (OBJ_FILE* file : {&a, &b, &a})
            for (const char* name : sections)
                ASSERT_EQ(matcher.find(name, file), first_that_matches(specs, name, file))
                    << "round " << round << " section " << name;
    }
}

TEST_F(SPEC_TEST, without_a_section_list_only_plain_file_names_take_sections) {
    OBJ_FILE a("dir/a.o", nullptr);
    EXPECT_FALSE(spec("s", "*", {})->match_section(".text", &a));
    EXPECT_TRUE(spec("s", "a.o", {})->match_section(".text", &a));
    EXPECT_FALSE(spec("s", "b.o", {})->match_section(".text", &a));
    EXPECT_TRUE(spec("s", "*", {".text"})->match_section(".text", &a));
}

TEST_F(SPEC_TEST, a_member_pattern_needs_an_archive_member) {
    OBJ_FILE a("a.o", nullptr);
    SECTION_SPEC* members = spec("s", nullptr, {".text"});
    members->add_ar_member_name("a.o");
    EXPECT_FALSE(members->match_section(".text", &a));
}

TEST_F(SPEC_TEST, narrower_specifications_move_in_front_of_wider_ones) {
    EXPECT_EQ(ordered({spec("wide", "*", {".text*"}), spec("hot", "*", {".text.hot"})}),
              "hot wide ");
    EXPECT_EQ(ordered({spec("all", "*", {"*"}), spec("text", "*", {".text*"}),
                       spec("data", "*", {".data"}), spec("hot", "*", {".text.hot"})}),
              "hot text data all ");
}

TEST_F(SPEC_TEST, the_order_is_that_of_a_scan_behind_each_one) {
    const char* patterns[] = {".text", ".text*", ".text:a", "*",  ".t*",    ".text.hot",
                              ".d*",   ".data",  ".te?t",   "*t", ".text:*"};
    std::mt19937 random(17);
    for (int round = 0; round < 500; ++round) {
        std::vector<SECTION_SPEC*> specs;
        const std::size_t count = random() % 14;
        const std::size_t defaults = random() % 14;
        for (std::size_t i = 0; i < count; ++i) {
            std::vector<const char*> list;
            for (std::size_t k = random() % 3; k != 0; --k)
                list.push_back(patterns[random() % std::size(patterns)]);
            specs.push_back(spec("s", nullptr, list));
            specs.back()->set_is_default(i >= defaults);
        }
        std::vector<SECTION_SPEC*> sorted = specs;
        SECTION_SPEC::order_by_restrictiveness(sorted);
        ASSERT_EQ(sorted, scanned(specs)) << "round " << round;
    }
}

TEST_F(SPEC_TEST, equal_patterns_keep_the_written_order_whatever_the_files) {
    EXPECT_EQ(ordered({spec("any", "*", {".text"}), spec("one", "a.o", {".text"})}), "any one ");
}

TEST_F(SPEC_TEST, default_specifications_stay_behind_written_ones) {
    SECTION_SPEC* wide = spec("wide", "*", {".text*"});
    SECTION_SPEC* fallback = spec("default", nullptr, {".text.hot"});
    fallback->set_is_default();
    EXPECT_EQ(ordered({wide, fallback}), "wide default ");
}

TEST_F(SPEC_TEST, default_specifications_go_by_the_number_of_their_output_section) {
    auto fallback = [](const char* name, uint32_t order) {
        auto* made = new SECTION_SPEC(name);
        made->set_is_default();
        if (order == ~0U) return made;
        auto* outsect = new COLLECTION(name, COLLECTION_OUTSECT);
        outsect->set_order_number(order);
        outsect->add_member(made);
        return made;
    };
    std::vector<SECTION_SPEC*> specs = {fallback("loose", ~0U), fallback("late", 0),
                                        fallback("second", 7),  fallback("first", 3),
                                        fallback("later", 0),   spec("written", nullptr, {".x"})};
    std::sort(specs.begin(), specs.end(), SECTION_SPEC::less_order);
    EXPECT_EQ(names(specs), "written first second late later loose ");
}
