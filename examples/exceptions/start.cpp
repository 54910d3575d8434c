// What comes between the reset handler and main on a Cortex-M4F: the floating point unit is off until somebody turns it on,
// and C++ has constructors to run.
#include <cstdint>
#include <cstdlib>

extern "C" int main();

using constructor = void (*)();
extern "C" constructor __init_array_start[], __init_array_end[];

extern "C" void start() {
    auto* const cpacr = reinterpret_cast<volatile std::uint32_t*>(0xE000ED88);
    *cpacr = *cpacr | 0xF00000; // full access to coprocessors 10 and 11
    asm volatile("dsb\n isb" ::: "memory");
    for (constructor* c = __init_array_start; c != __init_array_end; c++) (*c)();
    std::exit(main());
}

extern "C" void* __dso_handle;
void* __dso_handle = nullptr;
