Each run of adjacent sections with equal access and equal distance between load and run address is one segment.
--- a.s
    .section .text._start, "ax"
    .globl _start
    .thumb_func
_start: ldr r0, =d
    ldr r0, =b
    bx lr
    .section .rodata.r, "a"
    .word 1
    .data
d:  .word 2
    .bss
b:  .space 8
--- link.cmd
--retain=*(.rodata.r)
MEMORY { FLASH : origin = 0x0, length = 0x1000  RAM : origin = 0x20000000, length = 0x1000 }
SECTIONS {
  .text : { *(.text*) } > FLASH
  .rodata : { *(.rodata*) } > FLASH
  .data : { *(.data) } load > FLASH, run > RAM
  .bss : { *(.bss) } > RAM
}
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- segments
LOAD 0x0 0x0 0x10 0x10 RX
LOAD 0x20000008 0x10 0x4 0x4 RW
LOAD 0x14 0x14 0x4 0x4 R
LOAD 0x20000000 0x20000000 0x0 0x8 RW
