An object that does not fit is reported with a table of the ranges, and what comes after it is still placed.
--- a.s
    .section .text.big, "ax"
    .space 0x200
    .section .text.small, "ax"
    .space 4
--- link.cmd
MEMORY { FLASH : origin = 0x0, length = 0x100 }
SECTIONS { .big : { *(.text.big) } > FLASH   .small : { *(.text.small) } > FLASH }
--- args
a.o link.cmd -o out.elf --unused_section_elimination=off
--- exit
1
--- stderr has
error: program will not fit into
FLASH        size: 0x100        unused: 0xfc         max hole: 0xfc
--- no-file out.elf
