// The end of a checked conversion that failed.
#include "UTIL/narrow.h"

#include <cstdio>
#include <cstdlib>

void narrow_failed(unsigned long long value, unsigned bytes) {
    std::fprintf(stderr, "value %#llx does not fit into %u bytes\n", value, bytes);
    std::abort();
}
