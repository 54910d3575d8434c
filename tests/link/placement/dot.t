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
--- case what is wrong with an assignment is said once, however many holes are tried
--- once.cmd
MEMORY { A : origin = 0x102, length = 0x2a  B : origin = 0x202, length = 0x2a  C : origin = 0x300, length = 0x1000 }
SECTIONS {
    .text : { *(.text.p) . = 11;
        . = ALIGN(5);
        . = 4;
        . += nobody;
        *(.text.q) } > A | B | C
}
--- odd.s
    .section .text.q, "ax"
    .balign 4
--- args
a.o odd.o once.cmd -o out.elf --entry_point=_start
--- exit
1
--- stderr
"once.cmd", line 6: error: undefined symbol "nobody" used in expression
"once.cmd", line 4: error: illegal alignment value:  power of 2 required
"once.cmd", line 5: error: assignment to '.' reduces the current section offset
   from 0xb to 0x4
error: errors encountered during linking; "out.elf" not built
--- no-file out.elf
--- case dot may not go below the section either
--- below.cmd
MEMORY { FLASH : origin = 0x100, length = 0x1000 }
SECTIONS { .text : { . -= 8; *(.text.q) *(.text.p) } > FLASH }
--- args
a.o below.cmd -o out.elf --entry_point=_start
--- exit
1
--- stderr
"below.cmd", line 2: error: assignment to '.' reduces the current section
   offset from 0 to 0xfffffffffffffff8
error: errors encountered during linking; "out.elf" not built
--- no-file out.elf
--- case a section larger than a file of 32 bits can say
--- large.cmd
MEMORY { ALL : origin = 0, length = 0x400000000 }
SECTIONS { .text : { *(.text.q) *(.text.p) } > ALL  .large : { . += 0x100000000; } > ALL }
--- args
a.o large.cmd -o out.elf --entry_point=_start
--- exit
1
--- stderr has
"large.cmd", line 2: error: the size of ".large", 0x100000000, is more than an
output file can hold
--- no-file out.elf
--- case an object at the end of the address space
--- end.cmd
MEMORY { FLASH : origin = 0x100, length = 0x1000 }
SECTIONS { .text : { *(.text.q) *(.text.p) } > 0xFFFFFFFFFFFFFFFF }
--- args
a.o end.cmd -o out.elf --entry_point=_start
--- exit
1
--- stderr has
warning: specified address lies outside memory map
error: program will not fit into available memory.
--- no-file out.elf
