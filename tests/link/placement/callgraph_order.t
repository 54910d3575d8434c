With --minimize_trampolines=postorder functions stand behind what they call, whatever their size.
--- a.s
    .syntax unified
    .thumb
    .section .text.start, "ax"
    .globl _start
    .thumb_func
_start: bl large
    .space 0x40
    .section .text.large, "ax"
    .globl large
    .thumb_func
large: bl small
    bl _start
    .space 0x20
    .section .text.small, "ax"
    .globl small
    .thumb_func
small: bx lr
--- link.cmd
--entry_point=_start
MEMORY { ROM : origin = 0x100, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > ROM }
--- case by size
--- args
a.o link.cmd -o out.elf
--- sym
_start 0x101
large 0x145
small 0x16d
--- case by calls
--- args
a.o link.cmd -o out.elf --minimize_trampolines=postorder
--- sym
small 0x101
large 0x103
_start 0x12b
