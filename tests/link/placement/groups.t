A GROUP keeps the written order in one piece; the members of a UNION start at one address.
--- a.s
    .section .a, "aw"
    .global a
a:  .space 0x12
    .section .b, "aw"
    .balign 8
    .global b
b:  .space 0x20
    .section .c, "aw"
    .global c
c:  .space 6
    .section .d, "aw", %nobits
    .balign 4
    .global d
d:  .space 0x30
    .section .e, "aw", %nobits
    .balign 8
    .global e
e:  .space 0x10
    .section .text, "ax"
    .global _start
_start: .word a, b, c, d, e
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- link.cmd
MEMORY
{
    FLASH : origin = 0x0,    length = 0x1000
    RAM   : origin = 0x1002, length = 0x1000
}
SECTIONS
{
    .text : > FLASH
    GROUP { .a : .b : .c : } > RAM
    UNION { .d : .e : } > RAM
}
--- section
.a 0x1008 0x12
.b 0x1020 0x20
.c 0x1040 0x6
.d 0x1048 0x30
.e 0x1048 0x10
