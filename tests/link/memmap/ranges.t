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
--- case properties given twice, and the order of what is told
--- link.cmd
MEMORY {
    A (RX) : origin = 0x100, length = 0x100, attr = (R), origin = 0x200
    B : length = 0x10, length = 0x20, origin = 0x180
    C (RR) : origin = 0x1000, length = 0x10
    D : origin = 0x17f, length = 0x200
    ALIAS { E : origin = 0x2000  F : origin = 0x300 } length = 0x10
}
SECTIONS { .text : { *(.text*) } > A }
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- exit
1
--- stderr
"link.cmd", line 2: error: attributes already specified for memory range A
"link.cmd", line 2: error: origin already specified for memory range A
"link.cmd", line 3: error: length already specified for memory range B
"link.cmd", line 4: error: invalid memory attribute specifier:  "RR"
"link.cmd", line 5: error: D memory range overlaps existing memory range B
"link.cmd", line 5: error: D memory range overlaps existing memory range A
"link.cmd", line 6: error: F memory range overlaps existing memory range D
error: errors encountered during linking; "out.elf" not built
--- case ranges that touch, and ranges of other pages
--- link.cmd
MEMORY {
    A : origin = 0x100, length = 0x100
    B : origin = 0x200, length = 0x100
    Z : origin = 0x0, length = 0x100
    TOP : origin = 0xffffff00, length = 0x100
    PAGE 1 : A : origin = 0x100, length = 0x100
}
SECTIONS { .text : { *(.text*) } > TOP }
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- section
.text 0xffffff00 2
