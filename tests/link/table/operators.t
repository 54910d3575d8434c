Where table() may stand, what it makes there, and what it says where it may not.
--- a.s
    .global _start
    .section .text.s, "ax"
    .thumb_func
_start:
    bx lr
    .section .one, "aw"
    .byte 1, 2, 3, 4
    .section .two, "aw"
    .byte 5, 6, 7, 8
    .section .three, "aw"
    .byte 9
    .section .refs, "a"
    .word first
--- unwind.s
    .syntax unified
    .global _start, __cxa_throw
    .section .text.s, "ax"
    .thumb_func
    .fnstart
_start:
__cxa_throw:
    bx lr
    .cantunwind
    .fnend
--- mem.cmd
--unused_section_elimination=off
--entry_point=_start
MEMORY { ROM (RX) : origin = 0x1000, length = 0x1000  RAM : origin = 0x8000, length = 0x1000 }
--- case a group has a record for each member, in the order of load addresses
--- link.cmd
SECTIONS {
    .text : { *(.text*) *(.refs) } > ROM
    .ovly : > ROM
    GROUP { .two :  .one : } LOAD > 0x1800, RUN > RAM, table(first)
    .three : > RAM
}
--- args
a.o mem.cmd link.cmd -o out.elf
--- sym
first             0x1008 .ovly
__QV_table_first  0x1008 .ovly
--- bytes .ovly
0c 00 02 00
00 18 00 00  00 80 00 00  04 00 00 00
04 18 00 00  04 80 00 00  04 00 00 00
--- case a section that comes out empty has no record: a size of 0 would mean encoded data
--- link.cmd
SECTIONS {
    .text : { *(.text*) *(.refs) } > ROM
    .ovly : > 0x1900
    .none : { . = ALIGN(4); *(.none*) . = ALIGN(4); } LOAD > 0x1800, RUN > RAM, table(first), table(none)
    .data : LOAD > ROM, RUN > RAM, table(none, compression=rle)
    .one : LOAD > 0x1800, RUN > 0x8010, table(first)
    .two : > RAM
    .three : > RAM
}
__QV_decompress_rle24 = 0;
--- args
a.o mem.cmd link.cmd -o out.elf --diag_suppress=10151
--- sym
first 0x1900 .ovly
none  0x1910 .ovly
--- bytes .ovly
0c 00 01 00  00 18 00 00  10 80 00 00  04 00 00 00
0c 00 00 00
--- case two tables on a section, one of them with sections of its own
--- link.cmd
SECTIONS {
    .text : { *(.text*) *(.refs) } > ROM
    .ovly : > ROM
    .one : LOAD > 0x1800, RUN > RAM, table(first) table(second)
    .two : LOAD > 0x1900, RUN > RAM, table(second)
    .three : > RAM
}
--- args
a.o mem.cmd link.cmd -o out.elf
--- section
.ovly 0x1008 0x2c
--- case the table that start-up copies first has a section of its own and one name
--- link.cmd
SECTIONS {
    .text : { *(.text*) } > ROM
    .binit : > ROM
    .one : LOAD > 0x1800, RUN > RAM, table(BINIT)
    .two : LOAD > 0x1900, RUN > RAM, table(binit)
    .three : > RAM
    .refs : { *(.refs) } > ROM
}
first = 0;
--- args
a.o mem.cmd link.cmd -o out.elf
--- sym
__QV_table_binit 0x1008 .binit
binit            0x1008 .binit
__binit__        0x1008 .binit
--- bytes .binit
0c 00 02 00
00 18 00 00  00 80 00 00  04 00 00 00
00 19 00 00  04 80 00 00  04 00 00 00
--- case the index for unwinding, which takes the place of the section that the command file names
--- link.cmd
SECTIONS {
    .text : { *(.text*) } > ROM
    .ovly : > ROM
    .ARM.exidx : LOAD > 0x1800, RUN > 0x8000, table(t), crc_table(c, algorithm=CRC32)
    .QV.crctab : > ROM
}
--- args
unwind.o mem.cmd link.cmd -o out.elf
--- bytes .ARM.exidx
00 90 ff 7f  01 00 00 00
--- bytes .ovly
0c 00 01 00
00 18 00 00  00 80 00 00  08 00 00 00
--- bytes .QV.crctab
18 00 00 00 01 00 00 00
e2 12 10 ad 00 00 00 00  09 00 00 00  00 18 00 00  08 00 00 00  00 00 00 00
