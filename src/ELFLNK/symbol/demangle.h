// Source-level names for messages. The one place that knows the demanglers.
#pragma once

#include <string>

/// How link names are made from source-level names.
enum MANGLE_SCHEME {
    MANGLE_VENDOR = 0, ///< the vendor's older scheme: "f__Fi"
    MANGLE_ITANIUM = 1 ///< the C++ ABI's scheme: "_Z1fi"
};

/// Decodes a link name of one scheme; an empty text: not a name of that scheme.
using NAME_DECODER = std::string (*)(const char* link_name);
/// Sets the decoder of a scheme, null for none. The Itanium scheme comes with one; the vendor's has
/// none until somebody sets it.
void set_name_decoder(int scheme, NAME_DECODER decoder);

/// The source-level name of a link name in that scheme, or the name unchanged when it can't be
/// decoded.
std::string decode_id(const char* link_name, int scheme = MANGLE_ITANIUM);
/// The name is that of a constructor's or destructor's subobject variant (C2, D2).
bool decode_is_ia64_subobject(const char* link_name);
