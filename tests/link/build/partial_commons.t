A partial link allocates the commons that it refers to and passes the others on as they are, merged.
--- a.s
    .text
    .word used
    .comm used, 12, 8
    .comm unused, 4, 2
--- b.s
    .text
    .comm unused, 20, 4
--- args
a.o b.o -r -o out.elf
--- readelf -sW
00000000 12 OBJECT GLOBAL DEFAULT 7 used
00000004 20 OBJECT GLOBAL DEFAULT COM unused
