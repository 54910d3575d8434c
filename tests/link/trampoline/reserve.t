Trampolines are reserved at the top of large holes, at the bottom of small ones, and moved down when they are in the way.
--- a.s
    .syntax unified
    .thumb
    .macro function name, size
    .section .\name, "ax"
    .global \name
    .type \name, %function
    .thumb_func
\name: bl far
    .space \size - 4
    .endm
    .section .far, "ax"
    .global far
    .type far, %function
    .thumb_func
far: bx lr
    function first, 0x100
    function second, 0x100
    function large, 2000
--- small.cmd
MEMORY { LOW (RX) : o = 0x8000, l = 0x100 + 16383  HIGH (RX) : o = 0x20000000, l = 0x1000 }
--- large.cmd
MEMORY { LOW (RX) : o = 0x8000, l = 0x100 + 16384  HIGH (RX) : o = 0x20000000, l = 0x1000 }
--- two.cmd
--entry_point=first --retain=*(.second)
SECTIONS { .low : { *(.first) *(.second) } > LOW  .high : { *(.far) } > HIGH }
--- gap.cmd
--entry_point=first --retain=*(.large)
SECTIONS { .low : { *(.first) *(.large) } > LOW  .high : { *(.far) } > HIGH }
--- case a hole of less than 16 KB is filled from below
--- args
a.o small.cmd two.cmd -o out.elf
--- sym
$Tramp$TT$L$PI$$far 0x8101
second 0x8109
--- case a hole of 16 KB from above; at the end the trampoline moves down behind what precedes it
--- args
a.o large.cmd two.cmd -o out.elf
--- sym
second 0x8101
$Tramp$TT$L$PI$$far 0x8201
--- case the size is an option: 0 fills every hole from above
--- args
a.o small.cmd two.cmd -o out.elf --trampoline_min_spacing=0
--- sym
second 0x8101
$Tramp$TT$L$PI$$far 0x8201
--- case and a large one fills them from below
--- args
a.o large.cmd two.cmd -o out.elf --trampoline_min_spacing=0x10000
--- sym
$Tramp$TT$L$PI$$far 0x8101
second 0x8109
--- case a hole of 1024 bytes below a trampoline is passed by
--- args
a.o large.cmd gap.cmd -o out.elf --trampoline_min_spacing=0 --debug:xcall=1280
--- sym
$Tramp$TT$L$PI$$far 0x8101
large 0x8509
--- case one of more than that makes the trampoline move
--- args
a.o large.cmd gap.cmd -o out.elf --trampoline_min_spacing=0 --debug:xcall=1284
--- sym
$Tramp$TT$L$PI$$far 0x8101
large 0x8109
--- case unless that is turned off
--- args
a.o large.cmd gap.cmd -o out.elf --trampoline_min_spacing=0 --debug:xcall=1284 --disable_early_consolidation
--- sym
$Tramp$TT$L$PI$$far 0x8101
large 0x850d
--- case a stub in a small hole lies where the dot was: an alignment counts from behind it
--- dot.s
    .syntax unified
    .global start, far
    .section .text.start, "ax"
    .thumb_func
start: bl far
    .space 16
    .section .low.table, "a"
    .word 1
    .section .high.far, "ax"
    .thumb_func
far: bx lr
--- dot.cmd
--entry_point=start --unused_section_elimination=off
MEMORY { LOW : origin = 0x8000, length = 0x1000  HIGH : origin = 0x20000000, length = 0x1000 }
SECTIONS { .low : { *(.text.start) . = ALIGN(64); *(.low.table) } > LOW   .high : { *(.high*) } > 0x20000000 }
--- args
dot.o dot.cmd -o out.elf --map_file=out.map
--- text out.map has
00008000 00000014 dot.o (.text.start)
00008014 00000008 dot.o (.tramp.far.1)
0000801c 00000024 --HOLE-- [fill = 0]
00008040 00000004 dot.o (.low.table)
