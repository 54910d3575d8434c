A piece of the unwinding index that describes no code, and two that describe the same.
--- a.s
    .thumb
    .global start, __cxa_throw
    .section .text.f, "ax", %progbits
start:
    bx lr
__cxa_throw:
    bx lr
    .section .ARM.exidx.one, "ao", %0x70000001, .text.f
    .word 0x80000000, 1
    .section .ARM.exidx.two, "ao", %0x70000001, .text.f
    .word 0x80000000, 0x80b0b0b0
--- case two pieces
--- args
a.o -o out.elf -e start
--- stderr re
warning: The section ".text.f" has multiple exception handling sections linked
   to it \(through the ELF sh_link field\), only keeping section
   ".ARM.exidx.one:a.o". Exception handling may not work correctly.
--- readelf -x .ARM.exidx
0x00000024 00000080 01000000
--- case no link
--- b.s
    .thumb
    .section .text.f, "ax", %progbits
    .global start, __cxa_throw
start:
__cxa_throw:
    bx lr
    .section .ARM.exidx.alone, "a", %0x70000001
    .word 0, 1
--- patch b.o 0x238 02000000
--- args
b.o -o out.elf -e start --retain=*(.ARM.exidx.alone)
--- exit
1
--- stderr re
fatal error: EXIDX section ".ARM.exidx.alone:b.o" does not have a link to
   section
--- no-file out.elf
