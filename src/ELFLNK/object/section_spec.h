// A section specification of a SECTIONS body: which sections of which files belong here.
//
// It is a collection: what it takes in collect() becomes its member, until
// flatten_section_specs dissolves it. Default specifications stand for the name of their output
// section and take what the written ones leave.
#pragma once

#include <string_view>

#include "ELFLNK/object/collection.h"

namespace OFE {
class OF_SYMBOL;
} // namespace OFE
class FILENAME_FILTER;
class INPUT_FILE;
class OBJ_FILE;
class SECTION_FILTER;

class SECTION_SPEC : public COLLECTION {
  public:
    explicit SECTION_SPEC(const char* name, const SOURCE_POSITION* pos = nullptr);
    ~SECTION_SPEC() override;

    bool is_section_spec() const override { return true; }
    void dump_header(PPRINT* out) override;
    void dump_properties(PPRINT* out) override;

    /// Pattern for the name of the file or archive. Texts are not copied.
    void add_file_name(const char* pattern);
    /// The one file meant, found while the command file was parsed.
    void add_objfile(INPUT_FILE* file) { file_ = file; }
    /// One more pattern for the archive member's name; several are alternatives.
    void add_ar_member_name(const char* pattern);
    /// One more section name; several are alternatives.
    void add_section_name(const char* pattern);
    void set_is_default(bool on = true) { is_default_ = on; }

    bool is_default() const { return is_default_; }
    const FILENAME_FILTER* file_filter() const { return file_filter_; }
    const FILENAME_FILTER* member_filter() const { return member_filter_; }
    const SECTION_FILTER* section_filter() const { return section_filter_; }
    INPUT_FILE* exact_file() const { return file_; }

    bool match_section(SECTION* section) const;
    bool match_section(const char* name, OBJ_FILE* file) const;
    bool match_file(OBJ_FILE* file) const;
    bool match_common_symbol(OFE::OF_SYMBOL* symbol) const;
    /// Without a section list only some specifications take anything.
    bool accepts_without_section_filter() const;

    /// Written order: written before default, by number; default ones by their output section.
    static bool less_order(const LINKER_OBJECT* a, const LINKER_OBJECT* b);
    static int sort_order(const LINKER_OBJECT* a, const LINKER_OBJECT* b);
    /// Narrower specifications move in front of wider ones that would take their sections.
    static void order_by_restrictiveness(std::vector<SECTION_SPEC*>& specs);

  private:
    FILENAME_FILTER* file_filter_ = nullptr;
    INPUT_FILE* file_ = nullptr;
    FILENAME_FILTER* member_filter_ = nullptr;
    SECTION_FILTER* section_filter_ = nullptr;
    bool is_default_ = false;
};

inline SECTION_SPEC* as_section_spec(LINKER_OBJECT* obj) {
    return obj != nullptr && obj->is_section_spec() ? static_cast<SECTION_SPEC*>(obj) : nullptr;
}
