// Attributes of segments: a tag, and a value where the tag has one. They stand in the section
// ".QV.phattrs", in records of a segment's index (16 bits), the tag (16) and the value (32), up to
// a record of the tag PHA_NULL. A file has them when it has a segment of the type that its machine
// keeps for that.
#pragma once

#include "OBJEDIT04/elf/elf_types.h"
#include "OBJEDIT04/ofe/of_state_machine.h"
#include <vector>

class TEXT_TABLE;

namespace OFE {

class ELF_FILE;
class ELF_SECTION;
class ELF_SEG_ATTR_TABLE;

enum PHATTR : unsigned { PHA_NULL = 0, PHA_BOUND = 1, PHA_READONLY = 2, PHA_PAGE = 3 };

struct PHATTR_TAG {
    unsigned number;
    const char* name;
    bool has_value;
};

/// One attribute. A pointer to it holds until the next one is made.
struct ELF_SEG_ATTR {
    ELF_SEG_ATTR_TABLE* table;
    unsigned short seg; ///< index of the segment
    unsigned short tag = PHA_NULL;
    uint32_t value = 0;
    bool deleted = false;

    /// The value; an error of the file and 0 for a tag that has none.
    uint32_t val() const;
};

class ELF_SEG_ATTR_TABLE final : public OF_STATE_MACHINE {
  public:
    explicit ELF_SEG_ATTR_TABLE(ELF_SECTION* section);

    int progress_to_state(OF_STATE target) override;
    int revert_to_state(OF_STATE target) override;

    ELF_SECTION* section() const { return section_; }
    const std::vector<ELF_SEG_ATTR>& attrs() const { return attrs_; }
    bool is_empty() const;
    /// A new attribute of a segment, without a tag yet; null unless the table is open.
    ELF_SEG_ATTR* new_seg_attr(unsigned short seg);
    ELF_SEG_ATTR* seg_attr_tag(unsigned short seg, unsigned tag); // null: it has none
    void delete_attrs_of(unsigned short seg);
    void update_segment_refs(const RECORD_MAP<unsigned short>& map);

    const PHATTR_TAG* tag_info(unsigned tag) const; // null: not known
    const char* tag_name(unsigned tag) const;       // "PHA_0x%lx" for one that is not known

    /// A row per attribute: the segment, the tag, the value.
    void generate_text_info(TEXT_TABLE& table) const;

  private:
    void load();
    int lock_seg_attr_table();

    ELF_SECTION* section_;
    std::vector<PHATTR_TAG> tags_;
    std::vector<ELF_SEG_ATTR> attrs_;
};

/// The attributes of a file's segments and the segment that says they exist.
class ELF_SEG_ATTR_DB {
  public:
    explicit ELF_SEG_ATTR_DB(ELF_FILE* file) : file_(file) {}
    void forget(const ELF_SECTION* section) { // the section is about to go
        if (section == section_) section_ = nullptr;
    }

    /// Made with its section in a file that is open; null otherwise when there is no section.
    ELF_SEG_ATTR_TABLE* table();
    /// Deletes the section and the segment; for a table without attributes.
    int drop();

  private:
    ELF_FILE* file_;
    ELF_SECTION* section_ = nullptr;
    bool searched_ = false;
};

inline constexpr const char* ELF_SEG_ATTR_SECTION_NAME = ".QV.phattrs";

} // namespace OFE
