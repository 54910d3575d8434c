An architecture that is asked for is what the output says, unless a file needs a higher one.
--- a.s -mcpu=cortex-m3
    .syntax unified
    .text
    .globl _start
    .thumb_func
_start:
    bx lr
--- link.cmd
--entry_point=_start
MEMORY { ROM : origin = 0x8000, length = 0x1000 }
SECTIONS { .text : {} > ROM }
--- case a higher one
--- args
a.o link.cmd -o out.elf --silicon_version=7M4
--- readelf -A
Tag_CPU_arch: v7E-M
--- case a lower one
--- args
a.o link.cmd -o out.elf --silicon_version=6M0
--- readelf -A
Tag_CPU_arch: v7
