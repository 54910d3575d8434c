@ Start-up of a Cortex-M program: the vector table, and the code that makes C's promises true before main runs.
@ The command file defines the symbols that begin with __ here.
    .syntax unified
    .thumb
    .eabi_attribute 25, 1       @ Tag_ABI_align_preserved: calls find the stack aligned to 8 bytes, as C requires
    .eabi_attribute 28, 3       @ Tag_ABI_VFP_args: no call passes floating point, whatever registers it would go in

@ Nothing refers to the vector table or to the stack section, so the command file keeps them with --retain.
    .section .isr_vector, "a", %progbits
    .word   __STACK_END
    .word   Reset_Handler
    .rept   14
    .word   Default_Handler
    .endr

@ Marks that the program wants a stack: the linker makes it as large as --stack_size says.
    .section .stack, "aw", %nobits

    .section .text.Reset_Handler, "ax", %progbits
    .global Reset_Handler
    .type   Reset_Handler, %function
    .thumb_func
Reset_Handler:
    @ Copy the initial values of .data from where they are stored to where they are used.
    ldr     r0, =__data_start
    ldr     r1, =__data_load
    ldr     r2, =__data_size
    b       2f
1:  ldrb    r3, [r1], #1
    strb    r3, [r0], #1
    subs    r2, #1
2:  cmp     r2, #0
    bne     1b

    @ Clear .bss.
    ldr     r0, =__bss_start
    ldr     r2, =__bss_size
    movs    r3, #0
    b       4f
3:  strb    r3, [r0], #1
    subs    r2, #1
4:  cmp     r2, #0
    bne     3b

    bl      start
    b       .
    .size   Reset_Handler, . - Reset_Handler

    .section .text.Default_Handler, "ax", %progbits
    .weak   Default_Handler
    .type   Default_Handler, %function
    .thumb_func
Default_Handler:
    b       .
    .size   Default_Handler, . - Default_Handler
