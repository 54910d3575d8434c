// The graph as tables, an object after the other.
#include "ELFLNK/object/linker_object.h"
#include "ELFLNK/refgraph/graph_writer.h"
#include "UTIL/file_handle_manager.h"
#include "UTIL/text_table.h"

namespace {

constexpr int INDENT = 4;
constexpr int PADDING = 2;

class TABLE : public TEXT_TABLE {
  public:
    TABLE() {
        set_indent(INDENT);
        set_padding(PADDING);
        set_col_align(0, TA_SPILL);
        set_col_align(1, TA_LEFT);
    }

    // A title, and headings with a rule below each; returns the row behind them.
    int begin(const char* title, std::initializer_list<const char*> headings) {
        set_string(0, 0, title);
        int col = 1;
        for (const std::string_view heading : headings) {
            set_string(1, col, heading);
            set_string(2, col++, std::string(heading.size(), '-'));
        }
        return 3;
    }
};

} // namespace

void TEXT_WRITER::populate_file(FHM_FILE* file) {
    std::string text;
    for (const VERTEX vertex : breadth_first()) {
        if (!is_allocated(vertex)) continue;
        LINKER_OBJECT* object = graph().get_object(vertex);
        text += std::string("Section ") + object->name() + ":\n";
        append_size(text, object);
        append_definitions(text, object);
        append_references(text, vertex);
        text += "\n\n";
        std::fwrite(text.data(), 1, text.size(), file->fp());
        text.clear();
    }
}

void TEXT_WRITER::append_size(std::string& to, LINKER_OBJECT* object) {
    TABLE table;
    table.set_text(1, 0, "Section size: %lu", static_cast<unsigned long>(object->size()));
    table.print(to);
    to += '\n';
}

void TEXT_WRITER::append_definitions(std::string& to, LINKER_OBJECT* object) {
    TABLE table;
    const std::vector<DEFINITION> list = definitions(object);
    if (list.empty()) {
        table.set_string(0, 0, "No symbols defined");
    } else {
        int row = table.begin("Defines:", {"Symbol Name", "Offset", "TYPE", "Scope", "Size"});
        for (const DEFINITION& def : list) {
            table.set_string(row, 1, def.name);
            table.set_text(row, 2, "%u", def.offset);
            table.set_string(row, 3, def.type);
            table.set_string(row, 4, def.binding);
            table.set_text(row, 5, "%u", def.size);
            ++row;
        }
    }
    table.print(to);
    to += '\n';
}

void TEXT_WRITER::append_references(std::string& to, VERTEX vertex) {
    if (in_edges(vertex).empty()) return;
    TABLE table;
    int row =
        table.begin("Input references:", {"Section", "from symbol", "to symbol", "at offset"});
    for (const uint32_t index : in_edges(vertex)) {
        const EDGE& edge = edges()[index];
        LINKER_OBJECT* from = graph().get_object(edge.from);
        if (edge.from == graph().root_vertex()) {
            table.set_string(row++, 1, "Implicit reference or retain");
            continue;
        }
        if (edge.reloc_count == 0) table.set_string(row++, 1, from->name());
        for (const EDGE_RELOC& reloc : relocs(edge)) {
            table.set_string(row, 1, from->name());
            table.set_string(row, 2, covering_symbol(from, reloc.offset));
            table.set_string(row, 3, reloc.name);
            table.set_text(row++, 4, "%u", reloc.offset);
        }
    }
    table.print(to);
}
