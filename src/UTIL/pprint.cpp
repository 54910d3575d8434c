#include "UTIL/pprint.h"

#include <cstdarg>
#include <cstdio>

PPRINT::PPRINT(int depth) {
    push("");
    for (int i = 0; i < depth; i++) push();
}

void PPRINT::pop() {
    if (!prefixes_.empty()) prefixes_.pop_back();
    if (prefixes_.empty()) push("");
}

void PPRINT::indent() const {
    for (const std::string& prefix : prefixes_) std::fputs(prefix.c_str(), stdout);
}

void PPRINT::printf(const char* format, ...) const {
    indent();
    va_list args;
    va_start(args, format);
    std::vprintf(format, args);
    va_end(args);
}
