Far calls through trampolines, from a library too, CRC tables, and sections that find no room.
--- start.s
    .syntax unified
    .cpu cortex-m3
    .section .text.start, "ax"
    .global start
    .thumb_func
start:
    bl far_one
    bl far_two
    bl far_one
    ldr r0, =checks
    ldr r1, =big
    bx lr
    .section .big, "aw", %nobits
    .global big
big: .space 0x2000
    .section .late, "aw"
    .word 1
--- far.s
    .syntax unified
    .cpu cortex-m3
    .section .far.one, "ax"
    .global far_one
    .thumb_func
far_one:
    bl near
    bx lr
    .section .far.two, "ax"
    .global far_two
    .thumb_func
far_two:
    bl near
    bl near
    bx lr
--- near.s
    .syntax unified
    .cpu cortex-m3
    .section .text.near, "ax"
    .global near
    .type near, %function
    .thumb_func
near:
    bl far_two
    bx lr
--- digits.s
    .cpu cortex-m3
    .section .digits, "a"
    .ascii "123456789"
    .section .abc, "a"
    .ascii "abc"
--- archive lib.a far.o near.o
--- link.cmd
--entry_point=start
--retain=*(.digits)
--retain=*(.abc)
--retain=*(.late)
MEMORY
{
    LOW  (RX) : origin = 0x00008000, length = 0x1000
    HIGH (RX) : origin = 0x20000000, length = 0x1000
    RAM  (RW) : origin = 0x40000000, length = 0x1000
}
SECTIONS
{
    .low    : { *(.text*) } > LOW
    .high   : { *(.far*) } > HIGH
    .digits : > LOW, crc_table(checks, algorithm=CRC16_CCITT)
    .abc    : > LOW, crc_table(checks)
    .QV.crctab : > LOW
    UNION { .late : LOAD > LOW   .big : } RUN > RAM
}
--- case everything
--- env
SOURCE_DATE_EPOCH=0
--- exit
1
--- stderr has
error: program will not fit into available memory.
error: errors encountered during linking; "out.elf" not built
--- args
start.o digits.o lib.a link.cmd -o out.elf --map_file=out.map --xml_link_info=out.xml
