/* A program with newlib on mps2-an385. The archives stand on the command line; what is used of them is pulled. */

--entry_point=Reset_Handler
--retain=*(.isr_vector)     /* nothing refers to these two */
--retain=*(.stack)
--stack_size=0x2000

/*
 * Some members of newlib are written in assembly and carry no attribute that says they preserve the alignment of the
 * stack (strcmp and memcpy, here), so the linker can't tell and calls them incompatible with C code, which needs it:
 * error 16005. They do preserve it. This takes back just that message.
 */
--diag_suppress=16005

MEMORY
{
    FLASH (RX)  : origin = 0x00000000, length = 512K
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
    .ARM.exidx  : {} > FLASH        /* the linker collects this one by itself */

    .data       : { *(.data*) } LOAD > FLASH, RUN > RAM,
                  LOAD_START(__data_load), RUN_START(__data_start), SIZE(__data_size)
    .bss        : { *(.bss*) } > RAM, RUN_START(__bss_start), RUN_SIZE(__bss_size)

    /* Space without input: the heap of malloc. */
    .heap       : { . += 0x8000; } > RAM, RUN_START(__heap_start), RUN_END(__heap_end)
    .stack      : > RAM (HIGH)
}
