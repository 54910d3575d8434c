A GROUP that is split in its load and in its run placement and finds no room is reported twice, and nothing else fails.
--- a.s
    .section .text.a, "ax"
    .space 0x40
    .section .text.b, "ax"
    .space 0x30
    .section .data.a, "aw"
    .space 0x50
    .section .data.b, "aw"
    .space 0x10
--- link.cmd
MEMORY { A : origin = 0x0, length = 0x38  B : origin = 0x1000, length = 0x60 }
SECTIONS { GROUP(g) { .text : { *(.text*) } GROUP { .data : { *(.data*) } } } LOAD >> A, RUN >> B }
--- args
a.o link.cmd -o out.elf --unused_section_elimination=off
--- exit
1
--- stderr has
error: program will not fit into available memory.  run
   placement
error: program will not fit into available memory.  load
   placement
error: errors encountered during linking
--- no-file out.elf
