// Recording references, taking them away, and what is still reached.
#include "ELFLNK/refgraph/reference_graph.h"

#include <algorithm>

#include "ELFLNK/object/linker_object.h"

REFERENCE_GRAPH::REFERENCE_GRAPH(LINKER_OBJECT* root, bool keep_edge_details)
    : keep_details_(keep_edge_details) {
    add_vertex(root);
}

REFERENCE_GRAPH::VERTEX REFERENCE_GRAPH::vertex_of(const LINKER_OBJECT* object) const {
    return object && object->id() < vertices_.size() ? vertices_[object->id()] : NO_VERTEX;
}

REFERENCE_GRAPH::VERTEX REFERENCE_GRAPH::add_vertex(LINKER_OBJECT* object) {
    if (object->id() >= vertices_.size())
        vertices_.resize(std::max<size_t>(object->id() + 1, vertices_.size() * 2), NO_VERTEX);
    VERTEX& vertex = vertices_[object->id()];
    if (vertex == NO_VERTEX) {
        vertex = vertex_count();
        objects_.push_back(object);
        removed_.push_back(false);
    }
    return vertex;
}

void REFERENCE_GRAPH::add_reference(LINKER_OBJECT* from, LINKER_OBJECT* to, EDGE_RELOC reloc) {
    if (!to) return;
    const EDGE edge{add_vertex(from), add_vertex(to)};
    if (edge.from == edge.to) return;
    // Neighbouring relocations mostly lead to one object.
    if (!keep_details_ && !edges_.empty() && edges_.back() == edge) return;
    edges_.push_back(edge);
    if (keep_details_) relocs_.push_back(reloc);
}

template <class TEST>
void REFERENCE_GRAPH::erase_edges_if(TEST test) {
    size_t kept = 0;
    for (size_t i = 0; i < edges_.size(); ++i) {
        if (test(edges_[i])) continue;
        edges_[kept] = edges_[i];
        if (keep_details_) relocs_[kept] = relocs_[i];
        ++kept;
    }
    edges_.resize(kept);
    if (keep_details_) relocs_.resize(kept);
}

void REFERENCE_GRAPH::remove_reference(const LINKER_OBJECT* from, const LINKER_OBJECT* to) {
    const EDGE gone{vertex_of(from), vertex_of(to)};
    if (gone.from == NO_VERTEX || gone.to == NO_VERTEX) return;
    erase_edges_if([gone](const EDGE& edge) { return edge == gone; });
}

void REFERENCE_GRAPH::remove_object(const LINKER_OBJECT* object) {
    const VERTEX vertex = vertex_of(object);
    if (vertex != NO_VERTEX) removed_[vertex] = true;
}

// The ends of the edges that pass the test, each object once, in the order of entry.
template <class TEST, class END>
std::vector<LINKER_OBJECT*> REFERENCE_GRAPH::ends_of(TEST test, END end) const {
    std::vector<VERTEX> found;
    for (const EDGE& edge : edges_)
        if (test(edge)) found.push_back(end(edge));
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    std::vector<LINKER_OBJECT*> objects;
    for (const VERTEX vertex : found)
        if (!removed_[vertex]) objects.push_back(objects_[vertex]);
    return objects;
}

std::vector<LINKER_OBJECT*>
REFERENCE_GRAPH::references_to_object(const LINKER_OBJECT* object) const {
    const VERTEX to = vertex_of(object);
    return ends_of([to](const EDGE& edge) { return edge.to == to; },
                   [](const EDGE& edge) { return edge.from; });
}

std::vector<LINKER_OBJECT*>
REFERENCE_GRAPH::all_references_from_object(const LINKER_OBJECT* object) const {
    const VERTEX from = vertex_of(object);
    return ends_of([from](const EDGE& edge) { return edge.from == from; },
                   [](const EDGE& edge) { return edge.to; });
}

uint32_t REFERENCE_GRAPH::in_degree(const LINKER_OBJECT* object) const {
    return static_cast<uint32_t>(references_to_object(object).size());
}

std::vector<LINKER_OBJECT*> REFERENCE_GRAPH::unreferenced_objects() const {
    // The targets of each vertex lie together, from first[vertex] on.
    const VERTEX count = vertex_count();
    std::vector<size_t> first(count + 1);
    for (const EDGE& edge : edges_) ++first[edge.from + 1];
    for (VERTEX v = 0; v < count; ++v) first[v + 1] += first[v];
    std::vector<VERTEX> targets(edges_.size());
    std::vector<size_t> next(first.begin(), first.end() - 1);
    for (const EDGE& edge : edges_) targets[next[edge.from]++] = edge.to;

    std::vector<bool> reached(count);
    std::vector<VERTEX> work{ROOT};
    reached[ROOT] = true;
    while (!work.empty()) {
        const VERTEX v = work.back();
        work.pop_back();
        for (size_t i = first[v]; i < first[v + 1]; ++i) {
            if (reached[targets[i]]) continue;
            reached[targets[i]] = true;
            work.push_back(targets[i]);
        }
    }
    std::vector<LINKER_OBJECT*> lost;
    for (VERTEX v = 0; v < count; ++v)
        if (!reached[v] && !removed_[v]) lost.push_back(objects_[v]);
    return lost;
}
