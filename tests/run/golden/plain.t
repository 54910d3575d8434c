Groups, ranges of two pages, fills, holes and all that the map says of a program that needs no tables.
--- start.s
    .syntax unified
    .section .vectors, "a"
    .word start
    .section .text.start, "ax"
    .global start, lost
    .weak lost
    .thumb_func
start:
    bl one
    bl two
    ldr r0, =value
    ldr r1, =shared
    ldr r2, =lost
here:
    b here
    .section .text.unused, "ax"
    .global unused
unused: bx lr
    .data
    .global value
value: .word 1, 2, 3
    .comm shared, 24, 8
--- sub/two.s
    .global two, hidden_one
    .section .text.two, "ax"
    .thumb_func
two: bx lr
    nop
    nop
    .section .rodata.two, "a"
hidden_one: .byte 1, 2, 3
--- one.s
    .global one
    .section .text.one, "ax"
    .thumb_func
one: bx lr
    .section .rodata.one, "a"
    .global local_one
local_one: .byte 5, 6, 7, 8, 9
--- more.s
    .global more
    .section .rodata.more, "a"
more: .word 77
    .section .copied, "a"
    .word 78
    .section .shadow, "aw"
    .word 79
    .section .kept, "aw"
    .word 80
--- archive lib.a one.o more.o
--- link.cmd
--entry_point=start
--retain=*(.vectors)
--retain=*(.rodata.two)
--retain=*(.rodata*)
MEMORY
{
    PAGE 0 : FLASH (RX) : origin = 0x00000000, length = 0x400, fill = 0xA5
             IDLE  (R)  : origin = 0x00001000, length = 0x100
             RAM   (RW) : origin = 0x20000000, length = 0x200, vfill = 0x11223344
    PAGE 1 : A_NAME_THAT_IS_LONGER_THAN_ITS_COLUMN (RWIX) : origin = 0x00000000, length = 0x100
}
SECTIONS
{
    .vectors 0x0 : { *(.vectors) . += 12; } fill = 0x55
    .text 0x40 : { *(.text.start) . = ALIGN(32); *(.text*) }
    GROUP : { .constants_of_all : { *(.rodata.o*) . += 1; . = ALIGN(8); *(.rodata.t*) }
              .more : { *(.rodata.more) } } > FLASH
    .data : {} LOAD = FLASH, RUN = RAM
    .bss : {} > RAM
    .copied : {} > FLASH, TYPE = COPY
    .shadow 0x3000 : {} TYPE = DSECT
    .kept : {} > A_NAME_THAT_IS_LONGER_THAN_ITS_COLUMN PAGE 1, TYPE = NOLOAD
}
--- case everything
--- env
SOURCE_DATE_EPOCH=1700000000
--- args
start.o sub/two.o lib.a link.cmd --undef_sym=more --retain=*(.copied) --retain=*(.shadow) --retain=*(.kept)
--hide=hidden_one --localize=local_one --fill_value=0x7E --mapfile_contents=all -o out.elf --map_file=out.map --xml_link_info=out.xml
