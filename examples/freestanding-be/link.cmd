/*
 * A big-endian program for virt (Cortex-A15). From architecture 6 on the linker makes it BE-8: big-endian data, and code that
 * it turns to little-endian as the last thing. With --be32, or for an older architecture, code stays big-endian too.
 */

--entry_point=start
--retain=*(.stack)          /* nothing refers to it */
--stack_size=0x1000

MEMORY { RAM (RWX) : origin = 0x40100000, length = 1M }

SECTIONS
{
    .text   : { *(.text.start) *(.text*) } > 0x40100000
    .rodata : { *(.rodata*) } > RAM
    .data   : { *(.data*) } > RAM
    .bss    : { *(.bss*) } > RAM, RUN_START(__bss_start), RUN_SIZE(__bss_size)
    .stack  : > RAM (HIGH)
}
