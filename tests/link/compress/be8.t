Where code is little-endian in a big-endian program, images and check values are of the code as it will run.
--- a.s -mbig-endian -mcpu=cortex-a15
    .syntax unified
    .global _start
    .section .text.s, "ax"
    .thumb
    .thumb_func
_start:
    bx lr
    nop
    .section .fast, "ax"
    .arm
    .rept 8
    mov r0, #1
    .endr
    .word 0x01020304
--- run.s -mbig-endian -mcpu=cortex-a15
    .global __QV_decompress_rle24, __QV_decompress_none, __QV_decompress_lzss
    .section .unpack, "ax"
    .thumb
    .thumb_func
__QV_decompress_rle24:
    .thumb_func
__QV_decompress_none:
    .thumb_func
__QV_decompress_lzss:
    nop
--- link.cmd
--unused_section_elimination=off
--entry_point=_start
MEMORY { ROM (RX) : origin = 0x1000, length = 0x1000  RAM : origin = 0x8000, length = 0x1000 }
SECTIONS {
    .text : { *(.text*) } > ROM, crc_table(check, algorithm=CRC32)
    .unpack : > ROM
    .fast : LOAD > 0x1800, RUN > RAM, table(t, compression=lzss)
    .ovly : > ROM
    .QV.crctab : > ROM
    .cinit : > ROM
}
--- args
a.o run.o link.cmd -o out.elf
--- bytes .text
70 47 00 bf
--- bytes .fast.load
00 ef 01 00 a0 e3 00 3f 0b 02 03 04 00 ff f0
--- bytes .QV.crctab
00 00 00 18 00 00 00 01
00 00 00 00 64 70 4a d8  00 00 00 09  00 00 10 00  00 00 00 04  00 00 00 00
