A mapped reference behaves as if it had been written with the other name.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .balign 4
    .word old
--- new.s
    .global new
    new = 0x12345678
--- old.s
    .global old
    old = 0x9abcdef0
--- both.s
    .global old, _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .balign 4
    .word old
    .section .data.old, "aw"
old: .word 1
--- define.cmd
given = 0x44;
--- archive lib.a new.o
--- ok.cmd
--entry_point=_start
--diag_suppress=10151
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M   .data : { *(.data*) } > M }
--- case the mapped name is taken
--- args
a.o new.o old.o ok.cmd --symbol_map=old=new -o out.elf
--- bytes .text
7047 00bf 78563412
--- case an archive serves the mapped name
--- args
a.o lib.a ok.cmd --symbol_map=old=new -o out.elf
--- bytes .text
7047 00bf 78563412
--- case the other option
--- args
a.o new.o ok.cmd --remap_symref:old=new -o out.elf
--- bytes .text
7047 00bf 78563412
--- case two mappings of one name
--- args
a.o new.o ok.cmd --symbol_map=old=new --symbol_map=old=other -o out.elf
--- exit
1
--- stderr has
error: symbol "old" has conflicting mappings (previously mapped to "new")
--- case a name mapped to itself
--- args
a.o new.o ok.cmd --symbol_map=old=old -o out.elf
--- exit
1
--- stderr has
error: invalid parameter old=old to option --symbol_map
--- case text of another form
--- args
a.o new.o ok.cmd --symbol_map=old -o out.elf
--- exit
1
--- stderr has
error: invalid parameter old to option --symbol_map
--- case text behind the form
--- args
a.o new.o ok.cmd --symbol_map=old=new=old -o out.elf
--- exit
1
--- stderr has
error: invalid parameter old=new=old to option --symbol_map
--- case a name maps once only
--- args
a.o new.o ok.cmd --symbol_map=old=middle --symbol_map=middle=new -o out.elf
--- exit
1
--- stderr has
 old       a.o
--- case what a command file defines serves too
--- args
a.o define.cmd ok.cmd --symbol_map=old=given -o out.elf
--- bytes .text
7047 00bf 44000000
--- case definition and reference in one file
--- args
both.o new.o ok.cmd --symbol_map=old=new -o out.elf
--- exit
1
--- stderr has
error: symbol "old" is mapped to symbol "new"; mapped symbol cannot have
