// Names that look like others: what may have been meant by a name that nothing defines.
//
// Two names are alike when they differ only in case and underscores, or besides in one letter that
// is missing, added, changed or exchanged with its neighbour. Only the wanted names are indexed, by
// themselves and by each text that they become with one letter taken out; a defined name is then
// looked up by the same texts. So all names together cost what they are long, not their product.
#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class SIMILAR_NAMES {
  public:
    /// The names to which similar ones are sought.
    explicit SIMILAR_NAMES(const std::vector<const char*>& wanted);

    /// A name that exists, and where, or null; both texts outlive this object.
    void offer(std::string_view name, const char* place);

    /// From close to far: the very name (which stands where the link does not take it from), one
    /// that differs in case and underscores, one that differs in a letter.
    enum class SIMILARITY { EQUAL, FOLDED, ONE_LETTER };
    struct MATCH {
        std::string_view name; ///< empty if nothing is alike
        const char* place = nullptr;
        SIMILARITY distance = SIMILARITY::EQUAL;
    };
    /// The best of all names offered for the nth wanted one; among equals the first by name.
    const MATCH& best(size_t n) const { return wanted_[n].best; }

  private:
    struct WANTED {
        std::string_view name;
        std::string folded;
        MATCH best;
    };
    struct KEY {
        uint64_t hash;
        uint32_t wanted;
        auto operator<=>(const KEY&) const = default;
    };
    void compare(WANTED& wanted, std::string_view name, const char* place) const;

    std::vector<WANTED> wanted_;
    std::vector<KEY> keys_; ///< sorted
    std::string folded_;    ///< the name on offer
    std::vector<uint64_t> hashes_;
};
