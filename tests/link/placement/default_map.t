Without a command file everything is placed in the default memory, without a word.
--- a.s
    .section .text, "ax"
    .global _start
_start: .word x, y
    .data
    .global x
x:  .word 1
    .bss
    .global y
y:  .space 4
--- args
a.o -o out.elf --entry_point=_start
--- file out.elf
