How far branches reach before they need a stub: by instruction and architecture, to the last byte.
--- v4.s -mcpu=arm7tdmi
    .syntax unified
    .section .from, "ax"
    .thumb
    .global from
    .type from, %function
    .thumb_func
from: bl to
    bx lr
    .section .to, "ax"
    .global to
    .type to, %function
    .thumb_func
to: bx lr
--- v5.s -mcpu=arm926ej-s
    .syntax unified
    .section .from, "ax"
    .arm
    .global from
    .type from, %function
from: bl to
    bx lr
    .section .to, "ax"
    .thumb
    .global to
    .type to, %function
    .thumb_func
to: bx lr
--- v7.s -mcpu=cortex-a15
    .syntax unified
    .section .from, "ax"
    .thumb
    .global from
    .type from, %function
    .thumb_func
from: bl to
    bx lr
    .section .to, "ax"
    .thumb
    .global to
    .type to, %function
    .thumb_func
to: bx lr
--- cond.s -mcpu=cortex-a15
    .syntax unified
    .section .from, "ax"
    .thumb
    .global from
    .type from, %function
    .thumb_func
from: beq.w to
    bx lr
    .section .to, "ax"
    .thumb
    .global to
    .type to, %function
    .thumb_func
to: bx lr
--- arm.s -mcpu=cortex-a15
    .syntax unified
    .section .from, "ax"
    .arm
    .global from
    .type from, %function
from: bne to
    bx lr
    .section .to, "ax"
    .arm
    .global to
    .type to, %function
to: bx lr
--- l.cmd
--entry_point=from
MEMORY { A (RX) : o = 0x8000, l = 0x1000  B (RX) : o = 0x10000, l = 0x10000000 }
--- case Thumb BL before Thumb-2: 4 MB
--- near.cmd
SECTIONS { .to : { *(.to) } > 0x408002  .from : { *(.from) } > 0x8000 }
--- args
v4.o l.cmd near.cmd -o out.elf
--- sym
$Tramp$TT$L$PI$$to -
--- case and one step more
--- far.cmd
SECTIONS { .to : { *(.to) } > 0x408004  .from : { *(.from) } > 0x8000 }
--- args
v4.o l.cmd far.cmd -o out.elf
--- sym
$Tramp$TT$L$PI$$to 0x8009
--- case Thumb BL of Thumb-2: 16 MB
--- near.cmd
SECTIONS { .to : { *(.to) } > 0x1008002  .from : { *(.from) } > 0x8000 }
--- args
v7.o l.cmd near.cmd -o out.elf
--- sym
$Tramp$TT$L$PI$$to -
--- case and one step more
--- far.cmd
SECTIONS { .to : { *(.to) } > 0x1008004  .from : { *(.from) } > 0x8000 }
--- args
v7.o l.cmd far.cmd -o out.elf
--- sym
$Tramp$TT$S$$to 0x8009
--- case a conditional branch: 1 MB
--- near.cmd
SECTIONS { .to : { *(.to) } > 0x108002  .from : { *(.from) } > 0x8000 }
--- args
cond.o l.cmd near.cmd -o out.elf
--- sym
$Tramp$TT$S$$to -
--- case and one step more
--- far.cmd
SECTIONS { .to : { *(.to) } > 0x108004  .from : { *(.from) } > 0x8000 }
--- args
cond.o l.cmd far.cmd -o out.elf
--- sym
$Tramp$TT$S$$to 0x8009
--- case a branch of ARM: 32 MB
--- near.cmd
SECTIONS { .to : { *(.to) } > 0x2008004  .from : { *(.from) } > 0x8000 }
--- args
arm.o l.cmd near.cmd -o out.elf
--- sym
$Tramp$AA$S$$to -
--- case and one step more
--- far.cmd
SECTIONS { .to : { *(.to) } > 0x2008008  .from : { *(.from) } > 0x8000 }
--- args
arm.o l.cmd far.cmd -o out.elf
--- sym
$Tramp$AA$S$$to 0x8008
--- case BLX takes a call of ARM to Thumb code as far as BL
--- near.cmd
SECTIONS { .to : { *(.to) } > 0x2008006  .from : { *(.from) } > 0x8000 }
--- args
v5.o l.cmd near.cmd -o out.elf
--- dis .from
8000: fb7fffff blx 2008006
--- case and beyond that a veneer takes it
--- far.cmd
SECTIONS { .to : { *(.to) } > 0x2008008  .from : { *(.from) } > 0x8000 }
--- args
v5.o l.cmd far.cmd -o out.elf
--- sym
$Ven$AT$L$PI$$to 0x8008
