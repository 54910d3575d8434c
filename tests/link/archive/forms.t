Archives are read in every form but the thin one, which is refused by name.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bl one
    bl two
--- a_name_of_more_than_15_characters.s
    .global one
    .section .text.one, "ax"
    .thumb_func
one: bx lr
--- second_name_longer_than_a_field.s
    .global two
    .section .text.two, "ax"
    .thumb_func
two: bx lr
--- ok.cmd
--entry_point=_start
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M }
--- archive lib.a a_name_of_more_than_15_characters.o second_name_longer_than_a_field.o
--- case long names
--- args
a.o lib.a ok.cmd -o out.elf -m out.map
--- section
.text 0x1000 12
--- text out.map has
a_name_of_more_than_15_characters.o
second_name_longer_than_a_field.o
--- case the archive is cut in its table of names
--- truncate lib.a 200
--- args
a.o lib.a ok.cmd -o out.elf
--- exit
1
--- stderr has
error: Corrupt member header: 'lib.a'
--- no-file out.elf
--- case thin
--- archive --thin thin.a a_name_of_more_than_15_characters.o
--- args
a.o thin.a ok.cmd -o out.elf
--- exit
1
--- stderr has
error: 'thin.a' is a thin archive, which names its members but does not hold
--- no-file out.elf
