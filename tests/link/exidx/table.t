The pieces of the unwinding index become one table: ascending, shortened, ended, with symbols at its ends.
--- a.s
    .syntax unified
    .thumb
    .global start, __cxa_throw, __aeabi_unwind_cpp_pr0
    .section .text.late, "ax", %progbits
    .thumb_func
start:
    .fnstart
    .save {r4, lr}
    push {r4, lr}
    bl plain
    bl same
    bl other
    bl long
    bl behind
    pop {r4, pc}
    .fnend
    .section .text.same, "ax", %progbits
    .thumb_func
same:
    .fnstart
    .save {r4, lr}
    push {r4, lr}
    pop {r4, pc}
    .fnend
    .section .text.plain, "ax", %progbits
    .thumb_func
plain:
    bx lr
    .space 2
    .section .text.other, "ax", %progbits
    .thumb_func
other:
    .fnstart
    .save {r4, lr}
    push {r4, lr}
    pop {r4, pc}
    .personality __aeabi_unwind_cpp_pr0
    .handlerdata
    .word 0
    .fnend
    .section .text.long, "ax", %progbits
    .thumb_func
long:
    .fnstart
    .cantunwind
    bx lr
    .fnend
    .space 2
    .fnstart
    .save {r4, lr}
    push {r4, lr}
    pop {r4, pc}
    .fnend
    .section .text.behind, "ax", %progbits
    .thumb_func
behind:
    .fnstart
    .save {r4, lr}
    push {r4, lr}
    pop {r4, pc}
    .fnend
    .section .text.throw, "ax", %progbits
    .thumb_func
__cxa_throw:
    .thumb_func
__aeabi_unwind_cpp_pr0:
    bx lr
    .space 2
    .section .text.unused, "ax", %progbits
    .fnstart
    bx lr
    .cantunwind
    .fnend
--- link.cmd
MEMORY { CODE : origin = 0x100, length = 0x100   DATA : origin = 0x1000, length = 0x100 }
SECTIONS
{
    .text : { *(.text.throw) *(.text.plain) *(.text.late) *(.text.same) *(.text.other) *(.text.long) *(.text.behind) } > CODE
    .ARM.extab : { *(.ARM.extab*) } > DATA
    .ARM.exidx : {} > DATA, RUN_START(__exidx_start), RUN_END(__exidx_end)
}
end_by_name = __QV_UNWIND_TABLE_END;
--- case sorted and shortened
At 0x100 stand two functions without a piece, which share an entry; from 0x108 on two that say the same; then one with a
table of its own, whose entry stays; a piece with two entries of which the second says what the next piece does.
--- args
a.o link.cmd -o out.elf -e start --retain=*(.text.throw)
--- bytes .ARM.exidx
f4f0ff7f01000000
f4f0ff7fb0b0a880
08f1ff7fe0ffff7f
04f1ff7f01000000
00f1ff7fb0b0a880
00f1ff7f01000000
--- sym
__exidx_start            0x100c .ARM.exidx
__exidx_end              0x103c .ARM.exidx
end_by_name              0x103c
__QV_UNWIND_TABLE_START  0x100c .ARM.exidx
__QV_UNWIND_TABLE_END    0x103c .ARM.exidx
.ARM.exidx$$Base         0x100c .ARM.exidx
.ARM.exidx$$Limit        0x103c .ARM.exidx
--- case every entry stays
--- args
a.o link.cmd -o out.elf -e start --retain=*(.text.throw) --disable:exidx_opt
--- bytes .ARM.exidx
f4f0ff7f01000000
f0f0ff7f01000000
ecf0ff7fb0b0a880
fcf0ff7fb0b0a880
f8f0ff7fd0ffff7f
f4f0ff7f01000000
f0f0ff7fb0b0a880
ecf0ff7fb0b0a880
e8f0ff7f01000000
--- case symbols that take dot
What stands in front of the specification that the linker puts aside is at the start, what stands behind it at the end.
--- dot.cmd
MEMORY { CODE : origin = 0x100, length = 0x100   DATA : origin = 0x1000, length = 0x100 }
SECTIONS
{
    .text : { *(.text*) } > CODE
    .ARM.extab : { *(.ARM.extab*) } > DATA
    .ARM.exidx : { __exidx_start = .; *(.ARM.exidx*) __exidx_end = .; } > DATA
}
--- args
a.o dot.cmd -o out.elf -e start
--- stderr re
"dot.cmd", line 6: warning: EXIDX output section ".ARM.exidx" cannot be
   collected with section specifier, specifier ignored
--- sym
__exidx_start 0x100c .ARM.exidx
__exidx_end   0x1044 .ARM.exidx
--- case at the top of a range, and loaded elsewhere
--- high.cmd
MEMORY { CODE : origin = 0x100, length = 0x100   DATA : origin = 0x1000, length = 0x100 }
SECTIONS
{
    .text : { *(.text.throw) *(.text*) } > CODE
    .ARM.extab : { *(.ARM.extab*) } > DATA
    .ARM.exidx : {} LOAD > CODE, RUN > DATA (HIGH), LOAD_START(load)
}
--- args
a.o high.cmd -o out.elf -e start
--- section
.ARM.exidx 0x10c0 0x40
--- bytes .ARM.exidx
40f0ff7f01000000
3cf0ff7fb0b0a880
4cf0ff7f01000000
48f0ff7fb0b0a880
48f0ff7f1cffff7f
44f0ff7f01000000
40f0ff7fb0b0a880
3cf0ff7f01000000
--- sym
load 0x134
--- case a table in front of its code
Where the table gets its place before some of the code has, no entry is left out, and the order is right all the same.
--- front.cmd
MEMORY { CODE : origin = 0x100, length = 0x200   DATA : origin = 0x1000, length = 0x100 }
SECTIONS
{
    GROUP : { .first : { *(.text.same) }  .ARM.exidx : {}  .rest : { *(.text.behind) *(.text.plain) } } > CODE
    .text : { *(.text*) } > DATA
    .ARM.extab : { *(.ARM.extab*) } > DATA
}
--- args
a.o front.cmd -o out.elf -e start
--- bytes .ARM.exidx
fcffff7fb0b0a880
40000000b0b0a880
3c00000001000000
e40e0000b0b0a880
f40e000001000000
f00e0000b0b0a880
ec0e0000f00e0000
e80e000001000000
e40e000001000000
--- case nothing to unwind
--- b.s
    .thumb
    .section .text.f, "ax", %progbits
    .global start, __cxa_throw
start:
__cxa_throw:
    bx lr
--- args
b.o -o out.elf -e start
--- section
.ARM.exidx -
--- sym
__QV_UNWIND_TABLE_START -
.ARM.exidx$$Base -
--- case nothing is thrown
--- c.s
    .thumb
    .section .text.f, "ax", %progbits
    .global start
start:
    .fnstart
    bx lr
    .cantunwind
    .fnend
--- args
c.o -o out.elf -e start
--- section
.ARM.exidx -
--- case code without a piece has one named after it, and the map says so
--- args
a.o link.cmd -o out.elf -e start --retain=*(.text.throw) --disable:exidx_opt -m out.map
--- text out.map has
.ARM.exidx
                  0000100c    00000008     (.ARM.exidx.text.throw)
                  00001014    00000008     (.ARM.exidx.text.plain)
                  0000101c    00000008     a.o (.ARM.exidx.text.late)
                  00001024    00000008     a.o (.ARM.exidx.text.same)
                  0000102c    00000008     a.o (.ARM.exidx.text.other)
                  00001034    00000010     a.o (.ARM.exidx.text.long)
                  00001044    00000008     a.o (.ARM.exidx.text.behind)
                  0000104c    00000008     (.ARM.exidx)
--- text out.map lacks
.ARM.exidx.text.unused
--- case a partial link has a table for each output section of code, tied to it, without an end
--- part.cmd
SECTIONS { .text : { *(.text.throw) *(.text.late) }  .more : { *(.text.same) *(.text.other) } }
--- args
a.o part.cmd -r -o out.elf
--- section
.ARM.exidx_0 0x00 0x18
.ARM.exidx_1 0x18 0x10
.ARM.exidx_2 0x28 0x08
.ARM.exidx -
--- readelf -S
[ 1] .text PROGBITS
[ 2] .more PROGBITS
[ 7] .text.plain:a.o PROGBITS
000018 00 AL 1 0 4
000010 00 AL 2 0 4
000008 00 AL 7 0 4
--- sym
__QV_UNWIND_TABLE_START -
--- case a piece that refers to its code by an alias stays with its code
--- alias.s
    .thumb
    .global start, old, new, beside, __cxa_throw
    .section .text.a, "ax", %progbits
    .thumb_func
start:
    bl beside
__cxa_throw:
    bx lr
    .section .text.old, "ax", %progbits
    .thumb_func
old: bx lr
beside: bx lr
    .section .text.new, "ax", %progbits
    .thumb_func
new: bx lr
    nop
    .section .ARM.exidx.old, "ao", %0x70000001, .text.old
    .reloc ., R_ARM_PREL31, old
    .word 0, 0x80b0b0b0
    .section .ARM.exidx.new, "ao", %0x70000001, .text.new
    .reloc ., R_ARM_PREL31, new
    .word 0, 0x80a8b0b0
    .section .QV.symbol.alias, "", %progbits
    .byte 1, 0, 0, 0
    .short 1
    .asciz "QV"
    .long 15, 16
--- alias.cmd
MEMORY { CODE : origin = 0x100, length = 0x100   DATA : origin = 0x1000, length = 0x100 }
SECTIONS { .text : { *(.text.a) *(.text.old) *(.text.new) } > CODE   .ARM.exidx : {} > DATA }
--- args
alias.o alias.cmd -o out.elf -e start --retain=*(.text.old) --retain=*(.text.new)
--- bytes .ARM.exidx
00f1ff7f01000000
fff0ff7fb0b0b080
fbf0ff7fb0b0a880
f6f0ff7f01000000
--- sym
old                       0x10b .text
__QV_exidx_linkto_sym_old 0x107 .text
