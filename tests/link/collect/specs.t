The narrowest section pattern takes a section; among equal patterns the first written one does; what none takes joins its name.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .balign 4
    .word hot, cold, plain, colon
    .section .text.hot, "ax"
hot: .word 0x11111111
    .section .text.cold, "ax"
cold: .word 0x22222222
    .section .text, "ax"
plain: .word 0x33333333
    .section ".text:colon", "ax"
colon: .word 0x44444444
--- case a narrower pattern wins whatever the order
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000 }
SECTIONS {
    first : { *(.text*) } > 0x200
    second : { *(.text.hot) } > 0x400
}
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- section
first 0x200 0x20
second 0x400 0x4
--- bytes second
11111111
--- case with the option on the first one written wins
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000 }
SECTIONS {
    first : { *(.text*) } > 0x200
    second : { *(.text.hot) } > 0x400
}
--- args
a.o link.cmd -o out.elf --entry_point=_start --match_first_section_spec=on
--- section
first 0x200 0x24
--- stderr has
"link.cmd", line 4: warning: section specifier matches no sections; potential
section specifier at "link.cmd", line 3
--- case a literal name takes its subsections and nothing longer
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000 }
SECTIONS {
    rest : { *(.text.*) } > 0x200
    plain : { *(.text) } > 0x400
}
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- section
rest 0x200 0x1c
plain 0x400 0x8
--- case an output section takes what bears its name behind what its body says
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000 }
SECTIONS {
    hot : { *(.text.hot) } > 0x400
    .text : > 0x500
}
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- section
hot 0x400 0x4
.text 0x500 0x8
.text.cold 0x114 0x4
--- case a pattern that nothing matches is told
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000 }
SECTIONS { all : { *(.text*) *(.nothing) } > ROM }
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- section
all 0x100 0x24
--- stderr
"link.cmd", line 2: warning: no matching section
