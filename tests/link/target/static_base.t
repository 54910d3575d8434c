The static base is the start of the lowest output section that has an address.
--- a.s
    .text
    .thumb_func
    .global _start
_start: bx lr
    .data
    .global x
x:  .word _start
--- link.cmd
MEMORY { LOW : origin = 0x100, length = 0x100   HIGH : origin = 0x8000, length = 0x100 }
SECTIONS { .text : { *(.text*) } > HIGH   .data : { *(.data*) } > LOW }
--- case default sections, most of them empty
--- args
a.o --entry_point=_start --ram_model --undef_sym=x -o out.elf
--- stderr
warning: entry-point symbol other than "_c_int00" specified:  "_start"
--- section
.data 0x20 4
.text 0x24 2
--- sym
__QV_static_base__ 0x20 .data
--- case by address, not by order
--- args
a.o link.cmd --entry_point=_start --undef_sym=x -o out.elf
--- sym
__QV_static_base__ 0x100 .data
