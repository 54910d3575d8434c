What is a root, what is kept with what, and what draws a message, one rule a case.
--- start.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
--- flags.s
    .global _start, dead
    .section .text._start, "ax"
    .thumb_func
_start: b anchor
    .section .text.anchor, "ax"
    .thumb_func
anchor: bx lr
    .section .data.refers, "aw"
    .word anchor
refers: .word 1
    .section .data.kept, "aw"
kept: .word 2
    .section .data.dead, "aw"
dead: .word 3
    .section .QV.section.flags, "", %progbits
    .byte 1, 0, 0, 0
    .space 16
    .long 10
    .short 1
    .byte 0, 0, 0, 0, 0, 0, 8, 0, 0, 2    @ by section: .text.anchor pulls in who refers to it, .data.kept stays
--- alias.s
    .global _start, real, other
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .section .data.real, "aw"
    .type real, %object
real: .word 1
    .section .data.other, "aw"
    .type other, %object
other: .word 2
    .section .QV.symbol.alias, "", %progbits
    .byte 1, 0, 0, 0
    .short 1
    .asciz "QV"
    .byte 12, 0, 0, 0, 11, 0, 0, 0    @ other is real
--- weakabs.s
    .global strong
    .weak feeble
    .set strong, 5
    .set feeble, 6
    .text
    nop
--- xref.s
    .section __QV_XREF, "a"
    .word 7
--- debugidx.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .section .debug_info, "", %progbits
info: .word _start
    .section .debug_line, "", %progbits
    .word info
    .section .debug_aranges, "", %progbits
    .word info
--- debugabs.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .section .debug_abs, "", %progbits
    .word there
    .section .debug_com, "", %progbits
    .word shared
--- absolute.s
    .global there
    .set there, 0x4000
--- common.s
    .section .data.user, "aw"
    .global user
user: .word shared
    .comm shared, 4, 4
--- exidx.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
    .fnstart
_start: bx lr
    .cantunwind
    .fnend
--- throw.s
    .global __cxa_throw
    .section .text.throw, "ax"
    .thumb_func
__cxa_throw: bx lr
--- group1.s
    .section .text.f, "axG", %progbits, sig, comdat
    .weak f
    .thumb_func
f:  bx lr
--- group2.s
    .section .text.f, "axG", %progbits, sig, comdat
    .weak f
    .thumb_func
f:  bx lr
.Lin: nop
    .section .encode, "a"
    .word .Lin
    .section .data.from, "aw"
    .global from
from: .word .Lin
--- encode.s
    .section .text.f, "axG", %progbits, sig, comdat
    .weak f
    .thumb_func
f:  bx lr
.Lin: nop
    .section .encode, "a"
    .global encode
encode: .word .Lin
--- chain.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .section .note.one, "ao", %progbits, .text._start
    .word two
    .section .data.two, "aw"
two: .word three
    .section .data.three, "aw"
three: .word 3
    .section .note.two, "ao", %progbits, .data.two
    .word 4
--- nonprog.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .balign 4
    .word note
    .section .strings, "", %3
note: .word 1
--- mapped.s
    .global _start, old
    .section .text._start, "ax"
    .thumb_func
_start: b old
    .section .text.old, "ax"
    .thumb_func
old: bx lr
--- new.s
    .global new
    .section .text.new, "ax"
    .thumb_func
new: bx lr
--- ok.cmd
--entry_point=_start
--diag_suppress=10151
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M   .data : { *(.data* .note* .encode __QV_XREF) } > M  .bss : > M }
--- noentry.cmd
MEMORY { M : origin = 0x1000, length = 0x1000 }
--- case sections that ask for it by their flags, and what refers to such a one
--- args
flags.o ok.cmd -o out.elf
--- bytes .data
0f100000 01000000 02000000
--- sym
dead -
--- case a section of aliases alone is no root
--- args
alias.o ok.cmd --unused_section_elimination=off -o out.elf
--- sym
real 0x1000 .data
--- bytes .data
01000000
--- case absolute symbols are roots, weak ones only in a partial link
--- args
start.o weakabs.o ok.cmd -o out.elf
--- sym
strong 5
feeble -
--- case in a partial link
--- args
start.o weakabs.o -r -o out.elf
--- sym
strong 5
feeble 6
--- case the cross-reference section is always a root
--- args
start.o xref.o ok.cmd -o out.elf
--- bytes __QV_XREF
07000000
--- case index sections live with the unit that they index, other debug sections don't
--- args
debugidx.o ok.cmd -o out.elf
--- section
.debug_info 0 4
.debug_aranges 0 4
.debug_line - -
--- case debug data lives with absolute symbols, and with common blocks that are live
--- args
debugabs.o absolute.o common.o ok.cmd -o out.elf
--- section
.debug_abs 0 4
.debug_com - -
.bss 0 0
--- case a live common block
--- args
debugabs.o absolute.o common.o ok.cmd --undef_sym=user -o out.elf
--- section
.debug_com 0 4
.bss 0x1000 4
--- case an index for unwinding, in a link where nothing can throw
--- args
exidx.o ok.cmd -o out.elf
--- section
.ARM.exidx - -
--- case where something can
--- args
exidx.o throw.o ok.cmd --undef_sym=__cxa_throw -o out.elf
--- section
.ARM.exidx 0x1004 8
--- case in a partial link it stays
--- args
exidx.o -r -o out.elf
--- readelf -SW
ARM_EXIDX
--- case a reference to what was discarded
--- args
start.o group1.o group2.o ok.cmd --undef_sym=from -o out.elf
--- exit
1
--- stderr
fatal error: relocation type "R_ARM_ABS32" in file "group2.o" at offset
   00000000 in section ".data.from" with id (8) references symbol "" in
   discarded section with id (5); references to this symbol from this location
   are not allowed
--- no-file out.elf
--- case the encoding section may refer to it
--- args
start.o group1.o encode.o ok.cmd --undef_sym=encode -o out.elf
--- sym
encode 0x1000 .data
--- case sections tied to a live one bring in what they refer to
--- args
chain.o ok.cmd -o out.elf
--- bytes .data
03000000 00100000 04100000
--- case a section that is not program data
--- args
nonprog.o ok.cmd -o out.elf
--- stderr
warning: linking in section .strings(nonprog.o), which does not contain program
   data
--- case a mapped name that its own file defines
--- args
mapped.o new.o ok.cmd --symbol_map=old=new -o out.elf
--- exit
1
--- stderr has
error: symbol "old" is mapped to symbol "new"; mapped symbol cannot have
definition and reference in the same file ("mapped.o")
--- case nothing is reached
--- args
start.o noentry.cmd -o out.elf
--- exit
1
--- stderr
error: no input section is linked in
warning: no suitable entry-point found; setting to 0
error: errors encountered during linking; "out.elf" not built
--- case nothing is reached, at length
--- args
start.o noentry.cmd --verbose_diagnostics -o out.elf
--- exit
1
--- stderr has
error: no input section is linked in; no section is linked in; this could
happen when no entry point is specified. Use -c or -cr to let the linker set
the boot routine as the entry point or use -e option to specify an entry
point
