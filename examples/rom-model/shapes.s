@ Initial values that are made by rule: noise, which no algorithm makes smaller, and a large regular table.
    .syntax unified
    .arch   armv7-m
    .eabi_attribute 25, 1

    .section .data.noise, "aw", %progbits
    .global noise
    .set    x, 0x12345678
noise:
    .rept   8192
    .set    x, (x * 1664525 + 1013904223) & 0xFFFFFFFF
    .byte   (x >> 24) & 0xFF
    .endr

    .section .data.table, "aw", %progbits
    .balign 4
    .global table
    .set    i, 0
table:
    .rept   3200
    .rept   8
    .word   i * 24
    .endr
    .set    i, i + 1
    .endr
