@ Start-up of a Cortex-M program that is linked with --rom_model: the vector table, and _c_int00, which the hardware
@ enters at reset with the stack set to the table's first word.
    .syntax unified
    .arch   armv7-m
    .thumb
    .eabi_attribute 25, 1       @ Tag_ABI_align_preserved: calls find the stack aligned to 8 bytes, as C requires

@ Nothing refers to the vector table or to the stack section, so the command file keeps them with --retain.
    .section .isr_vector, "a", %progbits
    .word   __STACK_END
    .word   _c_int00
    .rept   14
    .word   default_handler
    .endr

@ Marks that the program wants a stack: the linker makes it as large as --stack_size says.
    .section .stack, "aw", %nobits

    .section .text._c_int00, "ax", %progbits
    .global _c_int00
    .type   _c_int00, %function
    .thumb_func
_c_int00:
    ldr     r0, =__STACK_END    @ also when a debugger or a boot loader comes here
    mov     sp, r0
    bl      boot_copy           @ what table(BINIT) asks for: code that must run from RAM, for instance
    bl      __QV_auto_init      @ variables get their values
    bl      run_constructors
    bl      main
    bl      program_end
    b       .
    .size   _c_int00, . - _c_int00

    .section .text.default_handler, "ax", %progbits
    .weak   default_handler
    .type   default_handler, %function
    .thumb_func
default_handler:
    b       .
    .size   default_handler, . - default_handler
