/* A program with newlib on mps2-an385. The archives stand on the command line; what is used of them is pulled. */

--entry_point=Reset_Handler
--retain=*(.isr_vector)     /* nothing refers to these two */
--retain=*(.stack)
--stack_size=0x2000

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
    .fini_array : { *(.fini_array*) } > FLASH, RUN_START(__fini_array_start), RUN_END(__fini_array_end)
    .ARM.extab  : { *(.ARM.extab*) } > FLASH
    .ARM.exidx  : { *(.ARM.exidx*) } > FLASH, RUN_START(__exidx_start), RUN_END(__exidx_end)

    .data       : { *(.data*) } LOAD > FLASH, RUN > RAM,
                  LOAD_START(__data_load), RUN_START(__data_start), SIZE(__data_size)
    .bss        : { *(.bss*) } > RAM, RUN_START(__bss_start), RUN_SIZE(__bss_size)

    /* Space without input: the heap of malloc. */
    .heap       : { . += 0x8000; } > RAM, RUN_START(__heap_start), RUN_END(__heap_end)
    .stack      : > RAM (HIGH)
}
