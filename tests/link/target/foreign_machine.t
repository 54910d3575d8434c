An object for another processor, or of another convention, is refused by name.
--- a.s
    .section .text._start, "ax"
    .thumb_func
    .global _start
_start: bx lr
--- case another processor
--- patch a.o 18 0300
--- args
a.o -o out.elf
--- exit
1
--- stderr has
fatal error: attempt to link an object file that is not built for ARM
--- no-file out.elf
--- case an early version of the convention
--- patch a.o 36 00000003
--- args
a.o -o out.elf
--- exit
1
--- stderr
fatal error: only EABI versions 4 and above are supported; the EABI version of
   "a.o" is 3
--- case none where one is asked for
--- patch a.o 36 00000000
--- args
a.o -o out.elf --abi=eabi
--- exit
1
--- stderr
fatal error: --abi=eabi is incompatible with file "a.o" (QVABI v0)
