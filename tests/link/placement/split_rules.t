How the members of a split section spread: in which hole, range and block each stands, and which of them stay one section.
--- a.s
    .macro make name, size, align=4
    .section .\name, "ax"
    .globl \name
    .balign \align
\name: .space \size
    .endm
    .section .p, "ax"
    .balign 4
    .globl p, _start
_start:
p:  .space 0x10
    make q, 0x18
    make r, 0x20
    make u, 0x11, 1
    make v, 0x10, 8
    make w, 0x8, 16
--- args
a.o link.cmd -o out.elf -e _start --unused_section_elimination=off
--- case what fits stays one section, larger members first
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x100  B : origin = 0x800, length = 0x40 }
SECTIONS { .t : { *(.p) *(.q) *(.r) } >> A | B .o : { *(.u) *(.v) *(.w) } > B }
--- section
.t 0x100 0x48
--- sym
r 0x100
q 0x120
p 0x138
--- case a gap of 7 bytes keeps a section whole, one of 8 doesn't
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x100  B : origin = 0x800, length = 0x100 }
SECTIONS { .t : { *(.u) *(.v) } >> A  .s : { *(.q) *(.w) } >> B  .o : { *(.p) *(.r) } > A }
--- section
.o 0x100 0x30
.t 0x130 0x28
.s.1 0x800 0x18
.s.2 0x820 0x8
--- case over all ranges with the attributes, in the order of the map
--- link.cmd
MEMORY { B (RX) : origin = 0x800, length = 0x28  A (RX) : origin = 0x100, length = 0x30
         C (RW) : origin = 0x4000, length = 0x100 }
SECTIONS { .t : { *(.p) *(.q) *(.r) } >> (RX)  .o : { *(.u) *(.v) *(.w) } > C }
--- section
.t.1 0x100 0x30
.t.2 0x800 0x18
--- sym
r 0x100
p 0x120
q 0x800
--- case no member leaves its block
--- link.cmd
MEMORY { A : origin = 0x108, length = 0x100  C : origin = 0x4000, length = 0x100 }
SECTIONS { .t : BLOCK(0x20) { *(.p) *(.q) *(.r) } >> A  .o : { *(.u) *(.v) *(.w) } > C }
--- sym
q 0x108
r 0x120
p 0x140
--- section
.t 0x108 0x48
--- case one that is larger than a block takes as many as it needs, from the start of one
--- link.cmd
MEMORY { A : origin = 0x110, length = 0x100  C : origin = 0x4000, length = 0x100 }
SECTIONS { .t : BLOCK(0x10) { *(.p) *(.q) *(.r) } >> A  .o : { *(.u) *(.v) *(.w) } > C }
--- sym
p 0x110
r 0x120
q 0x140
--- case blocks go on in the next range
--- link.cmd
MEMORY { A : origin = 0x110, length = 0x28  B : origin = 0x810, length = 0x100  C : origin = 0x4000, length = 0x100 }
SECTIONS { .t : BLOCK(0x20) { *(.p) *(.q) *(.r) } >> A | B  .o : { *(.u) *(.v) *(.w) } > C }
--- sym
p 0x110
q 0x120
r 0x820
--- case blocks within blocks: what the inner split placed is behind the outer one
--- big.s
    .section .c, "ax"
    .balign 4
    .globl c
c:  .space 0x50
    .section .d, "ax"
    .balign 4
    .globl d
d:  .space 0x90
--- args
a.o big.o link.cmd -o out.elf -e _start --unused_section_elimination=off
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x200  C : origin = 0x4000, length = 0x100 }
SECTIONS { GROUP { .t : BLOCK(0x10) { *(.c) *(.d) } } BLOCK(0x40) >> A
  .o : { *(.p) *(.q) *(.r) *(.u) *(.v) *(.w) } > C }
--- section
.t.1 0x100 0x50
.t.2 0x180 0x90
--- case split where it runs, whole where it is loaded, in the order of the run addresses
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x30  B : origin = 0x800, length = 0x40  ROM : origin = 0x1000, length = 0x48
         C : origin = 0x4000, length = 0x100 }
SECTIONS { .t : { *(.p) *(.q) *(.r) } run >> A | B, load > ROM  .o : { *(.u) *(.v) *(.w) } > C }
--- segments
LOAD 0x100 0x1000 0x30 0x30 RX
LOAD 0x800 0x1030 0x18 0x18 RX
LOAD 0x4000 0x4000 0x38 0x38 RX
--- case whole where it runs, split where it is loaded
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x30  B : origin = 0x800, length = 0x40  RAM : origin = 0x1000, length = 0x48
         C : origin = 0x4000, length = 0x100 }
SECTIONS { .t : { *(.p) *(.q) *(.r) } load >> A | B, run > RAM  .o : { *(.u) *(.v) *(.w) } > C }
--- section
.t.1 0x1000 0x28
.t.2 0x1028 0x20
--- segments
LOAD 0x1000 0x100 0x28 0x28 RX
LOAD 0x1028 0x800 0x20 0x20 RX
LOAD 0x4000 0x4000 0x38 0x38 RX
--- case a group that is split splits its sections too, and doesn't keep their order
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x30  B : origin = 0x800, length = 0x40  C : origin = 0x4000, length = 0x100 }
SECTIONS { GROUP { .g2 : { *(.p) }  .g1 : { *(.q) *(.r) } } >> A | B  .o : { *(.u) *(.v) *(.w) } > C }
--- section
.g1.1 0x100 0x20
.g2 0x120 0x10
.g1.2 0x800 0x18
--- case a section that takes no memory isn't split, without a word
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x20  B : origin = 0x800, length = 0x40  C : origin = 0x4000, length = 0x100 }
SECTIONS { .t : { *(.p) *(.q) *(.r) } type = COPY, >> A | B  .o : { *(.u) } > A  .s : { *(.v) *(.w) } > C }
--- section
.t 0x100 0x48
.o 0x100 0x11
--- case a member that finds no room fails the section; what has a place keeps it, and others find theirs
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x20  B : origin = 0x800, length = 0x14  C : origin = 0x4000, length = 0x100 }
SECTIONS {
    .t : { *(.p) *(.q) *(.r) } >> A | B
    .o : { *(.u) } > A
    .s : { *(.v) *(.w) } > C }
--- exit
1
--- stderr
"link.cmd", line 3: error: program will not fit into available memory. 
   placement with alignment fails for section ".t" size 0x51 .  Available
   memory ranges:
   
   A            size: 0x20         unused: 0xf          max hole: 0xf       
   B            size: 0x14         unused: 0x4          max hole: 0x4       
error: errors encountered during linking; "out.elf" not built
