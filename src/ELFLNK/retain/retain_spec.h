// --retain: symbols, sections and archive members that stay although nothing reaches them.
#pragma once

#include <list>
#include <string>
#include <vector>

#include "ELFLNK/object/section_spec.h"

class ARCHIVE_FILE;
class FILTER;
class OBJ_FILE;
namespace OFE {
class OF_SECTION;
}

class RETAIN_SPEC : public SECTION_SPEC {
  public:
    explicit RETAIN_SPEC(const char* text);

    /// Parses the text; false after a report when it has another form than the grammar's.
    bool add_spec();
    void add_symbol_name(const char* name);
    bool all_symbols() const;
    /// File, member and section filters are all present, and all match all.
    bool all_libraries() const;
    const FILTER* symbol_filter() const { return symbol_filter_; }
    const char* text() const { return text_; }

  private:
    bool invalid();

    FILTER* symbol_filter_ = nullptr;
    const char* text_;
};

class RETAIN_SPEC_MANAGER {
  public:
    void add_retain_specifier(const char* text);
    bool user_retains_symbol(const char* name);
    bool user_retains_section(const OFE::OF_SECTION* section, OBJ_FILE* file);
    bool match_symbol(const char* name);
    bool match_section(const OFE::OF_SECTION* section, OBJ_FILE* file);
    /// The same by the section's name; files_specs() narrows the list once per file.
    bool match_section(const char* name, OBJ_FILE* file);
    /// Loads the members that specifications name by file; true if any was loaded.
    bool scan_user_retain_ar_members(ARCHIVE_FILE* archive);
    bool has_symbol_specs() const;
    bool has_section_specs() const;
    bool has_member_specs() const;
    const std::list<RETAIN_SPEC>& specs() const { return specs_; }

  private:
    std::list<RETAIN_SPEC> specs_;
};

extern RETAIN_SPEC_MANAGER retain_manager;
