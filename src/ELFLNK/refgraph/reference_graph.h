// Who refers to whom among the objects of the link: what collection asks when it takes references
// away again, and what --emit_references writes.
//
// A link has millions of references, so one is two numbers at the end of an array; an edge per pair
// of objects is only formed when the graph is written. The root stands for what the linker itself
// refers to: entry points, retained objects and the like.
#pragma once

#include <cstdint>
#include <vector>

class LINKER_OBJECT;

/// The relocation that made an edge: the name of its symbol, and where it stands in the referring
/// section. A null name: the reference has none.
struct EDGE_RELOC {
    const char* name = nullptr;
    uint32_t offset = 0;
};

class REFERENCE_GRAPH {
  public:
    using VERTEX = uint32_t;
    static constexpr VERTEX NO_VERTEX = ~VERTEX{0};

    struct EDGE {
        VERTEX from;
        VERTEX to;
        bool operator==(const EDGE&) const = default;
    };

    REFERENCE_GRAPH(LINKER_OBJECT* root, bool keep_edge_details);

    /// Nothing for a null `to`, and no edge from an object to itself.
    void add_reference(LINKER_OBJECT* from, LINKER_OBJECT* to, EDGE_RELOC reloc = {});
    /// Nothing if there is no such reference.
    void remove_reference(const LINKER_OBJECT* from, const LINKER_OBJECT* to);
    /// The object is out of the link, with all that it refers to.
    void remove_object(const LINKER_OBJECT* object);

    /// How many other objects refer to it; 0 for one that isn't in the graph.
    uint32_t in_degree(const LINKER_OBJECT* object) const;
    bool is_removable(const LINKER_OBJECT* object) const { return in_degree(object) == 0; }
    bool object_in_graph(const LINKER_OBJECT* object) const {
        return vertex_of(object) != NO_VERTEX;
    }
    std::vector<LINKER_OBJECT*> references_to_object(const LINKER_OBJECT* object) const;
    std::vector<LINKER_OBJECT*> all_references_from_object(const LINKER_OBJECT* object) const;
    /// What no chain of references leads to from the root, in the order of entry.
    std::vector<LINKER_OBJECT*> unreferenced_objects() const;

    LINKER_OBJECT* root() const { return objects_[ROOT]; }
    VERTEX root_vertex() const { return ROOT; }
    VERTEX vertex_count() const { return static_cast<VERTEX>(objects_.size()); }
    LINKER_OBJECT* get_object(VERTEX vertex) const { return objects_[vertex]; }
    /// The vertex's object left the link.
    bool is_removed(VERTEX vertex) const { return removed_[vertex]; }
    bool keep_edge_details() const { return keep_details_; }
    /// All references in the order of entry, several between two objects among them, and what is
    /// known of each; the second is empty when no details are kept.
    const std::vector<EDGE>& references() const { return edges_; }
    const std::vector<EDGE_RELOC>& relocs() const { return relocs_; }

  private:
    static constexpr VERTEX ROOT = 0;

    VERTEX add_vertex(LINKER_OBJECT* object);
    VERTEX vertex_of(const LINKER_OBJECT* object) const;
    template <class TEST>
    void erase_edges_if(TEST test);
    template <class TEST, class END>
    std::vector<LINKER_OBJECT*> ends_of(TEST test, END end) const;

    bool keep_details_;
    std::vector<LINKER_OBJECT*> objects_; // by vertex
    std::vector<bool> removed_;           // by vertex
    std::vector<VERTEX> vertices_;        // by object id
    std::vector<EDGE> edges_;
    std::vector<EDGE_RELOC> relocs_; // beside edges_, or empty
};
