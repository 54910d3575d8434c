// The file that tells make or ninja what a link depends on: --dependency_file.
#pragma once

/// Asks for the file; the last name given counts.
void set_dependency_file(const char* name);
/// Its name; null if nobody asked for it.
const char* dependency_file();

/// Writes it, if it was asked for: a rule for `output` with every file that was read, and an empty
/// rule for each of these, so that one that is gone is no error. Called when the link has
/// succeeded. False if that fails.
bool write_dependency_file(const char* output);
