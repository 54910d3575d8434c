BLOCK keeps what is smaller than a block within one, and starts what is larger on a block.
--- a.s
    .section .a, "ax"
    .global _start
_start: .space 0x98
    .word b, c
    .section .b, "ax"
    .global b
b:  .space 0x80
    .section .c, "ax"
    .global c
c:  .space 0x120
--- link.cmd
MEMORY { FLASH : origin = 0x10, length = 0x1000 }
SECTIONS
{
    .a : BLOCK(0x100) > FLASH
    .b : BLOCK(0x100) > FLASH
    .c : BLOCK(0x100) > FLASH
}
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- section
.c 0x100 0x120
.a 0x10 0xa0
.b 0x220 0x80
