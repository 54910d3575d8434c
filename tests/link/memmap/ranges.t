Faults of memory ranges are reported at their place and end the link without an output.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
--- case overlap
--- link.cmd
MEMORY {
    A : origin = 0x100, length = 0x100
    B : origin = 0x1ff, length = 0x100
}
SECTIONS { .text : { *(.text*) } > A }
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- exit
1
--- stderr has
"link.cmd", line 3: error: B memory range overlaps existing memory range A
--- no-file out.elf
--- case one name twice
--- link.cmd
MEMORY {
    A : origin = 0x100, length = 0x100
    A : origin = 0x200, length = 0x100
}
SECTIONS { .text : { *(.text*) } > A }
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- exit
1
--- stderr has
"link.cmd", line 3: error: A memory range has already been specified
--- no-file out.elf
--- case no length
--- link.cmd
MEMORY { A : origin = 0x100 }
SECTIONS { .text : { *(.text*) } > 0x100 }
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- exit
1
--- stderr has
error: length not specified for memory range A
--- no-file out.elf
