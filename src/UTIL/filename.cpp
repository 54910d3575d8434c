// File names with '/' between their parts.
#include "UTIL/filename.h"

#include <cstdlib>
#include <unistd.h>

namespace {

size_t basename_start(std::string_view path) {
    const size_t slash = path.rfind('/');
    return slash == path.npos ? 0 : slash + 1;
}

} // namespace

void fn_split(std::string_view path, std::string& dir, std::string& name) {
    const size_t start = basename_start(path);
    name = path.substr(start);
    dir = path.substr(0, start);
    if (dir.size() > 1) dir.pop_back();
}

std::string fn_build(std::string_view dir, std::string_view name) {
    std::string path(dir);
    if (!path.empty() && path.back() != '/') path += '/';
    path += name;
    return path;
}

const char* fn_basename(const char* path) {
    return path + basename_start(path);
}

std::string_view fn_basename(std::string_view path) {
    return path.substr(basename_start(path));
}

std::string_view fn_extension(std::string_view path) {
    const std::string_view name = fn_basename(path);
    const size_t dot = name.rfind('.');
    return dot == name.npos || dot == 0 ? std::string_view() : name.substr(dot);
}

bool fn_is_absolute(std::string_view path) {
    return !path.empty() && path[0] == '/';
}

std::string fn_tmpnam() {
    const char* dir = std::getenv("TMPDIR");
    std::string path = fn_build(dir != nullptr && *dir != '\0' ? dir : "/tmp", "qvlXXXXXX");
    const int fd = mkstemp(path.data());
    if (fd < 0) return {};
    close(fd);
    return path;
}
