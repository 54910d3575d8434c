Overlays in a UNION with copy tables, a CRC table, variables stored encoded, the handler table, heap and stack.
--- start.s
    .syntax unified
    .section .vectors, "a"
    .word _c_int00
    .section .text.start, "ax"
    .global _c_int00
    .thumb_func
_c_int00:
    ldr r0, =first_table
    ldr r1, =second_table
    ldr r2, =third_table
    ldr r3, =__QV_CINIT_Base
    ldr r4, =counters
    ldr r5, =zeros
    ldr r6, =__STACK_END
    ldr r7, =__SYSMEM_SIZE
    bl first
    bl second
    bx lr
    .section .first, "ax"
    .global first
    .thumb_func
first:
    .rept 24
    adds r0, #1
    .endr
    bx lr
    .section .second, "ax"
    .global second
    .thumb_func
second:
    .rept 40
    nop
    .endr
    bx lr
    .section .third, "aw"
    .byte 1, 2, 3, 4
    .section .data.counters, "aw"
    .global counters
counters: .fill 48, 1, 9
    .section .bss.zeros, "aw", %nobits
    .global zeros
zeros: .space 20
    .section .stack, "aw", %nobits
    .section .sysmem, "aw", %nobits
--- unpack.s
    .macro routine name
    .section .text.\name, "ax"
    .global \name
    .thumb_func
\name: bx lr
    .endm
    routine __QV_decompress_none
    routine __QV_decompress_lzss
    routine __QV_decompress_rle24
    routine __QV_zero_init
--- archive runtime.a unpack.o
--- link.cmd
--rom_model
--retain=*(.vectors)
--retain=*(.third)
--retain=*(.stack)
--retain=*(.sysmem)
--stack_size=0x100
--heap_size=0x80
MEMORY
{
    FLASH (RX)  : origin = 0x00000000, length = 16K
    RAM   (RWX) : origin = 0x20000000, length = 4K
}
SECTIONS
{
    .vectors : > 0
    UNION
    {
        .first  : LOAD > FLASH, table(first_table, compression=lzss)
        .second : LOAD > FLASH, table(second_table, compression=rle)
        .third  : LOAD > FLASH, table(third_table)
    } RUN > RAM
    .text   : { *(.text*) } > FLASH, crc_table(sums, algorithm=CRC32)
    .QV.crctab : > FLASH
    .ovly   : > FLASH
    .cinit  : > FLASH
    .data   : { *(.data*) } > RAM
    .bss    : { *(.bss*) } > RAM
    .sysmem : > RAM
    .stack  : > RAM (HIGH)
}
--- case everything
--- env
SOURCE_DATE_EPOCH=0
--- args
start.o runtime.a link.cmd --mapfile_contents=all,nosym_defs -o out.elf --map_file=out.map --xml_link_info=out.xml
