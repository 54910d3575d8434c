// The sweep goes up over the starts. The ranges that have begun are kept by their ends in a tree of
// prefix minima, so that the lowest id of those that end late enough is one query.
#include "OBJEDIT04/elf/segments/segment_contents.h"

#include <algorithm>
#include <numeric>

namespace OFE {

namespace {

uint64_t end_of(const EXTENT& e) {
    return e.start + e.size;
}

// Minima over prefixes of positions (1 to count), each of which only ever decreases.
class PREFIX_MINIMA {
  public:
    explicit PREFIX_MINIMA(size_t count) : tree_(count + 1, NO_EXTENT) {}
    void lower(size_t at, unsigned value) {
        for (; at < tree_.size(); at += at & -at) tree_[at] = std::min(tree_[at], value);
    }
    unsigned least(size_t at) const {
        unsigned value = NO_EXTENT;
        for (; at != 0; at -= at & -at) value = std::min(value, tree_[at]);
        return value;
    }

  private:
    std::vector<unsigned> tree_;
};

} // namespace

std::vector<unsigned> enclosing_extents(std::vector<EXTENT> outer,
                                        const std::vector<EXTENT>& inner) {
    auto starts_before = [](const EXTENT& a, const EXTENT& b) { return a.start < b.start; };
    std::sort(outer.begin(), outer.end(), starts_before);
    std::vector<unsigned> order(inner.size());
    std::iota(order.begin(), order.end(), 0u);
    std::sort(order.begin(), order.end(),
              [&](unsigned a, unsigned b) { return starts_before(inner[a], inner[b]); });

    std::vector<uint64_t> ends; // descending: what ends late enough is a prefix
    ends.reserve(outer.size());
    for (const EXTENT& e : outer) ends.push_back(end_of(e));
    std::sort(ends.begin(), ends.end(), std::greater<>());
    auto ending_at_or_after = [&](uint64_t end) {
        return static_cast<size_t>(
            std::upper_bound(ends.begin(), ends.end(), end, std::greater<>()) - ends.begin());
    };

    std::vector<unsigned> found(inner.size(), NO_EXTENT);
    PREFIX_MINIMA begun(outer.size());
    size_t next = 0;
    for (unsigned i : order) {
        for (; next < outer.size() && outer[next].start <= inner[i].start; ++next)
            begun.lower(ending_at_or_after(end_of(outer[next])), outer[next].id);
        found[i] = begun.least(ending_at_or_after(end_of(inner[i])));
    }
    return found;
}

} // namespace OFE
