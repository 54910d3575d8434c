/* Calls between memories that lie further apart than a call instruction reaches (16 MB on this processor). The linker puts
   a stub between them where one is needed, and only there: nothing in the source says so.

   The functions below are in the flash at the bottom, or, by their section, in the external RAM at 0x21000000, where the
   program copies them before it uses them. */
#include "semihost.h"

#define FAR_CODE(name) __attribute__((noinline, section(".far." #name)))
#define NEAR_CODE __attribute__((noinline))

extern char __far_load[], __far_start[], __far_size[];

static int calls;
static volatile int offset = 10;

/* In the flash, called from both sides. */
NEAR_CODE int twice(int n) {
    calls++;
    return 2 * n;
}

NEAR_CODE int add_one(int n) {
    calls++;
    return n + 1;
}

/* In the external RAM, called from both sides. */
FAR_CODE(square) int square(int n) {
    calls++;
    return n * n;
}

FAR_CODE(sum) int sum_to(int n) {
    calls++;
    return n == 0 ? 0 : n + sum_to(n - 1); /* within reach of itself */
}

/* Far code that calls near code twice over one stub, and far code directly. */
FAR_CODE(mix) int mix(int n) { return twice(n) + twice(n + 1) + square(n); }

/* A call in the last place becomes a jump, which goes through the same stub. */
FAR_CODE(tail) int tail(int n) {
    calls++;
    return add_one(n + offset);
}

/* Near code that calls far code: three callers of one stub. */
NEAR_CODE int poly(int n) { return square(n) + square(n + 1); }
NEAR_CODE int jump_to_square(int n) { return square(n - 1); }

static void show(const char *what, int value) {
    print(what);
    print_number((unsigned)value);
    print("\n");
}

static void copy(char *to, const char *from, unsigned size) {
    while (size-- != 0) *to++ = *from++;
}

void start(void) {
    copy(__far_start, __far_load, (unsigned)__far_size);
    show("square 7: ", square(7));
    show("poly 3: ", poly(3));
    show("jump to square 9: ", jump_to_square(9));
    show("sum to 10: ", sum_to(10));
    show("mix 5: ", mix(5));
    show("tail 1: ", tail(1));
    show("calls: ", calls);
    leave(0);
}
