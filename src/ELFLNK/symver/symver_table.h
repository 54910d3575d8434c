// Symbol versions as version scripts and VERSION blocks declare them: named definitions, each with
// patterns of the names that belong to it, and patterns of names that stay local.
#pragma once

#include <memory>
#include <vector>

#include "DIAG/source_position.h"
#include "ELFLNK/filter/filter.h"

class VER_DEF {
  public:
    VER_DEF(const char* name, const SOURCE_POSITION* pos) : name_(name), position_(pos) {}

    void add_symbol_name(const char* pattern, const SOURCE_POSITION* pos);
    /// The definition that this one follows; it has to be declared already.
    void add_predecessor(const char* name, const SOURCE_POSITION* pos);
    /// Does any pattern match the name?
    bool match(const char* name) const;

    const char* name() const { return name_; }
    const VER_DEF* predecessor() const { return predecessor_; }
    size_t pattern_count() const { return patterns_.size(); }
    const SOURCE_POSITION& position() const { return position_; }

  private:
    const char* name_;
    SOURCE_POSITION position_;
    const VER_DEF* predecessor_ = nullptr;
    std::vector<std::unique_ptr<FILTER>> patterns_;
};

class SYMVER_TABLE {
  public:
    /// Declares a definition and returns it: the earlier one, after a message, if there is one of
    /// that name.
    VER_DEF* new_verdef(const char* name, const SOURCE_POSITION* pos);
    /// The definition of local names, made on the first call.
    VER_DEF* local_verdef(const SOURCE_POSITION* pos);
    /// The definition of that name, or null.
    VER_DEF* find_verdef(const char* name) const;
    /// The first definition with a pattern that matches, then that of local names, else null.
    VER_DEF* match_verdef(const char* name) const;
    /// In the order of declaration; that of local names isn't among them.
    const std::vector<std::unique_ptr<VER_DEF>>& verdefs() const { return verdefs_; }
    bool empty() const { return verdefs_.empty() && local_ == nullptr; }

    /// Reads a version script.
    void process_script_file(const char* path);
    /// Once the run-time convention is known: an error for each definition if it has no versions.
    void check_support() const;

  private:
    std::vector<std::unique_ptr<VER_DEF>> verdefs_;
    std::unique_ptr<VER_DEF> local_;
};

extern SYMVER_TABLE symver_table;
