Assignments of command files settle in as many passes as they need, and what never settles is reported once.
--- a.s
    .syntax unified
    .section .text.start, "ax"
    .global start
    .thumb_func
start: ldr r0, =value
    ldr r1, =chosen
    bx lr
    .data
    .global value
value: .word 1, 2, 3
--- weak.s
    .data
    .global chosen
chosen: .word 4
--- base.cmd
--entry_point=start
MEMORY { FLASH : o = 0x0, l = 0x1000  RAM : o = 0x20000000, l = 0x100 }
SECTIONS {
    .text : { *(.text*) . = ALIGN(32); text_end = .; } > FLASH
    .data : { *(.data) } LOAD = FLASH, RUN = RAM,
            LOAD_START(load), load_end(load_end), RUN_START(run), RUN_END(run_end), SIZE(size)
}
--- case forward references
--- l.cmd
a = b + 1; b = c * 2; c = START(RAM) | 5;
WEAK(chosen) = 7;
--- args
a.o base.cmd l.cmd -o out.elf
--- sym
a 0x4000000b
b 0x4000000a
c 0x20000005
chosen 7
text_end 0x20
load 0x20
load_end 0x2c
run 0x20000000
run_end 0x2000000c
size 12
--- case a weak assignment gives way
--- l.cmd
WEAK(chosen) = 7;
--- args
a.o weak.o base.cmd l.cmd -o out.elf
--- sym
chosen 0x2000000c .data
--- case a circle
--- l.cmd
WEAK(chosen) = 7;
a = b; b = a;
--- args
a.o base.cmd l.cmd -o out.elf
--- exit
1
--- stderr
"l.cmd", line 2: error: symbol "b" used in expression before it has been
   assigned a value
"l.cmd", line 2: error: symbol "a" used in expression before it has been
   assigned a value
error: errors encountered during linking; "out.elf" not built
--- no-file out.elf
--- case an unknown symbol
--- l.cmd
WEAK(chosen) = 7;
a = nobody + 1;
--- args
a.o base.cmd l.cmd -o out.elf
--- exit
1
--- stderr
"l.cmd", line 2: error: undefined symbol "nobody" used in expression
error: errors encountered during linking; "out.elf" not built
--- no-file out.elf
--- case the later of two assignments
--- l.cmd
chosen = 1;
chosen = 2;
--- args
a.o base.cmd l.cmd -o out.elf
--- stderr
"l.cmd", line 2: warning: absolute symbol "chosen" being redefined
--- sym
chosen 2
--- case relative symbols
--- l.cmd
chosen = value + 4;
distance = value - start;
--- args
a.o base.cmd l.cmd -o out.elf
--- stderr has
"l.cmd", line 2: warning: section relative symbols from different output
--- sym
chosen 0x20000004 .data
distance 0x1fffffff
--- case no such range
--- l.cmd
chosen = SIZE(NIX);
--- args
a.o base.cmd l.cmd -o out.elf
--- exit
1
--- stderr has
"l.cmd", line 1: error: MEM_SIZE(NIX,0) has either invalid memory range or
--- no-file out.elf
--- case chains in any order
--- l.cmd
chosen = e; b = c; e = d + b; c = 1; d = b + c; f = f2 + e; f2 = chosen * 2;
--- args
a.o base.cmd l.cmd -o out.elf
--- sym
b 1
d 2
e 3
chosen 3
f2 6
f 9
--- case an assignment stands in for a definition of a file, wherever that file stands
--- l.cmd
chosen = 9;
--- args
l.cmd base.cmd weak.o a.o -o out.elf
--- stderr
"l.cmd", line 1: warning: symbol "chosen" from file "weak.o" being redefined
--- sym
chosen 9 ABS
--- case weak symbols that nothing refers to leave the program, but for those of expressions
--- l.cmd
WEAK(chosen) = 7;
WEAK(unused) = 8;
WEAK(of_place) = END(RAM);
next = of_place + 1;
--- weak_property.cmd
SECTIONS { .empty : { } > RAM, START(WEAK(empty_start)), RUN_END(WEAK(unused_end)) }
--- args
a.o base.cmd l.cmd weak_property.cmd -o out.elf --map_file=out.map
--- sym
chosen 7
unused -
of_place 0x20000100
next 0x20000101
unused_end -
--- case the same where nothing is linked at all
--- l.cmd
SECTIONS { .a : { } START(WEAK(m)) }
--- args
a.o l.cmd -o out.elf
--- exit
1
--- stderr has
error: no input section is linked in
