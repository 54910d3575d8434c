Only what a root reaches takes part in the link.
--- a.s
    .syntax unified
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bl used
    bx lr
    .section .text.used, "ax"
    .global used
    .thumb_func
used: ldr r0, =table
    bx lr
    .section .rodata.table, "a"
table: .word 7
    .section .text.unused, "ax"
    .global unused
    .thumb_func
unused: bl used
    bx lr
--- init.s
    .section .init_array, "aw", %init_array
    .word ctor
    .section .text.ctor, "ax"
    .thumb_func
ctor: bx lr
--- group.s
    .global _start, m1
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .balign 4
    .word m1
    .section .text.m1, "axG", %progbits, sig, comdat
m1: .word 1
    .section .data.m2, "awG", %progbits, sig, comdat
m2: .word m3
    .section .data.m3, "aw"
m3: .word 3
--- order.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .section .text.dead, "ax"
    .thumb_func
dead: bx lr
    .section .note_start, "ao", %progbits, .text._start
    .word 1
    .section .note_dead, "ao", %progbits, .text.dead
    .word 2
--- debug.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .section .text.dead, "ax"
    .thumb_func
dead: bx lr
    .section .debug_live, "", %progbits
    .word _start
    .word dead
    .section .debug_dead, "", %progbits
    .word dead
--- ok.cmd
--entry_point=_start
--diag_suppress=10151
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS {
    .text : { *(.text*) } > M
    .rodata : { *(.rodata*) } > M
    .data : { *(.data*) } > M
    .init_array : > M
    .notes : { *(.note_start) *(.note_dead) } > M
}
--- noentry.cmd
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M }
--- case references are followed, and nothing else comes in
--- args
a.o ok.cmd -o out.elf
--- sym
used 0x1001 .text
table 0x100e .rodata
unused -
--- case without elimination everything stays
--- args
a.o ok.cmd --unused_section_elimination=off -o out.elf
--- sym
unused 0x100f .text
--- case nothing is reached
--- args
a.o noentry.cmd -o out.elf
--- exit
1
--- stderr has
error: no input section is linked in
--- case sections of initialisers are roots
--- args
a.o init.o ok.cmd -o out.elf
--- section
.init_array 0x1010 4
--- case one member of a group brings in the others, and what they refer to
--- args
group.o ok.cmd -o out.elf
--- section
.data 0x100c 8
--- case a section tied by its link field lives with that section
--- args
order.o ok.cmd -o out.elf
--- bytes .notes
01000000
--- case debug information lives with the code that it speaks of, and keeps none
--- args
debug.o ok.cmd -o out.elf
--- section
.debug_live 0 8
.debug_dead - -
.text 0x1000 2
