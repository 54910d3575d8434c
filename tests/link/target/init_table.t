Entries of the initialiser table with a priority come first, in ascending order; the others follow in link order.
--- a.s
    .section .init_array, "aw", %init_array
    .word 9
    .section .init_array.00200, "aw", %init_array
    .word 2
    .section .text._start, "ax"
    .thumb_func
    .global _start
_start: bx lr
    .align 2
    .word SHT$$INIT_ARRAY$$Base, SHT$$INIT_ARRAY$$Limit
--- b.s
    .section .init_array, "aw", %init_array
    .word 10
    .section .init_array.00100, "aw", %init_array
    .word 1
    .section .init_array.65535, "aw", %init_array
    .word 3
    .global b
b:
--- link.cmd
--entry_point=_start
--undef_sym=b
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .init_array : { *(.init_array*) } > M   .text : { *(.text*) } > M }
--- args
a.o b.o link.cmd -o out.elf
--- bytes .init_array
01 00 00 00  02 00 00 00  03 00 00 00  09 00 00 00  0A 00 00 00
--- sym
SHT$$INIT_ARRAY$$Base 0x1000
SHT$$INIT_ARRAY$$Limit 0x1014
--- section
.init_array 0x1000 20
