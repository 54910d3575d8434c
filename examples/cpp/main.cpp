// C++ without exceptions: constructors before main in the order of their priorities, virtual calls, templates.
#include "semihost.h"
#include "shape.h"

// Overridden in handler.cpp: the weak one must not be in the way.
extern "C" __attribute__((weak)) void on_event() { print("weak handler\n"); }

namespace {
struct Early {
    Early() { log_start("early"); }
};
struct Late {
    Late() { log_start("late"); }
};
Late late __attribute__((init_priority(2000)));
Early early __attribute__((init_priority(1000)));
struct Plain {
    Plain() { log_start("plain"); }
} plain;
} // namespace

int numbers[] = {3, 14, 15, 9, 2};

using constructor = void (*)();
extern "C" constructor __init_array_start[], __init_array_end[];

extern "C" void start() {
    for (constructor* c = __init_array_start; c != __init_array_end; c++) (*c)();
    for (unsigned i = 0; const Shape* s = shapes(i); i++) {
        print(s->name());
        print(" ");
        print_number(s->area());
        print("\n");
    }
    print("largest ");
    print_number(unsigned(largest(numbers, 5)));
    print(", largest area ");
    print_number(largest_area());
    print("\n");
    used<int>();
    print("instance used ");
    print_number(used<int>());
    print(" times\n");
    on_event();
    leave(0);
}

// What the C++ ABI asks of a program that never ends by itself.
extern "C" void __cxa_pure_virtual() { leave(1); }
extern "C" int __aeabi_atexit(void*, void (*)(void*), void*) { return 0; }
extern "C" {
void* __dso_handle = nullptr;
}
