--dependency_file names every file that the link has read, for make and ninja, when the link has succeeded.
--- a.s
    .global start
    .section .text, "ax"
start:
    bl far
--- far.s
    .global far
    .section .text, "ax"
far:
    bx lr
--- archive lib$x.a far.o
--- link.cmd
-e start
#include "memory#1.h"
--- memory#1.h
MEMORY { ROM : origin = 0x100, length = 0x100 }
--- case all names
--- args
a.o 'lib$x.a' link.cmd -o out.elf --dependency_file=out.d -m out.map
--- text out.d
out.elf: \
  a.o \
  lib$$x.a \
  link.cmd \
  memory\#1.h

a.o:

lib$$x.a:

link.cmd:

memory\#1.h:
--- file out.elf
--- case not after an error
--- args
a.o -e start -o out.elf --dependency_file=out.d
--- exit
1
--- stderr has
error: unresolved symbols remain
error: errors encountered during linking; "out.elf" not built
--- no-file out.d
