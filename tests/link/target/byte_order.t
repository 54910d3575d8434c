A big-endian output of version 6 or later keeps its code little-endian unless --be32 is given.
--- a.s -mbig-endian -march=armv7-a
    .arm
    .section .text._start, "ax"
    .global _start
_start: mov r0, #1
    b after
    .word 0x11223344
after: .short 0x5566
    .thumb
    .thumb_func
thumb: bx lr
    .syntax unified
    nop.w
--- link.cmd
--entry_point=_start
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M }
--- case be8 by default
--- args
a.o link.cmd -o out.elf
--- bytes .text
01 00 A0 E3  00 00 00 EA  11 22 33 44  55 66 70 47  AF F3 00 80
--- readelf -h
Version5 EABI, BE8
--- case be32 when asked for
--- args
a.o link.cmd --be32 -o out.elf
--- bytes .text
E3 A0 00 01  EA 00 00 00  11 22 33 44  55 66 47 70  F3 AF 80 00
--- readelf -h
Flags: 0x5000000, Version5 EABI
--- case be8 objects are turned to the order that the link works in
--- patch a.o 36 05800000
--- patch a.o 0x34 0100A0E3000000EA
--- patch a.o 0x42 7047AFF30080
--- args
a.o link.cmd --be32 -o out.elf
--- bytes .text
E3 A0 00 01  EA 00 00 00  11 22 33 44  55 66 47 70  F3 AF 80 00
