/*
 * Variables of several shapes. Their values are stored compressed in flash; start-up restores them, and this checks each
 * one. QEMU fills the RAM with a pattern before the program starts, so nothing is right by chance.
 */
#include <stdint.h>

#include "semihost.h"

#define NOISE_SIZE 8192
#define TABLE_SIZE 102400
#define NOISE_SEED 0x12345678u

char text[] = "In the beginning the variables were without form, and void; and the linker moved over the face of the RAM.";
uint32_t zeros[512] = {0};        /* goes to .bss */
uint32_t mostly_zero[1024] = {[1023] = 0xC0FFEE};
extern uint8_t noise[NOISE_SIZE]; /* noise.s: does not get smaller, so it is stored as it is */
extern uint32_t table[TABLE_SIZE / 4];

static int first(int x) { return x + 1; }
static int second(int x) { return x * 2; }

/* Addresses of code and data: their values are known only when everything has its place. */
int (*functions[])(int) = {first, second, first, second};
void *pointers[] = {text, zeros, mostly_zero, functions, pointers};

static unsigned failures;
static int early;

/* Constructors run when variables have their values, and before main. */
__attribute__((constructor)) static void construct(void) { early = text[0] == 'I' && mostly_zero[1023] == 0xC0FFEE; }

static void check(const char *what, int ok) {
    print(what);
    print(ok ? ": right\n" : ": WRONG\n");
    failures += !ok;
}

static int noise_is_right(void) {
    uint32_t x = NOISE_SEED;
    for (int i = 0; i < NOISE_SIZE; i++) {
        x = x * 1664525u + 1013904223u;
        if (noise[i] != (uint8_t)(x >> 24)) return 0;
    }
    return 1;
}

static int table_is_right(void) {
    for (uint32_t i = 0; i < TABLE_SIZE / 4; i++)
        if (table[i] != (i & ~7u) * 3) return 0;
    return 1;
}

static int zeros_are_right(void) {
    for (int i = 0; i < 512; i++)
        if (zeros[i] != 0) return 0;
    for (int i = 0; i < 1023; i++)
        if (mostly_zero[i] != 0) return 0;
    return mostly_zero[1023] == 0xC0FFEE;
}

int main(void) {
    check("text", text[0] == 'I' && text[sizeof text - 2] == '.' && text[sizeof text - 1] == '\0');
    check("zeros", zeros_are_right());
    check("noise", noise_is_right());
    check("100 kB of table", table_is_right());
    check("functions", functions[0](4) == 5 && functions[3](4) == 8);
    check("constructor", early);
    check("pointers", pointers[0] == text && pointers[3] == functions && pointers[4] == pointers);
    print("failures: ");
    print_number(failures);
    print("\n");
    leave(failures != 0);
}

void program_end(void) { leave(3); }
