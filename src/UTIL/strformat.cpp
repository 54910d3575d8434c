// printf formatting into a std::string: into a small buffer first, and again where that is too
// small.
#include "UTIL/strformat.h"

#include <cstdio>

size_t vstrappend(std::string& to, const char* format, va_list args) {
    char small[256];
    va_list again;
    va_copy(again, args);
    const int length = std::vsnprintf(small, sizeof small, format, args);
    const size_t count = length > 0 ? static_cast<size_t>(length) : 0;
    if (count < sizeof small) {
        to.append(small, count);
    } else {
        const size_t old = to.size();
        to.resize(old + count + 1);
        std::vsnprintf(to.data() + old, count + 1, format, again);
        to.resize(old + count);
    }
    va_end(again);
    return count;
}

std::string vstrformat(const char* format, va_list args) {
    std::string text;
    vstrappend(text, format, args);
    return text;
}

std::string strformat(const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::string text = vstrformat(format, args);
    va_end(args);
    return text;
}
