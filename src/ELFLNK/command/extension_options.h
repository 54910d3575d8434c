// Options that this linker has beside its table. They are asked only where the table knows none, so
// that a command line without them means what it always meant.
#pragma once

#include <span>

struct extension_option;

/// --target2, --version, --dependency_file.
std::span<const extension_option> extension_options();
