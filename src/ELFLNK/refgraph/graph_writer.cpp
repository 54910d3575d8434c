// What the writers share: edges formed from single references, the symbols of objects.
#include "ELFLNK/refgraph/graph_writer.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "DIAG/gen_msgs.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/object/symbol_object.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "UTIL/file_handle_manager.h"

using OFE::OF_RAW_SYMBOL;

namespace {

constexpr uint32_t THUMB_BIT = 1;

// Where a symbol begins: the value of a Thumb function says its state in the low bit.
uint32_t start_of(const OF_RAW_SYMBOL& sym, OFE::OBJECT_FILE* file) {
    const bool is_code =
        file->machine() == OFE::OF_MACHINE_ARM && sym.type == OFE::OF_SYM_TYPE_FUNCTION;
    return is_code ? sym.value & ~THUMB_BIT : sym.value;
}

int rank(OFE::OF_SYM_TYPE type) {
    if (type == OFE::OF_SYM_TYPE_FUNCTION) return 2;
    return type == OFE::OF_SYM_TYPE_OBJECT ? 1 : 0;
}

bool is_listed(const OF_RAW_SYMBOL& sym) {
    return sym.size != 0 ||
           (sym.type == OFE::OF_SYM_TYPE_FUNCTION && sym.binding == OFE::OF_SYM_BINDING_GLOBAL);
}

} // namespace

/// The defined symbols of a file by section.
struct GRAPH_WRITER::FILE_INDEX {
    struct ENTRY {
        unsigned section_id;
        unsigned symbol_id;
        auto operator<=>(const ENTRY&) const = default;
    };
    std::vector<ENTRY> entries;

    explicit FILE_INDEX(OFE::OF_SYMBOL_TABLE* symbols) {
        OF_RAW_SYMBOL sym;
        for (unsigned id = 0; symbols && id < symbols->symnum(); id = symbols->next_symbol_id(id))
            if (symbols->raw_symbol(id, sym) && sym.kind == OFE::OF_SYM_KIND_DEFINED &&
                sym.section_id != OF_RAW_SYMBOL::NO_SECTION)
                entries.push_back({sym.section_id, id});
        std::sort(entries.begin(), entries.end());
    }

    // Calls for each symbol of a section, in the order of the table.
    template <class VISIT>
    void for_each(OFE::OF_SECTION* section, VISIT visit) const {
        OFE::OF_SYMBOL_TABLE* symbols = section->ofile()->symbol_table();
        OF_RAW_SYMBOL sym;
        for (auto it = std::lower_bound(entries.begin(), entries.end(), ENTRY{section->id(), 0});
             it != entries.end() && it->section_id == section->id(); ++it)
            if (symbols->raw_symbol(it->symbol_id, sym)) visit(sym);
    }
};

GRAPH_WRITER::GRAPH_WRITER(const REFERENCE_GRAPH& graph) : graph_(graph) {
    form_edges();
}

GRAPH_WRITER::~GRAPH_WRITER() = default;

std::unique_ptr<GRAPH_WRITER> GRAPH_WRITER::get_graph_writer(std::string_view format,
                                                             const REFERENCE_GRAPH& graph) {
    if (format == "TEXT") return std::make_unique<TEXT_WRITER>(graph);
    if (format == "JSON") return std::make_unique<JSON_WRITER>(graph);
    return nullptr;
}

void GRAPH_WRITER::write(const std::string& name) {
    FHM_FILE* file = fhm_open(name.c_str(), "w");
    if (!file) {
        DIAG_REPORT(gen_bad_file_open, name, std::strerror(errno));
        return;
    }
    populate_file(file);
    fhm_close(file);
}

// ---- edges

void GRAPH_WRITER::form_edges() {
    const auto& references = graph_.references();
    std::vector<uint32_t> order;
    order.reserve(references.size());
    for (uint32_t i = 0; i < references.size(); ++i)
        if (!graph_.is_removed(references[i].from) && !graph_.is_removed(references[i].to))
            order.push_back(i);
    std::stable_sort(order.begin(), order.end(), [&](uint32_t a, uint32_t b) {
        const auto& x = references[a];
        const auto& y = references[b];
        return x.from != y.from ? x.from < y.from : x.to < y.to;
    });
    for (const uint32_t i : order) {
        const auto& [from, to] = references[i];
        if (edges_.empty() || edges_.back().from != from || edges_.back().to != to)
            edges_.push_back({from, to, static_cast<uint32_t>(relocs_.size()), 0});
        if (graph_.relocs().empty() || !graph_.relocs()[i].name) continue;
        relocs_.push_back(graph_.relocs()[i]);
        ++edges_.back().reloc_count;
    }

    // Edges are ordered by their beginning, so each list of ends comes out in that order too.
    first_in_.assign(graph_.vertex_count() + 1, 0);
    for (const EDGE& edge : edges_) ++first_in_[edge.to + 1];
    for (VERTEX v = 0; v < graph_.vertex_count(); ++v) first_in_[v + 1] += first_in_[v];
    in_edges_.resize(edges_.size());
    std::vector<uint32_t> next(first_in_.begin(), first_in_.end() - 1);
    for (uint32_t i = 0; i < edges_.size(); ++i) in_edges_[next[edges_[i].to]++] = i;
}

std::span<const uint32_t> GRAPH_WRITER::in_edges(VERTEX vertex) const {
    return {in_edges_.data() + first_in_[vertex], first_in_[vertex + 1] - first_in_[vertex]};
}

bool GRAPH_WRITER::is_allocated(VERTEX vertex) const {
    return !graph_.is_removed(vertex) && graph_.get_object(vertex)->has_attr(PA_ALLOCATED);
}

// ---- symbols

bool GRAPH_WRITER::sym_has_higher_priority(const OF_RAW_SYMBOL& a, const OF_RAW_SYMBOL& b) {
    return rank(a.type) > rank(b.type);
}

const GRAPH_WRITER::FILE_INDEX& GRAPH_WRITER::index_of(OFE::OBJECT_FILE* file) {
    std::unique_ptr<FILE_INDEX>& index = files_[file];
    if (!index) index = std::make_unique<FILE_INDEX>(file->symbol_table());
    return *index;
}

std::vector<GRAPH_WRITER::DEFINITION> GRAPH_WRITER::definitions(LINKER_OBJECT* object) {
    std::vector<DEFINITION> list;
    const auto add = [&list](const OF_RAW_SYMBOL& sym, OFE::OBJECT_FILE* file) {
        list.push_back({global_symbols.diag_sym_name(sym.name), start_of(sym, file),
                        OFE::OBJECT_FILE::sym_type_name(sym.type),
                        OFE::OBJECT_FILE::sym_binding_name(sym.binding), sym.size});
    };
    if (SECTION* section = as_section(object)) {
        OFE::OF_SECTION* input = section->OF_SECTION_api();
        if (!input) return list;
        index_of(input->ofile()).for_each(input, [&](const OF_RAW_SYMBOL& sym) {
            if (is_listed(sym)) add(sym, input->ofile());
        });
    } else if (object->is_symbol_object()) {
        OFE::OF_SYMBOL* sym = static_cast<SYMBOL_OBJECT*>(object)->symbol();
        OF_RAW_SYMBOL raw;
        if (sym->symbol_table()->raw_symbol(sym->id(), raw)) add(raw, sym->ofile());
    }
    return list;
}

// The symbols of an object that cover bytes of it, by their start; where several start at one
// place, the one that names it best stands last.
const std::vector<GRAPH_WRITER::PLACE>& GRAPH_WRITER::places_of(LINKER_OBJECT* object) {
    const auto [it, is_new] = places_.try_emplace(object);
    std::vector<PLACE>& places = it->second;
    SECTION* section = as_section(object);
    OFE::OF_SECTION* input = section ? section->OF_SECTION_api() : nullptr;
    if (!is_new || !input) return places;
    std::vector<OF_RAW_SYMBOL> symbols;
    index_of(input->ofile()).for_each(input, [&](const OF_RAW_SYMBOL& sym) {
        if (sym.size != 0) symbols.push_back(sym);
    });
    std::reverse(symbols.begin(), symbols.end()); // of equals the first of the table stands last
    std::stable_sort(symbols.begin(), symbols.end(),
                     [&](const OF_RAW_SYMBOL& a, const OF_RAW_SYMBOL& b) {
                         const uint32_t x = start_of(a, input->ofile());
                         const uint32_t y = start_of(b, input->ofile());
                         return x != y ? x < y : sym_has_higher_priority(b, a);
                     });
    uint64_t max_end = 0;
    for (const OF_RAW_SYMBOL& sym : symbols) {
        const uint32_t start = start_of(sym, input->ofile());
        max_end = std::max(max_end, uint64_t{start} + sym.size);
        places.push_back({start, uint64_t{start} + sym.size, max_end, sym.name});
    }
    return places;
}

std::string GRAPH_WRITER::covering_symbol(LINKER_OBJECT* object, uint32_t offset) {
    const std::vector<PLACE>& places = places_of(object);
    auto it = std::upper_bound(places.begin(), places.end(), offset,
                               [](uint32_t at, const PLACE& place) { return at < place.start; });
    while (it != places.begin() && (--it)->max_end > offset)
        if (it->end > offset) return it->name;
    return "";
}
