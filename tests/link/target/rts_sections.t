Stack, heap and arguments take the sizes of their options or the defaults, and the run-time library's symbols name them.
--- a.s
    .section .stack, "aw", %nobits
    .section .sysmem, "aw", %nobits
    .section .text._start, "ax"
    .thumb_func
    .global _start
_start: bx lr
    .align 2
    .word __STACK_SIZE, __STACK_END, __SYSMEM_SIZE, __c_args__
--- link.cmd
--entry_point=_start
--retain=*(.stack)
--retain=*(.sysmem)
MEMORY { FLASH : origin = 0x100, length = 0x1000   RAM : origin = 0x20000000, length = 0x10000 }
SECTIONS { .text : { *(.text*) } > FLASH   .stack : {} > RAM (HIGH)   .sysmem : {} > RAM }
--- case defaults
--- args
a.o link.cmd -o out.elf
--- section
.stack 0x2000F800 0x800
.sysmem 0x20000000 0x800
.args - -
--- sym
__STACK_SIZE 0x800
__STACK_END 0x20010000
__SYSMEM_SIZE 0x800
__c_args__ 0xFFFFFFFF
--- bytes .text
70 47 00 BF  00 08 00 00  00 00 01 20  00 08 00 00  FF FF FF FF
--- case defaults are told under -w
--- args
a.o link.cmd -w -o out.elf
--- stderr
warning: creating ".stack" section with default size of 0x800; use the -stack
   option to change the default size
warning: creating ".sysmem" section with default size of 0x800; use the -heap
   option to change the default size
--- case a size is rounded up to the alignment
--- args
a.o link.cmd --stack_size=0x101 --heap_size=0x42 -o out.elf
--- stderr
warning: The ".stack" section size is required to be aligned to 8 bytes, but
   the specified size, 0x101, is not. The aligned size is 0x108
warning: The ".sysmem" section size is required to be aligned to 4 bytes, but
   the specified size, 0x42, is not. The aligned size is 0x44
--- section
.stack 0x2000FEF8 0x108
.sysmem 0x20000000 0x44
--- sym
__STACK_SIZE 0x108
__STACK_END 0x20010000
--- case the argument area has a least size and is zero
--- args
a.o link.cmd --arg_size=1 -o out.elf
--- stderr
warning: creating ".args" section with minimum size of 0x8; use the -args
   option to change the section size
--- bytes .args
00 00 00 00 00 00 00 00
--- case a fill of the argument area gives way
--- fill.cmd
SECTIONS { .args : {} > RAM, fill = 0xff }
--- args
a.o link.cmd fill.cmd --arg_size=16 -o out.elf
--- stderr
warning: fill value of 0 required for section ".args" (ff overridden)
--- bytes .args
00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00
