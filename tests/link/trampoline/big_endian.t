Stubs in big-endian programs: code in the byte order of code, literals in that of data.
--- a.s -mcpu=cortex-a15 -mbig-endian
    .syntax unified
    .section .start, "ax"
    .arm
    .global start
    .type start, %function
start: bne far
    bl near
    bx lr
    .thumb
    .type near, %function
    .thumb_func
near: bl far
    bx lr
    .section .far, "ax"
    .thumb
    .global far
    .type far, %function
    .thumb_func
far: bx lr
--- l.cmd
--entry_point=start
MEMORY { LOW (RX) : o = 0x8000, l = 0x1000  HIGH (RX) : o = 0x20000000, l = 0x1000 }
SECTIONS { .low : { *(.start) } > LOW  .high : { *(.far) } > HIGH }
--- case code in big-endian order
--- args
a.o l.cmd -o out.elf --be32
--- bytes .low
1a000003 fa000000 e12fff1e f000 f808 4770 bf00
e59fc000 e12fff1c 20000001
f8df f000 20000001
--- case code in little-endian order
--- args
a.o l.cmd -o out.elf
--- bytes .low
0300001a 000000fa 1eff2fe1 00f0 08f8 7047 00bf
00c09fe5 1cff2fe1 20000001
dff8 00f0 20000001
