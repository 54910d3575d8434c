// The report of what stays undefined at the end of the link.
#pragma once

#include <vector>

class SECTION;
namespace OFE {
class OF_SYMBOL;
}

/// A symbol that nothing defines.
struct UNDEFINED_SYMBOL {
    OFE::OF_SYMBOL* symbol;
    SECTION* referrer; ///< the first section of the link that refers to it; null for a root
};

/// Prints the table of the symbols, by name, on standard error, and the error behind it; nothing
/// without symbols. Verbose diagnostics add the referring section and, where one is close, a name
/// that exists.
void report_undefined_symbols(std::vector<UNDEFINED_SYMBOL> undefined);
