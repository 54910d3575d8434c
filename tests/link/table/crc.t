CRC tables: records, algorithms that are kept or refused, what has no data.
--- a.s
    .global _start
    .section .text.s, "ax"
    .thumb_func
_start:
    bx lr
    .section .digits, "a"
    .ascii "123456789"
    .section .abc, "a"
    .ascii "abc"
    .section .room, "aw", %nobits
    .space 8
--- mem.cmd
--unused_section_elimination=off
--entry_point=_start
MEMORY { ROM (RX) : origin = 0x1000, length = 0x1000  RAM : origin = 0x8000, length = 0x1000 }
--- case values that are published, in the order of addresses
--- link.cmd
SECTIONS {
    .QV.crctab : > 0x1800
    .abc    : > 0x1100, crc_table(t, algorithm=CRC32)
    .digits : > 0x1000, crc_table(t, algorithm=CRC16_CCITT)
    .room   : > 0x8000, crc_table(t)
    .text   : { *(.text*) } > ROM
}
--- args
a.o mem.cmd link.cmd -o out.elf
--- sym
t           0x1800 .QV.crctab
__QV_CRC_t  0x1800 .QV.crctab
--- bytes .QV.crctab
18 00 00 00 03 00 00 00
b1 29 00 00 00 00 00 00  04 00 00 00  00 10 00 00  09 00 00 00  00 00 00 00
c2 41 24 35 00 00 00 00  09 00 00 00  00 11 00 00  03 00 00 00  00 00 00 00
00 00 00 00 00 00 00 00  0a 00 00 00  00 80 00 00  08 00 00 00  00 00 00 00
--- case one algorithm for a section, whatever the later operators say
--- link.cmd
SECTIONS {
    .abc    : > ROM, crc_table(t, algorithm=CRC32), crc_table(u), crc_table(v, algorithm=ARC)
    .digits : > ROM, crc_table(t, algorithm=crc32)
    .text   : { *(.text*) } > ROM
    .room   : > RAM
    .QV.crctab : > ROM
}
--- args
a.o mem.cmd link.cmd -o out.elf
--- stderr re
"link.cmd", line 2: warning: crc_table\(u\): using previously recorded algorithm\s+"CRC32" for ".abc"
"link.cmd", line 2: warning: crc_table\(v\): algorithm "ARC" does not match\s+previously recorded algorithm "CRC32" for ".abc"; "CRC32" used
"link.cmd", line 3: warning: crc_table\(t\) operator ignored for ".digits":\s+invalid algorithm "crc32" specified\n
--- section
.QV.crctab 0x1010 0x60
--- case over a table of its own kind, and over a copy table
--- link.cmd
SECTIONS {
    .abc    : LOAD > ROM, RUN > RAM, table(t)
    .digits : > ROM, crc_table(u)
    .ovly   : > ROM, crc_table(u)
    .QV.crctab : > ROM, crc_table(v)
    .text   : { *(.text*) } > ROM
    .room   : > RAM
}
--- args
a.o mem.cmd link.cmd -o out.elf
--- stderr re
"link.cmd", line 5: warning: table\(v\) operator ignored for ".QV.crctab":\s+cannot\s+apply CRC table operator \(v\) to section\s+".QV.crctab",\s+which\s+itself\s+contains\s+linker-generated\s+copy\s+table\s+or\s+CRC\s+table\s+sections\n
--- sym
v -
