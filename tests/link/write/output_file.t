The output takes its name when it is complete, executable; what cannot be written is said so, and nothing is left.
--- a.s
    .section .text._start, "ax"
    .globl _start
    .type _start, %function
    .thumb_func
_start: bx lr
--- link.cmd
MEMORY { M : origin = 0x100, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M }
--- case no_folder
--- args
a.o link.cmd -o nowhere/out.elf --entry_point=_start
--- exit
1
--- stderr
fatal error: cannot open output file "nowhere/out.elf" for writing
--- case in_place_of_another
--- out.elf
an older file
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- entry
0x101
--- case a_device
--- args
a.o link.cmd -o /dev/null --entry_point=_start
--- case a_file_for_a_further_link_that_is_relocated_all_the_same
--- args
a.o -r --force_reloc -o out.elf
--- stderr
warning: output file "out.elf" cannot be loaded and run on a target system
--- readelf -h
Type: REL
