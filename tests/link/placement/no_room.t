An object that does not fit is reported with a table of the ranges, and what comes after it is still placed.
--- a.s
    .section .text.big, "ax"
    .space 0x200
    .section .text.small, "ax"
    .space 4
--- link.cmd
MEMORY { FLASH : origin = 0x0, length = 0x100 }
SECTIONS { .big : { *(.text.big) } > FLASH   .small : { *(.text.small) } > FLASH }
--- case one of two finds no room
--- args
a.o link.cmd -o out.elf --unused_section_elimination=off
--- exit
1
--- stderr has
error: program will not fit into
FLASH        size: 0x100        unused: 0xfc         max hole: 0xfc
--- no-file out.elf
--- case no range of the page
--- page.cmd
MEMORY { PAGE 1 : FLASH : origin = 0x0, length = 0x100 }
SECTIONS { .big : { *(.text.big) } PAGE 0   .small : { *(.text.small) } PAGE 0 }
--- args
a.o page.cmd -o out.elf --unused_section_elimination=off
--- exit
1
--- stderr has
"page.cmd", line 2: error: no valid memory range available for placement of
   ".big"
"page.cmd", line 2: error: no valid memory range available for placement of
   ".small"
error: errors encountered during linking; "out.elf" not built
--- no-file out.elf
--- case an address where only an object stands that found no room
--- over.cmd
MEMORY { FLASH : origin = 0x0, length = 0x100 }
SECTIONS { .big : { *(.text.big) } > 0x80
    .small : { *(.text.small) } > 0x200 }
--- args
a.o over.cmd -o out.elf --unused_section_elimination=off
--- exit
1
--- stderr has
"over.cmd", line 2: error: program will not fit into available memory.
"over.cmd", line 3: warning: specified address lies outside memory map
error: errors encountered
--- no-file out.elf
--- case addresses of more than 32 bits
--- high.cmd
MEMORY { FLASH : origin = 0x0, length = 0x1000  FAR : origin = 0xFFFFFF00, length = 0x1000 }
SECTIONS {
    .small : { *(.text.small) } > 0x100000000
    .big : { *(.text.big) } LOAD > FAR, RUN > FLASH
}
--- args
a.o high.cmd -o out.elf --unused_section_elimination=off
--- exit
1
--- stderr has
"high.cmd", line 3: error: ".small", at 0x100000000 with the size 0x4, lies
   outside of the 32-bit address space
"high.cmd", line 4: error: ".big", at 0x100000004 with the size 0x200, lies
   outside of the 32-bit address space
error: errors encountered during linking; "out.elf" not built
--- no-file out.elf
