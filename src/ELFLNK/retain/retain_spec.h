// --retain: symbols, sections and archive members that stay although nothing reaches them.
#pragma once

#include <cstdint>
#include <list>
#include <string>

#include "ELFLNK/object/section_spec.h"

class ARCHIVE_FILE;
class FILTER;
class OBJ_FILE;
namespace OFE {
class OF_SECTION;
}

class RETAIN_SPEC : public SECTION_SPEC {
  public:
    /// The text lives to the end of the link.
    explicit RETAIN_SPEC(const char* text);

    /// Parses the text; false after a report when it isn't of the grammar, or would retain
    /// everything.
    bool add_spec();
    void add_symbol_name(const char* name);
    bool all_symbols() const;
    /// File, member and section filters are all present, and all match all.
    bool all_libraries() const;
    const FILTER* symbol_filter() const { return symbol_filter_; }
    const char* text() const { return text_; }

  private:
    bool invalid() const;
    bool add_file_word(const std::string& word, bool members_follow);

    FILTER* symbol_filter_ = nullptr;
    const char* text_;
};

class RETAIN_SPEC_MANAGER {
  public:
    void add_retain_specifier(const char* text);
    /// A specification names the symbol, nothing defines it so far, and the link isn't partial.
    bool user_retains_symbol(const char* name) const;
    bool user_retains_section(const char* name, OBJ_FILE* file) const;
    bool match_symbol(const char* name) const;
    bool match_section(const OFE::OF_SECTION* section, OBJ_FILE* file) const;
    bool match_section(const char* name, OBJ_FILE* file) const;
    /// Loads the members that specifications name by file; true if any was loaded.
    bool scan_user_retain_ar_members(ARCHIVE_FILE* archive) const;
    bool has_symbol_specs() const { return has_symbol_specs_; }
    bool has_section_specs() const { return has_section_specs_; }
    const std::list<RETAIN_SPEC>& specs() const { return specs_; }

  private:
    std::list<RETAIN_SPEC> specs_;
    bool has_symbol_specs_ = false;
    bool has_section_specs_ = false;
};

extern RETAIN_SPEC_MANAGER retain_manager;
