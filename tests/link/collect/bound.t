A section that its file binds to an address has an output section of its own there, and memory where the map has none.
--- a.s
    .global _start, at
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .balign 4
    .word at
    .section .fixed, "aw"
at: .word 0x11223344
    @ One flag byte for each of 12 sections; 4 in that of .fixed, the sixth, binds it; its address is
    @ written into the header.
    .section .QV.section.flags, "", %0x7f000005
    .byte 1, 0, 0, 0
    .space 16
    .byte 12, 0, 0, 0
    .byte 1, 0
    .byte 0, 0, 0, 0, 0, 0, 4, 0, 0, 0, 0, 0
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > ROM  .mine : { *(.fixed) } > ROM }
--- case outside of the map
--- patch a.o 0x2d4 00000020
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- section
.fixed 0x20000000 4
.mine 0 0
--- bytes .text
704700bf 00000020
--- stderr
"link.cmd", line 2: warning: no matching section
--- case outside of the map, and told so
--- patch a.o 0x2d4 00000020
--- args
a.o link.cmd -o out.elf --entry_point=_start --warn_sections
--- section
.fixed 0x20000000 4
--- stderr
"link.cmd", line 2: warning: no matching section
warning: creating memory range $BOUND$0x20000000 to accommodate BOUND section
   ".fixed"
--- case within a range
--- patch a.o 0x2d4 00080000
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- section
.fixed 0x800 4
--- stderr
"link.cmd", line 2: warning: no matching section
--- case across the end of a range
--- patch a.o 0x2d4 fe100000
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- exit
1
--- stderr has
error: BOUND section ".fixed" spans the boundary of an existing memory range
--- no-file out.elf
