Operators that cannot be are dropped with a word, or end the link.
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
--- mem.cmd
--unused_section_elimination=off
--entry_point=_start
MEMORY { ROM (RX) : origin = 0x1000, length = 0x1000  RAM : origin = 0x8000, length = 0x1000 }
--- case on a union
--- link.cmd
SECTIONS {
    .text : { *(.text*) } > ROM
    UNION { .one : LOAD > ROM  .two : LOAD > ROM } RUN > RAM, table(t)
}
--- args
a.o mem.cmd link.cmd -o out.elf
--- stderr re
"link.cmd", line 3: warning: table\(t\) operator ignored for UNION "UNION_1":\s+table\(\) operator cannot be applied to a UNION\n
--- case one table twice on what overlays each other
--- link.cmd
SECTIONS {
    .text : { *(.text*) } > ROM
    .ovly : > ROM
    UNION { .one : LOAD > 0x1800, table(t)  .two : LOAD > 0x1900, table(t) } RUN > RAM
}
--- args
a.o mem.cmd link.cmd -o out.elf
--- stderr
"link.cmd", line 4: warning: table(t) operator ignored:  table(t) has already
   been applied to a potentially overlapping section in the UNION "UNION_1" in
   which ".two" is a descendant
--- bytes .ovly
0c 00 01 00  00 18 00 00  00 80 00 00  04 00 00 00
--- case one table on neighbours below a union
--- link.cmd
SECTIONS {
    .text : { *(.text*) } > ROM
    .ovly : > ROM
    UNION { GROUP { .one : LOAD > 0x1800, table(t)  .two : LOAD > 0x1900, table(t) } } RUN > RAM
}
--- args
a.o mem.cmd link.cmd -o out.elf
--- section
.ovly 0x1004 0x1c
--- case below a group that has a table
--- link.cmd
SECTIONS {
    .text : { *(.text*) } > ROM
    .ovly : > ROM
    GROUP { .one : table(u)  .two : } LOAD > 0x1800, RUN > RAM, table(t)
}
--- args
a.o mem.cmd link.cmd -o out.elf
--- stderr
"link.cmd", line 4: warning: table(u) operator ignored:  table(u) has already
   been applied to GROUP "GROUP_1" in which ".one" is a descendant
--- sym
u -
t 0x1004 .ovly
--- case on an empty section, and by a reserved name
--- link.cmd
SECTIONS {
    .text : { *(.text*) } > ROM
    .none : LOAD > ROM, RUN > RAM, table(t)
    .one : LOAD > ROM, RUN > RAM, table(__QV_cinit_table)
    .two : > RAM
}
--- args
a.o mem.cmd link.cmd -o out.elf
--- stderr
"link.cmd", line 4: warning: copy table operator (__QV_cinit_table) ignored for
   ".one":  __QV_cinit_table is a reserved table name and cannot be used
"link.cmd", line 3: warning: copy table operator (t) ignored for ".none":  copy
   table operator cannot be associated with empty output section
--- case compressions that contradict each other, or do not exist
--- link.cmd
SECTIONS {
    .text : { *(.text*) } > ROM
    .one : LOAD > ROM, RUN > RAM, table(t, compression=zip)
    .two : LOAD > ROM, RUN > RAM, table(t, compression=lzss), table(u, compression=RLE)
}
__QV_decompress_lzss = 0;
--- args
a.o mem.cmd link.cmd -o out.elf
--- exit
1
--- stderr
"link.cmd", line 3: error: illegal compression "zip" specified for table(t)
   operator
"link.cmd", line 4: error: incompatible compression "RLE" specified for
   table(u) operator; output section already has compression "lzss"
error: errors encountered during linking; "out.elf" not built
--- case on the section of C initialisation
--- link.cmd
SECTIONS {
    .text : { *(.text*) } > ROM
    .cinit : LOAD > ROM, RUN > RAM, table(t)
    .one : > RAM
    .two : > RAM
    __QV_decompress_none = _start;
    __QV_decompress_lzss = _start;
}
--- args
a.o --rom_model mem.cmd link.cmd -o out.elf
--- exit
1
--- stderr has
"link.cmd", line 3: error: cannot apply table(t) operator to C auto
--- case in a link that something else follows
--- link.cmd
SECTIONS { .one : table(t), crc_table(c) }
--- args
a.o -r link.cmd -o out.elf
--- stderr
"link.cmd", line 1: warning: table(t) operator ignored:  linker will only
   generate a copy table when creating a bare metal executable file
"link.cmd", line 1: warning: crc_table(c) operator ignored:  linker will only
   generate a CRC table when creating an executable file
--- case compression without a place of its own for the load image
--- link.cmd
SECTIONS {
    .text : { *(.text*) } > ROM
    .ovly : > ROM
    .one : > RAM, table(t, compression=lzss)
    .two : > RAM
}
--- args
a.o mem.cmd link.cmd -o out.elf
--- stderr
"link.cmd", line 4: warning: copy table compression requires explicit load
   placement specification; compression "lzss" is ignored for section ".one"
--- bytes .ovly
0c 00 01 00  00 80 00 00  00 80 00 00  04 00 00 00
