Sections that no specification takes combine by base name; they are told of when the user wants to know.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .balign 4
    .word one, two
    .section ".data:a", "aw"
one: .word 1
    .section ".data:b", "aw"
two: .word 2
--- unwind.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: .fnstart
    bl sub
    .cantunwind
    .fnend
    .section .text.sub, "ax"
    .global __cxa_throw
    .thumb_func
__cxa_throw:
sub: .fnstart
    bx lr
    .cantunwind
    .fnend
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > ROM }
--- case combined
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- bytes .data
0100000002000000
--- case told
--- args
a.o link.cmd -o out.elf --entry_point=_start -w
--- stderr has
warning: creating output section ".data" without a SECTIONS specification
--- case index entries of all functions make one table
--- args
unwind.o link.cmd -o out.elf --entry_point=_start
--- readelf -S
.ARM.exidx PROGBITS
--- section
.ARM.exidx 0x108 0x8
