Wishes of the command file: alignment, padded ends, powers of two, priorities, attributes, and what overrides what.
--- a.s
    .section .a, "ax"
    .global a, _start
_start:
a:  .word b, c, d
    .section .b, "ax"
    .global b
b:  .space 0x30
    .section .c, "ax"
    .balign 4
    .global c
c:  .space 8
    .section .d, "aw", %nobits
    .balign 4
    .global d
d:  .space 8
--- case alignment
--- palign.cmd
MEMORY { FLASH (RX) : origin = 0x104, length = 0x1000   RAM (RW) : origin = 0x8000, length = 0x100 }
SECTIONS
{
    .b : PALIGN(64) > FLASH
    .a : ALIGN(32) > FLASH
    .c : > (X)
    .d : > (W)
}
--- args
a.o palign.cmd -o out.elf --entry_point=_start
--- section
.b 0x140 0x40
.a 0x120 0xc
.c 0x104 0x8
.d 0x8000 0x8
--- case priorities
--- priority.cmd
MEMORY { FLASH (RX) : origin = 0x100, length = 0x1000   RAM (RW) : origin = 0x8000, length = 0x100 }
SECTIONS
{
    .a : > FLASH, PRIORITY(3)
    .b : > FLASH, PRIORITY(1)
    .c : > FLASH, PRIORITY(2)
    .d : > RAM
}
--- args
a.o priority.cmd -o out.elf --entry_point=_start
--- section
.a 0x100 0xc
.c 0x10c 0x8
.b 0x114 0x30
--- case a specific address
--- specific.cmd
MEMORY { FLASH (RX) : origin = 0x100, length = 0x1000   RAM (RW) : origin = 0x8000, length = 0x100 }
SECTIONS
{
    .a : > FLASH
    .b : > FLASH
    .c : > 0x112
    .d : > RAM
}
--- args
a.o specific.cmd -o out.elf --entry_point=_start
--- stderr has
warning: specific address 0x112 overrides alignment of
4 for ".c"
--- section
.c 0x112 0xa
.b 0x11c 0x30
.a 0x100 0xc
--- case a range that does not exist is missed once, whatever else takes over the wish
--- missing.cmd
MEMORY { FLASH (RX) : origin = 0x100, length = 0x1000   RAM (RW) : origin = 0x8000, length = 0x100 }
SECTIONS
{
    .text : { *(.a) *(.b) *(.c) } > FLASH
    .bss : { *(.d) } > CCM | RAM
}
--- args
a.o missing.cmd -o out.elf --entry_point=_start
--- stderr
"missing.cmd", line 5: warning: memory range not found: CCM on page 0
--- section
.bss 0x8000 8
