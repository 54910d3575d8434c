/* Memory that is not one piece: code in two flash ranges, code that runs in RAM, two overlays that share one place,
   data at the top of RAM, and data that a restart leaves alone. Every function says where it runs. */
#include "semihost.h"
#include <stddef.h>

#define IN(name) __attribute__((section(name), noinline))

typedef unsigned (*function)(unsigned);

/* Where the linker put things: symbols of the command file. Only their addresses mean something. */
extern char __ramcode_load[], __ramcode_start[], __ramcode_size[];
extern char __first_load[], __first_start[], __first_size[];
extern char __second_load[], __second_start[], __second_size[];
extern char __top_end[];

unsigned base = 100; /* in .data */
unsigned shown;      /* in .bss */

IN(".noinit") unsigned survivor;
IN(".top") unsigned top_words[4];

IN(".text.bank2") unsigned in_bank2(unsigned x) { return x * 3 + 1; }

IN(".ramcode") unsigned in_ram(unsigned x) { return x ^ 0x5a; }

IN(".overlay.first") unsigned first(unsigned x) { return x + base; }
IN(".overlay.second") unsigned second(unsigned x) { return x + 2 * base; }

static void copy(char *to, const char *from, const char *size) {
    for (size_t n = (size_t)size; n; n--) *to++ = *from++;
}

/* Calls through a pointer that the compiler can't see through: these places are further than a call reaches. */
static unsigned call(function f, unsigned x) {
    function volatile pointer = f;
    return pointer(x);
}

static const char *place(function f) {
    const size_t address = (size_t)f;
    return address >= 0x20000000 ? "RAM" : address >= 0x00200000 ? "FLASH2" : "FLASH1";
}

static void show(const char *name, function f, unsigned x) {
    print(name);
    print(" runs in ");
    print(place(f));
    print(": ");
    print_number(call(f, x));
    print("\n");
    shown++;
}

static unsigned in_bank1(unsigned x) { return x + 1; }

void start(void) {
    show("bank 1", in_bank1, 1);
    show("bank 2", in_bank2, 2);

    copy(__ramcode_start, __ramcode_load, __ramcode_size);
    show("RAM code", in_ram, 0xa5);

    copy(__first_start, __first_load, __first_size);
    show("first overlay", first, 1);
    copy(__second_start, __second_load, __second_size);
    show("second overlay", second, 1);
    print(__first_start == __second_start ? "the overlays share their place\n" : "the overlays lie apart\n");

    for (unsigned i = 0; i < 4; i++) top_words[i] = i;
    print(__top_end == (char *)0x20010000 ? "top data ends at the end of RAM\n" : "top data lies elsewhere\n");
    print_number(shown);
    print(" functions shown\n");
    survivor++;
    leave(0);
}
