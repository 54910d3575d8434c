The entry point is the symbol asked for, with the Thumb bit of its code; without any it is 0 and a warning says so.
--- a.s
    .section .text._start, "ax"
    .globl _start
    .type _start, %function
    .thumb_func
_start: bx lr
    .section .text.other, "ax"
    .globl other
other: bx lr
--- link.cmd
--retain=*(.text.other)
MEMORY { M : origin = 0x100, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M }
--- case asked_for
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- entry
0x101
--- case a_label_of_thumb_code
--- args
a.o link.cmd -o out.elf --entry_point=other
--- entry
0x101
--- case none
--- args
a.o link.cmd -o out.elf
--- stderr
warning: no suitable entry-point found; setting to 0
--- entry
0
