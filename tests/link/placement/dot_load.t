A load image whose place comes before the run image's (a phase earlier: the UNION holds a table) is laid out as the run image: dot counts there.
--- a.s
    .section .text, "ax"
    .global _start
_start: .word x, y, copies
    .section .data.x, "aw"
x:  .word 1
    .section .data.y, "aw"
y:  .word 2
--- case low
--- link.cmd
MEMORY { ROM : origin = 0x1000, length = 0x500  RAM : origin = 0x20000, length = 0x1000 }
SECTIONS
{
    UNION
    {
        .x : { *(.data.x) . += 8; } LOAD = ROM
        .y : { *(.data.y) } LOAD = ROM table(copies)
        .ovly : { }
    } > RAM
    .text > ROM
}
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- section
.x 0x20000 0xc
.y 0x20000 0x4
.ovly 0x20000 0x10
--- segments
LOAD 0x1000 0x1000 0xc 0xc RX
LOAD 0x20000 0x100c 0xc 0xc RW
LOAD 0x20000 0x1018 0x4 0x4 RW
LOAD 0x20000 0x20000 0x10 0x10 R
--- case high
--- high.cmd
MEMORY { ROM : origin = 0x1000, length = 0x500  RAM : origin = 0x20000, length = 0x1000 }
SECTIONS
{
    UNION
    {
        .x : { *(.data.x) . += 8; } LOAD = ROM(HIGH)
        .y : { *(.data.y) } LOAD = ROM table(copies)
        .ovly : { }
    } > RAM
    .text > ROM
}
--- args
a.o high.cmd -o out.elf --entry_point=_start
--- section
.x 0x20000 0xc
--- readelf -lW
LOAD 0x000044 0x00020000 0x000014f4 0x0000c 0x0000c RW
