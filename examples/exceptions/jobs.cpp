// The throwing side: an int, a class of the library's family, an exception of the library itself, and one that passes
// through a function that holds values in floating point registers.
#include "jobs.h"

#include <cstdio>
#include <limits>
#include <vector>

Guard::Guard(const char* name) : name(name) { std::printf("  enter %s\n", name); }
Guard::~Guard() { std::printf("  leave %s\n", name); }

namespace {

__attribute__((noinline)) int deep(int depth) {
    if (depth == 0) throw Fault("too deep", 77);
    Guard guard(depth % 2 ? "odd" : "even");
    return deep(depth - 1) + 1;
}

} // namespace

int job(int number) {
    Guard guard("job");
    switch (number) {
    case 0:
        return 42;
    case 1:
        throw 1729;
    case 2:
        return deep(3);
    case 3:
        return std::vector<int>(3).at(3);
    case 4:
        return static_cast<int>(std::vector<int>(std::numeric_limits<int>::max() / 4).size());
    default:
        throw "a text";
    }
}

float scaled(float value, void (*step)(float)) {
    float sum = 0;
    for (int i = 1; i <= 8; i++) {
        step(value * static_cast<float>(i));
        sum += value / static_cast<float>(i);
    }
    return sum;
}

void stop_if_large(float value) {
    if (value > 4.5F) throw value;
}
