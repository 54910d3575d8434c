/* The smallest program that shows what start-up must have done: constants, initialised data, cleared data. */
#include "semihost.h"

static const char *const planets[] = {"Mercury", "Venus", "Earth", "Mars"};

int answer = 42;             /* in .data: its value comes from the load image in flash */
static unsigned greeted;     /* in .bss: zero by the start-up */
const char *who = "world";   /* in .data, points into .rodata */

static void greet(const char *name) {
    print("hello, ");
    print(name);
    print("\n");
    greeted++;
}

void start(void) {
    greet(who);
    for (unsigned i = 0; i < sizeof planets / sizeof planets[0]; i++) greet(planets[i]);
    print("greeted ");
    print_number(greeted);
    print(", the answer is ");
    print_number((unsigned)answer);
    print("\n");
    leave(greeted == 5 && answer == 42 ? 0 : 1);
}
