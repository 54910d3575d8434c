// Which name is offered for one that nothing defines; a plain comparison of all pairs agrees.
#include "ELFLNK/symbol/similar_names.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace {

std::string similar(const char* wanted, std::initializer_list<const char*> defined) {
    SIMILAR_NAMES names({wanted});
    for (const char* name : defined) names.offer(name, nullptr);
    return std::string(names.best(0).name);
}

TEST(similar_names, differ_in_case_underscores_or_one_letter) {
    const struct {
        const char* wanted;
        const char* defined;
        bool alike;
    } cases[] = {
        {"uart_init", "UartInit", true},
        {"main", "_main", true},
        {"memcpy", "memcopy", true},
        {"memcopy", "memcpy", true},
        {"strcmp", "strcnp", true},
        {"receive", "recieve", true},
        {"abcd", "bacd", true},
        {"abcd", "abdc", true},
        {"abcd", "badc", false},
        {"get", "put", false},
        {"get", "set", false},
        {"GET", "get", true},
        {"read", "ready", true},
        {"ready", "read", true},
        {"abcd", "cdab", false},
        {"memcpy", "memmove", false},
        {"a", "a", false},
        {"____", "_", false},
        {"aaaa", "aaa", true},
        {"_Z1fi", "_Z1fj", true},
        {"send_data", "data_send", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(similar(c.wanted, {c.defined}), c.alike ? c.defined : "")
            << c.wanted << " and " << c.defined;
}

TEST(similar_names, the_closest_wins_then_the_first_by_name) {
    EXPECT_EQ(similar("uart_init", {"uart_inits", "uartInit", "uart_int"}), "uartInit");
    EXPECT_EQ(similar("uart_init", {"UartInit", "uart_init"}), "uart_init");
    EXPECT_EQ(similar("value", {"values", "valve", "value1"}), "value1");
    SIMILAR_NAMES names({"first", "second"});
    names.offer("secund", "lib.a");
    EXPECT_EQ(names.best(0).name, "");
    EXPECT_STREQ(names.best(1).place, "lib.a");
}

/// The distance by the book: insertions, deletions, changes, exchanges of neighbours.
unsigned distance(const std::string& a, const std::string& b) {
    std::vector<std::vector<unsigned>> d(a.size() + 1, std::vector<unsigned>(b.size() + 1));
    for (unsigned i = 0; i <= a.size(); i++)
        for (unsigned j = 0; j <= b.size(); j++) {
            if (i == 0 || j == 0) {
                d[i][j] = i + j;
                continue;
            }
            d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1,
                                d[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
        }
    return d[a.size()][b.size()];
}

TEST(similar_names, agree_with_a_comparison_of_all_pairs) {
    std::mt19937 random(7);
    const auto name = [&random] {
        std::string text(4 + random() % 4, 'a');
        for (char& c : text) c = char('a' + random() % 3);
        return text;
    };
    for (int round = 0; round < 200; round++) {
        const std::string wanted = name();
        std::vector<std::string> defined(40);
        std::generate(defined.begin(), defined.end(), name);
        SIMILAR_NAMES names({wanted.c_str()});
        std::string best;
        unsigned best_distance = 2;
        for (const std::string& candidate : defined) {
            names.offer(candidate, nullptr);
            const unsigned d = distance(wanted, candidate);
            if (d < best_distance || (d == best_distance && d < 2 && candidate < best)) {
                best = candidate;
                best_distance = d;
            }
        }
        EXPECT_EQ(names.best(0).name, best) << wanted;
    }
}

} // namespace
