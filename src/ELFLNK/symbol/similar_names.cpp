// The texts with one letter taken out are known by a polynomial hash, which needs only the hashes
// of what stands before and behind the letter.
#include "ELFLNK/symbol/similar_names.h"

#include <algorithm>

namespace {

constexpr uint64_t BASE = 0x9E3779B97F4A7C15u;
constexpr size_t SHORTEST = 2;            // of a name that differs in case only
constexpr size_t SHORTEST_WITH_FAULT = 4; // of one that differs in a letter: "put" is no "get"
constexpr size_t LONGEST = 512;
constexpr size_t MOST_PER_KEY = 32; // names that are all alike need not all be compared

void fold(std::string& to, std::string_view name) {
    to.clear();
    for (const char c : name) {
        if (c == '_') continue;
        to += c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
    }
}

/// The hash of the text, then of each text with one letter less.
void hash_neighbours(std::vector<uint64_t>& hashes, std::string_view text) {
    const size_t size = text.size();
    hashes.assign(size + 1, 0);
    uint64_t behind = 0; // hash of the letters behind the one taken out
    uint64_t weight = 1; // BASE to the power of their number
    const auto letter = [&text](size_t i) { return uint64_t(static_cast<unsigned char>(text[i])); };
    std::vector<uint64_t> before(size + 1, 0);
    for (size_t i = 0; i < size; i++) before[i + 1] = before[i] * BASE + letter(i) + 1;
    hashes[0] = before[size];
    for (size_t i = size; i-- > 0;) {
        hashes[i + 1] = before[i] * weight + behind;
        behind += (letter(i) + 1) * weight;
        weight *= BASE;
    }
}

/// 0 for equal texts, 1 if one letter is missing, added, changed or exchanged, else 2.
unsigned letters_apart(std::string_view a, std::string_view b) {
    if (a.size() > b.size()) std::swap(a, b);
    if (b.size() - a.size() > 1) return 2;
    size_t head = 0;
    while (head < a.size() && a[head] == b[head]) head++;
    if (head == b.size()) return 0;
    const auto equal_behind = [&](size_t in_a, size_t in_b) {
        return a.substr(std::min(in_a, a.size())) == b.substr(in_b);
    };
    if (a.size() < b.size()) return equal_behind(head, head + 1) ? 1 : 2;
    if (equal_behind(head + 1, head + 1)) return 1;
    const bool exchanged = head + 1 < a.size() && a[head] == b[head + 1] && a[head + 1] == b[head];
    return exchanged && equal_behind(head + 2, head + 2) ? 1 : 2;
}

} // namespace

SIMILAR_NAMES::SIMILAR_NAMES(const std::vector<const char*>& wanted) : wanted_(wanted.size()) {
    for (uint32_t n = 0; n < wanted.size(); n++) {
        fold(folded_, wanted[n]);
        if (folded_.size() < SHORTEST || folded_.size() > LONGEST) continue;
        wanted_[n].name = wanted[n];
        wanted_[n].folded = folded_;
        hash_neighbours(hashes_, folded_);
        for (const uint64_t hash : hashes_) keys_.push_back({hash, n});
    }
    std::sort(keys_.begin(), keys_.end());
    keys_.erase(std::unique(keys_.begin(), keys_.end()), keys_.end());
}

void SIMILAR_NAMES::offer(std::string_view name, const char* place) {
    fold(folded_, name);
    if (folded_.size() < SHORTEST || folded_.size() > LONGEST) return;
    hash_neighbours(hashes_, folded_);
    for (const uint64_t hash : hashes_) {
        auto key = std::lower_bound(keys_.begin(), keys_.end(), KEY{hash, 0});
        for (size_t n = 0; n < MOST_PER_KEY && key != keys_.end() && key->hash == hash; ++n, ++key)
            compare(wanted_[key->wanted], name, place);
    }
}

void SIMILAR_NAMES::compare(WANTED& wanted, std::string_view name, const char* place) const {
    MATCH& best = wanted.best;
    const unsigned letters = letters_apart(wanted.folded, folded_);
    if (letters > 1 || (letters == 1 && wanted.folded.size() < SHORTEST_WITH_FAULT)) return;
    const auto distance = letters == 1          ? SIMILARITY::ONE_LETTER
                          : name == wanted.name ? SIMILARITY::EQUAL
                                                : SIMILARITY::FOLDED;
    const bool better = best.name.empty() || distance < best.distance ||
                        (distance == best.distance && name < best.name);
    if (better) best = {name, place, distance};
}
