What no file defines is listed with the file that wants it first, and no output is left; weak references are zero.
--- a.s
    .syntax unified
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bl zulu
    bl alpha
    bl zulu
    bx lr
--- b.s
    .syntax unified
    .global b
    .section .text.b, "ax"
    .thumb_func
b:  bl zulu
    bx lr
--- dead.s
    .section .text.dead, "ax"
    .word never
--- weak.s
    .syntax unified
    .global _start
    .weak maybe
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .word maybe
--- cxx.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .word _ZN3foo3barEi
--- ok.cmd
--entry_point=_start
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M }
--- case two undefined names, in name order
--- args
a.o b.o ok.cmd -o out.elf --undef_sym=b
--- exit
1
--- stderr

 undefined first referenced
  symbol       in file
 --------- ----------------
 alpha     a.o
 zulu      a.o

error: unresolved symbols remain
error: errors encountered during linking; "out.elf" not built
--- no-file out.elf
--- case a name that only the command line wants has no file
--- args
weak.o ok.cmd -o out.elf --undef_sym=ghost
--- exit
1
--- stderr

 undefined first referenced
  symbol       in file
 --------- ----------------
 ghost

error: unresolved symbols remain
error: errors encountered during linking; "out.elf" not built
--- case what nothing reaches needs no definition
--- args
weak.o dead.o ok.cmd -o out.elf
--- sym
never -
--- case a weak reference that nothing defines is zero
--- args
weak.o ok.cmd -o out.elf
--- bytes .text
7047 00000000
--- case names are shown as the source has them
--- args
cxx.o ok.cmd -o out.elf
--- exit
1
--- stderr has
foo::bar(int)
error: unresolved symbols remain
--- case or as they stand
--- args
cxx.o ok.cmd -o out.elf --no_demangle
--- exit
1
--- stderr has
_ZN3foo3barEi
error: unresolved symbols remain
