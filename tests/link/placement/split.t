A section with >> spreads over holes and ranges; no input section is cut, and each piece is an output section.
--- a.s
    .section .text.p, "ax"
    .global p
p:  .space 0x10
    .section .text.q, "ax"
    .global q
q:  .space 0x18
    .section .text.r, "ax"
    .global r, _start
_start:
r:  .space 0x20
    .word p, q
    .section .fixed, "ax"
    .global fixed
fixed: .space 8
--- link.cmd
MEMORY
{
    A : origin = 0x100, length = 0x30
    B : origin = 0x800, length = 0x40
}
SECTIONS
{
    .fixed 0x110 : {}
    .text : { *(.text*) } >> A | B
}
--- args
a.o link.cmd -o out.elf --entry_point=_start --retain=*(.fixed)
--- section
.fixed 0x110 0x8
.text.1 0x100 0x10
.text.2 0x118 0x18
.text.3 0x800 0x28
--- sym
p 0x100
q 0x118
r 0x800
