// The walk over the graph. The one place that knows the graph library.
#include <boost/graph/breadth_first_search.hpp>
#include <boost/graph/compressed_sparse_row_graph.hpp>

#include "ELFLNK/refgraph/graph_writer.h"

namespace {

using GRAPH = boost::compressed_sparse_row_graph<boost::directedS, boost::no_property,
                                                 boost::no_property, boost::no_property, uint32_t>;

class COLLECT_ORDER : public boost::default_bfs_visitor {
  public:
    explicit COLLECT_ORDER(std::vector<uint32_t>& order) : order_(order) {}
    void discover_vertex(uint32_t vertex, const GRAPH&) { order_.push_back(vertex); }

  private:
    std::vector<uint32_t>& order_;
};

} // namespace

std::vector<GRAPH_WRITER::VERTEX> GRAPH_WRITER::breadth_first() const {
    std::vector<std::pair<uint32_t, uint32_t>> ends;
    ends.reserve(edges_.size());
    for (const EDGE& edge : edges_) ends.emplace_back(edge.from, edge.to);
    const GRAPH graph(boost::edges_are_sorted, ends.begin(), ends.end(), graph_.vertex_count());
    std::vector<VERTEX> order;
    boost::breadth_first_search(graph, graph_.root_vertex(), boost::visitor(COLLECT_ORDER(order)));
    return order;
}
