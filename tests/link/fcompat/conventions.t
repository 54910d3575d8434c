Files built for different conventions are told apart: arguments in floating point registers, enumerations, wchar_t, byte order.
--- soft.c -mcpu=cortex-m4 -mfloat-abi=soft
int _start(void) { return 1; }
--- hard.c -mcpu=cortex-m4 -mfloat-abi=hard -mfpu=fpv4-sp-d16
float f(float x) { return x; }
--- enums.c -mcpu=cortex-m4 -fno-short-enums
enum { A } e;
--- wide.c -mcpu=cortex-m4 -fshort-wchar
int g;
--- big.c -mcpu=cortex-m4 -mbig-endian
int h;
--- link.cmd
--entry_point=_start
MEMORY { ROM : origin = 0x8000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > ROM }
--- case floating point arguments
--- args
soft.o hard.o link.cmd -o out.elf
--- exit
1
--- stderr
error: file "hard.o" has a Tag_ABI_VFP_args attribute value of "FP arguments
   are passed using the VFP register argument variant of the AAPCS" that is
   different than one previously seen ("FP arguments are passed using the
   standard AAPCS variant"); combining incompatible files
error: errors encountered during linking; "out.elf" not built
--- case enumerations
--- args
soft.o enums.o link.cmd -o out.elf
--- stderr
warning: object files have incompatible enumeration types ("soft.o" = packed,
   "enums.o" = 32-bit)
--- case wchar_t
--- args
soft.o wide.o link.cmd -o out.elf
--- stderr
warning: object files have incompatible wchar_t types ("soft.o" = --wchar_t=32,
   "wide.o" = --wchar_t=16)
--- case byte order
--- args
soft.o big.o link.cmd -o out.elf
--- exit
1
--- stderr
fatal error: object files have incompatible byte orderings ("soft.o" = little,
   "big.o" = big)
