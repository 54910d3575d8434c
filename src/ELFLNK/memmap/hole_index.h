// Holes of an address range, found by size, alignment and place in logarithmic time.
//
// First fit over tens of thousands of objects may not walk what is already placed. So the free
// gaps are kept in a treap ordered by address, each node knowing the largest object that fits into
// a hole below it, for each small alignment. The lowest or highest hole that will do is one walk
// down. The free space behind everything stands beside the treap: most objects go to its start.
// Holes may touch: an item of size 0 cuts free space in two without using any. Releasing undoes
// occupying, in any order.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

/// Free space [start, end).
struct HOLE {
    uint64_t start = 0;
    uint64_t end = 0;
    uint64_t length() const { return end - start; }
    bool operator==(const HOLE&) const = default;
};

/// What is left of [start, end) behind the first multiple of `align`, a power of two.
inline uint64_t usable_length(uint64_t start, uint64_t end, uint64_t align) {
    uint64_t first = (start + (align - 1)) & ~(align - 1);
    return first < start || first >= end ? 0 : end - first;
}

class HOLE_INDEX {
  public:
    static constexpr uint64_t TOP = ~uint64_t{0};

    /// All addresses are free: one hole [0, TOP).
    HOLE_INDEX() { reset(); }
    void reset();

    /// Takes [start, end), start below end, out of the hole around it; false, and no change, if it
    /// isn't free in one piece.
    bool occupy(uint64_t start, uint64_t end);
    /// Gives [start, end) back; it joins the hole in front or behind where asked to.
    void release(uint64_t start, uint64_t end, bool join_front, bool join_behind);
    /// Cuts the hole around the address in two; nothing where there is none.
    void cut(uint64_t address);
    /// Undoes cut().
    void heal(uint64_t address);

    /// Lowest hole that, within [from, to), holds an object of `size` (0 counts as 1) aligned to
    /// `align`. *out is the hole cut to these bounds.
    bool first_fit(uint64_t from, uint64_t to, uint64_t size, uint64_t align, HOLE* out) const;
    /// Highest hole that, within [from, to), is at least `size` long.
    bool last_fit(uint64_t from, uint64_t to, uint64_t size, HOLE* out) const;
    /// Start of the highest hole: nothing is placed behind it. TOP if there is none.
    uint64_t tail() const;
    std::size_t count() const { return nodes_.size() - free_.size() + (tail_ < TOP ? 1 : 0); }

  private:
    using INDEX = uint32_t;
    static constexpr INDEX NIL = ~0U;
    /// Alignments 1, 2, 4, 8, 16, 32.
    static constexpr unsigned CLASSES = 6;
    struct NODE {
        HOLE hole;
        /// Most in any hole of the subtree; all ones for that much or more.
        std::array<uint32_t, CLASSES> usable;
        INDEX left;
        INDEX right;
        uint32_t priority;
    };

    static unsigned class_of(uint64_t align);
    static uint32_t saturated(uint64_t length) {
        return static_cast<uint32_t>(std::min<uint64_t>(length, ~uint32_t{0}));
    }
    HOLE tail_hole() const { return {tail_, TOP}; }
    void insert(HOLE hole);
    void erase(uint64_t start);
    INDEX new_node(HOLE hole);
    void update(INDEX n);
    /// Holes below key to *low, the others to *high.
    void split(INDEX n, uint64_t key, INDEX* low, INDEX* high);
    INDEX merge(INDEX low, INDEX high);
    void set_bounds(INDEX n, uint64_t start, HOLE bounds);
    const NODE* hole_around(uint64_t address) const;
    const NODE* hole_below(uint64_t key) const;
    INDEX leftmost(INDEX n, uint64_t from, uint64_t size, unsigned cls) const;
    INDEX rightmost(INDEX n, uint64_t below, uint64_t size) const;

    std::vector<NODE> nodes_;
    std::vector<INDEX> free_;
    INDEX root_ = NIL;
    uint64_t tail_ = 0; // [tail_, TOP) is free, and no node's hole reaches it
    uint32_t seed_ = 0;
};
