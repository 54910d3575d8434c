Code that needs 8-byte alignment and code that does not promise to keep it do not go together; the later file is named.
--- needs.c
int f(void) { return 1; }
--- silent.s raw
    .syntax unified
    .text
    .globl _start
    .thumb_func
_start:
    bl f
--- archive lib.a silent.o
--- link.cmd
--entry_point=_start
MEMORY { ROM : origin = 0x8000, length = 0x1000 }
SECTIONS { .text : { *(.text*) } > ROM }
--- case the code that is silent comes later
--- args
needs.o silent.o link.cmd -o out.elf
--- exit
1
--- stderr
error: file "silent.o" does not preserve 8-byte alignment of 8-byte data, but
   other input files require this; incompatible files
error: errors encountered during linking; "out.elf" not built
--- no-file out.elf
--- case it comes first
--- args
silent.o needs.o link.cmd -o out.elf
--- exit
1
--- stderr
error: file "needs.o" requires 8-byte alignment of 8-byte data, but not all
   input files preserve this; incompatible files
error: errors encountered during linking; "out.elf" not built
--- case a member of an archive is named with it
--- args
needs.o -l lib.a link.cmd -o out.elf --undef_sym=_start
--- exit
1
--- stderr has
error: file "lib.a<silent.o>" does not preserve 8-byte alignment of 8-byte
--- case the message can be taken back
--- args
needs.o silent.o link.cmd -o out.elf --diag_suppress=16005
--- readelf -A
Tag_ABI_align_preserved: 8-byte, except leaf SP
--- case it can be made a warning
--- args
needs.o silent.o link.cmd -o out.elf --diag_warning=16005
--- stderr
warning: file "silent.o" does not preserve 8-byte alignment of 8-byte data, but
   other input files require this; incompatible files
--- file out.elf
