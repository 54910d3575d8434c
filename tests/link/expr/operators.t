Every operator has its value, its rank and its side; dot counts from the beginning of its output section.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .balign 4
    .section .text.rest, "ax"
    .word 1, 2, 3
--- base.cmd
--entry_point=_start
--retain=*(.text.rest)
MEMORY { FLASH : o = 0x100, l = 0x1000  RAM : o = 0x20000000, l = 0x100 }
--- case unary
--- l.cmd
neg = -5; neg_twice = - -5; compl = ~0x0f; not0 = !0; not7 = !7; mixed = !-~0; paren = -(2 + 3); phy = PHY(neg);
--- args
a.o base.cmd l.cmd -o out.elf
--- sym
neg 0xfffffffb
neg_twice 5
compl 0xfffffff0
not0 1
not7 0
mixed 0
paren 0xfffffffb
phy 0xfffffffb
--- case arithmetic
--- l.cmd
add = 3 + 4; sub = 3 - 4; mul = 6 * 7; div = -7 / 2; mod = -7 % 2; div0 = 10 / 0; mod0 = 10 % 0;
shl = 1 << 12; shr = 0x100 >> 4; asr = -1 >> 1; shl_far = 1 << 64; asr_far = -8 >> 70;
and = 12 & 10; or = 12 | 10; wrap = 0x7fffffffffffffff + 1 == -0x7fffffffffffffff - 1;
--- args
a.o base.cmd l.cmd -o out.elf
--- sym
add 7
sub 0xffffffff
mul 42
div 0xfffffffd
mod 0xffffffff
div0 0
mod0 0
shl 0x1000
shr 16
asr 0xffffffff
shl_far 0
asr_far 0xffffffff
and 8
or 14
wrap 1
--- case logic and comparison
--- l.cmd
land = 2 && 4; land0 = 2 && 0; lor = 0 || 9; lor0 = 0 || 0;
eq = 3 == 3; ne = 3 != 3; lt = -1 < 1; le = 2 <= 1; gt = -1 > 1; ge = 2 >= 2;
--- args
a.o base.cmd l.cmd -o out.elf
--- sym
land 1
land0 0
lor 1
lor0 0
eq 1
ne 0
lt 1
le 0
gt 0
ge 1
--- case ranks
--- l.cmd
r1 = 2 + 3 * 4; r2 = 10 - 4 - 3; r3 = 100 / 10 / 5; r4 = 1 << 2 + 1; r5 = 1 + 1 < 3; r6 = 6 & 3 == 3;
r7 = 8 | 7 & 2; r8 = 1 || 0 && 0; r9 = 4 | 0 && 0; r10 = 5 > 3 > 0; r11 = (2 + 3) * 4; r12 = 7 % 4 * 2;
r13 = 64 >> 2 << 1; r14 = -2 + 3; r15 = ~1 & 3;
--- args
a.o base.cmd l.cmd -o out.elf
--- sym
r1 14
r2 3
r3 2
r4 8
r5 1
r6 0
r7 10
r8 1
r9 0
r10 1
r11 20
r12 6
r13 32
r14 1
r15 2
--- case ranges of memory
--- l.cmd
s = START(RAM); e = END(RAM); n = SIZE(RAM); both = END(FLASH) - START(FLASH) == SIZE(FLASH); p = SIZE(RAM, 0);
--- args
a.o base.cmd l.cmd -o out.elf
--- sym
s 0x20000000
e 0x20000100
n 0x100
both 1
p 0x100
--- case of two ranges of one name that of page 0 is meant
--- l.cmd
MEMORY { PAGE 1 : RAM : o = 0x40, l = 0x20 }
n0 = SIZE(RAM); n1 = SIZE(RAM, 1);
--- args
a.o base.cmd l.cmd -o out.elf
--- sym
n0 0x100
n1 0x20
--- case assignments to dot
--- l.cmd
SECTIONS { .text : {
    *(.text._start)  at_4 = .;
    . += 4;          at_8 = .;
    . *= 2;          at_16 = .;
    . = ALIGN(32);   at_32 = .;
    . = . + 2 * 4;   at_40 = . + 0;
    . /= 1;          *(.text.rest)
    . = 0x40;        at_64 = .;  } > 0x100 }
--- args
a.o base.cmd l.cmd -o out.elf
--- section
.text 0x100 0x40
--- sym
at_4 0x104
at_8 0x108
at_16 0x110
at_32 0x120
at_40 0x128
at_64 0x140
