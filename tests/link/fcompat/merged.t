The output carries the sum of its inputs' build attributes: the highest architecture, the largest needs, the least promises.
--- a.s -mcpu=cortex-m3
    .syntax unified
    .arch armv7-m
    .eabi_attribute 24, 1
    .eabi_attribute 34, 0
    .text
    .globl _start
    .thumb_func
_start:
    bl other
--- b.s -mcpu=cortex-m4
    .syntax unified
    .arch armv7e-m
    .eabi_attribute 67, "2.09"
    .eabi_attribute 20, 1
    .eabi_attribute 26, 2
    .eabi_attribute 30, 4
    .text
    .globl other
    .thumb_func
other:
    smlad r0, r1, r2, r3
    bx lr
--- link.cmd
--entry_point=_start
MEMORY { ROM : origin = 0x8000, length = 0x1000 }
SECTIONS { .text : {} > ROM }
--- case the higher architecture comes later
--- args
a.o b.o link.cmd -o out.elf --diag_suppress=16010
--- readelf -A
Tag_CPU_name: "7-M"
Tag_CPU_arch: v7E-M
Tag_CPU_arch_profile: Microcontroller
Tag_THUMB_ISA_use: Thumb-2
Tag_ABI_FP_denormal: Needed
Tag_ABI_align_needed: 8-byte
Tag_ABI_align_preserved: 8-byte, except leaf SP
Tag_ABI_enum_size: int
Tag_ABI_optimization_goals: Aggressive Size
--- case the higher architecture comes first
--- args
b.o a.o link.cmd -o out.elf --diag_suppress=16010
--- readelf -A
Tag_CPU_name: "7E-M"
Tag_CPU_arch: v7E-M
Tag_conformance: "2.09"
--- case a partial link carries it too
--- args
-r a.o b.o -o out.elf --diag_suppress=16010
--- readelf -A
Tag_CPU_arch: v7E-M
--- case the processor's names differ
--- args
a.o b.o link.cmd -o out.elf
--- stderr
warning: file "b.o" has a Tag_CPU_name value of "7E-M" while a previously seen
   file has a value of "7-M"
