A symbol on a part of a split section keeps that part whole if anything wants it; if nothing does, the part is split too and the symbol is -1.
--- a.s
    .section .text.a, "ax"
    .global _start
_start: .space 64
    .section .text.b, "ax"
    .space 64
    .section .text.c, "ax"
    .space 16
--- wants.s
    .section .note, "a"
    .word mark
--- link.cmd
MEMORY { A : origin = 0x1000, length = 0x50  B : origin = 0x2000, length = 0x100  C : origin = 0x8000, length = 0x100 }
SECTIONS { .t : { *(.text*) { run_start(mark) } } >> A | B  .note : > C }
--- case nobody wants the symbol
--- args
a.o link.cmd -e _start --unused_section_elimination=off -o out.elf
--- section
.t.1 0x1000 0x50
.t.2 0x2000 0x40
--- sym
_start 0x1000
mark 0xffffffff
--- case the symbol is wanted
--- args
a.o wants.o link.cmd -e _start --unused_section_elimination=off -o out.elf
--- section
.t 0x2000 0x90
--- sym
mark 0x2000
--- stderr has
split placement (>>) ignored
--- case the part fits where another part was split
--- two.cmd
MEMORY { A : origin = 0x1000, length = 0x50  B : origin = 0x2000, length = 0x100  C : origin = 0x8000, length = 0x100 }
SECTIONS { .t : { *(.text.a) *(.text.b) *(.text.c) { run_start(mark) } } >> A | B  .note : > C }
--- args
a.o wants.o two.cmd -e _start --unused_section_elimination=off -o out.elf
--- section
.t.1 0x1000 0x50
.t.2 0x2000 0x40
--- stderr has
split placement (>>) ignored for ".t.3":  symbol "mark"
