What stays undefined is listed with the file that first referred to it and no output is made; weak references may stay.
--- a.s
    .section .text._start, "ax"
    .globl _start
    .type _start, %function
    .thumb_func
_start:
    bl missing_function
    ldr r0, =missing_data
    bl perhaps
    .weak perhaps
--- link.cmd
MEMORY { M : origin = 0x100, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M }
--- args
a.o link.cmd -o out.elf --entry_point=_start -m out.map
--- exit
1
--- stderr

 undefined        first referenced
  symbol              in file
 ---------        ----------------
 missing_data     a.o
 missing_function a.o

error: unresolved symbols remain
error: errors encountered during linking; "out.elf" not built
--- no-file out.elf
--- file out.map
