A message about a relocation names the line and the function in the user's source, where the object has debug data.
--- b.c -march=armv7-a
int wide[4] = {1};
--- link.cmd
--entry_point=_start
MEMORY { ROM : origin = 0x8000, length = 0x1000  RAM : origin = 0x20000000, length = 0x1000 }
SECTIONS { .text : { *(.text.first) *(.text*) } > ROM  .data : { *(.data*) } > RAM }
--- two.c -march=armv7-a -O1 -gdwarf-2 -ffunction-sections
extern int wide[];
__attribute__((noinline, section(".text.first"))) int inner(int x)
{
    return wide[x] + 1;
}
int outer(int x)
{
    __asm__(".reloc ., R_ARM_ABS8, wide\n .byte 0, 0, 0, 0");
    return inner(x) + 2;
}
void _start(void) { outer(3); }
--- four.c -march=armv7-a -O1 -gdwarf-4 -mbig-endian -ffunction-sections
void _start(void)
{

    __asm__(".reloc ., R_ARM_THM_JUMP8, end\n .short 0, 0\n .globl end\n .set end, . + 0x1000");
}
--- five.c -march=armv7-a -O1 -gdwarf-5
extern int wide[];
static __attribute__((noinline)) void local(void)
{
    __asm__(".reloc ., R_ARM_GOT_ABS, wide\n .word 0x12345678");
}
void _start(void) { local(); }
--- case DWARF 2
--- args
two.o b.o link.cmd -o out.elf
--- stderr has
"two.c", line 8: warning: relocation from function "outer" to symbol "wide"
   overflowed; the 30-bit relocated address 0x20000000 is too large to encode
   in the 8-bit field (type = 'R_ARM_ABS8' (8), file = "two.o", offset =
"two.c", line 8: warning: relocation operand A = 0
"two.c", line 8: warning: relocation operand S = 0x20000000
"two.c", line 8: warning: relocation operand P = 0x80
--- case DWARF 4, big-endian
--- args
four.o link.cmd -o out.elf
--- stderr has
"four.c", line 4: warning: relocation from function "_start" to symbol "end"
--- case DWARF 5
--- args
five.o b.o link.cmd -o out.elf
--- stderr has
"five.c", line 4: warning: relocation type is not supported (type =
   'R_ARM_GOT_ABS' (95), file = "five.o", offset =
