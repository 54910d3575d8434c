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
--- c.s
    .thumb
    .section .text.f, "ax", %progbits
    .global start, __cxa_throw
start:
__cxa_throw:
    bx lr
    .section .text.g, "ax", %progbits
    bx lr
    .section .ARM.exidx.f, "ao", %0x70000001, .text.f
    .word 0, 0x80b0b0b0, 0
    .section .ARM.exidx.g, "ao", %0x70000001, .text.g
    .section .text.h, "ax", %progbits
    bx lr
    .section .ARM.exidx.h, "ao", %0x70000001, .text.h
    .word 0, 0x80b0b0b0
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
--- case a piece that is not made of entries leaves its code without one
--- odd.cmd
MEMORY { M : origin = 0x100, length = 0x100 }
SECTIONS { .text : { *(.text.f) *(.text.g) *(.text.h) } > M   .ARM.exidx : {} > M }
--- args
c.o odd.cmd -o out.elf -e start --retain=*(.text.*)
--- stderr
warning: the size of the EXIDX section ".ARM.exidx.f:c.o", 0xc, is no multiple
   of the size of an entry; its code is entered as code that cannot be unwound
--- bytes .ARM.exidx
f8ffff7f 01000000  00000000 b0b0b080  eeffff7f 01000000
--- case a table that finds no room is an error like any other
--- small.cmd
MEMORY { M : origin = 0x100, length = 0x100   N : origin = 0x1000, length = 4 }
SECTIONS { .text : { *(.text*) } > M   .ARM.exidx : {} > N }
--- args
c.o small.cmd -o out.elf -e start --retain=*(.text.h)
--- exit
1
--- stderr has
"small.cmd", line 2: error: program will not fit into available memory.
   placement with alignment fails for section ".ARM.exidx" size 0x18 . 
error: errors encountered during linking; "out.elf" not built
--- no-file out.elf
--- case a group that holds the table finds no room
--- group.cmd
MEMORY { M : origin = 0x100, length = 0x100   N : origin = 0x1000, length = 4 }
SECTIONS { .text : { *(.text*) } > M   GROUP : { .ARM.exidx : {} } > N }
--- args
c.o group.cmd -o out.elf -e start --retain=*(.text.h)
--- exit
1
--- stderr has
error: errors encountered during linking; "out.elf" not built
--- no-file out.elf
