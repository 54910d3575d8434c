--preferred_order puts functions first, in the order of the options; debug entries tell which section holds one.
--- a.c -gdwarf-4 -ffunction-sections -mthumb -mcpu=cortex-m3 -O1
int shared;
__attribute__((noinline)) static int twin(int x) { return x * shared + 1; }
int alone(void) { return 7; }
int _start(void) { shared = twin(shared) / 3; return twin(shared) % 5 + shared * shared * shared; }
--- b.c -gdwarf-5 -ffunction-sections -mthumb -mcpu=cortex-m3 -O1
extern int shared;
__attribute__((noinline)) static int twin(int x) { return x / (shared | 1); }
int other(void) { return twin(shared) + twin(4); }
--- c.cpp -gdwarf-4 -ffunction-sections -mthumb -mcpu=cortex-m3 -O1
struct S { int twice(int x); };
int S::twice(int x) { return x + x; }
--- plain.s
    .section .text.hidden, "ax"
    .globl hidden
    .type hidden, %function
hidden: .word 0
--- link.cmd
--entry_point=_start
--unused_section_elimination=off
MEMORY { ROM : origin = 0x100, length = 0x1000  RAM : origin = 0x8000, length = 0x100 }
SECTIONS { .first : { plain.o(.text.hidden) } > 0x100
  .text : { *(.text*) } > ROM   .bss : { *(.bss*) } > RAM }
--- case the order given, then the usual one
--- args
a.o b.o c.o plain.o link.cmd -o out.elf --preferred_order=alone --preferred_order=_ZN1S5twiceEi --preferred_order=other
--- sym
alone 0x105
_ZN1S5twiceEi 0x109
other 0x10d
--- case a static function is found with its file, with or without folders; without it only a global one: the larger of the two comes first here
--- args
a.o b.o c.o plain.o link.cmd -o out.elf --preferred_order=twin --preferred_order=b.c:twin --preferred_order=a.c:alone
--- sym
alone 0x119
--- case what is unknown, or known by no debug entry, changes nothing; a second wish for one function is told
--- args
a.o b.o c.o plain.o link.cmd -o out.elf --issue_remarks --preferred_order=nobody --preferred_order=other --preferred_order=no.c:alone --preferred_order=hidden --preferred_order=b.c:other
--- stdout
remark: duplicate --preferred_order="b.c:other" specification encountered; only
   the first instance of this option will be honored
--- sym
other 0x105
