// What the comparison of two locators looks at, worked out once per sort.
//
// The rule behind the comparison: the object that has the least room to go elsewhere goes first.
// A specific address comes before everything, then an object bound to a single range; among
// competitors the one for which the shared free space is scarcest relative to its size; then the
// larger, then by name.
#pragma once

#include <cstdint>
#include <vector>

#include "ELFLNK/locator/locator.h"

/// One locator in a sort.
struct ORDER_KEY {
    LOCATOR* locator;
    uint64_t size;
    uint64_t available; ///< free space of the ranges that it can use
    uint32_t use_set;   ///< number of its set of usable ranges in the context
    uint32_t use_count; ///< how many ranges it can use
    bool contends;      ///< placement specified, not complete, not virtual
    bool specific;      ///< specific address
    bool run_first;     ///< a locator of kind RUN or BOTH
    bool load;          ///< a locator of kind LOAD
    uint32_t preferred; ///< rank of an input section that the user asked for; 0 none
    LINKER_OBJECT* object;
    const COLLECTION* parent;
    const char* section_name; ///< of an input section, else null
};

/// The sets of ranges that the locators of one sort can use, and the space that two sets share.
class ORDER_CONTEXT {
  public:
    ORDER_CONTEXT();
    ORDER_KEY key_of(LOCATOR* locator);
    /// Free space of the ranges that both can use.
    uint64_t contention(const ORDER_KEY& a, const ORDER_KEY& b) const;
    const std::vector<MEMORY_RANGE*>& ranges() const { return ranges_; }
    /// Indices of the ranges that it can use; none if it has no wish.
    const std::vector<uint32_t>& ranges_of(const ORDER_KEY& key) const {
        return use_sets_[key.use_set];
    }
    /// Negative if a goes first.
    int compare(const ORDER_KEY& a, const ORDER_KEY& b) const;
    /// Stable sort by the comparison.
    void sort(std::vector<ORDER_KEY>& keys) const;

  private:
    uint32_t intern(const std::vector<uint32_t>& ranges);
    int compare_members(const ORDER_KEY& a, const ORDER_KEY& b) const;
    int compare_by_callgraph(const ORDER_KEY& a, const ORDER_KEY& b) const;
    int compare_room(const ORDER_KEY& a, const ORDER_KEY& b) const;

    std::vector<MEMORY_RANGE*> ranges_;
    std::vector<uint64_t> unused_;                      // of each range, as of now
    std::vector<std::vector<uint32_t>> use_sets_;       // ascending indices into ranges_
    mutable std::vector<std::vector<uint64_t>> shared_; // by pair of sets; all ones: not yet known
    bool alphabetical_;
    bool by_callgraph_; // --minimize_trampolines
};
