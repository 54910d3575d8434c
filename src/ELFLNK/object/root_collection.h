// The root of the tree, with the indexes of the link: input sections and symbol objects by file
// and number, output sections by id and name, and the reverse map of output sections.
//
// Each section of the object file layer knows its linker object, so that lookups by section are
// O(1). All walks go in the order of file number and index, so nothing depends on where objects lie
// in memory.
#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "ELFLNK/object/collection.h"

namespace OFE {
class OF_SECTION_TABLE;
class OF_SYMBOL;
} // namespace OFE
class REFERENCE_GRAPH;
class SECTION;
class SYMBOL_OBJECT;

class ROOT_COLLECTION : public COLLECTION {
  public:
    using OUTSECT_SET = std::set<LINKER_OBJECT*, LESS_OBJ_ID>;
    /// File number, then the symbol's index.
    using SYMBOL_KEY = std::pair<uint32_t, uint32_t>;
    using SYMBOL_OBJECT_MAP = std::map<SYMBOL_KEY, SYMBOL_OBJECT*>;

    ROOT_COLLECTION();
    ~ROOT_COLLECTION() override;

    // ---- input sections --------------------------------------------------------------------
    void add_section(SECTION* section);
    void remove_section(SECTION* section);
    SECTION* lookup_OF_SECTION(const OFE::OF_SECTION* section) const;
    SECTION* lookup_section(uint32_t file_id, uint32_t section_id) const;
    /// All sections, by file number, then index.
    void list_sections(std::vector<SECTION*>& out) const;
    /// By file number: the table of a file with sections in the link, or null.
    const std::vector<const OFE::OF_SECTION_TABLE*>& section_tables() const {
        return section_tables_;
    }
    std::size_t section_count() const { return section_count_; }

    // ---- symbol objects --------------------------------------------------------------------
    void add_symbol_object(SYMBOL_OBJECT* obj);
    void remove_symbol_object(SYMBOL_OBJECT* obj);
    SYMBOL_OBJECT* lookup_symbol_object(const OFE::OF_SYMBOL* symbol) const;
    const SYMBOL_OBJECT_MAP& symbol_objects() const { return symbol_objects_; }

    // ---- output sections -------------------------------------------------------------------
    void add_outsect(LINKER_OBJECT* obj);
    void remove_outsect(LINKER_OBJECT* obj);
    /// First by object id of that name; null and empty names never match.
    LINKER_OBJECT* find_outsect(const char* name) const {
        return find_other_outsect(name, nullptr);
    }
    LINKER_OBJECT* find_other_outsect(const char* name, const LINKER_OBJECT* but) const;
    const OUTSECT_SET& outsects() const { return outsects_; }
    LINKER_OBJECT* lookup_OF_outsect(const OFE::OF_SECTION* output) const;
    using COLLECTION::set_output_OF_SECTION;
    void set_output_OF_SECTION(OFE::OF_SECTION* output, LINKER_OBJECT* obj) {
        obj->set_output_OF_SECTION(output);
    }

    // ---- the tree --------------------------------------------------------------------------
    /// Takes the object, and what is below it, out of the tree and the indexes.
    void unregister_object(LINKER_OBJECT* obj);
    /// Nearest ancestor of obj that also contains other, or the root.
    COLLECTION* find_enclosing_collection(LINKER_OBJECT* obj, const LINKER_OBJECT* other);
    /// Ends the collection phase: attributes of the whole tree.
    void update_after_collection();
    /// Every section that takes part is known from here on.
    void set_objects_registered() { objects_registered_ = true; }
    bool objects_registered() const { return objects_registered_; }

    // ---- references (root_references.cpp) --------------------------------------------------
    /// Starts the graph of references, if somebody is going to ask for it: --emit_references, a
    /// specialization, or a root that may be taken away.
    void create_reference_graph();
    /// Null when references are not recorded.
    REFERENCE_GRAPH* reference_graph() { return reference_graph_.get(); }
    /// Stands for what the linker itself refers to; null without a graph.
    SECTION* root_section() const { return root_section_; }
    /// The root through which a symbol of that name stays may be taken away once collection knows
    /// more. Said before the objects are registered.
    void expect_root_removal(const char* symbol_name);

    // Each of these does nothing when references are not recorded.
    /// `symbol_name` and `offset`: of the relocation that makes the reference, null without one.
    void add_reference(LINKER_OBJECT* from, LINKER_OBJECT* to, const char* symbol_name = nullptr,
                       uint32_t offset = 0);
    void remove_reference(LINKER_OBJECT* from, LINKER_OBJECT* to);
    /// The linker refers to the object that defines the symbol, or for itself (null) to `object`.
    void add_symbol_reference_from_root_section(const OFE::OF_SYMBOL* symbol,
                                                LINKER_OBJECT* object);
    /// Takes that reference away; the object stays a root if it is one for another reason.
    void remove_symbol_reference_from_root_section(const char* symbol_name);
    std::vector<LINKER_OBJECT*> references_to_object(const LINKER_OBJECT* object) const;
    std::vector<LINKER_OBJECT*> all_references_from_object(const LINKER_OBJECT* object) const;
    /// Takes out of the tree what no chain of references leads to any more.
    void remove_unreferenced_objects();

    bool symbol_is_in_link(const OFE::OF_SYMBOL* symbol) const;
    bool object_is_in_link(const LINKER_OBJECT* obj) const;

  private:
    friend class LINKER_OBJECT; // names and output sections change there
    void map_output(const OFE::OF_SECTION* output, LINKER_OBJECT* obj) {
        output_map_[output] = obj;
    }
    void unmap_output(const OFE::OF_SECTION* output) { output_map_.erase(output); }
    void note_change_at(const OFE::OF_SECTION* input);
    void make_list() const;
    void update_list() const;
    bool wants_reference_graph() const;
    void finish_reference_graph();
    void index_outsect_name(LINKER_OBJECT* obj);
    void unindex_outsect_name(LINKER_OBJECT* obj);

    std::vector<const OFE::OF_SECTION_TABLE*> section_tables_; // by file number; null: none taken
    std::size_t section_count_ = 0;
    // The list of all, once it has been asked for, and where it isn't up to date any more.
    struct LISTED {
        uint64_t place; // file number, then section index
        SECTION* section;
    };
    mutable std::vector<LISTED> listed_;
    mutable std::vector<uint64_t> changed_places_;
    mutable bool list_is_made_ = false;
    bool objects_registered_ = false;
    std::unique_ptr<REFERENCE_GRAPH> reference_graph_;
    SECTION* root_section_ = nullptr;
    std::vector<std::pair<std::string, LINKER_OBJECT*>>
        root_references_; // symbol name, empty without one
    std::vector<std::string> expected_removals_;
    bool references_removed_ = false; // since what is unreferenced was last looked for
    SYMBOL_OBJECT_MAP symbol_objects_;
    OUTSECT_SET outsects_;
    std::unordered_map<std::string_view, std::vector<LINKER_OBJECT*>>
        outsects_by_name_; // ascending ids
    std::unordered_map<const OFE::OF_SECTION*, LINKER_OBJECT*> output_map_;
};

extern ROOT_COLLECTION* root_collection;
