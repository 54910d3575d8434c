// Hard constraints on the order of placement (a run placement before the load placement, the
// user's priorities) against the comparison of competitors: a graph in which an edge from a to b
// means that a is placed before b. Edges are added in order of importance, and never one that
// would close a cycle.
//
// "Does a path lead from a to b" is asked for every pair, so each node keeps a row of bits of all
// nodes that it reaches, and one of all that reach it.
#pragma once

#include <cstdint>
#include <vector>

#include "ELFLNK/placement/order/order_key.h"

struct PPD_NODE {
    ORDER_KEY key;
    std::vector<uint32_t> edges; ///< targets, in the order in which they were added
    uint32_t in_degree = 0;
};

class PLACEMENT_PRIORITY_DAG {
  public:
    /// One node per key, in order.
    PLACEMENT_PRIORITY_DAG(const ORDER_CONTEXT& context, const std::vector<ORDER_KEY>& keys);
    void add_run_before_load_edges();
    void add_user_priority_edges();
    void add_competing_edges();
    /// Joins the parts of the graph under one root, and returns it.
    uint32_t find_single_root_node();
    /// The nodes in an order that no edge contradicts, the root first.
    std::vector<ORDER_KEY> order_placement_worklist(uint32_t root);

    bool path_exists(uint32_t from, uint32_t to) const {
        return (row(reaches_, from)[to / 64] >> (to % 64) & 1) != 0;
    }
    /// Nothing if the edge exists.
    void add_edge(uint32_t from, uint32_t to);

  private:
    const uint64_t* row(const std::vector<uint64_t>& bits, uint32_t node) const {
        return &bits[node * words_];
    }
    uint64_t* row(std::vector<uint64_t>& bits, uint32_t node) { return &bits[node * words_]; }
    void note_path(uint32_t from, uint32_t to);
    void join_reach(uint32_t ancestor, uint32_t to);

    const ORDER_CONTEXT& context_;
    std::vector<PPD_NODE> nodes_;
    size_t words_;
    std::vector<uint64_t> edge_bits_;  // direct edges, a row per source
    std::vector<uint64_t> reaches_;    // a row per node: what it reaches
    std::vector<uint64_t> reached_by_; // a row per node: what reaches it
};
