// Name patterns: "*" stands for any run of characters, "?" for one.
//
// A FILTER is a small tree of patterns. FILENAME_FILTER matches file and member names,
// SECTION_FILTER section names, where a literal name also takes its subsections. Filters are
// ordered by what they cover: the narrower of two specifications gets a section.
#pragma once

#include <string>
#include <string_view>

class PPRINT;

/// Does the pattern (with wildcards) match the text? Empty or null never match.
bool match_glob(const char* pattern, const char* text);
/// Is every string that a matches also matched by b?
bool glob_subset(const char* a, const char* b);
/// alg 1: a is plain text. alg 0: a may hold wildcards itself.
bool glob_subset_base(const char* a, const char* b, int alg);

class FILTER {
  public:
    enum OP_KIND : int { PATTERN = 0, AND = 1, OR = 2, NOT = 3 };

    /// The text isn't copied. Null or empty text is fatal.
    explicit FILTER(const char* pattern);
    /// A tree of filters, which are owned from here on.
    FILTER(OP_KIND kind, FILTER* left, FILTER* right);
    virtual ~FILTER();
    FILTER(const FILTER&) = delete;
    FILTER& operator=(const FILTER&) = delete;

    /// One plain pattern against a name.
    virtual bool match_pattern(const char* name) const;
    /// This is strictly wider than other.
    virtual bool supersedes(const FILTER* other) const;

    bool match(const char* name) const;
    bool has_wildcards() const;
    static bool has_wildcards(const char* text);
    bool is_match_all() const;
    static bool is_match_all(const char* text);
    /// 1: a supersedes b, -1: b supersedes a, 0: neither.
    static int supersede_compare(const FILTER* a, const FILTER* b);

    const char* get_pattern() const { return pattern_; }
    OP_KIND get_kind() const { return kind_; }
    const FILTER* left() const { return left_; }
    const FILTER* right() const { return right_; }
    /// What tells the tree from others; of a plain pattern, its text.
    std::string key() const;
    /// The tree as text on standard output, with a line end if wanted.
    void dump(bool newline) const;

  protected:
    const char* pattern_ = nullptr;

    bool is_wild_ = false; // the own pattern has wildcards

  private:
    OP_KIND kind_;
    FILTER* left_ = nullptr;
    FILTER* right_ = nullptr;
};

class FILENAME_FILTER : public FILTER {
  public:
    using FILTER::FILTER;
    bool match_pattern(const char* name) const override;
};

/// A literal pattern takes the name itself, its subsections, and, where the pattern is a reserved
/// name, every continuation.
class SECTION_FILTER : public FILTER {
  public:
    using FILTER::FILTER;
    bool match_pattern(const char* name) const override;
    bool supersedes(const FILTER* other) const override;
};
