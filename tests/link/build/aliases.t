A file's alias table: in a final link the alias is there again as a symbol of its own, in a partial link both ids are noted.
--- refold.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    .balign 4
    .word old
--- alias.s
    .global old, new
    .section .text.old, "ax"
    .type old, %object
old: .word 0x11111111
    .section .text.new, "ax"
    .type new, %object
new: .word 0x22222222
    .section .QV.symbol.alias, "", %progbits
    .byte 1, 0, 0, 0
    .short 1
    .asciz "QV"
    .long 10, 11
--- link.cmd
MEMORY { ROM : origin = 0x1000, length = 0x100 }
--- case final
--- args
refold.o alias.o link.cmd -o out.elf -e _start
--- sym
new 0x1008 .text.new
old 0x1008 .text.new
--- bytes .text._start
704700bf08100000
--- case partial
--- args
refold.o alias.o -r -o out.elf
--- readelf -x .QV.symbol.alias
01000000 01005156 00180000 00190000
