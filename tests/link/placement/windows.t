Where objects stand that share addresses with others or take no memory: alias windows, pages, section types, loose order.
--- a.s
    .macro make name, size, flags, type
    .section .\name, "\flags", %\type
    .globl \name
    .balign 4
\name: .space \size
    .endm
    .section .p, "ax"
    .balign 4
    .globl p, _start
_start:
p:  .space 0x10
    make q, 0x18, ax, progbits
    make r, 0x20, ax, progbits
    make y, 0x20, aw, nobits
    make z, 0x30, aw, nobits
--- args
a.o link.cmd -o out.elf -e _start --unused_section_elimination=off
--- case an address in the second window is one in the first
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x100
         ALIAS { ONE : origin = 0x10000000  TWO : origin = 0x20000000 } LENGTH = 0x100 }
SECTIONS { .t : { *(.p) *(.q) *(.r) } > A
  .y : {} > 0x20000010
  .z : {} > ONE }
--- section
.y 0x20000010 0x20
.z 0x10000030 0x30
--- case both windows in one list: the first memory of it, under the name that was asked for first
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x100
         ALIAS { ONE : origin = 0x10000000  TWO : origin = 0x20000000 } LENGTH = 0x38 }
SECTIONS { .t : { *(.p) *(.q) *(.r) } > A
  .z : {} > TWO | ONE
  .y : {} > ONE | A }
--- section
.z 0x20000000 0x30
.y 0x148 0x20
--- case what is split has the part that stands in a window under the name that was asked for
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x100  B : origin = 0x30000000, length = 0x100
         ALIAS { ONE : origin = 0x10000000  TWO : origin = 0x20000000 } LENGTH = 0x40 }
SECTIONS { .t : { *(.p) *(.q) *(.r) } > A
  .b : { *(.y) *(.z) } >> TWO | B }
--- section
.b.1 0x20000000 0x30
.b.2 0x30000000 0x20
--- case each object has an address in both, a group with all its members
--- args
a.o link.cmd -o out.elf -e _start --unused_section_elimination=off --debug:map
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x100
         ALIAS { ONE : origin = 0x10000000  TWO : origin = 0x20000000 } LENGTH = 0x100 }
SECTIONS { .t : { *(.p) *(.q) *(.r) } > A
  GROUP { .y : {} .z : {} } > TWO }
--- stdout has
.y (A) 0x10000000 0x1000001f 0x20
.z (A) 0x10000020 0x1000004f 0x30
.y (R) 0x20000000 0x2000001f 0x20
.z (R) 0x20000020 0x2000004f 0x30
--- section
.y 0x20000000 0x20
.z 0x20000020 0x30
--- case the empty sections of files may stand in a window that is the first memory
--- link.cmd
MEMORY { ALIAS { ONE : origin = 0x0  TWO : origin = 0x20000000 } LENGTH = 0x100  A : origin = 0x1000, length = 0x100 }
SECTIONS { .t : { *(.p) *(.q) *(.r) } > A  .y : {} > TWO  .z : {} > ONE }
--- section
.z 0x0 0x30
.y 0x20000030 0x20
--- case nothing is loaded in a window, whichever was asked for
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x100
         ALIAS { ONE : origin = 0x10000000  TWO : origin = 0x20000000 } LENGTH = 0x100 }
SECTIONS {
  .p : {} > ONE
  .q : {} > TWO
  .r : {} load > TWO, run > A
  .b : { *(.y) *(.z) } > TWO }
--- exit
1
--- stderr
"link.cmd", line 6: error: ALIAS'ed memory range, TWO, may only be used for run
   placement and not for load placement for ".r".
"link.cmd", line 4: error: ALIAS'ed memory range, ONE, may only be used for run
   placement and not for load placement for ".p".
"link.cmd", line 5: error: ALIAS'ed memory range, TWO, may only be used for run
   placement and not for load placement for ".q".
error: errors encountered during linking; "out.elf" not built
--- case pages are memories of their own; a load image follows the page of its run image
--- link.cmd
MEMORY { PAGE 0 : A : origin = 0x100, length = 0x100  B : origin = 0x1000, length = 0x100
         PAGE 1 : A : origin = 0x100, length = 0x100  C : origin = 0x200, length = 0x100 }
SECTIONS {
  .p : {} > A
  .q : {} > A PAGE 1
  .y : {} PAGE 1
  .r : {} run > C PAGE 1, load > A, load_start(loaded)
  .z : {} > B }
--- section
.p 0x100 0x10
.q 0x120 0x18
.y 0x138 0x20
.r 0x200 0x20
--- sym
loaded 0x100
--- case a range that another page has is not found
--- link.cmd
MEMORY { PAGE 0 : A : origin = 0x100, length = 0x100  PAGE 1 : C : origin = 0x200, length = 0x100 }
SECTIONS {
  .p : { *(.p) *(.q) *(.r) *(.y) } > A
  .z : {} > A PAGE 1 }
--- exit
1
--- stderr
"link.cmd", line 4: warning: memory range not found: A on page 1
"link.cmd", line 4: error: no valid memory range available for placement of
   ".z"
error: errors encountered during linking; "out.elf" not built
--- case COPY and DSECT take nothing of the range at whose start they lie, HIGH or not; NOLOAD takes its place without data
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x58  B : origin = 0x200, length = 0x100 }
SECTIONS {
  .p : {} type = COPY, > A
  .q : {} type = DSECT, > 0x108
  .z : {} type = DSECT, > A (HIGH)
  .r : {} type = NOLOAD, > A
  .y : {} > A }
--- section
.p 0x100 0x10
.q 0x108 0x18
.z 0x100 0x30
.r 0x100 0x20
.y 0x120 0x20
--- readelf -S
.r NOBITS
--- case a COPY section can be as large as it likes
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x20  B : origin = 0x200, length = 0x100 }
SECTIONS { .c : { *(.p) *(.q) *(.r) } type = COPY, > A
  .y : {} > A  .z : {} > B }
--- section
.c 0x100 0x48
.y 0x100 0x20
--- case the specifications of a section keep their order
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x100  B : origin = 0x800, length = 0x100 }
SECTIONS { .t : { *(.p) *(.r) *(.q) } > A  .b : { *(.y) *(.z) } > B }
--- sym
p 0x100
r 0x110
q 0x130
y 0x800
z 0x820
--- case declared unordered they go by size
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x100  B : origin = 0x800, length = 0x100 }
SECTIONS { .t : unordered() { *(.p) *(.r) *(.q) } > A  .b : unordered() { *(.y) *(.z) } > B }
--- sym
r 0x100
q 0x120
p 0x138
z 0x800
y 0x830
--- case unordered, but not past a dot expression
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x100  B : origin = 0x800, length = 0x100 }
SECTIONS { .t : unordered() { *(.p) . += 8; *(.q) *(.r) } > A  .b : { *(.y) *(.z) } > B }
--- sym
p 0x100
r 0x118
q 0x138
y 0x800
--- case a load image at the top of its range has the layout of the run image
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x102  B : origin = 0x200c, length = 0x100 }
SECTIONS { .t : { *(.p) *(.q) *(.r) } load > A (HIGH), run > B, ALIGN(16), load_start(loaded)
  .y : {} > A  .z : {} > B }
--- section
.t 0x2010 0x48
.y 0x100 0x20
.z 0x2058 0x30
--- sym
loaded 0x1b0
--- case a power of two raises size and alignment, of the load image too
--- link.cmd
MEMORY { A : origin = 0x104, length = 0x200  B : origin = 0x2004, length = 0x200 }
SECTIONS { .t : { *(.p) *(.q) *(.r) } PALIGN(POWER2), load > A, run > B, load_start(loaded)
  .y : {} > A  .z : {} PALIGN(POWER2), > B }
--- section
.t 0x2080 0x80
.z 0x2040 0x40
.y 0x104 0x20
--- sym
loaded 0x180
