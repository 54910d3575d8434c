/* Bytes of words in memory, constants and tables in code, and data of all sizes, in ARM and Thumb code. */
#define ARM __attribute__((target("arm"), noinline))
#define THUMB __attribute__((target("thumb"), noinline))

static inline void print(const char *text) {
    register int r0 __asm__("r0") = 0x04;
    register const void *r1 __asm__("r1") = text;
    __asm__ volatile("svc 0xab" : "+r"(r0) : "r"(r1) : "memory");
}

THUMB static void print_hex(unsigned long long value, int digits) {
    char text[20];
    char *p = text + sizeof text;
    *--p = '\0';
    *--p = '\n';
    for (; digits > 0; digits--, value >>= 4) *--p = "0123456789abcdef"[value & 15];
    print(p);
}

struct {
    unsigned char byte;
    unsigned short half;
    unsigned word;
    unsigned long long large;
} data = {0x12, 0x3456, 0x789abcde, 0x0123456789abcdefULL};
const unsigned constants[] = {0x11223344, 0x55667788};
unsigned zero[2];

ARM unsigned in_arm(unsigned n) { return n * 0x01000193 + 0x811c9dc5; }
THUMB unsigned in_thumb(unsigned n) { return n * 0x01000193 + 0x811c9dc5; }

ARM const char *choose(unsigned n) {
    switch (n) {
    case 0: return "none\n";
    case 1: return "one\n";
    case 2: return "two\n";
    case 3: return "three\n";
    case 4: return "four\n";
    default: return "many\n";
    }
}

THUMB int main(void) {
    volatile unsigned word = 0x01020304;
    static unsigned (*volatile called[])(unsigned) = {in_arm, in_thumb};
    print_hex(*(volatile unsigned char *)&word, 2); /* the highest byte is the first */
    print_hex(data.byte, 2);
    print_hex(data.half, 4);
    print_hex(data.word, 8);
    print_hex(data.large, 16);
    print_hex(constants[1] - constants[0], 8);
    print_hex(zero[0] + zero[1], 8);
    for (unsigned i = 0; i < 2; i++) print_hex(called[i](data.word), 8);
    for (volatile unsigned i = 0; i < 7; i = i + 2) print(choose(i));
    return 0;
}
