FILL writes all that is left of a range, VFILL nothing; sections without contents between others get the fill of their output section.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .balign 4
    .word one, two, zeros
    .data
    .balign 4
one: .word 0x11111111
    .section .data2, "aw"
    .balign 16
two: .word 0x22222222
    .bss
zeros: .space 8
--- case an empty range with FILL is filled from end to end, one with VFILL isn't
--- link.cmd
MEMORY {
    ROM   : origin = 0x100, length = 0x1000
    SPARE : origin = 0x2000, length = 0x10, fill = 0xA5
    QUIET : origin = 0x3000, length = 0x10, vfill = 0x5A
}
SECTIONS { .text : { *(.text*) } > ROM  .rest : { *(.data*) *(.bss) } > ROM }
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- section
$fill000 0x2000 0x10
$fill001 - -
--- bytes $fill000
a5a5a5a5 a5a5a5a5 a5a5a5a5 a5a5a5a5
--- case gaps around several sections of a filled range, counted through
--- link.cmd
MEMORY {
    ROM : origin = 0x100, length = 0x60, fill = 0xEE
    RAM : origin = 0x1000, length = 0x20, fill = 0xDD
}
SECTIONS { .text : { *(.text*) } > 0x110  .data : { *(.data*) *(.bss) } > 0x140  .bss : {} > RAM }
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- section
$fill000 0x100 0x10
$fill001 0x120 0x20
$fill002 0x150 0x10
$fill003 0x1000 0x20
--- case what has no contents between what has gets the fill of its section
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000, fill = 0xEE }
SECTIONS { .all : { *(.data) *(.bss) *(.data2) *(.text*) } fill = 0x12345678 > 0x200 }
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- bytes .all
11111111 78563412 78563412 78563412 22222222 704700bf 00020000 10020000 04020000
--- case a value wider than four bytes is cut
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x100, fill = 0x112233445566 }
SECTIONS { .text : { *(.text*) } > 0x100  .data : { *(.data*) *(.bss) } > 0x180 }
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- stderr
"link.cmd", line 1: warning: fill value truncated to 4 bytes:  33445566
--- section
$fill000 0x110 0x70
--- case two fills of one range
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x100, fill = 1, vfill = 2 }
SECTIONS { .text : { *(.text*) } > ROM }
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- exit
1
--- stderr
"link.cmd", line 1: error: fill value already specified for memory range ROM
error: errors encountered during linking; "out.elf" not built
--- case with filling switched off gaps stay zero
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x60, fill = 0xEE }
SECTIONS { .text : { *(.text*) . += 4; } fill = 0x33 > 0x110  .data : { *(.data*) *(.bss) } > 0x140 }
--- args
a.o link.cmd -o out.elf --entry_point=_start --disable:fill
--- section
$fill000 - -
