// The treap of holes. Priorities come from a fixed sequence, so that the shape of the tree, and
// with it the time a link takes, is the same in each run.
#include "ELFLNK/memmap/hole_index.h"

#include <algorithm>
#include <bit>

void HOLE_INDEX::reset() {
    nodes_.clear();
    free_.clear();
    seed_ = 0x9E3779B9U;
    root_ = NIL;
    tail_ = 0;
}

unsigned HOLE_INDEX::class_of(uint64_t align) {
    return std::min<unsigned>(static_cast<unsigned>(std::countr_zero(align)), CLASSES - 1);
}

HOLE_INDEX::INDEX HOLE_INDEX::new_node(HOLE hole) {
    seed_ ^= seed_ << 13;
    seed_ ^= seed_ >> 17;
    seed_ ^= seed_ << 5;
    INDEX n;
    if (free_.empty()) {
        n = static_cast<INDEX>(nodes_.size());
        nodes_.emplace_back();
    } else {
        n = free_.back();
        free_.pop_back();
    }
    nodes_[n] = {hole, {}, NIL, NIL, seed_};
    update(n);
    return n;
}

void HOLE_INDEX::update(INDEX n) {
    NODE& node = nodes_[n];
    for (unsigned c = 0; c < CLASSES; ++c) {
        uint32_t most = saturated(usable_length(node.hole.start, node.hole.end, uint64_t{1} << c));
        if (node.left != NIL) most = std::max(most, nodes_[node.left].usable[c]);
        if (node.right != NIL) most = std::max(most, nodes_[node.right].usable[c]);
        node.usable[c] = most;
    }
}

void HOLE_INDEX::split(INDEX n, uint64_t key, INDEX* low, INDEX* high) {
    if (n == NIL) {
        *low = *high = NIL;
        return;
    }
    INDEX part;
    if (nodes_[n].hole.start < key) {
        split(nodes_[n].right, key, &part, high);
        nodes_[n].right = part;
        *low = n;
    } else {
        split(nodes_[n].left, key, low, &part);
        nodes_[n].left = part;
        *high = n;
    }
    update(n);
}

HOLE_INDEX::INDEX HOLE_INDEX::merge(INDEX low, INDEX high) {
    if (low == NIL) return high;
    if (high == NIL) return low;
    if (nodes_[low].priority > nodes_[high].priority) {
        nodes_[low].right = merge(nodes_[low].right, high);
        update(low);
        return low;
    }
    nodes_[high].left = merge(low, nodes_[high].left);
    update(high);
    return high;
}

void HOLE_INDEX::insert(HOLE hole) {
    if (hole.start >= hole.end) return;
    INDEX low;
    INDEX high;
    split(root_, hole.start, &low, &high);
    INDEX n = new_node(hole);
    root_ = merge(merge(low, n), high);
}

void HOLE_INDEX::erase(uint64_t start) {
    INDEX low;
    INDEX at;
    INDEX high;
    split(root_, start, &low, &high);
    split(high, start + 1, &at, &high);
    if (at != NIL) free_.push_back(at);
    root_ = merge(low, high);
}

/// The hole that starts at `start` gets other bounds, which leave its place in the order.
void HOLE_INDEX::set_bounds(INDEX n, uint64_t start, HOLE bounds) {
    NODE& node = nodes_[n];
    if (node.hole.start == start)
        node.hole = bounds;
    else
        set_bounds(start < node.hole.start ? node.left : node.right, start, bounds);
    update(n);
}

/// Highest hole that starts below the key.
const HOLE_INDEX::NODE* HOLE_INDEX::hole_below(uint64_t key) const {
    const NODE* found = nullptr;
    for (INDEX n = root_; n != NIL;) {
        const NODE& node = nodes_[n];
        if (node.hole.start < key) {
            found = &node;
            n = node.right;
        } else {
            n = node.left;
        }
    }
    return found;
}

const HOLE_INDEX::NODE* HOLE_INDEX::hole_around(uint64_t address) const {
    if (address == TOP) return nullptr;
    const NODE* node = hole_below(address + 1);
    return node != nullptr && address < node->hole.end ? node : nullptr;
}

bool HOLE_INDEX::occupy(uint64_t start, uint64_t end) {
    if (start >= tail_) {
        insert({tail_, start});
        tail_ = end;
        return true;
    }
    const NODE* around = hole_around(start);
    if (around == nullptr || end > around->hole.end) return false;
    const HOLE hole = around->hole;
    if (hole.start == start && hole.end == end) {
        erase(start);
    } else if (hole.start == start) {
        set_bounds(root_, start, {end, hole.end});
    } else {
        set_bounds(root_, hole.start, {hole.start, start});
        insert({end, hole.end});
    }
    return true;
}

void HOLE_INDEX::release(uint64_t start, uint64_t end, bool join_front, bool join_behind) {
    HOLE hole{start, end};
    const NODE* front = join_front && start != 0 ? hole_around(start - 1) : nullptr;
    if (end == tail_ && (join_behind || tail_ == TOP)) {
        tail_ = front != nullptr ? front->hole.start : start;
        if (front != nullptr) erase(tail_);
        return;
    }
    const NODE* behind = join_behind ? hole_around(end) : nullptr;
    if (behind != nullptr) {
        hole.end = behind->hole.end;
        if (front == nullptr) {
            set_bounds(root_, end, hole);
            return;
        }
    }
    if (front == nullptr) {
        insert(hole);
        return;
    }
    hole.start = front->hole.start;
    if (behind != nullptr) erase(end);
    set_bounds(root_, hole.start, hole);
}

void HOLE_INDEX::cut(uint64_t address) {
    if (address >= tail_) {
        if (address == TOP) return;
        insert({tail_, address});
        tail_ = address;
        return;
    }
    const NODE* around = hole_around(address);
    if (around == nullptr || around->hole.start == address) return;
    const HOLE hole = around->hole;
    set_bounds(root_, hole.start, {hole.start, address});
    insert({address, hole.end});
}

void HOLE_INDEX::heal(uint64_t address) {
    if (address == 0 || address == TOP) return;
    const NODE* front = hole_around(address - 1);
    if (front == nullptr || front->hole.end != address) return;
    const uint64_t start = front->hole.start;
    if (address == tail_) {
        erase(start);
        tail_ = start;
        return;
    }
    const NODE* behind = hole_around(address);
    if (behind == nullptr || behind->hole.start != address) return;
    const uint64_t end = behind->hole.end;
    erase(address);
    set_bounds(root_, start, {start, end});
}

/// Lowest hole of the subtree that starts at or above `from` and has `size` usable.
HOLE_INDEX::INDEX HOLE_INDEX::leftmost(INDEX n, uint64_t from, uint64_t size, unsigned cls) const {
    while (n != NIL && nodes_[n].usable[cls] >= saturated(size)) {
        const NODE& node = nodes_[n];
        if (node.hole.start >= from) {
            INDEX lower = leftmost(node.left, from, size, cls);
            if (lower != NIL) return lower;
            if (usable_length(node.hole.start, node.hole.end, uint64_t{1} << cls) >= size) return n;
        }
        n = node.right;
    }
    return NIL;
}

/// Highest hole of the subtree that starts below the key and is `size` long.
HOLE_INDEX::INDEX HOLE_INDEX::rightmost(INDEX n, uint64_t below, uint64_t size) const {
    while (n != NIL && nodes_[n].usable[0] >= saturated(size)) {
        const NODE& node = nodes_[n];
        if (node.hole.start < below) {
            INDEX higher = rightmost(node.right, below, size);
            if (higher != NIL) return higher;
            if (node.hole.length() >= size) return n;
        }
        n = node.left;
    }
    return NIL;
}

bool HOLE_INDEX::first_fit(uint64_t from, uint64_t to, uint64_t size, uint64_t align,
                           HOLE* out) const {
    size = std::max<uint64_t>(size, 1);
    auto fits = [&](HOLE hole) {
        hole = {std::max(hole.start, from), std::min(hole.end, to)};
        if (hole.start >= hole.end || usable_length(hole.start, hole.end, align) < size)
            return false;
        *out = hole;
        return true;
    };
    const unsigned cls = class_of(align);
    if (from < tail_ && root_ != NIL && nodes_[root_].usable[cls] >= saturated(size)) {
        const NODE* around = hole_around(from);
        if (around != nullptr && fits(around->hole)) return true;
        uint64_t next = around != nullptr ? around->hole.end : from;
        for (;;) {
            INDEX n = leftmost(root_, next, size, cls);
            if (n == NIL || nodes_[n].hole.start >= to) break;
            if (fits(nodes_[n].hole)) return true;
            next = nodes_[n].hole.end; // an alignment above the classes, or the upper bound
        }
    }
    return fits(tail_hole());
}

bool HOLE_INDEX::last_fit(uint64_t from, uint64_t to, uint64_t size, HOLE* out) const {
    size = std::max<uint64_t>(size, 1);
    auto fits = [&](HOLE hole) {
        hole = {std::max(hole.start, from), std::min(hole.end, to)};
        if (hole.start >= hole.end || hole.length() < size) return false;
        *out = hole;
        return true;
    };
    if (fits(tail_hole())) return true;
    const NODE* top = hole_below(to);
    if (top == nullptr) return false;
    if (fits(top->hole)) return true;
    INDEX n = rightmost(root_, top->hole.start, size);
    return n != NIL && fits(nodes_[n].hole);
}

uint64_t HOLE_INDEX::tail() const {
    if (tail_ < TOP) return tail_;
    const NODE* top = hole_below(TOP);
    return top != nullptr ? top->hole.start : TOP;
}
