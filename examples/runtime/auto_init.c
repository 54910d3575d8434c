/* Start-up: values of variables, copies that must be in place before main, constructors. */
#include "load_data.h"

/* A row of the table of C initialisation. */
typedef struct {
    const void *image;
    void *run;
} CINIT_RECORD;

/*
 * The linker defines these if there is anything to initialise, or to construct; hence weak. The last one is always there,
 * with the address -1 if no table(BINIT) is.
 */
extern const CINIT_RECORD __QV_CINIT_Base[] __attribute__((weak));
extern const CINIT_RECORD __QV_CINIT_Limit[] __attribute__((weak));
extern void (*const init_array_base[])(void) __asm__("SHT$$INIT_ARRAY$$Base") __attribute__((weak));
extern void (*const init_array_limit[])(void) __asm__("SHT$$INIT_ARRAY$$Limit") __attribute__((weak));
extern const COPY_TABLE boot_table __asm__("__binit__");

/*
 * The compiler takes two different objects to be at different addresses, and none to be at -1. Here it must not.
 */
static uintptr_t address_of(const void *object) {
    __asm__("" : "+r"(object));
    return (uintptr_t)object;
}

void __QV_auto_init(void) {
    const CINIT_RECORD *record = __QV_CINIT_Base;
    for (; address_of(record) != address_of(__QV_CINIT_Limit); record++) unpack(record->image, record->run);
}

void boot_copy(void) {
    if (address_of(&boot_table) != UINTPTR_MAX) copy_in(&boot_table);
}

void run_constructors(void) {
    void (*const *constructor)(void) = init_array_base;
    for (; address_of(constructor) != address_of(init_array_limit); constructor++) (*constructor)();
}
