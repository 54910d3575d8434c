Objects of compilers that are too old for the run-time library are told of once; old names of conversions get their new ones.
--- runtime.s
    .text
    .global _Dclass, __aeabi_l2f_QV_VFP, __aeabi_l2f
_Dclass:
__aeabi_l2f_QV_VFP: bx lr
__aeabi_l2f: bx lr
--- old.cpp -gdwarf-4
asm(".section \"__QV_DW.debug_info.yvals.h\", \"\", %progbits\n.byte 1\n");
extern "C" int _start() { return 1; }
--- old2.c -gdwarf-4
asm(".section \"__QV_DW.debug_info./include/yvals.h\", \"\", %progbits\n.byte 1\n");
int second(void) { return 1; }
--- new.cpp -gdwarf-4
asm(".section \"__QV_DW.debug_info.other.h\", \"\", %progbits\n.byte 1\n");
extern "C" int fourth() { return 1; }
--- hard.s
    .eabi_attribute 25, 1
    .eabi_attribute 10, 3
    .text
    .global _start
_start: b __aeabi_l2f
--- case a C++ object of an unknown compiler, the first of two
--- args
new.o old.o old2.o runtime.o -o out.elf --entry_point=_start
--- exit
1
--- stderr re
.*error: C\+\+ or C object files built with compiler versions before 15\.3\.0 are\s+incompatible.*\(First\s+detected in "old\.o", compiled\s+with version unknown\.\).*
--- case a C object only with the library that has these functions
--- args
old2.o -r -o out.elf
--- case and with it
--- args
runtime.o old2.o -r -o out.elf
--- exit
1
--- stderr re
.*\(First\s+detected in "old2\.o".*
--- case a reference of another maker's object keeps its name
--- args
hard.o runtime.o -o out.elf --entry_point=_start --unused_section_elimination=off
--- dis .text
b.n 22 <__aeabi_l2f>
