/* Code in two memories of mps2-an385 that are more than 16 MB apart. */

--entry_point=Reset_Handler
--retain=*(.isr_vector)     /* nothing refers to these two */
--retain=*(.stack)
--stack_size=0x800

MEMORY
{
    FLASH (RX)  : origin = 0x00000000, length = 256K
    RAM (RW)    : origin = 0x20000000, length = 64K
    PSRAM (RWX) : origin = 0x21000000, length = 1M
}

SECTIONS
{
    .isr_vector : { *(.isr_vector) } > 0x00000000
    .text       : { *(.text*) }      > FLASH
    .rodata     : { *(.rodata*) }    > FLASH

    /* Stored in flash, runs in the external RAM after the program has copied it. */
    .far        : { *(.far.*) } LOAD > FLASH, RUN > PSRAM,
                  LOAD_START(__far_load), RUN_START(__far_start), SIZE(__far_size)

    .data       : { *(.data*) } LOAD > FLASH, RUN > RAM,
                  LOAD_START(__data_load), RUN_START(__data_start), SIZE(__data_size)
    .bss        : { *(.bss*) } > RAM, RUN_START(__bss_start), RUN_SIZE(__bss_size)
    .stack      : > RAM
}
