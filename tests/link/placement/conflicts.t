What the command file wishes twice, or of an object that goes with another, is told in words of its own.
--- a.s
    .section .a, "ax"
    .globl _start
_start: .space 8
    .section .b, "ax"
    .space 0x20
    .section .c, "aw"
    .space 8
    .section .z, "aw", %nobits
    .space 8
--- args
a.o link.cmd -o out.elf -e _start --unused_section_elimination=off
--- case two places, two pages, two priorities, two blockings
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000  RAM : origin = 0x8000, length = 0x1000 }
SECTIONS {
  .a 0x200 : {} > ROM
  .b 0x300 : {} > (RX)
  .c : {} > RAM, PAGE 0, PAGE 0
  .z : BLOCK(16), BLOCK(32) > RAM
  .p : { *(.nothing) } PRIORITY(1), PRIORITY(2) > RAM
  .q : { *(.nothing) } RUN > RAM, PRIORITY(1), PRIORITY(2), LOAD > ROM, PRIORITY(1), PRIORITY(2)
}
--- exit
1
--- stderr
"link.cmd", line 3: error: conflicting placement methods specified for ".a"
"link.cmd", line 4: error: conflicting placement methods specified for ".b"
"link.cmd", line 5: error: page already specified for ".c"
"link.cmd", line 6: error: blocking or alignment already specified for ".z"
"link.cmd", line 7: error: priority already specified for ".p"
"link.cmd", line 8: error: run priority already specified for ".q"
"link.cmd", line 8: error: load priority already specified for ".q"
"link.cmd", line 7: warning: no matching section
"link.cmd", line 8: warning: no matching section
error: errors encountered during linking; "out.elf" not built
--- case of two alignments the larger
--- link.cmd
MEMORY { ROM : origin = 0x108, length = 0x1000  RAM : origin = 0x8000, length = 0x1000 }
SECTIONS {
  .a : ALIGN(16), ALIGN(4) > ROM
  .b : ALIGN(4), PALIGN(64) > ROM
  .c : > RAM  .z : > RAM
}
--- stderr
"link.cmd", line 3: warning: alignment already specified for ".a": using
   maximum specified alignment
"link.cmd", line 4: warning: alignment already specified for ".b": using
   maximum specified alignment
--- section
.a 0x110 8
.b 0x140 0x40
--- case wishes of members, of their run and of their load addresses
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000  RAM : origin = 0x8000, length = 0x1000 }
SECTIONS {
  GROUP(g) {
    .a : {} RUN > RAM
    .b : {} > RAM
    .c : {} LOAD > RAM
  } > ROM
  .z : > RAM
}
--- stderr
"link.cmd", line 4: warning: placement ignored for ".a":  object is placed as
   part of "g"
"link.cmd", line 5: warning: LOAD placement ignored for ".b":  object is placed
   as part of "g"
"link.cmd", line 6: warning: LOAD placement ignored for ".c":  object is placed
   as part of "g"
--- section
.a 0x100 8
.b 0x108 0x20
.c 0x128 8
--- case a load address that a UNION and a group of initialized overlays can't have
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000  RAM : origin = 0x8000, length = 0x1000 }
SECTIONS {
  .b : {} > ROM
  UNION { .c : {} .z : {} } RUN > RAM,
                            LOAD > ROM
  GROUP { UNION { .a : {} LOAD > 0x400 } } RUN > RAM,
      LOAD > ROM
}
--- stderr
"link.cmd", line 5: warning: LOAD placement ignored for UNION
"link.cmd", line 7: warning: LOAD placement ignored for object:  object
   contains initialized overlays which each require explicit LOAD placement
--- segments
LOAD 0x100 0x100 0x20 0x20 RX
LOAD 0x8000 0x400 0x8 0x8 RX
LOAD 0x8008 0x8008 0x8 0x8 RW
LOAD 0x8008 0x8008 0x0 0x8 RW
--- case initialized overlays without load addresses, within a group
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000  RAM : origin = 0x8000, length = 0x1000 }
SECTIONS {
  GROUP(g) {
    UNION(u) { .a : {}
               .b : {} }
    .c : {}
  } > RAM
  .z : > RAM
}
--- stderr
"link.cmd", line 3: warning: object containing initialized overlays requires
   explicit LOAD placement for each initialized member
"link.cmd", line 4: warning: LOAD placement required for initialized object
   ".a". A default LOAD placement will be applied. This may result in different
   run and load addresses for this object.
"link.cmd", line 5: warning: LOAD placement required for initialized object
   ".b". A default LOAD placement will be applied. This may result in different
   run and load addresses for this object.
"link.cmd", line 6: warning: LOAD placement required for initialized object
   ".c". A default LOAD placement will be applied. This may result in different
   run and load addresses for this object.
--- section
.a 0x8000 8
.b 0x8000 0x20
.c 0x8020 8
.z 0x8028 8
--- segments
LOAD 0x8000 0x100 0x20 0x20 RX
LOAD 0x8000 0x120 0x8 0x8 RX
LOAD 0x8020 0x128 0x8 0x8 RW
LOAD 0x8028 0x8028 0x0 0x8 RW
--- case a run address alone, and no place at all
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000  RAM : origin = 0x8000, length = 0x1000 }
SECTIONS {
  .a : {} RUN > ROM
  .b : {}
  GROUP(g) { .c : {} }
  .z : {} RUN > RAM
}
--- stderr
"link.cmd", line 3: warning: No LOAD placement specified for initialized object
   ".a"; using RUN placement
"link.cmd", line 4: warning: No placement specified for ".b"; a default
   placement will be applied.
"link.cmd", line 5: warning: No placement specified for "g"; a default
   placement will be applied.
--- section
.a 0x100 8
.b 0x108 0x20
.c 0x128 8
.z 0x8000 8
--- case a member that takes no memory, told as a remark
--- args
a.o link.cmd -o out.elf -e _start --unused_section_elimination=off --issue_remarks
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000  RAM : origin = 0x8000, length = 0x1000 }
SECTIONS {
  GROUP(g) { .a : {}
             .b : type = COPY {}
             .c : type = DSECT {} } > ROM
  .z : > RAM
}
--- stdout
"link.cmd", line 4: remark: object ".b" is not allocated, but is being placed
   as part of allocated object "g"
"link.cmd", line 5: remark: object ".c" is not allocated, but is being placed
   as part of allocated object "g"
--- section
.a 0x100 8
--- case what can't be split, and what can't be HIGH
--- more.s
    .section .init_array, "aw", %init_array
    .word _start
    .section .text.f, "ax"
    .globl __cxa_throw
    .fnstart
__cxa_throw: bx lr
    .cantunwind
    .fnend
    .section .data.t, "aw"
    .word copy_table
--- args
a.o more.o link.cmd -o out.elf -e _start --unused_section_elimination=off
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000  RAM : origin = 0x8004, length = 0x1000 }
SECTIONS {
  .a : PALIGN(16) {} >> ROM | RAM
  .b : PALIGN(POWER2) {} >> ROM | RAM
  .c : {} >> 0x8100, HIGH
  UNION(u) { .z : {} } >> RAM
  .init_array : {} >> RAM | ROM
  .text : { *(.text.f) } > ROM
  .ARM.exidx : {} >> RAM | ROM
  .data : { *(.data.t) } load > ROM, run > RAM, table(copy_table)
  GROUP(g) { .ovly : {} } >> RAM | ROM
}
--- stderr
"link.cmd", line 3: warning: split placement (>>) ignored for ".a":  cannot
   split object with PALIGN operator
"link.cmd", line 4: warning: split placement (>>) ignored for ".b":  cannot
   split object with PALIGN operator
"link.cmd", line 5: warning: split placement (>>) ignored for ".c":  specific
   address specified
"link.cmd", line 5: warning: HIGH placement ignored for ".c":  specific address
   specified
"link.cmd", line 6: warning: split placement (>>) ignored for "u": object is an
   overlay
"link.cmd", line 7: warning: split placement (>>) ignored for ".init_array": 
   split placement for this section is not permitted
"link.cmd", line 9: warning: split placement (>>) ignored for ".ARM.exidx": 
   cannot split EH Index table
"link.cmd", line 11: warning: split placement (>>) ignored for "g" because it
   contains .ovly
