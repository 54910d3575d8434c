/* C++ with exceptions on mps2-an386 (Cortex-M4F), with newlib and libstdc++. */

--entry_point=Reset_Handler
--retain=*(.isr_vector)     /* nothing refers to these two */
--retain=*(.stack)
--stack_size=0x2000
/*
 * The parts of these libraries that are written in assembly say neither that they preserve the alignment of the stack nor
 * that they pass no floating point in registers (16005, 16008). They keep to both.
 */
--diag_suppress=16005 --diag_suppress=16008

/* The run-time library finds the type in a catch by a distance, where the ABI leaves the choice to the platform. */
--target2=rel

MEMORY
{
    FLASH (RX)  : origin = 0x00000000, length = 1M
    RAM   (RWX) : origin = 0x20000000, length = 256K
}

/* exit() walks a table of destructors; this program has none. */
__fini_array_start = 0;
__fini_array_end = 0;

SECTIONS
{
    .isr_vector : { *(.isr_vector) } > 0x00000000
    .text       : { *(.text*) }      > FLASH
    .rodata     : { *(.rodata*) }    > FLASH
    .init_array : { *(.init_array*) } > FLASH, RUN_START(__init_array_start), RUN_END(__init_array_end)

    /*
     * What a throw reads: for each function where its code begins and how to unwind it. The linker makes the index of all
     * inputs, in the order of the addresses; the library asks for its two ends.
     */
    .ARM.extab  : { *(.ARM.extab*) } > FLASH
    .ARM.exidx  : {} > FLASH, RUN_START(__exidx_start), RUN_END(__exidx_end)

    .data       : { *(.data*) } LOAD > FLASH, RUN > RAM,
                  LOAD_START(__data_load), RUN_START(__data_start), SIZE(__data_size)
    .bss        : { *(.bss*) } > RAM, RUN_START(__bss_start), RUN_SIZE(__bss_size)
    .heap       : { . += 0x8000; } > RAM, RUN_START(__heap_start), RUN_END(__heap_end)
    .stack      : > RAM (HIGH)
}
