#include <gtest/gtest.h>

#include "ELFLNK/ecc/ecc_manager.h"
#include "ELFLNK/parse_lcf/version_parser.h"
#include "ELFLNK/symver/symver_table.h"
#include "lcf_parse.h"

namespace {

const ECC_ALGORITHM& algorithm(const char* name) {
    const ECC_ALGORITHM* found = ecc_manager.find_algorithm(name);
    if (found == nullptr) throw std::runtime_error(std::string("no algorithm ") + name);
    return *found;
}

// Two ranges, of which the second one has the specification.
std::string with_spec(const std::string& spec) {
    return "MEMORY { IN : o = 0, l = 64\n E : o = 0x100, l = 8, " + spec +
           "\n PAGE 1: E : o = 0, l = 8 }";
}

using UINTS = std::vector<uint32_t>;

} // namespace

TEST(lcf_ecc, an_algorithm_with_all_its_parameters) {
    PARSE p("ECC { a1 : ADDRESS_MASK = 0xFF00 & 0x1F00, parity_mask 0x3c MIRRORING = BIRCH\n"
            "a2:parity_mask=(1 << 7) mirroring abcA, HAMMING_MASK = R4 }");
    EXPECT_EQ(p.messages, "");
    EXPECT_EQ(algorithm("a1").address_mask(), 0x1F00u);
    EXPECT_EQ(algorithm("a1").parity_mask(), 0x3Cu);
    EXPECT_EQ(algorithm("a1").block_size(), 8u);
    EXPECT_EQ(algorithm("a1").letters(), 2u);
    EXPECT_EQ(algorithm("a1").mirrors(1), (UINTS{1, 3, 5, 7}));
    EXPECT_EQ(algorithm("a2").address_mask(), 0xFFFFFFFFu);
    EXPECT_EQ(algorithm("a2").parity_mask(), 0x80u);
    EXPECT_EQ(algorithm("a2").mirrors(0), (UINTS{0, 3}));
    EXPECT_EQ(algorithm("a2").letters(), 3u);
    EXPECT_EQ(algorithm("a2").data_bits(), ECC_ALGORITHM::participating_data_bits);
}

TEST(lcf_ecc, tables_of_a_hamming_mask) {
    PARSE p("ECC { h : PARITY_MASK = 0 HAMMING_MASK = 8, 16, 24, 32, 40, 48, 56, 0xFFFFFFFF,\n"
            "0x01020304, 0x05060708, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16,\n"
            "MIRRORING = ASPEN }");
    EXPECT_EQ(p.messages, "");
    EXPECT_EQ(algorithm("h").address_bits(),
              (ECC_ALGORITHM::ADDRESS_BITS{1, 2, 3, 4, 5, 6, 7, 0x1FFFFFFF}));
    EXPECT_EQ(algorithm("h").data_bits()[0], 0x0807060504030201u);
    EXPECT_EQ(algorithm("h").data_bits()[7], 0x100000000F000000u);
    EXPECT_EQ(algorithm("h").block_size(), 1u);
}

TEST(lcf_ecc, faults_of_algorithms) {
    const struct {
        const char* text;
        const char* messages;
    } cases[] = {
        {"ECC { a : }",
         "\"t.cmd\", line 1: warning: Missing ECC parity mask; using default value of 0x0\n"},
        {"ECC { a : PARITY_MASK = 0x13c }",
         "\"t.cmd\", line 1: error: the parity mask is only 8 bits wide\n"},
        {"ECC { a : PARITY_MASK = 1, MIRRORING = AC }",
         "\"t.cmd\", line 1: error: not a valid ECC mirroring scheme: \"AC\"\n"},
        {"ECC { a : PARITY_MASK = 1, MIRRORING = A1 }",
         "\"t.cmd\", line 1: error: not a valid ECC mirroring scheme: \"A1\"\n"},
        {"ECC { a : PARITY_MASK = 1, HAMMING_MASK = FMC }",
         "\"t.cmd\", line 1: warning: Specifying ECC Hamming mask \"FMC\" is deprecated; remove "
         "hamming mask specification\n"},
        {"ECC { a : PARITY_MASK = 1, HAMMING_MASK = r4 }",
         "\"t.cmd\", line 1: error: not a valid ECC Hamming mask: \"r4\"\n"},
        {"ECC { a : PARITY_MASK = 1, HAMMING_MASK = 1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,"
         "19,20,21,22,23,24,25 }",
         "\"t.cmd\", line 1: error: not a valid ECC Hamming mask: \"25\"\n"},
        {"ECC { a : PARITY_MASK = 1, Address_mask = 3 }",
         "\"t.cmd\", line 1: error: not a valid ECC algorithm parameter name\n"},
        {"ECC { a : PARITY_MASK = x }",
         "\"t.cmd\", line 1: error: Expecting expression starting with integer, unary operator, or "
         "'(' instead of \"x\".\n"
         "\"t.cmd\", line 1: warning: Missing ECC parity mask; using default value of 0x0\n"},
        {"ECC { ; }", "\"t.cmd\", line 1: error: expecting \"<name>\" instead of \";\"\n"},
        {"ECC { a = }", "\"t.cmd\", line 1: error: expecting \"\":\"\" instead of \"=\"\n"},
        {"ECC { a : PARITY_MASK = 1",
         "\"t.cmd\", line 1: error: operator expected instead of \"\"\n"},
    };
    for (const auto& c : cases) EXPECT_EQ(PARSE(c.text).messages, c.messages) << c.text;
}

TEST(lcf_ecc, a_range_names_the_range_it_guards) {
    PARSE p(with_spec("ECC = { input_range = IN, input_page = 1 - 1 algorithm = a1, fill = no }"));
    EXPECT_EQ(p.messages, "");
    ASSERT_EQ(ecc_manager.specifications().size(), 1u);
    const ECC_SPECIFICATION& spec = *ecc_manager.specifications()[0];
    EXPECT_EQ(spec.input_range, p.range("IN"));
    EXPECT_EQ(spec.ecc_range, p.range("E"));
    EXPECT_EQ(p.range("IN")->ecc_spec(), &spec);
    EXPECT_EQ(p.range("E")->ecc_spec(), &spec);
    EXPECT_STREQ(spec.algorithm, "a1");
    EXPECT_TRUE(spec.no_fill);
    PARSE q(with_spec("ecc { INPUT_RANGE = IN FILL = YES }"));
    EXPECT_EQ(q.messages, "");
    EXPECT_EQ(ecc_manager.specifications()[1]->algorithm, nullptr);
    EXPECT_FALSE(ecc_manager.specifications()[1]->no_fill);
}

TEST(lcf_ecc, faults_of_specifications) {
    const auto messages = [](const std::string& text) { return PARSE(text).messages; };
    EXPECT_EQ(messages(with_spec("ECC = { fill = true }")),
              "\"t.cmd\", line 2: error: ECC specification requires an input range\n");
    EXPECT_EQ(messages(with_spec("ECC = { input_range = NONE }")),
              "\"t.cmd\", line 2: error: no such memory range: NONE\n");
    EXPECT_EQ(messages(with_spec("ECC = { input_range = IN, input_page = 1 }")),
              "\"t.cmd\", line 2: error: no such memory range: IN\n");
    EXPECT_EQ(messages(with_spec("ECC = { input_range = IN, fill = maybe }")),
              "\"t.cmd\", line 2: error: not a boolean constant: \"maybe\"\n");
    EXPECT_EQ(messages(with_spec("ECC = { input_range = IN, size = 3, fill = NO }")),
              "\"t.cmd\", line 2: error: not a valid ECC specification parameter name: \"size\"\n");
    EXPECT_EQ(
        messages("MEMORY { A : o = 0, l = 8  PAGE 1: A : o = 0, l = 8\n"
                 "PAGE 2: E : o = 0, l = 8, ECC = { input_range = A } }"),
        "\"t.cmd\", line 2: error: memory range A is not fully qualified without a page number "
        "because there are multiple ranges by that name\n");
    EXPECT_EQ(messages("MEMORY { A : o = 0, l = 8\nE : o = 8, l = 8, ECC = { input_range = A }\n"
                       "F : o = 16, l = 8, ECC = { input_range = E } }"),
              "\"t.cmd\", line 3: error: cannot calculate ECC for memory range E, which holds ECC "
              "itself\n");
}

TEST(lcf_version, definitions_of_a_block) {
    PARSE p("VERSION { V1 { GLOBAL: f*; g; LOCAL: *; };\n"
            "V2 { global:h; GLOBAL : \"i\"; } V1; }");
    EXPECT_EQ(p.messages, "");
    ASSERT_EQ(symver_table.verdefs().size(), 2u);
    const VER_DEF* first = symver_table.find_verdef("V1");
    const VER_DEF* second = symver_table.find_verdef("V2");
    EXPECT_EQ(first->predecessor(), nullptr);
    EXPECT_EQ(second->predecessor(), first);
    EXPECT_EQ(second->position().line(), 2u);
    EXPECT_EQ(symver_table.match_verdef("foo"), first);
    EXPECT_EQ(symver_table.match_verdef("h"), second);
    EXPECT_EQ(symver_table.match_verdef("i"), second);
    EXPECT_STREQ(symver_table.match_verdef("other")->name(), "<local>");
    EXPECT_EQ(symver_table.find_verdef("V3"), nullptr);
}

TEST(lcf_version, faults_of_definitions) {
    const struct {
        const char* text;
        const char* messages;
    } cases[] = {
        {"VERSION { A { }; B { GLOBAL: x; }; }",
         "\"t.cmd\", line 1: error: empty version definition found\n"},
        {"VERSION { C { GLOBAL: x; };\n C { GLOBAL: y; }; }",
         "\"t.cmd\", line 2: error: duplicate version tag:  \"C\"\n"},
        {"VERSION { D { LOCAL: x; } NONE; }",
         "\"t.cmd\", line 1: error: version dependency not found:  \"NONE\"\n"},
        {"VERSION { { GLOBAL: x; }; }",
         "\"t.cmd\", line 1: error: expecting version name instead of \"{\"\n"},
        {"VERSION { E { GLOBAL: x LOCAL: y; }; }",
         "\"t.cmd\", line 1: error: expecting \"\";\"\" instead of \"LOCAL\"\n"},
        {"VERSION { F { GLOBAL: x; } }",
         "\"t.cmd\", line 1: error: expecting \"\";\"\" instead of \"}\"\n"},
        {"VERSION { G { GLOBAL: x; ",
         "\"t.cmd\", line 1: error: end of file encountered unexpectedly\n"},
    };
    for (const auto& c : cases) EXPECT_EQ(PARSE(c.text).messages, c.messages) << c.text;
    const VER_DEF* doubled = symver_table.find_verdef("C");
    EXPECT_TRUE(doubled->match("x") && doubled->match("y"));
}

TEST(lcf_version, a_script_is_a_block_or_a_bare_list) {
    using SCRIPT = PARSE_AS<VERSION_PARSER>;
    EXPECT_EQ(SCRIPT("VERSION { S1 { GLOBAL: a; }; }").messages, "");
    EXPECT_EQ(SCRIPT("S2 { GLOBAL:b; LOCAL:*; };\nS3 { GLOBAL:c; } S2;\n").messages, "");
    EXPECT_EQ(symver_table.find_verdef("S3")->predecessor(), symver_table.find_verdef("S2"));
    EXPECT_STREQ(symver_table.match_verdef("a")->name(), "S1");
    EXPECT_EQ(SCRIPT("-o").messages,
              "\"t.cmd\", line 1: error: expecting version name instead of \"-\"\n"
              "\"t.cmd\", line 1: error: end of file encountered unexpectedly\n");
}
