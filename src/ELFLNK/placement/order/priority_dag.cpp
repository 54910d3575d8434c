// See the header.
#include "ELFLNK/placement/order/priority_dag.h"

#include <algorithm>
#include <bit>
#include <numeric>
#include <queue>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/object/linker_object.h"

namespace {

bool get_bit(const uint64_t* bits, uint32_t n) {
    return (bits[n / 64] >> (n % 64) & 1) != 0;
}
void set_bit(uint64_t* bits, uint32_t n) {
    bits[n / 64] |= uint64_t{1} << (n % 64);
}

/// Runs `visit` on the number of each bit that is set.
template <class VISIT>
void for_each_bit(size_t word, uint64_t bits, VISIT visit) {
    for (; bits != 0; bits &= bits - 1)
        visit(static_cast<uint32_t>(word * 64 + static_cast<unsigned>(std::countr_zero(bits))));
}

/// Could an edge start or end here, before the roots are joined?
bool can_have_edges(const ORDER_KEY& key) {
    return key.contends || key.locator->is_run() || key.locator->is_load() ||
           key.locator->has_flag(LF_PRIORITY);
}

} // namespace

PLACEMENT_PRIORITY_DAG::PLACEMENT_PRIORITY_DAG(const ORDER_CONTEXT& context,
                                               const std::vector<ORDER_KEY>& keys)
    : context_(context) {
    nodes_.reserve(keys.size());
    for (const ORDER_KEY& key : keys) {
        uint32_t row = NO_ROW;
        if (can_have_edges(key)) {
            row = static_cast<uint32_t>(rowed_.size());
            rowed_.push_back(static_cast<uint32_t>(nodes_.size()));
        }
        nodes_.push_back(PPD_NODE{key, {}, 0, row});
    }
    words_ = (rowed_.size() + 63) / 64;
    for (BITS* bits : {&edge_bits_, &reaches_, &reached_by_}) bits->resize(rowed_.size() * words_);
}

bool PLACEMENT_PRIORITY_DAG::path_exists(uint32_t from, uint32_t to) const {
    return has_row(from) && has_row(to) &&
           get_bit(bits_of(reaches_, nodes_[from].row), nodes_[to].row);
}

void PLACEMENT_PRIORITY_DAG::link(uint32_t from, uint32_t to) {
    nodes_[from].edges.push_back(to);
    ++nodes_[to].in_degree;
}

void PLACEMENT_PRIORITY_DAG::add_edge(uint32_t from, uint32_t to) {
    uint32_t from_row = nodes_[from].row;
    uint32_t to_row = nodes_[to].row;
    if (get_bit(bits_of(edge_bits_, from_row), to_row)) return;
    set_bit(bits_of(edge_bits_, from_row), to_row);
    link(from, to);
    note_path(from_row, to_row);
}

/// What reaches `from`, and `from` itself, now reaches `to` and all that `to` reaches. Whoever
/// reached `to` before already knows.
void PLACEMENT_PRIORITY_DAG::note_path(uint32_t from, uint32_t to) {
    if (get_bit(bits_of(reaches_, from), to)) return;
    join_reach(from, to);
    for (size_t word = 0; word < words_; ++word)
        for_each_bit(word, bits_of(reached_by_, from)[word] & ~bits_of(reached_by_, to)[word],
                     [&](uint32_t ancestor) { join_reach(ancestor, to); });
}

void PLACEMENT_PRIORITY_DAG::join_reach(uint32_t ancestor, uint32_t to) {
    set_bit(bits_of(reaches_, ancestor), to);
    set_bit(bits_of(reached_by_, to), ancestor);
    for (size_t word = 0; word < words_; ++word) {
        uint64_t fresh = bits_of(reaches_, to)[word] & ~bits_of(reaches_, ancestor)[word];
        bits_of(reaches_, ancestor)[word] |= fresh;
        for_each_bit(word, fresh,
                     [&](uint32_t below) { set_bit(bits_of(reached_by_, below), ancestor); });
    }
}

void PLACEMENT_PRIORITY_DAG::add_run_before_load_edges() {
    for (uint32_t run : rowed_) {
        const LOCATOR* run_locator = nodes_[run].key.locator;
        if (!run_locator->is_run()) continue;
        for (uint32_t load : rowed_) {
            const LOCATOR* load_locator = nodes_[load].key.locator;
            if (!load_locator->is_load()) continue;
            if (run_locator->object()->contains(load_locator->object()) && !path_exists(load, run))
                add_edge(run, load);
        }
    }
}

void PLACEMENT_PRIORITY_DAG::add_user_priority_edges() {
    std::vector<uint32_t> earlier;
    for (uint32_t node : rowed_) {
        const LOCATOR* locator = nodes_[node].key.locator;
        if (!locator->has_flag(LF_PRIORITY)) continue;
        for (auto it = earlier.rbegin(); it != earlier.rend(); ++it) {
            uint32_t other = nodes_[*it].key.locator->priority();
            if (locator->priority() > other && !path_exists(*it, node)) add_edge(node, *it);
            if (locator->priority() < other && !path_exists(node, *it)) add_edge(*it, node);
        }
        earlier.push_back(node);
    }
}

void PLACEMENT_PRIORITY_DAG::add_competing_edges() {
    std::vector<uint32_t> contending;
    for (uint32_t node : rowed_)
        if (nodes_[node].key.contends) contending.push_back(node);
    for (size_t first = 0; first < contending.size(); ++first) {
        uint32_t i = contending[first];
        for (size_t second = first + 1; second < contending.size(); ++second) {
            uint32_t j = contending[second];
            if (context_.contention(nodes_[i].key, nodes_[j].key) == 0) continue;
            int order = context_.compare(nodes_[i].key, nodes_[j].key);
            if (order < 0 && !path_exists(j, i)) add_edge(i, j);
            if (order > 0 && !path_exists(i, j)) add_edge(j, i);
        }
    }
}

uint32_t PLACEMENT_PRIORITY_DAG::find_single_root_node() {
    uint32_t count = static_cast<uint32_t>(nodes_.size());
    uint32_t root = 0;
    while (root < count && nodes_[root].in_degree != 0) ++root;
    for (uint32_t node = root + 1; node < count; ++node) {
        if (nodes_[node].in_degree != 0) continue;
        if (context_.compare(nodes_[root].key, nodes_[node].key) < 0) {
            link(root, node);
        } else {
            link(node, root);
            root = node;
        }
    }
    return root;
}

/// A reverse post-order of a depth-first walk, with a stack of its own.
std::vector<ORDER_KEY> PLACEMENT_PRIORITY_DAG::order_placement_worklist(uint32_t root) {
    enum STATUS : uint8_t { NOT_VISITED, IN_PROGRESS, DONE };
    struct FRAME {
        uint32_t node;
        uint32_t next_edge;
    };
    std::vector<uint8_t> status(nodes_.size(), NOT_VISITED);
    std::vector<FRAME> stack;
    std::vector<ORDER_KEY> order;
    status[root] = IN_PROGRESS;
    stack.push_back({root, 0});
    while (!stack.empty()) {
        FRAME& top = stack.back();
        if (top.next_edge == nodes_[top.node].edges.size()) {
            status[top.node] = DONE;
            order.push_back(nodes_[top.node].key);
            stack.pop_back();
            continue;
        }
        uint32_t target = nodes_[top.node].edges[top.next_edge++];
        if (status[target] == IN_PROGRESS) DIAG_REPORT(elnk_ppd_back_edge_detected);
        if (status[target] != NOT_VISITED) continue;
        status[target] = IN_PROGRESS;
        stack.push_back({target, 0});
    }
    return {order.rbegin(), order.rend()};
}

/// The nodes stand in the order of the comparison, but for specific addresses, which come first as
/// they were written. So the root of what is left is the first node that nothing is to precede,
/// once those are in order too.
std::vector<uint32_t> PLACEMENT_PRIORITY_DAG::order_by_roots() {
    std::vector<uint32_t> by_rank(nodes_.size());
    std::iota(by_rank.begin(), by_rank.end(), 0);
    auto addresses_end = std::find_if(by_rank.begin(), by_rank.end(),
                                      [this](uint32_t node) { return !nodes_[node].key.specific; });
    std::stable_sort(by_rank.begin(), addresses_end, [this](uint32_t a, uint32_t b) {
        return context_.compare(nodes_[a].key, nodes_[b].key) < 0;
    });
    std::vector<uint32_t> rank(nodes_.size());
    for (uint32_t i = 0; i < by_rank.size(); ++i) rank[by_rank[i]] = i;
    std::priority_queue<uint32_t, std::vector<uint32_t>, std::greater<>> roots; // ranks
    for (uint32_t node = 0; node < nodes_.size(); ++node)
        if (nodes_[node].in_degree == 0) roots.push(rank[node]);
    std::vector<uint32_t> order;
    order.reserve(nodes_.size());
    while (!roots.empty()) {
        uint32_t root = by_rank[roots.top()];
        roots.pop();
        order.push_back(root);
        for (uint32_t target : nodes_[root].edges)
            if (--nodes_[target].in_degree == 0) roots.push(rank[target]);
    }
    return order;
}
