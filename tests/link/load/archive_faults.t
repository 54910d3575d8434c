An archive without a directory serves nothing; a directory that lies is fatal; definitions in several places can be listed.
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
one: .word 1
--- archive lib.a one.o
--- archive again.a one.o
--- hex nosymtab.a
213c617263683e0a    # the magic
6f6e652e6f2f202020202020202020203020202020202020202020203020
20202020302020202020363434202020202034202020202020202020600a    # one.o, 4 bytes
01020304
--- ok.cmd
--entry_point=_start
MEMORY { M : origin = 0x1000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > M }
--- case no directory
--- args
main.o one.o nosymtab.a ok.cmd -o out.elf
--- stderr
warning: archive symbol directory is missing from archive "nosymtab.a"
--- case defined in several archives
--- args
main.o lib.a again.a ok.cmd --scan_libraries -o out.elf
--- stderr has
warning: Symbol "one" (pulled from "lib.a<one.o>") defined in 2 places:
lib.a<one.o>
again.a<one.o>
--- case one place only
--- args
main.o lib.a ok.cmd --scan_libraries -o out.elf
