// The link-wide table of global names. While files are scanned it only records what is defined and
// what is still needed, for the decisions about archive members. When all files are in, the load
// phase clears the definitions, enters them again in link order, settles every conflict (link_def)
// and points each undefined symbol at its definition (link_undef). The symbols belong to their
// object files; the table holds pointers, one record per interned name.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "ELFLNK/symbol/name_table.h"

class LINKER_OBJECT;
class OBJ_FILE;
class SOURCE_POSITION;
namespace OFE {
class OBJECT_FILE;
class OF_SYMBOL;
struct OF_RAW_SYMBOL;
} // namespace OFE

/// What is known of a name of --import and --export.
enum class IMPORT_STATE : uint8_t {
    NONE = 0,
    IMPORT_WANTED = 1,
    EXPORT_WANTED = 2,
    IMPORT_REFUSED = 3,
    IMPORT_IN_FORCE = 4
};

class SYMBOL_TABLE {
  public:
    // ---- scanning
    /// Enters a global or weak symbol, or any symbol with local_too. Fatal once the table is
    /// locked.
    void add_symbol(OFE::OF_SYMBOL* sym, bool local_too);
    void add_def(OFE::OF_SYMBOL* sym);
    void add_undef(OFE::OF_SYMBOL* sym);
    /// A symbol that a shared object exports.
    void add_import_symbol(OFE::OF_SYMBOL* sym);
    /// add_undef() would do something with this reference; if not, no object need be made for it.
    bool undef_matters(uint32_t id, bool weak) const;

    // ---- the resolution passes
    void link_def(OFE::OF_SYMBOL* sym);
    void link_undef(OFE::OF_SYMBOL* sym);
    /// The better of two definitions of one name; E came first.
    OFE::OF_SYMBOL* check_redefinition(OFE::OF_SYMBOL* E, OFE::OF_SYMBOL* N);

    // ---- roots and plain names
    void add_entry_name(const char* name);
    /// The name is no root any more, nor is a symbol that was entered for it.
    void remove_entry_name(const char* name);
    void add_entry_symbol(OFE::OF_SYMBOL* sym);
    void add_undef_name(const char* name);
    void remove_undef_name(const char* name);
    void add_nohide_name(const char* name);
    bool is_nohide_name(const char* name) const;
    void add_export_name(const char* name);
    void add_import_name(const char* name);
    bool import_required(const char* name) const;
    void add_rts_trigger(const char* name);
    /// Entry names in name order; entry symbols in the order they came.
    std::vector<const char*> entry_names() const;
    const std::vector<OFE::OF_SYMBOL*>& entry_symbols() const { return entry_symbols_; }
    std::vector<const char*> rts_triggers() const;

    // ---- symbol maps
    void add_mapping_entry(const SOURCE_POSITION* pos, const char* ref, const char* def);
    /// The name that a reference to `name` stands for; `name` itself when it isn't mapped.
    const char* mapped_to(const char* name) const;
    /// All names whose references `name` serves: what is mapped to it, and itself unless it is
    /// mapped away.
    void mapped_from(const char* name, std::vector<const char*>& names) const;
    bool is_symbol_mapped_to(const char* name) const;

    // ---- queries
    OFE::OF_SYMBOL* lookup(const char* name) const;
    OFE::OF_SYMBOL* lookup_def(const char* name) const;
    OFE::OF_SYMBOL* lookup_undef(const char* name) const;
    OFE::OF_SYMBOL* lookup_hll(const char* name) const;
    OFE::OF_SYMBOL* lookup_def_hll(const char* name) const;
    OFE::OF_SYMBOL* lookup_imported(const char* name) const;
    LINKER_OBJECT* lookup_linker_symbol(const OFE::OF_SYMBOL* sym) const;
    bool is_linker_symbol(const OFE::OF_SYMBOL* sym) const;
    bool is_undef_name(const char* name) const;

    // ---- archive decisions
    bool need_def(const char* name, OFE::OF_SYMBOL** out) const;
    bool need_def(const char* name) const { return need_def(name, nullptr); }
    bool need_undef(OFE::OF_SYMBOL* sym) const;
    bool need_name_from_archive(const char* name) const;

    // ---- changes after linking
    /// null for null, else where the chain of resolved_by() ends.
    static OFE::OF_SYMBOL* resolution(OFE::OF_SYMBOL* sym);
    /// `replacement` takes the place of `old` in the tables, and resolves it.
    void update_symbol(OFE::OF_SYMBOL* old, OFE::OF_SYMBOL* replacement);
    void update_linker_symbol(OFE::OF_SYMBOL* sym, LINKER_OBJECT* object);
    void remove_linker_symbol(const OFE::OF_SYMBOL* sym);
    void lock() { locked_ = true; }
    bool locked() const { return locked_; }
    /// With the flag on, an assignment of a command file takes any existing symbol over.
    void set_override(bool on) { override_ = on; }
    bool override_symbols() const { return override_; }

    // ---- predicates
    bool is_bound(OFE::OF_SYMBOL* sym) const;
    bool is_defined_in_comdat(OFE::OF_SYMBOL* sym) const;
    bool is_exported_by_shared_object(OFE::OF_SYMBOL* sym) const;
    bool is_imported_def(OFE::OF_SYMBOL* sym) const;
    bool is_class_impedimenta(OFE::OF_SYMBOL* sym) const;
    /// The object of the tree that defines the symbol: its section's, its common block or absolute
    /// symbol, the linker symbol's; null when it isn't in the link.
    LINKER_OBJECT* symbol_defining_object(OFE::OF_SYMBOL* sym) const;
    /// The name for messages: demangled unless --no_demangle.
    std::string diag_sym_name(const char* name) const;

    // ---- walks, each in name order
    std::vector<OFE::OF_SYMBOL*> sorted_defs() const;
    std::vector<OFE::OF_SYMBOL*> sorted_absolute_defs() const;
    /// What is wanted and not defined; null for a name without a symbol.
    std::vector<std::pair<const char*, OFE::OF_SYMBOL*>> sorted_undefs() const;
    std::vector<std::pair<const char*, IMPORT_STATE>> sorted_import_names() const;
    size_t def_count() const { return def_count_; }

    void clear_defs();
    void clear_undefs();
    void clear_entry_symbols();

    // ---- by id: the road for millions of names
    /// The id of a name whose text lives to the end of the link.
    uint32_t intern(const char* stable_name) { return record_id(names_.intern(stable_name)); }
    /// The same for a view that a NUL follows.
    uint32_t intern_view(std::string_view stable_name) {
        return record_id(names_.intern(stable_name, stable_name.data()));
    }
    uint32_t find_id(std::string_view name) const { return names_.find(name); }
    const char* name_of(uint32_t id) const { return names_.text(id); }
    uint32_t name_count() const { return names_.size(); }
    OFE::OF_SYMBOL* def_of(uint32_t id) const { return records_[id].def; }
    OFE::OF_SYMBOL* undef_of(uint32_t id) const { return records_[id].undef; }
    bool has_undef(uint32_t id) const { return records_[id].flags & IN_UNDEFS; }
    /// need_def() by id.
    bool need_def(uint32_t id) const;
    /// The id that a reference to this id stands for.
    uint32_t mapped_id(uint32_t id) const {
        return records_[id].mapped_to == NAME_TABLE::NO_NAME ? id : records_[id].mapped_to;
    }
    /// link_undef() for a reference that has no object. False: it takes an object to settle this
    /// one.
    bool link_raw_undef(uint32_t id, const OFE::OF_RAW_SYMBOL& ref);
    /// Names that came to need a definition since the log was last taken, in the order of their
    /// first need.
    std::vector<uint32_t> take_needs() { return std::exchange(needs_, {}); }

  private:
    enum : uint8_t {
        IN_UNDEFS = 1,
        ENTRY_NAME = 2,
        NOHIDE = 4,
        RTS_TRIGGER = 8,
        ENTRY_SYM = 16,
        MAPPED_TARGET = 32,
        WEAK_UNDEF = 64
    };
    struct RECORD {
        OFE::OF_SYMBOL* def = nullptr;
        OFE::OF_SYMBOL* undef = nullptr; // may be null although the name is in undefs
        uint32_t mapped_to = NAME_TABLE::NO_NAME;
        uint8_t flags = 0;
        IMPORT_STATE import = IMPORT_STATE::NONE;
    };

    uint32_t record_id(uint32_t id);
    uint32_t id_of(OFE::OF_SYMBOL* sym);
    uint32_t intern_copy(const char* name);
    const RECORD* record(const char* name) const;
    void set_undef(uint32_t id, OFE::OF_SYMBOL* sym);
    bool erase_undef(uint32_t id);
    void mapped_from_ids(uint32_t id, std::vector<uint32_t>& ids) const;
    std::vector<const char*> names_with(uint8_t flag) const;
    std::vector<uint32_t> sorted_ids(std::vector<uint32_t> ids) const;

    void update_visibility(OFE::OF_SYMBOL* sym);
    void reconcile_visibility(OFE::OF_SYMBOL* def, OFE::OF_SYMBOL* ref);
    void check_tls_mismatch(OFE::OF_SYMBOL* a, OFE::OF_SYMBOL* b);
    bool assign_rtti_id(OFE::OF_SYMBOL* sym);

    NAME_TABLE names_;
    std::vector<RECORD> records_;
    std::vector<OFE::OF_SYMBOL*> entry_symbols_;
    std::vector<uint32_t> needs_;
    /// By definition: the references mapped to it, in the order in which they were entered.
    std::unordered_map<uint32_t, std::vector<uint32_t>> reverse_map_;
    std::unordered_map<std::string_view, OFE::OF_SYMBOL*> imports_;
    std::unordered_map<const OFE::OF_SYMBOL*, LINKER_OBJECT*> linker_symbols_;
    size_t def_count_ = 0;
    uint32_t import_name_count_ = 0;
    unsigned next_rtti_id_ = 256;
    bool locked_ = false;
    bool override_ = false;
};

extern SYMBOL_TABLE global_symbols;

/// Parses one value "ref=def" of --symbol_map, or with hll of --remap_symref, and enters it.
void process_symbol_map(const char* text, bool hll);
