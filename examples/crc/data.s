@ Data to be checked: sections of all sizes around the steps in which bytes are read, and a few larger ones.
    .syntax unified
    .arch   armv7-m
    .eabi_attribute 25, 1

    .macro  bytes section, count, seed
    .section \section, "a", %progbits
    .set    x, \seed
    .rept   \count
    .set    x, (x * 1664525 + 1013904223) & 0xFFFFFFFF
    .byte   (x >> 24) & 0xFF
    .endr
    .endm

    bytes   .check0, 1, 10
    bytes   .check1, 2, 11
    bytes   .check2, 3, 12
    bytes   .check3, 7, 13
    bytes   .check4, 8, 14
    bytes   .check5, 9, 15
    bytes   .check6, 15, 16
    bytes   .check7, 16, 17
    bytes   .check8, 17, 18
    bytes   .check9, 1000, 19
    bytes   .check10, 1001, 20
    bytes   .check11, 2047, 21
    bytes   .check12, 2049, 22
    bytes   .part1, 300, 23
    bytes   .part2, 5, 24
    bytes   .overlay1, 64, 25
    bytes   .overlay2, 80, 26
