/* Several memories on mps2-an385. Each function section of the program goes where its name says. */

--entry_point=Reset_Handler
--retain=*(.isr_vector)     /* nothing refers to these two */
--retain=*(.stack)
--stack_size=0x800

MEMORY
{
    FLASH1 (RX)  : origin = 0x00000000, length = 16K
    FLASH2 (RX)  : origin = 0x00200000, length = 64K
    RAM    (RWX) : origin = 0x20000000, length = 64K
}

SECTIONS
{
    .isr_vector : { *(.isr_vector) } > 0x00000000
    .bank2      : { *(.text.bank2) } > FLASH2
    .text       : { *(.text*) }      > FLASH1
    .rodata     : { *(.rodata*) }    > FLASH2 | FLASH1

    /* Stored in flash, runs in RAM after the program has copied it. */
    .ramcode    : { *(.ramcode) } LOAD > FLASH2, RUN > RAM,
                  LOAD_START(__ramcode_load), RUN_START(__ramcode_start), SIZE(__ramcode_size)

    /* One place in RAM, two codes that take turns there, each with a place of its own in flash. */
    UNION : RUN > RAM
    {
        .first  : { *(.overlay.first) }  LOAD > FLASH2,
                  LOAD_START(__first_load), RUN_START(__first_start), SIZE(__first_size)
        .second : { *(.overlay.second) } LOAD > FLASH2,
                  LOAD_START(__second_load), RUN_START(__second_start), SIZE(__second_size)
    }

    .data       : { *(.data*) } LOAD > FLASH1, RUN > RAM,
                  LOAD_START(__data_load), RUN_START(__data_start), SIZE(__data_size)
    .bss        : { *(.bss*) } > RAM, RUN_START(__bss_start), RUN_SIZE(__bss_size)

    .top        : { *(.top) } > RAM (HIGH), RUN_END(__top_end)
    .noinit     : { *(.noinit) } > RAM, TYPE = NOINIT
    .stack      : > RAM
}
