// Reachability: from a set of roots, along relocations, every input section that is reached becomes
// a SECTION of the root collection; what is not reached never becomes an object, and so is not
// linked. The walk is mark and sweep over the raw records of the mapped files: one byte per section
// says what it is and whether it is registered, a list of sections in the order of registration
// grows while it is walked, and no relocation object is made. References are recorded only if the
// root collection keeps a graph of them; then every relocation is looked at, which the walk can
// otherwise spare itself where its target is registered.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "OBJEDIT04/ofe/raw_records.h"

class ABI;
class LINKER_OBJECT;
class OBJ_FILE;
namespace OFE {
class OBJECT_FILE;
class OF_SECTION_TABLE;
class OF_SYMBOL;
class OF_SYMBOL_TABLE;
} // namespace OFE

/// Lists of sections by section (or by symbol), in the order in which they were filled: what is
/// kept with a section, and what a section of debug data refers to.
class SECTION_LISTS {
  public:
    using KEY = uint64_t; ///< file id, then section or symbol id
    /// Adds to the list of the key; not what its last item is already.
    void add(KEY key, KEY item);
    template <class VISIT>
    void for_each(KEY key, VISIT visit) const;

  private:
    struct LINK {
        KEY item;
        uint32_t next; // in a ring, so that the last one leads to the first
    };
    static constexpr uint32_t NO_LINK = 0; // links_[0] is no link
    uint32_t last_of(KEY key) const;

    std::vector<std::vector<uint32_t>> last_; // by file id and section id: the last link
    std::vector<LINK> links_{{}};
};

inline uint32_t SECTION_LISTS::last_of(KEY key) const {
    const auto file = static_cast<size_t>(key >> 32), id = static_cast<size_t>(key & 0xFFFFFFFF);
    return file < last_.size() && id < last_[file].size() ? last_[file][id] : NO_LINK;
}

template <class VISIT>
void SECTION_LISTS::for_each(KEY key, VISIT visit) const {
    const uint32_t last = last_of(key);
    if (last == NO_LINK) return;
    for (uint32_t at = links_[last].next;; at = links_[at].next) {
        visit(links_[at].item);
        if (at == last) return;
    }
}

class REGISTRAR {
  public:
    REGISTRAR();
    ~REGISTRAR();
    REGISTRAR(const REGISTRAR&) = delete;
    REGISTRAR& operator=(const REGISTRAR&) = delete;

    /// The whole pass.
    void register_objects();

  private:
    enum SECTION_BITS : uint16_t {
        REGISTERED = 1,
        REQUIRED = 2,
        PROGDATA = 4,
        DEBUG_DATA = 8, ///< name begins ".debug"
        ABSENT = 16,    ///< deleted, or unreadable
        OMDATA = 32,
        LINK_ORDER = 64,
        DEBUG_LIKE = 128, ///< not debug data by name, but keeps no program data either
        REFS_LISTED = 256 ///< debug data whose references are all in debug_refs_, or keep nothing
    };
    /// What the references to a name have come to: the same answer needs no second look.
    enum NAME_BITS : uint8_t { LEADS_TO_REGISTERED = 1, NOT_KEPT_BY_DEBUG = 2 };
    /// The relocations of a section as they lie in the mapped file, found once while its headers
    /// are at hand: the walk comes to sections in no order of their places.
    struct RELOC_SPAN {
        enum KIND : uint8_t { NONE, REL, RELA, OTHER }; ///< OTHER: more tables, or not in place
        const uint8_t* data = nullptr;
        unsigned count = 0;
        KIND kind = NONE;
    };
    struct FILE_STATE {
        std::vector<uint16_t> bits;     ///< SECTION_BITS by section id
        std::vector<RELOC_SPAN> relocs; ///< by section id; empty for a file that isn't walked
        /// By local symbol: its section, 0 where not known yet.
        std::vector<unsigned> local_sections;
        const uint32_t* name_ids = nullptr; ///< of FILE_SYMBOLS, from first_global on
        unsigned first_global = 0;
        unsigned name_count = 0;
        OFE::OF_SYMBOL_TABLE* symbols = nullptr;
        OFE::OF_SECTION_TABLE* sections = nullptr;
        const bool* takes_symbol = nullptr; ///< by machine relocation number, 256 of them
        unsigned id = 0;                    ///< of the object file
        bool is_big = false;                ///< byte order
        bool is_linked = false;             ///< a static linking object
        bool is_executable = false;
        bool has_debug_data = false;
        OBJ_FILE* file = nullptr;
        OFE::OBJECT_FILE* object = nullptr;
        uint32_t name_id(unsigned sym_id) const;
    };
    /// What a relocation leads to: a section of a file, or a symbol without one.
    struct TARGET_REF {
        FILE_STATE* file = nullptr;
        unsigned section_id = OFE::OF_RAW_SYMBOL::NO_SECTION;
        OFE::OF_SYMBOL* sym = nullptr; ///< null for a local symbol that has no object
        OFE::OF_SYM_KIND kind = OFE::OF_SYM_KIND_NONE;
        bool is_known = false;
        bool has_section() const { return section_id != OFE::OF_RAW_SYMBOL::NO_SECTION; }
        bool is_absent() const { return has_section() && (file->bits[section_id] & ABSENT); }
    };
    struct WORK {
        FILE_STATE* file;
        unsigned section_id;
    };
    /// Who refers, as far as references are recorded: the object, and the relocation if it is one.
    struct REFERRER {
        LINKER_OBJECT* object = nullptr;
        const char* symbol_name = nullptr;
        unsigned offset = 0;
        const OFE::OF_SYMBOL* root_symbol = nullptr; ///< of a reference from the root
    };
    using KEY = SECTION_LISTS::KEY;

    // Files and sections.
    void prepare_files();
    FILE_STATE& state_of(OFE::OBJECT_FILE* object);
    void classify_sections(FILE_STATE& file);
    const bool* relocs_that_take_symbols(OFE::OBJECT_FILE* object);
    static KEY key_of(const FILE_STATE& file, unsigned section_id);
    static KEY key_of(const OFE::OF_SYMBOL* sym);
    WORK work_of(KEY key) const { return {files_[key >> 32].get(), static_cast<unsigned>(key)}; }

    // Roots.
    bool section_is_required(FILE_STATE& file, const OFE::OF_RAW_SECTION& section, uint16_t bits);
    bool progdata_section_immune_to_retain(const FILE_STATE& file,
                                           const OFE::OF_RAW_SECTION& section) const;
    bool metadata_retains_section(const FILE_STATE& file, const OFE::OF_RAW_SECTION& section) const;
    void register_required_symbols();
    void register_required_sections();

    // Implicit dependences.
    void find_implicit_deps();
    void add_debug_deps(FILE_STATE& file, const OFE::OF_RAW_SECTION& section);
    void add_debug_dep(const TARGET_REF& target, KEY holder, std::string_view tie);
    void add_metadata_deps(FILE_STATE& file, const OFE::OF_RAW_SECTION& section);

    // Relocations.
    RELOC_SPAN find_relocs(const FILE_STATE& file, unsigned section_id) const;
    template <class VISIT>
    static void visit_relocs(const FILE_STATE& file, const OFE::OF_RAW_RELOCS& relocs, VISIT visit);
    template <class VISIT>
    static void for_each_symbol_reloc(const FILE_STATE& file, unsigned section_id, VISIT visit);
    const TARGET_REF& target_of(FILE_STATE& file, unsigned sym_id);
    const TARGET_REF& local_target_of(FILE_STATE& file, unsigned sym_id);
    unsigned local_section(FILE_STATE& file, unsigned sym_id);
    bool changes_nothing(FILE_STATE& file, unsigned sym_id, bool is_debug);
    TARGET_REF target_of_symbol(OFE::OF_SYMBOL* sym);
    static bool debug_keeps(const TARGET_REF& target);

    // The closure.
    void register_referenced_objects();
    void walk_section(const WORK& work);
    void walk_relocs(const WORK& work);
    void register_debug_refs(const WORK& work);
    void register_a_reference(const WORK& from, bool is_debug, const OFE::OF_RAW_RELOC& reloc);
    void register_target(const REFERRER& from, const TARGET_REF& target);
    void register_section(const REFERRER& from, FILE_STATE& file, unsigned section_id);
    void register_any_section(const REFERRER& from, FILE_STATE& file, unsigned section_id);
    void push_group_members(FILE_STATE& file, unsigned section_id);
    void register_symbol_object(const REFERRER& from, OFE::OF_SYMBOL* sym, OFE::OF_SYM_KIND kind);
    void note_symbol_object(const FILE_STATE& file, unsigned sym_id, const TARGET_REF& target);
    void register_variants(const WORK& work);
    void process_reloc_attrs(const WORK& work);
    void register_import_reference(OFE::OF_SYMBOL* sym);
    LINKER_OBJECT* object_of(const FILE_STATE& file, unsigned section_id) const;
    REFERRER referrer_of(const WORK& work, const OFE::OF_RAW_RELOC& reloc) const;
    REFERRER root_referrer(const OFE::OF_SYMBOL* symbol = nullptr) const;
    void record(const REFERRER& from, LINKER_OBJECT* to) const;
    void register_sh_link_dependences();
    void make_symbol(FILE_STATE& file, unsigned sym_id);
    void report_mapped_symbol(FILE_STATE& file, unsigned sym_id);
    void report_discarded(const WORK& from, const OFE::OF_RAW_RELOC& reloc,
                          const TARGET_REF& target);

    ABI* abi_;
    bool is_partial_;
    bool elimination_is_off_;
    bool has_retain_specs_;
    bool records_references_ = false;
    bool has_specializations_ = false;
    bool relocs_stay_; ///< relocations become objects in the output
    bool has_retainrefs_ = false;
    std::vector<std::unique_ptr<FILE_STATE>> files_; ///< by file id
    std::vector<FILE_STATE*> order_;                 ///< in the file manager's order
    std::vector<std::pair<const void*, std::unique_ptr<bool[]>>> reloc_kinds_; ///< per type set
    std::vector<TARGET_REF> name_targets_;  ///< by name id, where known
    std::vector<uint8_t> name_bits_;        ///< NAME_BITS by name id
    TARGET_REF scratch_;                    ///< the last answer that isn't kept
    std::vector<unsigned> met_by_;          ///< by local symbol: the last that referred to it
    std::vector<WORK> stack_;               ///< of register_any_section
    std::vector<LINKER_OBJECT*> referrers_; ///< beside the stack, but for its first entry
    std::vector<WORK> work_;                ///< in the order of registration
    size_t next_work_ = 0;                  ///< the first that was not walked
    std::unordered_set<const OFE::OF_SYMBOL*> symbol_objects_;
    SECTION_LISTS section_deps_; ///< section to the sections that are kept with it
    SECTION_LISTS symbol_deps_;  ///< symbol to the sections that are kept with it
    SECTION_LISTS debug_refs_;   ///< debug data to the other sections that it keeps
};
