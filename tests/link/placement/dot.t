Dot expressions advance within the section and keep the members in the written order.
--- a.s
    .section .text.p, "ax"
    .global p, _start
_start:
p:  .space 6
    .word q
    .section .text.q, "ax"
    .global q
q:  .space 0x20
--- link.cmd
MEMORY { FLASH : origin = 0x100, length = 0x1000 }
SECTIONS
{
    .text : { start_of_p = .; *(.text.p) . = 0x20; *(.text.q) . += 4; end_of_q = .; . = ALIGN(16); } > FLASH
}
--- case dot moves
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- section
.text 0x100 0x50
--- sym
p 0x100
q 0x120
start_of_p 0x100
end_of_q 0x144
--- case dot may not go back
--- back.cmd
MEMORY { FLASH : origin = 0x100, length = 0x1000 }
SECTIONS { .text : { *(.text.q) . = 0x10; *(.text.p) } > FLASH }
--- args
a.o back.cmd -o out.elf --entry_point=_start
--- exit
1
--- stderr has
error: assignment to '.' reduces the current section offset
from 0x20 to 0x10
--- no-file out.elf
