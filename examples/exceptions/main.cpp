// Exceptions thrown in one file and caught in another, with newlib and libstdc++: by value, by base class, rethrown, nested,
// and one that nobody may catch.
#include "jobs.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>

namespace {

void run(int number) {
    std::printf("job %d\n", number);
    try {
        Guard guard("run");
        std::printf("  result %d\n", job(number));
    } catch (int value) {
        std::printf("  caught int %d\n", value);
    } catch (const Fault& fault) {
        std::printf("  caught fault %d: %s\n", fault.code, fault.what());
    } catch (const std::bad_alloc&) {
        std::printf("  caught bad_alloc\n");
    } catch (const std::exception&) {
        std::printf("  caught an exception of the library\n");
    } catch (...) {
        std::printf("  caught something else\n");
    }
}

void run_again() {
    try {
        try {
            job(1);
        } catch (...) {
            std::printf("  passed on\n");
            throw;
        }
    } catch (int value) {
        std::printf("  caught again %d\n", value);
    }
}

void run_nested() {
    try {
        try {
            job(1);
        } catch (int value) {
            throw Fault("while handling an int", value + 1);
        }
    } catch (const std::runtime_error& error) {
        std::printf("  caught %s\n", error.what());
    }
}

// Values in registers that calls preserve come back as they were, whatever the code that was left had put there.
__attribute__((noinline)) float run_floats(float a, float b) {
    float kept = a * b;
    try {
        kept += scaled(1.0F, stop_if_large);
    } catch (float value) {
        std::printf("  caught %d tenths\n", static_cast<int>(value * 10));
    }
    return kept + a;
}

[[noreturn]] void last_word() {
    std::printf("terminate\n");
    std::_Exit(0);
}

void no_way_out() noexcept { job(1); }

struct Early {
    Early() { std::printf("constructed before main\n"); }
} early;

} // namespace

int main() {
    std::set_terminate(last_word);
    for (int number = 0; number <= 5; number++) run(number);
    std::printf("again\n");
    run_again();
    std::printf("nested\n");
    run_nested();
    std::printf("floats\n  %d\n", static_cast<int>(run_floats(2.5F, 4.0F) * 10));
    std::printf("noexcept\n");
    no_way_out();
    return 1;
}
