// Pattern matching and the order of patterns by what they cover.
#include "ELFLNK/filter/filter.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/target.h"

// ---- globs ---------------------------------------------------------------------------------

namespace {

bool is_empty(const char* text) {
    return text == nullptr || *text == '\0';
}

/// Where, from `text` on, a pattern that stands behind a "*" can begin to match; null for nowhere.
const char* next_start(const char* text, const char* pattern) {
    return *pattern == '*' || *pattern == '?' ? text : std::strchr(text, *pattern);
}

/// Plain text against a pattern: after a mismatch the last "*" takes more, up to the next place
/// where what stands behind it can begin.
bool matches_text(const char* text, const char* pattern) {
    const char* star = nullptr;
    const char* resume = nullptr;
    while (*text != '\0') {
        if (*pattern == '*') {
            star = ++pattern;
            text = resume = next_start(text, star);
            if (text == nullptr) return false;
        } else if (*pattern == '?' || *pattern == *text) {
            ++pattern;
            ++text;
        } else if (star != nullptr) {
            pattern = star;
            text = resume = next_start(resume + 1, star);
            if (text == nullptr) return false;
        } else {
            return false;
        }
    }
    while (*pattern == '*') ++pattern;
    return *pattern == '\0';
}

/// May one step of a, a character or "?", be taken by one step of b?
bool step_covered(char a, char b) {
    return b == '?' || a == b;
}

/// The plain characters in front of the first wildcard of either already rule out that one covers
/// the other.
bool beginnings_differ(const char* a, const char* b) {
    auto is_wild = [](char c) { return c == '*' || c == '?'; };
    while (*a != '\0' && *a == *b && !is_wild(*a)) ++a, ++b;
    return *a != *b && !is_wild(*a) && !is_wild(*b);
}

/// Every string of a is one of b. reach[j] says that what was read of a is covered by the first j
/// steps of b; a "*" of a only moves along a "*" of b.
bool covers_pattern(const char* a, const char* b) {
    if (beginnings_differ(a, b)) return false;
    const std::size_t n = std::strlen(b);
    std::vector<char> reach(n + 1, 0);
    std::vector<char> next(n + 1, 0);
    auto close = [&] {
        for (std::size_t j = 0; j < n; ++j)
            if (reach[j] != 0 && b[j] == '*') reach[j + 1] = 1;
    };
    reach[0] = 1;
    close();
    for (; *a != '\0'; ++a) {
        std::fill(next.begin(), next.end(), 0);
        for (std::size_t j = 0; j < n; ++j) {
            if (reach[j] == 0) continue;
            if (b[j] == '*')
                next[j] = 1;
            else if (*a != '*' && step_covered(*a, b[j]))
                next[j + 1] = 1;
        }
        reach.swap(next);
        close();
    }
    return reach[n] != 0;
}

} // namespace

bool glob_subset_base(const char* a, const char* b, int alg) {
    return alg == 1 ? matches_text(a, b) : covers_pattern(a, b);
}

bool match_glob(const char* pattern, const char* text) {
    return !is_empty(pattern) && !is_empty(text) && glob_subset_base(text, pattern, 1);
}

bool glob_subset(const char* a, const char* b) {
    if (is_empty(a) || is_empty(b)) return false;
    const bool a_is_all = a[std::strspn(a, "*")] == '\0';
    if (a_is_all && FILTER::is_match_all(b) && std::strchr(b, '?') != nullptr) return true;
    return glob_subset_base(a, b, 0);
}

// ---- the tree ------------------------------------------------------------------------------

FILTER::FILTER(const char* pattern)
    : pattern_(pattern), is_wild_(has_wildcards(pattern)), kind_(PATTERN) {
    if (is_empty(pattern)) DIAG_REPORT(elnk_filter_empty);
}

FILTER::FILTER(OP_KIND kind, FILTER* left, FILTER* right)
    : kind_(kind), left_(left), right_(right) {
    if (kind < AND || kind > NOT || left == nullptr) DIAG_REPORT(elnk_filter_illegal_pattern);
}

FILTER::~FILTER() {
    // An or-chain grows to the right, one filter per name of a list: no recursion along it, here
    // and below.
    FILTER* next = right_;
    while (next != nullptr) {
        FILTER* after = next->right_;
        next->right_ = nullptr;
        delete next;
        next = after;
    }
    delete left_;
}

bool FILTER::match_pattern(const char* name) const {
    return match_glob(pattern_, name);
}

bool FILENAME_FILTER::match_pattern(const char* name) const {
    return match_glob(get_pattern(), name);
}

bool FILTER::match(const char* name) const {
    const FILTER* filter = this;
    for (; filter->kind_ == OR && filter->right_ != nullptr; filter = filter->right_)
        if (filter->left_->match(name)) return true;
    switch (filter->kind_) {
    case PATTERN:
        return filter->match_pattern(name);
    case AND:
        return filter->left_->match(name) &&
               (filter->right_ == nullptr || filter->right_->match(name));
    case OR:
        return filter->left_->match(name);
    case NOT:
        return !filter->left_->match(name);
    }
    return false;
}

bool FILTER::has_wildcards(const char* text) {
    return text != nullptr && std::strpbrk(text, "*?") != nullptr;
}

bool FILTER::has_wildcards() const {
    const FILTER* filter = this;
    for (; filter->kind_ != PATTERN; filter = filter->right_) {
        if (filter->left_->has_wildcards()) return true;
        if (filter->right_ == nullptr) return false;
    }
    return filter->is_wild_;
}

bool FILTER::is_match_all(const char* text) {
    if (is_empty(text) || *text != '*') return false;
    unsigned single = 0;
    for (; *text != '\0'; ++text) {
        if (*text == '?')
            ++single;
        else if (*text != '*')
            return false;
    }
    return single <= 1;
}

bool FILTER::is_match_all() const {
    const FILTER* filter = this;
    for (; filter->kind_ == OR; filter = filter->right_) {
        if (filter->left_->is_match_all()) return true;
        if (filter->right_ == nullptr) return false;
    }
    return filter->kind_ == PATTERN && is_match_all(filter->pattern_);
}

bool FILTER::supersedes(const FILTER* other) const {
    if (kind_ != PATTERN || other->kind_ != PATTERN) return false;
    if (std::strcmp(pattern_, other->pattern_) == 0) return false;
    return glob_subset(other->pattern_, pattern_) && !glob_subset(pattern_, other->pattern_);
}

int FILTER::supersede_compare(const FILTER* a, const FILTER* b) {
    if (a->supersedes(b)) return 1;
    return b->supersedes(a) ? -1 : 0;
}

std::string FILTER::key() const {
    std::string key;
    const FILTER* filter = this;
    for (; filter != nullptr && filter->kind_ != PATTERN; filter = filter->right_) {
        key += static_cast<char>(filter->kind_); // no character of a name
        key += filter->left_->key();
        key += '\n';
    }
    return filter != nullptr ? key + filter->pattern_ : key;
}

void FILTER::dump(bool newline) const {
    const FILTER* filter = this;
    for (; filter != nullptr && filter->kind_ != PATTERN; filter = filter->right_) {
        if (filter->kind_ == NOT) std::printf("!");
        filter->left_->dump(false);
        if (filter->right_ != nullptr) std::printf(filter->kind_ == AND ? " && " : " || ");
    }
    if (filter != nullptr) std::printf("\"%s\"", filter->pattern_);
    if (newline) std::printf("\n");
}

// ---- section names -------------------------------------------------------------------------

bool SECTION_FILTER::match_pattern(const char* name) const {
    const char* pattern = get_pattern();
    if (is_empty(name) || is_empty(pattern)) return false;
    if (is_wild_) return matches_text(name, pattern);
    if (*name != *pattern) return false;
    const std::size_t length = std::strlen(pattern);
    if (std::strncmp(name, pattern, length) != 0) return false;
    const char next = name[length];
    if (next == '\0') return true;
    ABI* abi = Target->abi();
    return std::strchr(abi->legal_subsection_delimiters(), next) != nullptr ||
           abi->section_name_is_reserved(pattern);
}

bool SECTION_FILTER::supersedes(const FILTER* other) const {
    if (get_kind() == OR) {
        for (const FILTER* f = this; f != nullptr; f = f->get_kind() == OR ? f->right() : nullptr) {
            const FILTER* operand = f->get_kind() == OR ? f->left() : f;
            if (!operand->supersedes(other)) return false;
        }
        return true;
    }
    if (get_kind() != PATTERN || other->get_kind() != PATTERN) return false;
    const char* mine = get_pattern();
    const char* theirs = other->get_pattern();
    if (FILTER::has_wildcards(mine) || FILTER::has_wildcards(theirs))
        return FILTER::supersedes(other);
    return std::strlen(mine) <= std::strlen(theirs) && match_pattern(theirs) &&
           !other->match_pattern(mine);
}
