Of the groups with one signature the first in link order stays, with its relocations; references to the others reach it.
--- a.s
    .syntax unified
    .global _start, f
    .section .text._start, "ax"
    .thumb_func
_start: bl f
    bx lr
    .section .text.f, "axG", %progbits, f, comdat
    .weak f
    .thumb_func
f:  movs r0, #1
    bx lr
--- b.s
    .syntax unified
    .global g
    .section .text.g, "ax"
    .thumb_func
g:  bl f
    bx lr
    .section .text.f, "axG", %progbits, f, comdat
    .weak f
    .thumb_func
f:  movs r0, #2
    movs r0, #2
    bx lr
    .section .data.f, "awG", %progbits, f, comdat
    .word f
--- intern.s
    .syntax unified
    .global h
    .section .text.f, "axG", %progbits, f, comdat
    .weak f
    .thumb_func
f:  movs r0, #3
.Lin:
    bx lr
    .section .text.h, "ax"
h:  .word .Lin
--- ok.cmd
--entry_point=_start
--diag_suppress=10151
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M   .data : { *(.data*) } > M }
--- case the group of the first file
--- args
a.o b.o ok.cmd --undef_sym=g -o out.elf
--- dis .text
movs r0, #1
--- section
.data 0 0
--- case whatever the order of the files
--- args
b.o a.o ok.cmd --undef_sym=g -o out.elf
--- dis .text
movs r0, #2
movs r0, #2
--- section
.data 0x1012 4
--- case a reference into a deleted group from outside
--- args
a.o intern.o ok.cmd --undef_sym=h -o out.elf
--- exit
1
--- stderr has
fatal error: relocation type "R_ARM_ABS32" in file "intern.o" at offset
--- no-file out.elf
