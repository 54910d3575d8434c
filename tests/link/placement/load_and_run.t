A section with two addresses is placed twice with one inner layout. Its load image competes by size like any other.
--- a.s
    .section .data.big, "aw"
    .balign 4
    .global big
big: .space 0x20
    .section .data.small, "aw"
    .balign 8
    .global small
small: .word big
    .section .text, "ax"
    .global _start
_start: .word small, load_of_data, run_of_data, size_of_data
--- link.cmd
MEMORY
{
    FLASH : origin = 0x0,        length = 0x1000
    RAM   : origin = 0x20000000, length = 0x1000
}
SECTIONS
{
    .text : > FLASH
    .data : { *(.data*) } load = FLASH, run = RAM,
            LOAD_START(load_of_data), RUN_START(run_of_data), SIZE(size_of_data)
}
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- section
.text 0x24 0x10
.data 0x20000000 0x24
--- sym
big 0x20000000 .data
small 0x20000020 .data
load_of_data 0x0
run_of_data 0x20000000
size_of_data 0x24
