Command files are preprocessed: macros from files and options, conditionals, includes found beside their file and along the search path; messages keep their places.
--- a.s
    .global _start
    .section .text._start, "ax"
    .thumb_func
_start: bx lr
    ldr r0, =d
    .section .data.d, "aw"
d:  .word 1
--- board/map.inc
#include "sizes.inc"
MEMORY {
    FLASH (RX) : origin = FLASH_START, length = KB(FLASH_SIZE) // of the device
    RAM (RW)   : origin = 0x20000000, length = KB(4)
}
--- board/sizes.inc
#define KB(n) ((n) * 1024)
#ifndef FLASH_SIZE
#  define FLASH_SIZE 16
#endif
--- common.inc
common = __LINE__;
--- main.cmd
-e _start
#if defined(__QV_ARM__) && FLASH_START != 0
#include "board/map.inc"
#else
#error no board
#endif
#include <common.inc>
SECTIONS {
    .text : { *(.text*) } > FLASH
    .data : { *(.data*) } > RAM
}
top = LENGTH_OF_FLASH;
file_size = FLASH_SIZE;
here = \
       __LINE__ + (1 /* two
       lines */ + 1);
--- case macros from all sides
--- args
--define=FLASH_START=0x8000 --define=LENGTH_OF_FLASH=SIZE(FLASH) a.o main.cmd -o out.elf -i .
--- section
.text 0x8000 8
.data 0x20000000 4
--- sym
top 0x4000
file_size 16
common 1
here 16
--- case the last definition of an option counts, and one that is gone
--- args
--define=FLASH_START=0x8000 --define=FLASH_SIZE=1 --define=FLASH_SIZE=8 --define=LENGTH_OF_FLASH=SIZE(FLASH) --define=here=1 --undefine=here a.o main.cmd -o out.elf -i .
--- sym
top 0x2000
here 16
--- case what is not defined
--- args
a.o main.cmd -o out.elf -i .
--- exit
1
--- stderr has
"main.cmd", line 2: warning: undefined preprocessor symbol 'FLASH_START'
"main.cmd", line 5: error: #error 'no board'
--- no-file out.elf
--- case includes along the search path only if they are in angle brackets
--- args
a.o board/l2.cmd -o out.elf -e _start
--- board/l2.cmd
#include <sizes.inc>
#include "sizes.inc"
#include "/nowhere/x.inc"
#include "a.o"
--- exit
1
--- stderr has
"board/l2.cmd", line 1: error: can't open file: <sizes.inc>
"board/l2.cmd", line 3: error: can't open file: "/nowhere/x.inc"
"board/l2.cmd", line 4: error: You may not use #include for ELF file 'a.o'
--- no-file out.elf
--- case object files cannot be included
--- l.cmd
#include "a.o"
--- args
a.o l.cmd -o out.elf -e _start
--- exit
1
--- stderr
"l.cmd", line 1: error: You may not use #include for ELF file 'a.o'
error: errors encountered during linking; "out.elf" not built
--- case places behind includes, macros, continuations and comments
--- bad.inc

#define BAD > %


MEMORY { M : o = 0, l = 64 ; }
--- l.cmd
-e _start
#include "bad.inc"
SECTIONS { .text : \
   { *(.text*) } \
   BAD }
/*
*/ %
#line 70 "generated"
%
--- args
a.o l.cmd -o out.elf
--- exit
1
--- stderr has
"bad.inc", line 5: error: expecting memory range specifier instead of ";"
"l.cmd", line 5: error: expecting address or memory range name instead of "%"
"l.cmd", line 7: error: expecting filename, option, MEMORY, or SECTIONS instead
"generated", line 70: error: expecting filename, option, MEMORY, or SECTIONS
--- case a message shows the line and the column
--- l.cmd
-e _start
#define NOTHING ;
SECTIONS { .text : /* all */ { *(.text*) } > (M NOTHING) }
--- args
--verbose_diagnostics a.o l.cmd -o out.elf
--- exit
1
--- stderr has
"l.cmd", line 3: error: expecting "")"" instead of ";"
SECTIONS { .text : /* all */ { *(.text*) } > (M NOTHING) }
                                                ^
--- case without the preprocessor
--- l.cmd
-e _start
/* a comment */
MEMORY { M : o = 0, l = KB }
--- args
--disable_pp --define=KB=1024 a.o l.cmd -o out.elf
--- exit
1
--- stderr has
"l.cmd", line 3: error: Expecting expression starting with integer, unary
--- case a define in a command file holds for its other lines and for files that it names
--- inner.cmd
MEMORY { M : o = ORIGIN_OF_M, l = 0x100 }
--- l.cmd
before = 1;
--define=ORIGIN_OF_M=0x400
--entry_point=_start
inner.cmd
after = ORIGIN_OF_M;
SECTIONS { .text : { *(.text*) } > M  .data : { *(.data*) } > M }
--- args
a.o l.cmd -o out.elf
--- section
.text 0x400 8
--- sym
after 0x400
