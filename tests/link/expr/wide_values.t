A symbol has 32 bits: an assigned value that doesn't fit is cut, which is told once, when the value is settled.
--- a.s
    .global _start
    .section .text, "ax"
    .thumb_func
_start: bx lr
--- case values at the edges fit
--- l.cmd
MEMORY { ALL : origin = 0, length = 0x1000 }
top = 0xffffffff; lowest = -0x80000000; minus = -1;
--- args
a.o l.cmd -o out.elf --entry_point=_start
--- sym
top 0xffffffff
lowest 0x80000000
minus 0xffffffff
--- case one more doesn't
--- l.cmd
MEMORY { ALL : origin = 0xfffff000, length = 0x1000 }
over = END(ALL);
under = -0x80000001;
late = later;
later = 0x123456789;
--- args
a.o l.cmd -o out.elf --entry_point=_start
--- stderr
"l.cmd", line 2: warning: value 0x100000000 of symbol "over" does not fit into
   32 bits; 0 is used
"l.cmd", line 3: warning: value 0xffffffff7fffffff of symbol "under" does not
   fit into 32 bits; 0x7fffffff is used
"l.cmd", line 5: warning: value 0x123456789 of symbol "later" does not fit into
   32 bits; 0x23456789 is used
--- sym
over 0
under 0x7fffffff
late 0x23456789
