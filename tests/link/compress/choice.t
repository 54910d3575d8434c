What is stored encoded, by which encoding, and what cannot be.
--- a.s
    .global _c_int00
    .section .text.s, "ax"
    .thumb_func
_c_int00:
    bx lr
    .section .vars, "aw"
    .fill 32, 1, 7
    .section .pointer, "aw"
    .word __QV_CINIT_Base
    .fill 60, 1, 0
    .section .zeros, "aw", %nobits
    .space 16
    .section .once, "aw", %nobits
    .space 4
--- run.s
    .global __QV_decompress_none, __QV_decompress_lzss, __QV_decompress_rle24, __QV_zero_init
    .section .unpack, "ax"
    .thumb_func
__QV_decompress_none:
    nop
    .thumb_func
__QV_decompress_lzss:
    nop
    .thumb_func
__QV_decompress_rle24:
    nop
    .thumb_func
__QV_zero_init:
    nop
--- mem.cmd
--unused_section_elimination=off
MEMORY { ROM (RX) : origin = 0x1000, length = 0x1000  RAM : origin = 0x8000, length = 0x1000 }
--- rom.cmd
SECTIONS {
    .text  : { *(.text*) } > ROM
    .unpack : > ROM
    .cinit : > 0x1800
    .vars  : > 0x8000
    .zeros : > 0x8100
    .once  : > 0x8200, type=NOINIT
    .pointer : > 0x8300
}
--- case the best for each: with data, without, never initialised, with an address that is not known in time
--- args
a.o run.o --rom_model mem.cmd rom.cmd -o out.elf --map_file=out.map
--- stderr
warning: output section ".pointer" refers to load symbol "__QV_CINIT_Base" and
   hence cannot be compressed; compression "lzss" is ignored
--- text out.map has
                  00001800    00000048     (.cinit..pointer.load) [load image]
                  00001854    00000008     (.cinit..vars.load) [load image, compression = lzss]
                  00001860    00000008     (.cinit..zeros.load) [load image, compression = zero_init]
                  00001868    00000018     (__QV_cinit_table)
	.pointer: load addr=00001800, load size=00000048 bytes, run addr=00008300, run size=00000040 bytes, compression=copy
	.vars: load addr=00001854, load size=00000008 bytes, run addr=00008000, run size=00000020 bytes, compression=lzss
	.zeros: load addr=00001860, load size=00000008 bytes, run addr=00008100, run size=00000010 bytes, compression=zero_init
__QV_handler_table @ 00001848 records: 3, size/record: 4, table size: 12
	index: 0, handler: __QV_decompress_lzss
	index: 1, handler: __QV_decompress_none
	index: 2, handler: __QV_zero_init
--- sym
__QV_CINIT_Base          0x1868 .cinit
__QV_CINIT_Limit         0x1880 .cinit
__QV_Handler_Table_Base  0x1848 .cinit
__QV_Handler_Table_Limit 0x1854 .cinit
--- bytes .cinit
01 00 00 00  40 00 00 00  68 18 00 00  00 00 00 00
00000000 00000000 00000000 00000000
00000000 00000000 00000000 00000000
00000000 00000000 00000000 00000000
00000000 00000000  03100000 01100000
07100000  00 01 07 00  0f 0d ff f0  00000000
02000000 10000000  00180000 00830000
54180000 00800000 60180000 00810000
--- segments
LOAD 0x1000 0x1000 0xa 0xa RX
LOAD 0x1800 0x1800 0x80 0x80 R
LOAD 0x8000 0x8000 0x0 0x20 RW
LOAD 0x8100 0x8100 0x0 0x10 RW
LOAD 0x8200 0x8200 0x0 0x4 RW
LOAD 0x8300 0x8300 0x0 0x40 RW
--- case no compression: the format stays, all is stored as it is
--- args
a.o run.o --rom_model --cinit_compression=off mem.cmd rom.cmd -o out.elf --map_file=out.map
--- text out.map has
	.vars: load addr=00001848, load size=00000028 bytes, run addr=00008000, run size=00000020 bytes, compression=copy
	.zeros: load addr=
	index: 0, handler: __QV_decompress_none
	index: 1, handler: __QV_zero_init
--- case run lengths serve zeros too: one routine less
--- args
a.o run.o --rom_model --cinit_compression=rle mem.cmd rom.cmd -o out.elf --map_file=out.map --diag_suppress=10062
--- text out.map has
	.zeros: load addr=00001851, load size=00000009 bytes, run addr=00008100, run size=00000010 bytes, compression=rle
	index: 0, handler: __QV_decompress_rle24
	index: 1, handler: __QV_decompress_none
--- text out.map lacks
	index: 2
--- case zeros are left alone
--- args
a.o run.o --rom_model --zero_init=off mem.cmd rom.cmd -o out.elf --map_file=out.map --diag_suppress=10062
--- text out.map has
__QV_cinit_table @
	.vars:
	index: 1, handler: __QV_decompress_none
--- text out.map lacks
	.zeros: load
	index: 2
--- case the RAM model loads variables where they are
--- args
a.o --ram_model mem.cmd rom.cmd -o out.elf --map_file=out.map --symbol_map=__QV_CINIT_Base=_c_int00
--- section
.vars 0x8000 0x20
.cinit 0x0 0x0
--- sym
__QV_CINIT_Limit -
--- case a group that is placed late keeps its variables as they are
--- group.cmd
SECTIONS {
    .text  : { *(.text*) *(.pointer) } > ROM
    .unpack : > ROM
    GROUP { .vars :  .cinit : } > 0x8000
    .zeros : > 0x8100
    .once  : > 0x8200, type=NOINIT
}
--- args
a.o run.o --rom_model mem.cmd group.cmd -o out.elf --map_file=out.map
--- stderr
warning: "GROUP_1" contains both ".vars" and ".cinit"; compression "lzss" can
   not be performed for ".vars"
--- text out.map has
	.vars: load addr=00008020, load size=00000028 bytes, run addr=00008000, run size=00000020 bytes, compression=copy
--- case a routine that no image needs is not linked
--- sections.s
    .macro routine name
    .section .text.\name, "ax"
    .global \name
    .thumb_func
\name:
    nop
    .endm
    routine __QV_decompress_none
    routine __QV_decompress_lzss
    routine __QV_zero_init
--- keep.cmd
MEMORY { ROM (RX) : origin = 0x1000, length = 0x1000  RAM : origin = 0x8000, length = 0x1000 }
SECTIONS {
    .text  : { *(.text*) } > ROM
    .cinit : > 0x1800
    .zeros : > 0x8100
}
--- args
a.o sections.o --rom_model --retain=*(.zeros) keep.cmd -o out.elf --map_file=out.map
--- sym
__QV_zero_init 0x1001 .text
__QV_decompress_lzss -
__QV_decompress_none -
--- case the gaps of what is stored encoded have their fill, anchored to the addresses where it runs
--- gaps.cmd
SECTIONS {
    .text  : { *(.text*) *(.pointer) } > ROM
    .unpack : > ROM
    .cinit : > ROM
    .ovly : > ROM
    .vars  : { . += 3; *(.vars) . += 2; } LOAD > ROM, RUN > 0x8001, fill = 0x1234, table(t, compression=rle)
    .zeros : > 0x8100
    .once  : > 0x8200, type=NOINIT
}
--- args
a.o run.o mem.cmd gaps.cmd -o out.elf -e _c_int00 --symbol_map=__QV_CINIT_Base=_c_int00
--- bytes .vars.load
00 00  12 34 12  00 20 07  34 12  00 00 00 00
