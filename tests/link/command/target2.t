What R_ARM_TARGET2 means: an address unless --target2=rel asks for a distance.
--- a.s
    .section .text.f, "ax", %progbits
    .global start
start:
    .word name(TARGET2), start(TARGET2)
    .section .data.name, "aw"
    .global name
name:
    .word 0
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x100  RAM : origin = 0x1000, length = 0x100 }
SECTIONS { .text : { *(.text*) } > ROM  .data : { *(.data*) } > RAM }
--- case without the option
--- args
a.o link.cmd -o out.elf -e start
--- bytes .text
00100000 00010000
--- case abs
--- args
a.o link.cmd -o out.elf -e start --target2=abs
--- bytes .text
00100000 00010000
--- case rel
--- args
a.o link.cmd -o out.elf -e start --target2 rel
--- bytes .text
000f0000 fcffffff
--- case kept in a partial link
--- args
a.o -r -o out.elf --target2=rel
--- readelf -r
R_ARM_TARGET2
R_ARM_TARGET2
--- case another word
--- args
a.o link.cmd -o out.elf -e start --target2=got
--- exit
1
--- stderr
error: invalid parameter got to option --target2
error: errors encountered during linking; "out.elf" not built
--- no-file out.elf
