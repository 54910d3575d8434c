// The two orders of specifications: as written, and by how narrow their section patterns are.
//
// By restrictiveness, the specification whose turn it is lets the first one behind it go first
// that has a narrower pattern, which again looks behind itself. Most patterns are written many
// times (once per file), so the specifications are grouped by pattern: what a pattern is wider
// than is found once, and the next one behind a place is looked up, not searched for.
#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "ELFLNK/filter/filter.h"
#include "ELFLNK/object/section_spec.h"

namespace {

template <class T>
int compare(T a, T b) {
    return a < b ? -1 : b < a ? 1 : 0;
}

/// Two default specifications go by their output sections.
int compare_default(const SECTION_SPEC* a, const SECTION_SPEC* b) {
    const COLLECTION* in_a = a->containing_outsect();
    const COLLECTION* in_b = b->containing_outsect();
    if (in_a == nullptr || in_b == nullptr) {
        if (in_a != in_b) return in_a == nullptr ? 1 : -1;
        return LINKER_OBJECT::sort_by_id(a, b);
    }
    const uint32_t order_a = in_a->order_number();
    const uint32_t order_b = in_b->order_number();
    if ((order_a != 0) != (order_b != 0)) return order_a != 0 ? -1 : 1;
    if (order_a != order_b) return compare(order_a, order_b);
    return LINKER_OBJECT::sort_by_id(a, b);
}

} // namespace

int SECTION_SPEC::sort_order(const LINKER_OBJECT* a, const LINKER_OBJECT* b) {
    if (a == b) return 0;
    const auto* spec_a = static_cast<const SECTION_SPEC*>(a);
    const auto* spec_b = static_cast<const SECTION_SPEC*>(b);
    if (spec_a->is_default_ != spec_b->is_default_) return spec_a->is_default_ ? 1 : -1;
    if (spec_a->is_default_) return compare_default(spec_a, spec_b);
    return compare(spec_a->order_number(), spec_b->order_number());
}

bool SECTION_SPEC::less_order(const LINKER_OBJECT* a, const LINKER_OBJECT* b) {
    return sort_order(a, b) < 0;
}

namespace {

/// One stretch of specifications that are all written, or all default ones.
class RESTRICTIVENESS {
  public:
    RESTRICTIVENESS(const std::vector<SECTION_SPEC*>& specs, std::size_t from, std::size_t to) {
        for (std::size_t i = from; i < to; ++i) add(i, specs[i]->section_filter());
    }

    /// The place of the next specification to come; places below `turn` have been taken.
    std::size_t take(std::size_t turn) {
        std::size_t best = turn;
        for (std::size_t next = narrower_behind(best); next != NONE; next = narrower_behind(best))
            best = next;
        if (auto at = pattern_of_.find(best); at != pattern_of_.end()) {
            patterns_[at->second].places.erase(best);
            with_pattern_.erase(best);
        }
        return best;
    }

  private:
    static constexpr std::size_t NONE = ~std::size_t{0};

    struct PATTERN {
        const SECTION_FILTER* filter;
        std::set<std::size_t> places; // not yet taken
        bool compared = false;
        std::vector<std::size_t> narrower; // patterns
    };

    void add(std::size_t place, const SECTION_FILTER* filter) {
        if (filter == nullptr) return;
        auto [at, is_new] = by_text_.emplace(filter->key(), patterns_.size());
        if (is_new) patterns_.push_back({filter, {}, false, {}});
        patterns_[at->second].places.insert(place);
        pattern_of_[place] = at->second;
        with_pattern_.insert(place);
    }

    static std::size_t first_behind(const std::set<std::size_t>& places, std::size_t place) {
        auto at = places.upper_bound(place);
        return at == places.end() ? NONE : *at;
    }

    /// What is narrower than a pattern begins with its plain characters; the first of a list does
    /// for all, as each of them must be wider.
    static std::string_view plain_beginning(const FILTER* filter) {
        while (filter->get_kind() != FILTER::PATTERN) filter = filter->left();
        const std::string_view text = filter->get_pattern();
        return text.substr(0, text.find_first_of("*?"));
    }

    void compare(std::size_t pattern) {
        PATTERN& wide = patterns_[pattern];
        wide.compared = true;
        const std::string_view beginning = plain_beginning(wide.filter);
        for (auto at = by_text_.lower_bound(beginning);
             at != by_text_.end() && at->first.starts_with(beginning); ++at)
            if (at->second != pattern && wide.filter->supersedes(patterns_[at->second].filter))
                wide.narrower.push_back(at->second);
    }

    /// First place behind this one with a narrower pattern; without a pattern anything is narrower.
    std::size_t narrower_behind(std::size_t place) {
        auto at = pattern_of_.find(place);
        if (at == pattern_of_.end()) return first_behind(with_pattern_, place);
        if (!patterns_[at->second].compared) compare(at->second);
        std::size_t first = NONE;
        for (std::size_t pattern : patterns_[at->second].narrower)
            first = std::min(first, first_behind(patterns_[pattern].places, place));
        return first;
    }

    std::vector<PATTERN> patterns_;
    std::map<std::string, std::size_t, std::less<>> by_text_;
    std::map<std::size_t, std::size_t> pattern_of_; // by place
    std::set<std::size_t> with_pattern_;            // places not yet taken
};

} // namespace

void SECTION_SPEC::order_by_restrictiveness(std::vector<SECTION_SPEC*>& specs) {
    if (specs.size() < 2) return;
    const std::vector<SECTION_SPEC*> written = specs;
    std::vector<char> taken(written.size(), 0);
    specs.clear();
    for (std::size_t from = 0; from < written.size();) {
        std::size_t to = from;
        while (to < written.size() && written[to]->is_default_ == written[from]->is_default_) ++to;
        RESTRICTIVENESS order(written, from, to);
        for (std::size_t turn = from; turn < to;) {
            if (taken[turn] != 0) {
                ++turn;
                continue;
            }
            const std::size_t next = order.take(turn);
            taken[next] = 1;
            specs.push_back(written[next]);
        }
        from = to;
    }
}
