/*
 * crc_table(name, algorithm=word) has the linker compute a check value over the bytes of an output section and store it,
 * with their address and size, in the table `name`. On a GROUP or UNION each member gets a record.
 */
--rom_model
--retain=*(.isr_vector)     /* nothing refers to these */
--retain=*(.stack)
--retain=*(.check*)
--retain=*(.part*)
--retain=*(.overlay*)
--stack_size=0x1000

MEMORY
{
    FLASH (RX)  : origin = 0x00000000, length = 256K
    RAM   (RWX) : origin = 0x20000000, length = 64K
}

SECTIONS
{
    .isr_vector : { *(.isr_vector) } > 0x00000000
    .text       : { *(.text*) }   > FLASH, crc_table(code_table)
    .rodata     : { *(.rodata*) } > FLASH, crc_table(code_table, algorithm=CRC32)

    .check0     : > FLASH, crc_table(algorithms_table, algorithm=CRC32_PRIME)
    .check1     : > FLASH, crc_table(algorithms_table, algorithm=CRC16_802_15_4)
    .check2     : > FLASH, crc_table(algorithms_table, algorithm=CRC16_ALT)
    .check3     : > FLASH, crc_table(algorithms_table, algorithm=CRC8_PRIME)
    .check4     : > FLASH, crc_table(algorithms_table, algorithm=CRC16_CCITT)
    .check5     : > FLASH, crc_table(algorithms_table, algorithm=XMODEM)
    .check6     : > FLASH, crc_table(algorithms_table, algorithm=ARC)
    .check7     : > FLASH, crc_table(algorithms_table, algorithm=CRC16_IAR)
    .check8     : > FLASH, crc_table(algorithms_table, algorithm=CRC32_IAR)
    .check9     : > FLASH, crc_table(algorithms_table, algorithm=CRC32)
    .check10    : > FLASH, crc_table(algorithms_table, algorithm=TRINITY_CRC64_ISO)
    .check11    : > FLASH, crc_table(algorithms_table, algorithm=CRC32_C)
    .check12    : > FLASH, crc_table(algorithms_table, algorithm=CRC24_FLEXRAY)

    GROUP
    {
        .part1  :
        .part2  :
    } > FLASH, crc_table(parts_table, algorithm=CRC16_CCITT)

    UNION
    {
        .overlay1 : LOAD > FLASH, crc_table(overlay_table)
        .overlay2 : LOAD > FLASH
    } RUN > RAM

    .QV.crctab  : { *(.QV.crctab*) } > FLASH
    .cinit      : > FLASH
    .bss        : { *(.bss*) }    > RAM
    .stack      : > RAM (HIGH)
}
