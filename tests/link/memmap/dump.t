The memory map as a table: ranges with what they hold, one level deeper each, the holes between, and what stands over something else.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .balign 4
    .word one, two, zeros
    .section .data.one, "aw"
one: .word 1, 2
    .section .data.two, "aw"
two: .word 3
    .bss
zeros: .space 8
--- link.cmd
--entry_point=_start
MEMORY
{
    ROM (RX) : origin = 0x100, length = 0x60, fill = 0xFF
    ALIAS { RAM (RWX) : origin = 0x20000000  CODE (RX) : origin = 0x10000000 } length = 0x40
    PAGE 1 : SPARE (R) : origin = 0, length = 0x10, vfill = 0x1234
}
SECTIONS
{
    .text : { *(.text*) . += 6; } fill = 0xBEEF > 0x100
    UNION : { .one : { *(.data.one) } LOAD > ROM  .two : { *(.data.two) } LOAD > 0x140 } RUN > RAM
    .bss : { *(.bss) } > 0x20000010
}
--- args
a.o link.cmd -o out.elf --debug:map
--- stdout has
name/contents origin end length attrs fill page
------------- -------- -------- -------- ----- ---- ----
ROM 0x00000100 0x0000015f 0x60 RX ff 0
.text 0x00000100 0x00000115 0x16 beef
.text._start:a.o 0x00000100 0x0000010f 0x10
<space> 0x00000110 0x00000115 0x6 beef
.one (L) 0x00000116 0x0000011d 0x8
.data.one:a.o (L) 0x00000116 0x0000011d 0x8
$fill000 0x0000011e 0x0000013f 0x22 ff
.two (L) 0x00000140 0x00000143 0x4
$fill001 0x00000144 0x0000015f 0x1c ff
CODE 0x10000000 0x1000003f 0x40 RX <none> 0
UNION_1 (A) 0x10000000 0x10000007 0x8
.two (A) 0x10000000 0x10000003 0x4
.one (A) 0x10000000* 0x10000007 0x8
<empty> 0x10000008 0x10000010 0x8
.bss (A) 0x10000010 0x10000017 0x8
<empty> 0x10000018 0x10000040 0x28
RAM 0x20000000 0x2000003f 0x40 RWX <none> 0
UNION_1 (R) 0x20000000 0x20000007 0x8
.two (R) 0x20000000 0x20000003 0x4
.one (R) 0x20000000* 0x20000007 0x8
<empty> 0x20000008 0x20000010 0x8
.bss (R) 0x20000010 0x20000017 0x8
<empty> 0x20000018 0x20000040 0x28
SPARE 0x00000000 0x0000000f 0x10 R 1234 V 1
