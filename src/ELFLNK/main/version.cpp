// Names and version of this build.
#include "ELFLNK/main/main.h"

#include "UTIL/savestr.h"

namespace {
constexpr int MAJOR = 0;
constexpr int MINOR = 1;
constexpr int PATCH = 0;
constexpr int FOURTH = -1; // -1: this build has no fourth digit
constexpr const char* QUALIFIER = "";
constexpr const char* COPYRIGHT = "Copyright (c) the authors of this linker";
} // namespace

const char* tool_name() {
    return "Linker";
}

const char* isa_name() {
    return "QV ARM";
}

const char* isa_and_tool_name() {
    return savestrf("%s %s", isa_name(), tool_name());
}

int version_major() {
    return MAJOR;
}

int version_minor() {
    return MINOR;
}

int version_patch() {
    return PATCH;
}

bool version_has_fourth_digit() {
    return FOURTH >= 0;
}

const char* version_qual() {
    return QUALIFIER;
}

const char* version_number() {
    if (version_has_fourth_digit()) return savestrf("%d.%d.%d.%d", MAJOR, MINOR, PATCH, FOURTH);
    return savestrf("%d.%d.%d", MAJOR, MINOR, PATCH);
}

const char* version_short() {
    return savestrf("v%s", version_number());
}

const char* version_full() {
    return savestrf("%s%s", version_short(), version_qual());
}

const char* isa_tool_and_version_short() {
    return savestrf("%s %s %s %s", isa_name(), tool_name(), "Unix", version_short());
}

const char* isa_tool_and_version_full() {
    return savestrf("%s %s %s %s", isa_name(), tool_name(), "Unix", version_full());
}

const char* copyright_full() {
    return COPYRIGHT;
}

void print_tool_and_version(FILE* to) {
    constexpr int WIDTH = 40;
    fprintf(to, "%-*.*s%s\n", WIDTH, WIDTH, isa_and_tool_name(), version_full());
}

void print_banner(FILE* to) {
    print_tool_and_version(to);
    fprintf(to, "%s\n", COPYRIGHT);
}
