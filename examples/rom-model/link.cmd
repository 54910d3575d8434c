/*
 * --rom_model: the values of variables are stored in flash, encoded, and the program's start-up (examples/runtime)
 * restores them. Each output section that is written to gets a record; nothing else needs to be said.
 */
--rom_model
--retain=*(.isr_vector)     /* nothing refers to these two */
--retain=*(.stack)
--stack_size=0x1000

MEMORY
{
    FLASH (RX)  : origin = 0x00000000, length = 512K
    RAM   (RWX) : origin = 0x20000000, length = 256K
}

SECTIONS
{
    .isr_vector : { *(.isr_vector) } > 0x00000000
    .text       : { *(.text*) }      > FLASH
    .rodata     : { *(.rodata*) }    > FLASH
    .init_array : > FLASH
    .cinit      : > FLASH           /* the table of C initialisation, the encoded values, the handler table */

    .data       : { *(.data.text) *(.data.functions) *(.data.pointers) } > RAM
    .table      : { *(.data.table) *(.data.mostly_zero) } > RAM
    .noise      : { *(.data.noise) } > RAM
    .bss        : { *(.bss*) } > RAM
    .stack      : > RAM (HIGH)
}
