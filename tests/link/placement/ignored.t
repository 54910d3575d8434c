Wishes that exclude each other: each that is dropped is told, in the words of its reason, and only the first reason.
--- a.s
    .section .text.a, "ax"
    .globl _start
_start: .word anchor
    .space 4
    .section .text.b, "ax"
    .space 8
    .section .bss.c, "aw", %nobits
    .space 8
--- case reasons against a split
--- split.cmd
--entry_point=_start
--unused_section_elimination=off
MEMORY { A : origin = 0x100, length = 0x100  B : origin = 0x400, length = 0x100 }
SECTIONS
{
  .a : { *(.text.a) } >> A | B, RUN_START(anchor)
  .b : { *(.text.b) . += 4; } >> A | B
  .c : { *(.bss.c) } >> A | B (HIGH)
}
--- args
a.o split.cmd -o out.elf
--- stderr
"split.cmd", line 6: warning: split placement (>>) ignored for ".a":  symbol
   "anchor" requires contiguous placement
"split.cmd", line 7: warning: split placement (>>) ignored for ".b":  object
   has '.' expressions
"split.cmd", line 8: warning: split placement (>>) ignored for ".c":  cannot
   split object with HIGH placement
--- section
.a 0x10c 8
.b 0x100 0xc
.c 0x1f8 8
--- sym
anchor 0x10c
--- case priorities that cannot count
--- priority.cmd
--entry_point=_start
--unused_section_elimination=off
anchor = 0;
MEMORY { A : origin = 0x100, length = 0x100 }
SECTIONS
{
  .a : { *(.text.a) } > 0x140, PRIORITY(3)
  .b : { *(.text.b) } > A (HIGH), PRIORITY(2)
  .c : { *(.bss.c) } > A
}
--- args
a.o priority.cmd -o out.elf
--- stderr
"priority.cmd", line 7: warning: priority of 3 ignored for ".a"; a priority
   cannot be specified for objects placed at specific addresses
"priority.cmd", line 8: warning: priority of 2 ignored for ".b"; a priority
   cannot be specified for objects that have HIGH placement
--- section
.a 0x140 8
.b 0x1f8 8
.c 0x100 8
