// Values of build attributes that hold for a whole file, read straight from the bytes of its
// attributes section. A malformed part of the section ends the reading of that part and nothing
// else.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace OFE {

class OBJECT_FILE;

inline constexpr const char* OFBA_VENDOR_AEABI = "aeabi";
inline constexpr const char* OFBA_VENDOR_QV = "QV";

// The integer value of a tag with file scope in an attributes section's bytes; nothing when it is
// absent.
std::optional<uint32_t> file_attribute(std::span<const uint8_t> section, bool big,
                                       const char* vendor, unsigned tag);

// The same of a file's section; nothing when the file has none. The section is looked up by its
// type and name.
std::optional<uint32_t> file_attribute(OBJECT_FILE* file, const char* vendor, unsigned tag);

} // namespace OFE
