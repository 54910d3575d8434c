In the ranges of an ALIAS block nothing is loaded, and what has no data keeps none.
--- a.s
    .section .bss.a, "aw", %nobits
    .global a
a:  .space 1
    .section .bss.b, "aw", %nobits
    .balign 4
    .global b
b:  .space 0x30
    .section .data.c, "aw"
    .global c
c:  .space 0x40
    .section .data.d, "aw"
    .balign 32
    .global d
d:  .space 0x20
    .section .text, "ax"
    .global _start
_start: .word a, b, c, d
--- case a group of uninitialized sections with a gap
--- group.cmd
MEMORY { FLASH : origin = 0x0, length = 0x1000 ALIAS { P : origin = 0x50000000 Q : origin = 0x60000000 } LENGTH = 0x100 }
SECTIONS { .text : > FLASH  .data : { *(.data*) } > FLASH
           GROUP { .bss : { *(.bss.a) *(.bss.b) } } > Q }
--- args
a.o group.cmd -o out.elf --entry_point=_start
--- readelf -SW
.bss NOBITS 60000000
--- case a split load
--- load.cmd
MEMORY { FLASH : origin = 0x0, length = 0x40 ALIAS { P : origin = 0x50000000 Q : origin = 0x60000000 } LENGTH = 0x100 }
SECTIONS { .text : > FLASH   .bss : { *(.bss*) } > P
           .data : { *(.data.c) . = ALIGN(32); *(.data.d) } LOAD >> Q | FLASH, RUN > Q (HIGH) }
--- args
a.o load.cmd -o out.elf --entry_point=_start
--- exit
1
--- stderr has
error: ALIAS'ed memory range, Q, may only be used for
--- no-file out.elf
