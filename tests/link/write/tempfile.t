--tempfile keeps the program as it is before its symbols change; what takes the output's name is saved a second time.
--- a.s
    .section .text._start, "ax"
    .globl _start, foo
    .type _start, %function
    .thumb_func
_start: bl foo
    ldr r0, =big
    .thumb_func
foo: bx lr
    .data
    .global big
big: .word _start
    .fill 5000, 4, 0x01020304
--- link.cmd
MEMORY { M : origin = 0x100, length = 0x100  N : origin = 0x1000, length = 0x10000 }
SECTIONS { .text : { *(.text*) } > M  .data : { *(.data) } > N }
--- case the_first_file
--- args
a.o link.cmd -o second.elf --tempfile=out.elf -e _start --hide=foo
--- sym
foo 0x107 .text
--- section
.data 0x1000 20004
--- file second.elf
--- case the_second_file
--- args
a.o link.cmd -o out.elf --tempfile=first.elf -e _start --hide=foo --ofd=out.txt
--- sym
foo -
big 0x1000 .data
--- bytes .text
00 f0 01 f8 00 48 70 47 00 10 00 00
--- segments
LOAD 0x100 0x100 0xc 0xc RX
LOAD 0x1000 0x1000 0x4e24 0x4e24 RW
--- entry
0x101
--- file first.elf
--- text out.txt has
.data
--- case both_by_one_name
--- args
a.o link.cmd -o out.elf --tempfile=out.elf -e _start -s
--- stderr
warning: the -s option is deprecated for ELF; please use the strip utility
--- sym
big -
--- section
.data 0x1000 20004
--- case a_folder_that_is_none
--- args
a.o link.cmd -o out.elf --tempfile=nowhere/first.elf -e _start
--- exit
1
--- stderr
fatal error: cannot open output file "nowhere/first.elf" for writing
--- no-file out.elf
--- case after_an_error
--- args
a.o link.cmd -o out.elf --tempfile=first.elf -e _start --undef_sym=nothing
--- exit
1
--- stderr has
error: errors encountered during linking; "out.elf" not built
--- no-file first.elf
