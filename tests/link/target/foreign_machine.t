An object for another processor is refused by name.
--- a.s
    .section .text._start, "ax"
    .thumb_func
    .global _start
_start: bx lr
--- patch a.o 18 0300
--- args
a.o -o out.elf
--- exit
1
--- stderr has
fatal error: attempt to link an object file that is not built for ARM
--- no-file out.elf
