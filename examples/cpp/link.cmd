/* C++ on mps2-an385: as hello, with the table of constructors. Its parts are sorted by the priority in their names. */

--entry_point=Reset_Handler
--retain=*(.isr_vector)     /* nothing refers to these two */
--retain=*(.stack)
--stack_size=0x1000

MEMORY
{
    FLASH (RX)  : origin = 0x00000000, length = 256K
    RAM   (RWX) : origin = 0x20000000, length = 64K
}

SECTIONS
{
    .isr_vector : { *(.isr_vector) } > 0x00000000
    .text       : { *(.text*) }      > FLASH
    .rodata     : { *(.rodata*) }    > FLASH
    .init_array : { *(.init_array*) } > FLASH, RUN_START(__init_array_start), RUN_END(__init_array_end)

    .data       : { *(.data*) } LOAD > FLASH, RUN > RAM,
                  LOAD_START(__data_load), RUN_START(__data_start), SIZE(__data_size)
    .bss        : { *(.bss*) } > RAM, RUN_START(__bss_start), RUN_SIZE(__bss_size)
    .stack      : > RAM (HIGH)
}
