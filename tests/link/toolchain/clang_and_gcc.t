Objects of clang, of GCC and of hand-written assembly link into one program; addends in MOVW/MOVT pairs are taken as they stand, and clang's debug information, which names code through a table of addresses, comes along.
--- start.s
    .syntax unified
    .section .vectors, "a", %progbits
    .word 0x20004000, _start
    .section .text._start, "ax", %progbits
    .globl _start
    .type _start, %function
    .thumb_func
_start:
    movw r0, #:lower16:(table + 4)
    movt r0, #:upper16:(table + 4)
    ldr r0, [r0]
    bl show
    bl from_clang
    bl show
    ldr r1, =0x20026
    movs r0, #0
    push {r0, r1}
    mov r1, sp
    ldr r2, =0x20026
    str r2, [r1]
    str r0, [r1, #4]
    movs r0, #0x20
    bkpt 0xab
    b .
--- gcc.c
const char *const table[] = {"wrong\n", "gcc's table\n", "clang's code\n"};
void show(const char *text) {
    register int r0 __asm__("r0") = 4;
    register const char *r1 __asm__("r1") = text;
    __asm__ volatile("bkpt 0xab" : "+r"(r0) : "r"(r1) : "memory");
}
--- code.c clang -mcpu=cortex-m3 -mthumb -fshort-enums -O1 -ffunction-sections -gdwarf-5
extern const char *const table[];
const char *from_clang(void) { return table[2]; }
--- link.cmd
--entry_point=_start
--diag_suppress=16010 /* GCC calls the processor 7-M, and clang cortex-m3 */
--retain=*(.vectors)
MEMORY { ROM : origin = 0, length = 0x10000   RAM : origin = 0x20000000, length = 0x4000 }
SECTIONS
{
    .vectors : { *(.vectors) } > 0
    .text : { *(.text*) } > ROM
    .rodata : { *(.rodata*) } > ROM
}
--- args
start.o gcc.o code.o link.cmd -o out.elf
--- readelf -SW
.debug_info PROGBITS
--- entry
0x9
--- run mps2-an385
gcc's table
clang's code
