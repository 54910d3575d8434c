// Which of many ranges encloses a given one: how the contents of segments are found in a file that
// says where everything lies, but not what belongs to what. A file may claim tens of thousands of
// segments and sections, so that no pair is looked at; all questions are answered in one sweep.
#pragma once

#include <cstdint>
#include <vector>

namespace OFE {

/// A range of bytes of the file, or of memory, with an index that means something to the caller.
struct EXTENT {
    uint64_t start;
    uint64_t size;
    unsigned id;
};

inline constexpr unsigned NO_EXTENT = ~0u;

/// For each of `inner`, in its order, the lowest id of those in `outer` that enclose it; NO_EXTENT
/// where none does.
std::vector<unsigned> enclosing_extents(std::vector<EXTENT> outer,
                                        const std::vector<EXTENT>& inner);

} // namespace OFE
