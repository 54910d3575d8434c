The ranges of an ALIAS block are one memory with two windows: what runs in the second window fills the first.
--- a.s
    .section .a, "aw", %nobits
    .global a
a:  .space 0x10
    .section .b, "aw", %nobits
    .global b
b:  .space 0x20
    .section .text, "ax"
    .global _start
_start: .word a, b
--- link.cmd
MEMORY
{
    FLASH : origin = 0x0, length = 0x1000
    ALIAS
    {
        TCM  : origin = 0x10000000
        WIDE : origin = 0x20000000
    } length = 0x100
}
SECTIONS
{
    .text : > FLASH
    .a    : > TCM
    .b    : > WIDE
}
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- section
.b 0x20000000 0x20
.a 0x10000020 0x10
