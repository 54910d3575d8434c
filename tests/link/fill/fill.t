Unwritten memory gets the fill of its section, else of its range, else the default; a filled range is filled throughout.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .section .text.b, "ax"
    .balign 8
b:  .word 0x55555555
    .section .text._start
    .balign 4
    .word b
--- case the default fill is 0
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x20 }
SECTIONS { .text : { *(.text._start) . += 8; *(.text.b) } > ROM }
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- bytes .text
704700bf 10010000 00000000 00000000 55555555
--- case the option sets the default
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x20 }
SECTIONS { .text : { *(.text._start) . += 8; *(.text.b) } > ROM }
--- args
a.o link.cmd -o out.elf --entry_point=_start --fill_value=0xAABBCCDD
--- bytes .text
704700bf 10010000 ddccbbaa ddccbbaa 55555555
--- case the fill of the section comes first
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x20, fill = 0xEE }
SECTIONS { .text : { *(.text._start) . += 8; *(.text.b) } fill = 0x1234 > ROM }
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- bytes .text
704700bf 10010000 34123412 34123412 55555555
--- case a range with a fill is filled throughout
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x20, fill = 0xEE }
SECTIONS { .text : { *(.text._start) . += 8; *(.text.b) } fill = 0x1234 > ROM }
--- section
$fill000 0x114 0xc
--- bytes $fill000
eeeeeeee eeeeeeee eeeeeeee
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- case the pattern is anchored to addresses
--- link.cmd
MEMORY { ROM : origin = 0x102, length = 0x20, fill = 0x11223344 }
SECTIONS { .text : { *(.text*) } > 0x108 }
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- section
$fill000 0x102 0x6
--- bytes $fill000
2211 44332211
