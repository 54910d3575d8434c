// Source-level names for messages. The one place that knows the demangler.
#pragma once

#include <string>

/// The source-level name of a link name in the Itanium scheme, or the name unchanged when it can't
/// be decoded.
std::string decode_id(const char* link_name);
/// The name is that of a constructor's or destructor's subobject variant (C2, D2).
bool decode_is_ia64_subobject(const char* link_name);
