A symbol belongs to the section that its expression speaks of; symbols of several output sections make an absolute value, with a warning.
--- a.s
    .global _start, f, g, v, w
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .balign 4
    .word f, g, v, w
    .section .text.f, "ax"
f:  .word 1
    .section .text.g, "ax"
g:  .word 2, 3
    .data
v:  .word 4
w:  .word 5
    .section .text.gone, "ax"
    .global gone
gone: .word 6
--- base.cmd
--entry_point=_start
MEMORY { FLASH : o = 0x100, l = 0x1000  RAM : o = 0x20000000, l = 0x100 }
SECTIONS {
    .text : { *(.text._start) *(.text.f) *(.text.g) } > FLASH
    .data : { *(.data) } LOAD > FLASH, RUN > RAM
}
--- case one section, and none
--- l.cmd
in_text = f + 4;
in_data = w;
number = 0x40;
size = SIZE(RAM) + 4;
through = in_data + 4;
--- args
a.o base.cmd l.cmd -o out.elf
--- sym
in_text 0x118 .text
in_data 0x20000004 .data
number 0x40 ABS
size 0x104 ABS
through 0x20000008 .data
--- case two input sections of one output section are no conflict
--- l.cmd
distance = g - f;
--- args
a.o base.cmd l.cmd -o out.elf
--- sym
distance 4
--- case two output sections
--- l.cmd
distance = v - f;
sum = 1 + f + v + w;
--- args
a.o base.cmd l.cmd -o out.elf
--- stderr
"l.cmd", line 1: warning: section relative symbols from different output
   sections cannot be mixed; "v" is in section ".data", "f" is in section
   ".text"
"l.cmd", line 2: warning: section relative symbols from different output
   sections cannot be mixed; "f" is in section ".text", "v" is in section
   ".data"
"l.cmd", line 2: warning: section relative symbols from different output
   sections cannot be mixed; "f" is in section ".text", "w" is in section
   ".data"
--- sym
distance 0x1ffffeec ABS
sum 0x40000119 ABS
--- case dot and a symbol of another section
--- dot.cmd
--entry_point=_start
MEMORY { FLASH : o = 0x100, l = 0x1000  RAM : o = 0x20000000, l = 0x100 }
SECTIONS {
    .text : { *(.text*) far = v - .; near = . - f; } > FLASH
    .data : { *(.data) } LOAD > FLASH, RUN > RAM
}
--- args
a.o dot.cmd -o out.elf
--- stderr
"dot.cmd", line 4: warning: section relative symbols from different output
   sections cannot be mixed; "DOT operator" is in section ".text", "v" is in
   section ".data"
--- case the symbol of a section that nothing refers to
--- l.cmd
kept = f;
lost = gone + later;
later = 1;
--- args
a.o base.cmd l.cmd -o out.elf
--- exit
1
--- stderr
"l.cmd", line 2: warning: the address used for symbol "gone" is not meaningful,
   as the input section that defines the symbol is not referenced and was
   deleted; if desired, the -u linker option can be used to force "gone" to be
   included in the program image
"l.cmd", line 2: error: symbol "gone" used in expression before it has been
   assigned a value
error: errors encountered during linking; "out.elf" not built
--- no-file out.elf
--- case load operators of what has nothing to load
--- bss.cmd
--entry_point=_start
MEMORY { FLASH : o = 0x100, l = 0x1000  RAM : o = 0x20000000, l = 0x100 }
SECTIONS {
    .text : { *(.text*) } > FLASH
    .data : { *(.data) } > RAM
    .zero : { z.o(.bss) } > RAM, LOAD_START(zero_load), RUN_START(zero_run)
}
--- z.s
    .bss
    .global z
z:  .space 8
--- args
--issue_remarks a.o z.o bss.cmd -o out.elf -u z
--- stdout
"bss.cmd", line 6: remark: bad LOAD_START() operator applied to un-initialized
   object ".zero"; object's RUN placement used to compute operator value
--- sym
zero_load 0x20000008
zero_run 0x20000008
