// What the fuzz targets share. A target is one function that takes any bytes. It is linked with
// libFuzzer in the preset `fuzz`, and with replay_main.cpp, which runs the kept inputs, in all
// other builds.
//
// Beside memory errors, which the sanitizers see, a target finds broken promises: a reader's two
// views of one record that differ, or a file that was accepted, written, and is then refused.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

/// Ends the process when a promise does not hold; in every build, unlike assert().
#define REQUIRE(condition)                                                                         \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            std::fprintf(stderr, "%s:%d: does not hold: %s\n", __FILE__, __LINE__, #condition);    \
            std::abort();                                                                          \
        }                                                                                          \
    } while (false)

/// Keeps the compiler from dropping a read.
inline void use(uint64_t value) {
    static volatile uint64_t sink;
    sink = sink + value;
}
