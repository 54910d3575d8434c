Objects of one range go by size, the larger first, and each takes the first hole in which it fits.
--- a.s
    .section .text.a, "ax"
    .global a, _start
_start:
a:  .space 0x10
    .section .text.b, "ax"
    .global b
b:  .space 0x40
    .section .text.c, "ax"
    .global c
    .balign 16
c:  .space 0x24
    .section .text.d, "ax"
    .global d
d:  .space 0x0c
    .word a, b, c
--- link.cmd
MEMORY { FLASH : origin = 0x100, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > FLASH }
--- args
a.o link.cmd -o out.elf --unused_section_elimination=off --entry_point=_start
--- section
.text 0x100 0x8c
--- sym
b 0x100 .text
c 0x140 .text
d 0x164 .text
a 0x17c .text
