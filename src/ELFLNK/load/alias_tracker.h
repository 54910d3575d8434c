// Sections whose every function and object symbol is an alias: such a section is kept by references
// only.
#pragma once

#include <cstdint>
#include <unordered_map>

namespace OFE {
class OBJECT_FILE;
class OF_SYMBOL;
} // namespace OFE

class ALIAS_SECTION_TRACKER {
  public:
    void track_symbol(OFE::OF_SYMBOL* sym);
    bool only_aliases(const OFE::OBJECT_FILE* file, unsigned section_id) const;
    void clear() { sections_.clear(); }

  private:
    std::unordered_map<uint64_t, bool> sections_; // file id and section id
};

extern ALIAS_SECTION_TRACKER alias_section_tracker;
