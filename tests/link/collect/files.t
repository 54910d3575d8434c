A file pattern limits a specification to files; only section patterns rank, so equal ones go to the first.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .balign 4
    .word other, stuff
    .section .text, "ax"
    .word 0xa
    .data
    .global stuff
stuff: .word 0xda
--- b.s
    .section .text, "ax"
    .global other
other: .word 0xb
--- c.s
    .section .text.member, "ax"
    .global other
other: .word 0xc
--- archive lib.a c.o
--- case the second of two equal patterns gets nothing
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000 }
SECTIONS {
    any : { *(.text*) } > ROM
    ofb : { b.o(.text*) } > ROM
}
--- args
a.o b.o link.cmd -o out.elf --entry_point=_start
--- stderr has
"link.cmd", line 4: warning: section specifier matches no sections
--- section
ofb 0 0
--- case written first, a file takes its own
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000 }
SECTIONS {
    ofb : { b.o(.text*) } > 0x200
    any : { *(.text*) } > 0x300
}
--- args
a.o b.o link.cmd -o out.elf --entry_point=_start
--- section
ofb 0x200 0x4
--- bytes ofb
0b000000
--- case a file without a section list gives all its sections
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000 }
SECTIONS { ofb : { b.o } > 0x200 }
--- args
a.o b.o link.cmd -o out.elf --entry_point=_start
--- section
ofb 0x200 0x4
--- case a star without a section list gives none
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000 }
SECTIONS { none : { * } > 0x200 }
--- args
a.o b.o link.cmd -o out.elf --entry_point=_start
--- stderr
"link.cmd", line 2: warning: no matching section
--- section
none 0 0
--- case members of an archive
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000 }
SECTIONS { ofc : { lib.a<c.o> } > 0x200 }
--- args
a.o lib.a link.cmd -o out.elf --entry_point=_start
--- section
ofc 0x200 0x4
--- bytes ofc
0c000000
