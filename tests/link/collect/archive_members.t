Members of an archive are named in angle brackets, several as alternatives; patterns speak of base or full names.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .balign 4
    .word one, two, three
--- one.s
    .section .text.one, "ax"
    .global one
one: .word 1
--- two.s
    .section .text.two, "ax"
    .global two
two: .word 2
--- three.s
    .section .text.three, "ax"
    .global three
three: .word 3
--- sub/readme
The archive stands in this folder.
--- archive sub/lib.a one.o two.o three.o
--- case two members of three
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000 }
SECTIONS {
    some : { sub/lib.a<one.o, three.o>(.text*) } > 0x200
    rest : { *(.text*) } > 0x300
}
--- args
a.o sub/lib.a link.cmd -o out.elf --entry_point=_start
--- bytes some
01000000 03000000
--- section
rest 0x300 0x14
--- case members by patterns, archives by base name
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000 }
SECTIONS {
    some : { lib*.a<t*>(.text*) } > 0x200
    none : { *.x<t*>(.text*) *<a.o>(.text*) } > 0x280
    rest : { *(.text*) } > 0x300
}
--- args
a.o sub/lib.a link.cmd -o out.elf --entry_point=_start
--- section
some 0x200 0x8
none 0 0
rest 0x300 0x14
--- stderr
"link.cmd", line 4: warning: no matching section
"link.cmd", line 4: warning: no matching section
--- case an archive that only a specification names takes part
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000 }
SECTIONS {
    all : { sub/lib.a } > 0x200
    rest : { a.o(.text*) } > 0x300
}
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- section
all 0x200 0xc
rest 0x300 0x10
--- case a section list is narrower than none, whatever the files
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000 }
SECTIONS {
    all : { sub/lib.a } > 0x200
    rest : { *(.text*) } > 0x300
}
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- section
all 0 0
rest 0x300 0x1c
--- stderr
"link.cmd", line 3: warning: section specifier matches no sections; potential
   matches are consumed by section specifier at "link.cmd", line 4
