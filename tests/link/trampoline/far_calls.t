Calls that don't reach their callee go through stubs: as few as will do, named after what they do, and listed in the map.
--- a.s
    .syntax unified
    .cpu cortex-m3
    .thumb
    .macro function name
    .section .\name, "ax"
    .global \name
    .type \name, %function
    .thumb_func
\name:
    .endm
    function start
    bl far1
    bl far2
    bl near
    bl nowhere
    bx lr
    .weak nowhere
    function near
    bl far1
    b.w far1
    bx lr
    function far1
    bl near
    bl far2
    bx lr
    function far2
    bx lr
--- l.cmd
--entry_point=start
MEMORY { LOW (RX) : o = 0x8000, l = 0x1000  HIGH (RX) : o = 0x20000000, l = 0x1000 }
SECTIONS {
    .low : { *(.start) *(.near) } > LOW
    .high : { *(.far1) *(.far2) } > HIGH
}
--- case one stub for all callers of an output section; a weak call of nothing needs none
--- args
a.o l.cmd -o out.elf --map_file=out.map
--- text out.map has
.low       0    00008000    0000002e
                  00008000    00000012     a.o (.start)
                  00008012    00000002     --HOLE-- [fill = 0]
                  00008014    00000008     a.o (.tramp.far1.1)
                  0000801c    00000008     a.o (.tramp.far2.1)
                  00008024    0000000a     a.o (.near)
.high      0    20000000    00000014
                  20000000    0000000a     a.o (.far1)
                  2000000a    00000002     a.o (.far2)
                  2000000c    00000008     a.o (.tramp.near.1)
FAR CALL TRAMPOLINES
callee name               trampoline name
   callee addr  tramp addr   call addr  call info
--------------  -----------  ---------  ----------------
far1                      $Tramp$TT$L$PI$$far1
   20000001     00008014     00008000   a.o (.start)
                             00008024   a.o (.near)
                             00008028   a.o (.near)
far2                      $Tramp$TT$L$PI$$far2
   2000000b     0000801c     00008004   a.o (.start)
near                      $Tramp$TT$L$PI$$near
   00008025     2000000c     20000000   a.o (.far1)
[3 trampolines]
[5 trampoline calls]
--- sym
$Tramp$TT$L$PI$$far1 0x8015 .low
--- dis .low
8000: f000 f808 bl 8014
8004: f000 f80a bl 801c
8008: f000 f80c bl 8024
800c: bf00 nop
800e: bf00 nop
8014: f8df f000 ldr.w pc, [pc]
8018: 20000001 .word 0x20000001
8024: f7ff fff6 bl 8014
8028: f7ff bff4 b.w 8014
--- readelf -sW
00008014 0 NOTYPE LOCAL DEFAULT 1 $t
00008018 0 NOTYPE LOCAL DEFAULT 1 $d
00008015 8 FUNC LOCAL DEFAULT 1 $Tramp$TT$L$PI$$far1
--- case without trampolines the calls overflow
--- args
a.o l.cmd -o out.elf --trampolines=off
--- stderr has
warning: relocation to symbol "far1" overflowed; the 29-bit relocated address
warning: output file "out.elf" cannot be loaded and run on a target system
--- sym
$Tramp$TT$L$PI$$far1 -
--- case the parts of the map have their attributes
--- args
a.o l.cmd -o out.elf --map_file=out.map --mapfile_contents=notrampolines
--- text out.map lacks
FAR CALL TRAMPOLINES
--- case a partial link leaves calls alone
--- args
a.o l.cmd -o out.elf --relocatable --map_file=out.map
--- stderr
warning: option -e demoted to -u for symbol "start"
--- text out.map lacks
.tramp
FAR CALL TRAMPOLINES
--- case every call, on demand
--- args
a.o l.cmd -o out.elf --debug:xtramps --map_file=out.map
--- text out.map has
far2                      $Tramp$TT$S$$far2
[5 trampolines]
[7 trampoline calls]
--- case no literals between instructions
--- args
a.o l.cmd -o out.elf --embedded_constants=off
--- dis .high
2000000c: f248 0c2b movw ip, #32811
20000010: f2c0 0c00 movt ip, #0
20000014: 4760 bx ip
--- case relocations that stay name the stubs, and stubs name their callees
--- args
a.o l.cmd -o out.elf --rom
--- readelf -rW
00008000 0000140a R_ARM_THM_CALL 00008015 $Tramp$TT$L$PI$$far1
00008018 00001c02 R_ARM_ABS32 20000001 far1
