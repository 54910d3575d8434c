/* Output through the debugger's semihosting interface, which QEMU serves: no device driver is needed. */
#ifndef SEMIHOST_H
#define SEMIHOST_H

#ifdef __cplusplus
extern "C" {
#endif

/* How a program enters the debugger: by its processor and the state of its code. */
#if __ARM_ARCH_PROFILE == 'M'
#define SEMIHOST_TRAP "bkpt 0xab"
#elif defined(__thumb__)
#define SEMIHOST_TRAP "svc 0xab"
#else
#define SEMIHOST_TRAP "svc 0x123456"
#endif

/* One semihosting call: operation and argument in, result out. */
static inline int semihost(int operation, const void *argument) {
    register int r0 __asm__("r0") = operation;
    register const void *r1 __asm__("r1") = argument;
    __asm__ volatile(SEMIHOST_TRAP : "+r"(r0) : "r"(r1) : "memory");
    return r0;
}

/* Writes a text up to its NUL. */
static inline void print(const char *text) { semihost(0x04, text); }

/* Writes a number in decimal. */
static inline void print_number(unsigned value) {
    char digits[12];
    char *p = digits + sizeof digits;
    *--p = '\0';
    do *--p = (char)('0' + value % 10);
    while (value /= 10);
    print(p);
}

/* Ends the program; the status reaches whoever started QEMU. */
__attribute__((noreturn)) static inline void leave(int status) {
    const unsigned block[2] = {0x20026, (unsigned)status};
    semihost(0x20, block);
    for (;;) {}
}

#ifdef __cplusplus
}
#endif
#endif
