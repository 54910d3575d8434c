Options hide, localize and strip symbols of the output; of two patterns that match the narrower one decides.
--- a.s
    .section .text._start, "ax"
    .globl _start, foo, foobar, bar
    .type _start, %function
    .thumb_func
_start: bl foo
    bl foobar
    bl bar
foo: bx lr
foobar: bx lr
bar: bx lr
--- link.cmd
MEMORY { M : origin = 0x100, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M }
--- case hide_all_but_one_pattern
--- args
a.o link.cmd -o out.elf --entry_point=_start --hide=* --unhide=foo*
--- sym
foo 0x10c
foobar 0x10e
bar -
_start -
--- case localize
--- args
a.o link.cmd -o out.elf --entry_point=_start --localize=foo
--- readelf -sW
0000010c 0 NOTYPE LOCAL DEFAULT 1 foo
0000010e 0 NOTYPE GLOBAL DEFAULT 1 foobar
--- case equally_wide_patterns_are_an_error
--- args
a.o link.cmd -o out.elf --entry_point=_start --hide=foo --unhide=foo
--- exit
1
--- stderr
error: ambiguous symbol hide options; symbol foo matches both --hide='foo' and
   --unhide='foo'; in such cases, one pattern must be more restrictive than the
   other
error: errors encountered during linking; "out.elf" not built
--- no-file out.elf
--- case strip
--- args
a.o link.cmd -o out.elf --entry_point=_start -s
--- stderr
warning: the -s option is deprecated for ELF; please use the strip utility
--- sym
foo -
_start -
--- case strip_a_relocatable_file
--- args
a.o -r -o out.elf -s
--- stderr has
ignoring the --no_symtable (-s) option; a relocatable output file must
--- sym
foo 0xc .text._start:a.o
