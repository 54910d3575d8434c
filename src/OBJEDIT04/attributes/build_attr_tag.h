// The vocabulary of build attributes: tags, kinds of values, and the process-wide tables of the
// tags that each vendor defines. A tag is one object per vendor and number, so that tags of
// different files compare by pointer and carry their name and kind of value with them.
#pragma once

#include <cstdint>
#include <map>
#include <string_view>

namespace OFE {

class OF_MACHINE_DB;

inline constexpr const char* OFBA_VENDOR_AEABI = "aeabi";
inline constexpr const char* OFBA_VENDOR_QV = "QV";

/// What follows a tag.
enum OFBA_AVAL_TYPE : int {
    OFBA_AVAL_NONE = 0,
    OFBA_AVAL_TEXT = 2,
    OFBA_AVAL_INT = 3,
    OFBA_AVAL_INT_TEXT = 4
};

/// What a list of attributes applies to.
enum OFBA_SCOPE : unsigned { Tag_File = 1, Tag_Section = 2, Tag_Symbol = 3 };

struct OFBA_AVAL {
    unsigned uval = 0;
    const char* str = "";
};

struct OFBA_TAG {
    unsigned number = 0;
    const char* name = "";
    const char* vendor = "";
    OFBA_AVAL_TYPE kind = OFBA_AVAL_NONE; ///< settled when the tag is entered
    bool known = false;                   ///< stands in a table; else it was met in a file

    /// The rule of the ABI for a processor's public tags, and this vendor's: even numbers are
    /// integers, odd ones texts. Nothing is known of other vendors.
    OFBA_AVAL_TYPE arg_types() const;
    /// False for tags that a tool may pass over without understanding them.
    bool is_compatibility() const;
};

/// The tags of one vendor, ordered by number.
class OFBA_TAG_MAP {
  public:
    /// The map of a vendor, made and filled on first use.
    static OFBA_TAG_MAP* vendor_tags(std::string_view vendor, OF_MACHINE_DB* db);

    const char* vendor() const { return vendor_; }
    const OFBA_TAG* find(unsigned number) const;
    const OFBA_TAG* tag_name(const char* name) const;
    /// Enters a tag of a table.
    void add(unsigned number, const char* name, OF_MACHINE_DB* db);
    /// Enters a tag that no table knows, as "Tag_0x%x".
    const OFBA_TAG* create_tag(unsigned number, OF_MACHINE_DB* db);

  private:
    static constexpr unsigned DIRECT = 128; // numbers below are found without a search
    OFBA_TAG* enter(unsigned number, const char* name, bool known, OF_MACHINE_DB* db);

    const char* vendor_ = "";
    std::map<unsigned, OFBA_TAG> tags_;
    const OFBA_TAG* direct_[DIRECT] = {};
};

} // namespace OFE
