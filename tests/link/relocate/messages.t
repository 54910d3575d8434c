A value that its field cannot hold is a warning with the operands; the field holds its low bits, and the file is not to be run.
--- link.cmd
--entry_point=_start
MEMORY { F : origin = 0x8000, length = 0x8000000 }
SECTIONS { .text : { *(.text.start) } > F }
--- signed.s -march=armv7-a
    .syntax unified
    .arm
    .section .text.start, "ax"
    .globl _start, far
_start: bl far
    .set far, _start + 0x2000008
--- either.s -march=armv7-a
    .section .text.start, "ax"
    .globl _start, number
_start: .reloc ., R_ARM_ABS16, number
    .hword 0xFFFE, 0
    .set number, 0x10002
--- thumb.s -march=armv7-a
    .syntax unified
    .thumb
    .section .text.start, "ax"
    .globl _start, far
    .thumb_func
_start: .reloc ., R_ARM_THM_JUMP8, far
    .inst.n 0xd0fe
    nop
    .set far, _start + 0x102 + 2
--- group.s -march=armv7-a
    .arm
    .section .text.start, "ax"
    .globl _start, far
_start: .reloc ., R_ARM_ALU_PC_G0, far
    add r0, pc, #0
    .set far, _start + 0x101
--- unsupported.s -march=armv7-a
    .arm
    .section .text.start, "ax"
    .globl _start
_start: .reloc ., R_ARM_GOT_ABS, _start
    .word 0x12345678
    .reloc ., R_ARM_TLS_LE32, _start
    .word 0x9abcdef0
--- case a signed field that is relative to the place
--- args
signed.o link.cmd -o out.elf
--- stderr
warning: relocation to symbol "far" overflowed; the 26-bit relocated address
   0x1000000 is too large to encode in the 25-bit signed PC-Relative field
   (type = 'R_ARM_CALL' (28), file = "signed.o", offset = 0x00000000, section =
   ".text.start")
warning: relocation operand A = 0xfffffffffffffff8
warning: relocation operand S = 0x2008008
warning: relocation operand P = 0x8000
warning: output file "out.elf" cannot be loaded and run on a target system
--- bytes .text
00 00 80 EB
--- case a field that is signed or unsigned
--- args
either.o link.cmd -o out.elf
--- stderr
warning: relocation to symbol "number" overflowed; the 17-bit relocated address
   0x10000 is too large to encode in the 16-bit field (type = 'R_ARM_ABS16'
   (5), file = "either.o", offset = 0x00000000, section = ".text.start")
warning: relocation operand A = 0xfffffffffffffffe
warning: relocation operand S = 0x10002
warning: relocation operand P = 0x8000
warning: output file "out.elf" cannot be loaded and run on a target system
--- bytes .text
00 00 00 00
--- case the value as it is after the scale
--- args
thumb.o link.cmd -o out.elf
--- stderr
warning: relocation to symbol "far" overflowed; the 9-bit relocated address
   0x80 is too large to encode in the 8-bit signed PC-Relative field (type =
   'R_ARM_THM_JUMP8' (103), file = "thumb.o", offset = 0x00000000, section =
   ".text.start")
warning: relocation operand A = 0xfffffffffffffffc
warning: relocation operand S = 0x8104
warning: relocation operand P = 0x8000
warning: output file "out.elf" cannot be loaded and run on a target system
--- bytes .text
80 D0 00 BF
--- case what a group leaves over
--- args
group.o link.cmd -o out.elf
--- stderr
warning: relocation to symbol "far" overflowed; the 9-bit relocated address
   0x101 is too large to encode in the 8-bit unsigned PC-Relative field (type =
   'R_ARM_ALU_PC_G0' (58), file = "group.o", offset = 0x00000000, section =
   ".text.start")
warning: relocation operand A = 0
warning: relocation operand S = 0x8101
warning: relocation operand P = 0x8000
warning: output file "out.elf" cannot be loaded and run on a target system
--- case a type without support leaves the field as it came
--- args
unsupported.o link.cmd -o out.elf
--- stderr
warning: relocation type is not supported (type = 'R_ARM_GOT_ABS' (95), file =
   "unsupported.o", offset = 0x00000000, section = ".text.start")
warning: relocation type is not supported (type = 'R_0x6c' (108), file =
   "unsupported.o", offset = 0x00000004, section = ".text.start")
warning: output file "out.elf" cannot be loaded and run on a target system
--- bytes .text
78 56 34 12 F0 DE BC 9A
