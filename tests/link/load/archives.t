An archive gives the members that something wants at its place on the command line; groups and options read it again.
--- main.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .balign 4
    .word one
--- one.s
    .global one
    .section .text.one, "ax"
one: .word two
--- two.s
    .global two
    .section .text.two, "ax"
two: .word three
--- three.s
    .global three
    .section .text.three, "ax"
three: .word 3
--- otherone.s
    .global one
    .section .text.one, "ax"
one: .word 0x11
--- weakref.s
    .weak one
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .balign 4
    .word one
--- unused.s
    .global unused
    .section .text.unused, "ax"
unused: .word 9
--- asks.cmd
wanted = unused + 1;
--- archive backward.a three.o two.o one.o
--- archive onethree.a one.o three.o
--- archive justtwo.a two.o
--- archive other.a otherone.o
--- archive many.a one.o two.o three.o unused.o
--- ok.cmd
--entry_point=_start
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M }
--- case members that need members further up in the directory
--- args
main.o backward.a ok.cmd -o out.elf
--- readelf -sW
GLOBAL DEFAULT 1 one
GLOBAL DEFAULT 1 two
GLOBAL DEFAULT 1 three
--- case a member that nothing wants stays out
--- args
main.o many.a ok.cmd -o out.elf
--- sym
one 0x1008 .text
unused -
--- case an archive ahead of the need is not read again
--- args
many.a main.o ok.cmd -o out.elf
--- exit
1
--- stderr has
one       main.o
--- case unless reread
--- args
many.a main.o --reread_libs ok.cmd -o out.elf
--- sym
one 0x1008 .text
--- case archives that need each other are not read again
--- args
main.o onethree.a justtwo.a ok.cmd -o out.elf
--- exit
1
--- stderr has
three     justtwo.a<two.o>
--- case unless they form a group
--- args
main.o --start-group onethree.a justtwo.a --end-group ok.cmd -o out.elf
--- readelf -sW
GLOBAL DEFAULT 1 one
GLOBAL DEFAULT 1 two
GLOBAL DEFAULT 1 three
--- case with priority an earlier archive serves first
--- args
other.a main.o many.a --priority ok.cmd -o out.elf
--- bytes .text
7047 00bf 08100000 11000000
--- case without it the archive behind the need
--- args
other.a main.o many.a ok.cmd -o out.elf
--- sym
three 0x100c .text
--- case a weak reference pulls nothing
--- args
weakref.o many.a ok.cmd -o out.elf
--- sym
one 0
--- case an expression of a command file pulls a member
--- args
main.o many.a asks.cmd ok.cmd -o out.elf
--- exit
1
--- stderr has
"asks.cmd", line 1: warning: the address used for symbol "unused" is not
"asks.cmd", line 1: error: symbol "unused" used in expression before it has
--- case nested groups
--- args
main.o --start-group many.a --start-group --end-group ok.cmd -o out.elf
--- exit
1
--- stderr has
Nested --start-group options are not permitted.
--- case the first object comes from an archive
--- args
--undef_sym=three many.a main.o backward.a ok.cmd -o out.elf
--- sym
three 0x100c .text
_start 0x1001 .text
