// What the programs of a sanitizer build want from the sanitizers, the linker and its tests alike.
// A build without them has nothing here.
#if defined(__SANITIZE_ADDRESS__)

// The objects of a link live to the end of the process by design: nobody frees them, and memory
// that is still held at exit says nothing.
extern "C" const char* __asan_default_options() {
    return "detect_leaks=0";
}

extern "C" const char* __ubsan_default_options() {
    return "print_stacktrace=1";
}

#endif
