Objects for architectures after v8 link, and the output is of the later one.
--- a.s clang -march=armv8.1-m.main -mthumb
    .text
    .globl _start
    .thumb_func
_start:
    bl other
--- b.s clang -march=armv8-m.main -mthumb
    .text
    .globl other
    .thumb_func
other:
    bx lr
--- link.cmd
--entry_point=_start
--diag_suppress=16010
MEMORY { ROM : origin = 0x8000, length = 0x1000 }
SECTIONS { .text : {} > ROM }
--- case the later first
--- args
a.o b.o link.cmd -o out.elf
--- readelf -A
Tag_CPU_arch: v8.1-M.mainline
--- case the later last
--- args
b.o a.o link.cmd -o out.elf
--- readelf -A
Tag_CPU_arch: v8.1-M.mainline
