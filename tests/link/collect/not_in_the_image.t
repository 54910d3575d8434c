What is no part of the program image stays out of written specifications; an interrupt vector without a handler is told.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .section .debug_own
    .word _start
--- case debug sections, with a remark
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000 }
SECTIONS { all : { *(*) } > ROM }
--- args
--issue_remarks a.o link.cmd -o out.elf --entry_point=_start
--- section
all 0x100 0x2
.debug_own 0 0x4
--- stdout has
remark: section ".debug_own" cannot be collected with section specifier;
--- case a vector that nothing fills
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x1000 }
SECTIONS {
    .text : { *(.text*) } > ROM
    .int7 : { *(.int7) } > 0x400, TYPE = VECT_INIT
}
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- stderr
"link.cmd", line 4: warning: Interrupt vector ".int7.1" does not have an
   interrupt handler routine.
