A member that takes no memory leaves its group as large as the others make it, wherever the group is loaded and runs.
--- a.s
    .section .text.a, "ax"
    .globl _start
_start: .space 8
    .section .text.b, "ax"
    .space 0x30
    .section .text.c, "ax"
    .space 8
    .section .bss.d, "aw", %nobits
    .space 0x20
    .section .bss.e, "aw", %nobits
    .space 0x20
--- case loaded elsewhere
--- link.cmd
--entry_point=_start
--unused_section_elimination=off
MEMORY { ROM : origin = 0x100, length = 0x1000  RAM : origin = 0x8000, length = 0x1000 }
SECTIONS
{
  GROUP : load > ROM, run > RAM, LOAD_START(load_start), RUN_END(run_end)
  { .a : { *(.text.a) }  .b : { *(.text.b) } type = COPY  .c : { *(.text.c) } }
}
--- args
a.o link.cmd -o out.elf
--- section
.a 0x8000 8
.c 0x8008 8
--- sym
load_start 0x100
run_end 0x8010
--- case from the top
--- link.cmd
--entry_point=_start
--unused_section_elimination=off
MEMORY { ROM : origin = 0x100, length = 0x1000 }
SECTIONS
{
  GROUP : > ROM (HIGH) { .a : { *(.text.a) }  .b : { *(.text.b) } type = DSECT  .c : { *(.text.c) } }
}
--- args
a.o link.cmd -o out.elf
--- section
.a 0x10f0 8
.c 0x10f8 8
--- case with a place of its own to be loaded at
--- link.cmd
--entry_point=_start
--unused_section_elimination=off
MEMORY { ROM : origin = 0x100, length = 0x1000  RAM : origin = 0x8000, length = 0x1000 }
SECTIONS
{
  .a : { *(.text.a) *(.text.c) } > ROM
  .b : { . += 0x20; *(.text.b) } load > 0x400, run > RAM, type = COPY
}
--- args
a.o link.cmd -o out.elf
--- section
.b 0x8000 0x50
--- case a load placement that does not count splits nothing
--- link.cmd
--entry_point=_start
--unused_section_elimination=off
MEMORY { ROM : origin = 0x100, length = 0x1000  RAM : origin = 0x8010, length = 0x1000 }
SECTIONS
{
  .a   : { *(.text*) } > ROM
  .bss : { . += 4; *(.bss.d) *(.bss.e) . = ALIGN(128); } load >> ROM, run > RAM
}
--- args
a.o link.cmd -o out.elf
--- section
.bss 0x8080 0x80
--- stderr
"link.cmd", line 7: warning: LOAD placement ignored for ".bss":  object is
   uninitialized
--- case it follows its group from a hole that was too small, and what it lies over is filled
--- odd.s
    .section .text.f, "ax"
    .balign 16
    .space 0x10
--- link.cmd
--entry_point=_start
--unused_section_elimination=off
MEMORY { A : origin = 0x100, length = 0x28  ROM : origin = 0x1000, length = 0x30, fill = 0xAA  RAM : origin = 0x8000, length = 0x40 }
SECTIONS
{
  .c : { *(.text.c) } > 0x100
  .bss : { *(.bss*) } > RAM
  GROUP : > A | ROM { .a : { *(.text.a) }  .b : { *(.text.b) } type = COPY  .f : { *(.text.f) } }
}
--- args
a.o odd.o link.cmd -o out.elf
--- section
.a 0x1000 8
.b 0x1008 0x30
.f 0x1010 0x10
$fill000 0x1008 8
$fill001 0x1020 0x10
