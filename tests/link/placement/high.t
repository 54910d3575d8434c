HIGH takes the top of the highest hole; the layout within stays in order.
--- a.s
    .section .stack1, "aw", %nobits
    .balign 8
    .global s
s:  .space 0x40
    .section .data, "aw", %nobits
    .global d
d:  .space 0x10
    .section .text, "ax"
    .global _start
_start: .word s, d
--- link.cmd
MEMORY
{
    FLASH : origin = 0x0,    length = 0x1000
    RAM   : origin = 0x2000, length = 0x0fc
}
SECTIONS
{
    .text   : > FLASH
    .stack1 : > RAM(HIGH)
    .data   : > RAM
}
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- section
.stack1 0x20b8 0x40
.data 0x2000 0x10
