When the ranges of a split section run out, what has a place keeps it, the section is reported once, and the link goes on.
--- a.s
    .section .text.p, "ax"
    .space 0x60
    .section .text.q, "ax"
    .space 0x50
    .section .after, "ax"
    .space 0x10
--- link.cmd
MEMORY
{
    A : origin = 0x100, length = 0x40
    B : origin = 0x800, length = 0x70
}
SECTIONS
{
    .text  : { *(.text*) } >> A | B
    .after : > A
}
--- args
a.o link.cmd -o out.elf --unused_section_elimination=off --map_file=out.map
--- exit
1
--- stderr has
fails for section ".text" size 0xb1
A            size: 0x40
B            size: 0x70
--- no-file out.elf
