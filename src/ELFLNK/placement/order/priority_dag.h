// Hard constraints on the order of placement (a run placement before the load placement, the
// user's priorities) against the comparison of competitors: a graph in which an edge from a to b
// means that a is placed before b. Edges are added in order of importance, and never one that
// would close a cycle.
//
// "Does a path lead from a to b" is asked for every pair, so each node that can have edges keeps a
// row of bits of all nodes that it reaches, and one of all that reach it. Objects without a wish,
// of which there may be very many, are joined to the graph only at its root and have no rows.
#pragma once

#include <cstdint>
#include <vector>

#include "ELFLNK/placement/order/order_key.h"

struct PPD_NODE {
    ORDER_KEY key;
    std::vector<uint32_t> edges; ///< targets, in the order in which they were added
    uint32_t in_degree = 0;
    uint32_t row = 0; ///< its rows of bits
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

    /// The nodes in the order in which they come out as roots, when each is removed before the next
    /// is looked for.
    std::vector<uint32_t> order_by_roots();

    bool path_exists(uint32_t from, uint32_t to) const;
    /// Nothing if the edge exists.
    void add_edge(uint32_t from, uint32_t to);

  private:
    using BITS = std::vector<uint64_t>;
    const uint64_t* bits_of(const BITS& bits, uint32_t row) const { return &bits[row * words_]; }
    uint64_t* bits_of(BITS& bits, uint32_t row) { return &bits[row * words_]; }
    bool has_row(uint32_t node) const { return nodes_[node].row != NO_ROW; }
    void link(uint32_t from, uint32_t to);
    void note_path(uint32_t from_row, uint32_t to_row);
    void join_reach(uint32_t ancestor_row, uint32_t to_row);

    static constexpr uint32_t NO_ROW = ~0U;
    const ORDER_CONTEXT& context_;
    std::vector<PPD_NODE> nodes_;
    std::vector<uint32_t> rowed_; // the nodes with rows, ascending
    size_t words_ = 0;            // of a row
    BITS edge_bits_;              // direct edges, a row per source
    BITS reaches_;                // what a node reaches
    BITS reached_by_;             // what reaches it
};
