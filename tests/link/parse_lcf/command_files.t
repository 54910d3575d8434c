Command files bring options, inputs, ranges and sections; mistakes in them have their place and leave no output.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bl one
--- b.s
    .global one
    .section .text.one, "ax"
    .thumb_func
one: bx lr
    nop
    nop
--- archive lib.a b.o
--- inner.cmd
/* a command file that another one names */
"lib.a"
--- case everything from files
--- outer.cmd
--entry_point=_start -o "out.elf"
a.o inner.cmd
MEMORY { LOW (RX) : origin = 1K, length = 2K, HIGH : org = 0x10000 len = 10h }
SECTIONS {
    .first 0x500 : { lib.a<b.o>(.text.*) }
    GROUP(rest) : { .second : { *(.text*) } } > HIGH
}
--- args
outer.cmd
--- section
.first 0x500 6
.second 0x10000 4
--- case names without directories
--- l.cmd
-e _start
MEMORY { M : o = 0, l = 0x100 }
SECTIONS { .text : { -l nothere.a (.text) *(.text*) } > M }
--- args
a.o lib.a l.cmd -o out.elf
--- exit
1
--- stderr has
"l.cmd", line 3: error: cannot find file "nothere.a"
--- no-file out.elf
--- case a command file as the file of a specification
--- l.cmd
-e _start
MEMORY { M : o = 0, l = 0x100 }
SECTIONS { .text : { inner.cmd(.text) *(.text*) } > M }
--- args
a.o lib.a l.cmd -o out.elf
--- exit
1
--- stderr has
"l.cmd", line 3: error: illegal file type:  "inner.cmd" must specify an object
--- no-file out.elf
--- case a stray token
--- l.cmd
-e _start
MEMORY { M : o = 0, l = 0x100 }
SECTIONS {
    .text : { *(.text*) } > (M ;)
}
--- args
a.o lib.a l.cmd -o out.elf
--- exit
1
--- stderr
"l.cmd", line 4: error: expecting "")"" instead of ";"
error: errors encountered during linking; "out.elf" not built
--- no-file out.elf
--- case directives are capitals
--- l.cmd
memory { M : o = 0, l = 0x100 }
--- args
a.o lib.a l.cmd -o out.elf -e _start
--- exit
1
--- stderr has
"l.cmd", line 1: error: cannot find file "memory"
"l.cmd", line 1: error: expecting filename, option, MEMORY, or SECTIONS instead
--- no-file out.elf
--- case the end is missing
--- l.cmd
MEMORY { M : o = 0, l = 0x100 }
SECTIONS { .text : { *(.text*)
--- args
a.o lib.a l.cmd -o out.elf -e _start
--- exit
1
--- stderr has
"l.cmd", line 2: error: end of file encountered unexpectedly
--- no-file out.elf
--- case dot has no value outside of an output section
--- l.cmd
-e _start
MEMORY { M : o = 0, l = 0x100 }
SECTIONS { .text : { *(.text*) } > M }
here = .;
there = . + 4;
--- args
a.o lib.a l.cmd -o out.elf
--- exit
1
--- stderr
"l.cmd", line 4: error: illegal expression
"l.cmd", line 5: error: illegal expression
error: errors encountered during linking; "out.elf" not built
--- no-file out.elf
