A file for a further link tells what its sections are: thread-local data stays that, and each section keeps its flags.
--- a.s
    .text
    .global _start
    .thumb_func
_start: bx lr
    .section .tdata, "awT", %progbits
    .global tv
    .type tv, %object
tv: .word 5
    .section .tbss, "awT", %nobits
    .space 8
    .section .other, "a", %progbits
    .word 7
    .section .QV.section.flags, "", %progbits
    .byte 1, 0, 0, 0
    .space 16
    .long 8
    .short 1
    .byte 0, 0, 0, 0, 0, 0, 2, 0    @ .other is to be kept, by its number
--- args
-r a.o -o out.elf
--- readelf -SW
[ 4] .tdata:a.o PROGBITS 00000000 000036 000004 00 WAT
[ 5] .tbss:a.o NOBITS 00000000 00003a 000008 00 WAT
[ 6] .other:a.o PROGBITS
.QV.section.flags PROGBITS
--- readelf -sW
TLS GLOBAL DEFAULT 4 tv
--- bytes .QV.section.flags
01000000 00000000000000000000000000000000 07000000 0100 00000000000002
