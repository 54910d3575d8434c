// --emit_references: the reference graph as a file, for whoever asks why an object is in the link.
// One writer a format.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ELFLNK/refgraph/reference_graph.h"

class FHM_FILE;
namespace OFE {
class OBJECT_FILE;
struct OF_RAW_SYMBOL;
} // namespace OFE

class GRAPH_WRITER {
  public:
    using VERTEX = REFERENCE_GRAPH::VERTEX;

    explicit GRAPH_WRITER(const REFERENCE_GRAPH& graph);
    virtual ~GRAPH_WRITER();
    GRAPH_WRITER(const GRAPH_WRITER&) = delete;
    GRAPH_WRITER& operator=(const GRAPH_WRITER&) = delete;

    virtual const char* file_extension() const = 0;
    virtual void write(const std::string& file);
    virtual void populate_file(FHM_FILE* file) = 0;

    /// The writer of "TEXT" or "JSON"; null for any other format.
    static std::unique_ptr<GRAPH_WRITER> get_graph_writer(std::string_view format,
                                                          const REFERENCE_GRAPH& graph);

    /// Of two symbols at one place, the one that names it better: a function, then an object.
    static bool sym_has_higher_priority(const OFE::OF_RAW_SYMBOL& a, const OFE::OF_RAW_SYMBOL& b);

  protected:
    /// All references from one object to another, as the graph has them.
    struct EDGE {
        VERTEX from;
        VERTEX to;
        uint32_t first_reloc; // in relocs_
        uint32_t reloc_count;
    };
    struct DEFINITION {
        std::string name;
        uint32_t offset;
        const char* type;
        const char* binding;
        uint32_t size;
    };

    const REFERENCE_GRAPH& graph() const { return graph_; }
    /// By referring object, then by the object referred to, both in the order of entry.
    const std::vector<EDGE>& edges() const { return edges_; }
    /// The edges that lead to a vertex, by referring object: indices into edges().
    std::span<const uint32_t> in_edges(VERTEX vertex) const;
    /// The relocations that made an edge, in the order of entry.
    std::span<const EDGE_RELOC> relocs(const EDGE& edge) const {
        return {relocs_.data() + edge.first_reloc, edge.reloc_count};
    }
    /// The vertices that are reached from the root, breadth first.
    std::vector<VERTEX> breadth_first() const;
    /// The vertex takes memory on the target.
    bool is_allocated(VERTEX vertex) const;
    bool is_written(VERTEX vertex) const {
        return vertex == graph_.root_vertex() || is_allocated(vertex);
    }
    /// The symbols that an object defines, in the order of their table.
    std::vector<DEFINITION> definitions(LINKER_OBJECT* object);
    /// The name of the symbol of an object that covers an offset, or empty.
    std::string covering_symbol(LINKER_OBJECT* object, uint32_t offset);

  private:
    struct FILE_INDEX;
    struct PLACE {
        uint32_t start;
        uint64_t end;
        uint64_t max_end; // of all places up to this one
        const char* name;
    };
    void form_edges();
    const FILE_INDEX& index_of(OFE::OBJECT_FILE* file);
    const std::vector<PLACE>& places_of(LINKER_OBJECT* object);

    const REFERENCE_GRAPH& graph_;
    std::vector<EDGE> edges_;
    std::vector<EDGE_RELOC> relocs_; // by edge
    std::vector<uint32_t> first_in_; // by vertex: where its edges begin in in_edges_
    std::vector<uint32_t> in_edges_;
    std::unordered_map<const OFE::OBJECT_FILE*, std::unique_ptr<FILE_INDEX>> files_;
    std::unordered_map<const LINKER_OBJECT*, std::vector<PLACE>> places_;
};

/// Tables of what each object defines and who refers to it.
class TEXT_WRITER final : public GRAPH_WRITER {
  public:
    using GRAPH_WRITER::GRAPH_WRITER;
    const char* file_extension() const override { return "txt"; }
    void populate_file(FHM_FILE* file) override;

  private:
    void append_size(std::string& to, LINKER_OBJECT* object);
    void append_definitions(std::string& to, LINKER_OBJECT* object);
    void append_references(std::string& to, VERTEX vertex);
};

/// Nodes and links. Names stand as they are.
class JSON_WRITER final : public GRAPH_WRITER {
  public:
    using GRAPH_WRITER::GRAPH_WRITER;
    const char* file_extension() const override { return "json"; }
    void populate_file(FHM_FILE* file) override;

  private:
    std::string vertex_text(VERTEX vertex);
    std::string edge_text(const EDGE& edge);
};
