// The references between the objects of the link, as far as somebody asks for them: recorded while
// objects are registered, taken away in collection, written and forgotten at its end.
#include "ELFLNK/object/root_collection.h"

#include <algorithm>

#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/object/section.h"
#include "ELFLNK/refgraph/graph_writer.h"
#include "ELFLNK/refgraph/reference_graph.h"
#include "ELFLNK/retain/specialization.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/trace.h"

namespace {

constexpr const char* ROOT_NAME = "ROOT_SECTION";

} // namespace

void ROOT_COLLECTION::expect_root_removal(const char* symbol_name) {
    expected_removals_.emplace_back(symbol_name);
}

bool ROOT_COLLECTION::wants_reference_graph() const {
    if (global_opts->isopt(OPT_emit_references_file)) return true;
    if (SPECIALIZATION_MANAGER::any_instantiated()) return true;
    return std::any_of(
        expected_removals_.begin(), expected_removals_.end(),
        [](const std::string& name) { return global_symbols.lookup_def(name.c_str()) != nullptr; });
}

void ROOT_COLLECTION::create_reference_graph() {
    if (!wants_reference_graph()) return;
    OBJ_FILE* file = file_manager.internal_file();
    root_section_ = new SECTION(file, file->object_file()->section_table()->new_section(ROOT_NAME));
    root_section_->clear_attr(PA_ALLOCATED | PA_HAS_DATA);
    reference_graph_ = std::make_unique<REFERENCE_GRAPH>(
        root_section_, global_opts->isopt(OPT_emit_references_file));
}

void ROOT_COLLECTION::add_reference(LINKER_OBJECT* from, LINKER_OBJECT* to, const char* symbol_name,
                                    uint32_t offset) {
    if (reference_graph_) reference_graph_->add_reference(from, to, {symbol_name, offset});
}

void ROOT_COLLECTION::remove_reference(LINKER_OBJECT* from, LINKER_OBJECT* to) {
    if (!reference_graph_) return;
    reference_graph_->remove_reference(from, to);
    references_removed_ = true;
}

void ROOT_COLLECTION::add_symbol_reference_from_root_section(const OFE::OF_SYMBOL* symbol,
                                                             LINKER_OBJECT* object) {
    if (!reference_graph_ || !object) return;
    root_references_.emplace_back(symbol ? symbol->name() : "", object);
    reference_graph_->add_reference(root_section_, object);
}

void ROOT_COLLECTION::remove_symbol_reference_from_root_section(const char* symbol_name) {
    if (!reference_graph_) return;
    std::vector<LINKER_OBJECT*> objects;
    std::erase_if(root_references_, [&](const auto& reference) {
        if (reference.first.empty() || reference.first != symbol_name) return false;
        objects.push_back(reference.second);
        return true;
    });
    for (LINKER_OBJECT* object : objects)
        if (std::none_of(root_references_.begin(), root_references_.end(),
                         [object](const auto& other) { return other.second == object; }))
            remove_reference(root_section_, object);
}

std::vector<LINKER_OBJECT*>
ROOT_COLLECTION::references_to_object(const LINKER_OBJECT* object) const {
    return reference_graph_ ? reference_graph_->references_to_object(object)
                            : std::vector<LINKER_OBJECT*>();
}

std::vector<LINKER_OBJECT*>
ROOT_COLLECTION::all_references_from_object(const LINKER_OBJECT* object) const {
    return reference_graph_ ? reference_graph_->all_references_from_object(object)
                            : std::vector<LINKER_OBJECT*>();
}

void ROOT_COLLECTION::remove_unreferenced_objects() {
    if (!references_removed_) return;
    references_removed_ = false;
    for (LINKER_OBJECT* object : reference_graph_->unreferenced_objects()) {
        trace_ref_graph.printf("removing %s\n", object->name());
        reference_graph_->remove_object(object);
        unregister_object(object);
    }
}

// Reports are written from the references that are left; nobody asks for them afterwards.
void ROOT_COLLECTION::finish_reference_graph() {
    if (!reference_graph_) return;
    if (global_opts->isopt(OPT_emit_references_file)) {
        const std::string base = global_opts->getstrarg(OPT_emit_references_file);
        for (unsigned i = 0; i < global_opts->getargcount(OPT_emit_references_format); ++i) {
            const char* format = global_opts->getstrarg(OPT_emit_references_format, i);
            const auto writer = GRAPH_WRITER::get_graph_writer(format, *reference_graph_);
            if (writer) writer->write(base + "." + writer->file_extension());
        }
    }
    reference_graph_.reset();
    root_references_.clear();
    references_removed_ = false;
}
