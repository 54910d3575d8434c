A branch out of reach is a warning with its operands; the output is made and said not to be loadable.
--- a.s
    .section .text._start, "ax"
    .globl _start
    .type _start, %function
    .thumb_func
_start:
    .reloc ., R_ARM_THM_JUMP8, far
    .inst.n 0xd1fe
    .section .text.far, "ax"
    .globl far
    .thumb_func
far: bx lr
--- link.cmd
MEMORY { M : origin = 0x100, length = 0x1000  N : origin = 0x8000, length = 0x1000 }
SECTIONS { .text : { *(.text._start) } > M  .far : { *(.text.far) } > N }
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- stderr
warning: relocation to symbol "far" overflowed; the 15-bit relocated address
   0x3f7e is too large to encode in the 8-bit signed PC-Relative field (type =
   'R_ARM_THM_JUMP8' (103), file = "a.o", offset = 0x00000000, section =
   ".text._start")
warning: relocation operand A = 0xfffffffffffffffc
warning: relocation operand S = 0x8000
warning: relocation operand P = 0x100
warning: output file "out.elf" cannot be loaded and run on a target system
--- file out.elf
