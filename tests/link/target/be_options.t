Byte order options are refused where the output has no choice.
--- a.s
    .section .text._start, "ax"
    .thumb_func
    .global _start
_start: bx lr
--- case a little-endian output
--- args
a.o --be8 --entry_point=_start -o out.elf
--- stderr
warning: --be8 ignored; output file must be big-endian
--- case a partial link
--- args
a.o --be8 -r -o out.elf
--- exit
1
--- stderr has
error: --be8 cannot be specified during a partial link
--- no-file out.elf
--- case little-endian with the other layout asked for
--- args
a.o --be32 --entry_point=_start -o out.elf
--- stderr
warning: --be32 ignored; output file must be big-endian
--- case a processor before version 6
--- old.s -march=armv5te -mbig-endian
    .text
    .global _start
_start: bx lr
--- args
old.o --be8 --entry_point=_start -o out.elf
--- stderr
warning: --be8 ignored; output file must be ARM v6 or above
--- bytes .text
E1 2F FF 1E
