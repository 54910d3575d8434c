In a partial link what nobody asked for keeps to itself, named with its file unless that is switched off; what a command file asks for is combined.
--- a.s
    .section .text.f, "ax"
    .global f
f:  .word g
    .section .data.d, "aw"
    .word 1
--- b.s
    .section .text.f, "ax"
    .global g
g:  .word 2
    .section .text.grouped, "axG", %progbits, key, comdat
    .global h
h:  .word 3
--- case without a command file
--- args
--relocatable a.o b.o -o out.elf
--- section
.text.f:a.o 0 4
.text.f:b.o 0 4
.data.d:a.o 0 4
.text.grouped:b.o 0 4
.text.f - -
--- case without the names of files
--- args
--relocatable a.o b.o -o out.elf --disable_filename_as_subsection
--- readelf -S
.text.f PROGBITS
.data.d PROGBITS
.text.f PROGBITS
.text.grouped PROGBITS
--- case what a command file takes is one section, groups stay apart
--- l.cmd
SECTIONS { mine : { *(.text.*) } }
--- args
--relocatable a.o b.o l.cmd -o out.elf
--- bytes mine
00000000 02000000
--- section
.text.grouped:b.o 0 4
.data.d:a.o 0 4
