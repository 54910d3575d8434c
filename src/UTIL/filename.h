// File names: taking them apart and putting them together.
#pragma once

#include <string>
#include <string_view>

/// Splits `path` behind its last '/': `dir` gets the directory without that separator (the root
/// keeps it, a bare name gives an empty directory), `name` the rest.
void fn_split(std::string_view path, std::string& dir, std::string& name);

/// The path of `name` in the directory `dir`; an empty directory gives `name` alone.
std::string fn_build(std::string_view dir, std::string_view name);

/// The part of `path` behind its last '/': a pointer into `path`.
const char* fn_basename(const char* path);
std::string_view fn_basename(std::string_view path);

/// The extension of the base name with its period (".obj"), or empty; a view into `path`.
std::string_view fn_extension(std::string_view path);

/// True for a path that starts at the root.
bool fn_is_absolute(std::string_view path);

/// The name of a new, empty temporary file, or an empty string if none can be made (errno tells
/// why).
std::string fn_tmpnam();
