// Holes of an address range, found by size and place in logarithmic time.
//
// A treap of disjoint half-open holes ordered by address; each node knows the largest hole below
// it. The leftmost (or rightmost) hole that is large enough within bounds is one walk down. Holes
// may touch: an item of size 0 splits free space without using any. Removing an item is the undo
// of entering it: both replace the holes of one gap.
#pragma once

#include <cstdint>
#include <vector>

/// [start, end)
struct HOLE {
    uint64_t start = 0;
    uint64_t end = 0;
    uint64_t length() const { return end - start; }
};

class HOLE_INDEX {
  public:
    void clear();
    bool empty() const { return root_ == NIL; }
    std::size_t count() const { return count_; }

    /// Enter a hole; it must not overlap one that is there. Nothing for an empty one.
    void insert(uint64_t start, uint64_t end);
    /// Remove all holes that lie within [start, end), then enter [free_start, free_end) pieces by
    /// insert.
    void erase_within(uint64_t start, uint64_t end);

    /// Lowest hole that, cut to [from, to), has at least `size`. False if none.
    bool first_fit(uint64_t from, uint64_t to, uint64_t size, HOLE* out) const;
    /// Highest such hole.
    bool last_fit(uint64_t from, uint64_t to, uint64_t size, HOLE* out) const;
    /// Length of the largest hole.
    uint64_t largest() const { return root_ == NIL ? 0 : nodes_[root_].largest; }

  private:
    using INDEX = uint32_t;
    static constexpr INDEX NIL = ~0U;
    struct NODE {
        HOLE hole;
        uint64_t largest;
        INDEX left;
        INDEX right;
        uint32_t priority;
    };

    INDEX new_node(uint64_t start, uint64_t end);
    void free_node(INDEX n);
    void free_tree(INDEX n);
    void update(INDEX n);
    void split(INDEX n, uint64_t key, INDEX* low, INDEX* high);
    INDEX merge(INDEX low, INDEX high);
    INDEX leftmost_from(INDEX n, uint64_t from, uint64_t size) const;
    INDEX rightmost_below(INDEX n, uint64_t to, uint64_t size) const;
    const NODE* hole_holding(uint64_t address) const;

    std::vector<NODE> nodes_;
    std::vector<INDEX> free_;
    INDEX root_ = NIL;
    std::size_t count_ = 0;
    uint32_t seed_ = 0x9E3779B9U;
};
