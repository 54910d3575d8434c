Of two definitions of one name the rules pick one, silently or with an error; files are looked at in link order.
--- main.s
    .syntax unified
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .word x
--- strong1.s
    .global x
    .data
x:  .word 0x11111111
--- strong2.s
    .global x
    .data
x:  .word 0x22222222
--- weak1.s
    .weak x
    .data
x:  .word 0x33333333
--- weak2.s
    .weak x
    .data
x:  .word 0x44444444
--- common4.s
    .comm x, 4, 4
--- common8.s
    .comm x, 8, 4
--- common4by16.s
    .comm x, 4, 16
--- ctor.inc
    .global _ZN1AC2Ev, _ZGVZ1fvE1x
    .section .text.ctor, "ax"
_ZN1AC2Ev: .word VALUE
    .section .data.guard, "aw"
_ZGVZ1fvE1x: .word VALUE
--- ctor1.s -Wa,--defsym,VALUE=1
    .include "ctor.inc"
--- ctor2.s -Wa,--defsym,VALUE=2
    .include "ctor.inc"
--- complete.inc
    .global _ZN1AC1Ev
    .data
_ZN1AC1Ev: .word VALUE
--- complete1.s -Wa,--defsym,VALUE=1
    .include "complete.inc"
--- complete2.s -Wa,--defsym,VALUE=2
    .include "complete.inc"
--- abs5.s
    .global x
    x = 5
--- abs5again.s
    .global x
    x = 5
--- abs6.s
    .global x
    x = 6
--- comdat.s
    .section .data, "awG", %progbits, group_x, comdat
    .global x
x:  .word 0x55555555
--- ok.cmd
--entry_point=_start
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M   .data : > M   .bss : > M }
--- define.cmd
x = 0x77;
--- case two strong definitions
--- args
main.o strong1.o strong2.o ok.cmd -o out.elf
--- exit
1
--- stderr
error: symbol "x" redefined: first defined in "strong1.o"; redefined in
   "strong2.o"
error: errors encountered during linking; "out.elf" not built
--- no-file out.elf
--- case the number is shown without the mark of a discretionary error
--- args
main.o strong1.o strong2.o ok.cmd -o out.elf --display_error_number --diag_suppress=10056
--- exit
1
--- stderr has
error #10056: symbol "x" redefined: first defined in "strong1.o"; redefined in
--- case two weak definitions: the first
--- args
main.o weak1.o weak2.o ok.cmd -o out.elf
--- bytes .data
33333333
--- case weak, then strong: the strong one
--- args
main.o weak1.o strong1.o ok.cmd -o out.elf
--- bytes .data
11111111
--- case strong, then weak: the strong one
--- args
main.o strong2.o weak1.o ok.cmd -o out.elf
--- bytes .data
22222222
--- case commons of different size: the larger
--- args
main.o common4.o common8.o ok.cmd -o out.elf
--- section
.bss 0x1000 8
--- case commons of different size, larger first
--- args
main.o common8.o common4.o ok.cmd -o out.elf
--- section
.bss 0x1000 8
--- case commons of different alignment: what stays satisfies both, whichever it is
--- args
main.o common4by16.o common8.o ok.cmd -o out.elf
--- readelf -SW
.bss NOBITS 00001000 000040 000008 00 WA 0 0 16
--- case the other way round
--- args
main.o common8.o common4by16.o ok.cmd -o out.elf
--- readelf -SW
.bss NOBITS 00001000 000040 000008 00 WA 0 0 16
--- case a weak definition gives way to a common
--- args
main.o weak1.o common4.o ok.cmd -o out.elf
--- section
.bss 0x1008 4
--- case a common and a strong definition
--- args
main.o common4.o strong1.o ok.cmd -o out.elf
--- exit
1
--- stderr has
error: symbol "x" redefined: first defined in "common4.o"; redefined in
--- case equal absolute values
--- args
main.o abs5.o abs5again.o ok.cmd -o out.elf
--- sym
x 5
--- case different absolute values
--- args
main.o abs5.o abs6.o ok.cmd -o out.elf
--- exit
1
--- stderr has
error: symbol "x" redefined: first defined in "abs5.o"; redefined in "abs6.o"
--- case a definition in a comdat group gives way to one outside
--- args
main.o comdat.o strong1.o ok.cmd -o out.elf
--- bytes .data
11111111
--- case the linker's symbol stays against an input's
--- args
main.o define.cmd abs5.o ok.cmd -o out.elf
--- stderr
"define.cmd", line 1: warning: symbol "x" from file "abs5.o" being redefined
--- sym
x 0x77
--- case constructors of subobjects and guards of static variables may be there twice: the first stays
--- args
main.o weak1.o ctor1.o ctor2.o ok.cmd -o out.elf -u _ZN1AC2Ev -u _ZGVZ1fvE1x
--- bytes .text
7047 0a100000 01000000
--- readelf -sW
_ZGVZ1fvE1x
--- case constructors of complete objects may not
--- args
main.o weak1.o complete1.o complete2.o ok.cmd -o out.elf
--- exit
1
--- stderr has
error: symbol "A::A()" redefined: first defined in "complete1.o"; redefined in
