/* Code in two parts of the RAM of virt, 64 MB apart. */

--entry_point=start
--retain=*(.stack)          /* nothing refers to it */
--stack_size=0x1000

MEMORY
{
    LOW (RWX)  : origin = 0x40100000, length = 1M
    HIGH (RWX) : origin = 0x44100000, length = 1M
}

SECTIONS
{
    .text   : { *(.text*) }   > LOW
    .rodata : { *(.rodata*) } > LOW
    .bss    : { *(.bss*) }    > LOW
    .stack  : > LOW
    .far    : { *(.far.*) }   > HIGH
}
