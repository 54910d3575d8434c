Of two objects that differ in one thing, the comparison of placement puts the one first that has less room to go elsewhere.
--- a.s
    .macro make name, size
    .section \name, "ax"
    .space \size
    .endm
    .section .start, "ax"
    .globl _start
_start: .word 0
    make .b8, 8
    make .a8, 8
    make .c4, 4
    make .d40, 0x40
    make .e80, 0x80
    make .f90, 0x90
    .section .bss.g8, "aw", %nobits
    .space 8
--- case a specific address before everything, whatever the sizes
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x48  Z : origin = 0x8000, length = 0x1000 }
SECTIONS { .rest : { *(.start) *(.a8) *(.b8) *(.e80) *(.f90) } > Z
  .big : { *(.d40) } > A
  .at : { *(.c4) } > 0x100 }
--- args
a.o link.cmd -o out.elf -e _start --unused_section_elimination=off
--- section
.at 0x100 4
.big 0x104 0x40
--- case a load image whose run image is placed before everything else beside it
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x1000  RAM : origin = 0x8000, length = 0x10 }
SECTIONS {
  .x : { *(.a8) } load > A, run > RAM, load_start(x)
  .y : { *(.e80) } > A
  .w : { *(.start) *(.b8) *(.c4) *(.d40) *(.f90) *(.bss*) } }
--- args
a.o link.cmd -o out.elf -e _start --unused_section_elimination=off
--- stderr
"link.cmd", line 5: warning: No placement specified for ".w"; a default
   placement will be applied.
--- sym
x 0x100
--- section
.x 0x8000 8
.y 0x108 0x80
--- case of two such images the one with the lower run address
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x1000  RAM : origin = 0x8000, length = 0x100 }
SECTIONS {
  .p : { *(.d40) } load > A, run > 0x8020, load_start(p)
  .q : { *(.a8) } load > A, run > 0x8000, load_start(q)
  .w : { *(.start) *(.b8) *(.c4) *(.e80) *(.f90) *(.bss*) } }
--- args
a.o link.cmd -o out.elf -e _start --unused_section_elimination=off
--- stderr has
warning: No placement specified for ".w"
--- sym
q 0x100
p 0x108
--- case a split load image follows the run addresses, not the sizes
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x50  B : origin = 0x200, length = 0x90  RAM : origin = 0x8000, length = 0x1000 }
SECTIONS {
  .p : { *(.c4) *(.d40) *(.a8) *(.e80) } load >> A | B, run > RAM
  .w : { *(.start) *(.b8) *(.f90) *(.bss*) } > RAM }
--- args
a.o link.cmd -o out.elf -e _start --unused_section_elimination=off
--- segments
LOAD 0x8000 0x100 0x4c 0x4c RX
LOAD 0x804c 0x200 0x80 0x80 RX
LOAD 0x80cc 0x80cc 0xa4 0xa4 RWX
--- case by name, with --alphabetical_ordering
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x1000  Z : origin = 0x8000, length = 0x1000 }
SECTIONS { .z : { *(.start) *(.a8) *(.b8) *(.f90) *(.bss*) } > Z
  .c : { *(.e80) } > A
  .b : { *(.d40) } > A | Z
  .a : { *(.c4) } > A }
--- args
a.o link.cmd -o out.elf -e _start --unused_section_elimination=off --alphabetical_ordering
--- section
.a 0x100 4
.b 0x104 0x40
.c 0x144 0x80
--- case what has one range before what has two, whatever the sizes
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x100  B : origin = 0x200, length = 0x100  Z : origin = 0x8000, length = 0x1000 }
SECTIONS { .rest : { *(.start) *(.a8) *(.b8) *(.e80) *(.f90) *(.bss*) } > Z
  .flexible : { *(.d40) } > A | B
  .single : { *(.c4) } > A }
--- args
a.o link.cmd -o out.elf -e _start --unused_section_elimination=off
--- section
.single 0x100 4
.flexible 0x104 0x40
--- case only ranges with room for the object count as a choice
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x100  B : origin = 0x200, length = 0x20  Z : origin = 0x8000, length = 0x1000 }
SECTIONS { .rest : { *(.start) *(.a8) *(.b8) *(.e80) *(.f90) *(.bss*) } > Z
  .single : { *(.d40) } > B | A
  .flexible : { *(.c4) } > A | B }
--- args
a.o link.cmd -o out.elf -e _start --unused_section_elimination=off
--- section
.single 0x100 0x40
.flexible 0x140 4
--- case what names its ranges before what names none
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x100  B : origin = 0x200, length = 0x100  Z : origin = 0x8000, length = 0x1000 }
SECTIONS { .rest : { *(.start) *(.a8) *(.b8) *(.e80) *(.f90) *(.bss*) } > Z
  .none : { *(.d40) }
  .named : { *(.c4) } > A | B }
--- args
a.o link.cmd -o out.elf -e _start --unused_section_elimination=off
--- stderr has
warning: No placement specified for ".none"
--- section
.named 0x100 4
.none 0x104 0x40
--- case of two of one size the one with less room
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x100  B : origin = 0x200, length = 0x800
         C : origin = 0xa00, length = 0x10  Z : origin = 0x8000, length = 0x1000 }
SECTIONS { .rest : { *(.start) *(.c4) *(.d40) *(.e80) *(.f90) *(.bss*) } > Z
  .a : { *(.a8) } > A | B
  .b : { *(.b8) } > A | C }
--- args
a.o link.cmd -o out.elf -e _start --unused_section_elimination=off
--- section
.b 0x100 8
.a 0x108 8
--- case less room in the ranges that it has to itself: what the other may take doesn't count
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x100  B : origin = 0x200, length = 0x200  Z : origin = 0x8000, length = 0x1000 }
SECTIONS { .rest : { *(.start) *(.c4) *(.a8) *(.e80) *(.f90) *(.bss*) } > Z
  .a : { *(.b8) } > A
  .b : { *(.d40) } > A }
--- args
a.o link.cmd -o out.elf -e _start --unused_section_elimination=off
--- section
.b 0x100 0x40
.a 0x140 8
--- case where neither fits beside the other the larger goes first, and the smaller finds no room
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x100  Z : origin = 0x8000, length = 0x1000 }
SECTIONS { .rest : { *(.start) *(.a8) *(.b8) *(.c4) *(.d40) *(.bss*) } > Z
  .a : { *(.e80) } > A
  .b : { *(.f90) } > A }
--- args
a.o link.cmd -o out.elf -e _start --unused_section_elimination=off
--- exit
1
--- stderr
"link.cmd", line 3: error: program will not fit into available memory. 
   placement with alignment fails for section ".a" size 0x80 .  Available
   memory ranges:
   
   A            size: 0x100        unused: 0x70         max hole: 0x70      
error: errors encountered during linking; "out.elf" not built
--- case without a word of where, the larger
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x1000  Z : origin = 0x8000, length = 0x1000 }
SECTIONS { .rest : { *(.start) *(.a8) *(.b8) *(.e80) *(.f90) *(.bss*) } > Z
  .a : { *(.c4) }
  .b : { *(.d40) } }
--- args
a.o link.cmd -o out.elf -e _start --unused_section_elimination=off
--- stderr
"link.cmd", line 3: warning: No placement specified for ".a"; a default
   placement will be applied.
"link.cmd", line 4: warning: No placement specified for ".b"; a default
   placement will be applied.
--- section
.b 0x100 0x40
.a 0x140 4
--- case of equal sizes and equal room by name
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x100  Z : origin = 0x8000, length = 0x1000 }
SECTIONS { .rest : { *(.start) *(.c4) *(.d40) *(.e80) *(.f90) *(.bss*) } > Z
  .b : { *(.a8) } > A
  .a : { *(.b8) } > A }
--- args
a.o link.cmd -o out.elf -e _start --unused_section_elimination=off
--- section
.a 0x100 8
.b 0x108 8
--- case of one name too, what runs there before what is only loaded there
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x100  RAM : origin = 0x4000, length = 0x100  Z : origin = 0x8000, length = 0x1000 }
SECTIONS { .rest : { *(.start) *(.c4) *(.d40) *(.e80) *(.f90) *(.bss*) } > Z
  .text : {} > Z  .data : {} > Z
  GROUP(g) { .loaded : { *(.a8) } } load > A, run > RAM, load_start(loaded)
  GROUP(g) { .stays : { *(.b8) } } > A }
--- args
a.o link.cmd -o out.elf -e _start --unused_section_elimination=off
--- section
.stays 0x100 8
.loaded 0x4000 8
--- sym
loaded 0x108
--- case else as they are written
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x100  Z : origin = 0x8000, length = 0x1000 }
SECTIONS { .rest : { *(.start) *(.c4) *(.d40) *(.e80) *(.f90) *(.bss*) } > Z
  GROUP(g) { .second : { *(.b8) } } > A
  GROUP(g) { .first : { *(.a8) } } > A }
--- args
a.o link.cmd -o out.elf -e _start --unused_section_elimination=off
--- section
.second 0x100 8
.first 0x108 8
--- case priorities count among those that have one, and a run image goes before its load image all the same
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x1000  RAM : origin = 0x8000, length = 0x1000 }
SECTIONS {
  .rest : { *(.start) *(.a8) *(.b8) *(.f90) *(.bss*) } > RAM
  .d : { *(.e80) } > A
  .p1 : { *(.c4) } > A, PRIORITY(1)
  .x : { *(.d40) } load > A, PRIORITY(9), run > RAM, PRIORITY(2), load_start(x) }
--- args
a.o link.cmd -o out.elf -e _start --unused_section_elimination=off
--- stderr
"link.cmd", line 6: warning: load priority of 9 for ".x" not honored; placement
   restrictions require run placement of ".x" with a priority of 2 to occur
   before load placement of ".x"
--- section
.d 0x100 0x80
.p1 0x1c0 4
--- sym
x 0x180
--- case without optimization of the order priorities ascend, each before the first that is higher
--- link.cmd
MEMORY { A : origin = 0x100, length = 0x1000  Z : origin = 0x8000, length = 0x1000 }
SECTIONS { .rest : { *(.start) *(.a8) *(.b8) *(.e80) *(.bss*) } > Z
  .p2 : { *(.f90) } > A, PRIORITY(2)
  .n : { *(.d40) } > A
  .p1 : { *(.c4) } > A, PRIORITY(1) }
--- args
a.o link.cmd -o out.elf -e _start --unused_section_elimination=off --no_placement_optimization
--- stderr
"link.cmd", line 3: warning: priority of 2 for ".p2" not honored; placement
   restrictions require placement of ".p1" with a priority of 1 to occur before
   placement of ".p2"
--- section
.p1 0x100 4
.p2 0x104 0x90
.n 0x194 0x40
