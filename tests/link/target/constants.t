Constants of the C library that portable objects leave to the link are made where they are wanted, and only there.
--- a.s
    .section .text._start, "ax"
    .thumb_func
    .global _start
_start: bx lr
    .align 2
    .word __aeabi_SIG_ERR, __aeabi_BUFSIZ
--- link.cmd
--entry_point=_start
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M   .const : { *(.const*) } > M }
--- args
a.o link.cmd -o out.elf
--- bytes .const
FE FF FF FF  00 01 00 00
--- sym
__aeabi_SIG_ERR 0x100C
__aeabi_BUFSIZ 0x1010
__aeabi_EDOM -
