@ Start-up of a big-endian program on a Cortex-A: big-endian data, a stack, and on to main. The code is little-endian in memory
@ (BE-8); the words between it, like the literals of this file, are not.
    .syntax unified
    .arm
    .eabi_attribute 25, 1       @ Tag_ABI_align_preserved: calls find the stack aligned to 8 bytes, as C requires
    .eabi_attribute 28, 3       @ Tag_ABI_VFP_args: no call passes floating point

    .section .stack, "aw", %nobits

    .section .text.start, "ax", %progbits
    .global start
    .type   start, %function
start:
    setend  be
    ldr     sp, =__STACK_END
    ldr     r0, =__bss_start
    ldr     r1, =__bss_size
    mov     r2, #0
1:  subs    r1, r1, #1
    strbpl  r2, [r0], #1
    bhi     1b
    ldr     r4, =main           @ Thumb code: the literal says so in its lowest bit
    blx     r4
    mov     r0, #0x18           @ the end, by semihosting
    ldr     r1, =0x20026
    svc     0x123456
    .size   start, . - start
