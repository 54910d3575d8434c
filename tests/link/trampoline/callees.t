What a call may lead to: code by symbol or by an offset behind one, addresses, data (with a warning), but no variable.
--- m3.s
    .syntax unified
    .thumb
    .section .start, "ax"
    .global start
    .type start, %function
    .thumb_func
start: bl callee
    bx lr
--- arm.s -mcpu=arm7tdmi
    .syntax unified
    .arm
    .section .start, "ax"
    .global start
    .type start, %function
start: bl callee
    bx lr
--- code.s
    .syntax unified
    .thumb
    .section .far, "ax"
    .space 0x20
    .global callee
    .type callee, %function
    .thumb_func
callee: bx lr
--- label.s
    .syntax unified
    .thumb
    .section .far, "ax"
    nop
    .global callee
callee: bx lr
--- data.s
    .section .far, "aw"
    .global callee
callee: .word 0x4770
--- common.s
    .comm callee, 4
--- address.s -mcpu=arm7tdmi
    .global callee
    .set callee, 0x30000101
    .type callee, %function
--- inside.s
    .syntax unified
    .thumb
    .section .start, "ax"
    .global start
    .type start, %function
    .thumb_func
start: bl code + 0x10
    bl code + 0x20
    bx lr
    .section .far, "ax"
    .type code, %function
    .thumb_func
code: .space 0x40
--- plt.s -mcpu=arm7tdmi
    .section .start, "ax"
    .arm
    .global start
    .type start, %function
start: .reloc ., R_ARM_PLT32, start
    .word 0xEBFFFFFE
--- l.cmd
--entry_point=start --retain=*(.far)
MEMORY { LOW (RWX) : o = 0x8000, l = 0x1000  HIGH (RWX) : o = 0x20000000, l = 0x1000 }
SECTIONS { .low : { *(.start) } > LOW  .high : { *(.far) } > HIGH }
--- case code, entered with its state in bit 0
--- args
m3.o code.o l.cmd -o out.elf
--- dis .low
8008: f8df f000 ldr.w pc, [pc]
800c: 20000021 .word 0x20000021
--- case a label of code that is no function
--- args
m3.o label.o l.cmd -o out.elf
--- dis .low
800c: 20000003 .word 0x20000003
--- case places behind a symbol have stubs of their own
--- args
inside.o l.cmd -o out.elf --map_file=out.map
--- text out.map has
.tramp.code.1
.tramp.code.1
[2 trampolines]
--- dis .low
8000: f000 f804 bl 800c
8004: f000 f806 bl 8014
800c: f8df f000 ldr.w pc, [pc]
8010: 20000011 .word 0x20000011
8014: f8df f000 ldr.w pc, [pc]
8018: 20000021 .word 0x20000021
--- case a constant of the command file is an address like any other
--- constant.cmd
callee = 0x8009;
--- args
m3.o l.cmd constant.cmd -o out.elf
--- stderr
"l.cmd", line 3: warning: no matching section
--- dis .low
8000: f000 f802 bl 8008
--- case what depends on addresses is known too late: a stub and a warning
--- late.cmd
callee = start + 8;
--- args
m3.o l.cmd late.cmd -o out.elf
--- stderr
"l.cmd", line 3: warning: no matching section
warning: conservatively using trampoline for call destination "callee";
   generation and use of this trampoline can potentially be avoided if the
   --symbol_map option is used to re-direct symbol references instead of using
   symbol assignments
--- bytes .low
00f002f8 7047 0000 dff800f0 09800000
--- case an address of an object, far and in the other state
--- args
arm.o address.o l.cmd -o out.elf
--- stderr
"l.cmd", line 3: warning: no matching section
--- sym
$Ven$AT$L$PI$$callee 0x8008 .low
--- dis .low
8008: e59fc000 ldr ip, [pc]
800c: e12fff1c bx ip
8010: 30000101 .word 0x30000101
--- case data is called with a warning
--- args
m3.o data.o l.cmd -o out.elf
--- stderr
warning: Generating trampoline to symbol "callee", which is in a non-executable
   section
--- sym
$Tramp$TT$L$PI$$callee 0x8009 .low
--- case a variable is no function
--- args
m3.o common.o l.cmd -o out.elf
--- exit
1
--- stderr has
fatal error: Function call to symbol "callee", which is not a function
--- no-file out.elf
--- case a branch of a kind that no stub serves
--- args
plt.o l.cmd -o out.elf
--- exit
1
--- stderr has
fatal error: unknown call relocation in plt.o(.start) at location 0
--- no-file out.elf
