Code, literals and calls between modes of big-endian objects, linked BE-8 and BE-32, disassemble as the same program.
--- a.s -mbig-endian -march=armv7-a
    .syntax unified
    .section .text.start, "ax", %progbits
    .arm
    .globl _start
    .type _start, %function
_start: bl thumb
    ldr r0, [pc, #-4]
    movw r1, #:lower16:value
    movt r1, #:upper16:value
    .word value, thumb
    .byte 1, 2, 3, 4
--- b.s -mbig-endian -march=armv7-a
    .syntax unified
    .section .text.thumb, "ax", %progbits
    .thumb
    .globl thumb
    .thumb_func
thumb: bl _start
    movw r2, #:lower16:thumb
    bx lr
    .align 2
    .hword 0x1234, 0x5678
    .data
    .globl value
value: .word thumb
    .hword 0x1122
--- link.cmd
--entry_point=_start
MEMORY { ROM : origin = 0x8000, length = 0x1000  RAM : origin = 0x20000000, length = 0x1000 }
SECTIONS { .text : { *(.text.start) *(.text.thumb) } > ROM  .data : { *(.data) } > RAM }
--- case BE-8
--- args
a.o b.o link.cmd -o out.elf
--- readelf -h
Flags: 0x5800000, Version5 EABI, BE8
--- bytes .text
05 00 00 FA  04 00 1F E5  00 10 00 E3  00 10 42 E3  20 00 00 00  00 00 80 1D  01 02 03 04
FF F7 F0 EF  48 F2 1D 02  70 47 00 BF  12 34 56 78
--- bytes .data
00 00 80 1D  11 22
--- dis .text
8000: fa000005 blx 801c
8004: e51f0004 ldr r0, [pc, #-4]
8008: e3001000 movw r1, #0
800c: e3421000 movt r1, #8192
8010: 20000000 .word 0x20000000
8014: 0000801d .word 0x0000801d
801c: f7ff eff0 blx 8000
--- case BE-32
--- args
a.o b.o link.cmd --be32 -o out.elf
--- readelf -h
Flags: 0x5000000, Version5 EABI
--- bytes .text
FA 00 00 05  E5 1F 00 04  E3 00 10 00  E3 42 10 00  20 00 00 00  00 00 80 1D  01 02 03 04
F7 FF EF F0  F2 48 02 1D  47 70 BF 00  12 34 56 78
--- bytes .data
00 00 80 1D  11 22
