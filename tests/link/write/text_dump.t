--ofd writes the output as text.
--- a.s
    .global start
    .section .text, "ax"
start:
    .word value
    .section .data, "aw"
value:
    .word 0x1234
--- link.cmd
MEMORY { ROM : origin = 0x100, length = 0x100  RAM : origin = 0x1000, length = 0x100 }
SECTIONS { .text : > ROM  .data : > RAM }
--- case to a file
--- args
a.o link.cmd -e start -o out.elf --ofd=out.txt
--- text out.txt re
(?s)\nOBJECT FILE\n.*entry point +0x00000100\n.*\.data +0x00001000 +0x00001000 +0x4 .*PT_LOAD .*start +0x00000100 .*
--- case to standard output
--- args
a.o link.cmd -e start -o out.elf --debug:ofd
--- stdout re
(?s)\n\nOUTPUT FILE DUMP:\n.*\.text .*
--- case a partial link: sections of a group, relocations, visibility, attributes and strings
--- part.s
    .syntax unified
    .section .text.once, "axG", %progbits, once, comdat
    .weak once
    .type once, %function
    .thumb_func
once:
    bl far
    .size once, . - once
    .data
    .hidden secret
    .global secret
secret: .word far + 4
--- args
part.o -r -o out.elf --ofd=out.txt
--- text out.txt has
 OBJECT FILE
 type relocatable file
 e_type ET_REL
 SECTIONS
 .group 0x00000000 0x00000000 0xc 4 0x34 SHT_GROUP link=7 info=10 entsize=4
 once SHT_PROGBITS SHF_ALLOC|SHF_EXECINSTR|SHF_GROUP
 SHT_SYMTAB link=12 info=10 entsize=16
 SHT_REL link=7 info=3 entsize=8
 STRINGS .shstrtab
 .text.once
 STRINGS .strtab
 secret
 SYMBOLS .symtab
 once 0x00000001 0x4 defined weak function .text.once:part.o
 secret 0x00000000 0x0 defined global none .data:part.o hidden
 RELOCATIONS OF .data:part.o
 0x00000000 R_ARM_ABS32 far
 RELOCATIONS OF .text.once:part.o
 0x00000000 R_ARM_THM_CALL far
 GROUPS
 .group once GRP_COMDAT .text.once:part.o
 BUILD ATTRIBUTES
 Tag_CPU_arch_profile 77 Microcontroller profile
--- case what the linker makes itself
--- env
TMPDIR=.
--- args
a.o link.cmd -e start -o out.elf --arg_size=16 --debug:internal_file
--- stdout re
Linker internal file written to "\./qvl\w{6}"\n
--- no-file out.elf
