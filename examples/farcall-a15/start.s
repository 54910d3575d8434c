@ Start-up of a program on a Cortex-A: a stack, and on to main. The processor starts in ARM state.
    .syntax unified
    .arch   armv7-a
    .arm
    .eabi_attribute 25, 1       @ Tag_ABI_align_preserved: calls find the stack aligned to 8 bytes, as C requires
    .eabi_attribute 28, 3       @ Tag_ABI_VFP_args: no call passes floating point

    .section .stack, "aw", %nobits

    .section .text.start, "ax", %progbits
    .global start
    .type   start, %function
start:
    ldr     sp, =__STACK_END
    bl      main                @ Thumb code: BL becomes BLX
    mov     r4, r0
    cmp     r4, #0
    bne     report              @ a branch that can't change the state: it takes a veneer to Thumb code
    b       finish
    .size   start, . - start
