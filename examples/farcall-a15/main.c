/* Calls between ARM and Thumb code, near and further away than either reaches (32 MB and 16 MB). Where a call changes the
   state, BL becomes BLX; where an instruction can't do that, or can't get there, the linker puts a stub in between.

   Functions are Thumb code unless they say otherwise. Those with a section of their own stand 64 MB up. */
#include "semihost.h"

#define ARM_CODE __attribute__((noinline, target("arm")))
#define THUMB_CODE __attribute__((noinline, target("thumb")))
#define FAR(name) __attribute__((section(".far." #name)))

static int calls;

THUMB_CODE int near_thumb(int n) {
    calls++;
    return n + 1;
}

ARM_CODE int near_arm(int n) {
    calls++;
    return n + 2;
}

/* Far code in both states, which calls near code in both states, and its like directly. */
THUMB_CODE FAR(thumb) int far_thumb(int n) {
    calls++;
    return near_thumb(n) * near_arm(n);
}

ARM_CODE FAR(arm) int far_arm(int n) {
    calls++;
    return near_thumb(n) + near_arm(n) + far_thumb(n);
}

/* Jumps in the last place can't change the state by themselves. */
ARM_CODE int jump_to_thumb(int n) { return near_thumb(n + 100); }
THUMB_CODE int jump_to_arm(int n) { return near_arm(n + 100); }

/* Near code that calls far code, from both states. */
THUMB_CODE int thumb_caller(int n) { return far_thumb(n) + far_arm(n) + far_thumb(n + 1); }
ARM_CODE int arm_caller(int n) { return far_thumb(n) + far_arm(n) + far_arm(n + 1); }

static void show(const char *what, int value) {
    print(what);
    print_number((unsigned)value);
    print("\n");
}

/* The start-up code jumps here if main returns something else than 0. */
THUMB_CODE __attribute__((noreturn)) void report(int status) {
    show("status: ", status);
    leave(0);
}

THUMB_CODE __attribute__((noreturn)) void finish(void) {
    print("main says nothing\n");
    leave(1);
}

THUMB_CODE int main(void) {
    show("from thumb: ", thumb_caller(3));
    show("from arm: ", arm_caller(3));
    show("jump to thumb: ", jump_to_thumb(5));
    show("jump to arm: ", jump_to_arm(5));
    show("calls: ", calls);
    return 42;
}
