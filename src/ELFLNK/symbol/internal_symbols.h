// Symbols that the linker makes in its internal file.
#pragma once

namespace OFE {
class OF_SYMBOL;
}

/// A new undefined global symbol in the internal file. The name is copied.
OFE::OF_SYMBOL* create_internal_undef_symbol(const char* name);
/// A new absolute global symbol in the internal file, its value final.
OFE::OF_SYMBOL* create_internal_abs_symbol(const char* name, unsigned value);
