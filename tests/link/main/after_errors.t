Errors are counted and the link goes on: the map is still written, the output is not.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
--- ok.cmd
--entry_point=_start
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M }
--- case a file that is missing
--- args
a.o nowhere.o ok.cmd -o out.elf -m out.map
--- exit
1
--- stderr
error: cannot find file "nowhere.o"
error: errors encountered during linking; "out.elf" not built
--- text out.map has
.text
--- no-file out.elf
--- case an output that stands there from before
--- out.elf
old
--- args
a.o nowhere.o ok.cmd -o out.elf
--- exit
1
--- stderr has
error: errors encountered during linking; "out.elf" not built
--- no-file out.elf
--- case no error
--- args
a.o ok.cmd -o out.elf -m out.map
--- entry
0x1001
--- file out.map
