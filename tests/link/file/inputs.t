Files take their place in the link in the order in which they are named, by whatever road.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
--- b.s
    .global b
    .section .text.b, "ax"
    .thumb_func
b:  bx lr
--- c.s
    .global c
    .section .text.c, "ax"
    .thumb_func
c:  bx lr
    nop
--- ok.cmd
--entry_point=_start
--unused_section_elimination=off
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M }
--- archive lib.a c.o
--- d/readme
--- archive d/sub.a c.o
--- case an object named twice is linked once
--- args
a.o ok.cmd b.o ./b.o -o out.elf
--- section
.text 0x1000 4
--- case a pattern in the current folder
--- args
?.o ok.cmd -o out.elf
--- section
.text 0x1000 8
--- case a command file that names an object
--- more.cmd
b.o
--- args
a.o more.cmd ok.cmd -o out.elf
--- section
.text 0x1000 4
--- case a command file that names itself
--- loop.cmd
loop.cmd
--- args
a.o loop.cmd ok.cmd -o out.elf
--- exit
1
--- stderr re
.*error: command file "loop.cmd" names itself(.|\n)*"out.elf" not built\n
--- case a library from the search path
--- args
a.o ok.cmd -i d -l sub.a -u c -o out.elf
--- section
.text 0x1000 6
--- case the directories of the environment
--- env
C_DIR=nowhere ; d
--- args
a.o ok.cmd -l sub.a -u c -o out.elf
--- section
.text 0x1000 6
--- case a library that is not in the search path
--- args
a.o ok.cmd -l sub.a -o out.elf
--- exit
1
--- stderr has
error: cannot find file "sub.a"
--- no-file out.elf
--- case a group that is not closed
--- args
a.o ok.cmd --start-group lib.a -o out.elf
--- exit
1
--- stderr has
error: Reached end of options with missing --end-group.
--- case a group in a group, and an end too many
--- args
a.o ok.cmd --start-group lib.a --start-group --end-group --end-group -o out.elf
--- exit
1
--- stderr has
error: Nested --start-group options are not permitted.
error: Unmatched --end-group option (missing --start-group).
--- case an object in a group
--- args
a.o ok.cmd --start-group b.o lib.a --end-group -o out.elf
--- exit
1
--- stderr has
error: Attempted to add non archive file into group archive, specify it outside
--- no-file out.elf
