Objects at addresses outside of the map are placed with a warning, filled, and share no memory with others.
--- a.s
    .section .a, "ax"
    .global _start
_start: .word b, c
    .section .a2, "ax"
    .balign 16
    .word 1
    .section .b, "ax"
    .global b
b:  .space 0x20
    .section .c, "ax"
    .global c
c:  .space 8
--- case they may lie side by side
--- side.cmd
MEMORY { M : origin = 0x1000, length = 0x100 }
SECTIONS { .a : { *(.a) *(.a2) } fill = 0x77, > 0x100
           .b : > 0x114
           .c : > M }
--- args
a.o side.cmd -o out.elf --entry_point=_start --retain=*(.a2)
--- stderr has
"side.cmd", line 2: warning: specified address lies outside memory map
"side.cmd", line 3: warning: specified address lies outside memory map
--- section
.a 0x100 0x14
.b 0x114 0x20
--- bytes .a
14010000 00100000 7777777777777777 01000000
--- case but not over each other
--- over.cmd
MEMORY { M : origin = 0x1000, length = 0x100 }
SECTIONS { .a : > 0x110
           .b : > 0x100
           .c : > M }
--- args
a.o over.cmd -o out.elf --entry_point=_start
--- exit
1
--- stderr has
error: program will not fit into available memory.
--- no-file out.elf
--- case and not into a range
--- into.cmd
MEMORY { M : origin = 0x1000, length = 0x100 }
SECTIONS { .a : > M
           .b : > 0xff0
           .c : > M }
--- args
a.o into.cmd -o out.elf --entry_point=_start
--- exit
1
--- stderr has
"into.cmd", line 3: error: program will not fit into available memory.
DEFAULT      size: 0x10
--- no-file out.elf
