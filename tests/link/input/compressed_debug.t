Debug sections that the compiler compressed are linked unpacked; what can't be unpacked is damaged.
--- a.s -Wa,--compress-debug-sections=zlib
    .text
    .globl _start
_start: .word 0
    .section .debug_info, "", %progbits
    .word _start
    .rept 30
    .word 0x01020304
    .endr
    .word _start + 4
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x1000 }
SECTIONS { .text : > A }
--- case linked
--- args
--diag_wrap=off a.o link.cmd -o out.elf -e _start
--- bytes .debug_info
00010000
04030201 04030201 04030201 04030201 04030201 04030201 04030201 04030201 04030201 04030201
04030201 04030201 04030201 04030201 04030201 04030201 04030201 04030201 04030201 04030201
04030201 04030201 04030201 04030201 04030201 04030201 04030201 04030201 04030201 04030201
04010000
--- case damaged, so that the check value is wrong
--- patch a.o 0x4C 00
--- args
--diag_wrap=off a.o link.cmd -o out.elf -e _start
--- exit
1
--- stderr has
section ".debug_info" is damaged: it can't be unpacked
--- case a size that so few bytes can't unpack to
--- patch a.o 0x3C 00000010
--- args
--diag_wrap=off a.o link.cmd -o out.elf -e _start
--- exit
1
--- stderr has
is damaged: its unpacked size is too large
--- case another method
--- patch a.o 0x38 02
--- args
--diag_wrap=off a.o link.cmd -o out.elf -e _start
--- exit
1
--- stderr has
is damaged: it is compressed by another method than zlib
