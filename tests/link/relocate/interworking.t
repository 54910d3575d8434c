Calls between ARM and Thumb code change the mode by BLX, addresses of Thumb functions are odd, unresolved weak calls are NOPs.
--- a.s -march=armv7-a
    .syntax unified
    .section .text.start, "ax", %progbits
    .arm
    .globl _start
    .type _start, %function
_start:
    bl tfun
    bl afun
    b afun
    blne afun
    movw r0, #:lower16:dat+4
    movt r0, #:upper16:dat+4
    movw r1, #:lower16:tfun
    movt r1, #:upper16:tfun
    movw r2, #:lower16:(dat-.)
    movt r2, #:upper16:(dat-.)
    .word tfun, afun, dat-4, dat-.
    .reloc ., R_ARM_PREL31, tfun
    .word 0x80000000
    .reloc ., R_ARM_ABS16, abs16
    .hword 2
    .reloc ., R_ARM_ABS8, abs8
    .byte 1, 0
    .word wk
    bl wk
    .section .text.t, "ax", %progbits
    .thumb
    .thumb_func
tfun:
    bl afun
    bl tfun2
    b.w tfun2
    bne.w tfun2
    .reloc ., R_ARM_THM_JUMP11, tloc
    .inst.n 0xe7fe
    .reloc ., R_ARM_THM_JUMP8, tloc
    .inst.n 0xd1fe
    movw r0, #:lower16:dat+0x7004
    movt r0, #:upper16:dat+0x7004
    movw r1, #:lower16:tfun2
    bl wk
    .globl tloc
tloc: bx lr
    .section .text.t2, "ax", %progbits
    .globl tfun2
    .thumb_func
tfun2: nop
    bl afun
    bx lr
    .section .text.a, "ax", %progbits
    .arm
    .globl afun
    .type afun, %function
afun: bl tfun2
    bx lr
    .weak wk
    .globl abs16, abs8
    .set abs16, 0x1234
    .set abs8, 0x56
    .data
    .globl dat
dat: .word 1, 2
--- link.cmd
MEMORY { FLASH : origin = 0x8000, length = 0x1000  RAM : origin = 0x20000000, length = 0x1000 }
SECTIONS {
  .text : { *(.text.start) *(.text.t) *(.text.t2) *(.text.a) } > FLASH
  .data : { *(.data) } > RAM
}
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- dis .text
8000: fa000010 blx 8048
8004: eb00001b bl 8078
8008: ea00001a b 8078
800c: 1b000019 blne 8078
8010: e3000004 movw r0, #4
8014: e3420000 movt r0, #8192
8018: e3081049 movw r1, #32841
801c: e3401000 movt r1, #0
8020: e3072fe0 movw r2, #32736
8024: e3412fff movt r2, #8191
8028: 00008049 .word 0x00008049
802c: 00008078 .word 0x00008078
8030: 1ffffffc .word 0x1ffffffc
8034: 1fff7fcc .word 0x1fff7fcc
8038: 80000011 .word 0x80000011
803c: 00571236 .word 0x00571236
8040: 00000000 .word 0x00000000
8044: e1a00000 nop
8048: f000 e816 blx 8078
804c: f000 f80f bl 806e
8050: f000 b80d b.w 806e
8054: f040 800b bne.w 806e
8058: e008 b.n 806c
805a: d107 bne.n 806c
805c: f247 0004 movw r0, #28676
8060: f2c2 0000 movt r0, #8192
8064: f248 016f movw r1, #32879
8068: bf00 nop
806a: bf00 nop
806c: 4770 bx lr
806e: bf00 nop
8070: f000 e802 blx 8078
8074: 4770 bx lr
8078: fbfffffb blx 806e
807c: e12fff1e bx lr
