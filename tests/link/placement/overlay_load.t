Of all that overlays each other, UNIONs within a UNION included, at most one object is loaded where it runs.
--- a.s
    .section .a, "aw"
    .global a, _start
_start:
a:  .word b, c
    .section .b, "aw"
    .global b
b:  .space 0x20
    .section .c, "aw"
    .global c
c:  .space 0x10
--- link.cmd
MEMORY { FLASH : origin = 0x0, length = 0x1000  RAM : origin = 0x20000000, length = 0x1000 }
SECTIONS { UNION { .a : {} UNION { .b : {} .c : {} LOAD > FLASH } } > RAM }
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- stderr has
warning: LOAD placement required for initialized object
   ".b".
--- segments
LOAD 0x20000000 0x0 0x10 0x10 RW
LOAD 0x20000000 0x10 0x20 0x20 RW
LOAD 0x20000000 0x20000000 0x8 0x8 RW
