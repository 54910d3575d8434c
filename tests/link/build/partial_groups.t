A partial link keeps COMDAT groups with their signature, also where the signature is no symbol of a section in the link.
--- a.s
    .section .text.once, "axG", %progbits, once_group, comdat
    .weak once
    .type once, %function
    .thumb_func
once: bx lr
    .section .text.self, "axG", %progbits, self, comdat
    .weak self
    .type self, %function
    .thumb_func
self: bx lr
    .section .text.plain, "ax"
    .global plain
    .thumb_func
plain: bl once
    bl self
--- args
a.o -r -o out.elf
--- readelf -gW
COMDAT group section [ 1] `.group' [once_group] contains 1 sections:
.text.once:a.o
COMDAT group section [ 2] `.group' [self] contains 1 sections:
.text.self:a.o
