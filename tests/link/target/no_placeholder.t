Without a section of the run-time library in the link there is no stack, no heap, and nothing that names them.
--- a.s
    .section .text._start, "ax"
    .thumb_func
    .global _start
_start: bx lr
--- args
a.o --entry_point=_start --stack_size=0x400 -o out.elf
--- section
.stack - -
.sysmem - -
--- sym
__STACK_SIZE -
