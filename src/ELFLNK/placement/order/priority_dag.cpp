// See the header.
#include "ELFLNK/placement/order/priority_dag.h"

#include <bit>

#include "DIAG/elnk_msgs.h"
#include "ELFLNK/object/linker_object.h"

namespace {

bool get_bit(const uint64_t* bits, uint32_t n) {
    return (bits[n / 64] >> (n % 64) & 1) != 0;
}
void set_bit(uint64_t* bits, uint32_t n) {
    bits[n / 64] |= uint64_t{1} << (n % 64);
}

} // namespace

PLACEMENT_PRIORITY_DAG::PLACEMENT_PRIORITY_DAG(const ORDER_CONTEXT& context,
                                               const std::vector<ORDER_KEY>& keys)
    : context_(context), words_((keys.size() + 63) / 64) {
    nodes_.reserve(keys.size());
    for (const ORDER_KEY& key : keys) nodes_.push_back(PPD_NODE{key, {}, 0});
    edge_bits_.resize(keys.size() * words_);
    reaches_.resize(keys.size() * words_);
    reached_by_.resize(keys.size() * words_);
}

void PLACEMENT_PRIORITY_DAG::add_edge(uint32_t from, uint32_t to) {
    if (get_bit(row(edge_bits_, from), to)) return;
    set_bit(row(edge_bits_, from), to);
    nodes_[from].edges.push_back(to);
    ++nodes_[to].in_degree;
    note_path(from, to);
}

/// What reaches `from`, and `from` itself, now reaches `to` and all that `to` reaches. Whoever
/// reached `to` before already knows.
void PLACEMENT_PRIORITY_DAG::note_path(uint32_t from, uint32_t to) {
    if (path_exists(from, to)) return;
    join_reach(from, to);
    for (size_t word = 0; word < words_; ++word) {
        uint64_t fresh = row(reached_by_, from)[word] & ~row(reached_by_, to)[word];
        for (; fresh != 0; fresh &= fresh - 1)
            join_reach(static_cast<uint32_t>(word * 64 + std::countr_zero(fresh)), to);
    }
}

void PLACEMENT_PRIORITY_DAG::join_reach(uint32_t ancestor, uint32_t to) {
    set_bit(row(reaches_, ancestor), to);
    set_bit(row(reached_by_, to), ancestor);
    for (size_t word = 0; word < words_; ++word) {
        uint64_t fresh = row(reaches_, to)[word] & ~row(reaches_, ancestor)[word];
        row(reaches_, ancestor)[word] |= fresh;
        for (; fresh != 0; fresh &= fresh - 1)
            set_bit(row(reached_by_, static_cast<uint32_t>(word * 64 + std::countr_zero(fresh))),
                    ancestor);
    }
}

void PLACEMENT_PRIORITY_DAG::add_run_before_load_edges() {
    for (uint32_t run = 0; run < nodes_.size(); ++run) {
        const LOCATOR* run_locator = nodes_[run].key.locator;
        if (!run_locator->is_run()) continue;
        for (uint32_t load = 0; load < nodes_.size(); ++load) {
            const LOCATOR* load_locator = nodes_[load].key.locator;
            if (!load_locator->is_load()) continue;
            if (run_locator->object()->contains(load_locator->object()) && !path_exists(load, run))
                add_edge(run, load);
        }
    }
}

void PLACEMENT_PRIORITY_DAG::add_user_priority_edges() {
    std::vector<uint32_t> earlier;
    for (uint32_t node = 0; node < nodes_.size(); ++node) {
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
    for (uint32_t i = 0; i < nodes_.size(); ++i) {
        for (uint32_t j = i + 1; j < nodes_.size(); ++j) {
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
            add_edge(root, node);
        } else {
            add_edge(node, root);
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
