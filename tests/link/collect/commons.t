Common blocks go where ".bss:.common" goes: a specification for .bss takes them, else they have a section of that name.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .balign 4
    .word block, zeros
    .comm block, 16, 8
    .bss
zeros: .space 4
--- case with a specification
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x100  RAM : origin = 0x2000, length = 0x100 }
SECTIONS { .text : { *(.text*) } > ROM   mine : { *(.bss) } > RAM }
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- section
mine 0x2000 0x14
--- case without
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x100  RAM : origin = 0x2000, length = 0x100 }
SECTIONS { .text : { *(.text*) } > ROM }
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- readelf -S
.bss NOBITS
.bss:.common NOBITS
