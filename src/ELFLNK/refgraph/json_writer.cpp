// The graph as nodes and links.
#include <cstdio>

#include "ELFLNK/object/linker_object.h"
#include "ELFLNK/refgraph/graph_writer.h"
#include "UTIL/file_handle_manager.h"

namespace {

// Elements of a list, one after the other, with what stands between them.
class LIST {
  public:
    LIST(std::string& to, const char* separator) : to_(to), separator_(separator) {}
    void add(const std::string& element) {
        if (!is_first_) to_ += separator_;
        is_first_ = false;
        to_ += element;
    }

  private:
    std::string& to_;
    const char* separator_;
    bool is_first_ = true;
};

constexpr const char* BETWEEN_LINES = ",\n    ";

std::string number(uint64_t value) {
    return std::to_string(value);
}

std::string text(const std::string& value) {
    return "\"" + value + "\"";
}

} // namespace

void JSON_WRITER::populate_file(FHM_FILE* file) {
    std::string out = "{\n  \"nodes\" : [\n    ";
    LIST nodes(out, BETWEEN_LINES);
    for (VERTEX vertex = 0; vertex < graph().vertex_count(); ++vertex)
        if (is_written(vertex)) nodes.add(vertex_text(vertex));
    out += "\n  ],\n  \"links\" : [\n    ";
    LIST links(out, BETWEEN_LINES);
    for (const EDGE& edge : edges())
        if (is_written(edge.from) && is_written(edge.to)) links.add(edge_text(edge));
    out += "\n  ]\n}\n";
    std::fwrite(out.data(), 1, out.size(), file->fp());
}

std::string JSON_WRITER::vertex_text(VERTEX vertex) {
    LINKER_OBJECT* object = graph().get_object(vertex);
    std::string out = "{\"id\" : " + text(object->name()) + ", \"group\" : 1, \"defines\" : [";
    LIST list(out, ",");
    for (const DEFINITION& def : definitions(object))
        list.add("{\"name\" : " + text(def.name) + ", \"offset\" : " + number(def.offset) +
                 ", \"type\" : " + text(def.type) + ", \"binding\" : " + text(def.binding) +
                 ", \"size\" : " + number(def.size) + "}");
    return out + "]}";
}

std::string JSON_WRITER::edge_text(const EDGE& edge) {
    LINKER_OBJECT* from = graph().get_object(edge.from);
    LINKER_OBJECT* to = graph().get_object(edge.to);
    std::string out = "{\"source\" : " + text(from->name()) + ", \"target\" : " + text(to->name()) +
                      ", \"value\" : " + number(edge.reloc_count != 0 ? edge.reloc_count : 1) +
                      ", \"relocs\" : [";
    LIST list(out, ",");
    for (const EDGE_RELOC& reloc : relocs(edge))
        list.add("{\"name\" : " + text(reloc.name) + ", \"offset\" : " + number(reloc.offset) +
                 ", \"resolution\": " + text(covering_symbol(from, reloc.offset)) + "}");
    return out + "]}";
}
