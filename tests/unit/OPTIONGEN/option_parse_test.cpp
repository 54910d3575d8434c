// What the user may write, and what the options are then.
#include "DIAG/diagnostic.h"
#include "OPTIONGEN/option_obj.h"
#include "OPTIONGEN/option_table.h"

#include <gtest/gtest.h>

#include <deque>
#include <set>
#include <string>

namespace {

std::deque<std::string> words;

const char* next_word() {
    static std::string word;
    if (words.empty()) return nullptr;
    word = words.front();
    words.pop_front();
    return word.c_str();
}

/// An option object that reads the given words; the first is the option, with its dash.
struct Parsed {
    option_obj options{true};
    bool accepted = true;

    explicit Parsed(std::initializer_list<const char*> line) {
        words.assign(line.begin(), line.end());
        option_obj::next_arg = next_word;
        while (!words.empty() && accepted) {
            const std::string word = next_word();
            accepted = word[0] == '-' && options.process_option(word.c_str() + 1);
        }
    }
};

std::string messages_of(auto&& action) {
    char* text = nullptr;
    size_t size = 0;
    FILE* to = open_memstream(&text, &size);
    DIAGNOSTIC::fp_m = to;
    DIAGNOSTIC::wrap_enabled_m = false;
    action();
    DIAGNOSTIC::fp_m = nullptr;
    fclose(to);
    const std::string result(text, size);
    free(text);
    return result;
}

TEST(option_parse, every_spelling_of_a_value_names_the_same_file) {
    const std::initializer_list<const char*> lines[] = {
        {"-o", "a"}, {"-oa"}, {"-o=a"}, {"--output_file=a"}, {"--output_file", "a"}, {"-o=", "a"}};
    for (const auto& line : lines) {
        Parsed parsed(line);
        EXPECT_TRUE(parsed.accepted) << *line.begin();
        EXPECT_STREQ(parsed.options.getstrarg(OPT_output_file), "a") << *line.begin();
    }
}

TEST(option_parse, numbers_are_read_by_their_radix) {
    const std::pair<const char*, long> cases[] = {{"0x800", 0x800}, {"800h", 0x800},
                                                  {"2048", 2048},   {"0X1f", 0x1f},
                                                  {"010", 8},       {"17q", 15},
                                                  {"0ah", 10},      {"08", 8},
                                                  {"0", 0},         {"4294967295", 0xffffffffL}};
    for (const auto& [text, number] : cases) {
        Parsed parsed({"--stack_size", text});
        EXPECT_EQ(parsed.options.getnumarg(OPT_stack_size), number) << text;
    }
}

TEST(option_parse, short_flags_are_joined_and_the_longest_spelling_wins) {
    Parsed joined({"-ar"});
    EXPECT_TRUE(joined.options.isopt(OPT_absolute_exe) && joined.options.isopt(OPT_relocatable));
    Parsed abs({"-abs"});
    EXPECT_TRUE(abs.options.isopt(OPT_run_abs));
    EXPECT_FALSE(abs.options.isopt(OPT_absolute_exe));
    Parsed ab({"-ab"});
    EXPECT_TRUE(ab.options.isopt(OPT_absolute_exe) && ab.options.isopt(OPT_no_sym_merge));
    EXPECT_FALSE(ab.options.isopt(OPT_run_abs));
    Parsed last_takes_a_value({"-rofile"});
    EXPECT_TRUE(last_takes_a_value.options.isopt(OPT_relocatable));
    EXPECT_STREQ(last_takes_a_value.options.getstrarg(OPT_output_file), "file");
    Parsed stack({"-stack=16", "-s"});
    EXPECT_EQ(stack.options.getnumarg(OPT_stack_size), 16);
    EXPECT_TRUE(stack.options.isopt(OPT_no_symtable));
}

TEST(option_parse, what_is_no_option_is_refused) {
    for (const char* word : {"--output_fil=a", "--output_filex", "--relocatable=1", "--nosuch", "-",
                             "-z", "-a?", "--priority1", "--", "--debugx"}) {
        Parsed parsed({word});
        EXPECT_FALSE(parsed.accepted) << word;
    }
}

TEST(option_parse, the_unknown_rest_of_joined_flags_is_reported) {
    option_obj options(true);
    const char* rest = nullptr;
    EXPECT_FALSE(options.process_option("ar?x", &rest));
    EXPECT_STREQ(rest, "?x");
    EXPECT_TRUE(options.isopt(OPT_absolute_exe));
}

TEST(option_parse, another_case_is_accepted_with_a_warning) {
    const std::string text = messages_of([] {
        Parsed parsed({"--OUTPUT_File=a", "-R"});
        EXPECT_STREQ(parsed.options.getstrarg(OPT_output_file), "a");
        EXPECT_TRUE(parsed.options.isopt(OPT_relocatable));
    });
    EXPECT_EQ(text, "warning: Case insensitivity of options has been deprecated; --OUTPUT_File "
                    "must be written as "
                    "--output_file in future releases\n"
                    "warning: Case insensitivity of options has been deprecated; -R must be "
                    "written as -r in future "
                    "releases\n");
}

TEST(option_parse, an_optional_value_has_a_default_and_is_never_the_next_word) {
    Parsed alone({"--unused_section_elimination"});
    EXPECT_TRUE(alone.options.isvalue(OPT_unused_section_elimination, OPTV_onoff_on));
    Parsed off({"--unused_section_elimination=OFF"});
    EXPECT_FALSE(off.options.not_off(OPT_unused_section_elimination));
    EXPECT_STREQ(off.options.getstrarg(OPT_unused_section_elimination), "off");
    Parsed next({"--generate_dead_funcs_list", "-r"});
    EXPECT_TRUE(next.options.isopt(OPT_generate_dead_funcs_list) &&
                next.options.isopt(OPT_relocatable));
    EXPECT_EQ(next.options.getargcount(OPT_generate_dead_funcs_list), 0u);
}

TEST(option_parse, lists_keep_every_value_and_others_the_last) {
    Parsed parsed(
        {"-u", "a", "--undef_sym=b", "-o", "x", "-o", "y", "--debug:map,load=2", "--define=N=1"});
    EXPECT_EQ(parsed.options.getargcount(OPT_undef_sym), 2u);
    EXPECT_STREQ(parsed.options.getstrarg(OPT_undef_sym, 1), "b");
    EXPECT_EQ(parsed.options.getargcount(OPT_output_file), 1u);
    EXPECT_STREQ(parsed.options.getstrarg(OPT_output_file), "y");
    EXPECT_STREQ(parsed.options.getstrarg(OPT_debug), "map,load=2");
    EXPECT_STREQ(parsed.options.getstrarg(OPT_define), "N=1");
    EXPECT_EQ(parsed.options.getstrarg(OPT_output_file, 1), nullptr);
    // The history has both -u and only the last -o.
    EXPECT_EQ(parsed.options.history().size(), 7u); // with the two defaults
    EXPECT_EQ(parsed.options.state(OPT_output_file), 2u);
}

TEST(option_parse, the_later_of_two_models_wins_silently) {
    const std::string text = messages_of([] {
        Parsed parsed({"--ram_model", "--rom_model"});
        EXPECT_FALSE(parsed.options.isopt(OPT_ram_model));
        EXPECT_TRUE(parsed.options.isopt(OPT_rom_model));
        EXPECT_EQ(parsed.options.seen(OPT_ram_model), 2u);
    });
    EXPECT_EQ(text, "");
}

TEST(option_parse, a_persistent_option_cannot_be_cleared) {
    Parsed parsed({"--ecc=on"});
    parsed.options.clearopt(OPT_ecc);
    EXPECT_TRUE(parsed.options.isvalue(OPT_ecc, OPTV_onoff_on));
    EXPECT_TRUE(parsed.options.isvalue(OPT_embedded_constants, OPTV_onoff_on));
}

struct BAD_LINE {
    std::vector<const char*> line;
    const char* message;
};

class OPTION_ERROR : public testing::TestWithParam<BAD_LINE> {};

TEST_P(OPTION_ERROR, ends_the_run_with_status_1) {
    const auto run = [] {
        DIAGNOSTIC::wrap_enabled_m = false;
        option_obj options(true);
        option_obj::next_arg = next_word;
        words.assign(GetParam().line.begin(), GetParam().line.end());
        while (!words.empty()) {
            const std::string word = next_word();
            options.process_option(word.c_str() + 1);
        }
        options.post_process_option_depends();
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(1), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    , OPTION_ERROR,
    testing::Values(
        BAD_LINE{{"--output_file"},
                 "^error: option --output_file is missing its parameter 'file'\n$"},
        BAD_LINE{{"--zero_init="},
                 "^error: option --zero_init is missing its parameter 'on,off'\n$"},
        BAD_LINE{{"--dynamic=foo"},
                 "^error: bad argument to option --dynamic: should be one of .exe,lib.\n$"},
        BAD_LINE{
            {"--stack=-1"},
            "argument to option --stack .-1. is out of range .must be a non-negative_number.\n$"},
        BAD_LINE{{"--stack_size=0x100000000"},
                 "argument to option --stack_size .0x100000000. is out of range\n$"},
        BAD_LINE{{"--heap_size=much"}, "argument to option --heap_size .much. is out of range\n$"},
        BAD_LINE{{"-v7"},
                 "argument to option -v .7. is out of range .must be a number from 0 to 2\n$"},
        BAD_LINE{{"--be8", "--be32"},
                 "^error: option --be32 conflicts with previous option --be8\n$"},
        BAD_LINE{{"-e", "main", "--no_entry_point"},
                 "option --no_entry_point conflicts with previous option -e\n$"},
        BAD_LINE{{"--ecc=on", "-r"}, "^error: Option --ecc is not valid with --relocatable.-r.\n$"},
        BAD_LINE{{"--ecc:data_error=0,1"},
                 "^error: Option --ecc:data_error is not valid without --ecc\n$"},
        BAD_LINE{{"--emit_references:format=TEXT"},
                 "Option --emit_references:format is not valid without "
                 "--emit_references:file\n$"}));

TEST(option_depends, an_option_without_its_condition_is_cleared_with_a_warning) {
    const std::string text = messages_of([] {
        Parsed parsed({"--bind_now", "--export=f", "--soname=s", "--rom_model"});
        parsed.options.post_process_option_depends();
        EXPECT_FALSE(parsed.options.isopt(OPT_bind_now) || parsed.options.isopt(OPT_export) ||
                     parsed.options.isopt(OPT_soname));
        EXPECT_TRUE(parsed.options.isopt(OPT_rom_model));
    });
    EXPECT_EQ(
        text,
        "warning: Option --bind_now is not valid without --sysv (ignored)\n"
        "warning: Option --export is not valid without --dynamic or --sysv or --rom (ignored)\n"
        "warning: Option --soname is not valid without --dynamic or --sysv or --rom or --platform "
        "(ignored)\n");
}

TEST(option_depends, conditions_that_hold_leave_options_alone) {
    const std::string text = messages_of([] {
        Parsed parsed({"--sysv", "--bind_now", "--export=f", "--emit_references:file=r",
                       "--ecc=off", "-o=main"});
        parsed.options.post_process_option_depends();
        EXPECT_TRUE(parsed.options.isopt(OPT_bind_now) && parsed.options.isopt(OPT_export));
        EXPECT_STREQ(parsed.options.getstrarg(OPT_emit_references_format), "TEXT");
    });
    EXPECT_EQ(text, "");
}

TEST(option_depends, a_short_output_name_like_a_level_is_suspicious) {
    const auto warnings = [](const char* word) {
        return messages_of([word] { Parsed({word}).options.post_process_option_depends(); });
    };
    EXPECT_NE(warnings("-o3").find("looks like an optimization level"), std::string::npos);
    EXPECT_EQ(warnings("--output_file=3"), "");
    EXPECT_EQ(warnings("-o5"), "");
}

TEST(option_table, spellings_are_unique_and_parse_to_their_option) {
    std::set<std::string_view> seen;
    for (const OPTION_SPELLING& spelling : option_spellings()) {
        EXPECT_TRUE(seen.insert(spelling.text).second) << spelling.text;
        const OPTION_DEF& def = option_def(spelling.id);
        option_obj options(false);
        options.check_conflicts = false;
        words.clear();
        if (takes_parameter(def.kind) && !parameter_optional(def.kind))
            words.push_back(def.items.empty() ? "1" : def.items[0].text);
        option_obj::next_arg = next_word;
        EXPECT_TRUE(options.process_option(std::string(spelling.text).c_str())) << spelling.text;
        for (unsigned id = 0; id < OPTION_COUNT; id++)
            EXPECT_EQ(options.isopt(option_id(id)), id == spelling.id)
                << spelling.text << " sets " << id;
    }
}

TEST(option_table, an_exported_option_parses_to_the_same) {
    Parsed parsed({"-o", "a.out", "-u", "f", "-u", "g", "--abi=eabi", "-r", "--remap_symref:x=y",
                   "--zero_init"});
    option_obj again(false);
    for (const std::string& word : parsed.options.export_option_list())
        EXPECT_TRUE(again.process_option(word.c_str() + 1)) << word;
    EXPECT_EQ(again.export_option_list(), parsed.options.export_option_list());
    EXPECT_EQ(again.export_option_list().front(), "--abi=eabi");         // sort number 200
    EXPECT_EQ(again.export_option_list().back(), "--output_file=a.out"); // sort number 900
}

TEST(option_table, pairs_are_those_of_a_class_and_a_kind) {
    using PAIRS = std::vector<std::pair<std::string, std::string>>;
    Parsed parsed({"-u", "f", "-e", "main", "-u", "g", "--retain=x", "-s", "-o", "a.out"});
    EXPECT_EQ(parsed.options.export_option_pairs(REQ_STRINGS, CLASS_SYMBOLS),
              (PAIRS{{"--retain", "x"}, {"--undef_sym", "f"}, {"--undef_sym", "g"}}));
    EXPECT_EQ(parsed.options.export_option_pairs(FLAG, CLASS_SYMBOLS),
              (PAIRS{{"--no_symtable", ""}}));
    EXPECT_EQ(parsed.options.export_option_pairs(REQ_STRING, CLASS_DYNAMIC), PAIRS{});
}

std::string extension_value;
constexpr extension_option two_extensions[] = {
    {"qv_extra", nullptr,
     [](const char* value) { extension_value = value == nullptr ? "none" : "?"; }, ""},
    {"output_file", "file", [](const char*) { extension_value = "taken from the table"; }, ""},
};

TEST(option_extension, is_asked_only_for_what_the_table_does_not_know) {
    option_obj::extensions = two_extensions;
    EXPECT_TRUE(Parsed({"--qv_extra"}).accepted);
    EXPECT_EQ(extension_value, "none");
    EXPECT_FALSE(Parsed({"--qv_extra=1"}).accepted);
    EXPECT_TRUE(Parsed({"--output_file=a"}).accepted);
    EXPECT_EQ(extension_value, "none");
    option_obj::extensions = {};
}

TEST(option_obj, prints_each_step_and_each_option_on_demand) {
    testing::internal::CaptureStdout();
    option_obj options(true);
    options.debug = true;
    EXPECT_TRUE(options.process_option("-retain=a"));
    EXPECT_TRUE(options.process_option("-retain=b"));
    EXPECT_TRUE(options.process_option("a"));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "elnk option debug: --retain: state 1, seen 1, parsed 1, values \"a\"\n"
              "elnk option debug: --retain: state 2, seen 2, parsed 2, values \"a\", \"b\"\n"
              "elnk option debug: --absolute_exe: state 1, seen 1, parsed 1\n");
}

TEST(option_obj, rot13_keeps_five_results) {
    const char* results[5];
    const char* const texts[] = {"--Help=%s", "azAZ nmNM", "", "0129_:", "be8"};
    const char* const turned[] = {"%%Uryc=-f", "nmNM azAZ", "", "0129_:", "or8"};
    for (int i = 0; i < 5; i++) results[i] = option_obj::rot13(texts[i]);
    for (int i = 0; i < 5; i++) EXPECT_STREQ(results[i], turned[i]);
    EXPECT_STREQ(option_obj::rot13(results[0]), texts[0]);
}

} // namespace
