The entry point is the symbol asked for, with the Thumb bit of its code; without any it is 0 and a warning says so.
--- a.s
    .section .text._start, "ax"
    .globl _start
    .type _start, %function
    .thumb_func
_start: bx lr
    .section .text.other, "ax"
    .globl other
other: bx lr
--- link.cmd
--retain=*(.text.other)
MEMORY { M : origin = 0x100, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M }
--- case asked_for
--- args
a.o link.cmd -o out.elf --entry_point=_start
--- entry
0x101
--- case a_label_of_thumb_code
--- args
a.o link.cmd -o out.elf --entry_point=other
--- entry
0x101
--- case none
--- args
a.o link.cmd -o out.elf
--- stderr
warning: no suitable entry-point found; setting to 0
--- entry
0
--- case a_start_of_its_own_in_a_C_model
--- args
a.o link.cmd -o out.elf --ram_model -e _start
--- stderr
warning: entry-point symbol other than "_c_int00" specified:  "_start"
--- case a_C_model_without_a_start
--- args
a.o link.cmd -o out.elf --ram_model --disable_auto_rts
--- stderr
warning: entry-point symbol "_c_int00" undefined
warning: no suitable entry-point found; setting to 0
--- readelf -sW
NOTYPE GLOBAL DEFAULT UND _c_int00
--- entry
0
--- case a_start_that_is_asked_for_and_missing
--- args
a.o link.cmd -o out.elf --ram_model --disable_auto_rts -e _c_int00
--- exit
1
--- stderr has
 _c_int00
error: unresolved symbols remain
warning: entry-point symbol "_c_int00" undefined
--- case not_wanted
--- args
a.o link.cmd -o out.elf --no_entry_point
--- entry
0
--- case in_a_partial_link_it_only_keeps_the_symbol
--- args
a.o -r -o out.elf -e _start
--- stderr
warning: option -e demoted to -u for symbol "_start"
--- entry
0
--- case the_same_with_the_reason
--- args
a.o -r -o out.elf -e _start --verbose_diagnostics
--- stderr
warning: option -e demoted to -u for symbol "_start"; option -e does not apply
   to relocatable file
